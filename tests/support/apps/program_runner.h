// Runs a built program of the project and collects what it did.
#pragma once

#include <string>
#include <vector>

namespace paintdoc::test {

struct ProgramResult {
  int exitStatus = -1;  // -1 when it did not exit normally
  std::string out;
  std::string err;
};

struct RunOptions {
  // Replace the whole environment (an empty list: no variables at all).
  bool clearEnvironment = false;
  std::vector<std::string> environment;
  std::string workingDirectory;  // empty: the test's own
};

// A program of the apps folder ("paintdoc", "paintdoc-examples") by name.
std::string AppPath(const std::string& name);

ProgramResult RunProgram(const std::vector<std::string>& arguments, const RunOptions& options = {});

// A whole file as text ("" when it cannot be read).
std::string ReadText(const std::string& path);

// The lines of a text (a last line without newline counts).
std::vector<std::string> Lines(const std::string& text);

}  // namespace paintdoc::test
