// The layer description's JSON and text forms on values that are awkward in
// JSON: quotes and control characters in titles, non-finite numbers, nesting.
#include <gtest/gtest.h>

#include <cmath>

#include "document/paint_manager.h"
#include "platform/values/bitmap.h"
#include "preview/document_info.h"
#include "preview/preview_source.h"
#include "raster/draw_image.h"

namespace paintdoc {
namespace {

DocumentInfo OneLayer(LayerInfo layer) {
  DocumentInfo info;
  info.isDocument = true;
  info.version = 7;
  info.size = {10, 20};
  info.layers.push_back(std::move(layer));
  return info;
}

TEST(DocumentInfoJson, TitlesAreEscapedAndNonFiniteNumbersAreNull) {
  LayerInfo layer;
  layer.className = "DrawLine";
  layer.title = "say \"hi\"\\\n\t\x01";
  layer.rotation = std::nan("");
  layer.bounds = MakeRect(0.5, -1, INFINITY, 2);
  EXPECT_EQ(FormatDocumentInfoJson(OneLayer(layer)),
            "{\"kind\":\"document\",\"version\":7,\"width\":10,\"height\":20,"
            "\"hasBackground\":false,\"maskWithBackground\":false,\"layers\":["
            "{\"class\":\"DrawLine\",\"title\":\"say \\\"hi\\\"\\\\\\n\\t\\u0001\","
            "\"visible\":false,\"locked\":false,\"rotation\":null,\"bounds\":[0.5,-1,null,2],"
            "\"attributes\":{},\"opacity\":0}]}\n");
}

// A hidden group "g" holding a visible ellipse "m".
LayerInfo GroupWithMember() {
  LayerInfo member;
  member.className = "DrawEllipse";
  member.title = "m";
  member.visible = true;
  LayerInfo group;
  group.className = "DrawGroup";
  group.title = "g";
  group.isGroup = true;
  group.members.push_back(member);
  return group;
}

TEST(DocumentInfoJson, OnlyGroupsCarryMemberLayers) {
  LayerInfo emptyGroup = GroupWithMember();
  emptyGroup.members.clear();
  DocumentInfo info = OneLayer(GroupWithMember());
  info.layers.push_back(emptyGroup);
  const std::string group = R"({"class":"DrawGroup","title":"g","visible":false,"locked":false,)"
                            R"("rotation":0,"bounds":[0,0,0,0],"attributes":{},"opacity":0,"layers":[)";
  EXPECT_EQ(FormatDocumentInfoJson(info),
            R"({"kind":"document","version":7,"width":10,"height":20,"hasBackground":false,)"
            R"("maskWithBackground":false,"layers":[)" +
                group +
                R"({"class":"DrawEllipse","title":"m","visible":true,"locked":false,)"
                R"("rotation":0,"bounds":[0,0,0,0],"attributes":{},"opacity":0}]},)" +
                group + "]}]}\n");
}

// Each kind of attribute value in its readable form.
TEST(DocumentInfoJson, AttributesAsColoursGradientsShadowsAndNumbers) {
  struct Case {
    std::string_view key;
    ArchiveValue value;
    const char* json;
  };
  const Case cases[] = {
      {DAKeySmooth, false, R"("DAKeySmooth":false)"},
      {DAKeyStrokeColor, Color::calibratedRGB(1, 0.5, 0, 0.25),
       R"("DAKeyStrokeColor":{"rgba":"#ff800040","colorSpace":"calibrated RGB"})"},
      {DAKeyFillColor, Color::deviceWhite(2, -1),
       R"("DAKeyFillColor":{"rgba":"#ffffff00","colorSpace":"device white"})"},
      {DAKeyStrokeWidth, 2.5, R"("DAKeyStrokeWidth":2.5)"},
      {DAKeyStrokeDash, "6:3", R"("DAKeyStrokeDash":"6:3")"},
      {DAKeyFillGdtDegree, SinglePrecision{0.3f}, R"("DAKeyFillGdtDegree":0.3)"},
      {DAKeyFillGdtCenter, Point{0.5, -1}, R"("DAKeyFillGdtCenter":[0.5,-1])"},
      {DAKeyFillGradient,
       Gradient::withColors({Color::sRGB(0, 0, 1), Color::calibratedWhite(1)}, {0, 0.75}),
       R"("DAKeyFillGradient":{"colorSpace":"sRGB","stops":[)"
       R"({"location":0,"color":{"rgba":"#0000ffff","colorSpace":"sRGB"}},)"
       R"({"location":0.75,"color":{"rgba":"#ffffffff","colorSpace":"calibrated white"}}]})"},
      {DAKeyShadow, Shadow(std::nullopt, Size{8, -8}, 4),
       R"("DAKeyShadow":{"offset":[8,-8],"blur":4,)"
       R"("color":{"rgba":"#00000055","colorSpace":"calibrated white"}})"},
      {DAKeyOpacity, NullObject{}, R"("DAKeyOpacity":null)"},
  };
  for (const Case& c : cases) {
    LayerInfo layer;
    layer.className = "DrawRectangle";
    layer.attributes.set(c.key, c.value);
    layer.opacity = 0.7f;
    const std::string json = FormatDocumentInfoJson(OneLayer(layer));
    EXPECT_NE(json.find(R"("attributes":{)" + std::string(c.json) + R"(},"opacity":0.7})"),
              std::string::npos)
        << json;
  }
}

TEST(DocumentInfoText, IndentsMembersAndRoundsToSixDigits) {
  LayerInfo group = GroupWithMember();
  group.locked = true;
  group.members[0].bounds = MakeRect(339.99999618530273, 0, 240, 1.0 / 3.0);
  EXPECT_EQ(FormatDocumentInfoText(OneLayer(group)),
            "document version 7, canvas 10 x 20\n"
            "background: no, mask with background: no\n"
            "1 layer, bottom first:\n"
            "  DrawGroup \"g\" hidden locked rotation 0 bounds {{0, 0}, {0, 0}} (1 members)\n"
            "    DrawEllipse \"m\" visible rotation 0 bounds {{340, 0}, {240, 0.333333}}\n");
}

TEST(DocumentInfoText, ImageIsOneLineWithPixelsAndPoints) {
  DocumentInfo image;
  image.size = {150, 100.0 / 3.0};  // 144 dpi across, 216 dpi down
  image.pixelSize = {300, 100};
  EXPECT_EQ(FormatDocumentInfoText(image), "image 300 x 100 pixels, 150 x 33.3333 points\n");
  EXPECT_EQ(FormatDocumentInfoJson(image),
            "{\"kind\":\"image\",\"width\":150,\"height\":33.333333333333336,"
            "\"pixelsWide\":300,\"pixelsHigh\":100}\n");
}

}  // namespace
}  // namespace paintdoc

namespace paintdoc {
namespace {

TEST(DocumentInfo, FilterLayersShowTheirEffectAndSettings) {
  LayerInfo layer;
  layer.className = "DrawFilter";
  layer.title = "Blur";
  layer.visible = true;
  layer.filterName = "Blur";
  layer.filterSettings = {{"inputRadius", 4.5}};
  DocumentInfo info;
  info.isDocument = true;
  info.layers = {layer};
  EXPECT_NE(FormatDocumentInfoText(info).find(" filter \"Blur\" inputRadius 4.5\n"), std::string::npos)
      << FormatDocumentInfoText(info);
  EXPECT_NE(FormatDocumentInfoJson(info).find("\"filter\":{\"name\":\"Blur\",\"settings\":{\"inputRadius\":4.5}}"),
            std::string::npos)
      << FormatDocumentInfoJson(info);
}

TEST(DocumentInfo, ImageLayersShowTheirPixelsAndOpacity) {
  auto canvas = PaintManager::withSize({10, 10});
  auto layer = DrawImage::withImage(Bitmap::create(3, 2));
  layer->setOpacity(0.25f);
  auto empty = DrawImage::withImage(Bitmap::create(1, 1));
  empty->setImage(nullptr);  // its data was unreadable
  canvas->allDraws() = {layer, empty};
  PreviewSource source;
  source.status = PreviewStatus::Document;
  source.canvas = canvas;
  source.contentSize = canvas->canvasSize();
  const DocumentInfo info = DescribePreviewSource(source);
  const std::string text = FormatDocumentInfoText(info);
  EXPECT_NE(text.find(" image 3 x 2 pixels opacity 0.25\n"), std::string::npos) << text;
  EXPECT_NE(text.find(" image none\n"), std::string::npos) << text;
  const std::string json = FormatDocumentInfoJson(info);
  EXPECT_NE(json.find("\"opacity\":0.25,\"image\":{\"pixelsWide\":3,\"pixelsHigh\":2}"),
            std::string::npos)
      << json;
}

}  // namespace
}  // namespace paintdoc

namespace paintdoc {
namespace {

// A text layer adds its string, fonts and colours to the JSON, and the text
// form reports only the fonts shown by a fallback face.
TEST(DocumentInfoText, TextLayersListFontsAndReportFallbacks) {
  LayerInfo layer;
  layer.className = "DrawText";
  layer.title = "Hi";
  TextInfo text;
  text.plainText = "Hi\n";
  text.fonts = {{"Helvetica", 12, "Nimbus Sans", false},
                {"NoSuchFace", 9.5, "DejaVu Sans", true}};
  text.colors = {Color::calibratedRGB(1, 0, 0)};
  layer.text = text;
  const std::string json = FormatDocumentInfoJson(OneLayer(layer));
  EXPECT_NE(json.find(R"("opacity":0,"text":{"string":"Hi\n","fonts":[)"
                      R"({"name":"Helvetica","size":12,"shownAs":"Nimbus Sans","fallback":false},)"
                      R"({"name":"NoSuchFace","size":9.5,"shownAs":"DejaVu Sans","fallback":true}],)"
                      R"("colors":[{"rgba":"#ff0000ff","colorSpace":"calibrated RGB"}]}})"),
            std::string::npos)
      << json;
  const std::string lines = FormatDocumentInfoText(OneLayer(layer));
  EXPECT_NE(lines.find("\n    font NoSuchFace shown as DejaVu Sans\n"), std::string::npos) << lines;
  EXPECT_EQ(lines.find("font Helvetica"), std::string::npos) << lines;
}

}  // namespace
}  // namespace paintdoc
