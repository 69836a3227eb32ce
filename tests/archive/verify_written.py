#!/usr/bin/env python3
"""Checks a keyed archive written by the library, without the library's code.

    verify_written.py ARCHIVE.bplist ARCHIVE.xml [--structure-only]

ARCHIVE.xml is the same archive converted by plistutil. Both are loaded with
Python's plistlib and must hold the same tree; the raw binary is scanned for
the platform writer's size rules; then every top-level key of the archive
written by archive_writer_test.cc ("WriterScenario") is resolved and compared
with what the platform's archiver would have produced. With --structure-only
the archive's own layout is checked but not its content.
"""
import plistlib
import struct
import sys

UID = plistlib.UID
failures = []


def check(condition, message):
    if not condition:
        failures.append(message)


# --- the raw binary -------------------------------------------------------------

def byte_width(value):
    return 1 if value <= 0xFF else 2 if value <= 0xFFFF else 4 if value <= 0xFFFFFFFF else 8


def scan_binary(raw):
    check(raw[:8] == b"bplist00", "header is not bplist00")
    offset_size, ref_size = raw[-26], raw[-25]
    count, top, table = struct.unpack(">QQQ", raw[-24:])
    check(ref_size == byte_width(count), f"reference size {ref_size} for {count} objects")
    check(offset_size == byte_width(table), f"offset size {offset_size} for table at {table}")
    check(top == 0, "the top object is not written first")
    offsets = [int.from_bytes(raw[table + i * offset_size: table + (i + 1) * offset_size], "big")
               for i in range(count)]
    check(offsets == sorted(offsets) and len(set(offsets)) == count, "objects overlap")
    seen_scalars = set()
    for offset in offsets:
        marker = raw[offset]
        kind, low = marker >> 4, marker & 15
        if kind == 0x1:
            size = 1 << low
            body = raw[offset + 1: offset + 1 + size]
            if size == 8 and body[0] & 0x80:
                value = int.from_bytes(body, "big", signed=True)
                check(value < 0, "an 8-byte integer that is not negative")
            elif size == 16:
                value = int.from_bytes(body, "big")
                check(value >= 2 ** 63, f"a 16-byte integer {value} below 2^63")
            else:
                value = int.from_bytes(body, "big")
                check(size == byte_width(value), f"integer {value} written in {size} bytes")
            key = ("int", value, size)
        elif kind == 0x8:
            value = int.from_bytes(raw[offset + 1: offset + 2 + low], "big")
            check(low + 1 in (1, 2, 4, 8) and low + 1 == byte_width(value),
                  f"UID {value} written in {low + 1} bytes")
            key = ("uid", value)
        elif kind in (0x2, 0x3, 0x5, 0x6, 0x4):
            key = None  # compared through plistlib below
        else:
            continue
        if key is not None:
            check(key not in seen_scalars, f"scalar {key} written twice")
            seen_scalars.add(key)


def real_sizes(raw):
    """Every real of the file with its size, by value."""
    offset_size = raw[-26]
    count, _, table = struct.unpack(">QQQ", raw[-24:])
    sizes = {}
    for i in range(count):
        offset = int.from_bytes(raw[table + i * offset_size: table + (i + 1) * offset_size], "big")
        marker = raw[offset]
        if marker == 0x22:
            sizes.setdefault(struct.unpack(">f", raw[offset + 1: offset + 5])[0], set()).add(4)
        elif marker == 0x23:
            sizes.setdefault(struct.unpack(">d", raw[offset + 1: offset + 9])[0], set()).add(8)
    return sizes


# --- the archive ----------------------------------------------------------------------

def with_xml_uids(value):
    if isinstance(value, UID):
        return {"CF$UID": value.data}
    if isinstance(value, dict):
        return {k: with_xml_uids(v) for k, v in value.items()}
    if isinstance(value, list):
        return [with_xml_uids(v) for v in value]
    return value


