// Which installed faces show the fonts documents name: the name's family and
// style words, fontconfig's metric twins, our own table for the faces
// fontconfig does not know, and a reported sans fallback for the rest.
#include <gtest/gtest.h>

#include "platform/text/font_mapping.h"

namespace paintdoc {
namespace {

TEST(FontMapping, PostScriptNamesGiveFamilyWeightAndSlant) {
  struct Case {
    const char* name;
    const char* family;
    int weight;
    bool italic;
  };
  for (const Case& c : {Case{"Helvetica", "Helvetica", 400, false},
                        Case{"Helvetica-Bold", "Helvetica", 700, false},
                        Case{"Helvetica-BoldOblique", "Helvetica", 700, true},
                        Case{"ArialMT", "Arial", 400, false},
                        Case{"Arial-BoldItalicMT", "Arial", 700, true},
                        Case{"TimesNewRomanPSMT", "Times New Roman", 400, false},
                        Case{"HelveticaNeue-Light", "Nimbus Sans", 300, false},
                        Case{"Avenir-SemiBold", "Avenir", 600, false},
                        Case{"PingFangSC-Regular", "Noto Sans CJK SC", 400, false},
                        Case{"HiraginoSans-W6", "Noto Sans CJK JP", 700, false},
                        Case{"HiraMinProN-W3", "Noto Serif CJK JP", 400, false},
                        Case{"AppleColorEmoji", "Noto Color Emoji", 400, false}}) {
    const FontFace face = FaceRequestedByName(c.name);
    EXPECT_EQ(face.family, c.family) << c.name;
    EXPECT_EQ(face.weight, c.weight) << c.name;
    EXPECT_EQ(face.italic, c.italic) << c.name;
  }
}

// The fonts scripts/bootstrap installs are what these answers rely on.
TEST(FontMapping, DesktopFacesMapToInstalledTwinsAndUnknownOnesFallBack) {
  struct Case {
    const char* name;
    const char* shownAs;  // family of the installed face
    bool fallback;
  };
  for (const Case& c : {Case{"Helvetica", "Nimbus Sans", false},
                        Case{"Helvetica-Bold", "Nimbus Sans", false},
                        Case{"ArialMT", "Liberation Sans", false},
                        Case{"TimesNewRomanPSMT", "Liberation Serif", false},
                        Case{"CourierNewPSMT", "Liberation Mono", false},
                        Case{"PingFangSC-Regular", "Noto Sans CJK SC", false},
                        Case{"HiraginoSans-W3", "Noto Sans CJK JP", false},
                        Case{"AppleColorEmoji", "Noto Color Emoji", false},
                        Case{"DejaVuSans-Bold", "DejaVu Sans", false},
                        Case{"NoSuchFace-Bold", "DejaVu Sans", true},
                        Case{"", "DejaVu Sans", true}}) {
    const FontFace face = FaceForPostScriptName(c.name);
    EXPECT_EQ(face.family, c.shownAs) << c.name;
    EXPECT_EQ(face.fallback, c.fallback) << c.name;
  }
  EXPECT_EQ(FaceForPostScriptName("NoSuchFace-BoldItalic").displayName(), "DejaVu Sans Bold Italic");
}

}  // namespace
}  // namespace paintdoc
