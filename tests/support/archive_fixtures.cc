#include "support/archive_fixtures.h"

#include <cstdio>
#include <memory>

#include "archive/property_list.h"
#include "support/test_paths.h"

namespace paintdoc::test {

std::vector<uint8_t> ArchiveRoot(const Codable& object) {
  return KeyedArchiver::archivedDataWithRootObject(object);
}

std::set<std::string> ArchivedKeysOfRoot(const std::vector<uint8_t>& archive) {
  std::set<std::string> keys;
  auto plist = PropertyList::read(SharedBytes::copyOf(archive), ArchiveLimits{});
  if (!plist) return keys;
  const auto top = plist->lookUp(plist->root(), "$top");
  const auto objects = plist->lookUp(plist->root(), "$objects");
  if (!top || !objects) return keys;
  const auto rootReference = plist->lookUp(*top, "root");
  if (!rootReference || plist->typeAt(*rootReference) != PlistType::Uid) return keys;
  const uint32_t root = plist->elementAt(*objects, static_cast<uint32_t>(plist->at(*rootReference).uid));
  for (uint32_t i = 0; i < plist->at(root).count; ++i) {
    std::string key = plist->stringAt(plist->keyAt(root, i));
    if (key != "$class") keys.insert(std::move(key));
  }
  return keys;
}

bool RunKeyedArchiveTool(const std::vector<std::string>& arguments, std::string* output) {
  std::string command = "python3 '" + DataPath("keyed_archive_tool.py") + "'";
  for (const std::string& argument : arguments) command += " '" + argument + "'";
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  if (!pipe) return false;
  std::string text;
  char buffer[4096];
  while (size_t got = std::fread(buffer, 1, sizeof buffer, pipe.get())) text.append(buffer, got);
  const int status = pclose(pipe.release());
  if (output) *output = text;
  return status == 0;
}

std::string WriteIndependentDocument(const std::string& scenario) {
  const std::string path = OutputPath("independent/" + scenario + ".paintdoc");
  return RunKeyedArchiveTool({"write", scenario, path}) ? path : "";
}

}  // namespace paintdoc::test