class Archive:
    def __init__(self, root):
        check(root.get("$archiver") == "NSKeyedArchiver", "$archiver")
        check(root.get("$version") == 100000, "$version")
        self.objects = root["$objects"]
        self.top = root["$top"]
        check(self.objects[0] == "$null", "$objects[0] is not $null")
        for i, o in enumerate(self.objects):
            if isinstance(o, dict) and "$classname" in o:
                check(o["$classes"][0] == o["$classname"] and o["$classes"][-1] == "NSObject",
                      f"class description {i}: {o}")

    def deref(self, value):
        if isinstance(value, UID):
            check(0 <= value.data < len(self.objects), f"UID {value.data} out of range")
            return None if value.data == 0 else self.objects[value.data]
        return value

    def classes(self, obj):
        return self.deref(obj["$class"])["$classes"]

    def resolve(self, value, depth=0):
        """An archived value as plain Python: objects become dicts with "$class"."""
        value = self.deref(value)
        if isinstance(value, dict):
            result = {}
            for k, v in value.items():
                if k == "$class":
                    result[k] = self.deref(v)["$classname"]
                elif isinstance(v, list):
                    result[k] = [self.resolve(e, depth + 1) for e in v]
                else:
                    result[k] = self.resolve(v, depth + 1)
            return result
        return value


def f32(*values):
    return b"".join(struct.pack(">f", v) for v in values)


def segment(kind, x, y):
    return bytes([kind]) + f32(x, y)


def expect(archive, key, expected):
    actual = archive.resolve(archive.top.get(key))
    check(actual == expected, f"{key}:\n  written  {actual}\n  expected {expected}")


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
        tag, kind, count, value = struct.unpack(order + "HHII",
                                                tiff[ifd + 2 + 12 * i: ifd + 14 + 12 * i])
        size = {3: 2, 4: 4, 5: 8}.get(kind, 1) * count
        raw = tiff[ifd + 10 + 12 * i: ifd + 14 + 12 * i] if size <= 4 else tiff[value: value + size]
        fmt = {3: "H", 4: "I", 5: "II"}.get(kind)
        if fmt:
            tags[tag] = struct.unpack(order + fmt * count, raw[: size])
    check(tags.get(256) == (width,) and tags.get(257) == (height,), "TIFF size")
    check(tags.get(258) == (8, 8, 8, 8), f"TIFF bits {tags.get(258)}")
    check(tags.get(259) == (1,), "TIFF compression is not none")
    check(tags.get(262) == (2,), "TIFF photometric is not RGB")
    check(tags.get(277) == (4,), "TIFF samples per pixel")
    check(tags.get(338) == (1,), "TIFF extra sample is not associated alpha")
    check(tags.get(284, (1,)) == (1,), "TIFF is not chunky")
    strips = b"".join(tiff[o: o + c] for o, c in zip(tags.get(273, ()), tags.get(279, ())))
    check(strips == bytes(pixels), f"TIFF pixels {list(strips)}")


