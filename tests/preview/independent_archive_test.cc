// Documents written by a second, independent implementation (Python's
// plistlib, keyed-archive structure by hand) are read right, and what this
// library writes reads right with that implementation.
#include <gtest/gtest.h>

#include "document/paint_manager.h"
#include "document/register_all_classes.h"
#include "draws/draw_group.h"
#include "draws/draw_rectangle.h"
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

TEST(IndependentReader, ReadsTheContainerAndClassesThisLibraryWrites) {
  RegisterAllClasses();
  auto canvas = PaintManager::withSize({50, 40});
  auto rectangle = MakeDraw<DrawRectangle>();
  rectangle->setLayerTitle("R");
  auto group = MakeDraw<DrawGroup>();
  group->setDraws({MakeDraw<DrawEllipse>()});
  canvas->allDraws() = {rectangle, group};
  const std::string path = test::OutputPath("independent/written-here.paintdoc");
  ASSERT_TRUE(WriteFileBytes(path, WriteDocumentContainer(*canvas)));

  std::string dump;
  ASSERT_TRUE(test::RunKeyedArchiveTool({"dump", path}, &dump));
  for (const char* fragment :
       {R"("container": {"PaintData": "data", "Resolution": 72.0, "Version": 10})",
        R"(["DrawEllipse", ["DrawEllipse", "DrawRectangle", "DrawBase", "NSObject"]])",
        R"(["PaintManager", ["PaintManager", "NSObject"]])", R"("CanvasSize": "{50, 40}")",
        R"("HasBackground": false)", R"("LayerTitle": "R")", R"("$class": "NSMutableArray")",
        R"("Draws": {"$class": "NSMutableArray")"}) {
    EXPECT_NE(dump.find(fragment), std::string::npos) << fragment << "\n" << dump;
  }
}

}  // namespace
}  // namespace paintdoc
