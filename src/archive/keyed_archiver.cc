#include "archive/keyed_archiver.h"

#include <map>
#include <unordered_map>

#include "archive/archive_object_writer.h"
#include "archive/archived_forms.h"
#include "archive/property_list.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

constexpr int64_t kArchiveVersion = 100000;
constexpr uint32_t kPending = UINT32_MAX;  // an object whose dictionary is not finished

// Keys beginning with "$" are stored with the "$" doubled so that they cannot
// be mistaken for the archive's own keys.
std::string EscapeKey(std::string_view key) {
  std::string escaped;
  if (key.starts_with('$')) escaped = "$";
  escaped += key;
  return escaped;
}

}  // namespace

struct KeyedArchiver::State {
  // One archived object's dictionary while it is being written.
  struct Frame {
    uint64_t uid = 0;
    std::vector<std::pair<std::string, uint32_t>> entries;  // escaped key, node
  };

  PropertyList plist;
  std::vector<uint32_t> objects;  // "$objects": the node of each UID
  std::vector<Frame> frames;      // frames[0] is "$top"
  // Model objects and bitmaps by identity: each instance is written once.
  std::unordered_map<const void*, uint64_t> objectUids;
  std::map<std::vector<std::string>, uint64_t> classUids;
  std::unordered_map<std::string, uint64_t> stringUids;
};

KeyedArchiver::KeyedArchiver() : state_(std::make_unique<State>()) {
  state_->objects.push_back(state_->plist.addString("$null"));
  state_->frames.emplace_back();
}

KeyedArchiver::~KeyedArchiver() = default;

std::vector<uint8_t> KeyedArchiver::archivedDataWithRootObject(const Codable& object) {
  KeyedArchiver archiver;
  archiver.encodeObjectForKey(&object, "root");
  return archiver.finishEncoding();
}

bool KeyedArchiver::checkOpen() const {
  if (finished_) Log("Error: KeyedArchiver: encoding after finishEncoding is ignored");
  return !finished_;
}

std::vector<uint8_t> KeyedArchiver::finishEncoding() {
  if (!checkOpen()) return {};
  finished_ = true;
  if (state_->frames.size() != 1) {
    Log("Error: KeyedArchiver: finishEncoding while an object is still being encoded");
    return {};
  }
  State& s = *state_;
  std::vector<uint32_t> topKeys;
  std::vector<uint32_t> topValues;
  for (const auto& [key, node] : s.frames[0].entries) {
    topKeys.push_back(s.plist.addString(key));
    topValues.push_back(node);
  }
  const uint32_t top = s.plist.addDictionary(topKeys, topValues);
  const uint32_t objects = s.plist.addArray(s.objects);
  const uint32_t keys[] = {s.plist.addString("$version"), s.plist.addString("$archiver"),
                           s.plist.addString("$top"), s.plist.addString("$objects")};
  const uint32_t values[] = {s.plist.addInteger(kArchiveVersion),
                             s.plist.addString("NSKeyedArchiver"), top, objects};
  s.plist.setRoot(s.plist.addDictionary(keys, values));
  return WriteBinaryPlist(s.plist);
}

void KeyedArchiver::put(std::string_view key, uint32_t node) {
  if (!checkOpen()) return;
  auto& entries = state_->frames.back().entries;
  std::string escaped = EscapeKey(key);
  for (auto& entry : entries) {
    if (entry.first == escaped) {
      Log("Warning: KeyedArchiver: replacing the value for key \"" + std::string(key) + "\"");
      entry.second = node;
      return;
    }
  }
  entries.emplace_back(std::move(escaped), node);
}

