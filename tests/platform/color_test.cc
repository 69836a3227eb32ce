#include "platform/values/color.h"

#include <gtest/gtest.h>

#include "platform/values/class_registry.h"
#include "platform/values/gradient.h"

namespace paintdoc {
namespace {

TEST(ColorConversion, WhiteBecomesEqualRGBAndKeepsAlpha) {
  EXPECT_EQ(Color::calibratedWhite(0.25, 0.5).toCalibratedRGB(), (RGBA{0.25, 0.25, 0.25, 0.5}));
  EXPECT_EQ(Color::deviceWhite(1).toCalibratedRGB(), (RGBA{1, 1, 1, 1}));
  EXPECT_EQ(Color::clearColor().toCalibratedRGB(), (RGBA{0, 0, 0, 0}));
  EXPECT_EQ(Color::clearColor().colorSpace(), ColorSpaceKind::CalibratedWhite);
}

TEST(ColorConversion, CatalogueColoursResolveByNameThenByFallback) {
  EXPECT_EQ(Color::catalog("System", "textColor").toCalibratedRGB(), (RGBA{0, 0, 0, 1}));
  const Color unknown = Color::catalog("Custom", "mauve", Color::calibratedRGB(0.5, 0.2, 0.1, 0.9));
  EXPECT_EQ(unknown.toCalibratedRGB(), (RGBA{0.5, 0.2, 0.1, 0.9}));
  EXPECT_EQ(Color::catalog("Custom", "mauve").toCalibratedRGB(), (RGBA{0, 0, 0, 1}));
  // A nested fallback resolves through both levels.
  const Color nested = Color::catalog("A", "b", Color::catalog("C", "d", Color::whiteColor()));
  EXPECT_EQ(nested.toCalibratedRGB(), (RGBA{1, 1, 1, 1}));
}

TEST(ColorConversion, WithAlphaKeepsSpaceAndCMYKConverts) {
  const Color c = Color::deviceRGB(0.1, 0.2, 0.3).withAlphaComponent(0.4);
  EXPECT_EQ(c.colorSpace(), ColorSpaceKind::DeviceRGB);
  EXPECT_EQ(c.alphaComponent(), 0.4);
  EXPECT_EQ(Color::calibratedWhite(0.5).withAlphaComponent(0.2).components()[1], 0.2);
  const RGBA cmyk = Color::deviceCMYK(1, 0, 0, 0.5).toCalibratedRGB();
  EXPECT_EQ(cmyk, (RGBA{0, 0.5, 0.5, 1}));
  const Color system = Color::catalog("System", "textColor").withAlphaComponent(0.5);
  EXPECT_EQ(system.toCalibratedRGB(), (RGBA{0, 0, 0, 0.5}));
}

TEST(GradientStops, EvenSpacingAndInterpolationWithStraightAlpha) {
  const Gradient g = Gradient::withColors(
      {Color::calibratedRGB(1, 0, 0, 1), Color::calibratedRGB(0, 0, 1, 0), Color::whiteColor()});
  ASSERT_EQ(g.numberOfColorStops(), 3u);
  EXPECT_EQ(g.stopAt(1).location, 0.5);
  const RGBA mid = g.interpolatedColorAtLocation(0.25);
  EXPECT_DOUBLE_EQ(mid.red, 0.5);
  EXPECT_DOUBLE_EQ(mid.blue, 0.5);
  EXPECT_DOUBLE_EQ(mid.alpha, 0.5);
  EXPECT_EQ(g.interpolatedColorAtLocation(-1), (RGBA{1, 0, 0, 1}));
  EXPECT_EQ(Gradient::withStartingColor(Color::blackColor(), Color::whiteColor()).colorSpace(),
            ColorSpaceKind::CalibratedWhite);
}

class Named : public Object {
 public:
  explicit Named(std::string name) : name_(std::move(name)) {}
  std::string className() const override { return name_; }

 private:
  std::string name_;
};

TEST(ClassRegistryChains, KindOfFollowsSuperclassesAndUnknownNamesAreAbsent) {
  ClassRegistry registry;
  registry.registerClass({"Base", "", {}});
  registry.registerClass({"Middle", "Base", [] { return std::make_shared<Named>("Middle"); }});
  registry.registerClass({"Leaf", "Middle", [] { return std::make_shared<Named>("Leaf"); }});
  EXPECT_EQ(registry.classChain("Leaf"), (std::vector<std::string>{"Leaf", "Middle", "Base"}));
  EXPECT_TRUE(registry.isKindOf("Leaf", "Base"));
  EXPECT_FALSE(registry.isKindOf("Base", "Leaf"));
  EXPECT_TRUE(registry.classChain("Nope").empty());
  EXPECT_EQ(registry.create("Base"), nullptr);
  EXPECT_EQ(registry.create("Nope"), nullptr);
  ASSERT_NE(registry.create("Leaf"), nullptr);
  EXPECT_EQ(registry.create("Leaf")->className(), "Leaf");
  // A cycle introduced by mistake does not loop.
  registry.registerClass({"Base", "Leaf", {}});
  EXPECT_LE(registry.classChain("Leaf").size(), 4u);
}

}  // namespace
}  // namespace paintdoc
