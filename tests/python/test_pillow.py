"""The Pillow plugin: documents open as their composed canvas, thumbnails draw
at the reduced size, conversions work, other files are left to Pillow."""
import io
import pathlib
import tempfile
import unittest
from unittest import mock

import numpy
from PIL import Image, UnidentifiedImageError

import support
import paintdoc
import paintdoc.pillow


class PillowTestCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="paintdoc-pillow-"))
        cls.examples = support.make_examples(cls.folder / "examples")
        cls.hostile = support.write_hostile_files(cls.folder / "hostile", cls.examples[0])


class Opening(PillowTestCase):
    def test_opens_as_the_composed_canvas(self):
        for example in self.examples:
            document = paintdoc.open(example)
            for source in (example, io.BytesIO(example.read_bytes())):
                with self.subTest(example=example.name, source=type(source).__name__):
                    with Image.open(source) as image:
                        self.assertEqual(image.format, paintdoc.pillow.FORMAT)
                        self.assertEqual((image.mode, image.size), ("RGBA", document.pixel_size))
                        self.assertEqual(image.info["version"], document.version)
                        numpy.testing.assert_array_equal(numpy.asarray(image), document.render())

    def test_conversions(self):
        example = self.examples[0]
        expected = paintdoc.open(example).render()
        cases = [("RGB", 3), ("L", None), ("P", None)]
        for mode, channels in cases:
            with self.subTest(mode=mode):
                with Image.open(example) as image:
                    converted = numpy.asarray(image.convert(mode))
                self.assertEqual(converted.shape[:2], expected.shape[:2])
                if channels == 3:
                    numpy.testing.assert_array_equal(converted, expected[..., :3])

    def test_saves_as_png_that_reads_back(self):
        example = self.examples[0]
        with Image.open(example) as image:
            buffer = io.BytesIO()
            image.save(buffer, "PNG")
            drawn = numpy.asarray(image)
        buffer.seek(0)
        numpy.testing.assert_array_equal(numpy.asarray(Image.open(buffer)), drawn)

    def test_refused_documents_are_unidentified(self):
        # Files without the archive's magic are for Pillow's own formats to
        # judge (some accept almost anything).
        archives = [path for path in self.hostile if path.read_bytes().startswith(b"bplist00")]
        self.assertGreaterEqual(len(archives), 4)
        for path in archives:
            with self.subTest(file=path.name):
                with self.assertRaises(UnidentifiedImageError):
                    Image.open(path)

    def test_other_formats_stay_with_pillow(self):
        png = io.BytesIO()
        Image.new("RGB", (3, 2), "red").save(png, "PNG")
        png.seek(0)
        with Image.open(png) as image:
            self.assertEqual((image.format, image.size), ("PNG", (3, 2)))


class Thumbnails(PillowTestCase):
    def test_thumbnail_draws_at_the_reduced_size(self):
        # Pillow asks for a draft of twice the size (its reducing gap) and
        # resamples that; the canvas must never be drawn at full size.
        for example in self.examples:
            document = paintdoc.open(example)
            full = document.pixel_size
            for box in [(64, 64), (200, 50), (full[0] * 2, full[1] * 2)]:
                with self.subTest(example=example.name, box=box):
                    drawn_sizes = []
                    original = paintdoc.Document.render

                    def recording(self, scale=None, size=None, premultiplied=False):
                        drawn_sizes.append(size)
                        return original(self, scale=scale, size=size, premultiplied=premultiplied)

                    with Image.open(example) as image, \
                            mock.patch.object(paintdoc.Document, "render", recording):
                        image.thumbnail(box)
                        result = image.copy()
                    self.assertEqual(len(drawn_sizes), 1)
                    drawn = drawn_sizes[0]
                    scale = min(1.0, max(2 * box[0] / full[0], 2 * box[1] / full[1]))
                    self.assertLessEqual(drawn[0], max(full[0] * scale + 1, 1))
                    self.assertLessEqual(max(result.size[0] / box[0], result.size[1] / box[1]), 1)
                    self.assertGreaterEqual(max(result.size[0] / box[0], result.size[1] / box[1]),
                                            0.99 if drawn != full or box[0] < full[0] else 0)
                    # The draft still holds the whole canvas: its mean colour
                    # stays close to the full picture's.
                    mean_full = document.render(scale=0.25).astype(float).mean(axis=(0, 1))
                    mean_thumb = numpy.asarray(result.convert("RGBA")).astype(float).mean(axis=(0, 1))
                    self.assertLess(numpy.abs(mean_full - mean_thumb).max(), 12)

    def test_draft_reports_the_size_it_will_draw(self):
        example = self.examples[0]
        full = paintdoc.open(example).pixel_size
        cases = [
            ((full[0] // 4, full[1] // 4), (full[0] // 4, full[1] // 4)),
            ((full[0] * 3, full[1] * 3), full),  # never above full size
            ((full[0] // 2, 1), (full[0] // 2, None)),  # covers the wider demand
        ]
        for asked, expected in cases:
            with self.subTest(asked=asked):
                with Image.open(example) as image:
                    mode, box = image.draft("RGBA", asked)
                    self.assertEqual(box[2:], image.size)
                    self.assertEqual(image.size[0], expected[0])
                    if expected[1] is not None:
                        self.assertEqual(image.size[1], expected[1])
                    self.assertGreaterEqual(image.size[0], min(asked[0], full[0]))
                    self.assertGreaterEqual(image.size[1], min(asked[1], full[1]))
                    image.load()
                    self.assertEqual(image.im.size, image.size)


if __name__ == "__main__":
    unittest.main()
