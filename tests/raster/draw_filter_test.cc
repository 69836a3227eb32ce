// Filter layers: the type and settings tables, the settings rules, the
// archive with its settings-key quirk, the cached effect and the chain.
#include "raster/draw_filter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "archive/keyed_archiver.h"
#include "platform/filters/image_with_filter.h"
#include "platform/graphics/bitmap_functions.h"
#include "raster/draw_selections.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

std::shared_ptr<Bitmap> Ramp(int width, int height) {
  return test::MakeImage(width, height, [](int x, int y) {
    return Rgba8{static_cast<uint8_t>(x * 9 % 256), static_cast<uint8_t>(y * 13 % 256), 90, 255};
  });
}

TEST(DrawFilterTables, NamesAndExtendingByType) {
  struct Row {
    int64_t type;
    std::string filter, display;
    bool extend;
  };
  const std::vector<Row> rows{{0, "CIInvertColor", "Invert Colors", false}, {1, "CIGaussianBlur", "Blur", true},
                              {2, "CISharpenLuminance", "Sharpen", false},  {3, "CIColorControls", "Adjust Colors", false},
                              {4, "CICrystallize", "Crystallize", true},    {5, "CIEdges", "Edges", false},
                              {6, "CIEdgeWork", "Edge Work", true},         {7, "CIPixellate", "Pixellate", true},
                              {8, "CIPointillize", "Pointillize", true},    {9, "", "Black And White", false},
                              {10, "", "Effect", false},                    {-1, "", "Effect", false}};
  for (const Row& row : rows) {
    EXPECT_EQ(CIFilterNameWithType(row.type), row.filter) << row.type;
    EXPECT_EQ(NameOfFilterWithType(row.type), row.display) << row.type;
    EXPECT_EQ(ExtendImageWhenApplyFilter(row.type), row.extend) << row.type;
  }
}

// Each description: name, display name, min, mid, max, default ("-" absent).
TEST(DrawFilterTables, AvailableSettingsInOrderWithTripleTKeys) {
  using Entry = std::vector<std::string>;
  const std::vector<std::pair<int64_t, std::vector<Entry>>> expected{
      {1, {{"inputRadius", "", "-", "-", "40", "4"}}},
      {2, {{"inputSharpness", "", "-", "-", "10", "0.4"}}},
      {3,
       {{"inputEV", "Exposure", "-3", "0", "3", "0"},
        {"inputSaturation", "Saturation", "0.01", "1", "5", "1"},
        {"inputContrast", "Contrast", "0.05", "1", "2", "1"},
        {"inputBrightness", "Brightness", "-0.8", "-", "0.8", "0"},
        {"inputHighlightAmount", "Highlights", "0", "-", "1", "1"},
        {"inputShadowAmount", "Shadows", "-1", "-", "1", "0"},
        {"inputIntensity", "Sepia", "-5", "-", "5", "0"},
        {"inputAngle", "Hue", "-", "-", "6.2", "0"},
        {"inputPower", "Gamma", "0.2", "1", "3", "1"}}},
      {4, {{"inputRadius", "", "1", "-", "100", "10"}}},
      {5, {{"inputIntensity", "", "0.1", "-", "500", "50"}}},
      {6, {{"inputRadius", "", "0.01", "-", "3", "0.5"}}},
      {7, {{"inputScale", "", "1", "-", "20", "5"}}},
      {8, {{"inputRadius", "", "1", "-", "20", "2"}}},
      {10, {}},
  };
  ASSERT_TRUE(kHasNewerColorSettings);  // the rows above are the newer platform's
  auto text = [](const ArchiveValue* value) -> std::string {
    if (!value) return "-";
    if (const std::string* s = value->asString()) return *s;
    std::string number = std::to_string(value->toDouble());
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.') number.pop_back();
    return value->kind() == ArchiveValue::Kind::Integer ? number : number.find('.') == std::string::npos ? "not-real" : number;
  };
  for (const auto& [type, entries] : expected) {
    ArchiveValue settings = AvailableSettingsForFilter(type);
    ASSERT_TRUE(settings.asArray()) << type;
    ASSERT_EQ(settings.asArray()->size(), entries.size()) << type;
    for (size_t i = 0; i < entries.size(); ++i) {
      const ArchiveValue& row = (*settings.asArray())[i];
      const Entry actual{text(row.valueForKey("SetttingName")), text(row.valueForKey("SetttingDisplayName")),
                         text(row.valueForKey("SetttingMinValue")), text(row.valueForKey("SetttingMidValue")),
                         text(row.valueForKey("SetttingMaxValue")), text(row.valueForKey("SetttingDefaultValue"))};
      EXPECT_EQ(actual, entries[i]) << type << " row " << i;
    }
  }
  EXPECT_TRUE(AvailableSettingsForFilter(0).isAbsent());
  EXPECT_TRUE(AvailableSettingsForFilter(9).isAbsent());
  EXPECT_FALSE(DefaultSettingsForFilter(0) || DefaultSettingsForFilter(9) || DefaultSettingsForFilter(10));
  EXPECT_EQ(DefaultSettingsForFilter(3)->size(), 9u);
  EXPECT_EQ(DefaultSettingsForFilter(5)->at("inputIntensity"), 50);
}

