// Read → write → read keeps every value of every fixture, and writing what
// was read gives the same bytes again; deep copies through archives keep
// object graphs.
#include <gtest/gtest.h>

#include "support/archive_test_support.h"
#include "archive/encoded_data.h"
#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "platform/values/bitmap.h"
#include "platform/values/log.h"

namespace paintdoc {
namespace {

// Values equal, bitmaps compared by pixels and point size (a bitmap read back
// is a new instance), model objects by class and name.
bool SameValue(const ArchiveValue& a, const ArchiveValue& b, std::string& why) {
  if (a.kind() != b.kind() || a.isMutable() != b.isMutable()) {
    why = "kinds differ";
    return false;
  }
  if (auto x = a.asBitmap()) {
    auto y = b.asBitmap();
    if (x->samePixels(*y) && x->size() == y->size()) return true;
    why = "bitmaps differ";
    return false;
  }
  if (const auto* x = a.as<ArchivedImage>()) {
    const auto* y = b.as<ArchivedImage>();
    if (x->size != y->size || x->imageFlags != y->imageFlags ||
        x->representations.size() != y->representations.size()) {
      why = "images differ";
      return false;
    }
    for (size_t i = 0; i < x->representations.size(); ++i) {
      if (!SameValue(ArchiveValue(x->representations[i]), ArchiveValue(y->representations[i]), why)) {
        return false;
      }
    }
    return true;
  }
  if (const auto* x = a.asArray()) {
    const auto* y = b.asArray();
    if (x->size() != y->size()) return why = "array sizes differ", false;
    for (size_t i = 0; i < x->size(); ++i) {
      if (!SameValue((*x)[i], (*y)[i], why)) return false;
    }
    return true;
  }
  if (const auto* x = a.asDictionary()) {
    const auto* y = b.asDictionary();
    if (x->size() != y->size()) return why = "dictionary sizes differ", false;
    for (size_t i = 0; i < x->size(); ++i) {
      if (!SameValue((*x)[i].first, (*y)[i].first, why) ||
          !SameValue((*x)[i].second, (*y)[i].second, why)) {
        return false;
      }
    }
    return true;
  }
  if (auto x = a.asObject<test::TestNode>()) {
    auto y = b.asObject<test::TestNode>();
    if (x->className() == y->className() && x->name == y->name) return true;
    return why = "objects differ", false;
  }
  if (a == b) return true;
  why = "values differ";
  return false;
}

// Every top-level value of an archive, rewritten under the same keys.
std::vector<uint8_t> Rewrite(KeyedUnarchiver& source) {
  KeyedArchiver archiver;
  for (const std::string& key : source.allKeys()) {
    archiver.encodeValueForKey(source.decodeValueForKey(key), key);
  }
  return archiver.finishEncoding();
}

class RoundTrip : public ::testing::TestWithParam<const char*> {};

TEST_P(RoundTrip, EveryValueSurvivesAndRewritingIsStable) {
  test::RegisterTestClasses();
  LogCapture quiet;  // fixtures hold deliberately broken values
  KeyedUnarchiver original(test::ArchiveFixture(GetParam()));
  ASSERT_TRUE(original.isValid()) << original.error();
  const std::vector<uint8_t> written = Rewrite(original);
  KeyedUnarchiver reread{SharedBytes(std::vector<uint8_t>(written))};
  ASSERT_TRUE(reread.isValid()) << reread.error();

  KeyedUnarchiver again(test::ArchiveFixture(GetParam()));
  for (const std::string& key : again.allKeys()) {
    const ArchiveValue before = again.decodeValueForKey(key);
    const ArchiveValue after = reread.decodeValueForKey(key);
    std::string why;
    EXPECT_TRUE(SameValue(before, after, why)) << GetParam() << " \"" << key << "\": " << why;
  }
  // What was read back is written to the very same bytes.
  EXPECT_EQ(Rewrite(reread), written) << GetParam();

  // And an independent reader agrees on the written layout.
  EXPECT_EQ(test::VerifyIndependently(std::string("rewritten_") + GetParam(), written,
                                      "--structure-only"),
            "");
}

INSTANTIATE_TEST_SUITE_P(Fixtures, RoundTrip,
                         ::testing::Values("foundation.plist", "foundation_xml.plist",
                                           "colors.plist", "graphics.plist", "text.plist",
                                           "image.plist", "objects.plist"));

TEST(RoundTrip, PlatformValuesWrittenFromScratch) {
  BezierPath path = BezierPath::withRoundedRect(MakeRect(0.5, 1.25, 100, 50), 8, 8);
  path.appendOvalInRect(MakeRect(10, 10, 20, 30));
  path.setLineDash({5, 2.5, 1}, 0.5);
  path.setLineCapStyle(LineCapStyle::Square);
  path.setLineWidth(3);
  Gradient gradient = Gradient::withColors(
      {Color::calibratedRGB(1, 0.5, 0.25, 0.125), Color::deviceWhite(0.5), Color::sRGB(0, 0.25, 1)},
      {0, 0.3, 1}, ColorSpaceKind::SRGB);
  Shadow shadow(Color::displayP3(0.1, 0.2, 0.3, 0.4), {-2.5, 7}, 3.25);
  TextAttributes attributes;
  attributes.font = Font{"Times-Roman", 18.5, 16};
  attributes.backgroundColor = Color::deviceCMYK(0.1, 0.2, 0.3, 0.4);
  attributes.strikethroughStyle = underline::kDouble | underline::kByWord;
  attributes.strikethroughColor = Color::blueColor();
  attributes.strokeWidth = -3;
  attributes.strokeColor = Color::catalog("System", "textColor", Color::blackColor());
  attributes.shadow = shadow;
  attributes.baselineOffset = 2;
  attributes.obliqueness = 0.25;
  attributes.expansion = 0.1;
  attributes.superscript = 1;
  attributes.ligature = 0;
  attributes.link = "https://example.org/";
  ParagraphStyle style;
  style.alignment = TextAlignment::Justified;
  style.minimumLineHeight = 10;
  style.maximumLineHeight = 20;
  style.lineHeightMultiple = 1.5;
  style.tabStops = std::vector<TextTab>{};
  attributes.paragraphStyle = style;
  AttributedString text = AttributedString::fromUTF8("\U0001F600 emoji", attributes);
  text.setAttributes({}, 2, 3);

  // Paths keep their points and dashes as 32-bit floats.
  BezierPath stored = path;
  for (size_t i = 0; i < stored.elementCount(); ++i) {
    auto points = stored.elementAt(i).points;
    for (Point& p : points) p = {static_cast<float>(p.x), static_cast<float>(p.y)};
    stored.setElementPoints(i, points);
  }
  const std::vector<ArchiveValue> values = {
      ArchiveValue(stored),   ArchiveValue(gradient),
      ArchiveValue(shadow),   ArchiveValue(AffineTransform(1.5, 0.25, -0.25, 1.5, 3, 4)),
      ArchiveValue(text),     ArchiveValue(Color::catalog("Apple", "x", Color::grayColor())),
      ArchiveValue(Font{"Menlo", 9, 1044}), ArchiveValue(MakeRect(-1, -2, 3.5, 4.25)),
  };
  KeyedArchiver archiver;
  for (size_t i = 0; i < values.size(); ++i) archiver.encodeValueForKey(values[i], std::to_string(i));
  KeyedUnarchiver back{SharedBytes(archiver.finishEncoding())};
  for (size_t i = 0; i < values.size(); ++i) {
    EXPECT_EQ(back.decodeValueForKey(std::to_string(i)), values[i]) << "value " << i;
  }
}

TEST(EncodedData, DeepCopiesKeepSharingAndClasses) {
  test::RegisterTestClasses();
  auto root = std::make_shared<test::TestNode>();
  root->name = "root";
  auto leaf = std::make_shared<test::TestLeaf>();
  leaf->name = "leaf";
  leaf->weight = 4;
  root->children = {leaf, leaf};
  root->partner = root;  // a cycle back to the root

  LogCapture log;
  auto copy = CopyByArchiving(*root);
  ASSERT_TRUE(copy);
  EXPECT_NE(copy, root);
  ASSERT_EQ(copy->children.size(), 2u);
  EXPECT_NE(copy->children[0], leaf);
  EXPECT_EQ(copy->children[0], copy->children[1]);
  auto copiedLeaf = std::dynamic_pointer_cast<test::TestLeaf>(copy->children[0]);
  ASSERT_TRUE(copiedLeaf);
  EXPECT_EQ(copiedLeaf->weight, 4);
  // The root referring to itself: never handed out while it is being built.
  EXPECT_FALSE(copy->partner);
  EXPECT_TRUE(log.contains("refers to itself while it is being decoded"));

  const std::vector<uint8_t> bytes = EncodedData(*leaf);
  const auto decoded = ObjectWithEncodedData(SharedBytes(bytes));
  ASSERT_TRUE(decoded) << decoded.reason();
  auto back = std::dynamic_pointer_cast<test::TestLeaf>(*decoded);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->name, "leaf");
  root->partner.reset();  // let the test's own cycle go
}

TEST(EncodedData, ArraysAsTheRootAndNullElements) {
  test::RegisterTestClasses();
  auto a = std::make_shared<test::TestNode>();
  a->name = "a";
  LogCapture log;
  KeyedArchiver archiver;
  archiver.encodeArrayOfObjectsForKey(std::vector<std::shared_ptr<test::TestNode>>{a, nullptr, a},
                                      "root");
  EXPECT_TRUE(log.contains("holds a null object"));
  KeyedUnarchiver back{SharedBytes(archiver.finishEncoding())};
  const auto nodes = back.decodeArrayOfObjectsForKey<test::TestNode>("root");
  ASSERT_EQ(nodes.size(), 2u);
  EXPECT_EQ(nodes[0], nodes[1]);
  EXPECT_EQ(nodes[0]->name, "a");
}

}  // namespace
}  // namespace paintdoc
