// Archived forms of the value classes: mutable strings and data, arrays,
// sets, dictionaries, boxed geometry (NSValue), the null object and dates.
// Immutable strings, numbers and data are bare property-list values and need
// no form.
#include <string>

#include "archive/archived_forms.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

bool IsMutableClass(std::string_view className) {
  return className.find("Mutable") != std::string_view::npos;
}

// NSValue's kinds ("NS.special").
enum SpecialValue : int64_t {
  kSpecialPoint = 1,
  kSpecialSize = 2,
  kSpecialRect = 3,
  kSpecialRange = 4,
  kSpecialEdgeInsets = 12,
};

// The elements under "NS.objects", or under the older numbered keys
// "NS.object.0", "NS.object.1", ...
ValueArray DecodeElements(KeyedUnarchiver& coder) {
  const ArchiveValue objects = coder.decodeValueForKey("NS.objects");
  if (const ValueArray* elements = objects.asArray()) return *elements;
  ValueArray elements;
  for (size_t i = 0; coder.containsValueForKey("NS.object." + std::to_string(i)); ++i) {
    elements.push_back(coder.decodeValueForKey("NS.object." + std::to_string(i)));
  }
  return elements;
}

}  // namespace

ArchiveValue ReadStringObject(KeyedUnarchiver& coder, std::string_view className) {
  ArchiveValue text = coder.decodeValueForKey("NS.string");
  if (!text.asString()) {
    // Older archives keep the text as UTF-8 bytes.
    const auto bytes = coder.decodeBytesForKey("NS.bytes");
    if (!bytes) return {};
    text = ArchiveValue(std::string(bytes->asStringView()));
  }
  return text.setMutable(IsMutableClass(className));
}

ArchiveValue ReadDataObject(KeyedUnarchiver& coder, std::string_view className) {
  ArchiveValue data = coder.decodeValueForKey("NS.data");
  if (!data.asData()) return {};
  return data.setMutable(IsMutableClass(className));
}

ArchiveValue ReadArrayObject(KeyedUnarchiver& coder, std::string_view className) {
  return ArchiveValue::array(DecodeElements(coder)).setMutable(IsMutableClass(className));
}

ArchiveValue ReadSetObject(KeyedUnarchiver& coder, std::string_view className) {
  // Ordered sets keep their order and read as arrays.
  if (className.find("Ordered") != std::string_view::npos) {
    return ArchiveValue::array(DecodeElements(coder)).setMutable(IsMutableClass(className));
  }
  return ArchiveValue::set(DecodeElements(coder)).setMutable(IsMutableClass(className));
}

ArchiveValue ReadDictionaryObject(KeyedUnarchiver& coder, std::string_view className) {
  ValueDictionary entries;
  const ArchiveValue keys = coder.decodeValueForKey("NS.keys");
  const ArchiveValue values = coder.decodeValueForKey("NS.objects");
  if (keys.asArray() && values.asArray()) {
    const ValueArray& k = *keys.asArray();
    const ValueArray& v = *values.asArray();
    if (k.size() != v.size()) {
      Log("Warning: KeyedUnarchiver: a dictionary has " + std::to_string(k.size()) + " keys and " +
          std::to_string(v.size()) + " values; the extra ones are ignored");
    }
    for (size_t i = 0; i < k.size() && i < v.size(); ++i) entries.emplace_back(k[i], v[i]);
  } else {
    for (size_t i = 0; coder.containsValueForKey("NS.key." + std::to_string(i)); ++i) {
      entries.emplace_back(coder.decodeValueForKey("NS.key." + std::to_string(i)),
                           coder.decodeValueForKey("NS.object." + std::to_string(i)));
    }
  }
  return ArchiveValue::dictionary(std::move(entries)).setMutable(IsMutableClass(className));
}

ArchiveValue ReadValueObject(KeyedUnarchiver& coder, std::string_view) {
  switch (coder.decodeInt64ForKey("NS.special")) {
    case kSpecialPoint:
      return ArchiveValue(coder.decodePointForKey("NS.pointval"));
    case kSpecialSize:
      return ArchiveValue(coder.decodeSizeForKey("NS.sizeval"));
    case kSpecialRect:
      return ArchiveValue(coder.decodeRectForKey("NS.rectval"));
    case kSpecialRange:
      return ArchiveValue(Range{static_cast<uint64_t>(coder.decodeInt64ForKey("NS.rangeval.location")),
                                static_cast<uint64_t>(coder.decodeInt64ForKey("NS.rangeval.length"))});
    case kSpecialEdgeInsets:
      return ArchiveValue::dictionary({
          {"top", coder.decodeDoubleForKey("NS.edgeval.top")},
          {"left", coder.decodeDoubleForKey("NS.edgeval.left")},
          {"bottom", coder.decodeDoubleForKey("NS.edgeval.bottom")},
          {"right", coder.decodeDoubleForKey("NS.edgeval.right")},
      });
    default:
      Log("Warning: KeyedUnarchiver: a boxed value of a kind this reader does not know; "
          "it reads as nil");
      return {};
  }
}

