#include "freedesktop_cache.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "md5.h"

namespace paintdoc::cli {

namespace {

constexpr Flavour kFlavours[] = {{"normal", 128}, {"large", 256}, {"x-large", 512}, {"xx-large", 1024}};

// The bytes a file URI's path keeps as they are. File managers hash the URI
// that GLib makes, so the set is GLib's: RFC 3986's unreserved characters and
// the path's sub-delimiters, ':' and '@', but not ';'.
bool KeptInUriPath(unsigned char c) {
  static constexpr std::string_view kKept = "-._~!$&'()*+,=:@/";
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
         kKept.find(static_cast<char>(c)) != std::string_view::npos;
}

// Makes each missing folder of `path` with mode 0700; true when it exists.
bool MakePrivateFolders(const std::string& path) {
  std::string partial;
  for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
    partial = slash == std::string::npos ? path : path.substr(0, slash);
    if (!partial.empty() && mkdir(partial.c_str(), 0700) != 0 && errno != EEXIST) return false;
    if (slash == std::string::npos) break;
  }
  struct stat info {};
  return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool WriteAll(int descriptor, std::span<const uint8_t> bytes) {
  size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t step = write(descriptor, bytes.data() + written, bytes.size() - written);
    if (step < 0 && errno == EINTR) continue;
    if (step <= 0) return false;
    written += static_cast<size_t>(step);
  }
  return true;
}

}  // namespace

std::optional<Flavour> FlavourForSize(int size) {
  for (const Flavour& flavour : kFlavours) {
    if (size <= flavour.size) return flavour;
  }
  return std::nullopt;
}

std::string FileUri(const std::string& absolutePath) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string uri = "file://";
  for (unsigned char c : absolutePath) {
    if (KeptInUriPath(c)) {
      uri += static_cast<char>(c);
    } else {
      uri += '%';
      uri += kHex[c >> 4];
      uri += kHex[c & 15];
    }
  }
  return uri;
}

std::string ThumbnailCacheRoot() {
  const char* cache = std::getenv("XDG_CACHE_HOME");
  if (cache && cache[0] == '/') return std::string(cache) + "/thumbnails";
  const char* home = std::getenv("HOME");
  if (home && home[0] == '/') return std::string(home) + "/.cache/thumbnails";
  return "";
}

std::optional<CacheEntry> DescribeForCache(const std::string& path, std::string* error) {
  std::error_code failure;
  // Made absolute and free of "." and "..", but symbolic links are kept: the
  // URI is the one the file manager shows.
  const std::filesystem::path absolute = std::filesystem::absolute(path, failure).lexically_normal();
  struct stat info {};
  if (failure || stat(path.c_str(), &info) != 0) {
    *error = path + ": " + (failure ? failure.message() : std::strerror(errno));
    return std::nullopt;
  }
  CacheEntry entry;
  entry.uri = FileUri(absolute.string());
  entry.fileName = Md5Hex(entry.uri) + ".png";
  entry.modificationTime = static_cast<int64_t>(info.st_mtime);
  entry.byteSize = static_cast<uint64_t>(info.st_size);
  return entry;
}

std::vector<std::pair<std::string, std::string>> CacheKeys(const CacheEntry& entry) {
  return {{"Thumb::URI", entry.uri},
          {"Thumb::MTime", std::to_string(entry.modificationTime)},
          {"Thumb::Size", std::to_string(entry.byteSize)},
          {"Software", "paintdoc " PAINTDOC_VERSION}};
}

bool WriteCacheFile(const std::string& folder, const std::string& fileName,
                    std::span<const uint8_t> bytes, std::string* error) {
  const std::string target = folder + "/" + fileName;
  if (!MakePrivateFolders(folder)) {
    *error = "can't make " + folder + ": " + std::strerror(errno);
    return false;
  }
  // mkstemp makes the file 0600, as the standard asks of every thumbnail.
  std::string temporary = target + ".XXXXXX";
  const int descriptor = mkstemp(temporary.data());
  if (descriptor < 0) {
    *error = "can't write " + target + ": " + std::strerror(errno);
    return false;
  }
  bool written = WriteAll(descriptor, bytes);
  int reason = errno;
  if (close(descriptor) != 0 && written) {
    written = false;
    reason = errno;
  }
  if (written && rename(temporary.c_str(), target.c_str()) != 0) {
    written = false;
    reason = errno;
  }
  if (!written) {
    *error = "can't write " + target + ": " + std::strerror(reason);
    unlink(temporary.c_str());
  }
  return written;
}

}  // namespace paintdoc::cli
