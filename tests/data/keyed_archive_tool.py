#!/usr/bin/env python3
"""An independent writer and reader of paint documents for the tests.

It builds keyed archives by hand with plistlib (binary or XML property lists,
UIDs, $objects, $classes chains) without any of the library's code, so that
the library's reader is checked against a second implementation, and it
dumps what the library's writer produced.

  keyed_archive_tool.py write SCENARIO OUT   write one of the scenarios below
  keyed_archive_tool.py dump FILE            print the canvas archive as JSON
"""
import json
import plistlib
import struct
import sys
import zlib
from plistlib import UID


class Archive:
    def __init__(self):
        self.objects = ["$null"]
        self.classes = {}

    def add(self, value):
        self.objects.append(value)
        return UID(len(self.objects) - 1)

    def reserve(self):
        """A place for an object filled in later (by instance(..., uid=)),
        so that an object can refer to itself."""
        return self.add(None)

    def class_of(self, *chain):
        if chain not in self.classes:
            self.classes[chain] = self.add({"$classname": chain[0], "$classes": list(chain)})
        return self.classes[chain]

    def instance(self, chain, fields, uid=None):
        record = {"$class": self.class_of(*chain), **fields}
        if uid is None:
            return self.add(record)
        self.objects[uid.data] = record
        return uid

    def array(self, uids):
        return self.instance(("NSMutableArray", "NSArray", "NSObject"), {"NS.objects": list(uids)})

    def color(self, r, g, b, a=1.0):
        text = "%.10g %.10g %.10g" % (r, g, b) + ("" if a == 1.0 else " %.10g" % a)
        return self.instance(("NSColor", "NSObject"),
                             {"NSColorSpace": 1, "NSRGB": text.encode() + b"\0"})

    def path(self, elements, line_width=None, cap=None, join=None, dash=None, even_odd=False):
        fields = {"NSSegments": segments(elements)}
        if line_width is not None:
            fields["NSLineWidth"] = float(line_width)
        if cap:
            fields["NSCapStyle"] = cap
        if join:
            fields["NSJoinStyle"] = join
        if even_odd:
            fields["NSWindingRule"] = 1
        if dash:
            fields["NSDashPatterns"] = f32(*dash)
            fields["NSDashPhase"] = 0.0
        return self.instance(("NSBezierPath", "NSObject"), fields)

    def rect_path(self, x, y, w, h, **styles):
        return self.path([(0, x, y), (1, x + w, y), (1, x + w, y + h), (1, x, y + h),
                          (3, x, y), (0, x, y)], **styles)

    def shadow(self, dx, dy, blur, color):
        return self.instance(("NSShadow", "NSObject"),
                             {"NSShadowHoriz": dx, "NSShadowVert": dy,
                              "NSShadowBlurRadius": blur, "NSShadowColor": color})

    def bytes(self, top, fmt=plistlib.FMT_BINARY, sort_keys=True):
        """The archive; with sort_keys=False each dictionary keeps the order
        it was built in, as the platform's archiver writes it."""
        archive = {"$version": 100000, "$archiver": "NSKeyedArchiver",
                   "$top": top, "$objects": self.objects}
        if fmt == plistlib.FMT_XML:
            archive = xml_form(archive)
        return plistlib.dumps(archive, fmt=fmt, sort_keys=sort_keys)


def f32(*values):
    """Big-endian 32-bit floats, as paths and transforms store them."""
    return b"".join(struct.pack(">f", v) for v in values)


def segments(records):
    """The NSSegments of a path from (type, x, y) records; a curve takes three."""
    return b"".join(struct.pack(">Bff", kind, x, y) for kind, x, y in records)


def xml_form(value):
    """XML property lists hold each UID as a dictionary {"CF$UID": n}."""
    if isinstance(value, UID):
        return {"CF$UID": value.data}
    if isinstance(value, list):
        return [xml_form(item) for item in value]
    if isinstance(value, dict):
        return {key: xml_form(item) for key, item in value.items()}
    return value


DRAW = ("DrawBase", "NSObject")
RECTANGLE = ("DrawRectangle",) + DRAW


