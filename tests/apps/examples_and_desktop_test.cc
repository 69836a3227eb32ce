// The example documents, and the desktop integration files: the MIME type
// recognises documents by content, and the thumbnailer entry runs the tool.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/apps/app_fixtures.h"
#include "support/apps/program_runner.h"
#include "support/test_paths.h"

namespace paintdoc::test {
namespace {

TEST(Examples, EveryExampleRendersAndDescribesItself) {
  const std::string directory = OutputPath("apps/examples/.keep");
  const std::string folder = std::filesystem::path(directory).parent_path().string();
  const ProgramResult written = RunProgram({AppPath("paintdoc-examples"), folder});
  ASSERT_EQ(written.exitStatus, 0) << written.err;
  int documents = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".paintdoc") continue;
    ++documents;
    const std::string path = entry.path().string();
    SCOPED_TRACE(path);
    const ProgramResult info = RunProgram({AppPath("paintdoc"), "info", path});
    EXPECT_EQ(info.exitStatus, 0) << info.err;
    EXPECT_EQ(info.out.rfind("document version 10", 0), 0u);
    const ProgramResult render =
        RunProgram({AppPath("paintdoc"), "render", path, "-o", path + ".png"});
    EXPECT_EQ(render.exitStatus, 0) << render.err;
  }
  EXPECT_GE(documents, 2);
}

TEST(DesktopIntegration, ThumbnailerEntryRunsTheThumbnailCommand) {
  const std::string entry = ReadText(SourcePath("data/paintdoc.thumbnailer"));
  EXPECT_NE(entry.find("[Thumbnailer Entry]"), std::string::npos);
  EXPECT_NE(entry.find("paintdoc thumbnail %i %o -s %s\n"), std::string::npos);
  EXPECT_NE(entry.find("MimeType=application/x-paintdoc;"), std::string::npos);
}

// Installs the MIME type into a private data directory and asks GIO, as a
// file manager would, what the files are.
TEST(DesktopIntegration, MimeTypeRecognisesDocumentsByContent) {
  if (!std::filesystem::exists("/usr/bin/update-mime-database") ||
      !std::filesystem::exists("/usr/bin/gio")) {
    GTEST_SKIP() << "shared-mime-info or gio is not installed";
  }
  const std::filesystem::path share = OutputPath("apps/mime-share/.keep");
  const std::filesystem::path packages = share.parent_path() / "mime" / "packages";
  std::filesystem::create_directories(packages);
  std::filesystem::copy_file(SourcePath("data/paintdoc-mime.xml"), packages / "paintdoc.xml",
                             std::filesystem::copy_options::overwrite_existing);
  ASSERT_EQ(RunProgram({"/usr/bin/update-mime-database", (share.parent_path() / "mime").string()})
                .exitStatus,
            0);
  auto typeOf = [&](const std::string& path) {
    RunOptions options;
    options.clearEnvironment = true;
    options.environment = {"XDG_DATA_DIRS=" + share.parent_path().string(),
                           "XDG_DATA_HOME=" + share.parent_path().string(), "HOME=/nonexistent"};
    const ProgramResult result =
        RunProgram({"/usr/bin/gio", "info", "-a", "standard::content-type", path}, options);
    const size_t at = result.out.find("standard::content-type: ");
    if (at == std::string::npos) return "gio failed: " + result.err;
    return Lines(result.out.substr(at + 24))[0];
  };
  EXPECT_EQ(typeOf(WriteDocumentFile("named.paintdoc", {5, 5})), "application/x-paintdoc");
  // By content alone: no extension that tells.
  EXPECT_EQ(typeOf(WriteDocumentFile("unnamed-document", {5, 5})), "application/x-paintdoc");
  // A binary property list that is no document is not claimed.
  const std::vector<uint8_t> otherPlist = {'b', 'p', 'l', 'i', 's', 't', '0', '0', 0x08,
                                           0, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0, 1,
                                           0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 9};
  EXPECT_NE(typeOf(WriteBytesFile("other-plist", otherPlist)), "application/x-paintdoc");
}

}  // namespace
}  // namespace paintdoc::test
