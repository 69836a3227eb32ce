#!/usr/bin/env python3
"""Checks a keyed archive written by the library, without the library's code.

    verify_written.py ARCHIVE.bplist ARCHIVE.xml [--structure-only]

ARCHIVE.xml is the same archive converted by plistutil. Both are loaded with
Python's plistlib and must hold the same tree; the binary's trailer and offset
table are checked (the encoding of single objects is pinned byte by byte in
archive_writer_test.cc); then every top-level key of the archive written by
archive_writer_test.cc ("WriterScenario") is resolved and compared with what
the platform's archiver would have produced. With --structure-only the
archive's own layout is checked but not its content.
"""
import os
import plistlib
import struct
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data"))
from keyed_archive_tool import f32, plain, segments, xml_form  # noqa: E402

UID = plistlib.UID
failures = []


def check(condition, message):
    if not condition:
        failures.append(message)


def byte_width(value):
    return 1 if value <= 0xFF else 2 if value <= 0xFFFF else 4 if value <= 0xFFFFFFFF else 8


def scan_binary(raw):
    """Checks the trailer and the offset table; answers the sizes each real
    value was written in, by value."""
    check(raw[:8] == b"bplist00", "header is not bplist00")
    offset_size, ref_size = raw[-26], raw[-25]
    count, top, table = struct.unpack(">QQQ", raw[-24:])
    check(ref_size == byte_width(count), f"reference size {ref_size} for {count} objects")
    check(offset_size == byte_width(table), f"offset size {offset_size} for table at {table}")
    check(top == 0, "the top object is not written first")
    offsets = [int.from_bytes(raw[table + i * offset_size: table + (i + 1) * offset_size], "big")
               for i in range(count)]
    check(offsets == sorted(offsets) and len(set(offsets)) == count, "objects overlap")
    reals = {}
    for offset in offsets:
        size = {0x22: 4, 0x23: 8}.get(raw[offset])
        if size:
            value = struct.unpack(">f" if size == 4 else ">d", raw[offset + 1: offset + 1 + size])[0]
            reals.setdefault(value, set()).add(size)
    return reals


def check_structure(root):
    check(root.get("$archiver") == "NSKeyedArchiver", "$archiver")
    check(root.get("$version") == 100000, "$version")
    objects = root["$objects"]
    check(objects[0] == "$null", "$objects[0] is not $null")
    for i, o in enumerate(objects):
        if isinstance(o, dict) and "$classname" in o:
            check(o["$classes"][0] == o["$classname"] and o["$classes"][-1] == "NSObject",
                  f"class description {i}: {o}")
    for value in objects:  # every reference points at an object
        plain(value, objects)


def check_tiff(tiff, width, height, pixels):
    """A baseline RGBA TIFF (either byte order) with premultiplied (associated) alpha."""
    order = {b"MM\x00\x2a": ">", b"II\x2a\x00": "<"}.get(tiff[:4])
    check(order is not None, "not a baseline TIFF")
    if order is None:
        return
    (ifd,) = struct.unpack(order + "I", tiff[4:8])
    (n,) = struct.unpack(order + "H", tiff[ifd: ifd + 2])
    tags = {}
    for i in range(n):
        entry = ifd + 2 + 12 * i
        tag, kind, count, value = struct.unpack(order + "HHII", tiff[entry: entry + 12])
        size = {3: 2, 4: 4, 5: 8}.get(kind, 1) * count
        raw = tiff[entry + 8: entry + 12] if size <= 4 else tiff[value: value + size]
        if kind in (3, 4, 5):
            tags[tag] = struct.unpack(order + {3: "H", 4: "I", 5: "II"}[kind] * count, raw[:size])
    # size, 8 bits a sample, no compression, RGB, 4 samples, associated alpha
    for tag, value in {256: (width,), 257: (height,), 258: (8, 8, 8, 8), 259: (1,), 262: (2,),
                       277: (4,), 338: (1,)}.items():
        check(tags.get(tag) == value, f"TIFF tag {tag} is {tags.get(tag)}, not {value}")
    check(tags.get(284, (1,)) == (1,), "TIFF is not chunky")
    strips = b"".join(tiff[o: o + c] for o, c in zip(tags.get(273, ()), tags.get(279, ())))
    check(strips == bytes(pixels), f"TIFF pixels {list(strips)}")


