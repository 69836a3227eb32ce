"""Pillow support: `import paintdoc.pillow` and PIL.Image.open() reads paint
documents as their composed canvas (RGBA, one pixel a point).

Image.thumbnail() and Image.draft() draw the canvas at the reduced size
straight away instead of drawing it at full size and scaling it down.
"""
from __future__ import annotations

import math

from PIL import Image, ImageFile

import paintdoc

FORMAT = "PAINTDOC"
EXTENSION = ".paintdoc"
MIME_TYPE = "application/x-paintdoc"

# Documents are keyed archives: binary property lists.
_MAGIC = b"bplist00"


def _accept(prefix: bytes) -> bool:
    return prefix[: len(_MAGIC)] == _MAGIC


def _set_mode(image: Image.Image, mode: str) -> None:
    # Newer Pillow keeps the mode behind a read-only property.
    if isinstance(getattr(type(image), "mode", None), property):
        image._mode = mode
    else:
        image.mode = mode


def _set_size(image: Image.Image, size) -> None:
    image._size = tuple(size)


class PaintdocImageFile(ImageFile.ImageFile):
    format = FORMAT
    format_description = "layered paint document"

    def _open(self) -> None:
        try:
            document = paintdoc.open(self.fp.read())
        except paintdoc.Error as refusal:
            # Pillow tries the next format on SyntaxError; the reason stays.
            raise SyntaxError(f"not a drawable paint document: {refusal}") from refusal
        if not document.is_document:
            raise SyntaxError("not a paint document (a plain image)")
        self._document = document
        _set_mode(self, "RGBA")
        _set_size(self, document.pixel_size)
        self.info["version"] = document.version
        # Marks the picture as not drawn yet; load() draws it, no decoder does.
        self.tile = [(FORMAT, (0, 0) + self.size, 0, None)]

    def draft(self, mode, size):
        """Draws at the smallest size that still covers `size` (keeping the
        canvas's proportions, never above full size) when loaded."""
        if not self.tile or size is None:
            return None
        if mode not in (None, "RGBA"):
            return None
        full_wide, full_high = self._document.pixel_size
        scale = min(1.0, max(size[0] / full_wide, size[1] / full_high))
        reduced = (max(1, math.ceil(full_wide * scale)), max(1, math.ceil(full_high * scale)))
        _set_size(self, reduced)
        self.tile = [(FORMAT, (0, 0) + reduced, 0, None)]
        return self.mode, (0, 0) + reduced

    def load(self):
        if self.tile:
            pixels = self._document.render(size=self.size)
            self.im = Image.frombuffer("RGBA", self.size, pixels, "raw", "RGBA", 0, 1).im
            self.tile = []
        return Image.Image.load(self)


def register() -> None:
    Image.register_open(FORMAT, PaintdocImageFile, _accept)
    Image.register_extension(FORMAT, EXTENSION)
    Image.register_mime(FORMAT, MIME_TYPE)


register()
