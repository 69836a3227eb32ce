// `paintdoc`: previews and descriptions of paint documents from the command
// line. Documents are recognised by their content, never by their name.
#include <cstdio>
#include <cstring>
#include <string>

#include "cli_commands.h"

namespace {

using paintdoc::cli::Arguments;

constexpr const char* kUsage =
    "Usage:\n"
    "  paintdoc render FILE -o OUT.png [--max-memory SIZE]\n"
    "                                         the full-size preview of FILE; refused\n"
    "                                         before drawing when it would take more\n"
    "                                         memory than SIZE (bytes, or 512M, 2G)\n"
    "  paintdoc thumbnail FILE OUT.png [-s SIZE]\n"
    "                                         the preview fitted into SIZE x SIZE\n"
    "                                         (default 256), never enlarged\n"
    "  paintdoc thumbnail FILE... -o DIR [-s SIZE]\n"
    "                                         thumbnails of many files on every core,\n"
    "                                         each as DIR/<file name>.png\n"
    "  paintdoc thumbnail FILE... --freedesktop [-s SIZE]\n"
    "                                         into the freedesktop thumbnail cache\n"
    "                                         ($XDG_CACHE_HOME or ~/.cache/thumbnails):\n"
    "                                         normal, large, x-large or xx-large, the\n"
    "                                         smallest that holds SIZE (up to 1024);\n"
    "                                         refused files recorded under fail/\n"
    "  paintdoc info FILE [--json]            format version, canvas and layers\n"
    "  paintdoc layers FILE -o DIR [--force]  every top-level layer alone as\n"
    "                                         DIR/layer-NNNN.png, and DIR/layers.json\n"
    "                                         with where each belongs on the canvas;\n"
    "                                         existing files are kept unless --force\n"
    "  paintdoc --help | --version\n"
    "\n"
    "FILE is a paint document or a plain image (PNG, JPEG, TIFF, GIF, WebP, BMP).\n"
    "Exit status: 0 success, 1 file refused or nothing drawn, 2 wrong arguments,\n"
    "3 output not written. A failure prints one line on standard error.\n"
    "\n"
    "Many files: each failing file is one line on standard error and the rest go\n"
    "on; a progress bar shows on a terminal; a summary line ends standard output.\n"
    "Two files of the same name in -o DIR: the first named keeps DIR/<name>.png,\n"
    "the others are not written. Exit status 3 when any output was not written,\n"
    "else 1 when any file was refused, else 0.\n";

bool IsHelp(const std::string& argument) { return argument == "--help" || argument == "-h"; }

}  // namespace

int main(int argc, char** argv) {
  Arguments arguments(argv + 1, argv + argc);
  if (arguments.empty()) {
    std::fputs(kUsage, stderr);
    return paintdoc::cli::kExitUsage;
  }
  const std::string command = arguments.front();
  arguments.erase(arguments.begin());

  if (IsHelp(command)) {
    std::fputs(kUsage, stdout);
    return paintdoc::cli::kExitSuccess;
  }
  if (command == "--version") {
    std::printf("paintdoc %s\n", PAINTDOC_VERSION);
    return paintdoc::cli::kExitSuccess;
  }
  for (const std::string& argument : arguments) {
    if (IsHelp(argument)) {
      std::fputs(kUsage, stdout);
      return paintdoc::cli::kExitSuccess;
    }
    if (argument == "--version") {
      std::printf("paintdoc %s\n", PAINTDOC_VERSION);
      return paintdoc::cli::kExitSuccess;
    }
  }
  if (command == "render") return paintdoc::cli::RunRender(arguments);
  if (command == "thumbnail") return paintdoc::cli::RunThumbnail(arguments);
  if (command == "info") return paintdoc::cli::RunInfo(arguments);
  if (command == "layers") return paintdoc::cli::RunLayers(arguments);
  paintdoc::cli::Complain("unknown command \"" + command + "\" (try paintdoc --help)");
  return paintdoc::cli::kExitUsage;
}