TEST(DrawFilter, SettingsChangeOnlyBeyondTheThresholdAndDropTheCache) {
  auto layer = DrawFilter::withImage(Ramp(12, 8), nullptr, 1);
  ASSERT_TRUE(layer);
  ASSERT_TRUE(layer->imageForDrawing());
  struct Case {
    FilterSettings change;
    bool isNew;
    double radiusAfter;
  };
  const std::vector<Case> cases{{{{"inputRadius", 4.005}}, false, 4},
                                {{{"inputRadius", 4.02}}, true, 4.02},
                                {{{"inputRadius", std::nan("")}}, false, 4.02},
                                {{{"inputExtra", 0.005}}, false, 4.02},
                                {{{"inputExtra", 0.5}}, true, 4.02}};
  for (const Case& c : cases) {
    const bool cachedBefore = layer->hasCachedEffect();
    EXPECT_EQ(layer->isNewSettings(c.change), c.isNew);
    layer->setFilterSettings(c.change);
    EXPECT_DOUBLE_EQ(layer->filterSettings()->at("inputRadius"), c.radiusAfter);
    EXPECT_EQ(layer->hasCachedEffect(), cachedBefore && !c.isNew);
    layer->imageForDrawing();
  }
  EXPECT_EQ(layer->filterSettings()->count("inputExtra"), 1u);
}

TEST(DrawFilter, CachedEffectIsReusedMirroredOnFlipAndRebuiltAfterAChange) {
  auto image = Ramp(10, 6);
  auto layer = DrawFilter::withImage(image, nullptr, 7);
  auto first = layer->imageForDrawing();
  ASSERT_TRUE(first);
  EXPECT_EQ(layer->imageForDrawing(), first);
  const FilterSettings defaults = *DefaultSettingsForFilter(7);
  EXPECT_TRUE(first->samePixels(*ImageWithFilter(image, "CIPixellate", true, &defaults)));
  layer->flip(true);
  EXPECT_TRUE(layer->imageForDrawing()->samePixels(*ImageFliped(first, true)));
  layer->setFilterSettings({{"inputScale", 2}});
  auto rebuilt = layer->imageForDrawing();
  const FilterSettings two{{"inputScale", 2}};
  EXPECT_TRUE(rebuilt->samePixels(*ImageWithFilter(layer->image(), "CIPixellate", true, &two)));
}

// Types without settings apply their effect once, when the layer is made.
TEST(DrawFilter, EffectsWithoutSettingsAreAppliedWhenMade) {
  auto image = Ramp(6, 4);
  auto inverted = DrawFilter::withImage(image, nullptr, 0);
  EXPECT_FALSE(inverted->filterSettings());
  EXPECT_TRUE(inverted->image()->samePixels(*ImageInvertedColors(image)));
  EXPECT_EQ(inverted->imageForDrawing(), inverted->image());
  auto grey = DrawFilter::withImage(image, nullptr, 9);
  EXPECT_TRUE(grey->image()->samePixels(*ImageToBlackAndWhite(image)));
  EXPECT_EQ(DrawFilter::withImage(image, nullptr, 12), nullptr);
  EXPECT_EQ(DrawFilter::withImage(nullptr, nullptr, 1), nullptr);
}

