// What the archiver writes. The binary property-list layout is checked
// against bytes worked out by hand; whole archives are checked by an
// independent reader: plistutil converts them and Python's plistlib reads
// both forms (tests/archive/verify_written.py holds the expected structure).
#include <gtest/gtest.h>

#include "support/archive_test_support.h"
#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "archive/property_list.h"
#include "platform/values/bitmap.h"
#include "platform/values/log.h"

namespace paintdoc {
namespace {

using Bytes = std::vector<uint8_t>;

// The objects part of a written binary property list (after the 8-byte
// header, before the offset table) and the trailer's sizes.
struct Layout {
  Bytes objects;
  unsigned offsetSize = 0;
  unsigned refSize = 0;
  uint64_t count = 0;
};

Layout Split(const Bytes& file) {
  Layout layout;
  const size_t trailer = file.size() - 32;
  uint64_t table = 0;
  for (int i = 0; i < 8; ++i) table = table << 8 | file[trailer + 24 + i];
  for (int i = 0; i < 8; ++i) layout.count = layout.count << 8 | file[trailer + 8 + i];
  layout.offsetSize = file[trailer + 6];
  layout.refSize = file[trailer + 7];
  layout.objects.assign(file.begin() + 8, file.begin() + static_cast<std::ptrdiff_t>(table));
  return layout;
}

TEST(BinaryPlistWriter, SmallestSizesAndUniquedScalars) {
  PropertyList plist;
  const uint32_t elements[] = {
      plist.addInteger(7),          plist.addInteger(300),      plist.addInteger(70000),
      plist.addInteger(1LL << 40),  plist.addInteger(-1),       plist.addUnsigned(1ULL << 63),
      plist.addFloat(0.5f),         plist.addReal(0.5),         plist.addUid(5),
      plist.addUid(300),            plist.addString("A\u00e9"), plist.addInteger(7),
  };
  plist.setRoot(plist.addArray(elements));
  const Bytes file = WriteBinaryPlist(plist);
  ASSERT_EQ(std::string(file.begin(), file.begin() + 8), "bplist00");
  const Layout layout = Split(file);
  // The array first (12 references to 11 distinct objects, 1 byte each), then
  // each scalar once, in order of first use.
  const Bytes expected = {
      0xAC, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 1,   // array; the second 7 is object 1
      0x10, 7,                                      // 1-byte int
      0x11, 0x01, 0x2C,                             // 2-byte int
      0x12, 0x00, 0x01, 0x11, 0x70,                 // 4-byte int
      0x13, 0, 0, 0x01, 0, 0, 0, 0, 0,              // 8-byte int
      0x13, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  // negative: always 8 bytes
      0x14, 0, 0, 0, 0, 0, 0, 0, 0, 0x80, 0, 0, 0, 0, 0, 0, 0,  // beyond 2^63: 16 bytes
      0x22, 0x3F, 0x00, 0x00, 0x00,                 // float32
      0x23, 0x3F, 0xE0, 0, 0, 0, 0, 0, 0,           // float64
      0x80, 5,                                      // 1-byte UID
      0x81, 0x01, 0x2C,                             // 2-byte UID
      0x62, 0x00, 0x41, 0x00, 0xE9,                 // UTF-16BE string of 2 units
  };
  EXPECT_EQ(layout.objects, expected);
  EXPECT_EQ(layout.count, 12u);
  EXPECT_EQ(layout.refSize, 1u);
  EXPECT_EQ(layout.offsetSize, 1u);
}

TEST(BinaryPlistWriter, LongCountsAndWideReferences) {
  PropertyList plist;
  std::vector<uint32_t> elements;
  for (int i = 0; i < 300; ++i) elements.push_back(plist.addInteger(i));
  plist.setRoot(plist.addArray(elements));
  const Bytes file = WriteBinaryPlist(plist);
  const Layout layout = Split(file);
  // 301 objects need 2-byte references; a count of 300 follows the marker as an int.
  EXPECT_EQ(layout.refSize, 2u);
  EXPECT_EQ(layout.count, 301u);
  EXPECT_EQ(Bytes(layout.objects.begin(), layout.objects.begin() + 6),
            (Bytes{0xAF, 0x11, 0x01, 0x2C, 0x00, 0x01}));
  EXPECT_EQ(layout.offsetSize, 2u);
  // And the file reads back.
  auto back = PropertyList::read(SharedBytes(Bytes(file)), {});
  ASSERT_TRUE(back) << back.reason();
  EXPECT_EQ(back->at(back->root()).count, 300u);
  EXPECT_EQ(back->at(back->elementAt(back->root(), 299)).integer, 299);
}

std::shared_ptr<Bitmap> TwoPixels() {
  const uint8_t pixels[] = {255, 0, 0, 255, 0, 0, 64, 128};
  return Bitmap::fromRGBA(2, 1, pixels, 8, AlphaMode::Premultiplied);
}

// The archive whose structure verify_written.py knows.
Bytes WriterScenario() {
  test::RegisterTestClasses();
  KeyedArchiver a;
  a.encodeBoolForKey(true, "Flag");
  a.encodeIntForKey(7, "Count");
  a.encodeInt32ForKey(300, "Wide");
  a.encodeInt64ForKey(70000, "Wider");
  a.encodeIntegerForKey(int64_t{1} << 40, "Widest");
  a.encodeIntegerForKey(-1, "Negative");
  a.encodeValueForKey(ArchiveValue(UnsignedInteger{(uint64_t{1} << 63) + 1}), "Unsigned");
  a.encodeFloatForKey(0.5f, "Float");
  a.encodeDoubleForKey(0.1, "Double");
  a.encodeBytesForKey(Bytes{0, 255}, "Bytes");
  a.encodePointForKey({1.5, 2}, "Point");
  a.encodeRectForKey(MakeRect(0, 0, 640, 480), "Rect");
  a.encodeStringForKey("Gr\u00fc\u00dfe", "Title");
  a.encodeObjectForKey(nullptr, "Null");
  a.encodeIntForKey(5, "$key");

  const Color red = Color::calibratedRGB(1, 0, 0);
  a.encodeColorForKey(red, "Red");
  a.encodeColorForKey(Color::calibratedWhite(0.5, 0.25), "HalfGray");
  a.encodeColorForKey(Color::deviceRGB(0, 0.5, 1), "Device");
  a.encodeColorForKey(Color::deviceCMYK(0.1, 0.2, 0.3, 0.4, 0.5), "Cmyk");
  a.encodeColorForKey(Color::sRGB(0.25, 0.5, 1), "SRGB");
  a.encodeColorForKey(Color::catalog("System", "myColor", red), "Catalog");
  a.encodeShadowForKey(Shadow(std::nullopt, {2, -3}, 4), "Shadow");
  a.encodeShadowForKey(Shadow(red, {1, 0}, 0), "ShadowColored");

  BezierPath path;
  path.moveTo({1, 2});
  path.lineTo({10, 2});
  path.curveTo({10, 20}, {12, 5}, {12, 15});
  path.closePath();
  path.setLineCapStyle(LineCapStyle::Round);
  path.setLineWidth(2.5);
  a.encodeBezierPathForKey(path, "Path");
  BezierPath dashed;
  dashed.moveTo({0, 0});
  dashed.lineTo({5, 5});
  dashed.setWindingRule(WindingRule::EvenOdd);
  dashed.setLineJoinStyle(LineJoinStyle::Bevel);
  dashed.setMiterLimit(3);
  dashed.setFlatness(0.1);
  dashed.setLineDash({4, 2}, 2);
  a.encodeBezierPathForKey(dashed, "DashedPath");

  a.encodeAffineTransformForKey(AffineTransform::translation(10, 20), "Translation");
  a.encodeAffineTransformForKey(AffineTransform::scaling(2, 3), "Scale");
  a.encodeAffineTransformForKey(AffineTransform(2, 0, 0, 3, 4, 5), "ScaleMove");
  a.encodeAffineTransformForKey(AffineTransform(0, 1, -1, 0, 0, 0), "Rotation");
  a.encodeAffineTransformForKey(AffineTransform(), "Identity");
  a.encodeGradientForKey(Gradient::withStartingColor(red, red), "Gradient");

  ParagraphStyle centred;
  centred.alignment = TextAlignment::Center;
  ParagraphStyle tabbed;
  tabbed.alignment = TextAlignment::Left;
  tabbed.tabStops = std::vector<TextTab>{{10, TextTabType::Left, std::nullopt},
                                         {20, TextTabType::Right, TextAlignment::Natural}};
  tabbed.headIndent = 6;
  tabbed.baseWritingDirection = WritingDirection::LeftToRight;
  tabbed.allowsDefaultTighteningForTruncation = true;
  TextAttributes plain;
  plain.font = Font{"Helvetica", 12, 16};
  plain.paragraphStyle = centred;
  TextAttributes strong;
  strong.font = Font{"Helvetica-Bold", 12, 16};
  strong.foregroundColor = red;
  strong.paragraphStyle = tabbed;
  strong.underlineStyle = underline::kSingle;
  AttributedString text = AttributedString::fromUTF8("Hello ", plain);
  text.append(u"bold", strong);
  text.append(u" world", plain);
  a.encodeAttributedStringForKey(text, "Text");
  a.encodeAttributedStringForKey(AttributedString::fromUTF8("\u00e9t\u00e9", plain), "OneRun",
                                 AttributedStringClass::AttributedString);

  const auto bitmap = TwoPixels();
  a.encodeImageForKey(ArchivedImage{{2, 1}, {bitmap}}, "Image");
  a.encodeImageForKey(ArchivedImage{{2, 1}, {bitmap}}, "OtherImage");

  a.encodeValueForKey(ArchiveValue::array({"a", int64_t{1}, 2.5}), "Array");
  a.encodeValueForKey(
      ArchiveValue::dictionary({{"k", ArchiveValue(MakePoint(3, 4))}}).setMutable(true),
      "Dictionary");
  a.encodeValueForKey(ArchiveValue::set({true}), "Set");
  a.encodeValueForKey(ArchiveValue(NullObject{}), "NullObject");
  a.encodeValueForKey(ArchiveValue(Date{1.5}), "Date");
  a.encodeValueForKey(ArchiveValue("grow").setMutable(true), "MutableString");

  auto node = std::make_shared<test::TestNode>();
  node->name = "node";
  auto leaf = std::make_shared<test::TestLeaf>();
  leaf->name = "leaf";
  leaf->weight = 0.25;
  auto other = std::make_shared<test::TestLeaf>();
  other->name = "other";
  node->children = {leaf, other, leaf};
  node->partner = leaf;
  a.encodeObjectForKey(node, "Node");
  return a.finishEncoding();
}

TEST(KeyedArchiver, OutputMatchesTheIndependentReader) {
  EXPECT_EQ(test::VerifyIndependently("writer_scenario.bplist", WriterScenario()), "");
}

TEST(KeyedArchiver, EncodingAfterFinishingIsRefused) {
  KeyedArchiver archiver;
  archiver.encodeIntForKey(1, "One");
  const Bytes first = archiver.finishEncoding();
  EXPECT_FALSE(first.empty());
  LogCapture log;
  archiver.encodeIntForKey(2, "Two");
  EXPECT_TRUE(archiver.finishEncoding().empty());
  EXPECT_TRUE(log.contains("Error: KeyedArchiver: encoding after finishEncoding"));
  KeyedUnarchiver back{SharedBytes(Bytes(first))};
  EXPECT_EQ(back.decodeIntForKey("One"), 1);
  EXPECT_FALSE(back.containsValueForKey("Two"));
}

}  // namespace
}  // namespace paintdoc
