// `paintdoc thumbnail FILE... -o DIR` and `--freedesktop`: every file gets its
// own outcome, the exit status and the summary add them up, and the cache
// entries are named, keyed and protected as file managers expect.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <set>

#include "support/apps/app_fixtures.h"
#include "md5.h"
#include "support/apps/program_runner.h"
#include "support/test_paths.h"

namespace paintdoc::test {
namespace {

namespace fs = std::filesystem;

const std::string kTool = AppPath("paintdoc");

std::string FreshFolder(const std::string& name) {
  const std::string folder = OutputPath("apps/" + name + "/");
  fs::remove_all(folder);
  fs::create_directories(folder);
  return fs::path(folder).parent_path().string();
}

unsigned Mode(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 ? info.st_mode & 0777 : 0;
}

// Only XDG_CACHE_HOME: the cache goes there and nowhere else.
RunOptions CacheEnvironment(const std::string& cacheHome) {
  RunOptions options;
  options.clearEnvironment = true;
  options.environment = {"XDG_CACHE_HOME=" + cacheHome};
  return options;
}

TEST(Md5, RfcTestSuite) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "d41d8cd98f00b204e9800998ecf8427e"},
      {"a", "0cc175b9c0f1b6a831c399e269772661"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72"},
      {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
       "d174ab98d277d9f5a5611c2c9f419d9f"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57edf4a22be3c955ac49da2e2107b67a"},
  };
  for (const auto& [text, digest] : cases) EXPECT_EQ(cli::Md5Hex(text), digest) << text;
}

TEST(CliThumbnailBatch, EachFileHasItsOwnOutcome) {
  const std::string good = WriteDocumentFile("batch-in/good.paintdoc", {600, 300});
  const std::string image = WriteBytesFile("batch-in/image.png", SmallPng());
  const std::string refused = WriteBytesFile("batch-in/text.paintdoc", {'h', 'i', '\n'});
  const std::string blocked = WriteDocumentFile("batch-in/blocked.paintdoc", {8, 8});
  const std::string twin = WriteDocumentFile("batch-in/other/good.paintdoc", {8, 8});
  struct Case {
    std::vector<std::string> inputs;
    std::set<std::string> written;  // output names
    int exitStatus;
    std::string summary;
  };
  const Case cases[] = {
      {{good, image}, {"good.paintdoc.png", "image.png.png"}, 0, "2 thumbnails, 0 refused, 0 not written"},
      {{refused, good}, {"good.paintdoc.png"}, 1, "1 thumbnails, 1 refused, 0 not written"},
      {{good, refused, blocked}, {"good.paintdoc.png"}, 3, "1 thumbnails, 1 refused, 1 not written"},
      {{good, twin}, {"good.paintdoc.png"}, 3, "1 thumbnails, 0 refused, 1 not written"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.summary);
    const std::string folder = FreshFolder("batch-out");
    // A folder where blocked's thumbnail should go makes that one write fail.
    fs::create_directory(folder + "/blocked.paintdoc.png");
    std::vector<std::string> arguments = {kTool, "thumbnail", "-s", "64", "-o", folder};
    arguments.insert(arguments.end(), c.inputs.begin(), c.inputs.end());
    const ProgramResult result = RunProgram(arguments);

    EXPECT_EQ(result.exitStatus, c.exitStatus) << result.err;
    EXPECT_EQ(result.out.rfind(c.summary + " in ", 0), 0u) << result.out;
    // One line a failure, and no progress bar when stderr is not a terminal.
    EXPECT_EQ(Lines(result.err).size(), c.inputs.size() - c.written.size()) << result.err;
    EXPECT_EQ(result.err.find('\r'), std::string::npos);
    for (const std::string& line : Lines(result.err)) EXPECT_EQ(line.rfind("paintdoc: ", 0), 0u);
    std::set<std::string> written;
    for (const auto& entry : fs::directory_iterator(folder)) {
      if (entry.is_regular_file()) written.insert(entry.path().filename().string());
    }
    EXPECT_EQ(written, c.written);
    if (c.written.count("good.paintdoc.png")) {
      const PngFacts png = ReadPngFacts(folder + "/good.paintdoc.png");
      EXPECT_EQ(png.width, 64u);
      EXPECT_EQ(png.height, 32u);
    }
  }
}

TEST(CliThumbnailBatch, FreedesktopCacheEntries) {
  // A name with a space and a ';', which the URI percent-encodes.
  const std::string good = WriteDocumentFile("cache-in/a b;c.paintdoc", {2000, 1000});
  const std::string refused = WriteBytesFile("cache-in/refused.paintdoc", {'n', 'o'});
  const std::string folder = fs::path(good).parent_path().string();
  ASSERT_EQ(folder.find_first_of(" %;#?"), std::string::npos) << "the test expects a plain path";
  const std::string goodUri = "file://" + folder + "/a%20b%3Bc.paintdoc";
  const std::string refusedUri = "file://" + folder + "/refused.paintdoc";

  struct Case {
    std::string size;
    std::string flavour;
    uint32_t width;
  };
  const Case cases[] = {{"100", "normal", 128}, {"128", "normal", 128}, {"129", "large", 256},
                        {"512", "x-large", 512}, {"1000", "xx-large", 1024}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.size);
    const std::string cacheHome = FreshFolder("xdg-cache");
    const ProgramResult result =
        RunProgram({kTool, "thumbnail", "--freedesktop", "-s", c.size, good, refused},
                   CacheEnvironment(cacheHome));
    EXPECT_EQ(result.exitStatus, 1) << result.err;
    EXPECT_EQ(Lines(result.err).size(), 1u) << result.err;

    const std::string thumbnails = cacheHome + "/thumbnails";
    const std::string entry = thumbnails + "/" + c.flavour + "/" + cli::Md5Hex(goodUri) + ".png";
    PngFacts png = ReadPngFacts(entry);
    ASSERT_TRUE(png.valid) << entry;
    EXPECT_EQ(png.width, c.width);
    EXPECT_EQ(png.colorType, 6);
    EXPECT_EQ(Mode(entry), 0600u);
    EXPECT_EQ(Mode(thumbnails), 0700u);
    EXPECT_EQ(Mode(thumbnails + "/" + c.flavour), 0700u);
    struct stat source {};
    ASSERT_EQ(stat(good.c_str(), &source), 0);
    EXPECT_EQ(png.text["Thumb::URI"], goodUri);
    EXPECT_EQ(png.text["Thumb::MTime"], std::to_string(source.st_mtime));
    EXPECT_EQ(png.text["Thumb::Size"], std::to_string(source.st_size));
    EXPECT_EQ(png.text["Thumb::Image::Width"], "2000");
    EXPECT_EQ(png.text["Software"].rfind("paintdoc ", 0), 0u);
    // Nothing else in the flavour folder: the temporary file was renamed.
    EXPECT_EQ(std::distance(fs::directory_iterator(thumbnails + "/" + c.flavour), {}), 1);

    std::vector<fs::path> failFolders(fs::directory_iterator(thumbnails + "/fail"), {});
    ASSERT_EQ(failFolders.size(), 1u);
    EXPECT_EQ(failFolders[0].filename().string().rfind("paintdoc-", 0), 0u);
    const std::string failEntry = failFolders[0].string() + "/" + cli::Md5Hex(refusedUri) + ".png";
    PngFacts fail = ReadPngFacts(failEntry);
    ASSERT_TRUE(fail.valid) << failEntry;
    EXPECT_EQ(fail.text["Thumb::URI"], refusedUri);
    EXPECT_FALSE(fail.text["Thumb::MTime"].empty());
    EXPECT_EQ(Mode(failEntry), 0600u);
  }
}

TEST(CliThumbnailBatch, UsageErrors) {
  const std::string good = WriteDocumentFile("batch-in/good.paintdoc", {8, 8});
  const std::vector<std::string> cases[] = {
      {"--freedesktop"},
      {"-o", OutputPath("apps/batch-out")},
      {"--freedesktop", "-o", OutputPath("apps/batch-out"), good},
      {"--freedesktop", "-s", "2000", good},
  };
  for (const std::vector<std::string>& arguments : cases) {
    std::vector<std::string> command = {kTool, "thumbnail"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const ProgramResult result = RunProgram(command, CacheEnvironment(OutputPath("apps/unused-cache")));
    EXPECT_EQ(result.exitStatus, 2) << arguments.size();
    EXPECT_EQ(Lines(result.err).size(), 1u) << result.err;
  }
}

}  // namespace
}  // namespace paintdoc::test
