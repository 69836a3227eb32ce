#!/usr/bin/python3
"""Documents a second for thumbnails of one folder, three ways, on this machine:
`paintdoc thumbnail FILE... -o DIR` (threads on every core), the Python
package in one process and thread, and `python3 -m paintdoc.batch` on a
local cluster of a worker a core. Prints the rates and the Python path's cost
a file over the tool's.

  bench/python_batch.py BUILD_DIR [DOCUMENTS]
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

SIZE = 256


def timed(function):
    started = time.perf_counter()
    function()
    return time.perf_counter() - started


def run(command, **environment):
    """The command's standard output."""
    return subprocess.run(command, check=False, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                          text=True, env={**os.environ, **environment}).stdout


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 2000
    sys.path.insert(0, str(build / "python"))
    import paintdoc

    work = pathlib.Path(tempfile.mkdtemp(prefix="paintdoc-bench-"))
    examples = work / "examples"
    examples.mkdir()
    subprocess.run([str(build / "apps" / "paintdoc-examples"), str(examples)], check=True,
                   stdout=subprocess.DEVNULL)
    sources = sorted(examples.iterdir())
    inputs = work / "inputs"
    inputs.mkdir()
    for index in range(count):
        shutil.copyfile(sources[index % len(sources)], inputs / f"{index:05d}-{sources[index % len(sources)].name}")
    files = [str(path) for path in sorted(inputs.iterdir())]
    cores = os.cpu_count() or 1

    def fresh(name):
        folder = work / name
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        return folder

    def python_loop(out):
        for path in files:
            document = paintdoc.open(path, draft=SIZE)
            png = document._compiled.thumbnail_png(SIZE)
            paintdoc.write_atomically(os.path.join(out, os.path.basename(path) + ".png"), png)

    batch_summary = []
    cli = [str(build / "apps" / "paintdoc"), "thumbnail", "-s", str(SIZE)]
    results = {
        f"paintdoc thumbnail -o ({cores} threads)":
            timed(lambda: run(cli + files + ["-o", str(fresh("tool"))])),
        "paintdoc thumbnail -o (1 core)":
            timed(lambda: run(["taskset", "-c", "0"] + cli + files + ["-o", str(fresh("tool1"))])),
        "python loop (1 thread, in process)": timed(lambda: python_loop(str(fresh("loop")))),
        f"python3 -m paintdoc.batch (local cluster, {cores} workers, with start-up)":
            timed(lambda: batch_summary.append(run(
                [sys.executable, "-m", "paintdoc.batch", str(inputs), "-o", str(fresh("batch")),
                 "-s", str(SIZE)], PYTHONPATH=str(build / "python")))),
    }
    print(f"{count} documents, thumbnails of {SIZE}, {cores} cores")
    for label, seconds in results.items():
        print(f"  {label:<70} {seconds:6.2f} s  {count / seconds:7.0f} documents/s")
    print(f"  the batch's own summary (cluster running): {batch_summary[0].strip()}")
    one_core = results["paintdoc thumbnail -o (1 core)"]
    loop = results["python loop (1 thread, in process)"]
    print(f"  python path's cost a file over the tool's, one core: "
          f"{(loop - one_core) / count * 1e6:.0f} us")
    shutil.rmtree(work)


if __name__ == "__main__":
    main()
