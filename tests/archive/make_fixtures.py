#!/usr/bin/env python3
"""Writes the keyed-archive fixtures of tests/data/archive with Python's own
plistlib, independently of the library: each archive is built by hand, object
by object, the way the platform's keyed archiver lays it out.

Run it from anywhere; it rewrites the fixtures in place:
    python3 tests/archive/make_fixtures.py
"""
import datetime
import os
import plistlib
import struct
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "..", "data", "archive")
sys.path.insert(0, os.path.join(HERE, "..", "data"))
from keyed_archive_tool import Archive as KeyedArchive, f32, segments  # noqa: E402

UID = plistlib.UID


class Archive(KeyedArchive):
    """Lays objects out as the platform's archiver does: an object takes its
    place before its class description, and dictionaries keep their order."""

    def obj(self, chain, fields, uid=None):
        return self.instance(chain, fields, self.reserve() if uid is None else uid)

    def archive(self, top, fmt=plistlib.FMT_BINARY):
        return self.bytes(top, fmt, sort_keys=False)


def write(name, data):
    with open(os.path.join(OUT, name), "wb") as f:
        f.write(data)


# --- Foundation values -------------------------------------------------------

NSOBJ = "NSObject"


def array(a, elements, mutable=False, chain=None):
    chain = chain or (("NSMutableArray", "NSArray", NSOBJ) if mutable else ("NSArray", NSOBJ))
    return a.obj(chain, {"NS.objects": elements})


def dictionary(a, keys, values):
    return a.obj(("NSDictionary", NSOBJ), {"NS.keys": keys, "NS.objects": values})


def foundation():
    a = Archive()
    top = {
        # Inline scalars of every size.
        "Flag": True,
        "FlagOff": False,
        "Small": 7,
        "Medium": 300,
        "Large": 70000,
        "Huge": 2 ** 40,
        "Negative": -5,
        "Big": 2 ** 63 + 5,
        "Real": 2.5,
        "RealForInt": -3.75,
        "IntForReal": 9,
        "Bytes": b"\x00\x01\x02\xff",
        "When": datetime.datetime(2001, 1, 2, 0, 0, 1),
        "$$dollar": 11,  # the key "$dollar", escaped as the format requires
        "NullRef": UID(0),
        "Version": 10,
        "Resolution": 72,
        # Objects.
        "Point": a.add("{1.5, -2}"),
        "Size": a.add("{62, 62}"),
        "Rect": a.add("{{-269, -168.5}, {538, 337}}"),
        "LongRect": a.add("{{1, 116.45652049779892}, {235, 16}}"),
        "Title": a.add("Hello"),
        "Unicode": a.add("Gr\u00fc\u00dfe \u2713 \U0001F600"),
        "MutableTitle": a.obj(("NSMutableString", "NSString", NSOBJ), {"NS.string": "Mutable"}),
        "OldMutable": a.obj(("NSMutableString", "NSString", NSOBJ),
                            {"NS.bytes": "caf\u00e9".encode("utf-8")}),
        "Data": a.add(b"data\x00bytes"),
        "MutableData": a.obj(("NSMutableData", "NSData", NSOBJ), {"NS.data": b"\x10\x20"}),
        "Number": a.add(42),
        "RealNumber": a.add(0.125),
        "Array": array(a, [a.add("a"), a.add(1), a.add(2.5)]),
        "MutableArray": array(a, [a.add("m")], mutable=True),
        "OldArray": a.obj(("NSArray", NSOBJ), {"NS.object.0": a.add("x"),
                                               "NS.object.1": a.add("y")}),
        "Dictionary": dictionary(a, [a.add("one"), a.add("two")], [a.add(1), a.add(2)]),
        "OldDictionary": a.obj(("NSDictionary", NSOBJ),
                               {"NS.key.0": a.add("k"), "NS.object.0": a.add("v")}),
        "Set": a.obj(("NSSet", NSOBJ), {"NS.objects": [a.add(3), a.add(4)]}),
        "OrderedSet": a.obj(("NSOrderedSet", NSOBJ), {"NS.object.0": a.add("first"),
                                                      "NS.object.1": a.add("second")}),
        "Null": a.obj(("NSNull", NSOBJ), {}),
        "DateObject": a.obj(("NSDate", NSOBJ), {"NS.time": 86400.5}),
        "PointValue": a.obj(("NSValue", NSOBJ), {"NS.special": 1, "NS.pointval": a.add("{3, 4}")}),
        "SizeValue": a.obj(("NSValue", NSOBJ), {"NS.special": 2, "NS.sizeval": a.add("{5, 6}")}),
        "RectValue": a.obj(("NSValue", NSOBJ),
                           {"NS.special": 3, "NS.rectval": a.add("{{1, 2}, {3, 4}}")}),
        "RangeValue": a.obj(("NSValue", NSOBJ), {"NS.special": 4, "NS.rangeval.location": 5,
                                                 "NS.rangeval.length": 7}),
        "Mixed": dictionary(a, [a.add("name"), a.add("list")],
                            [a.add("layer"), array(a, [a.add(True), a.add(-1)])]),
    }
    write("foundation.plist", a.archive(top))
    write("foundation_xml.plist", a.archive(top, fmt=plistlib.FMT_XML))


