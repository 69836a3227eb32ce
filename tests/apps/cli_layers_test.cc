// `paintdoc layers`: every top-level layer as its own PNG and an index that
// places each on the canvas; refusals, clashes and --force.
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include "document/paint_manager.h"
#include "draws/draw_lines.h"
#include "preview/document_container.h"

#include "support/apps/app_fixtures.h"
#include "support/apps/program_runner.h"
#include "support/test_paths.h"

namespace paintdoc::test {
namespace {

namespace fs = std::filesystem;

const std::string kTool = AppPath("paintdoc");

// A fresh, empty folder under the test output.
std::string FreshFolder(const std::string& name) {
  const fs::path folder = fs::path(OutputPath("apps/layers/.keep")).parent_path() / name;
  fs::remove_all(folder);
  fs::create_directories(folder);
  return folder.string();
}

// The example document whose layers include nested groups and lines, written
// into a folder of the caller's own (tests run in parallel).
std::string ExampleWithGroups(const std::string& folderName) {
  const std::string folder = FreshFolder(folderName);
  const ProgramResult written = RunProgram({AppPath("paintdoc-examples"), folder});
  EXPECT_EQ(written.exitStatus, 0) << written.err;
  return folder + "/layers.paintdoc";
}

std::string Python(const std::string& script, const std::string& argument) {
  const ProgramResult result = RunProgram({"/usr/bin/env", "python3", "-c", script, argument});
  return result.exitStatus == 0 ? result.out : "python failed: " + result.err;
}

TEST(CliLayers, EveryTopLevelLayerAloneWithItsPlace) {
  const std::string document = ExampleWithGroups("examples-1");
  const std::string out = FreshFolder("out") + "/layers";  // made by the tool
  const ProgramResult result = RunProgram({kTool, "layers", document, "-o", out});
  ASSERT_EQ(result.exitStatus, 0) << result.err;
  EXPECT_EQ(result.err, "");
  // Each PNG's size is its rectangle's, and left/top place it from the
  // upper left of the canvas.
  const std::string check =
      "import json,struct,sys\n"
      "d=json.load(open(sys.argv[1]+'/layers.json'))\n"
      "ok=[]\n"
      "for l in d['layers']:\n"
      "  b=open(sys.argv[1]+'/'+l['png'],'rb').read()\n"
      "  w,h=struct.unpack('>II',b[16:24])\n"
      "  r=l['rect']\n"
      "  ok.append((w,h)==(r[2],r[3]) and l['top']==d['height']-r[1]-r[3] and l['left']==r[0])\n"
      "print([l['class'] for l in d['layers']], [l['index'] for l in d['layers']], all(ok),\n"
      "      [l['title'] for l in d['layers'] if not l['visible']])\n";
  EXPECT_EQ(Python(check, out),
            "['DrawRectangle', 'DrawGroup', 'DrawEllipse', 'DrawGroup', 'DrawRectangle'] "
            "[0, 1, 2, 3, 4] True ['Hidden sun']\n");
}

TEST(CliLayers, RefusalsAndClashes) {
  const std::string document = ExampleWithGroups("examples-2");
  const std::string out = FreshFolder("clash");
  ASSERT_EQ(RunProgram({kTool, "layers", document, "-o", out}).exitStatus, 0);
  const auto before = fs::last_write_time(out + "/layer-0000.png");

  struct Case {
    std::vector<std::string> arguments;
    int exitStatus;
    std::string errorStart;
  };
  const std::string image = WriteBytesFile("layers-plain.png", SmallPng());
  const std::string junk = WriteBytesFile("layers-junk.bin", {1, 2, 3});
  const Case cases[] = {
      {{"layers", document, "-o", out}, 3, "paintdoc: " + out + "/layers.json: already exists"},
      {{"layers", image, "-o", out}, 1, "paintdoc: " + image + ": a plain image has no layers"},
      {{"layers", junk, "-o", out}, 1, "paintdoc: " + junk + ": "},
      {{"layers", document}, 2, "paintdoc: layers needs FILE and -o DIR"},
      {{"layers", document, "-o", document}, 3, "paintdoc: " + document + ": not a folder"},
  };
  for (const Case& c : cases) {
    std::vector<std::string> arguments{kTool};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const ProgramResult result = RunProgram(arguments);
    EXPECT_EQ(result.exitStatus, c.exitStatus) << c.arguments[1];
    EXPECT_EQ(Lines(result.err).size(), 1u) << result.err;
    EXPECT_EQ(result.err.rfind(c.errorStart, 0), 0u) << result.err;
  }
  EXPECT_EQ(fs::last_write_time(out + "/layer-0000.png"), before);
  EXPECT_EQ(RunProgram({kTool, "layers", document, "-o", out, "--force"}).exitStatus, 0);
}

// Lines whose numbers are not finite or absurdly large, drawn by every tool:
// a picture or a one-line refusal, never a crash or a runaway allocation.
TEST(CliLayers, HostileLinesGiveAClearResult) {
  auto canvas = PaintManager::withSize({200, 100});
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const auto& [start, end, width] :
       {std::tuple{Point{nan, 10}, Point{50, nan}, 3.0}, std::tuple{Point{10, 10}, Point{90, 10}, 1e30}}) {
    auto line = MakeDraw<DrawLine>();
    line->setStartPoint(start, end);
    line->setBezierPathLineWidth(static_cast<float>(width));
    line->setArrowStyle(DrawArrowedOutline::kArrowAtBothEnds);
    line->setStrokeColor(Color::blackColor());
    canvas->addDraw(line);
  }
  const std::vector<uint8_t> bytes = WriteDocumentContainer(*canvas);
  const std::string document = WriteBytesFile("hostile-lines.paintdoc", bytes);
  const std::string out = FreshFolder("hostile");
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{kTool, "render", document, "-o", out + "/render.png"},
        std::vector<std::string>{kTool, "thumbnail", document, out + "/thumb.png"},
        std::vector<std::string>{kTool, "layers", document, "-o", out + "/layers"}}) {
    const ProgramResult result = RunProgram(arguments);
    SCOPED_TRACE(arguments[1]);
    EXPECT_TRUE(result.exitStatus == 0 || result.exitStatus == 1) << result.exitStatus;
    if (result.exitStatus != 0) {
      EXPECT_EQ(Lines(result.err).size(), 1u) << result.err;
    }
  }
}

}  // namespace
}  // namespace paintdoc::test
