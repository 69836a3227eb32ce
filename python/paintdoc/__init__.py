"""Layered paint documents: read them, describe them, draw them.

    import paintdoc
    doc = paintdoc.open("drawing.paintdoc")
    print(doc.size, [layer.title for layer in doc.layers])
    pixels = doc.thumbnail(256)          # height x width x 4 RGBA, uint8
    doc.save_png("drawing.png")

Reading and drawing release the GIL, so threads draw documents in parallel.
A file the library will not draw raises RefusedError (LimitError when it is
beyond one of the library's limits) with the library's one-line reason.
"""
from __future__ import annotations

import dataclasses
import json
import os
import tempfile
from typing import TYPE_CHECKING, Any, Optional, Tuple, Union

from . import _paintdoc
from ._paintdoc import Error, LimitError, RefusedError

__all__ = ["Document", "Layer", "Error", "RefusedError", "LimitError", "open", "MAX_SIDE"]

# The largest side, in pixels, of anything drawn.
MAX_SIDE: int = _paintdoc.max_side

if TYPE_CHECKING:
    import numpy
    import numpy.typing

    Pixels = numpy.typing.NDArray[numpy.uint8]

Source = Union[str, bytes, bytearray, memoryview, "os.PathLike[str]"]


@dataclasses.dataclass(frozen=True)
class Layer:
    """One layer of a document, as `paintdoc info --json` describes it."""

    class_name: str
    title: str
    visible: bool
    locked: bool
    rotation: float
    bounds: Tuple[float, float, float, float]
    attributes: dict
    opacity: float
    is_group: bool
    members: Tuple["Layer", ...]  # a group's layers, bottom first; empty otherwise

    @classmethod
    def from_info(cls, entry: dict) -> "Layer":
        return cls(
            class_name=entry["class"],
            title=entry["title"],
            visible=entry["visible"],
            locked=entry["locked"],
            rotation=entry["rotation"],
            bounds=tuple(entry["bounds"]),
            attributes=entry["attributes"],
            opacity=entry["opacity"],
            is_group="layers" in entry,
            members=tuple(cls.from_info(member) for member in entry.get("layers", ())),
        )


class Document:
    """A document (or a plain image) read and ready to draw."""

    def __init__(self, compiled: _paintdoc.Document):
        self._compiled = compiled
        self._info: Optional[dict] = None

    @property
    def size(self) -> Tuple[float, float]:
        """The canvas size in points (an image's point size)."""
        return self._compiled.size

    @property
    def pixel_size(self) -> Tuple[int, int]:
        """What render() draws at scale 1: each side rounded to whole pixels."""
        return self._compiled.pixel_size

    @property
    def version(self) -> int:
        """The document's format version (0 for a plain image)."""
        return self._compiled.version

    @property
    def is_document(self) -> bool:
        """False when the file was a plain image."""
        return self._compiled.is_document

    def info(self) -> dict:
        """The object `paintdoc info --json` prints for this file."""
        if self._info is None:
            self._info = json.loads(self._compiled.info_json())
        return json.loads(json.dumps(self._info))  # a copy the caller may change

    @property
    def layers(self) -> Tuple[Layer, ...]:
        """The layers, bottom first (none for a plain image)."""
        self.info()
        return tuple(Layer.from_info(entry) for entry in self._info.get("layers", ()))

    def render(self, scale: Optional[float] = None, size: Optional[Tuple[int, int]] = None,
               premultiplied: bool = False) -> "Pixels":
        """The whole content drawn at `scale` (1.0 unless given) or stretched
        over `size` = (width, height) pixels, as a height x width x 4 RGBA
        array of uint8, straight alpha unless `premultiplied`."""
        width, height = self._render_size(scale, size)
        return self._compiled.render(width, height, premultiplied)

    def thumbnail(self, max_side: int, premultiplied: bool = False) -> "Pixels":
        """The content fitted into a square of `max_side` pixels (never
        enlarged), drawn at that size: what `paintdoc thumbnail` draws."""
        return self._compiled.thumbnail(_whole_number(max_side, "max_side"), premultiplied)

    def save_png(self, path: Union[str, "os.PathLike[str]"], max_side: Optional[int] = None) -> None:
        """Writes the full-size picture (as `paintdoc render`), or with
        `max_side` the thumbnail (as `paintdoc thumbnail`), as a PNG file.
        The file appears whole or not at all."""
        if max_side is None:
            png = self._compiled.render_png()
        else:
            png = self._compiled.thumbnail_png(_whole_number(max_side, "max_side"))
        write_atomically(path, png)

    def _render_size(self, scale, size) -> Tuple[int, int]:
        if scale is not None and size is not None:
            raise TypeError("render() takes scale or size, not both")
        if size is not None:
            width, height = size
            return _whole_number(width, "width"), _whole_number(height, "height")
        scale = 1.0 if scale is None else float(scale)
        if not scale > 0 or scale == float("inf"):
            raise ValueError(f"scale must be above 0, not {scale}")
        points_wide, points_high = self.size
        return max(1, round(points_wide * scale)), max(1, round(points_high * scale))

    def __repr__(self) -> str:
        kind = f"version {self.version}" if self.is_document else "image"
        return f"<paintdoc.Document {self.size[0]:g} x {self.size[1]:g} ({kind})>"


def open(source: Source, *, draft: Optional[int] = None) -> Document:  # noqa: A001 (the module's verb)
    """Reads a document (or a plain image) from a path or from bytes.

    `draft`, when given, is the thumbnail side that will be drawn: a plain
    image may then be decoded at a reduced scale, as `paintdoc thumbnail`
    reads it. Raises RefusedError or LimitError with the library's reason.
    """
    side = 0 if draft is None else _whole_number(draft, "draft")
    if isinstance(source, (bytes, bytearray, memoryview)):
        return Document(_paintdoc.open_bytes(source, side))
    # Bytes of the file name as the file system has them, whatever the locale.
    return Document(_paintdoc.open_path(os.fsencode(source), side))


def write_atomically(path: Union[str, "os.PathLike[str]"], data: bytes) -> None:
    """Writes `data` to a new file next to `path` and renames it over `path`,
    so that readers see the old file or the whole new one, never part."""
    folder = os.path.dirname(os.path.abspath(path))
    handle, temporary = tempfile.mkstemp(dir=folder, prefix=".", suffix=".part")
    try:
        with os.fdopen(handle, "wb") as out:
            out.write(data)
        os.chmod(temporary, 0o666 & ~_UMASK)
        os.replace(temporary, path)
    except BaseException:
        try:
            os.unlink(temporary)
        except FileNotFoundError:
            pass
        raise


def _read_umask() -> int:
    mask = os.umask(0)
    os.umask(mask)
    return mask


# mkstemp makes files only the owner reads; the output gets what open() would
# give it. Read once: changing the umask to read it races with other threads.
_UMASK = _read_umask()


def _whole_number(value: Any, name: str) -> int:
    if isinstance(value, bool) or not isinstance(value, int):
        try:
            import operator
            value = operator.index(value)  # NumPy integers
        except TypeError:
            raise TypeError(f"{name} must be a whole number, not {type(value).__name__}") from None
    if not 1 <= value <= MAX_SIDE:
        raise ValueError(f"{name} must be from 1 to {MAX_SIDE}, not {value}")
    return value
