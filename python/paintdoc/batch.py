"""Thumbnails of many files on a Dask distributed cluster.

    python3 -m paintdoc.batch INPUT... -o DIR [--size N] [--scheduler ADDRESS]

Each INPUT is a file, or a folder whose files are all taken. DIR receives
<input file name>.png for every file drawn, as `paintdoc thumbnail FILE...
-o DIR` writes it. Without --scheduler a local cluster of one worker process
a core is started; with it, the batch runs on that cluster, whose workers
must import `paintdoc` and see the inputs and DIR at the same paths.

Only paths travel to the workers: they read the files and write the PNGs
themselves, each through a temporary file renamed into place. A file that
cannot be drawn or written is reported on stderr and in the summary, and the
batch goes on. Exits 0 when every thumbnail was written, 3 when any could
not be written, else 1 when any file was refused, 2 on bad arguments.
"""
from __future__ import annotations

import argparse
import dataclasses
import math
import os
import sys
import time
from typing import Dict, Iterable, List, Optional, Sequence

import paintdoc

EXIT_SUCCESS, EXIT_REFUSED, EXIT_USAGE, EXIT_NOT_WRITTEN = 0, 1, 2, 3

WRITTEN, REFUSED, NOT_WRITTEN = "written", "refused", "not written"


@dataclasses.dataclass(frozen=True)
class Job:
    input: str  # as named, for the report
    output: str  # absolute
    source: str = ""  # the input's absolute path, which workers elsewhere can use
    clash: str = ""  # set when another input already owns the output name


@dataclasses.dataclass(frozen=True)
class Result:
    input: str
    outcome: str  # WRITTEN, REFUSED or NOT_WRITTEN
    line: str = ""  # "INPUT: reason" unless written


@dataclasses.dataclass
class Summary:
    results: List[Result]
    seconds: float

    def count(self, outcome: str) -> int:
        return sum(1 for result in self.results if result.outcome == outcome)

    def exit_status(self) -> int:
        if self.count(NOT_WRITTEN):
            return EXIT_NOT_WRITTEN
        return EXIT_REFUSED if self.count(REFUSED) else EXIT_SUCCESS

    def line(self) -> str:
        rate = len(self.results) / self.seconds if self.seconds > 0 else 0.0
        return (f"{self.count(WRITTEN)} thumbnails, {self.count(REFUSED)} refused, "
                f"{self.count(NOT_WRITTEN)} not written in {self.seconds:.1f} s ({rate:.0f} files/s)")


# --- on the workers


def thumbnail_one(job: Job, size: int) -> Result:
    if job.clash:
        return Result(job.input, NOT_WRITTEN, f"{job.input}: {job.clash}")
    try:
        document = paintdoc.open(job.source or job.input, draft=size)
        png = document._compiled.thumbnail_png(size)
    except paintdoc.Error as refusal:
        return Result(job.input, REFUSED, f"{job.input}: {refusal}")
    try:
        paintdoc.write_atomically(job.output, png)
    except OSError as failure:
        return Result(job.input, NOT_WRITTEN, f"can't write {job.output}: {failure.strerror or failure}")
    return Result(job.input, WRITTEN)


def thumbnail_chunk(jobs: Sequence[Job], size: int) -> List[Result]:
    """One task: several files, so that the scheduler's cost per task is
    shared. Nothing a file does stops the others."""
    results = []
    for job in jobs:
        try:
            results.append(thumbnail_one(job, size))
        except Exception as failure:  # noqa: BLE001 (a bug must not lose the rest)
            results.append(Result(job.input, REFUSED, f"{job.input}: {type(failure).__name__}: {failure}"))
    return results


# --- on the client


def expand_inputs(inputs: Iterable[str]) -> List[str]:
    """Files as named; a folder stands for its files (not its subfolders)."""
    files = []
    for name in inputs:
        if os.path.isdir(name):
            with os.scandir(name) as entries:
                files.extend(sorted(entry.path for entry in entries if entry.is_file()))
        else:
            files.append(name)
    return files


def folder_jobs(files: Sequence[str], folder: str) -> List[Job]:
    """DIR/<input file name>.png for each file. Two inputs of the same name
    would write the same output: the first one named keeps it."""
    owners: Dict[str, str] = {}
    jobs = []
    for name in files:
        output = os.path.join(folder, os.path.basename(name) + ".png")
        clash = ""
        if output in owners:
            clash = f"not written: {output} is the thumbnail of {owners[output]}"
        else:
            owners[output] = name
        jobs.append(Job(name, os.path.abspath(output), os.path.abspath(name), clash))
    return jobs


