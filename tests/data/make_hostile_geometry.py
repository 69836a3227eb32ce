#!/usr/bin/env python3
"""Writes small documents whose geometry is costly to draw, one a file.

Each holds one layer on a canvas: a spiral of curves that overlaps itself
thousands of times, 100,000 lines to random points, a star of 20,000 spikes
filled even-odd, a gradient of 100,000 stops, a dash pattern of 0.01 units
along long lines. The preview must refuse each with a one-line reason or
draw it quickly; these are its fuzz seeds and timing inputs.

  make_hostile_geometry.py OUTDIR            write every case to OUTDIR
  make_hostile_geometry.py OUTDIR NAME...    write the named cases only

The fuzz seeds (the smaller cases, a kind each) are written with
  make_hostile_geometry.py fuzz/corpus/preview_path --seeds
"""
import math
import os
import random
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from keyed_archive_tool import Archive, RECTANGLE, container  # noqa: E402

MOVE, LINE, CURVE, CLOSE = 0, 1, 2, 3


def spiral_records(elements, center):
    """Curves along a spiral whose radius grows 0.005 a step, each curve's
    control points 5 units off its ends, so that neighbouring turns overlap."""
    cx, cy = center
    step_angle = 0.05
    records = [(MOVE, cx, cy)]
    for i in range(elements):
        a0, a1 = i * step_angle, (i + 1) * step_angle
        r0, r1 = 0.005 * i, 0.005 * (i + 1)
        x0, y0 = cx + r0 * math.cos(a0), cy + r0 * math.sin(a0)
        x1, y1 = cx + r1 * math.cos(a1), cy + r1 * math.sin(a1)
        records += [(CURVE, x0 + 5 * math.cos(a0), y0 + 5 * math.sin(a0)),
                    (CURVE, x1 - 5 * math.cos(a1), y1 - 5 * math.sin(a1)),
                    (CURVE, x1, y1)]
    return records


def random_line_records(elements, width, height):
    rng = random.Random(23)
    records = [(MOVE, rng.uniform(0, width), rng.uniform(0, height))]
    records += [(LINE, rng.uniform(0, width), rng.uniform(0, height)) for _ in range(elements)]
    return records


def star_records(spikes, center, radius):
    """A closed polygon whose every vertex lies 0.499 of a turn past the last."""
    cx, cy = center
    records = []
    for i in range(spikes):
        angle = 2 * math.pi * 0.499 * i
        records.append((MOVE if i == 0 else LINE,
                        cx + radius * math.cos(angle), cy + radius * math.sin(angle)))
    records += [(CLOSE, records[0][1], records[0][2]), (MOVE, records[0][1], records[0][2])]
    return records


def zigzag_records(lines, width, height):
    records = [(MOVE, 0, 0)]
    for i in range(1, lines + 1):
        records.append((LINE, width if i % 2 else 0, height * i / lines))
    return records


def document(size, make_layer):
    """A container around a canvas of `size` holding the one layer."""
    a = Archive()
    layer = make_layer(a)
    root = a.instance(("PaintManager", "NSObject"), {
        "CanvasSize": a.add("{%d, %d}" % size),
        "DrawsArray": a.array([layer]),
    })
    return container(a.bytes({"root": root}))


def path_layer(records, stroke=True, fill=True, shadow=True, line_width=1.0, **path_fields):
    def make(a):
        fields = {"BezierPath": a.path(records, line_width=line_width, **path_fields),
                  "EnableStroke": stroke, "ForeColor": a.color(0.1, 0.2, 0.6),
                  "EnableFill": fill, "IsFillWithGdt": False, "BackColor": a.color(1, 0.8, 0.2)}
        if shadow:
            fields["EnableShadow"] = True
            fields["Shadow"] = a.shadow(4.0, -4.0, 6.0, a.color(0, 0, 0, 0.5))
        return a.instance(RECTANGLE, fields)
    return make


def gradient_layer(stops):
    """A rectangle filled with a gradient of `stops` colours, evenly spaced
    (no locations), cycling through a few colours that the stops share."""
    def make(a):
        palette = [a.color(*rgb) for rgb in
                   [(1, 0, 0), (1, 1, 0), (0, 1, 0), (0, 1, 1), (0, 0, 1), (1, 0, 1)]]
        colors = a.array(palette[i * len(palette) // stops] for i in range(stops))
        gradient = a.instance(("NSGradient", "NSObject"), {"NSColors": colors})
        return a.instance(RECTANGLE, {
            "BezierPath": a.rect_path(50, 50, 1900, 1400, line_width=1.0),
            "EnableStroke": False, "EnableFill": True, "IsFillWithGdt": True,
            "FillGdtDegree": 0.0, "FillGradient": gradient})
    return make


def spiral(elements, stroke=True, fill=True, shadow=True):
    return document((300, 300), path_layer(spiral_records(elements, (150, 150)), stroke=stroke,
                                           fill=fill, shadow=shadow, line_width=3))


CASES = {
    "spiral-20000": lambda: spiral(20000),
    "spiral-20000-fill": lambda: spiral(20000, stroke=False),
    "spiral-20000-stroke": lambda: spiral(20000, fill=False),
    "spiral-20000-no-shadow": lambda: spiral(20000, shadow=False),
    "spiral-5000": lambda: spiral(5000),
    "spiral-5000-fill": lambda: spiral(5000, stroke=False),
    "spiral-5000-stroke": lambda: spiral(5000, fill=False),
    "spiral-50000": lambda: spiral(50000),
    "random-lines-100000": lambda: document(
        (4000, 3000), path_layer(random_line_records(100000, 4000, 3000), shadow=False)),
    "random-lines-20000": lambda: document(
        (4000, 3000), path_layer(random_line_records(20000, 4000, 3000), shadow=False)),
    "star-20000": lambda: document(
        (2000, 2000), path_layer(star_records(20000, (1000, 1000), 950), stroke=False,
                                 shadow=False, even_odd=True)),
    "gradient-100000": lambda: document((2000, 1500), gradient_layer(100000)),
    "fine-dash": lambda: document(
        (2000, 2000), path_layer(zigzag_records(200, 2000, 2000), fill=False, shadow=False,
                                 dash=[0.01, 0.01])),
}


# Seeds stay small, so that the fuzzer runs each often: the spiral that
# crashed cairo at full size, its smaller variants, and one of each other kind.
SEEDS = ["spiral-20000", "spiral-5000", "spiral-5000-fill", "spiral-5000-stroke",
         "random-lines-20000", "star-20000", "gradient-100000", "fine-dash"]


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    out = sys.argv[1]
    os.makedirs(out, exist_ok=True)
    seeds = sys.argv[2:] == ["--seeds"]
    prefix = "hostile-" if seeds else ""
    for name in SEEDS if seeds else sys.argv[2:] or CASES:
        with open(os.path.join(out, prefix + name + ".paintdoc"), "wb") as f:
            f.write(CASES[name]())


if __name__ == "__main__":
    main()
