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

void SetError(std::string* error, const std::string& path, const std::string& reason) {
  if (error) *error = path + ": " + reason;
}

}  // namespace

std::optional<std::vector<uint8_t>> ReadFileBytes(const std::string& path, uint64_t maxBytes,
                                                  std::string* error) {
  FilePtr file(std::fopen(path.c_str(), "rb"));
  if (!file) {
    SetError(error, path, std::strerror(errno));
    return std::nullopt;
  }
  struct stat info {};
  if (fstat(fileno(file.get()), &info) != 0) {
    SetError(error, path, std::strerror(errno));
    return std::nullopt;
  }
  if (!S_ISREG(info.st_mode)) {
    SetError(error, path, "not a regular file");
    return std::nullopt;
  }
  uint64_t size = static_cast<uint64_t>(info.st_size);
  if (size > maxBytes) {
    SetError(error, path,
             "file of " + std::to_string(size) + " bytes is larger than the limit of " +
                 std::to_string(maxBytes) + " bytes");
    return std::nullopt;
  }
  std::vector<uint8_t> bytes(static_cast<size_t>(size));
  size_t got = bytes.empty() ? 0 : std::fread(bytes.data(), 1, bytes.size(), file.get());
  if (got != bytes.size()) {
    SetError(error, path, "could not read the whole file");
    return std::nullopt;
  }
  return bytes;
}

bool WriteFileBytes(const std::string& path, std::span<const uint8_t> bytes, std::string* error) {
  FilePtr file(std::fopen(path.c_str(), "wb"));
  if (!file) {
    SetError(error, path, std::strerror(errno));
    return false;
  }
  if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) {
    SetError(error, path, std::strerror(errno));
    return false;
  }
  if (std::fclose(file.release()) != 0) {
    SetError(error, path, std::strerror(errno));
    return false;
  }
  return true;
}

}  // namespace paintdoc
