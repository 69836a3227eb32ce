"""The module against the command-line tool on the same files: the same
pixels, the same description, the same refusals."""
import json
import os
import pathlib
import tempfile
import threading
import unittest

import numpy

import support
import paintdoc


class ModuleTestCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="paintdoc-python-"))
        cls.examples = support.make_examples(cls.folder / "examples")
        cls.hostile = support.write_hostile_files(cls.folder / "hostile", cls.examples[0])

    def output(self, name):
        return self.folder / "out" / name


class SamePixelsAsTheTool(ModuleTestCase):
    def test_render_and_thumbnail_match_the_tool(self):
        self.output("").mkdir(exist_ok=True)
        for example in self.examples:
            document = paintdoc.open(example)
            cases = [
                ("render", ["render", example, "-o"], lambda: document.render()),
                ("thumbnail 64", ["thumbnail", "-s", "64", example],
                 lambda: document.thumbnail(64)),
                ("thumbnail 4096 (never enlarged)", ["thumbnail", "-s", "4096", example],
                 lambda: document.thumbnail(4096)),
            ]
            for label, command, draw in cases:
                with self.subTest(example=example.name, case=label):
                    png = self.output(f"{example.stem}-{label.split()[0]}.png")
                    result = support.run_cli(*command, png)
                    self.assertEqual(result.returncode, 0, result.stderr)
                    numpy.testing.assert_array_equal(draw(), support.png_pixels(png))

    def test_save_png_writes_the_tools_files(self):
        example = self.examples[0]
        document = paintdoc.open(example)
        for max_side, command in [(None, ["render", example, "-o"]),
                                  (100, ["thumbnail", "-s", "100", example])]:
            with self.subTest(max_side=max_side):
                ours, theirs = self.output(f"saved-{max_side}.png"), self.output(f"tool-{max_side}.png")
                self.assertEqual(support.run_cli(*command, theirs).returncode, 0)
                document.save_png(ours, max_side=max_side)
                numpy.testing.assert_array_equal(support.png_pixels(ours), support.png_pixels(theirs))
                self.assertEqual([p.name for p in ours.parent.glob(".*.part")], [])

    def test_bytes_read_like_the_file(self):
        for example in self.examples:
            with self.subTest(example=example.name):
                data = example.read_bytes()
                for source in (data, bytearray(data), memoryview(data)):
                    numpy.testing.assert_array_equal(paintdoc.open(source).thumbnail(80),
                                                     paintdoc.open(example).thumbnail(80))


class DescriptionMatchesInfo(ModuleTestCase):
    def test_info_is_the_tools_json(self):
        for example in self.examples:
            with self.subTest(example=example.name):
                result = support.run_cli("info", "--json", example)
                self.assertEqual(result.returncode, 0, result.stderr)
                document = paintdoc.open(example)
                tool = json.loads(result.stdout)
                self.assertEqual(document.info(), tool)
                self.assertEqual(document.size, (tool["width"], tool["height"]))
                self.assertEqual(document.version, tool["version"])

    def test_layers_follow_the_layer_tree(self):
        def flatten(layers):
            return [(layer.class_name, layer.title, layer.visible, layer.is_group,
                     flatten(layer.members)) for layer in layers]

        def flatten_info(entries):
            return [(entry["class"], entry["title"], entry["visible"], "layers" in entry,
                     flatten_info(entry.get("layers", []))) for entry in entries]

        saw_group = False
        for example in self.examples:
            document = paintdoc.open(example)
            with self.subTest(example=example.name):
                self.assertEqual(flatten(document.layers), flatten_info(document.info()["layers"]))
                self.assertTrue(all(isinstance(layer.attributes, dict) for layer in document.layers))
            saw_group = saw_group or any(layer.is_group for layer in document.layers)
        self.assertTrue(saw_group, "the examples hold no group: members go untested")

    def test_info_copies_cannot_change_the_document(self):
        document = paintdoc.open(self.examples[0])
        document.info()["layers"].clear()
        self.assertTrue(document.layers)


