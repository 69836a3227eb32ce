// The freedesktop thumbnail cache: where a file's thumbnail goes, what it
// carries, and how it is written so that a file manager reading the cache
// never sees half a file.
//
//   $XDG_CACHE_HOME/thumbnails/<flavour>/<md5 of the file URI>.png
//   $XDG_CACHE_HOME/thumbnails/fail/paintdoc-<version>/<md5>.png  (refused)
//
// ~/.cache stands for $XDG_CACHE_HOME when that is unset or not absolute.
// Folders are made 0700 and files 0600.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace paintdoc::cli {

// A cache size class: its folder name and the square its thumbnails fit.
struct Flavour {
  const char* name;
  int size;
};

// The smallest flavour whose square holds `size` pixels; none above 1024.
std::optional<Flavour> FlavourForSize(int size);

// "file://" and the absolute path, percent-encoded (upper-case hex) as file
// managers encode it: every byte but RFC 3986's unreserved characters, '/',
// ':', '@' and the sub-delimiters other than ';'.
std::string FileUri(const std::string& absolutePath);

// "<cache>/thumbnails", or "" when neither XDG_CACHE_HOME nor HOME says where.
std::string ThumbnailCacheRoot();

// What the cache knows of one source file.
struct CacheEntry {
  std::string uri;
  std::string fileName;  // <md5 of uri>.png
  int64_t modificationTime = 0;
  uint64_t byteSize = 0;
};

// The entry of the file at `path`, or a one-line reason when its absolute
// path or modification time cannot be read (the standard then stores nothing).
std::optional<CacheEntry> DescribeForCache(const std::string& path, std::string* error);

// The tEXt keys a cached thumbnail carries: URI, MTime, Size and Software.
std::vector<std::pair<std::string, std::string>> CacheKeys(const CacheEntry& entry);

// Writes `bytes` as folder/fileName, mode 0600, through a temporary file in
// the same folder renamed over the old one; makes missing folders 0700.
bool WriteCacheFile(const std::string& folder, const std::string& fileName,
                    std::span<const uint8_t> bytes, std::string* error);

}  // namespace paintdoc::cli
