#include "platform/text/attributed_string.h"

#include <algorithm>

namespace paintdoc {

AttributedString::AttributedString(std::u16string text, TextAttributes attributes)
    : text_(std::move(text)) {
  if (!text_.empty()) runs_.push_back({text_.size(), std::move(attributes)});
}

AttributedString AttributedString::fromUTF8(std::string_view text, TextAttributes attributes) {
  return AttributedString(Utf8ToUtf16(text), std::move(attributes));
}

std::string AttributedString::utf8Text() const { return Utf16ToUtf8(text_); }

const TextAttributes& AttributedString::attributesAt(size_t index) const {
  static const TextAttributes kNone;
  size_t start = 0;
  for (const AttributeRun& run : runs_) {
    if (index < start + run.length) return run.attributes;
    start += run.length;
  }
  return kNone;
}

void AttributedString::append(std::u16string_view text, const TextAttributes& attributes) {
  if (text.empty()) return;
  text_.append(text);
  if (!runs_.empty() && runs_.back().attributes == attributes) {
    runs_.back().length += text.size();
  } else {
    runs_.push_back({text.size(), attributes});
  }
}

void AttributedString::append(const AttributedString& other) {
  size_t start = 0;
  for (const AttributeRun& run : other.runs_) {
    append(std::u16string_view(other.text_).substr(start, run.length), run.attributes);
    start += run.length;
  }
}

void AttributedString::setAttributes(const TextAttributes& attributes, size_t location,
                                     size_t length) {
  location = std::min(location, text_.size());
  length = std::min(length, text_.size() - location);
  if (length == 0) return;
  // Each run keeps its parts before and after the range; the new run goes in
  // where the range starts.
  std::vector<AttributeRun> result;
  const size_t end = location + length;
  size_t start = 0;
  bool inserted = false;
  for (const AttributeRun& run : runs_) {
    const size_t runEnd = start + run.length;
    if (start < location) result.push_back({std::min(runEnd, location) - start, run.attributes});
    if (runEnd > location && !inserted) {
      result.push_back({length, attributes});
      inserted = true;
    }
    if (runEnd > end) result.push_back({runEnd - std::max(start, end), run.attributes});
    start = runEnd;
  }
  runs_ = std::move(result);
  normalizeRuns();
}

bool AttributedString::assign(std::u16string text, std::vector<AttributeRun> runs) {
  size_t total = 0;
  for (const AttributeRun& run : runs) total += run.length;
  if (total != text.size()) return false;
  text_ = std::move(text);
  runs_ = std::move(runs);
  normalizeRuns();
  return true;
}

void AttributedString::normalizeRuns() {
  std::vector<AttributeRun> merged;
  for (AttributeRun& run : runs_) {
    if (run.length == 0) continue;
    if (!merged.empty() && merged.back().attributes == run.attributes) {
      merged.back().length += run.length;
    } else {
      merged.push_back(std::move(run));
    }
  }
  runs_ = std::move(merged);
}

}  // namespace paintdoc
