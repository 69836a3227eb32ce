// The expected values written by make_geometry_fixtures.py: one named case a
// line, followed by its numbers.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/values/geometry.h"

namespace paintdoc::test {

class FixtureFile {
 public:
  // Reads tests/data/<relative>; a missing file fails the calling test.
  explicit FixtureFile(const std::string& relative);

  // The numbers of one case; an unknown case fails the calling test and
  // answers an empty list.
  const std::vector<double>& values(const std::string& name) const;
  // The names of all cases that begin with `prefix`.
  std::vector<std::string> namesStartingWith(const std::string& prefix) const;

 private:
  std::map<std::string, std::vector<double>> cases_;
};

// Two consecutive numbers of a case as a point.
Point PointAt(const std::vector<double>& values, size_t index);

// The cases of tests/data/geometry/single_precision_fixtures.txt, read once.
const FixtureFile& SinglePrecisionFixtures();

// The S-shaped curve most fixture cases use (start, controls, end).
inline constexpr Point kCurveStart{10.0, 20.0}, kCurveControl1{40.3, 95.7},
    kCurveControl2{120.1, -30.2}, kCurveEnd{150.0, 60.0};

}  // namespace paintdoc::test
