#include "support/archive_test_support.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>

#include "platform/values/file_bytes.h"
#include "support/test_paths.h"

namespace paintdoc::test {

SharedBytes ArchiveFixture(const std::string& name) {
  auto bytes = ReadFileBytes(DataPath("archive/" + name), 64 << 20);
  EXPECT_TRUE(bytes) << bytes.reason();
  return SharedBytes(bytes ? std::move(*bytes) : std::vector<uint8_t>{});
}

namespace {

// Writes bytes to the test output folder and answers the path.
std::string WriteOutput(const std::string& name, std::span<const uint8_t> bytes) {
  const std::string path = OutputPath("archive/" + name);
  const Status written = WriteFileBytes(path, bytes);
  EXPECT_TRUE(written) << written.reason();
  return path;
}

// Runs a command; answers its exit status and puts its output in *output.
int RunCommand(const std::string& command, std::string* output) {
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (!pipe) return -1;
  std::array<char, 4096> buffer;
  size_t n;
  while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
    if (output) output->append(buffer.data(), n);
  }
  const int status = pclose(pipe);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

std::string VerifyIndependently(const std::string& name, std::span<const uint8_t> archive,
                                const std::string& options) {
  const std::string binary = WriteOutput(name, archive);
  const std::string xml = binary + ".xml";
  std::string output;
  if (RunCommand("plistutil -i '" + binary + "' -o '" + xml + "'", &output) != 0) {
    return "plistutil failed: " + output;
  }
  output.clear();
  const std::string script = SourcePath("tests/archive/verify_written.py");
  if (RunCommand("python3 '" + script + "' '" + binary + "' '" + xml + "' " + options, &output) != 0) {
    return output.empty() ? "verify_written.py failed" : output;
  }
  return "";
}

void TestNode::encodeWithCoder(KeyedArchiver& coder) const {
  coder.encodeStringForKey(name, "Name");
  if (!children.empty()) coder.encodeArrayOfObjectsForKey(children, "Children");
  if (partner) coder.encodeObjectForKey(partner, "Partner");
}

bool TestNode::initWithCoder(KeyedUnarchiver& coder) {
  name = coder.decodeStringForKey("Name").value_or("");
  if (name == "refuse") return false;
  children = coder.decodeArrayOfObjectsForKey<TestNode>("Children");
  partner = coder.decodeObjectForKey<TestNode>("Partner");
  partnerWasNull = coder.containsValueForKey("Partner") && !partner;
  return true;
}

void TestLeaf::encodeWithCoder(KeyedArchiver& coder) const {
  TestNode::encodeWithCoder(coder);
  coder.encodeDoubleForKey(weight, "Weight");
}

bool TestLeaf::initWithCoder(KeyedUnarchiver& coder) {
  if (!TestNode::initWithCoder(coder)) return false;
  weight = coder.decodeDoubleForKey("Weight");
  return true;
}

void RegisterTestClasses() {
  ClassRegistry& registry = ClassRegistry::shared();
  registry.registerClass({"TestNode", "", [] { return std::make_shared<TestNode>(); }});
  registry.registerClass({"TestLeaf", "TestNode", [] { return std::make_shared<TestLeaf>(); }});
}

}  // namespace paintdoc::test