def scenario(objects, top, reals):
    def obj(uid):
        return objects[uid.data]

    def classes(o):
        return obj(o["$class"])["$classes"]

    def color(space, key, text):
        return {"$class": "NSColor", "NSColorSpace": space, key: text}

    def transform(struct_bytes):
        return {"$class": "NSAffineTransform", "NSTransformStruct": struct_bytes}

    red = color(1, "NSRGB", b"1 0 0\x00")
    font = {"$class": "NSFont", "NSName": "Helvetica", "NSSize": 12.0, "NSfFlags": 16}
    bold = dict(font, NSName="Helvetica-Bold")
    style = {"$class": "NSParagraphStyle", "NSAlignment": 2, "NSTabStops": None}
    tabbed = {"$class": "NSParagraphStyle", "NSTabStops": {"$class": "NSArray", "NS.objects": [
        {"$class": "NSTextTab", "NSLocation": 10.0},
        {"$class": "NSTextTab", "NSLocation": 20.0, "NSType": 1, "NSTextAlignment": 4}]},
        "NSHeadIndent": 6.0, "NSWritingDirection": 1, "NSAllowsTighteningForTruncation": 1}
    plain_run = {"$class": "NSDictionary", "NS.keys": ["NSFont", "NSParagraphStyle"],
                 "NS.objects": [font, style]}
    strong_run = {"$class": "NSDictionary",
                  "NS.keys": ["NSFont", "NSColor", "NSParagraphStyle", "NSUnderline"],
                  "NS.objects": [bold, red, tabbed, 1]}
    expected = {
        "Flag": True, "Count": 7, "Wide": 300, "Wider": 70000, "Widest": 2 ** 40,
        "Negative": -1, "Unsigned": 2 ** 63 + 1, "Float": 0.5, "Double": 0.1,
        "Bytes": b"\x00\xff", "Point": "{1.5, 2}", "Rect": "{{0, 0}, {640, 480}}",
        "Title": "Gr\u00fc\u00dfe", "Null": None,
        "Red": red,
        "HalfGray": color(3, "NSWhite", b"0.5 0.25\x00"),
        "Device": color(2, "NSRGB", b"0 0.5 1\x00"),
        "Cmyk": color(5, "NSCMYK", b"0.1 0.2 0.3 0.4 0.5\x00"),
        "SRGB": dict(color(1, "NSRGB", b"0.25 0.5 1\x00"), NSComponents=b"0.25 0.5 1 1",
                     NSCustomColorSpace={"$class": "NSColorSpace", "NSID": 7}),
        "Catalog": {"$class": "NSColor", "NSColorSpace": 6, "NSCatalogName": "System",
                    "NSColorName": "myColor", "NSColor": red},
        "Shadow": {"$class": "NSShadow", "NSShadowHoriz": 2.0, "NSShadowVert": -3.0,
                   "NSShadowBlurRadius": 4.0},
        "ShadowColored": {"$class": "NSShadow", "NSShadowHoriz": 1.0, "NSShadowColor": red},
        # The platform's layout: the move back to the start follows the close.
        "Path": {"$class": "NSBezierPath", "NSSegments": segments([
            (0, 1, 2), (1, 10, 2), (2, 12, 5), (2, 12, 15), (2, 10, 20), (3, 1, 2), (0, 1, 2)]),
            "NSCapStyle": 1, "NSLineCapStyle": 1, "NSLineWidth": 2.5},
        "DashedPath": {"$class": "NSBezierPath", "NSSegments": segments([(0, 0, 0), (1, 5, 5)]),
                       "NSWindingRule": 1, "NSJoinStyle": 2, "NSLineJoinStyle": 2,
                       "NSMiterLimit": 3.0, "NSFlatness": 0.1, "NSDashPhase": 2.0,
                       "NSDashPatterns": f32(4, 2)},
        "Translation": transform(b"\x01" + f32(10, 20)),
        "Scale": transform(b"\x02" + f32(2, 3)),
        "ScaleMove": transform(f32(2, 3, 4, 5)),
        "Rotation": transform(f32(0, 1, -1, 0, 0, 0)),
        "Identity": {"$class": "NSAffineTransform"},
        "Gradient": {"$class": "NSGradient",
                     "NSColors": {"$class": "NSArray", "NS.objects": [red, red]},
                     "NSLocations": {"$class": "NSArray", "NS.objects": [0.0, 1.0]},
                     "NSColorSpace": {"$class": "NSColorSpace", "NSID": 1}},
        "Text": {"$class": "NSTextStorage",
                 "NSString": {"$class": "NSMutableString", "NS.string": "Hello bold world"},
                 "NSAttributes": {"$class": "NSArray", "NS.objects": [plain_run, strong_run]},
                 "NSAttributeInfo": {"$class": "NSMutableData",
                                     "NS.data": bytes([6, 0, 4, 1, 6, 0])},
                 "NSDelegate": None},
        "OneRun": {"$class": "NSAttributedString", "NSString": "\u00e9t\u00e9",
                   "NSAttributes": plain_run},
        "Array": {"$class": "NSArray", "NS.objects": ["a", 1, 2.5]},
        "Dictionary": {"$class": "NSMutableDictionary", "NS.keys": ["k"], "NS.objects": [
            {"$class": "NSValue", "NS.special": 1, "NS.pointval": "{3, 4}"}]},
        "Set": {"$class": "NSSet", "NS.objects": [True]},
        "NullObject": {"$class": "NSNull"},
        "Date": {"$class": "NSDate", "NS.time": 1.5},
        "MutableString": {"$class": "NSMutableString", "NS.string": "grow"},
    }
    for key, value in expected.items():
        actual = plain(top.get(key), objects, raw_bytes=True)
        check(actual == value, f"{key}:\n  written  {actual}\n  expected {value}")
    check(isinstance(top.get("Title"), UID), "strings are objects, not inline")
    check(top.get("Null") == UID(0), "a nil object keeps its key")
    check(top.get("$$key") == 5, "a $ key is not escaped")
    check(reals.get(0.5) == {4}, f"encodeFloat wrote {reals.get(0.5)}")
    check(reals.get(0.1) == {8}, f"encodeDouble wrote {reals.get(0.1)}")
    check(classes(obj(top["Text"])) == ["NSTextStorage", "NSMutableAttributedString",
                                        "NSAttributedString", "NSObject"], "text storage classes")

    image = plain(top["Image"], objects, raw_bytes=True)
    rep = image["NSReps"]["NS.objects"][0]["NS.objects"][1]
    check_tiff(rep["NSTIFFRepresentation"], 2, 1, [255, 0, 0, 255, 0, 0, 64, 128])
    rep["NSTIFFRepresentation"] = b"TIFF"
    check(image == {"$class": "NSImage",
                    "NSReps": {"$class": "NSMutableArray", "NS.objects": [
                        {"$class": "NSArray", "NS.objects": [0, {
                            "$class": "NSBitmapImageRep", "NSTIFFRepresentation": b"TIFF",
                            "NSInternalLayoutDirection": 0}]}]},
                    "NSSize": "{2, 1}",
                    "NSColor": {"$class": "NSColor", "NSColorSpace": 3, "NSWhite": b"0 0\x00"},
                    "NSImageFlags": 0x20C00000, "NSResizingMode": 0}, f"Image: {image}")

    def rep_uid(key):
        return obj(obj(obj(top[key])["NSReps"])["NS.objects"][0])["NS.objects"][1]

    check(top["Image"] != top["OtherImage"], "two images share one object")
    check(rep_uid("Image") == rep_uid("OtherImage"), "one bitmap written twice")

    node = obj(top["Node"])
    check(classes(node) == ["TestNode", "NSObject"], "TestNode classes")
    children = obj(node["Children"])
    check(classes(children) == ["NSMutableArray", "NSArray", "NSObject"], "children class")
    uids = children["NS.objects"]
    check(len(uids) == 3 and uids[0] == uids[2] and uids[0] != uids[1], f"shared children {uids}")
    leaf = obj(uids[0])
    check(classes(leaf) == ["TestLeaf", "TestNode", "NSObject"], "TestLeaf classes")
    check(node["Partner"] == uids[0], "partner is the shared leaf")
    check(plain(uids[0], objects) == {"$class": "TestLeaf", "Name": "leaf", "Weight": 0.25},
          f"leaf {plain(uids[0], objects)}")


def main():
    raw = open(sys.argv[1], "rb").read()
    binary = plistlib.loads(raw)
    check(xml_form(binary) == plistlib.load(open(sys.argv[2], "rb")),
          "plistutil's conversion differs from the binary")
    reals = scan_binary(raw)
    check_structure(binary)
    if "--structure-only" not in sys.argv[3:]:
        scenario(binary["$objects"], binary["$top"], reals)
    for failure in failures:
        print(failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