uint64_t KeyedArchiver::classDescription(std::span<const std::string> classChain) {
  State& s = *state_;
  std::vector<std::string> chain(classChain.begin(), classChain.end());
  if (auto it = s.classUids.find(chain); it != s.classUids.end()) return it->second;
  std::vector<uint32_t> names;
  for (const std::string& name : chain) names.push_back(s.plist.addString(name));
  const uint32_t keys[] = {s.plist.addString("$classes"), s.plist.addString("$classname")};
  const uint32_t values[] = {s.plist.addArray(names), s.plist.addString(chain.front())};
  const uint64_t uid = s.objects.size();
  s.objects.push_back(s.plist.addDictionary(keys, values));
  s.classUids.emplace(std::move(chain), uid);
  return uid;
}

uint64_t KeyedArchiver::beginObject(std::span<const std::string> classChain) {
  State& s = *state_;
  const uint64_t uid = s.objects.size();
  s.objects.push_back(kPending);
  State::Frame frame;
  frame.uid = uid;
  // "$class" comes first, as in the platform's archives.
  frame.entries.emplace_back("$class", s.plist.addUid(0));
  s.frames.push_back(std::move(frame));
  s.frames.back().entries[0].second = s.plist.addUid(classDescription(classChain));
  return uid;
}

void KeyedArchiver::endObject() {
  State& s = *state_;
  State::Frame frame = std::move(s.frames.back());
  s.frames.pop_back();
  std::vector<uint32_t> keys;
  std::vector<uint32_t> values;
  for (const auto& [key, node] : frame.entries) {
    keys.push_back(s.plist.addString(key));
    values.push_back(node);
  }
  s.objects[frame.uid] = s.plist.addDictionary(keys, values);
}

uint64_t KeyedArchiver::archiveCodable(const Codable& object) {
  State& s = *state_;
  // The same instance is written once; a reference to an object still being
  // written (a cycle) gets its UID as well.
  if (auto it = s.objectUids.find(&object); it != s.objectUids.end()) return it->second;
  const std::string name = object.className();
  std::vector<std::string> chain = ClassRegistry::shared().classChain(name);
  if (chain.empty()) chain.push_back(name);
  if (chain.back() != "NSObject") chain.push_back("NSObject");
  const uint64_t uid = beginObject(chain);
  s.objectUids.emplace(&object, uid);
  object.encodeWithCoder(*this);
  endObject();
  return uid;
}

// --- scalars

void KeyedArchiver::encodeBoolForKey(bool value, std::string_view key) {
  put(key, state_->plist.addBool(value));
}
void KeyedArchiver::encodeIntForKey(int value, std::string_view key) {
  put(key, state_->plist.addInteger(value));
}
void KeyedArchiver::encodeInt32ForKey(int32_t value, std::string_view key) {
  put(key, state_->plist.addInteger(value));
}
void KeyedArchiver::encodeInt64ForKey(int64_t value, std::string_view key) {
  put(key, state_->plist.addInteger(value));
}
void KeyedArchiver::encodeIntegerForKey(int64_t value, std::string_view key) {
  put(key, state_->plist.addInteger(value));
}
void KeyedArchiver::encodeFloatForKey(float value, std::string_view key) {
  put(key, state_->plist.addFloat(value));
}
void KeyedArchiver::encodeDoubleForKey(double value, std::string_view key) {
  put(key, state_->plist.addReal(value));
}
void KeyedArchiver::encodePointForKey(const Point& value, std::string_view key) {
  encodeStringForKey(StringFromPoint(value), key);
}
void KeyedArchiver::encodeSizeForKey(const Size& value, std::string_view key) {
  encodeStringForKey(StringFromSize(value), key);
}
void KeyedArchiver::encodeRectForKey(const Rect& value, std::string_view key) {
  encodeStringForKey(StringFromRect(value), key);
}
void KeyedArchiver::encodeBytesForKey(std::span<const uint8_t> bytes, std::string_view key) {
  put(key, state_->plist.addData(bytes));
}

// --- objects

void KeyedArchiver::encodeObjectForKey(const Codable* object, std::string_view key) {
  if (!checkOpen()) return;
  put(key, state_->plist.addUid(object ? archiveCodable(*object) : 0));
}

