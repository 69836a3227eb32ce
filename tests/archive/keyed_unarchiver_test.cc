// Reading keyed archives written by an independent writer: top-level keys,
// lenient scalars, the Foundation value classes in their current and older
// forms, and model objects. The fixtures of tests/data/archive were written
// once with Python's plistlib, object by object in the platform archiver's
// layout, by a script kept in history (git show
// 55da37d:tests/archive/make_fixtures.py); `plistutil -i FILE` shows one.
#include <gtest/gtest.h>

#include <cmath>

#include "support/archive_test_support.h"
#include "archive/encoded_data.h"
#include "archive/keyed_unarchiver.h"
#include "platform/values/log.h"

namespace paintdoc {
namespace {

using test::ArchiveFixture;

class FoundationArchive : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    coder = std::make_unique<KeyedUnarchiver>(ArchiveFixture(GetParam()));
    ASSERT_TRUE(coder->isValid()) << coder->error();
  }
  std::unique_ptr<KeyedUnarchiver> coder;
};

TEST_P(FoundationArchive, ScalarsConvertBetweenNumberKinds) {
  KeyedUnarchiver& c = *coder;
  EXPECT_TRUE(c.decodeBoolForKey("Flag"));
  EXPECT_FALSE(c.decodeBoolForKey("FlagOff"));
  EXPECT_EQ(c.decodeIntForKey("Small"), 7);
  EXPECT_EQ(c.decodeInt32ForKey("Medium"), 300);
  EXPECT_EQ(c.decodeInt64ForKey("Large"), 70000);
  EXPECT_EQ(c.decodeInt64ForKey("Huge"), int64_t{1} << 40);
  EXPECT_EQ(c.decodeIntegerForKey("Negative"), -5);
  EXPECT_DOUBLE_EQ(c.decodeDoubleForKey("Real"), 2.5);
  EXPECT_FLOAT_EQ(c.decodeFloatForKey("Real"), 2.5f);
  // Reals truncate toward zero; integers and booleans read as reals.
  EXPECT_EQ(c.decodeIntForKey("RealForInt"), -3);
  EXPECT_DOUBLE_EQ(c.decodeDoubleForKey("IntForReal"), 9.0);
  EXPECT_DOUBLE_EQ(c.decodeDoubleForKey("Flag"), 1.0);
  EXPECT_TRUE(c.decodeBoolForKey("Small"));
  // Out of range for the type asked: saturates instead of wrapping.
  EXPECT_EQ(c.decodeIntForKey("Huge"), INT32_MAX);
  EXPECT_EQ(c.decodeInt64ForKey("Big"), INT64_MAX);
  EXPECT_DOUBLE_EQ(c.decodeDoubleForKey("Big"), 9223372036854775813.0);
  // A key beginning with "$" is stored escaped.
  EXPECT_TRUE(c.containsValueForKey("$dollar"));
  EXPECT_EQ(c.decodeIntForKey("$dollar"), 11);
}

TEST_P(FoundationArchive, MissingKeysReadZeroFalseOrAbsent) {
  KeyedUnarchiver& c = *coder;
  EXPECT_FALSE(c.containsValueForKey("Nothing"));
  EXPECT_FALSE(c.decodeBoolForKey("Nothing"));
  EXPECT_EQ(c.decodeIntForKey("Nothing"), 0);
  EXPECT_EQ(c.decodeDoubleForKey("Nothing"), 0.0);
  EXPECT_EQ(c.decodeRectForKey("Nothing"), ZeroRect());
  EXPECT_FALSE(c.decodeStringForKey("Nothing"));
  EXPECT_FALSE(c.decodeObjectForKey("Nothing"));
  EXPECT_TRUE(c.decodeValueForKey("Nothing").isAbsent());
  // A null reference is a value that is present: the key is there.
  EXPECT_TRUE(c.containsValueForKey("NullRef"));
  EXPECT_TRUE(c.decodeValueForKey("NullRef").isAbsent());
  // Scalars asked of objects, and objects asked of scalars.
  EXPECT_EQ(c.decodeIntForKey("Title"), 0);
  EXPECT_FALSE(c.decodeStringForKey("Small"));
  EXPECT_FALSE(c.decodeColorForKey("Title"));
}