def chunks(jobs: Sequence[Job], workers: int) -> List[List[Job]]:
    """Enough tasks a worker for an even finish (about eight), each small
    enough that progress moves, none above 64 files."""
    per_task = max(1, min(64, math.ceil(len(jobs) / max(1, workers * 8))))
    return [list(jobs[start:start + per_task]) for start in range(0, len(jobs), per_task)]


class ProgressBar:
    """One line on stderr, drawn only when stderr is a terminal."""

    WIDTH = 40

    def __init__(self, total: int, stream=sys.stderr):
        self.total = total
        self.stream = stream
        self.enabled = total > 0 and stream.isatty()
        self.last_draw = 0.0
        self.done = 0

    def update(self, done: int) -> None:
        self.done = done
        now = time.monotonic()
        if self.enabled and (now - self.last_draw >= 0.1 or done == self.total):
            self.last_draw = now
            filled = self.WIDTH * done // self.total
            self.stream.write(f"\r[{'#' * filled}{' ' * (self.WIDTH - filled)}] {done}/{self.total}")
            self.stream.flush()

    def print_line(self, line: str) -> None:
        if self.enabled:
            self.stream.write("\r\033[K")
        self.stream.write(line + "\n")
        if self.enabled:
            self.last_draw = 0.0
            self.update(self.done)

    def finish(self) -> None:
        if self.enabled:
            self.stream.write("\r\033[K")
            self.stream.flush()


def run(client, jobs: Sequence[Job], size: int, progress: Optional[ProgressBar] = None) -> Summary:
    """Maps the jobs over the client's cluster; every job gets a result, even
    when the worker running it dies."""
    from distributed import as_completed

    started = time.monotonic()
    workers = max(1, len(client.scheduler_info().get("workers", {})))
    groups = chunks(jobs, workers)
    futures = client.map(thumbnail_chunk, groups, size=size, pure=False)
    group_of = {future.key: group for future, group in zip(futures, groups)}
    results: List[Result] = []
    for future in as_completed(futures):
        try:
            finished = future.result()
        except Exception as failure:  # noqa: BLE001 (a lost worker, a task that failed)
            reason = f"{type(failure).__name__}: {failure}"
            finished = [Result(job.input, REFUSED, f"{job.input}: not drawn: {reason}")
                        for job in group_of[future.key]]
        for result in finished:
            if progress and result.line:
                progress.print_line(f"paintdoc: {result.line}")
        results.extend(finished)
        if progress:
            progress.update(len(results))
        future.release()
    return Summary(results, time.monotonic() - started)


def local_cluster(workers: int):
    from distributed import LocalCluster

    # One single-threaded process a core: drawing holds no GIL, but separate
    # processes also keep one hostile file's memory away from the others.
    return LocalCluster(n_workers=workers, threads_per_worker=1, processes=True,
                        host="127.0.0.1", dashboard_address=None)


def parse_arguments(arguments: Sequence[str]) -> argparse.Namespace:
    parser = argparse.ArgumentParser(
        prog="python3 -m paintdoc.batch",
        description="Thumbnails of many files on a Dask distributed cluster.")
    parser.add_argument("inputs", nargs="+", metavar="INPUT", help="a file, or a folder of files")
    parser.add_argument("-o", dest="output", required=True, metavar="DIR",
                        help="where <input file name>.png goes")
    parser.add_argument("-s", "--size", type=int, default=256, metavar="N",
                        help="the square each thumbnail fits into (256)")
    parser.add_argument("--scheduler", metavar="ADDRESS",
                        help="a running cluster's scheduler, e.g. tcp://10.0.0.5:8786")
    parser.add_argument("--workers", type=int, default=os.cpu_count() or 1, metavar="N",
                        help="worker processes of the local cluster (one a core)")
    options = parser.parse_args(arguments)
    if not 1 <= options.size <= paintdoc.MAX_SIDE:
        parser.error(f"--size must be from 1 to {paintdoc.MAX_SIDE}")
    if options.workers < 1:
        parser.error("--workers must be at least 1")
    return options


def main(arguments: Optional[Sequence[str]] = None) -> int:
    options = parse_arguments(sys.argv[1:] if arguments is None else arguments)
    try:
        os.makedirs(options.output, exist_ok=True)
    except OSError as failure:
        print(f"paintdoc: can't make {options.output}: {failure.strerror}", file=sys.stderr)
        return EXIT_NOT_WRITTEN
    jobs = folder_jobs(expand_inputs(options.inputs), options.output)

    from distributed import Client

    cluster = None if options.scheduler else local_cluster(options.workers)
    try:
        with Client(options.scheduler or cluster) as client:
            progress = ProgressBar(len(jobs))
            summary = run(client, jobs, options.size, progress)
            progress.finish()
    finally:
        if cluster is not None:
            cluster.close()
    print(summary.line())
    return summary.exit_status()


if __name__ == "__main__":
    sys.exit(main())
