"""What the Python tests share: the build's tools, generated documents, hostile
files, and PNG pixels as arrays."""
import os
import pathlib
import plistlib
import subprocess
import sys

import numpy
from PIL import Image

SOURCE_DIR = pathlib.Path(__file__).resolve().parents[2]
BUILD_DIR = pathlib.Path(os.environ.get("PAINTDOC_BUILD_DIR", SOURCE_DIR / "build" / "release"))
CLI = BUILD_DIR / "apps" / "paintdoc"
EXAMPLES = BUILD_DIR / "apps" / "paintdoc-examples"

sys.path.insert(0, str(BUILD_DIR / "python"))
# Processes the tests start (the batch, cluster workers) import the same package.
os.environ["PYTHONPATH"] = os.pathsep.join(
    [str(BUILD_DIR / "python")] + [p for p in [os.environ.get("PYTHONPATH")] if p])
sys.path.insert(0, str(SOURCE_DIR / "tests" / "data"))
import keyed_archive_tool  # noqa: E402 (the independent document writer)


def make_examples(folder: pathlib.Path):
    """The example documents, written by the project's generator."""
    folder.mkdir(parents=True, exist_ok=True)
    subprocess.run([str(EXAMPLES), str(folder)], check=True, stdout=subprocess.DEVNULL)
    return sorted(folder.glob("*.paintdoc"))


def canvas_of_size(width, height):
    """A document whose canvas is `width` x `height` points and has no layers."""
    archive = keyed_archive_tool.Archive()
    root = archive.instance(("PaintManager", "NSObject"), {
        "CanvasSize": archive.add(f"{{{width}, {height}}}"),
        "DrawsArray": archive.array([]),
    })
    return keyed_archive_tool.container(archive.bytes({"root": root}, plistlib.FMT_BINARY))


# Files the library refuses, by name: (bytes, whether the refusal is a limit).
def hostile_files(example: pathlib.Path):
    whole = example.read_bytes()
    scenarios = keyed_archive_tool.SCENARIOS
    return {
        "empty": (b"", False),
        "garbage": (bytes(range(256)) * 8, False),
        "truncated": (whole[: len(whole) // 2], False),
        "header-only": (whole[:8], False),
        "newer-version": (scenarios["version-11"](), False),
        "root-not-canvas": (scenarios["root-not-canvas"](), False),
        "too-wide": (canvas_of_size(40000, 10), True),
        "too-many-pixels": (canvas_of_size(30000, 30000), True),
    }


def write_hostile_files(folder: pathlib.Path, example: pathlib.Path):
    """Each hostile file as folder/<name>.paintdoc; {path: is_limit}."""
    folder.mkdir(parents=True, exist_ok=True)
    written = {}
    for name, (data, is_limit) in hostile_files(example).items():
        path = folder / f"{name}.paintdoc"
        path.write_bytes(data)
        written[path] = is_limit
    return written


def run_cli(*arguments):
    return subprocess.run([str(CLI), *map(str, arguments)], capture_output=True, text=True)


def png_pixels(path) -> numpy.ndarray:
    """A PNG's pixels as height x width x 4 straight RGBA."""
    with Image.open(path) as image:
        return numpy.asarray(image.convert("RGBA"))
