// Helpers of the archive tests: fixture loading, and two small model classes
// (TestNode and its subclass TestLeaf) that archive themselves.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "archive/codable.h"
#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "archive/shared_bytes.h"

namespace paintdoc::test {

// The bytes of tests/data/archive/<name> (fails the test when missing).
SharedBytes ArchiveFixture(const std::string& name);
// Writes a binary archive to the output folder, converts it with plistutil
// and has verify_written.py (plistlib) check both forms; answers "" when
// they pass, otherwise what went wrong. `options` go to the script.
std::string VerifyIndependently(const std::string& name, std::span<const uint8_t> archive,
                                const std::string& options = "");

class TestNode : public Codable {
 public:
  std::string className() const override { return "TestNode"; }
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  std::string name;
  std::vector<std::shared_ptr<TestNode>> children;
  std::shared_ptr<TestNode> partner;
  // What initWithCoder saw for the partner while decoding (null for a
  // reference to an object under construction).
  bool partnerWasNull = false;
};

class TestLeaf : public TestNode {
 public:
  std::string className() const override { return "TestLeaf"; }
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  double weight = 0;
};

// Registers TestNode and TestLeaf (idempotent). A TestNode named "refuse"
// answers false from initWithCoder.
void RegisterTestClasses();

}  // namespace paintdoc::test