def draws_of_document(a):
    """The layers of the main scenario, bottom first."""
    box = a.instance(RECTANGLE, {
        "BezierPath": a.rect_path(10, 20, 100, 50, line_width=3, join=2, dash=[6, 3]),
        "EnableStroke": True, "ForeColor": a.color(1, 0, 0),
        "EnableFill": True, "IsFillWithGdt": False, "BackColor": a.color(0, 0, 1, 0.5),
        "LayerTitle": "Box", "RotateDegree": 30.0,
        "EnableShadow": True, "Shadow": a.shadow(3.0, -4.0, 5.0, a.color(0, 0, 0, 0.25)),
    })
    # Only the path: every other key falls back.
    bare = a.instance(("DrawEllipse",) + RECTANGLE,
                      {"BezierPath": a.path([(0, 0, 0), (1, 40, 40)])})
    repaired = a.instance(RECTANGLE, {
        "BezierPath": a.rect_path(0, 0, 10, 10),
        "EnableFill": True, "IsFillWithGdt": True,     # no gradient: gradient fill goes off
        "EnableShadow": True, "EnableInnerShadow": True,  # no shadows: defaults
        "EnableReflection": True, "Reflection": 0.5, "ReflectionDis": -100.0,
        "Visible": False, "SmoothLine": False, "Locked": True,
    })
    unknown = a.instance(("DrawFromTheFuture",) + DRAW, {"BezierPath": a.rect_path(0, 0, 1, 1)})
    line = a.instance(("DrawLine",) + DRAW, {"BezierPath": a.path([(0, 5, 5), (1, 50, 5)]),
                                            "LayerTitle": "Member line"})
    curve = a.instance(("DrawCurve",) + DRAW, {"BezierPath": a.path(
        [(0, 0, 0), (2, 10, 30), (2, 20, 30), (2, 30, 0)]), "Visible": False})
    group = a.instance(("DrawGroup",) + DRAW, {"EnableStroke": False, "EnableFill": False,
                                              "Draws": a.array([line, curve])})
    return [box, bare, repaired, unknown, group]


def canvas_archive(root_is_canvas=True, fmt=plistlib.FMT_BINARY):
    a = Archive()
    if root_is_canvas:
        root = a.instance(("PaintManager", "NSObject"), {
            "CanvasSize": a.add("{300, 200}"),
            "DrawsArray": a.array(draws_of_document(a)),
            "HasBackground": True,  # but the first layer is no image
            "MaskWithBackground": True,
        })
    else:
        root = a.instance(RECTANGLE, {"BezierPath": a.rect_path(0, 0, 5, 5)})
    return a.bytes({"root": root}, fmt)


def container(paint_data, version=10, resolution=True, fmt=plistlib.FMT_BINARY):
    a = Archive()
    top = {"PaintData": a.add(paint_data)}
    if resolution:
        top["Resolution"] = 72.0
    if version is not None:
        top["Version"] = version
    return a.bytes(top, fmt)


# --- image layers: the bitmap forms the platform writes, built by hand

def tiff(width, height, pixels, big_endian=True, dpi=None, claim=None):
    """An uncompressed, chunky RGBA TIFF with associated (premultiplied) alpha,
    one row a strip, as the platform writes it. `pixels(x, y)` gives straight
    (r, g, b, a) with y the row from the top. `claim` = (width, height) writes
    a directory claiming that size over the same few bytes of pixels."""
    e = ">" if big_endian else "<"
    rows = []
    for y in range(height):
        row = b""
        for x in range(width):
            r, g, b, a = pixels(x, y)
            row += bytes((r * a + 127) // 255 for r in (r, g, b)) + bytes((a,))
        rows.append(row)
    claimed_w, claimed_h = claim or (width, height)
    data_start = 8
    offsets, at = [], data_start
    for row in rows:
        offsets.append(at)
        at += len(row)
    if claim:
        offsets = [data_start] * claimed_h
        counts = [len(rows[0])] * claimed_h
    else:
        counts = [len(row) for row in rows]
    short, long_, rational = 3, 4, 5
    entries = [
        (256, long_, [claimed_w]), (257, long_, [claimed_h]), (258, short, [8, 8, 8, 8]),
        (259, short, [1]), (262, short, [2]), (266, short, [1]), (273, long_, offsets),
        (274, short, [1]), (277, short, [4]), (278, long_, [1]), (279, long_, counts),
        (284, short, [1]), (296, short, [2]), (338, short, [1]), (339, short, [1, 1, 1, 1]),
    ]
    if dpi:
        entries += [(282, rational, [(dpi, 1)]), (283, rational, [(dpi, 1)])]
    entries.sort()
    pixel_data = b"".join(rows)
    extra_start = data_start + len(pixel_data)
    extra = b""
    fields = []
    for tag, kind, values in entries:
        if kind == short:
            packed = b"".join(struct.pack(e + "H", v) for v in values)
        elif kind == long_:
            packed = b"".join(struct.pack(e + "I", v) for v in values)
        else:
            packed = b"".join(struct.pack(e + "II", n, d) for n, d in values)
        if len(packed) <= 4:
            value = packed.ljust(4, b"\0")
        else:
            value = struct.pack(e + "I", extra_start + len(extra))
            extra += packed
        fields.append(struct.pack(e + "HHI", tag, kind, len(values)) + value)
    directory = extra_start + len(extra)
    directory += directory % 2
    header = (b"MM" if big_endian else b"II") + struct.pack(e + "HI", 42, directory)
    body = header + pixel_data + extra
    body = body.ljust(directory, b"\0")
    return (body + struct.pack(e + "H", len(fields)) + b"".join(fields) +
            struct.pack(e + "I", 0))


def png(width, height, pixels):
    """An 8-bit RGBA PNG of straight colours (zlib and struct only)."""
    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data +
                struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF))
    raw = b"".join(b"\0" + b"".join(bytes(pixels(x, y)) for x in range(width))
                   for y in range(height))
    return (b"\x89PNG\r\n\x1a\n" +
            chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b""))


