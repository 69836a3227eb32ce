// Where tests find their fixtures and write what they produce.
#pragma once

#include <string>

namespace paintdoc::test {

// A file under tests/data/.
std::string DataPath(const std::string& relative);
// A file under the build's test-output folder (created on demand).
std::string OutputPath(const std::string& relative);
// A file of the source tree (scripts, examples).
std::string SourcePath(const std::string& relative);

}  // namespace paintdoc::test