class Sizes(ModuleTestCase):
    def test_render_sizes(self):
        document = paintdoc.open(self.examples[0])
        wide, high = document.pixel_size
        cases = [
            ({}, (high, wide)),
            ({"scale": 0.5}, (round(high / 2), round(wide / 2))),
            ({"scale": 2}, (high * 2, wide * 2)),
            ({"size": (33, 17)}, (17, 33)),
            ({"scale": 1e-6}, (1, 1)),
        ]
        for arguments, shape in cases:
            with self.subTest(arguments=arguments):
                pixels = document.render(**arguments)
                self.assertEqual(pixels.shape, shape + (4,))
                self.assertEqual(pixels.dtype, numpy.uint8)
                self.assertTrue(pixels.flags.c_contiguous and pixels.flags.writeable)

    def test_premultiplied_is_straight_times_alpha(self):
        translucent = 0
        for example in self.examples:
            with self.subTest(example=example.name):
                document = paintdoc.open(example)
                straight = document.thumbnail(120).astype(numpy.int32)
                premultiplied = document.thumbnail(120, premultiplied=True).astype(numpy.int32)
                alpha = straight[..., 3:]
                expected = (straight[..., :3] * alpha + 127) // 255
                self.assertLessEqual(numpy.abs(premultiplied[..., :3] - expected).max(), 1)
                numpy.testing.assert_array_equal(premultiplied[..., 3:], alpha)
                translucent += int(((alpha > 0) & (alpha < 255)).sum())
        self.assertGreater(translucent, 0, "no translucent pixel: the alpha modes go untested")

    def test_bad_arguments_raise(self):
        document = paintdoc.open(self.examples[0])
        cases = [
            (lambda: document.render(size=(0, 10)), ValueError),
            (lambda: document.render(size=(10, paintdoc.MAX_SIDE + 1)), ValueError),
            (lambda: document.render(size=(2.5, 10)), TypeError),
            (lambda: document.render(scale=0), ValueError),
            (lambda: document.render(scale=-1), ValueError),
            (lambda: document.render(scale=float("nan")), ValueError),
            (lambda: document.render(scale=1, size=(5, 5)), TypeError),
            (lambda: document.render(size=(30000, 30000)), paintdoc.LimitError),
            (lambda: document.thumbnail(0), ValueError),
            (lambda: document.thumbnail("64"), TypeError),
            (lambda: paintdoc.open(12), TypeError),
        ]
        for index, (call, error) in enumerate(cases):
            with self.subTest(case=index):
                self.assertRaises(error, call)


class SameRefusalsAsTheTool(ModuleTestCase):
    def test_refusals(self):
        for path, is_limit in self.hostile.items():
            with self.subTest(file=path.name):
                with self.assertRaises(paintdoc.RefusedError) as raised:
                    paintdoc.open(path)
                self.assertEqual(isinstance(raised.exception, paintdoc.LimitError), is_limit)
                reason = str(raised.exception)
                self.assertNotIn("\n", reason)
                tool = support.run_cli("info", path)
                self.assertEqual(tool.returncode, 1)
                self.assertTrue(tool.stderr.startswith(f"paintdoc: {path}: {reason}"), tool.stderr)
                with self.assertRaises(type(raised.exception)) as from_bytes:
                    paintdoc.open(path.read_bytes())
                self.assertEqual(str(from_bytes.exception), reason)

    def test_missing_file(self):
        with self.assertRaises(paintdoc.RefusedError) as raised:
            paintdoc.open(self.folder / "no such file.paintdoc")
        self.assertIn("no such file.paintdoc", str(raised.exception))

    def test_error_classes_nest(self):
        self.assertTrue(issubclass(paintdoc.LimitError, paintdoc.RefusedError))
        self.assertTrue(issubclass(paintdoc.RefusedError, paintdoc.Error))


class Threads(ModuleTestCase):
    def test_threads_draw_what_one_thread_draws(self):
        # Shared documents as well as one each: a document draws one picture
        # at a time, separate ones in parallel.
        shared = [paintdoc.open(example) for example in self.examples]
        expected = [document.render(scale=0.5) for document in shared]
        failures = []

        def draw(thread):
            for turn in range(6):
                index = (thread + turn) % len(shared)
                own = paintdoc.open(self.examples[index])
                for document in (shared[index], own):
                    if not numpy.array_equal(document.render(scale=0.5), expected[index]):
                        failures.append((thread, turn))

        threads = [threading.Thread(target=draw, args=(n,)) for n in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(failures, [])


if __name__ == "__main__":
    unittest.main()
