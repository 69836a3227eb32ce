#include "support/apps/program_runner.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "support/test_paths.h"

extern char** environ;

namespace paintdoc::test {

namespace {

std::vector<char*> Pointers(std::vector<std::string>& strings) {
  std::vector<char*> pointers;
  for (std::string& s : strings) pointers.push_back(s.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

std::string ReadText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::string AppPath(const std::string& name) { return std::string(PAINTDOC_APPS_DIR) + "/" + name; }

ProgramResult RunProgram(const std::vector<std::string>& arguments, const RunOptions& options) {
  static int counter = 0;
  const std::string base = OutputPath("apps/run-" + std::to_string(getpid()) + "-" +
                                      std::to_string(counter++));
  const std::string outPath = base + ".out";
  const std::string errPath = base + ".err";

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (!options.workingDirectory.empty()) {
    posix_spawn_file_actions_addchdir_np(&actions, options.workingDirectory.c_str());
  }
  std::vector<std::string> argv = arguments;
  std::vector<std::string> envp = options.environment;
  std::vector<char*> argPointers = Pointers(argv);
  std::vector<char*> envPointers = Pointers(envp);

  ProgramResult result;
  pid_t pid = 0;
  const int spawned = posix_spawn(&pid, argv[0].c_str(), &actions, nullptr, argPointers.data(),
                                  options.clearEnvironment ? envPointers.data() : environ);
  posix_spawn_file_actions_destroy(&actions);
  if (spawned != 0) {
    result.err = "could not start " + argv[0];
    return result;
  }
  int status = 0;
  waitpid(pid, &status, 0);
  if (WIFEXITED(status)) result.exitStatus = WEXITSTATUS(status);
  result.out = ReadText(outPath);
  result.err = ReadText(errPath);
  std::remove(outPath.c_str());
  std::remove(errPath.c_str());
  return result;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace paintdoc::test
