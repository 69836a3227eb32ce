// Documents written by a second, independent implementation (Python's
// plistlib, keyed-archive structure by hand) are read right, and what this
// library writes reads right with that implementation.
#include <gtest/gtest.h>

#include "document/paint_manager.h"
#include "document/register_all_classes.h"
#include "draws/draw_group.h"
#include "draws/draw_rectangle.h"
#include "raster/draw_image.h"
#include "platform/values/file_bytes.h"
#include "platform/values/log.h"
#include "preview/document_container.h"
#include "preview/preview_source.h"
#include "support/archive_fixtures.h"
#include "support/test_paths.h"

namespace paintdoc {
namespace {

PreviewSource ReadScenario(const std::string& scenario) {
  const std::string path = test::WriteIndependentDocument(scenario);
  EXPECT_FALSE(path.empty()) << "the independent writer failed for " << scenario;
  return ReadPreviewSource(path, PreviewKind::Preview);
}

class IndependentDocument : public ::testing::TestWithParam<const char*> {};

TEST_P(IndependentDocument, DecodesEveryLayerWithItsFallbacksAndRepairs) {
  LogCapture log;  // the unknown class is reported, not fatal
  const PreviewSource source = ReadScenario(GetParam());
  ASSERT_EQ(source.status, PreviewStatus::Document) << source.diagnosis;
  const PaintManager& canvas = *source.canvas;
  EXPECT_EQ(canvas.canvasSize(), (Size{300, 200}));
  EXPECT_TRUE(canvas.maskBackground());
  EXPECT_EQ(canvas.backgroundDraw(), nullptr);  // flag set, but no leading image
  ASSERT_EQ(canvas.allDraws().size(), 4u);      // the unknown class is left out

  const DrawBase& box = *canvas.allDraws()[0];
  EXPECT_EQ(box.className(), "DrawRectangle");
  EXPECT_EQ(box.layerTitle(), "Box");
  EXPECT_EQ(box.pathBounds(), MakeRect(10, 20, 100, 50));
  EXPECT_EQ(box.bezierPath()->lineWidth(), 3.0);
  EXPECT_EQ(box.bezierPath()->lineJoinStyle(), LineJoinStyle::Bevel);
  EXPECT_EQ(box.lineDashStyle(), "6:3");
  EXPECT_EQ(box.strokeColor(), Color::calibratedRGB(1, 0, 0));
  EXPECT_EQ(box.fillColor(), Color::calibratedRGB(0, 0, 1, 0.5));
  EXPECT_EQ(box.rotateDegree(), 30.0f);
  ASSERT_TRUE(box.shadow().has_value());
  EXPECT_EQ(box.shadow()->shadowOffset(), (Size{3, -4}));
  EXPECT_EQ(box.shadow()->shadowBlurRadius(), 5.0);

  const DrawBase& bare = *canvas.allDraws()[1];
  EXPECT_EQ(bare.className(), "DrawEllipse");
  EXPECT_TRUE(bare.visible());
  EXPECT_TRUE(bare.enableStroke());
  EXPECT_EQ(bare.strokeColor(), Color::blackColor());
  EXPECT_TRUE(bare.enableFill());  // classDrawFill of a rectangle kind
  EXPECT_EQ(bare.fillColor(), Color::blackColor());
  EXPECT_EQ(bare.fillGradientDegree(), 90.0f);

  const DrawBase& repaired = *canvas.allDraws()[2];
  EXPECT_FALSE(repaired.fillWithGradient());
  EXPECT_EQ(repaired.fillColor(), Color::blackColor());
  EXPECT_EQ(repaired.shadow(), DrawBase::defaultShadow());
  EXPECT_EQ(repaired.innerShadow(), DrawBase::defaultInnerShadow());
  EXPECT_EQ(repaired.reflection(), 0.5f);
  EXPECT_EQ(repaired.reflectionDis(), 0.0f);
  EXPECT_FALSE(repaired.visible());
  EXPECT_FALSE(repaired.smooth());
  EXPECT_TRUE(repaired.locked());

  const auto* group = dynamic_cast<const DrawGroup*>(canvas.allDraws()[3].get());
  ASSERT_NE(group, nullptr);
  ASSERT_EQ(group->draws().size(), 2u);
  EXPECT_EQ(group->draws()[0]->layerTitle(), "Member line");
  EXPECT_EQ(group->draws()[1]->className(), "DrawCurve");
  EXPECT_FALSE(group->draws()[1]->visible());
  for (const auto& member : group->draws()) EXPECT_EQ(member->group(), group);
  EXPECT_TRUE(log.contains("DrawFromTheFuture"));
}

INSTANTIATE_TEST_SUITE_P(BinaryAndXml, IndependentDocument,
                         ::testing::Values("document", "document-xml"));

TEST(IndependentContainer, VersionResolutionAndRootAreCheckedAsWritten) {
  EXPECT_EQ(ReadScenario("version-11").status, PreviewStatus::NewerVersion);
  const PreviewSource noVersion = ReadScenario("no-version");
  EXPECT_EQ(noVersion.status, PreviewStatus::Document);
  EXPECT_EQ(noVersion.version, 0);
  EXPECT_EQ(ReadScenario("no-resolution").status, PreviewStatus::NotAnImage);
  EXPECT_EQ(ReadScenario("root-not-canvas").status, PreviewStatus::NotACanvas);
}

// Image layers in the forms the platform writes: a big-endian, uncompressed,
// premultiplied RGBA TIFF of one row a strip, an image wrapping PNG data, a
// little-endian TIFF at 144 dots an inch, and an opacity left out.
TEST(IndependentDocument, ImageLayersDecodeFromEveryArchivedForm) {
  const PreviewSource source = ReadScenario("images");
  ASSERT_EQ(source.status, PreviewStatus::Document) << source.diagnosis;
  const PaintManager& canvas = *source.canvas;
  ASSERT_EQ(canvas.allDraws().size(), 3u);
  ASSERT_EQ(canvas.allDraws()[0], canvas.backgroundDraw());
  std::vector<const DrawImage*> layers;
  for (const auto& draw : canvas.allDraws()) {
    layers.push_back(dynamic_cast<const DrawImage*>(draw.get()));
    ASSERT_TRUE(layers.back());
    ASSERT_TRUE(layers.back()->image());
    EXPECT_EQ(layers.back()->bezierPath()->lineWidth(), 0);
  }
  const Bitmap& background = *layers[0]->image();
  EXPECT_EQ(background.size(), (Size{40, 30}));
  for (int y = 0; y < 30; y += 7) {
    for (int x = 0; x < 40; x += 9) {
      EXPECT_EQ(background.pixelAt(x, y),
                (Rgba8{uint8_t(x * 6), uint8_t(y * 8), 200, 255})) << x << ", " << y;
    }
  }
  const Bitmap& wrapped = *layers[1]->image();
  EXPECT_EQ(layers[1]->opacity(), 0.5f);
  EXPECT_EQ(wrapped.size(), (Size{8, 6}));
  EXPECT_EQ(wrapped.pixelAt(0, 0), (Rgba8{255, 0, 0, 255}));
  EXPECT_EQ(wrapped.pixelAt(7, 5), (Rgba8{0, 0, 128, 128}));
  EXPECT_EQ(layers[2]->opacity(), 1.0f);
  EXPECT_EQ(layers[2]->image()->pixelsWide(), 4);
  EXPECT_EQ(layers[2]->image()->size(), (Size{2, 2}));

  // Composed: the red half of the faded layer lies over the background at
  // half opacity (its image stretched from 8 × 6 to 16 × 12 at 10, 10).
  const auto picture = source.canvas->image();
  const Rgba8 below = background.pixelAt(12, 30 - 1 - 12);
  const Rgba8 composed = picture->pixelAt(12, 30 - 1 - 12);
  EXPECT_NEAR(composed.red, (255 + below.red) / 2.0, 1.5);
  EXPECT_NEAR(composed.blue, below.blue / 2.0, 1.5);
  EXPECT_EQ(picture->pixelAt(31, 30 - 1 - 3), (Rgba8{0, 255, 0, 255}));
}

TEST(IndependentDocument, AnImageClaimingTooManyPixelsRefusesTheDocument) {
  LogCapture log;
  const PreviewSource source = ReadScenario("image-claiming-60000");
  EXPECT_EQ(source.status, PreviewStatus::NotACanvas);
  EXPECT_NE(source.diagnosis.find("an image in the archive has 60000 x 60000 pixels, more than "
                                  "32767 a side"),
            std::string::npos)
      << source.diagnosis;
}

TEST(IndependentReader, ReadsTheContainerAndClassesThisLibraryWrites) {
  RegisterAllClasses();
  auto canvas = PaintManager::withSize({50, 40});
  auto rectangle = MakeDraw<DrawRectangle>();
  rectangle->setLayerTitle("R");
  auto group = MakeDraw<DrawGroup>();
  group->setDraws({MakeDraw<DrawEllipse>()});
  auto layer = DrawImage::withImage(Bitmap::create(3, 2));
  layer->setOpacity(0.5f);
  canvas->allDraws() = {rectangle, group, layer};
  const std::string path = test::OutputPath("independent/written-here.paintdoc");
  ASSERT_TRUE(WriteFileBytes(path, WriteDocumentContainer(*canvas)));

  std::string dump;
  ASSERT_TRUE(test::RunKeyedArchiveTool({"dump", path}, &dump));
  for (const char* fragment :
       {R"("container": {"PaintData": "data", "Resolution": 72.0, "Version": 10})",
        R"(["DrawEllipse", ["DrawEllipse", "DrawRectangle", "DrawBase", "NSObject"]])",
        R"(["PaintManager", ["PaintManager", "NSObject"]])", R"("CanvasSize": "{50, 40}")",
        R"("HasBackground": false)", R"("LayerTitle": "R")", R"("$class": "NSMutableArray")",
        R"("Draws": {"$class": "NSMutableArray")",
        R"("Image": {"$class": "NSBitmapImageRep", "NSInternalLayoutDirection": 0, "NSTIFFRepresentation": {"$bytes": )",
        R"("Opacity": 0.5)"}) {
    EXPECT_NE(dump.find(fragment), std::string::npos) << fragment << "\n" << dump;
  }
}

}  // namespace
}  // namespace paintdoc
