#!/usr/bin/env python3
"""Expected values for the single-precision geometry functions.

Computes each value straight from the rules the geometry code follows, rounding
through 32-bit floats with `struct` wherever those rules work in single
precision, and writes one line per case:

    <case name> <number> <number> ...

Numbers are written with repr(), so they read back as the same doubles.
Run from anywhere:  python3 tests/geometry/make_geometry_fixtures.py
It rewrites tests/data/geometry/single_precision_fixtures.txt.
"""

import math
import os
import struct

INF = float("inf")


def f32(x):
    """x rounded to the nearest 32-bit float (as a Python float)."""
    return struct.unpack("<f", struct.pack("<f", x))[0]


# ---------------------------------------------------------------- curves

STEPS = 2000


def cubic_bezier(t, a, b, c, d):
    """Evaluated in double from single-precision inputs, rounded to single."""
    s, a, b, c, d = f32(t), f32(a), f32(b), f32(c), f32(d)
    u = 1.0 - s
    return f32(u * u * u * a + 3.0 * u * u * s * b + 3.0 * u * s * s * c + s * s * s * d)


def cubic_point(t, p0, p1, p2, p3):
    return (cubic_bezier(t, p0[0], p1[0], p2[0], p3[0]),
            cubic_bezier(t, p0[1], p1[1], p2[1], p3[1]))


def sample_t(i):
    return f32(f32(i) / f32(STEPS))  # i / 2000 in single precision


def distance(a, b):
    dx = b[0] - a[0]
    dy = b[1] - a[1]
    return math.sqrt(dx * dx + dy * dy)


def cubic_length(p0, p1, p2, p3):
    total = 0.0
    prev = cubic_point(sample_t(0), p0, p1, p2, p3)
    for i in range(1, STEPS + 1):
        cur = cubic_point(sample_t(i), p0, p1, p2, p3)
        total += distance(prev, cur)
        prev = cur
    return total


def new_record():
    return {"total": 0.0, "index": 0, "start": (0.0, 0.0), "before": 0.0,
            "step": 0, "curve_len": 0.0, "tangent": (0.0, 0.0), "curve_pt": (0.0, 0.0)}


def cubic_length_target(p0, p1, p2, p3, rec, target):
    step, length = 0, 0.0
    if rec is not None and target >= rec["curve_len"]:
        step, length = rec["step"], rec["curve_len"]
        if step > STEPS:
            return length
    first = step
    prev = None
    while step <= STEPS:
        cur = cubic_point(sample_t(step), p0, p1, p2, p3)
        if step > first:
            length += distance(prev, cur)
        prev = cur
        if target <= length:
            if rec is not None and rec["step"] < step:
                rec["step"], rec["curve_len"], rec["curve_pt"] = step, length, cur
            return -1.0
        step += 1
    return length


def curve_tangent_inline(t, p0, p1, p2, p3):
    """The curve's point at 0.9 t with every operation in single precision."""
    s = f32(t * 0.9)
    u = f32(1.0 - s)
    w0 = f32(f32(u * u) * u)
    w1 = f32(f32(f32(3.0 * u) * u) * s)
    w2 = f32(f32(f32(3.0 * u) * s) * s)
    w3 = f32(f32(s * s) * s)

    def coord(k):
        acc = f32(w0 * f32(p0[k]))
        acc = f32(acc + f32(w1 * f32(p1[k])))
        acc = f32(acc + f32(w2 * f32(p2[k])))
        return f32(acc + f32(w3 * f32(p3[k])))
    return coord(0), coord(1)


def interpolate_element(kind, pts, current, start, t):
    """(point, tangent) at fraction t of one element."""
    if kind == "move":
        return current, (INF, INF)
    if kind in ("line", "close"):
        end = pts[0] if kind == "line" else start
        d = (end[0] - current[0], end[1] - current[1])
        return (current[0] + d[0] * t, current[1] + d[1] * t), d
    p = cubic_point(t, current, pts[0], pts[1], pts[2])
    q = curve_tangent_inline(t, current, pts[0], pts[1], pts[2])
    return p, (p[0] - q[0], p[1] - q[1])


# ---------------------------------------------------------------- paths
# A path is a list of (kind, points): ("move", [p]), ("line", [p]),
# ("curve", [c1, c2, end]), ("close", []).


