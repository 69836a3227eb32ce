// `paintdoc info`: what a file holds, as text or as one JSON object.
#include <cstdio>
#include <string>

#include "cli_commands.h"
#include "preview/document_info.h"
#include "preview/preview_source.h"

namespace paintdoc::cli {

int RunInfo(const Arguments& arguments) {
  std::string input;
  bool json = false;
  for (const std::string& argument : arguments) {
    if (argument == "--json") {
      json = true;
    } else if (input.empty()) {
      input = argument;
    } else {
      Complain("info: unexpected argument \"" + argument + "\"");
      return kExitUsage;
    }
  }
  if (input.empty()) {
    Complain("info needs FILE");
    return kExitUsage;
  }
  const PreviewSource source = ReadPreviewSource(input, PreviewKind::Preview);
  if (!source.drawable()) {
    Complain(input + ": " + source.diagnosis);
    return kExitRefused;
  }
  const DocumentInfo info = DescribePreviewSource(source);
  const std::string text = json ? FormatDocumentInfoJson(info) : FormatDocumentInfoText(info);
  std::fwrite(text.data(), 1, text.size(), stdout);
  return std::fflush(stdout) == 0 ? kExitSuccess : kExitOutputFailed;
}

}  // namespace paintdoc::cli