# --- colours ------------------------------------------------------------------

COLOR = ("NSColor", NSOBJ)
SRGB_ICC = b"fake sRGB profile bytes"


def colors():
    a = Archive()

    def color(**fields):
        return a.obj(COLOR, fields)

    srgb_space = a.obj(("NSColorSpace", NSOBJ), {"NSID": 7, "NSICC": SRGB_ICC})
    p3_profile = a.obj(("NSMutableData", "NSData", NSOBJ), {"NS.data": b"fake P3 profile"})
    p3_space = a.obj(("NSColorSpace", NSOBJ), {"NSSpaceID": 12, "NSICC": p3_profile})
    gray22 = a.obj(("NSColorSpace", NSOBJ), {"NSID": 9, "NSModel": 0, "NSICC": b"gray"})
    odd_space = a.obj(("NSColorSpace", NSOBJ), {"NSID": 99})
    fallback = color(NSColorSpace=1, NSRGB=b"0.1 0.2 0.3\x00")
    inner_catalog = color(NSColorSpace=6, NSCatalogName=a.add("Custom"),
                          NSColorName=a.add("deeper"), NSColor=fallback)
    top = {
        "CalibratedRGB": color(NSColorSpace=1, NSRGB=b"1 0 0\x00"),
        "CalibratedRGBA": color(NSColorSpace=1,
                                NSRGB=b"0.8492285013 0.8409650326 0.8022917509 0.8\x00"),
        "DeviceRGB": color(NSColorSpace=2, NSRGB=b"0 0.5 1 0.25\x00"),
        "CalibratedWhite": color(NSColorSpace=3, NSWhite=b"0.5\x00"),
        "Clear": color(NSColorSpace=3, NSWhite=b"0 0\x00"),
        "WhiteNoNul": color(NSColorSpace=3, NSWhite=b"0.25 0.5"),
        "DeviceWhite": color(NSColorSpace=4, NSWhite=b"0.75\x00"),
        "CMYK": color(NSColorSpace=5, NSCMYK=b"0.1 0.2 0.3 0.4\x00"),
        "CMYKOtherSpelling": color(NSColorSpace=5, NSCYMK=b"0 0 0 1 0.5"),
        "SRGB": color(NSColorSpace=1, NSRGB=b"0.9859541655 0 0.02694000863\x00",
                      NSComponents=b"1 0 0 1", NSCustomColorSpace=srgb_space,
                      NSLinearExposure=b"1"),
        "DisplayP3": color(NSColorSpace=1, NSRGB=b"0.5 0.5 0.5\x00",
                           NSComponents=b"0.25 0.5 0.75 1", NSCustomColorSpace=p3_space),
        "Gray22": color(NSColorSpace=3, NSWhite=b"0.6\x00", NSComponents=b"0.6666666667 1",
                        NSCustomColorSpace=gray22),
        "UnknownSpace": color(NSColorSpace=1, NSRGB=b"0.2 0.4 0.6\x00",
                              NSComponents=b"9 9 9 1", NSCustomColorSpace=odd_space),
        "CatalogKnown": color(NSColorSpace=6, NSCatalogName=a.add("System"),
                              NSColorName=a.add("textColor"),
                              NSColor=color(NSColorSpace=3, NSWhite=b"0\x00")),
        "CatalogUnknown": color(NSColorSpace=6, NSCatalogName=a.add("System"),
                                NSColorName=a.add("noSuchColor"), NSColor=fallback),
        "CatalogNested": color(NSColorSpace=6, NSCatalogName=a.add("Custom"),
                               NSColorName=a.add("outer"), NSColor=inner_catalog),
        "Pattern": color(NSColorSpace=10),
        "Garbage": color(NSColorSpace=1, NSRGB=b"0.5 x 7\x00"),
    }
    write("colors.plist", a.archive(top))