void KeyedArchiver::encodeObjectArrayForKey(const std::vector<const Codable*>& objects,
                                            std::string_view key, bool mutableArray) {
  if (!checkOpen()) return;
  ArchiveObjectWriter writer(*this);
  std::vector<uint64_t> uids;
  uids.reserve(objects.size());
  for (const Codable* object : objects) {
    if (!object) {
      Log("Error: KeyedArchiver: an array under \"" + std::string(key) +
          "\" holds a null object; it is left out");
      continue;
    }
    uids.push_back(archiveCodable(*object));
  }
  const uint64_t uid = writer.begin(mutableArray
                                        ? std::vector<std::string>{"NSMutableArray", "NSArray", "NSObject"}
                                        : std::vector<std::string>{"NSArray", "NSObject"});
  writer.encodeReferences(uids, "NS.objects");
  writer.finish();
  writer.encodeReference(uid, key);
}

// --- platform values

void KeyedArchiver::encodeStringForKey(std::string_view value, std::string_view key) {
  if (!checkOpen()) return;
  ArchiveObjectWriter writer(*this);
  writer.encodeReference(writer.archiveString(value), key);
}

void KeyedArchiver::encodeDataForKey(std::span<const uint8_t> value, std::string_view key) {
  if (!checkOpen()) return;
  State& s = *state_;
  const uint64_t uid = s.objects.size();
  s.objects.push_back(s.plist.addData(value));
  put(key, s.plist.addUid(uid));
}

namespace {

// Archives one value with `write` and puts the reference under the key.
template <class Write>
void EncodeWith(KeyedArchiver& archiver, std::string_view key, Write write) {
  ArchiveObjectWriter writer(archiver);
  writer.encodeReference(write(writer), key);
}

}  // namespace

void KeyedArchiver::encodeColorForKey(const Color& value, std::string_view key) {
  if (checkOpen()) EncodeWith(*this, key, [&](auto& w) { return WriteColor(w, value); });
}
void KeyedArchiver::encodeBezierPathForKey(const BezierPath& value, std::string_view key) {
  if (checkOpen()) EncodeWith(*this, key, [&](auto& w) { return WriteBezierPath(w, value); });
}
void KeyedArchiver::encodeGradientForKey(const Gradient& value, std::string_view key) {
  if (checkOpen()) EncodeWith(*this, key, [&](auto& w) { return WriteGradient(w, value); });
}
void KeyedArchiver::encodeShadowForKey(const Shadow& value, std::string_view key) {
  if (checkOpen()) EncodeWith(*this, key, [&](auto& w) { return WriteShadow(w, value); });
}
void KeyedArchiver::encodeAffineTransformForKey(const AffineTransform& value,
                                                std::string_view key) {
  if (checkOpen()) {
    EncodeWith(*this, key, [&](auto& w) { return WriteAffineTransform(w, value); });
  }
}
void KeyedArchiver::encodePointValueForKey(const Point& value, std::string_view key) {
  encodeValueForKey(ArchiveValue(value), key);
}
void KeyedArchiver::encodeSizeValueForKey(const Size& value, std::string_view key) {
  encodeValueForKey(ArchiveValue(value), key);
}
void KeyedArchiver::encodeRectValueForKey(const Rect& value, std::string_view key) {
  encodeValueForKey(ArchiveValue(value), key);
}
void KeyedArchiver::encodeAttributedStringForKey(const AttributedString& value,
                                                 std::string_view key,
                                                 AttributedStringClass archivedClass) {
  if (checkOpen()) {
    EncodeWith(*this, key,
               [&](auto& w) { return WriteAttributedString(w, value, archivedClass); });
  }
}
void KeyedArchiver::encodeBitmapForKey(const Bitmap& value, std::string_view key) {
  if (checkOpen()) EncodeWith(*this, key, [&](auto& w) { return WriteBitmapImageRep(w, value); });
}
void KeyedArchiver::encodeBitmapForKey(const std::shared_ptr<Bitmap>& value, std::string_view key) {
  encodeValueForKey(ArchiveValue(value), key);
}
void KeyedArchiver::encodeImageForKey(const ArchivedImage& value, std::string_view key) {
  if (checkOpen()) EncodeWith(*this, key, [&](auto& w) { return WriteImage(w, value); });
}
void KeyedArchiver::encodeValueForKey(const ArchiveValue& value, std::string_view key) {
  if (checkOpen()) EncodeWith(*this, key, [&](auto& w) { return w.archive(value); });
}

