// Helpers for tests of archived documents: archives with exactly the keys a
// test chooses, the keys an archive holds for its root object, and the
// independent writer and reader (tests/data/keyed_archive_tool.py).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "archive/codable.h"
#include "archive/keyed_archiver.h"

namespace paintdoc::test {

// Archives as class `className` whatever `write` encodes; decoding builds a
// real object of that class from exactly those keys.
class KeysAs : public Codable {
 public:
  KeysAs(std::string className, std::function<void(KeyedArchiver&)> write)
      : className_(std::move(className)), write_(std::move(write)) {}
  std::string className() const override { return className_; }
  void encodeWithCoder(KeyedArchiver& coder) const override { write_(coder); }
  bool initWithCoder(KeyedUnarchiver&) override { return false; }

 private:
  std::string className_;
  std::function<void(KeyedArchiver&)> write_;
};

// The archive of `object` as root ("root" of "$top").
std::vector<uint8_t> ArchiveRoot(const Codable& object);

// The keys of the root object's dictionary ("$class" left out).
std::set<std::string> ArchivedKeysOfRoot(const std::vector<uint8_t>& archive);

// Runs tests/data/keyed_archive_tool.py with the arguments; its standard
// output, or nothing when it failed.
bool RunKeyedArchiveTool(const std::vector<std::string>& arguments, std::string* output = nullptr);

// Writes a scenario of the independent writer to a test-output file and
// answers its path ("" on failure).
std::string WriteIndependentDocument(const std::string& scenario);

}  // namespace paintdoc::test
