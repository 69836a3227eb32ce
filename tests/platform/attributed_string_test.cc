// Rich-text values: UTF-16 text with attribute runs, paragraph-style
// defaults and tab stops, and the UTF-8 ↔ UTF-16 conversions they rely on.
#include <gtest/gtest.h>

#include "platform/text/attributed_string.h"
#include "platform/text/utf16.h"

namespace paintdoc {
namespace {

TextAttributes Sized(double size) {
  TextAttributes a;
  a.font = Font{"Helvetica", size, Font::kOrdinaryFontFlags};
  return a;
}

std::vector<size_t> Lengths(const AttributedString& s) {
  std::vector<size_t> lengths;
  for (const AttributeRun& run : s.runs()) lengths.push_back(run.length);
  return lengths;
}

TEST(Utf16, ConvertsAllPlanesAndReplacesIllFormedInput) {
  EXPECT_EQ(Utf8ToUtf16("a\u00e9\u20ac\U0001F600"), (std::u16string{u'a', 0xE9, 0x20AC, 0xD83D, 0xDE00}));
  EXPECT_EQ(Utf16ToUtf8(u"a\u00e9\u20ac\U0001F600"), "a\u00e9\u20ac\U0001F600");
  // A lone surrogate, a truncated sequence, an overlong form, a stray continuation.
  EXPECT_EQ(Utf16ToUtf8(std::u16string{0xD800, u'x'}), "\uFFFDx");
  EXPECT_EQ(Utf8ToUtf16("\xE2\x82"), u"\uFFFD");
  EXPECT_EQ(Utf8ToUtf16("\xC0\xAF"), u"\uFFFD");
  EXPECT_EQ(Utf8ToUtf16("\x80z"), u"\uFFFDz");
}

TEST(AttributedString, AppendMergesEqualNeighbours) {
  AttributedString s = AttributedString::fromUTF8("ab", Sized(10));
  s.append(u"cd", Sized(10));
  s.append(u"\U0001F600", Sized(12));  // one code point, two UTF-16 units
  s.append(u"", Sized(14));
  EXPECT_EQ(s.length(), 6u);
  EXPECT_EQ(Lengths(s), (std::vector<size_t>{4, 2}));
  EXPECT_EQ(s.attributesAt(3).font->pointSize, 10);
  EXPECT_EQ(s.attributesAt(4).font->pointSize, 12);
  EXPECT_FALSE(s.attributesAt(6).font);

  AttributedString t = AttributedString::fromUTF8("x", Sized(12));
  t.append(s);
  EXPECT_EQ(t.utf8Text(), "xabcd\U0001F600");
  EXPECT_EQ(Lengths(t), (std::vector<size_t>{1, 4, 2}));
}

TEST(AttributedString, SetAttributesSplitsAndMergesRuns) {
  AttributedString s = AttributedString::fromUTF8("0123456789", Sized(10));
  s.setAttributes(Sized(20), 3, 4);
  EXPECT_EQ(Lengths(s), (std::vector<size_t>{3, 4, 3}));
  EXPECT_EQ(s.attributesAt(2).font->pointSize, 10);
  EXPECT_EQ(s.attributesAt(3).font->pointSize, 20);
  EXPECT_EQ(s.attributesAt(6).font->pointSize, 20);
  EXPECT_EQ(s.attributesAt(7).font->pointSize, 10);
  // Across a run boundary and to the end; the range is clamped to the text.
  s.setAttributes(Sized(30), 5, 100);
  EXPECT_EQ(Lengths(s), (std::vector<size_t>{3, 2, 5}));
  // Restoring the original attributes merges everything back into one run.
  s.setAttributes(Sized(10), 0, 10);
  EXPECT_EQ(Lengths(s), (std::vector<size_t>{10}));
  s.setAttributes(Sized(40), 0, 1);
  EXPECT_EQ(Lengths(s), (std::vector<size_t>{1, 9}));
  s.setAttributes(Sized(50), 10, 5);  // past the end: nothing
  EXPECT_EQ(Lengths(s), (std::vector<size_t>{1, 9}));
}

TEST(AttributedString, AssignRequiresRunsCoveringTheText) {
  AttributedString s;
  EXPECT_FALSE(s.assign(u"abc", {{2, Sized(10)}}));
  EXPECT_TRUE(s.empty());
  EXPECT_TRUE(s.assign(u"abc", {{1, Sized(10)}, {0, Sized(11)}, {2, Sized(10)}}));
  EXPECT_EQ(Lengths(s), (std::vector<size_t>{3}));
}

TEST(ParagraphStyle, DefaultsAndTabStops) {
  const ParagraphStyle style = ParagraphStyle::defaultStyle();
  EXPECT_EQ(style.alignment, TextAlignment::Natural);
  EXPECT_TRUE(style.allowsDefaultTighteningForTruncation);
  EXPECT_EQ(style.tighteningFactorForTruncation, 0.05);
  const auto stops = style.effectiveTabStops(100);
  ASSERT_EQ(stops.size(), 3u);  // every 28 points: 28, 56, 84
  EXPECT_EQ(stops[2].location, 84);
  ParagraphStyle explicitStops;
  explicitStops.tabStops = std::vector<TextTab>{{10, TextTabType::Decimal, std::nullopt}};
  EXPECT_EQ(explicitStops.effectiveTabStops(1000).size(), 1u);
  EXPECT_EQ(explicitStops.effectiveTabStops(1000)[0].effectiveAlignment(), TextAlignment::Right);
  EXPECT_EQ((TextTab{0, TextTabType::Right, TextAlignment::Justified}).effectiveAlignment(),
            TextAlignment::Justified);
  EXPECT_LE(style.effectiveTabStops(1e12).size(), 10000u);
}

}  // namespace
}  // namespace paintdoc