// --- building blocks for the platform's forms

uint64_t ArchiveObjectWriter::begin(std::vector<std::string> classChain) {
  return coder_.beginObject(classChain);
}

void ArchiveObjectWriter::finish() { coder_.endObject(); }

void ArchiveObjectWriter::encodeReference(uint64_t uid, std::string_view key) {
  coder_.put(key, coder_.state_->plist.addUid(uid));
}

void ArchiveObjectWriter::encodeReferences(std::span<const uint64_t> uids, std::string_view key) {
  auto& plist = coder_.state_->plist;
  std::vector<uint32_t> nodes;
  nodes.reserve(uids.size());
  for (uint64_t uid : uids) nodes.push_back(plist.addUid(uid));
  coder_.put(key, plist.addArray(nodes));
}

void ArchiveObjectWriter::encodeInlineString(std::string_view text, std::string_view key) {
  coder_.put(key, coder_.state_->plist.addString(text));
}

uint64_t ArchiveObjectWriter::archiveString(std::string_view text) {
  auto& s = *coder_.state_;
  std::string key(text);
  if (auto it = s.stringUids.find(key); it != s.stringUids.end()) return it->second;
  const uint64_t uid = s.objects.size();
  s.objects.push_back(s.plist.addString(text));
  s.stringUids.emplace(std::move(key), uid);
  return uid;
}

uint64_t ArchiveObjectWriter::archive(const ArchiveValue& value) {
  auto& s = *coder_.state_;
  // Immutable strings, numbers and data are stored bare; the rest as objects.
  auto bare = [&](uint32_t node) {
    const uint64_t uid = s.objects.size();
    s.objects.push_back(node);
    return uid;
  };
  switch (value.kind()) {
    case ArchiveValue::Kind::Absent:
      return 0;
    case ArchiveValue::Kind::Bool:
      return bare(s.plist.addBool(value.toBool()));
    case ArchiveValue::Kind::Integer:
      return bare(s.plist.addInteger(value.toInt64()));
    case ArchiveValue::Kind::Unsigned:
      return bare(s.plist.addUnsigned(value.as<UnsignedInteger>()->value));
    case ArchiveValue::Kind::Real:
      return bare(s.plist.addReal(value.toDouble()));
    case ArchiveValue::Kind::Float:
      return bare(s.plist.addFloat(value.as<SinglePrecision>()->value));
    case ArchiveValue::Kind::String:
      if (!value.isMutable()) return archiveString(*value.asString());
      break;
    case ArchiveValue::Kind::Data:
      if (!value.isMutable()) return bare(s.plist.addDataView(*value.asData()));
      break;
    case ArchiveValue::Kind::Bitmap: {
      const auto bitmap = value.asBitmap();
      if (!bitmap) return 0;
      if (auto it = s.objectUids.find(bitmap.get()); it != s.objectUids.end()) return it->second;
      const uint64_t uid = WriteValueObject(*this, value);
      if (uid) s.objectUids.emplace(bitmap.get(), uid);
      return uid;
    }
    case ArchiveValue::Kind::Object: {
      auto object = value.asObject<Codable>();
      if (!object) {
        Log("Error: KeyedArchiver: an object of class \"" +
            value.asObject<Object>()->className() + "\" cannot archive itself; it is left out");
        return 0;
      }
      return coder_.archiveCodable(*object);
    }
    default:
      break;
  }
  return WriteValueObject(*this, value);
}

}  // namespace paintdoc
