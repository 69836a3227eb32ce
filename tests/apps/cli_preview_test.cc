// `paintdoc render` and `paintdoc thumbnail` as a user and a file manager run
// them: output, exit status and the one-line diagnosis.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/apps/app_fixtures.h"
#include "support/apps/program_runner.h"
#include "support/test_paths.h"

namespace paintdoc::test {
namespace {

const std::string kTool = AppPath("paintdoc");

TEST(CliRender, WritesAnRgbaPngOfTheContentSize) {
  struct Case {
    std::string input;
    uint32_t width, height;
  };
  const Case cases[] = {{WriteDocumentFile("render-input.paintdoc", {120, 80}), 120, 80},
                        {WriteBytesFile("small-image.paintdoc", SmallPng()), 2, 1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.input);
    const std::string output = OutputPath("apps/render-output.png");
    std::remove(output.c_str());
    const ProgramResult result = RunProgram({kTool, "render", "-o", output, c.input});
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    EXPECT_EQ(result.err, "");
    const PngFacts png = ReadPngFacts(output);
    ASSERT_TRUE(png.valid);
    EXPECT_EQ(png.width, c.width);
    EXPECT_EQ(png.height, c.height);
    EXPECT_EQ(png.colorType, 6);
  }
}

TEST(CliRender, RefusedFilesExitWithOneLineAndNoOutput) {
  struct Case {
    std::string input;
    std::string diagnosis;
  };
  const Case cases[] = {
      {WriteVersionedDocumentFile("newer.paintdoc", 11),
       "newer document version 11 (this build reads up to 10)"},
      {WriteBytesFile("empty.paintdoc", {}), "empty file"},
      {WriteBytesFile("text.paintdoc", {'h', 'i', '!', '\n'}),
       "neither a paint document nor an image"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.input);
    const std::string output = OutputPath("apps/refused.png");
    std::remove(output.c_str());
    const ProgramResult result = RunProgram({kTool, "render", c.input, "-o", output});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.err, "paintdoc: " + c.input + ": " + c.diagnosis + "\n");
    EXPECT_FALSE(std::filesystem::exists(output));
  }
  const ProgramResult missing =
      RunProgram({kTool, "render", OutputPath("apps/absent.paintdoc"), "-o", "/dev/null"});
  EXPECT_EQ(missing.exitStatus, 1);
  EXPECT_EQ(Lines(missing.err).size(), 1u);
  EXPECT_NE(missing.err.find("No such file"), std::string::npos);
}

TEST(CliThumbnail, FitsIntoTheSquareAndRecordsTheSourceSize) {
  // The default square is 256; small content is never enlarged.
  struct Case {
    Size canvas;
    std::vector<std::string> sizeOption;
    uint32_t width, height;
  };
  const Case cases[] = {{{640, 480}, {"-s", "64"}, 64, 48},
                        {{300, 1000}, {}, 77, 256},  // 300 × 256 / 1000, rounded
                        {{40, 30}, {"-s", "512"}, 40, 30}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.canvas.width);
    const std::string input = WriteDocumentFile("thumb.paintdoc", c.canvas);
    const std::string output = OutputPath("apps/thumb.png");
    std::remove(output.c_str());
    std::vector<std::string> arguments{kTool, "thumbnail", input, output};
    arguments.insert(arguments.end(), c.sizeOption.begin(), c.sizeOption.end());
    ASSERT_EQ(RunProgram(arguments).exitStatus, 0);
    PngFacts png = ReadPngFacts(output);  // [] finds a missing chunk as ""
    EXPECT_EQ(png.width, c.width);
    EXPECT_EQ(png.height, c.height);
    EXPECT_EQ(png.colorType, 6);
    EXPECT_EQ(png.text["Thumb::Image::Width"], std::to_string(int(c.canvas.width)));
    EXPECT_EQ(png.text["Thumb::Image::Height"], std::to_string(int(c.canvas.height)));
  }
}

// GNOME runs thumbnailers with no home directory, the input under /tmp, the
// working directory at / and a private /tmp that must hold only the output.
TEST(CliThumbnail, WorksWithTheThumbnailerSandboxsEnvironment) {
  const std::filesystem::path sandbox = std::filesystem::temp_directory_path() /
                                        ("paintdoc-sandbox-" + std::to_string(getpid()));
  std::filesystem::remove_all(sandbox);
  std::filesystem::create_directories(sandbox);
  const std::string input = (sandbox / "gnome-desktop-file-to-thumbnail.paintdoc").string();
  std::filesystem::copy_file(WriteDocumentFile("sandboxed.paintdoc", {200, 100}), input);
  const std::string output = (sandbox / "gnome-desktop-thumbnailer.png").string();
  RunOptions options;
  options.clearEnvironment = true;
  options.environment = {"GIO_USE_VFS=local"};
  options.workingDirectory = "/";
  const ProgramResult result =
      RunProgram({kTool, "thumbnail", input, output, "-s", "128"}, options);
  EXPECT_EQ(result.exitStatus, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(ReadPngFacts(output).width, 128u);
  size_t entries = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(sandbox)) ++entries;
  EXPECT_EQ(entries, 2u);  // the input and the output, nothing else
  std::filesystem::remove_all(sandbox);
}

}  // namespace
}  // namespace paintdoc::test