# --- shadows, gradients, transforms, paths ----------------------------------------

def graphics():
    a = Archive()
    red = a.obj(COLOR, {"NSColorSpace": 1, "NSRGB": b"1 0 0\x00"})
    blue = a.obj(COLOR, {"NSColorSpace": 1, "NSRGB": b"0 0 1 0.5\x00"})
    # Move (1,2), line (10,2), curve to (10,20) via (12,5), (12,15), close; as
    # the platform stores it, with the move back to the start after the close.
    apple_segments = segments([(0, 1, 2), (1, 10, 2), (2, 12, 5), (2, 12, 15), (2, 10, 20),
                               (3, 1, 2), (0, 1, 2)])
    # Two closed subpaths, the second started by an explicit move.
    two_subpaths = segments([(0, 0, 0), (1, 5, 0), (3, 0, 0), (0, 20, 20), (1, 25, 20),
                             (3, 20, 20), (0, 20, 20)])
    # Another implementation: a close written as two close records.
    gnustep_segments = segments([(0, 0, 0), (1, 4, 0), (1, 4, 4), (3, 0, 0), (3, 0, 0)])
    # A line after a close continues from the subpath's start.
    continued = segments([(0, 0, 0), (1, 3, 0), (3, 0, 0), (0, 0, 0), (1, 0, 3)])
    top = {
        "Shadow": a.obj(("NSShadow", NSOBJ), {"NSShadowHoriz": 3.0, "NSShadowVert": -4.5,
                                              "NSShadowBlurRadius": 6.0, "NSShadowColor": blue}),
        "ShadowNoColor": a.obj(("NSShadow", NSOBJ), {"NSShadowBlurRadius": 2.0}),
        "ShadowEmpty": a.obj(("NSShadow", NSOBJ), {}),
        "Gradient": a.obj(("NSGradient", NSOBJ), {
            "NSColors": array(a, [red, blue]),
            "NSLocations": array(a, [a.add(0.0), a.add(0.75)]),
            "NSColorSpace": a.obj(("NSColorSpace", NSOBJ), {"NSID": 1})}),
        "GradientNoLocations": a.obj(("NSGradient", NSOBJ), {
            "NSColors": array(a, [red, blue, red])}),
        "Identity": a.obj(("NSAffineTransform", NSOBJ), {}),
        "Translation": a.obj(("NSAffineTransform", NSOBJ),
                             {"NSTransformStruct": b"\x01" + f32(10, -20)}),
        "Scale": a.obj(("NSAffineTransform", NSOBJ), {"NSTransformStruct": b"\x02" + f32(2, 0.5)}),
        "ScaleTranslate": a.obj(("NSAffineTransform", NSOBJ),
                                {"NSTransformStruct": f32(2, 3, 4, 5)}),
        "Matrix": a.obj(("NSAffineTransform", NSOBJ),
                        {"NSTransformStruct": f32(0, 1, -1, 0, 7, 8)}),
        "BadTransform": a.obj(("NSAffineTransform", NSOBJ), {"NSTransformStruct": f32(1, 2, 3)}),
        "ApplePath": a.obj(("NSBezierPath", NSOBJ), {
            "NSSegments": apple_segments, "NSWindingRule": 1, "NSCapStyle": 1.0,
            "NSJoinStyle": 2, "NSLineWidth": 2.5, "NSMiterLimit": 4.0, "NSFlatness": 0.2,
            "NSDashPhase": 1.5, "NSDashPatterns": f32(6, 3)}),
        "TwoSubpaths": a.obj(("NSBezierPath", NSOBJ), {"NSSegments": two_subpaths}),
        "GNUstepPath": a.obj(("NSBezierPath", NSOBJ), {
            "NSSegments": gnustep_segments, "NSLineCapStyle": 2, "NSLineJoinStyle": 1,
            "NSWindingRule": 0, "NSLineWidth": 1.0}),
        "ContinuedPath": a.obj(("NSBezierPath", NSOBJ), {"NSSegments": continued}),
        "EmptyPath": a.obj(("NSBezierPath", NSOBJ), {}),
        "BadPath": a.obj(("NSBezierPath", NSOBJ), {
            "NSSegments": segments([(0, 1, 1), (1, 2, 2), (9, 3, 3), (1, 4, 4)])}),
    }
    write("graphics.plist", a.archive(top))


