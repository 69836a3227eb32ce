#include "support/test_paths.h"

#include <filesystem>

namespace paintdoc::test {

std::string DataPath(const std::string& relative) {
  return std::string(PAINTDOC_TEST_DATA_DIR) + "/" + relative;
}

std::string OutputPath(const std::string& relative) {
  const std::filesystem::path path = std::filesystem::path(PAINTDOC_TEST_OUTPUT_DIR) / relative;
  std::filesystem::create_directories(path.parent_path());
  return path.string();
}

std::string SourcePath(const std::string& relative) {
  return std::string(PAINTDOC_SOURCE_DIR) + "/" + relative;
}

}  // namespace paintdoc::test