IMAGE = ("DrawImage",) + RECTANGLE
BITMAP_REP = ("NSBitmapImageRep", "NSImageRep", "NSObject")


def background_pixels(x, y):
    return (x * 6, y * 8, 200, 255)


def layer_pixels(x, y):
    return (255, 0, 0, 255) if x < 4 else (0, 0, 255, 128)


def image_canvas(claim=None):
    a = Archive()

    def bitmap_rep(data):
        return a.instance(BITMAP_REP, {"NSTIFFRepresentation": a.add(data),
                                       "NSInternalLayoutDirection": 0})

    def layer(bounds, image, opacity=None):
        fields = {"BezierPath": a.rect_path(*bounds, line_width=1.0), "EnableStroke": False,
                  "EnableFill": True, "Image": image}
        if opacity is not None:
            fields["Opacity"] = opacity
        return a.instance(IMAGE, fields)

    background = layer((0, 0, 40, 30), bitmap_rep(
        tiff(40, 30, background_pixels, claim=claim)), 1.0)
    clear = a.instance(("NSColor", "NSObject"), {"NSColorSpace": 3, "NSWhite": b"0 0\0"})
    wrapped = a.instance(("NSImage", "NSObject"), {
        "NSReps": a.instance(("NSMutableArray", "NSArray", "NSObject"), {
            "NS.objects": [a.add([0, bitmap_rep(png(8, 6, layer_pixels))])]}),
        "NSSize": a.add("{8, 6}"), "NSColor": clear, "NSImageFlags": 0x20C00000,
        "NSResizingMode": 0})
    faded = layer((10, 10, 16, 12), wrapped, 0.5)
    retina = layer((30, 2, 4, 4), bitmap_rep(
        tiff(4, 4, lambda x, y: (0, 255, 0, 255), big_endian=False, dpi=144)))
    root = a.instance(("PaintManager", "NSObject"), {
        "CanvasSize": a.add("{40, 30}"),
        "DrawsArray": a.array([background, faded, retina]),
        "HasBackground": True,
        "MaskWithBackground": False,
    })
    return a.bytes({"root": root})


SCENARIOS = {
    "document": lambda: container(canvas_archive()),
    "document-xml": lambda: container(canvas_archive(fmt=plistlib.FMT_XML), fmt=plistlib.FMT_XML),
    "version-11": lambda: container(canvas_archive(), version=11),
    "no-version": lambda: container(canvas_archive(), version=None),
    "no-resolution": lambda: container(canvas_archive(), resolution=False),
    "root-not-canvas": lambda: container(canvas_archive(root_is_canvas=False)),
    "root-past-objects": lambda: container(Archive().bytes({"root": plistlib.UID(27)})),
    "images": lambda: container(image_canvas()),
    "image-claiming-60000": lambda: container(image_canvas(claim=(60000, 60000))),
}


def plain(value, objects, depth=0, raw_bytes=False):
    """A JSON-friendly view of an archived value, following UIDs; objects
    become dictionaries with "$class" their class name."""
    if isinstance(value, UID):
        target = objects[value.data]
        if isinstance(target, dict) and "$class" in target and depth < 64:
            record = {"$class": objects[target["$class"].data]["$classname"]}
            for key, item in target.items():
                if key != "$class":
                    record[key] = plain(item, objects, depth + 1, raw_bytes)
            return record
        return plain(target, objects, depth + 1, raw_bytes) if target != "$null" else None
    if isinstance(value, bytes) and not raw_bytes:
        return {"$bytes": len(value)}
    if isinstance(value, list):
        return [plain(item, objects, depth + 1, raw_bytes) for item in value]
    if isinstance(value, dict):
        return {key: plain(item, objects, depth + 1, raw_bytes) for key, item in value.items()}
    return value


def dump(path):
    with open(path, "rb") as f:
        outer = plistlib.load(f)
    top = outer["$top"]
    inner = plistlib.loads(outer["$objects"][top["PaintData"].data])
    result = {"container": {key: (plain(value, outer["$objects"]) if key != "PaintData" else "data")
                            for key, value in top.items()},
              "classes": sorted({o["$classname"]: o["$classes"] for o in inner["$objects"]
                                 if isinstance(o, dict) and "$classname" in o}.items()),
              "canvas": plain(inner["$top"]["root"], inner["$objects"])}
    json.dump(result, sys.stdout, sort_keys=True)


def main():
    if len(sys.argv) == 4 and sys.argv[1] == "write":
        with open(sys.argv[3], "wb") as f:
            f.write(SCENARIOS[sys.argv[2]]())
    elif len(sys.argv) == 3 and sys.argv[1] == "dump":
        dump(sys.argv[2])
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main()
