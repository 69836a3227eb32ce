// How many threads this process runs now, read from /proc/self/task: tests
// that a call leaves no thread of its own behind.
#pragma once

#include <dirent.h>

namespace paintdoc::test {

inline int ThreadCount() {
  int count = 0;
  if (DIR* tasks = opendir("/proc/self/task")) {
    while (const dirent* entry = readdir(tasks)) count += entry->d_name[0] != '.';
    closedir(tasks);
  }
  return count;
}

}  // namespace paintdoc::test
