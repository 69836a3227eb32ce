#include "platform/values/file_bytes.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/stat.h>

namespace paintdoc {
namespace {

struct FileCloser {
  void operator()(FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<FILE, FileCloser>;

Failure FileFailure(const std::string& path, const std::string& reason) {
  return Failure{path + ": " + reason};
}

}  // namespace

Result<std::vector<uint8_t>> ReadFileBytes(const std::string& path, uint64_t maxBytes) {
  FilePtr file(std::fopen(path.c_str(), "rb"));
  if (!file) return FileFailure(path, std::strerror(errno));
  struct stat info {};
  if (fstat(fileno(file.get()), &info) != 0) return FileFailure(path, std::strerror(errno));
  if (!S_ISREG(info.st_mode)) return FileFailure(path, "not a regular file");
  uint64_t size = static_cast<uint64_t>(info.st_size);
  if (size > maxBytes) {
    return FileFailure(path, "file of " + std::to_string(size) +
                                 " bytes is larger than the limit of " + std::to_string(maxBytes) +
                                 " bytes");
  }
  std::vector<uint8_t> bytes(static_cast<size_t>(size));
  size_t got = bytes.empty() ? 0 : std::fread(bytes.data(), 1, bytes.size(), file.get());
  if (got != bytes.size()) return FileFailure(path, "could not read the whole file");
  return bytes;
}

Status WriteFileBytes(const std::string& path, std::span<const uint8_t> bytes) {
  FilePtr file(std::fopen(path.c_str(), "wb"));
  if (!file) return FileFailure(path, std::strerror(errno));
  if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) {
    return FileFailure(path, std::strerror(errno));
  }
  if (std::fclose(file.release()) != 0) return FileFailure(path, std::strerror(errno));
  return Done{};
}

}  // namespace paintdoc
