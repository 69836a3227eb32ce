// The subcommands of the `paintdoc` tool. Each takes the arguments after its
// name and answers the process exit status.
#pragma once

#include <string>
#include <vector>

namespace paintdoc::cli {

// Exit statuses of every subcommand.
enum ExitStatus {
  kExitSuccess = 0,
  kExitRefused = 1,      // the file was refused or nothing could be drawn
  kExitUsage = 2,        // wrong arguments
  kExitOutputFailed = 3  // the result could not be written
};

using Arguments = std::vector<std::string>;

int RunRender(const Arguments& arguments);
int RunThumbnail(const Arguments& arguments);
int RunInfo(const Arguments& arguments);
int RunLayers(const Arguments& arguments);

// One line on standard error: "paintdoc: <message>".
void Complain(const std::string& message);

}  // namespace paintdoc::cli