TEST(DrawFilter, AdjustColorsAppliesTheChainInOrder) {
  auto image = Ramp(8, 5);
  const FilterSettings settings{{"inputEV", 0.5}, {"inputSaturation", 1.5}, {"inputIntensity", 0.3},
                                {"inputAngle", 1}, {"inputPower", 1.4}, {"inputShadowAmount", 0.2}};
  auto expected = image;
  for (const char* name : {"CIExposureAdjust", "CIColorControls", "CIHighlightShadowAdjust", "CISepiaTone",
                           "CIHueAdjust", "CIGammaAdjust"}) {
    expected = ImageWithFilter(expected, name, false, &settings);
  }
  EXPECT_TRUE(DrawFilter::imageWithFilter(image, 3, &settings, nullptr)->samePixels(*expected));
}

// A blur over a selection smaller than the image filters the selection's
// bounding rectangle and cuts the result to the selection's outline.
TEST(DrawFilter, ExtendingEffectsOverASelectionAreCutToIt) {
  auto image = Ramp(20, 16);
  auto whole = MakeDraw<DrawSelection>();
  whole->setBezierPathWithBounds(MakeRect(0, 0, 20, 16));
  auto layer = DrawFilter::withImage(image, whole, 1);
  EXPECT_EQ(layer->image(), image);
  EXPECT_FALSE(layer->imageScissor());

  auto oval = MakeDraw<DrawEllipseSelection>();
  oval->setBezierPathWithBounds(MakeRect(4, 2, 10, 8));
  auto cut = DrawFilter::withImage(image, oval, 1);
  ASSERT_TRUE(cut && cut->imageScissor());
  EXPECT_EQ(cut->image()->pixelsWide(), 10);
  const Rect scissor = cut->imageScissor()->bounds();
  EXPECT_NEAR(scissor.origin.x, 0, 1e-9);
  EXPECT_NEAR(scissor.origin.y, 0, 1e-9);
  EXPECT_NEAR(scissor.width(), 10, 1e-9);
  EXPECT_NEAR(scissor.height(), 8, 1e-9);
  auto shown = cut->imageForDrawing();
  EXPECT_EQ(test::PixelAt(*shown, 0, 0).alpha, 0);  // outside the oval
  EXPECT_EQ(test::PixelAt(*shown, 5, 4).alpha, 255);
}

// Writes the settings under the key with three t's as well, as no writer
// does, so that the reader takes the stored settings.
class DrawFilterWithTripleTKey : public DrawFilter {
 public:
  std::shared_ptr<DrawFilter> written;
  void encodeWithCoder(KeyedArchiver& coder) const override {
    written->encodeWithCoder(coder);
    coder.encodeBoolForKey(true, "FilterSetttings");
  }
};

TEST(DrawFilterArchive, SavedSettingsComeBackAsDefaultsUnlessTheTripleTKeyIsPresent) {
  auto layer = DrawFilter::withImage(Ramp(5, 5), nullptr, 1);
  layer->setFilterSettings({{"inputRadius", 17}});
  auto read = std::dynamic_pointer_cast<DrawFilter>(DrawBase::objectWithEncodedData(SharedBytes(layer->encodedData())));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->filterType(), 1);
  EXPECT_EQ(read->filterSettings(), DefaultSettingsForFilter(1));
  EXPECT_FALSE(read->hasCachedEffect());

  auto quirk = MakeDraw<DrawFilterWithTripleTKey>();
  quirk->written = layer;
  auto kept = std::dynamic_pointer_cast<DrawFilter>(DrawBase::objectWithEncodedData(SharedBytes(quirk->encodedData())));
  ASSERT_TRUE(kept);
  EXPECT_DOUBLE_EQ(kept->filterSettings()->at("inputRadius"), 17);

  auto inverted = DrawFilter::withImage(Ramp(5, 5), nullptr, 0);
  auto readInverted =
      std::dynamic_pointer_cast<DrawFilter>(DrawBase::objectWithEncodedData(SharedBytes(inverted->encodedData())));
  ASSERT_TRUE(readInverted);
  EXPECT_FALSE(readInverted->filterSettings());
}

}  // namespace
}  // namespace paintdoc
