// `paintdoc info` in text and JSON, checked with an independent JSON reader.
#include <gtest/gtest.h>

#include "support/apps/app_fixtures.h"
#include "support/apps/program_runner.h"
#include "support/archive_fixtures.h"
#include "support/test_paths.h"

namespace paintdoc::test {
namespace {

const std::string kTool = AppPath("paintdoc");

// Python's json module reads the output and answers the checked facts.
std::string QueryJson(const std::string& json, const std::string& expression) {
  const std::string file = WriteBytesFile("info.json", std::vector<uint8_t>(json.begin(), json.end()));
  const ProgramResult result = RunProgram(
      {"/usr/bin/env", "python3", "-c",
       "import json,sys; d=json.load(open(sys.argv[1])); print(repr((" + expression + ")))", file});
  return result.exitStatus == 0 ? result.out : "python failed: " + result.err;
}

TEST(CliInfo, JsonOfAnIndependentlyWrittenDocument) {
  const std::string document = WriteIndependentDocument("document");
  ASSERT_FALSE(document.empty());
  const ProgramResult result = RunProgram({kTool, "info", document, "--json"});
  ASSERT_EQ(result.exitStatus, 0) << result.err;
  EXPECT_EQ(Lines(result.out).size(), 1u);
  EXPECT_EQ(QueryJson(result.out, "sorted(d), d['kind'], d['version'], d['width'], d['height'], "
                                  "d['hasBackground'], d['maskWithBackground']"),
            "(['hasBackground', 'height', 'kind', 'layers', 'maskWithBackground', 'version', "
            "'width'], 'document', 10, 300, 200, False, True)\n");
  // The unknown class is left out: box, bare ellipse, repaired rectangle, group.
  EXPECT_EQ(QueryJson(result.out, "[l['class'] for l in d['layers']]"),
            "['DrawRectangle', 'DrawEllipse', 'DrawRectangle', 'DrawGroup']\n");
  EXPECT_EQ(QueryJson(result.out, "sorted(d['layers'][0]), d['layers'][0]['title'], "
                                  "d['layers'][0]['rotation'], d['layers'][0]['bounds'], "
                                  "d['layers'][2]['visible'], d['layers'][2]['locked']"),
            "(['attributes', 'bounds', 'class', 'locked', 'opacity', 'rotation', 'title', "
            "'visible'], 'Box', 30, [10, 20, 100, 50], False, True)\n");
  // The box's look: red dashed stroke, half-transparent blue fill, a shadow.
  EXPECT_EQ(QueryJson(result.out, "list(d['layers'][0]['attributes'].items()), "
                                  "d['layers'][0]['opacity']"),
            "([('DAKeySmooth', True), "
            "('DAKeyStrokeColor', {'rgba': '#ff0000ff', 'colorSpace': 'calibrated RGB'}), "
            "('DAKeyStrokeWidth', 3), ('DAKeyStrokeDash', '6:3'), "
            "('DAKeyFillColor', {'rgba': '#0000ff80', 'colorSpace': 'calibrated RGB'}), "
            "('DAKeyShadow', {'offset': [3, -4], 'blur': 5, "
            "'color': {'rgba': '#00000040', 'colorSpace': 'calibrated RGB'}})], 0.5)\n");
  // A group shows its smoothing only and no opacity.
  EXPECT_EQ(QueryJson(result.out, "d['layers'][3]['attributes'], d['layers'][3]['opacity']"),
            "({'DAKeySmooth': True}, 0)\n");
  EXPECT_EQ(QueryJson(result.out, "[(m['class'], m['title'], m['visible']) for m in "
                                  "d['layers'][3]['layers']]"),
            "[('DrawLine', 'Member line', True), ('DrawCurve', 'Curve', False)]\n");
}

TEST(CliInfo, TextNamesVersionCanvasAndLayers) {
  const std::string document = WriteDocumentFile("info-text.paintdoc", {64, 32});
  const ProgramResult result = RunProgram({kTool, "info", document});
  ASSERT_EQ(result.exitStatus, 0);
  const std::vector<std::string> lines = Lines(result.out);
  ASSERT_GE(lines.size(), 4u);
  EXPECT_EQ(lines[0], "document version 10, canvas 64 x 32");
  EXPECT_EQ(lines[2], "1 layer, bottom first:");
  EXPECT_EQ(lines[3].rfind("  DrawRectangle \"Rectangle\" visible", 0), 0u);
}

TEST(CliInfo, PlainImageHasOnlyKindAndSizes) {
  const std::string image = WriteBytesFile("info-image.bin", SmallPng());
  const ProgramResult result = RunProgram({kTool, "info", "--json", image});
  ASSERT_EQ(result.exitStatus, 0);
  EXPECT_EQ(result.out,
            "{\"kind\":\"image\",\"width\":2,\"height\":1,\"pixelsWide\":2,\"pixelsHigh\":1}\n");
}

TEST(CliInfo, RefusedDocumentIsDiagnosed) {
  const std::string newer = WriteVersionedDocumentFile("info-newer.paintdoc", 12);
  const ProgramResult result = RunProgram({kTool, "info", newer, "--json"});
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "paintdoc: " + newer + ": newer document version 12 (this build reads up to 10)\n");
}

TEST(CliCommon, HelpVersionAndUsageErrors) {
  const ProgramResult help = RunProgram({kTool, "--help"});
  EXPECT_EQ(help.exitStatus, 0);
  EXPECT_NE(help.out.find("paintdoc thumbnail FILE OUT.png [-s SIZE]"), std::string::npos);
  EXPECT_EQ(RunProgram({kTool, "info", "--help"}).exitStatus, 0);
  const ProgramResult version = RunProgram({kTool, "--version"});
  EXPECT_EQ(version.exitStatus, 0);
  EXPECT_EQ(version.out.rfind("paintdoc ", 0), 0u);
  EXPECT_EQ(Lines(version.out).size(), 1u);
  EXPECT_EQ(RunProgram({kTool}).exitStatus, 2);
  const ProgramResult unknown = RunProgram({kTool, "paint"});
  EXPECT_EQ(unknown.exitStatus, 2);
  EXPECT_EQ(Lines(unknown.err).size(), 1u);
  EXPECT_EQ(RunProgram({kTool, "info"}).exitStatus, 2);
  EXPECT_EQ(RunProgram({kTool, "render", "x"}).exitStatus, 2);
}

}  // namespace
}  // namespace paintdoc::test
