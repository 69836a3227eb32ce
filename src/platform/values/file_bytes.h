// Whole-file reads and writes with clear errors and a size bound.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace paintdoc {

// Reads a whole regular file. Refuses files larger than `maxBytes`; on failure
// answers an empty optional and sets `error` (when given) to a one-line reason.
std::optional<std::vector<uint8_t>> ReadFileBytes(const std::string& path, uint64_t maxBytes,
                                                  std::string* error = nullptr);

// Writes bytes to a file, replacing it. False, with `error` set, on failure.
bool WriteFileBytes(const std::string& path, std::span<const uint8_t> bytes,
                    std::string* error = nullptr);

}  // namespace paintdoc