def path_line_length(path):
    total = f32(0.0)
    current = (INF, INF)
    start = (INF, INF)
    for kind, pts in path:
        if kind == "move":
            current = start = pts[0]
        elif kind == "line":
            total = f32(total + distance(current, pts[0]))
            current = pts[0]
        elif kind == "curve":
            total = f32(total + cubic_length(current, *pts))
            current = pts[0]  # the first control point, not the end
        else:
            total = f32(total + distance(current, start))
            start = (INF, INF)
    return total


def point_at_percent(path, fraction, rec=None):
    if not path:
        return (INF, INF)
    if fraction <= f32(1e-5):
        return path[0][1][0]
    if rec is None:
        rec = new_record()
    total = rec["total"] if rec["total"] > 0 else path_line_length(path)
    target = total * fraction
    so_far = rec["before"]
    current = (INF, INF)
    start = (0.0, 0.0)
    for i, (kind, pts) in enumerate(path):
        seg = 0.0
        if kind == "move":
            start = pts[0]
        elif kind == "line":
            seg = distance(current, pts[0])
        elif kind == "close":
            seg = distance(current, start)
        else:
            if i != rec["index"]:
                rec["step"], rec["curve_len"] = 0, 0.0
            on_curve = target - so_far
            result = cubic_length_target(current, pts[0], pts[1], pts[2], rec, on_curve)
            if result < 0:
                rec["start"], rec["index"], rec["before"] = start, i, so_far
                local = new_record()
                cubic_length_target(current, pts[0], pts[1], pts[2], local, on_curve * 0.95)
                p1 = local["curve_pt"]
                reached = cubic_length_target(current, pts[0], pts[1], pts[2], local,
                                              on_curve * 1.05) < 0
                p2 = local["curve_pt"] if reached else pts[2]
                rec["tangent"] = (p2[0] - p1[0], p2[1] - p1[1])
                return rec["curve_pt"]
            seg = result
        after = so_far + seg
        if kind != "curve" and target <= after and seg > 0:
            rec["start"], rec["index"], rec["before"] = start, i, so_far
            point, tangent = interpolate_element(kind, pts, current, start,
                                                 (target - so_far) / seg)
            rec["tangent"] = tangent
            return point
        if kind == "close":
            current = start
        elif kind == "curve":
            current = pts[2]
        else:
            current = pts[0]
        so_far = after
    return (INF, INF)


# ---------------------------------------------------------------- ellipse


def point_in_ellipse(degrees, rect):
    x, y, w, h = rect
    a, b = w / 2, h / 2
    if a < 1 or b < 1:
        return (x + w / 2, y + h / 2)
    af, bf = f32(a), f32(b)
    t = f32(degrees)
    while t < 0:
        t = f32(t + 360)
    while t >= 360:
        t = f32(t - 360)
    r = f32(af / bf)
    if r > 1:
        r = f32(1 / r)
    if r <= 0.99 and int(t) % 90 != 0:
        one_minus_r = f32(1 - r)
        goal = None
        if af <= bf:
            if 45 < t < 135:
                goal = 90
            elif 225 < t < 315:
                goal = 270
        else:
            if 135 < t < 225:
                goal = 180
            elif t > 315:
                goal = 360
            elif t < 45:
                t = f32(t - f32(one_minus_r * t))
        if goal is not None:
            t = f32(t + f32(f32(goal - t) * one_minus_r))
    if abs(t - 0) < 0.01:
        return (x + w, y + h / 2)
    if abs(t - 90) < 0.01:
        return (x + w / 2, y + h)
    if abs(t - 180) < 0.01:
        return (x, y + h / 2)
    if abs(t - 270) < 0.01:
        return (x + w / 2, y)
    radians = f32(f32(t / 180) * f32(3.1415926))
    q = f32(math.tan(radians))
    p = f32(math.sqrt(f32(1 / f32(f32(f32(q * q) / f32(bf * bf)) + f32(1 / f32(af * af))))))
    if 90 < t < 270:
        p = -p
    return (x + a + p, y + b + f32(q * p))


# ---------------------------------------------------------------- arcs and arrows


def arc_angle(center, radius, point):
    dx = f32(point[0] - center[0])
    if dx <= 0.5 - radius:
        return 180.0
    if abs(dx) < 0.5:
        return 90.0 if point[1] > center[1] else 270.0
    if dx >= radius:
        return 0.0
    radians = f32(math.acos(f32(dx / radius)))
    degrees = f32(f32(radians * 180) / f32(3.1415926))
    return f32(360 - degrees) if point[1] <= center[1] else degrees


