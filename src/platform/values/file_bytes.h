// Whole-file reads and writes with clear errors and a size bound.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/values/result.h"

namespace paintdoc {

// Reads a whole regular file. Refuses files larger than `maxBytes`; a failure
// says "PATH: why" in one line.
Result<std::vector<uint8_t>> ReadFileBytes(const std::string& path, uint64_t maxBytes);

// Writes bytes to a file, replacing it.
Status WriteFileBytes(const std::string& path, std::span<const uint8_t> bytes);

}  // namespace paintdoc
