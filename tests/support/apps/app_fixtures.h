// Files that the tool tests feed to the programs, and a look into PNG output.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/values/geometry.h"

namespace paintdoc::test {

// A document file of the given canvas size with one rectangle layer.
std::string WriteDocumentFile(const std::string& name, Size canvasSize);
// A document container whose "Version" is `version`.
std::string WriteVersionedDocumentFile(const std::string& name, int64_t version);
// Any bytes as a file under the test output.
std::string WriteBytesFile(const std::string& name, const std::vector<uint8_t>& bytes);
// A small PNG (2 × 1, one opaque red pixel and one transparent one).
std::vector<uint8_t> SmallPng();

struct PngFacts {
  bool valid = false;
  uint32_t width = 0;
  uint32_t height = 0;
  int colorType = -1;  // 6: RGBA
  std::map<std::string, std::string> text;
};
PngFacts ReadPngFacts(const std::string& path);

}  // namespace paintdoc::test