ArchiveValue ReadNullObject(KeyedUnarchiver&, std::string_view) { return ArchiveValue(NullObject{}); }

ArchiveValue ReadDateObject(KeyedUnarchiver& coder, std::string_view) {
  return ArchiveValue(Date{coder.decodeDoubleForKey("NS.time")});
}

// --- writing

namespace {

uint64_t WriteElements(ArchiveObjectWriter& writer, const ValueArray& elements,
                       std::vector<std::string> classChain) {
  std::vector<uint64_t> uids;
  uids.reserve(elements.size());
  for (const ArchiveValue& element : elements) uids.push_back(writer.archive(element));
  const uint64_t uid = writer.begin(std::move(classChain));
  writer.encodeReferences(uids, "NS.objects");
  writer.finish();
  return uid;
}

uint64_t WriteDictionary(ArchiveObjectWriter& writer, const ValueDictionary& entries,
                         bool isMutable) {
  std::vector<uint64_t> keys;
  std::vector<uint64_t> values;
  for (const auto& [key, value] : entries) {
    keys.push_back(writer.archive(key));
    values.push_back(writer.archive(value));
  }
  const uint64_t uid =
      writer.begin(isMutable ? std::vector<std::string>{"NSMutableDictionary", "NSDictionary", "NSObject"}
                             : std::vector<std::string>{"NSDictionary", "NSObject"});
  writer.encodeReferences(keys, "NS.keys");
  writer.encodeReferences(values, "NS.objects");
  writer.finish();
  return uid;
}

uint64_t WriteBoxedValue(ArchiveObjectWriter& writer, const ArchiveValue& value) {
  const uint64_t uid = writer.begin({"NSValue", "NSObject"});
  KeyedArchiver& coder = writer.coder();
  if (const Point* p = value.as<Point>()) {
    coder.encodeIntegerForKey(kSpecialPoint, "NS.special");
    coder.encodePointForKey(*p, "NS.pointval");
  } else if (const Size* s = value.as<Size>()) {
    coder.encodeIntegerForKey(kSpecialSize, "NS.special");
    coder.encodeSizeForKey(*s, "NS.sizeval");
  } else if (const Rect* r = value.as<Rect>()) {
    coder.encodeIntegerForKey(kSpecialRect, "NS.special");
    coder.encodeRectForKey(*r, "NS.rectval");
  } else if (const Range* range = value.as<Range>()) {
    coder.encodeIntegerForKey(kSpecialRange, "NS.special");
    coder.encodeInt64ForKey(static_cast<int64_t>(range->location), "NS.rangeval.location");
    coder.encodeInt64ForKey(static_cast<int64_t>(range->length), "NS.rangeval.length");
  }
  writer.finish();
  return uid;
}

}  // namespace

uint64_t WriteFoundationObject(ArchiveObjectWriter& writer, const ArchiveValue& value) {
  using Kind = ArchiveValue::Kind;
  const bool isMutable = value.isMutable();
  switch (value.kind()) {
    case Kind::String: {
      const uint64_t uid = writer.begin({"NSMutableString", "NSString", "NSObject"});
      writer.encodeInlineString(*value.asString(), "NS.string");
      writer.finish();
      return uid;
    }
    case Kind::Data: {
      const uint64_t uid = writer.begin({"NSMutableData", "NSData", "NSObject"});
      writer.coder().encodeBytesForKey(value.asData()->span(), "NS.data");
      writer.finish();
      return uid;
    }
    case Kind::Array:
      return WriteElements(writer, *value.asArray(),
                           isMutable ? std::vector<std::string>{"NSMutableArray", "NSArray", "NSObject"}
                                     : std::vector<std::string>{"NSArray", "NSObject"});
    case Kind::Set:
      return WriteElements(writer, *value.asArray(),
                           isMutable ? std::vector<std::string>{"NSMutableSet", "NSSet", "NSObject"}
                                     : std::vector<std::string>{"NSSet", "NSObject"});
    case Kind::Dictionary:
      return WriteDictionary(writer, *value.asDictionary(), isMutable);
    case Kind::Point:
    case Kind::Size:
    case Kind::Rect:
    case Kind::Range:
      return WriteBoxedValue(writer, value);
    case Kind::Null: {
      const uint64_t uid = writer.begin({"NSNull", "NSObject"});
      writer.finish();
      return uid;
    }
    case Kind::Date: {
      const uint64_t uid = writer.begin({"NSDate", "NSObject"});
      writer.coder().encodeDoubleForKey(value.as<Date>()->secondsSinceReferenceDate, "NS.time");
      writer.finish();
      return uid;
    }
    default:
      return 0;
  }
}

}  // namespace paintdoc