def arrow_path(start, end, w):
    """The four points of the head, or None. Single-precision sizes; the
    mapping onto the axis is a plain rotation in double precision."""
    k = f32(0.57735026)
    w = f32(w)
    head = f32(f32(2 * w) / k)
    half_base = f32(2 * w)
    over = f32(f32(w * 0.5) / k)
    reach = f32(w / k)
    if abs(start[0] - end[0]) < 0.5:
        if head > reach + abs(start[1] - end[1]):
            return None
        up = start[1] <= end[1]
        tip_y = end[1] + over if up else end[1] - over
        base_y = tip_y - head if up else tip_y + head
        return [(end[0], tip_y), (end[0] - half_base, base_y),
                (end[0] + half_base, base_y), (end[0], tip_y)]
    angle = f32(math.atan(f32((end[1] - start[1]) / (end[0] - start[0]))))
    c, s = math.cos(-angle), math.sin(-angle)
    dx, dy = end[0] - start[0], end[1] - start[1]
    ex, ey = c * dx - s * dy, s * dx + c * dy
    if head > reach + abs(0 - ex):
        return None
    tip_x = ex + over if ex > 0 else ex - over
    base_x = tip_x - head if ex > 0 else tip_x + head
    local = [(tip_x, ey), (base_x, half_base), (base_x, -half_base), (tip_x, ey)]
    # back: rotate by +angle, then translate by start
    cb, sb = math.cos(angle), math.sin(angle)
    return [(cb * px - sb * py + start[0], sb * px + cb * py + start[1]) for px, py in local]


def point_before_rotate(a, b, degrees):
    if degrees == 0:
        return a, b
    cx = f32(f32(f32(a[0]) + f32(b[0])) / 2)
    cy = f32(f32(f32(a[1]) + f32(b[1])) / 2)
    r = math.radians(-f32(degrees))
    c, s = math.cos(r), math.sin(r)

    def rot(p):
        dx, dy = p[0] - cx, p[1] - cy
        return (c * dx - s * dy + cx, s * dx + c * dy + cy)
    return rot(a), rot(b)


# ---------------------------------------------------------------- cases

# The curve most cases use: an S-shaped cubic.
S_CURVE = [(10.0, 20.0), (40.3, 95.7), (120.1, -30.2), (150.0, 60.0)]
# A curve whose control points and end lie off the float grid.
ODD_CURVE = [(0.1, 0.2), (33.33333, 0.7), (66.66667, 100.3), (99.9, 100.1)]


def emit(out, name, *values):
    flat = []
    for v in values:
        if isinstance(v, (tuple, list)):
            flat.extend(v)
        else:
            flat.append(v)
    out.append(name + " " + " ".join(repr(float(v)) for v in flat))


