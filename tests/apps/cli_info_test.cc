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

// Exit statuses: 0 done, 1 the input refused, 2 a usage error, 3 the output
// not written.
TEST(CliCommon, ExitStatusesAndOneLineDiagnoses) {
  const std::string input = WriteDocumentFile("usage.paintdoc", {10, 10});
  const std::string out = OutputPath("apps/u.png");
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* said;  // a part of the help, version or diagnosis
  } cases[] = {
      {{"--help"}, 0, "paintdoc thumbnail FILE OUT.png [-s SIZE]"},
      {{"info", "--help"}, 0, ""},
      {{"--version"}, 0, "paintdoc "},
      {{}, 2, ""},
      {{"paint"}, 2, ""},
      {{"info"}, 2, ""},
      {{"render", "x"}, 2, ""},
      {{"thumbnail", input}, 2, ""},
      {{"thumbnail", input, out, "-s", "0"}, 2, ""},
      {{"thumbnail", input, out, "-s", "-5"}, 2, ""},
      {{"thumbnail", input, out, "-s", "abc"}, 2, ""},
      {{"thumbnail", input, out, "-s", "99999"}, 2, ""},
      {{"render", WriteDocumentFile("zero.paintdoc", {0, 0}), "-o", out}, 1, "0 x 0"},
      {{"render", input, "-o", "/nonexistent-directory/out.png"}, 3, ""},
  };
  for (const auto& c : cases) {
    std::vector<std::string> arguments{kTool};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const ProgramResult result = RunProgram(arguments);
    SCOPED_TRACE(testing::PrintToString(c.arguments) + "\n" + result.out + result.err);
    EXPECT_EQ(result.exitStatus, c.status);
    EXPECT_NE((c.status ? result.err : result.out).find(c.said), std::string::npos);
    // Refusals, write failures, an unknown command and the version are one line.
    const std::string first = c.arguments.empty() ? "" : c.arguments[0];
    if (c.status == 1 || c.status == 3 || first == "paint" || first == "--version") {
      EXPECT_EQ(Lines(c.status ? result.err : result.out).size(), 1u);
    }
  }
}

}  // namespace
}  // namespace paintdoc::test