def scenario(archive, raw):
    red = {"$class": "NSColor", "NSColorSpace": 1, "NSRGB": b"1 0 0\x00"}
    expect(archive, "Flag", True)
    expect(archive, "Count", 7)
    expect(archive, "Wide", 300)
    expect(archive, "Wider", 70000)
    expect(archive, "Widest", 2 ** 40)
    expect(archive, "Negative", -1)
    expect(archive, "Unsigned", 2 ** 63 + 1)
    expect(archive, "Float", 0.5)
    expect(archive, "Double", 0.1)
    expect(archive, "Bytes", b"\x00\xff")
    expect(archive, "Point", "{1.5, 2}")
    expect(archive, "Rect", "{{0, 0}, {640, 480}}")
    expect(archive, "Title", "Gr\u00fc\u00dfe")
    expect(archive, "Null", None)
    check(isinstance(archive.top.get("Title"), UID), "strings are objects, not inline")
    check("Null" in archive.top and archive.top["Null"] == UID(0), "a nil object keeps its key")
    check("$$key" in archive.top and archive.top["$$key"] == 5, "a $ key is not escaped")
    sizes = real_sizes(raw)
    check(sizes.get(0.5) == {4}, f"encodeFloat wrote {sizes.get(0.5)}")
    check(sizes.get(0.1) == {8}, f"encodeDouble wrote {sizes.get(0.1)}")

    expect(archive, "Red", red)
    expect(archive, "HalfGray", {"$class": "NSColor", "NSColorSpace": 3, "NSWhite": b"0.5 0.25\x00"})
    expect(archive, "Device", {"$class": "NSColor", "NSColorSpace": 2, "NSRGB": b"0 0.5 1\x00"})
    expect(archive, "Cmyk", {"$class": "NSColor", "NSColorSpace": 5,
                             "NSCMYK": b"0.1 0.2 0.3 0.4 0.5\x00"})
    expect(archive, "SRGB", {"$class": "NSColor", "NSColorSpace": 1, "NSRGB": b"0.25 0.5 1\x00",
                             "NSComponents": b"0.25 0.5 1 1",
                             "NSCustomColorSpace": {"$class": "NSColorSpace", "NSID": 7}})
    expect(archive, "Catalog", {"$class": "NSColor", "NSColorSpace": 6, "NSCatalogName": "System",
                                "NSColorName": "myColor", "NSColor": red})
    expect(archive, "Shadow", {"$class": "NSShadow", "NSShadowHoriz": 2.0, "NSShadowVert": -3.0,
                               "NSShadowBlurRadius": 4.0})
    expect(archive, "ShadowColored", {"$class": "NSShadow", "NSShadowHoriz": 1.0,
                                      "NSShadowColor": red})
    apple_segments = (segment(0, 1, 2) + segment(1, 10, 2) + segment(2, 12, 5) +
                      segment(2, 12, 15) + segment(2, 10, 20) + segment(3, 1, 2) +
                      segment(0, 1, 2))
    check(len(apple_segments) == 63, "reference path length")
    expect(archive, "Path", {"$class": "NSBezierPath", "NSSegments": apple_segments,
                             "NSCapStyle": 1, "NSLineCapStyle": 1, "NSLineWidth": 2.5})
    expect(archive, "DashedPath", {"$class": "NSBezierPath",
                                   "NSSegments": segment(0, 0, 0) + segment(1, 5, 5),
                                   "NSWindingRule": 1, "NSJoinStyle": 2, "NSLineJoinStyle": 2,
                                   "NSMiterLimit": 3.0, "NSFlatness": 0.1, "NSDashPhase": 2.0,
                                   "NSDashPatterns": f32(4, 2)})
    expect(archive, "Translation", {"$class": "NSAffineTransform",
                                    "NSTransformStruct": b"\x01" + f32(10, 20)})
    expect(archive, "Scale", {"$class": "NSAffineTransform", "NSTransformStruct": b"\x02" + f32(2, 3)})
    expect(archive, "ScaleMove", {"$class": "NSAffineTransform",
                                  "NSTransformStruct": f32(2, 3, 4, 5)})
    expect(archive, "Rotation", {"$class": "NSAffineTransform",
                                 "NSTransformStruct": f32(0, 1, -1, 0, 0, 0)})
    expect(archive, "Identity", {"$class": "NSAffineTransform"})
    expect(archive, "Gradient", {"$class": "NSGradient",
                                 "NSColors": {"$class": "NSArray", "NS.objects": [red, red]},
                                 "NSLocations": {"$class": "NSArray", "NS.objects": [0.0, 1.0]},
                                 "NSColorSpace": {"$class": "NSColorSpace", "NSID": 1}})

    font = {"$class": "NSFont", "NSName": "Helvetica", "NSSize": 12.0, "NSfFlags": 16}
    bold = {"$class": "NSFont", "NSName": "Helvetica-Bold", "NSSize": 12.0, "NSfFlags": 16}
    style = {"$class": "NSParagraphStyle", "NSAlignment": 2, "NSTabStops": None}
    tabbed = {"$class": "NSParagraphStyle", "NSTabStops": {"$class": "NSArray", "NS.objects": [
        {"$class": "NSTextTab", "NSLocation": 10.0},
        {"$class": "NSTextTab", "NSLocation": 20.0, "NSType": 1, "NSTextAlignment": 4}]},
        "NSHeadIndent": 6.0, "NSWritingDirection": 1, "NSAllowsTighteningForTruncation": 1}
    plain = {"$class": "NSDictionary", "NS.keys": ["NSFont", "NSParagraphStyle"],
             "NS.objects": [font, style]}
    strong = {"$class": "NSDictionary", "NS.keys": ["NSFont", "NSColor", "NSParagraphStyle",
                                                    "NSUnderline"],
              "NS.objects": [bold, red, tabbed, 1]}
    expect(archive, "Text", {
        "$class": "NSTextStorage",
        "NSString": {"$class": "NSMutableString", "NS.string": "Hello bold world"},
        "NSAttributes": {"$class": "NSArray", "NS.objects": [plain, strong]},
        "NSAttributeInfo": {"$class": "NSMutableData", "NS.data": bytes([6, 0, 4, 1, 6, 0])},
        "NSDelegate": None})
    text = archive.deref(archive.top["Text"])
    check(archive.classes(text) == ["NSTextStorage", "NSMutableAttributedString",
                                    "NSAttributedString", "NSObject"], "text storage classes")
    expect(archive, "OneRun", {"$class": "NSAttributedString", "NSString": "\u00e9t\u00e9",
                               "NSAttributes": plain})

    image = archive.resolve(archive.top["Image"])
    rep = image["NSReps"]["NS.objects"][0]["NS.objects"][1]
    check_tiff(rep["NSTIFFRepresentation"], 2, 1, [255, 0, 0, 255, 0, 0, 64, 128])
    rep["NSTIFFRepresentation"] = b"TIFF"
    expect_rep = {"$class": "NSBitmapImageRep", "NSTIFFRepresentation": b"TIFF",
                  "NSInternalLayoutDirection": 0}
    check(image == {"$class": "NSImage",
                    "NSReps": {"$class": "NSMutableArray", "NS.objects": [
                        {"$class": "NSArray", "NS.objects": [0, expect_rep]}]},
                    "NSSize": "{2, 1}",
                    "NSColor": {"$class": "NSColor", "NSColorSpace": 3, "NSWhite": b"0 0\x00"},
                    "NSImageFlags": 0x20C00000, "NSResizingMode": 0}, f"Image: {image}")
    def rep_uid(key):
        reps = archive.deref(archive.deref(archive.top[key])["NSReps"])
        return archive.deref(reps["NS.objects"][0])["NS.objects"][1]

    check(archive.top["Image"] != archive.top["OtherImage"], "two images share one object")
    check(rep_uid("Image") == rep_uid("OtherImage"), "one bitmap written twice")

    expect(archive, "Array", {"$class": "NSArray", "NS.objects": ["a", 1, 2.5]})
    expect(archive, "Dictionary", {"$class": "NSMutableDictionary", "NS.keys": ["k"],
                                   "NS.objects": [{"$class": "NSValue", "NS.special": 1,
                                                   "NS.pointval": "{3, 4}"}]})
    expect(archive, "Set", {"$class": "NSSet", "NS.objects": [True]})
    expect(archive, "NullObject", {"$class": "NSNull"})
    expect(archive, "Date", {"$class": "NSDate", "NS.time": 1.5})
    expect(archive, "MutableString", {"$class": "NSMutableString", "NS.string": "grow"})

    node = archive.deref(archive.top["Node"])
    check(archive.classes(node) == ["TestNode", "NSObject"], "TestNode classes")
    children = archive.deref(node["Children"])
    check(archive.classes(children) == ["NSMutableArray", "NSArray", "NSObject"], "children class")
    uids = children["NS.objects"]
    check(len(uids) == 3 and uids[0] == uids[2] and uids[0] != uids[1],
          f"shared children {uids}")
    leaf = archive.deref(uids[0])
    check(archive.classes(leaf) == ["TestLeaf", "TestNode", "NSObject"], "TestLeaf classes")
    check(node["Partner"] == uids[0], "partner is the shared leaf")
    check(archive.resolve(leaf) == {"$class": "TestLeaf", "Name": "leaf", "Weight": 0.25},
          f"leaf {archive.resolve(leaf)}")


def main():
    binary_path, xml_path = sys.argv[1], sys.argv[2]
    raw = open(binary_path, "rb").read()
    binary = plistlib.loads(raw)
    xml = plistlib.load(open(xml_path, "rb"))
    check(with_xml_uids(binary) == xml, "plistutil's conversion differs from the binary")
    scan_binary(raw)
    archive = Archive(binary)
    for value in archive.objects:  # every reference points at an object
        archive.resolve(value)
    if "--structure-only" not in sys.argv[3:]:
        scenario(archive, raw)
    for failure in failures:
        print(failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