def main():
    out = []

    for i, (t, a, b, c, d) in enumerate([(0.3, 1.0, 2.0, 3.0, 4.0),
                                         (0.1234567, 0.1, 17.3, -5.9, 1000.01),
                                         (0.0, 3.3, 1.0, 1.0, 7.7),
                                         (1.0, 3.3, 1.0, 1.0, 7.7),
                                         (0.5, -1e6, 1e6, -1e6, 1e6)]):
        emit(out, "cubic_bezier_%d" % i, t, a, b, c, d, cubic_bezier(t, a, b, c, d))

    for i, t in enumerate([0.25, 0.7777777, 1.0 / 3.0]):
        emit(out, "cubic_point_s_%d" % i, t, cubic_point(t, *S_CURVE))
        emit(out, "cubic_point_odd_%d" % i, t, cubic_point(t, *ODD_CURVE))

    emit(out, "cubic_length_s", cubic_length(*S_CURVE))
    emit(out, "cubic_length_odd", cubic_length(*ODD_CURVE))

    # One record carried through a rising target, then a smaller one.
    rec = new_record()
    for i, target in enumerate([30.0, 75.5, 75.5, 20.0, 1e9]):
        result = cubic_length_target(*S_CURVE, rec, target)
        emit(out, "length_target_%d" % i, target, result, rec["step"], rec["curve_len"],
             rec["curve_pt"])

    # pointAtPercent tangent on a curve (interpolation of a curve element).
    for i, t in enumerate([0.5, 0.05]):
        p, tangent = interpolate_element("curve", S_CURVE[1:], S_CURVE[0], (0.0, 0.0), t)
        emit(out, "interpolate_curve_%d" % i, t, p, tangent)

    move_curve_line = [("move", [S_CURVE[0]]), ("curve", S_CURVE[1:]),
                       ("line", [(200.0, 10.0)])]
    emit(out, "path_length_move_curve_line", path_line_length(move_curve_line))
    closed = [("move", [(0.0, 0.0)]), ("line", [(3.0, 0.0)]), ("line", [(3.0, 4.0)]),
              ("close", []), ("line", [(10.0, 4.0)])]
    emit(out, "path_length_close_keeps_point", path_line_length(closed))

    # Glyph-style layout: one record over a path of two curves.
    two_curves = [("move", [S_CURVE[0]]), ("curve", S_CURVE[1:]),
                  ("curve", [(180.0, 100.0), (220.0, 0.0), (260.0, 50.0)])]
    rec = new_record()
    for i in range(1, 10):
        f = i / 10
        p = point_at_percent(two_curves, f, rec)
        emit(out, "layout_two_curves_%d" % i, f, p, rec["tangent"], rec["index"], rec["before"])
    # The same fractions with a fresh record each time (no carried length).
    for i in range(1, 10):
        f = i / 10
        rec = new_record()
        p = point_at_percent(two_curves, f, rec)
        emit(out, "fresh_two_curves_%d" % i, f, p, rec["tangent"], rec["index"])
    # A line then a curve then a close.
    mixed = [("move", [(0.0, 0.0)]), ("line", [(50.0, 0.0)]),
             ("curve", [(60.0, 30.0), (90.0, 30.0), (100.0, 0.0)]), ("close", [])]
    for i, f in enumerate([0.2, 0.5, 0.95]):
        rec = new_record()
        p = point_at_percent(mixed, f, rec)
        emit(out, "mixed_path_%d" % i, f, p, rec["tangent"], rec["index"])

    rect_wide = (10.0, 20.0, 100.0, 40.0)
    rect_tall = (-5.0, 3.0, 30.0, 70.0)
    rect_circle = (0.0, 0.0, 50.0, 50.0)
    for name, rect in [("wide", rect_wide), ("tall", rect_tall), ("circle", rect_circle)]:
        for angle in [30.0, 60.0, 100.0, 170.0, 200.0, 250.0, 300.0, 330.0, -30.0, 725.5]:
            emit(out, "ellipse_%s_%s" % (name, repr(angle)), angle, rect,
                 point_in_ellipse(angle, rect))

    center, radius = (100.0, 50.0), 20.0
    for i, p in enumerate([(100.0, 90.0), (100.2, 10.0), (70.0, 50.0), (130.0, 50.0),
                           (110.0, 60.0), (90.0, 40.0), (119.7, 49.0), (80.6, 51.0)]):
        emit(out, "arc_angle_%d" % i, p, arc_angle(center, radius, p))

    for i, (s, e, w) in enumerate([((0.0, 0.0), (100.0, 30.0), 3.0),
                                   ((100.0, 30.0), (0.0, 0.0), 2.5),
                                   ((5.0, 5.0), (5.3, 80.0), 4.0),
                                   ((5.0, 80.0), (5.0, 5.0), 1.0),
                                   ((-20.0, 7.0), (-70.0, -33.0), 0.7)]):
        pts = arrow_path(s, e, w)
        emit(out, "arrow_%d" % i, s, e, w, [c for p in pts for c in p])

    for i, (a, b, deg) in enumerate([((10.1, 20.2), (30.3, 40.4), 30.0),
                                     ((0.0, 0.0), (100.0, 0.0), 90.0),
                                     ((1e7 + 0.3, 2.0), (1e7 + 0.6, 4.0), -45.0)]):
        ra, rb = point_before_rotate(a, b, deg)
        emit(out, "before_rotate_%d" % i, a, b, deg, ra, rb)

    here = os.path.dirname(os.path.abspath(__file__))
    target = os.path.join(here, "..", "data", "geometry", "single_precision_fixtures.txt")
    with open(target, "w") as f:
        f.write("# Written by tests/geometry/make_geometry_fixtures.py; do not edit.\n")
        f.write("\n".join(out) + "\n")
    print("wrote %d cases to %s" % (len(out), os.path.normpath(target)))


if __name__ == "__main__":
    main()