TEST_P(FoundationArchive, GeometryStringsDataAndDates) {
  KeyedUnarchiver& c = *coder;
  EXPECT_EQ(c.decodePointForKey("Point"), MakePoint(1.5, -2));
  EXPECT_EQ(c.decodeSizeForKey("Size"), MakeSize(62, 62));
  EXPECT_EQ(c.decodeRectForKey("Rect"), MakeRect(-269, -168.5, 538, 337));
  EXPECT_EQ(c.decodeRectForKey("LongRect"), MakeRect(1, 116.45652049779892, 235, 16));
  const auto bytes = c.decodeBytesForKey("Bytes");
  ASSERT_TRUE(bytes);
  EXPECT_EQ(bytes->copy(), (std::vector<uint8_t>{0, 1, 2, 255}));
  EXPECT_FALSE(c.decodeBytesForKey("Small"));

  EXPECT_EQ(c.decodeStringForKey("Title"), "Hello");
  EXPECT_EQ(c.decodeStringForKey("Unicode"), "Gr\u00fc\u00dfe \u2713 \U0001F600");
  EXPECT_EQ(c.decodeStringForKey("MutableTitle"), "Mutable");
  EXPECT_TRUE(c.decodeValueForKey("MutableTitle").isMutable());
  EXPECT_FALSE(c.decodeValueForKey("Title").isMutable());
  EXPECT_EQ(c.decodeStringForKey("OldMutable"), "caf\u00e9");
  const auto data = c.decodeDataForKey("Data");
  ASSERT_TRUE(data);
  EXPECT_EQ(std::string(data->asStringView()), std::string("data\0bytes", 10));
  EXPECT_EQ(c.decodeDataForKey("MutableData")->copy(), (std::vector<uint8_t>{0x10, 0x20}));
  EXPECT_EQ(c.decodeNumberForKey("Number"), 42.0);
  EXPECT_EQ(c.decodeNumberForKey("RealNumber"), 0.125);
  const ArchiveValue when = c.decodeValueForKey("When");
  const Date* date = when.as<Date>();
  ASSERT_TRUE(date);
  EXPECT_DOUBLE_EQ(date->secondsSinceReferenceDate, 86401.0);
  EXPECT_DOUBLE_EQ(c.decodeValueForKey("DateObject").as<Date>()->secondsSinceReferenceDate,
                   86400.5);
}

TEST_P(FoundationArchive, CollectionsInEveryForm) {
  KeyedUnarchiver& c = *coder;
  const ArchiveValue array = c.decodeValueForKey("Array");
  ASSERT_EQ(array.kind(), ArchiveValue::Kind::Array);
  ASSERT_EQ(array.asArray()->size(), 3u);
  EXPECT_EQ(*array.asArray()->at(0).asString(), "a");
  EXPECT_EQ(array.asArray()->at(1).toInt64(), 1);
  EXPECT_EQ(array.asArray()->at(2).toDouble(), 2.5);
  EXPECT_FALSE(array.isMutable());
  EXPECT_TRUE(c.decodeValueForKey("MutableArray").isMutable());

  const ArchiveValue old = c.decodeValueForKey("OldArray");
  ASSERT_TRUE(old.asArray());
  EXPECT_EQ(*old.asArray(), (ValueArray{"x", "y"}));

  const ArchiveValue dictionary = c.decodeValueForKey("Dictionary");
  ASSERT_TRUE(dictionary.asDictionary());
  EXPECT_EQ(dictionary.valueForKey("one")->toInt64(), 1);
  EXPECT_EQ(dictionary.valueForKey("two")->toInt64(), 2);
  EXPECT_EQ(*c.decodeValueForKey("OldDictionary").valueForKey("k")->asString(), "v");

  const ArchiveValue set = c.decodeValueForKey("Set");
  EXPECT_EQ(set.kind(), ArchiveValue::Kind::Set);
  EXPECT_EQ(set.asArray()->size(), 2u);
  EXPECT_EQ(*c.decodeValueForKey("OrderedSet").asArray(), (ValueArray{"first", "second"}));

  const ArchiveValue mixed = c.decodeValueForKey("Mixed");
  EXPECT_EQ(*mixed.valueForKey("name")->asString(), "layer");
  EXPECT_EQ(*mixed.valueForKey("list")->asArray(), (ValueArray{true, int64_t{-1}}));
}

TEST_P(FoundationArchive, BoxedValuesNullAndFinishing) {
  KeyedUnarchiver& c = *coder;
  EXPECT_EQ(c.decodePointValueForKey("PointValue"), MakePoint(3, 4));
  EXPECT_EQ(c.decodeSizeValueForKey("SizeValue"), MakeSize(5, 6));
  EXPECT_EQ(c.decodeRectValueForKey("RectValue"), MakeRect(1, 2, 3, 4));
  const ArchiveValue rangeValue = c.decodeValueForKey("RangeValue");
  const Range* range = rangeValue.as<Range>();
  ASSERT_TRUE(range);
  EXPECT_EQ(*range, (Range{5, 7}));
  EXPECT_EQ(c.decodeValueForKey("Null").kind(), ArchiveValue::Kind::Null);
  // decodePointForKey also accepts a boxed point.
  EXPECT_EQ(c.decodePointForKey("PointValue"), MakePoint(3, 4));

  // The keys of the current object; after finishing, nothing more is read.
  const auto keys = c.allKeys();
  EXPECT_NE(std::find(keys.begin(), keys.end(), "$dollar"), keys.end());
  EXPECT_NE(std::find(keys.begin(), keys.end(), "Resolution"), keys.end());
  c.finishDecoding();
  EXPECT_FALSE(c.containsValueForKey("Small"));
  EXPECT_EQ(c.decodeIntForKey("Small"), 0);
}

