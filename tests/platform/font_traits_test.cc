// Font comparison and trait conversion against the installed fonts (the
// Liberation, URW base 35 and DejaVu families scripts/bootstrap installs).
#include "platform/text/font_traits.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "platform/text/font.h"

namespace paintdoc {
namespace {

TEST(WtIsEqualWithFont, SameNameAndSizesWithinATenth) {
  struct Case {
    const char* what;
    std::optional<Font> other;
    bool equal;
  };
  const Font font{"Helvetica", 12.0, Font::kOrdinaryFontFlags};
  const Case cases[] = {
      {"none", std::nullopt, false},
      {"12.05 points", Font{"Helvetica", 12.05, Font::kOrdinaryFontFlags}, true},
      {"11.91 points", Font{"Helvetica", 11.91, Font::kOrdinaryFontFlags}, true},
      {"12.11 points", Font{"Helvetica", 12.11, Font::kOrdinaryFontFlags}, false},
      {"other flags", Font{"Helvetica", 12.0, 0}, true},
      {"another name", Font{"Helvetica-Bold", 12.0, Font::kOrdinaryFontFlags}, false},
  };
  for (const Case& c : cases) EXPECT_EQ(wt_isEqualWithFont(font, c.other), c.equal) << c.what;
  EXPECT_FALSE(wt_isEqualWithFont(Font{}, std::nullopt));
}

TEST(ConvertFont, FindsTheFaceWithExactlyTheRequestedTraits) {
  struct Case {
    const char* name;
    FontTraitMask traits;
    const char* converted;
  };
  constexpr FontTraitMask kBoldItalic = kBoldFontMask | kItalicFontMask;
  const Case cases[] = {
      {"LiberationSans", kBoldFontMask, "LiberationSans-Bold"},
      {"LiberationSans-BoldItalic", 0, "LiberationSans"},
      {"LiberationSans-Bold", kItalicFontMask, "LiberationSans-Italic"},  // bold goes first
      {"LiberationSerif-Italic", kBoldItalic, "LiberationSerif-BoldItalic"},
      {"NimbusSans-BoldItalic", kBoldFontMask, "NimbusSans-Bold"},
      {"NimbusSansNarrow-Regular", kBoldItalic, "NimbusSansNarrow-BoldOblique"},  // stays narrow
      {"LiberationMono", kBoldFontMask | 0x10, "LiberationMono-Bold"},  // other bits ignored
      // The family has no such face: the font stays as it is.
      {"Z003-MediumItalic", 0, "Z003-MediumItalic"},
      {"Z003-MediumItalic", kBoldFontMask, "Z003-MediumItalic"},
      {"D050000L", kBoldFontMask, "D050000L"},
      // Not installed: the name is made from the family and the style.
      {"Helvetica-Bold", 0, "Helvetica"},
      {"Helvetica", kBoldItalic, "Helvetica-BoldItalic"},
      {"Courier-Oblique", kBoldItalic, "Courier-BoldOblique"},
      {"Arial-BoldMT", kItalicFontMask, "Arial-Italic"},
      {"", kBoldFontMask, ""},
  };
  for (const Case& c : cases) {
    const std::optional<Font> converted = convertFont(Font{c.name, 17.5, 3}, c.traits);
    ASSERT_TRUE(converted) << c.name;
    EXPECT_EQ(converted->name, c.converted) << c.name << " to " << c.traits;
    EXPECT_EQ(converted->pointSize, 17.5) << c.name;
    EXPECT_EQ(converted->flags, 3) << c.name;
  }
  EXPECT_EQ(convertFont(std::nullopt, kBoldFontMask), std::nullopt);
}

TEST(TraitsOfFont, FromTheInstalledFaceElseFromTheName) {
  const std::pair<const char*, FontTraitMask> cases[] = {
      {"LiberationSerif-BoldItalic", kBoldFontMask | kItalicFontMask},
      {"NimbusSansNarrow-Oblique", kItalicFontMask},
      {"C059-Roman", 0},  // a medium weight is not bold
      {"Helvetica-BoldOblique", kBoldFontMask | kItalicFontMask},
      {"Times-Roman", 0},
  };
  for (const auto& [name, traits] : cases) EXPECT_EQ(traitsOfFont(Font{name}), traits) << name;
}

}  // namespace
}  // namespace paintdoc
