"""The distributed batch against `paintdoc thumbnail FILE... -o DIR` on the
same files: a local two-worker cluster over loopback, 200 generated documents
with hostile files mixed in, every output and every failure compared."""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

import numpy
from PIL import Image

import support

from distributed import LocalCluster

DOCUMENTS = 200
SIZE = 64


def batch(*arguments):
    return subprocess.run([sys.executable, "-m", "paintdoc.batch", *map(str, arguments)],
                          capture_output=True, text=True, timeout=300)


def failure_lines(stderr):
    return sorted(line for line in stderr.splitlines() if line.startswith("paintdoc: "))


def counts(stdout):
    """(written, refused, not written) from the summary line."""
    match = re.search(r"(\d+) thumbnails, (\d+) refused, (\d+) not written", stdout)
    if not match:
        raise AssertionError(f"no summary in {stdout!r}")
    return tuple(int(group) for group in match.groups())


class BatchTestCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="paintdoc-batch-"))
        examples = support.make_examples(cls.folder / "examples")
        inputs = cls.folder / "inputs"
        inputs.mkdir()
        for index in range(DOCUMENTS):
            example = examples[index % len(examples)]
            shutil.copyfile(example, inputs / f"{index:03d}-{example.name}")
        cls.hostile = support.write_hostile_files(inputs, examples[0])
        # A second file of an existing name: its output belongs to the first.
        twin_folder = cls.folder / "twin"
        twin_folder.mkdir()
        cls.twin = twin_folder / f"000-{examples[0].name}"
        shutil.copyfile(examples[0], cls.twin)
        cls.inputs = sorted(inputs.iterdir()) + [cls.twin]

    def output_folder(self, name, blocked_name=None):
        """A fresh output folder; `blocked_name`'s thumbnail cannot be written
        there (a folder that is not empty stands in its place)."""
        folder = self.folder / name
        folder.mkdir()
        if blocked_name:
            (folder / f"{blocked_name}.png").mkdir()
            (folder / f"{blocked_name}.png" / "keep").write_bytes(b"")
        return folder

    def assert_same_as_the_tool(self, ours, theirs, ours_run, theirs_run):
        self.assertEqual(ours_run.returncode, theirs_run.returncode, ours_run.stderr)
        self.assertEqual(counts(ours_run.stdout), counts(theirs_run.stdout))
        self.assertEqual(failure_lines(ours_run.stderr),
                         [line.replace(str(theirs), str(ours))
                          for line in failure_lines(theirs_run.stderr)])
        written = sorted(path.name for path in ours.iterdir())
        self.assertEqual(written, sorted(path.name for path in theirs.iterdir()))
        for name in written:
            if (ours / name).is_dir():
                continue
            with self.subTest(output=name), Image.open(ours / name) as mine, \
                    Image.open(theirs / name) as reference:
                self.assertEqual(mine.text, reference.text)
                numpy.testing.assert_array_equal(numpy.asarray(mine), numpy.asarray(reference))


class OnAnExistingCluster(BatchTestCase):
    def test_two_workers_over_loopback(self):
        blocked = f"{7:03d}-{self.inputs[7].name[4:]}"
        ours = self.output_folder("cluster", blocked)
        theirs = self.output_folder("tool", blocked)
        with LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                          host="127.0.0.1", dashboard_address=None) as cluster:
            ours_run = batch(*self.inputs, "-o", ours, "--size", SIZE,
                             "--scheduler", cluster.scheduler_address)
        theirs_run = support.run_cli("thumbnail", "-s", SIZE, *self.inputs, "-o", theirs)

        self.assert_same_as_the_tool(ours, theirs, ours_run, theirs_run)
        written, refused, not_written = counts(ours_run.stdout)
        self.assertEqual((written, refused, not_written), (DOCUMENTS - 1, len(self.hostile), 2))
        self.assertEqual(ours_run.returncode, 3)
        for hostile in self.hostile:
            self.assertTrue(any(line.startswith(f"paintdoc: {hostile}: ")
                                for line in failure_lines(ours_run.stderr)), hostile)
        self.assertEqual(list(ours.glob(".*.part")), [], "a temporary file was left behind")


class OnALocalCluster(BatchTestCase):
    def test_own_cluster_reads_folders(self):
        # A folder stands for its files; no output is blocked, so every
        # refusal is a file's own and the exit status says "refused".
        ours = self.output_folder("local")
        theirs = self.output_folder("local-tool")
        folder = self.inputs[0].parent
        ours_run = batch(folder, "-o", ours, "-s", SIZE, "--workers", "2")
        theirs_run = support.run_cli("thumbnail", "-s", SIZE, *sorted(folder.iterdir()), "-o", theirs)
        self.assert_same_as_the_tool(ours, theirs, ours_run, theirs_run)
        self.assertEqual(ours_run.returncode, 1)

    def test_bad_arguments(self):
        cases = [
            ["x.paintdoc"],  # no -o
            ["x.paintdoc", "-o", self.folder / "bad", "--size", "0"],
            ["x.paintdoc", "-o", self.folder / "bad", "--workers", "0"],
        ]
        for arguments in cases:
            with self.subTest(arguments=arguments):
                run = batch(*arguments)
                self.assertEqual(run.returncode, 2)
                self.assertIn("usage:", run.stderr)


if __name__ == "__main__":
    unittest.main()