INSTANTIATE_TEST_SUITE_P(BinaryAndXml, FoundationArchive,
                         ::testing::Values("foundation.plist", "foundation_xml.plist"));

class ObjectArchive : public ::testing::Test {
 protected:
  void SetUp() override {
    test::RegisterTestClasses();
    ASSERT_TRUE(coder.isValid()) << coder.error();
  }
  LogCapture log;
  KeyedUnarchiver coder{ArchiveFixture("objects.plist")};
};

TEST_F(ObjectArchive, SharedObjectsDecodeToOneInstance) {
  auto root = coder.decodeObjectForKey<test::TestNode>("root");
  ASSERT_TRUE(root);
  EXPECT_EQ(root->name, "root");
  // Children: shared, (unknown class), second, shared again, (refused), (a string).
  ASSERT_EQ(root->children.size(), 3u);
  EXPECT_EQ(root->children[0]->name, "shared");
  EXPECT_EQ(root->children[1]->name, "second");
  EXPECT_EQ(root->children[0], root->children[2]);
  EXPECT_EQ(root->partner, root->children[0]);
  auto leaf = std::dynamic_pointer_cast<test::TestLeaf>(root->partner);
  ASSERT_TRUE(leaf);
  EXPECT_EQ(leaf->weight, 2.5);
  EXPECT_TRUE(log.contains("unknown class \"MysteryDraw\""));
  EXPECT_TRUE(log.contains("not an object"));
}

TEST_F(ObjectArchive, ObjectsUnderConstructionAreNeverHandedOut) {
  auto loop = coder.decodeObjectForKey<test::TestNode>("Loop");
  ASSERT_TRUE(loop);
  EXPECT_EQ(loop->name, "loop");
  EXPECT_FALSE(loop->partner);
  EXPECT_TRUE(loop->partnerWasNull);
  EXPECT_TRUE(log.contains("refers to itself"));
  // Once built, later references answer the finished object.
  EXPECT_EQ(coder.decodeObjectForKey<test::TestNode>("Loop"), loop);
}

TEST_F(ObjectArchive, UnknownClassesAndWrongTypesReadAsNull) {
  EXPECT_FALSE(coder.decodeObjectForKey("Mystery"));
  EXPECT_FALSE(coder.decodeObjectForKey("Text"));
  EXPECT_EQ(coder.decodeStringForKey("Text"), "just text");
  // A node asked as a leaf: wrong class, logged.
  auto root = coder.decodeObjectForKey<test::TestNode>("root");
  ASSERT_TRUE(root);
  EXPECT_FALSE(coder.decodeObjectForKey<test::TestLeaf>("root"));
  EXPECT_TRUE(log.contains("is a TestNode, not the class expected"));
}

TEST(DocumentContainer, TopLevelKeysAndTheInnerArchive) {
  test::RegisterTestClasses();
  KeyedUnarchiver outer(ArchiveFixture("container.plist"));
  ASSERT_TRUE(outer.isValid()) << outer.error();
  EXPECT_TRUE(outer.containsValueForKey("PaintData"));
  EXPECT_TRUE(outer.containsValueForKey("Resolution"));
  EXPECT_EQ(outer.decodeIntegerForKey("Version"), 10);
  const auto paintData = outer.decodeDataForKey("PaintData");
  ASSERT_TRUE(paintData);
  // The inner archive is read straight from the outer file's bytes.
  auto canvas = KeyedUnarchiver::unarchiveObjectWithData<test::TestNode>(*paintData);
  ASSERT_TRUE(canvas) << canvas.reason();
  EXPECT_EQ((*canvas)->name, "canvas");
}

TEST(DocumentContainer, DataThatIsNoKeyedArchive) {
  const std::pair<const char*, const char*> cases[] = {
      {"plain_dictionary.plist", "no \"$objects\" array"},
      {"no_objects.plist", "no \"$objects\" array"},
      {"image_2x2.tiff", "XML property list"},
  };
  for (const auto& [file, message] : cases) {
    KeyedUnarchiver coder(ArchiveFixture(file));
    EXPECT_FALSE(coder.isValid()) << file;
    EXPECT_NE(coder.error().find(message), std::string::npos) << file << ": " << coder.error();
    EXPECT_FALSE(coder.containsValueForKey("root"));
  }
  const auto nothing = ObjectWithEncodedData(SharedBytes());
  EXPECT_FALSE(nothing);
  EXPECT_EQ(nothing.reason(), "not a keyed archive: no data");
}

}  // namespace
}  // namespace paintdoc
