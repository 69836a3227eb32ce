// Refusals a thumbnailer's log keeps one line of: that line carries the cause.
#include <gtest/gtest.h>

#include "support/apps/app_fixtures.h"
#include "support/archive_fixtures.h"
#include "support/apps/program_runner.h"
#include "support/test_paths.h"

namespace paintdoc::test {
namespace {

// The library's warning that explains a refusal is in the tool's one line,
// not on a line of its own before it.
TEST(CliThumbnail, RefusalLineCarriesTheReadersWarning) {
  const std::string input = WriteIndependentDocument("root-past-objects");
  ASSERT_FALSE(input.empty());
  const ProgramResult result =
      RunProgram({AppPath("paintdoc"), "thumbnail", input, OutputPath("apps/past.png")});
  EXPECT_EQ(result.exitStatus, 1);
  ASSERT_EQ(Lines(result.err).size(), 1u) << result.err;
  EXPECT_NE(result.err.find("holds no root object (a reference to object 27 points past"),
            std::string::npos)
      << result.err;
}

// A document whose image claims more pixels than a bitmap can hold is
// refused before anything is decoded, in one line naming the limit.
TEST(CliThumbnail, ImageAboveThePixelLimitRefusesTheDocumentInOneLine) {
  const std::string input = WriteIndependentDocument("image-claiming-60000");
  ASSERT_FALSE(input.empty());
  for (const char* command : {"thumbnail", "render"}) {
    SCOPED_TRACE(command);
    const std::string output = OutputPath(std::string("apps/claiming-") + command + ".png");
    const ProgramResult result =
        std::string(command) == "render"
            ? RunProgram({AppPath("paintdoc"), "render", input, "-o", output})
            : RunProgram({AppPath("paintdoc"), "thumbnail", input, output});
    EXPECT_EQ(result.exitStatus, 1);
    ASSERT_EQ(Lines(result.err).size(), 1u) << result.err;
    EXPECT_NE(result.err.find("an image in the archive has 60000 x 60000 pixels, more than 32767 "
                              "a side"),
              std::string::npos)
        << result.err;
  }
}

// `render --max-memory`: a picture that would need more memory to draw than
// the limit is refused before drawing, in one line that gives both figures.
TEST(CliRender, MemoryLimitRefusesBeforeDrawing) {
  // 1024 x 1024 pixels: 4 MiB a bitmap, about 8 MiB to draw.
  const std::string input = WriteDocumentFile("memory.paintdoc", {1024, 1024});
  const struct {
    const char* limit;
    int exitStatus;
    const char* says;
  } cases[] = {{"7M", 1, "needs about 8 MiB, more than the memory limit of 7 MiB"},
               {"8M", 0, ""},
               {"8388607", 1, "more than the memory limit of 8 MiB"},
               {"0", 2, "--max-memory needs a size"},
               {"8X", 2, "--max-memory needs a size"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.limit);
    const ProgramResult result = RunProgram(
        {AppPath("paintdoc"), "render", input, "-o", OutputPath("apps/memory.png"), "--max-memory",
         c.limit});
    EXPECT_EQ(result.exitStatus, c.exitStatus);
    EXPECT_NE(result.err.find(c.says), std::string::npos) << result.err;
    EXPECT_LE(Lines(result.err).size(), 1u);
  }
}

}  // namespace
}  // namespace paintdoc::test