# --- rich text --------------------------------------------------------------------

def text():
    a = Archive()
    font = a.obj(("NSFont", NSOBJ), {"NSName": a.add("Avenir-Book"), "NSSize": 14.0,
                                     "NSfFlags": 16})
    bold = a.obj(("NSFont", NSOBJ), {"NSName": a.add("Avenir-Heavy"), "NSSize": 14.0,
                                     "NSfFlags": 16})
    srgb = a.obj(("NSColorSpace", NSOBJ), {"NSID": 7})
    red = a.obj(COLOR, {"NSColorSpace": 1, "NSRGB": b"0.9859541655 0 0.02694000863\x00",
                        "NSComponents": b"1 0 0 1", "NSCustomColorSpace": srgb})
    tab1 = a.obj(("NSTextTab", NSOBJ), {"NSLocation": 28.0})
    tab2 = a.obj(("NSTextTab", NSOBJ), {"NSLocation": 100.0, "NSType": 2})
    tab3 = a.obj(("NSTextTab", NSOBJ), {"NSLocation": 150.0, "NSType": 3, "NSTextAlignment": 4})
    centred = a.obj(("NSMutableParagraphStyle", "NSParagraphStyle", NSOBJ), {
        "NSAlignment": 2, "NSTabStops": array(a, [tab1, tab2, tab3]), "NSLineSpacing": 3.0,
        "NSParagraphSpacingBefore": 4.0, "NSHeadIndent": 5.0, "NSWritingDirection": 2,
        "NSLineBreakMode": 4, "NSTighteningFactorForTruncation": 0.1})
    default_style = a.obj(("NSParagraphStyle", NSOBJ), {
        "NSAlignment": 4, "NSTabStops": UID(0), "NSAllowsTighteningForTruncation": 1})
    plain_keys = [a.add("NSFont"), a.add("NSParagraphStyle")]
    plain = dictionary(a, plain_keys, [font, default_style])
    strong = dictionary(a, [a.add("NSFont"), a.add("NSColor"), a.add("NSUnderline"),
                            a.add("NSParagraphStyle"), a.add("NSKern")],
                        [bold, red, a.add(1 | 0x200), centred, a.add(1.5)])
    # "Hello " plain, "bold" strong, " world" plain: runs 6/0, 4/1, 6/0.
    storage = a.obj(("NSTextStorage", "NSMutableAttributedString", "NSAttributedString", NSOBJ), {
        "NSString": a.obj(("NSMutableString", "NSString", NSOBJ), {"NS.string": "Hello bold world"}),
        "NSAttributes": array(a, [plain, strong]),
        "NSAttributeInfo": a.obj(("NSMutableData", "NSData", NSOBJ),
                                 {"NS.data": bytes([6, 0, 4, 1, 6, 0])}),
        "NSDelegate": UID(0)})
    single = a.obj(("NSAttributedString", NSOBJ), {
        "NSString": a.add("caf\u00e9 \U0001F600"), "NSAttributes": plain})
    long_text = "x" * 300 + "y\u00e9"
    long_runs = a.obj(("NSMutableAttributedString", "NSAttributedString", NSOBJ), {
        "NSString": a.add(long_text), "NSAttributes": array(a, [plain, strong]),
        "NSAttributeInfo": bytes([0xAC, 0x02, 1, 2, 0])})  # bare data, as GNUstep writes
    broken = a.obj(("NSAttributedString", NSOBJ), {
        "NSString": a.add("abcdef"), "NSAttributes": array(a, [strong, plain]),
        "NSAttributeInfo": bytes([3, 0, 3, 5])})  # dictionary 5 does not exist
    empty = a.obj(("NSAttributedString", NSOBJ), {"NSString": a.add("")})
    top = {"Storage": storage, "Single": single, "LongRuns": long_runs, "Broken": broken,
           "Empty": empty, "Font": font, "DefaultStyle": default_style}
    write("text.plist", a.archive(top))


# --- bitmaps and images ----------------------------------------------------------

