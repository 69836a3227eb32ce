#!/usr/bin/env python3
"""Times Python's plistlib on the documents the archive benchmark reads:
the outer container, then the inner archive held in its "PaintData".

    archive_read_python.py FILE...
"""
import plistlib
import sys
import time


def read_document(raw):
    outer = plistlib.loads(raw)
    inner = plistlib.loads(outer["$objects"][outer["$top"]["PaintData"].data])
    return len(inner["$objects"])


def main():
    for path in sys.argv[1:]:
        raw = open(path, "rb").read()
        best = float("inf")
        for _ in range(3):
            start = time.perf_counter()
            objects = read_document(raw)
            best = min(best, time.perf_counter() - start)
        print(f"python3 plistlib.loads  {path}: {best * 1000:.1f} ms "
              f"(best of 3, {len(raw) / 1e6:.1f} MB, {objects} inner objects)")


if __name__ == "__main__":
    main()
