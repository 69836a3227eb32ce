#include "draws/draw_attributes.h"

#include <algorithm>

namespace paintdoc {

void DrawAttributes::set(std::string_view key, ArchiveValue value) {
  for (Entry& entry : entries_) {
    if (entry.first == key) {
      entry.second = std::move(value);
      return;
    }
  }
  entries_.emplace_back(std::string(key), std::move(value));
}

void DrawAttributes::remove(std::string_view key) {
  std::erase_if(entries_, [key](const Entry& entry) { return entry.first == key; });
}

const ArchiveValue* DrawAttributes::find(std::string_view key) const {
  for (const Entry& entry : entries_) {
    if (entry.first == key) return &entry.second;
  }
  return nullptr;
}

const ArchiveValue* DrawAttributes::number(std::string_view key) const {
  const ArchiveValue* value = find(key);
  return value && value->isNumber() ? value : nullptr;
}

}  // namespace paintdoc
