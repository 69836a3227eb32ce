#include "archive/property_list.h"

#include <algorithm>
#include <cstring>

#include "platform/text/utf16.h"

namespace paintdoc {

namespace {

PlistObject Make(PlistType type) {
  PlistObject o;
  o.type = type;
  return o;
}

bool IsAscii(std::string_view text) {
  for (char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

}  // namespace

Result<PropertyList> PropertyList::read(SharedBytes bytes, const ArchiveLimits& limits) {
  if (looksBinary(bytes.span())) return readBinary(std::move(bytes), limits);
  return readXml(std::move(bytes), limits);
}

bool PropertyList::looksBinary(std::span<const uint8_t> bytes) {
  return bytes.size() >= 7 && std::memcmp(bytes.data(), "bplist0", 7) == 0;
}

std::span<const uint32_t> PropertyList::elements(uint32_t container) const {
  const PlistObject& object = objects_[container];
  return std::span<const uint32_t>(refs_).subspan(object.extent, object.count);
}

std::optional<uint32_t> PropertyList::lookUp(uint32_t dictionary, std::string_view key) const {
  const PlistObject& d = objects_[dictionary];
  if (d.type != PlistType::Dictionary) return std::nullopt;
  for (uint32_t i = 0; i < d.count; ++i) {
    if (stringEquals(keyAt(dictionary, i), key)) return valueAt(dictionary, i);
  }
  return std::nullopt;
}

std::string PropertyList::stringAt(uint32_t index) const {
  const PlistObject& s = objects_[index];
  if (s.type != PlistType::String) return {};
  if (!s.isUtf16) return std::string(reinterpret_cast<const char*>(s.bytes), s.extent);
  std::u16string units(s.extent / 2, u'\0');
  for (size_t i = 0; i < units.size(); ++i) {
    units[i] = static_cast<char16_t>((s.bytes[2 * i] << 8) | s.bytes[2 * i + 1]);
  }
  return Utf16ToUtf8(units);
}

bool PropertyList::stringEquals(uint32_t index, std::string_view text) const {
  const PlistObject& s = objects_[index];
  if (s.type != PlistType::String) return false;
  if (!s.isUtf16) {
    return s.extent == text.size() &&
           (text.empty() || std::memcmp(s.bytes, text.data(), text.size()) == 0);
  }
  return stringAt(index) == text;
}

SharedBytes PropertyList::dataAt(uint32_t index) const {
  const PlistObject& d = objects_[index];
  if (d.type != PlistType::Data) return {};
  // Every data object lives in the source buffer or in owned storage, both
  // kept by this list; the view shares the source's lifetime when it can.
  const uint8_t* sourceStart = source_.data();
  if (sourceStart && d.bytes >= sourceStart && d.bytes + d.extent <= sourceStart + source_.size()) {
    return source_.subrange(static_cast<size_t>(d.bytes - sourceStart), d.extent);
  }
  for (const SharedBytes& view : keptViews_) {
    if (d.bytes >= view.data() && d.bytes + d.extent <= view.data() + view.size()) {
      return view.subrange(static_cast<size_t>(d.bytes - view.data()), d.extent);
    }
  }
  return SharedBytes::copyOf({d.bytes, d.extent});
}

uint32_t PropertyList::add(const PlistObject& object) {
  objects_.push_back(object);
  return static_cast<uint32_t>(objects_.size() - 1);
}

const uint8_t* PropertyList::own(std::span<const uint8_t> bytes) {
  owned_.emplace_back(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  return reinterpret_cast<const uint8_t*>(owned_.back().data());
}

uint32_t PropertyList::addNull() { return add(PlistObject{}); }

uint32_t PropertyList::addBool(bool value) {
  PlistObject o = Make(PlistType::Bool);
  o.boolean = value;
  return add(o);
}

uint32_t PropertyList::addInteger(int64_t value) {
  PlistObject o = Make(PlistType::Integer);
  o.integer = value;
  return add(o);
}

uint32_t PropertyList::addUnsigned(uint64_t value) {
  if (value <= static_cast<uint64_t>(INT64_MAX)) return addInteger(static_cast<int64_t>(value));
  PlistObject o = Make(PlistType::Integer);
  o.isUnsigned = true;
  o.unsignedInteger = value;
  return add(o);
}

uint32_t PropertyList::addReal(double value) {
  PlistObject o = Make(PlistType::Real);
  o.real = value;
  return add(o);
}

uint32_t PropertyList::addFloat(float value) {
  PlistObject o = Make(PlistType::Real);
  o.isSinglePrecision = true;
  o.real = value;
  return add(o);
}

uint32_t PropertyList::addDate(double secondsSinceReferenceDate) {
  PlistObject o = Make(PlistType::Date);
  o.real = secondsSinceReferenceDate;
  return add(o);
}

uint32_t PropertyList::addUid(uint64_t value) {
  PlistObject o = Make(PlistType::Uid);
  o.uid = value;
  return add(o);
}

uint32_t PropertyList::addString(std::string_view utf8) {
  PlistObject o = Make(PlistType::String);
  if (IsAscii(utf8)) {
    o.bytes = own({reinterpret_cast<const uint8_t*>(utf8.data()), utf8.size()});
    o.extent = utf8.size();
  } else {
    // Stored as the binary format keeps non-ASCII text: UTF-16 big-endian.
    const std::u16string units = Utf8ToUtf16(utf8);
    std::string bytes(units.size() * 2, '\0');
    for (size_t i = 0; i < units.size(); ++i) {
      bytes[2 * i] = static_cast<char>(units[i] >> 8);
      bytes[2 * i + 1] = static_cast<char>(units[i] & 0xFF);
    }
    owned_.push_back(std::move(bytes));
    o.bytes = reinterpret_cast<const uint8_t*>(owned_.back().data());
    o.extent = owned_.back().size();
    o.isUtf16 = true;
  }
  return add(o);
}

uint32_t PropertyList::addData(std::span<const uint8_t> bytes) {
  PlistObject o = Make(PlistType::Data);
  o.bytes = own(bytes);
  o.extent = bytes.size();
  return add(o);
}

uint32_t PropertyList::addDataView(const SharedBytes& bytes) {
  keptViews_.push_back(bytes);
  PlistObject o = Make(PlistType::Data);
  o.bytes = bytes.data();
  o.extent = bytes.size();
  return add(o);
}

uint32_t PropertyList::addContainer(PlistType type, std::span<const uint32_t> first,
                                    std::span<const uint32_t> second) {
  PlistObject o;
  o.type = type;
  o.count = static_cast<uint32_t>(first.size());
  o.extent = refs_.size();
  refs_.insert(refs_.end(), first.begin(), first.end());
  refs_.insert(refs_.end(), second.begin(), second.end());
  return add(o);
}

uint32_t PropertyList::addArray(std::span<const uint32_t> elements) {
  return addContainer(PlistType::Array, elements, {});
}

uint32_t PropertyList::addSet(std::span<const uint32_t> elements) {
  return addContainer(PlistType::Set, elements, {});
}

uint32_t PropertyList::addDictionary(std::span<const uint32_t> keys,
                                     std::span<const uint32_t> values) {
  const size_t pairs = std::min(keys.size(), values.size());
  return addContainer(PlistType::Dictionary, keys.first(pairs), values.first(pairs));
}

}  // namespace paintdoc
