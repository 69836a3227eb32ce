#include "plugin/plugin_uuid.h"

#include <cstring>

namespace paintdoc {

namespace {

constexpr size_t kTextLength = 36;

bool IsDashPosition(size_t index) {
  return index == 8 || index == 13 || index == 18 || index == 23;
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::optional<PaintdocUUIDBytes> UUIDFromString(std::string_view text) {
  if (text.size() != kTextLength) return std::nullopt;
  PaintdocUUIDBytes uuid{};
  size_t byte = 0;
  for (size_t i = 0; i < kTextLength;) {
    if (IsDashPosition(i)) {
      if (text[i] != '-') return std::nullopt;
      ++i;
      continue;
    }
    const int high = HexValue(text[i]);
    const int low = HexValue(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    uuid.bytes[byte++] = static_cast<uint8_t>(high * 16 + low);
    i += 2;
  }
  return uuid;
}

std::string StringFromUUID(const PaintdocUUIDBytes& uuid) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (size_t byte = 0; byte < 16; ++byte) {
    if (byte == 4 || byte == 6 || byte == 8 || byte == 10) text += '-';
    text += kDigits[uuid.bytes[byte] >> 4];
    text += kDigits[uuid.bytes[byte] & 15];
  }
  return text;
}

bool UUIDEqual(const PaintdocUUIDBytes& a, const PaintdocUUIDBytes& b) {
  return std::memcmp(a.bytes, b.bytes, sizeof a.bytes) == 0;
}

}  // namespace paintdoc
