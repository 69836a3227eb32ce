#include "support/fixture_file.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "support/test_paths.h"

namespace paintdoc::test {

FixtureFile::FixtureFile(const std::string& relative) {
  std::ifstream in(DataPath(relative));
  if (!in) {
    ADD_FAILURE() << "missing fixture file " << relative;
    return;
  }
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream words(line);
    std::string name, word;
    words >> name;
    std::vector<double>& numbers = cases_[name];
    // strtod rather than >> so that "inf" reads back.
    while (words >> word) numbers.push_back(std::strtod(word.c_str(), nullptr));
  }
}

const std::vector<double>& FixtureFile::values(const std::string& name) const {
  static const std::vector<double> kNone;
  const auto found = cases_.find(name);
  if (found == cases_.end()) {
    ADD_FAILURE() << "no fixture case " << name;
    return kNone;
  }
  return found->second;
}

std::vector<std::string> FixtureFile::namesStartingWith(const std::string& prefix) const {
  std::vector<std::string> names;
  for (const auto& [name, numbers] : cases_) {
    if (name.rfind(prefix, 0) == 0) names.push_back(name);
  }
  return names;
}

Point PointAt(const std::vector<double>& values, size_t index) {
  if (index + 1 >= values.size()) {
    ADD_FAILURE() << "fixture case too short for a point at " << index;
    return {};
  }
  return {values[index], values[index + 1]};
}

const FixtureFile& SinglePrecisionFixtures() {
  static const FixtureFile file("geometry/single_precision_fixtures.txt");
  return file;
}

}  // namespace paintdoc::test