def tiff_rgba(width, height, pixels, dpi):
    """A baseline big-endian uncompressed RGBA TIFF (premultiplied), as the
    platform embeds them; `pixels` is bytes of R, G, B, A rows, top first."""
    strip = bytes(pixels)
    bits_offset = 8 + len(strip)
    res_offset = bits_offset + 8
    extra = strip + struct.pack(">4H", 8, 8, 8, 8) + struct.pack(">2I", dpi, 1)
    extra += b"\x00" * (len(extra) % 2)
    SHORT, LONG, RATIONAL = 3, 4, 5
    entries = [(256, LONG, 1, width), (257, LONG, 1, height), (258, SHORT, 4, bits_offset),
               (259, SHORT, 1, 1), (262, SHORT, 1, 2), (273, LONG, 1, 8), (277, SHORT, 1, 4),
               (278, LONG, 1, height), (279, LONG, 1, len(strip)), (282, RATIONAL, 1, res_offset),
               (283, RATIONAL, 1, res_offset), (284, SHORT, 1, 1), (296, SHORT, 1, 2),
               (338, SHORT, 1, 1)]  # 338: associated (premultiplied) alpha
    ifd = struct.pack(">H", len(entries))
    for tag, kind, count, value in entries:
        short = kind == SHORT and count == 1
        ifd += struct.pack(">HHIHH" if short else ">HHII", tag, kind, count, value, *[0][:short])
    ifd += struct.pack(">I", 0)
    return b"MM\x00\x2a" + struct.pack(">I", 8 + len(extra)) + extra + ifd


# 2 × 2 pixels, top row red and half-transparent green (premultiplied), bottom
# row blue and white.
IMAGE_PIXELS = [255, 0, 0, 255, 0, 128, 0, 128, 0, 0, 255, 255, 255, 255, 255, 255]


def images():
    a = Archive()
    tiff = tiff_rgba(2, 2, IMAGE_PIXELS, dpi=144)
    rep = a.obj(("NSBitmapImageRep", "NSImageRep", NSOBJ),
                {"NSTIFFRepresentation": a.add(tiff), "NSInternalLayoutDirection": 0})
    clear = a.obj(COLOR, {"NSColorSpace": 3, "NSWhite": b"0 0\x00"})
    image = a.obj(("NSImage", NSOBJ), {
        "NSReps": array(a, [array(a, [a.add(0), rep])], mutable=True),
        "NSSize": a.add("{1, 1}"), "NSColor": clear, "NSImageFlags": 0x20C00000,
        "NSResizingMode": 0})
    bad = a.obj(("NSBitmapImageRep", "NSImageRep", NSOBJ),
                {"NSTIFFRepresentation": a.add(b"MM\x00\x2a\x00\x00\x00\x08 truncated")})
    top = {"Image": image, "Rep": rep, "SameRep": rep, "BadRep": bad}
    write("image.plist", a.archive(top))
    write("image_2x2.tiff", tiff)


# --- model objects -----------------------------------------------------------------

def objects():
    """Objects of the test classes TestNode and TestLeaf (registered by the tests)."""
    a = Archive()
    node = ("TestNode", NSOBJ)
    leaf = ("TestLeaf", "TestNode", NSOBJ)
    shared = a.obj(leaf, {"Name": a.add("shared"), "Weight": 2.5})
    loop = a.reserve()
    a.obj(node, {"Name": a.add("loop"), "Partner": loop}, uid=loop)
    mystery = a.obj(("MysteryDraw", "TestNode", NSOBJ), {"Name": a.add("unknown")})
    refusing = a.obj(node, {"Name": a.add("refuse")})
    root = a.obj(node, {
        "Name": a.add("root"),
        "Children": array(a, [shared, mystery, a.obj(leaf, {"Name": a.add("second")}),
                              shared, refusing, a.add("not an object")], mutable=True),
        "Partner": shared})
    top = {"root": root, "Loop": loop, "Mystery": mystery, "Text": a.add("just text")}
    write("objects.plist", a.archive(top))


# --- the document container ---------------------------------------------------------

def container():
    inner = Archive()
    inner_root = inner.obj(("TestNode", NSOBJ), {"Name": inner.add("canvas")})
    paint_data = inner.archive({"root": inner_root})
    outer = Archive()
    write("container.plist", outer.archive(
        {"PaintData": outer.add(paint_data), "Resolution": 72.0, "Version": 10}))
    # Not keyed archives at all, or missing their parts.
    write("plain_dictionary.plist", plistlib.dumps({"a": 1}, fmt=plistlib.FMT_BINARY))
    write("no_objects.plist", plistlib.dumps(
        {"$archiver": "NSKeyedArchiver", "$version": 100000, "$top": {}},
        fmt=plistlib.FMT_BINARY))


def main():
    os.makedirs(OUT, exist_ok=True)
    foundation()
    colors()
    graphics()
    text()
    images()
    objects()
    container()
    return 0


if __name__ == "__main__":
    sys.exit(main())
