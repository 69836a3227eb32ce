#include "archive/keyed_unarchiver.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "archive/archived_forms.h"
#include "archive/property_list.h"
#include "platform/codecs/image_codecs.h"
#include "platform/values/bitmap.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

// Keys beginning with "$" are stored with the "$" doubled.
std::string EscapeKey(std::string_view key) {
  std::string escaped;
  if (key.starts_with('$')) escaped = "$";
  escaped += key;
  return escaped;
}

template <class Int>
Int Saturate(int64_t value) {
  return static_cast<Int>(std::clamp<int64_t>(value, std::numeric_limits<Int>::min(),
                                              std::numeric_limits<Int>::max()));
}

// Restores the object being decoded when a nested decode ends.
class CurrentObjectScope {
 public:
  CurrentObjectScope(std::vector<uint32_t>& stack, uint32_t dictionary) : stack_(stack) {
    stack_.push_back(dictionary);
  }
  ~CurrentObjectScope() { stack_.pop_back(); }

 private:
  std::vector<uint32_t>& stack_;
};

}  // namespace

KeyedUnarchiver::KeyedUnarchiver(SharedBytes bytes, ArchiveLimits limits) : limits_(limits) {
  valid_ = open(std::move(bytes));
}

KeyedUnarchiver::~KeyedUnarchiver() = default;

void KeyedUnarchiver::fail(std::string message) {
  if (error_.empty()) error_ = std::move(message);
  valid_ = false;
}

bool KeyedUnarchiver::open(SharedBytes bytes) {
  if (bytes.empty()) {
    fail("not a keyed archive: no data");
    return false;
  }
  // A budget for decoding work, generous for any real archive (which decodes
  // each object about once) but finite for files whose shared containers
  // would multiply the work.
  workBudget_ = 16 * uint64_t{bytes.size()} + (uint64_t{1} << 16);
  auto plist = PropertyList::read(std::move(bytes), limits_);
  if (!plist) {
    fail("not a keyed archive: " + plist.reason());
    return false;
  }
  plist_ = std::make_unique<PropertyList>(std::move(*plist));
  const PropertyList& p = *plist_;
  const uint32_t root = p.root();
  if (p.typeAt(root) != PlistType::Dictionary) {
    fail("not a keyed archive: the top object is not a dictionary");
    return false;
  }
  if (auto archiver = p.lookUp(root, "$archiver");
      archiver && !p.stringEquals(*archiver, "NSKeyedArchiver")) {
    fail("not a keyed archive: \"$archiver\" is not \"NSKeyedArchiver\"");
    return false;
  }
  const auto objects = p.lookUp(root, "$objects");
  if (!objects || p.typeAt(*objects) != PlistType::Array) {
    fail("not a keyed archive: no \"$objects\" array");
    return false;
  }
  const auto top = p.lookUp(root, "$top");
  if (!top || p.typeAt(*top) != PlistType::Dictionary) {
    fail("not a keyed archive: no \"$top\" dictionary");
    return false;
  }
  objects_ = *objects;
  currentObject_.assign(1, *top);
  return true;
}

Result<std::shared_ptr<Object>> KeyedUnarchiver::unarchiveObjectWithData(SharedBytes bytes,
                                                                 ArchiveLimits limits) {
  KeyedUnarchiver unarchiver(std::move(bytes), limits);
  if (!unarchiver.isValid()) return Failure{unarchiver.error()};
  std::shared_ptr<Object> root = unarchiver.decodeObjectForKey("root");
  // A limit reached while decoding leaves an incomplete object graph: the
  // archive is refused with that limit rather than read in part.
  if (!unarchiver.isValid()) return Failure{unarchiver.error()};
  if (!root) return Failure{"the archive holds no root object"};
  return root;
}

void KeyedUnarchiver::finishDecoding() { finished_ = true; }

bool KeyedUnarchiver::charge(uint64_t units) {
  if (units > workBudget_) {
    if (valid_) {
      Log("Error: KeyedUnarchiver: the archive shares objects so often that decoding it "
          "would not end; decoding stopped");
    }
    fail("decoding exceeded its work limit (objects shared too often)");
    workBudget_ = 0;
    return false;
  }
  workBudget_ -= units;
  return true;
}

// --- keys

std::optional<uint32_t> KeyedUnarchiver::lookUp(std::string_view key) const {
  if (!valid_ || finished_ || currentObject_.empty()) return std::nullopt;
  if (key.starts_with('$')) return plist_->lookUp(currentObject_.back(), EscapeKey(key));
  return plist_->lookUp(currentObject_.back(), key);
}

std::optional<uint32_t> KeyedUnarchiver::resolve(uint32_t node) const {
  const PlistObject& object = plist_->at(node);
  if (object.type != PlistType::Uid) return node;
  const uint64_t uid = object.uid;
  if (uid == 0 || uid >= plist_->at(objects_).count) return std::nullopt;
  return plist_->elementAt(objects_, static_cast<uint32_t>(uid));
}

bool KeyedUnarchiver::containsValueForKey(std::string_view key) const {
  return lookUp(key).has_value();
}

std::vector<std::string> KeyedUnarchiver::allKeys() const {
  std::vector<std::string> keys;
  if (!valid_ || finished_ || currentObject_.empty()) return keys;
  const uint32_t dictionary = currentObject_.back();
  for (uint32_t i = 0; i < plist_->at(dictionary).count; ++i) {
    std::string key = plist_->stringAt(plist_->keyAt(dictionary, i));
    if (key == "$class") continue;
    if (key.starts_with("$$")) key.erase(0, 1);
    keys.push_back(std::move(key));
  }
  return keys;
}

// --- scalars

namespace {

// A stored number (bool, integer or real) as a value, or absent.
ArchiveValue NumberAt(const PropertyList& plist, std::optional<uint32_t> node) {
  if (!node) return {};
  const PlistObject& o = plist.at(*node);
  switch (o.type) {
    case PlistType::Bool:
      return ArchiveValue(o.boolean);
    case PlistType::Integer:
      return o.isUnsigned ? ArchiveValue(UnsignedInteger{o.unsignedInteger})
                          : ArchiveValue(o.integer);
    case PlistType::Real:
      return ArchiveValue(o.real);
    default:
      return {};
  }
}

}  // namespace

bool KeyedUnarchiver::decodeBoolForKey(std::string_view key) const {
  const auto node = lookUp(key);
  return node && NumberAt(*plist_, resolve(*node)).toBool();
}

int KeyedUnarchiver::decodeIntForKey(std::string_view key) const {
  return Saturate<int>(decodeInt64ForKey(key));
}

int32_t KeyedUnarchiver::decodeInt32ForKey(std::string_view key) const {
  return Saturate<int32_t>(decodeInt64ForKey(key));
}

int64_t KeyedUnarchiver::decodeInt64ForKey(std::string_view key) const {
  const auto node = lookUp(key);
  return node ? NumberAt(*plist_, resolve(*node)).toInt64() : 0;
}

int64_t KeyedUnarchiver::decodeIntegerForKey(std::string_view key) const {
  return decodeInt64ForKey(key);
}

float KeyedUnarchiver::decodeFloatForKey(std::string_view key) const {
  return static_cast<float>(decodeDoubleForKey(key));
}

double KeyedUnarchiver::decodeDoubleForKey(std::string_view key) const {
  const auto node = lookUp(key);
  return node ? NumberAt(*plist_, resolve(*node)).toDouble() : 0;
}

Point KeyedUnarchiver::decodePointForKey(std::string_view key) {
  const ArchiveValue value = decodeValueForKey(key);
  if (const auto* text = value.asString()) return PointFromString(*text);
  if (const auto* point = value.as<Point>()) return *point;
  return {};
}

Size KeyedUnarchiver::decodeSizeForKey(std::string_view key) {
  const ArchiveValue value = decodeValueForKey(key);
  if (const auto* text = value.asString()) return SizeFromString(*text);
  if (const auto* size = value.as<Size>()) return *size;
  return {};
}

Rect KeyedUnarchiver::decodeRectForKey(std::string_view key) {
  const ArchiveValue value = decodeValueForKey(key);
  if (const auto* text = value.asString()) return RectFromString(*text);
  if (const auto* rect = value.as<Rect>()) return *rect;
  return {};
}

std::optional<SharedBytes> KeyedUnarchiver::decodeBytesForKey(std::string_view key) const {
  const auto node = lookUp(key);
  if (!node) return std::nullopt;
  const auto target = resolve(*node);
  if (!target || plist_->typeAt(*target) != PlistType::Data) return std::nullopt;
  return plist_->dataAt(*target);
}

// --- objects and values

ArchiveValue KeyedUnarchiver::decodeValueForKey(std::string_view key) {
  const auto node = lookUp(key);
  return node ? decodeNode(*node) : ArchiveValue();
}

std::shared_ptr<Object> KeyedUnarchiver::decodeObjectForKey(std::string_view key) {
  return decodeValueForKey(key).asObject<Object>();
}

std::vector<std::shared_ptr<Object>> KeyedUnarchiver::decodeObjectArrayForKey(
    std::string_view key) {
  std::vector<std::shared_ptr<Object>> objects;
  const ArchiveValue value = decodeValueForKey(key);
  const ValueArray* elements = value.asArray();
  if (!elements) return objects;
  objects.reserve(elements->size());
  for (const ArchiveValue& element : *elements) {
    if (auto object = element.asObject<Object>()) {
      objects.push_back(std::move(object));
    } else if (!element.isAbsent()) {
      // Absent elements (unknown classes) were reported when they were decoded.
      Log("Warning: KeyedUnarchiver: an element of \"" + std::string(key) +
          "\" is not an object; it is skipped");
    }
  }
  return objects;
}

void KeyedUnarchiver::reportWrongClass(std::string_view key, const std::string& className) const {
  Log("Warning: KeyedUnarchiver: the object under \"" + std::string(key) + "\" is a " +
      className + ", not the class expected; it is ignored");
}

std::optional<std::string> KeyedUnarchiver::decodeStringForKey(std::string_view key) {
  const ArchiveValue value = decodeValueForKey(key);
  if (const auto* text = value.asString()) return *text;
  return std::nullopt;
}

std::optional<SharedBytes> KeyedUnarchiver::decodeDataForKey(std::string_view key) {
  const ArchiveValue value = decodeValueForKey(key);
  if (const auto* data = value.asData()) return *data;
  return std::nullopt;
}

std::optional<double> KeyedUnarchiver::decodeNumberForKey(std::string_view key) {
  const ArchiveValue value = decodeValueForKey(key);
  if (value.isNumber()) return value.toDouble();
  return std::nullopt;
}

namespace {

template <class T>
std::optional<T> Take(const ArchiveValue& value) {
  if (const T* typed = value.as<T>()) return *typed;
  return std::nullopt;
}

}  // namespace

std::optional<Color> KeyedUnarchiver::decodeColorForKey(std::string_view key) {
  return Take<Color>(decodeValueForKey(key));
}
std::optional<BezierPath> KeyedUnarchiver::decodeBezierPathForKey(std::string_view key) {
  return Take<BezierPath>(decodeValueForKey(key));
}
std::optional<Gradient> KeyedUnarchiver::decodeGradientForKey(std::string_view key) {
  return Take<Gradient>(decodeValueForKey(key));
}
std::optional<Shadow> KeyedUnarchiver::decodeShadowForKey(std::string_view key) {
  return Take<Shadow>(decodeValueForKey(key));
}
std::optional<AffineTransform> KeyedUnarchiver::decodeAffineTransformForKey(
    std::string_view key) {
  return Take<AffineTransform>(decodeValueForKey(key));
}
std::optional<Point> KeyedUnarchiver::decodePointValueForKey(std::string_view key) {
  return Take<Point>(decodeValueForKey(key));
}
std::optional<Size> KeyedUnarchiver::decodeSizeValueForKey(std::string_view key) {
  return Take<Size>(decodeValueForKey(key));
}
std::optional<Rect> KeyedUnarchiver::decodeRectValueForKey(std::string_view key) {
  return Take<Rect>(decodeValueForKey(key));
}
std::optional<AttributedString> KeyedUnarchiver::decodeAttributedStringForKey(
    std::string_view key) {
  return Take<AttributedString>(decodeValueForKey(key));
}
std::optional<ArchivedImage> KeyedUnarchiver::decodeImageForKey(std::string_view key) {
  return Take<ArchivedImage>(decodeValueForKey(key));
}

std::shared_ptr<Bitmap> KeyedUnarchiver::decodeBitmapForKey(std::string_view key) {
  const ArchiveValue value = decodeValueForKey(key);
  if (auto bitmap = value.asBitmap()) return bitmap;
  if (const auto* image = value.as<ArchivedImage>()) return image->firstBitmap();
  if (const auto* data = value.asData()) {
    return decodeImageData(data->span(), "the value under \"" + std::string(key) + "\"");
  }
  return nullptr;
}

std::shared_ptr<Bitmap> KeyedUnarchiver::decodeImageData(std::span<const uint8_t> bytes,
                                                         std::string_view what) {
  if (!valid_) return nullptr;
  const uint64_t remaining = limits_.maxTotalImagePixels -
                             std::min(imagePixelsDecoded_, limits_.maxTotalImagePixels);
  ImageSizeRefusal refusal;
  ImageReadOptions options;
  options.maxPixels = std::min(limits_.maxImagePixels, remaining);
  options.sizeRefusal = &refusal;
  ImageResult image = ReadImage(bytes, options);
  if (!image && refusal.refused) {
    const std::string size = std::to_string(refusal.width) + " x " + std::to_string(refusal.height);
    const uint64_t side = static_cast<uint64_t>(Bitmap::kMaxDimension);
    const uint64_t pixels = refusal.width * refusal.height;
    std::string reason;
    if (refusal.width > side || refusal.height > side) {
      reason = "an image in the archive has " + size + " pixels, more than " +
               std::to_string(side) + " a side";
    } else if (pixels > limits_.maxImagePixels) {
      reason = "an image in the archive has " + size + " pixels, above the limit of " +
               std::to_string(limits_.maxImagePixels) + " pixels an image";
    } else {
      reason = "the images in the archive have more than " +
               std::to_string(limits_.maxTotalImagePixels) +
               " pixels together, the limit for one archive";
    }
    Log("Warning: KeyedUnarchiver: " + reason);
    fail(reason);
    return nullptr;
  }
  if (!image) {
    Log("Warning: KeyedUnarchiver: the image data of " + std::string(what) + " cannot be read (" +
        image.reason() + "); it reads as nil");
    return nullptr;
  }
  const Bitmap& bitmap = *image->bitmap;
  imagePixelsDecoded_ +=
      static_cast<uint64_t>(bitmap.pixelsWide()) * static_cast<uint64_t>(bitmap.pixelsHigh());
  return std::move(image->bitmap);
}

// --- the decoder of nodes

ArchiveValue KeyedUnarchiver::decodeNode(uint32_t node) {
  if (!valid_ || !charge(1)) return {};
  const PlistObject& o = plist_->at(node);
  switch (o.type) {
    case PlistType::Null:
      return {};
    case PlistType::Bool:
    case PlistType::Integer:
      return NumberAt(*plist_, node);
    case PlistType::Real:
      return o.isSinglePrecision ? ArchiveValue(SinglePrecision{static_cast<float>(o.real)})
                                 : ArchiveValue(o.real);
    case PlistType::Date:
      return ArchiveValue(Date{o.real});
    case PlistType::String:
      if (!charge(o.extent / 64)) return {};
      return ArchiveValue(plist_->stringAt(node));
    case PlistType::Data:
      return ArchiveValue(plist_->dataAt(node));
    case PlistType::Uid:
      return decodeReference(o.uid);
    case PlistType::Array:
    case PlistType::Set:
    case PlistType::Dictionary:
      break;
  }
  // Containers: an archived object (a dictionary with "$class"), or a plain
  // container whose elements are decoded in turn.
  if (depth_ >= limits_.maxDepth) {
    fail("objects nest deeper than " + std::to_string(limits_.maxDepth));
    return {};
  }
  ++depth_;
  ArchiveValue value;
  if (o.type == PlistType::Dictionary && plist_->lookUp(node, "$class")) {
    value = decodeArchivedObject(node);
  } else if (o.type == PlistType::Dictionary) {
    ValueDictionary entries;
    entries.reserve(o.count);
    for (uint32_t i = 0; i < o.count; ++i) {
      entries.emplace_back(decodeNode(plist_->keyAt(node, i)),
                           decodeNode(plist_->valueAt(node, i)));
    }
    value = ArchiveValue::dictionary(std::move(entries));
  } else {
    ValueArray elements;
    elements.reserve(o.count);
    for (uint32_t element : plist_->elements(node)) elements.push_back(decodeNode(element));
    value = o.type == PlistType::Set ? ArchiveValue::set(std::move(elements))
                                     : ArchiveValue::array(std::move(elements));
  }
  --depth_;
  return value;
}

ArchiveValue KeyedUnarchiver::decodeReference(uint64_t uid) {
  if (uid == 0) return {};
  if (uid >= plist_->at(objects_).count) {
    Log("Warning: KeyedUnarchiver: a reference to object " + std::to_string(uid) +
        " points past the archive's objects; it reads as nil");
    return {};
  }
  if (auto it = sharedObjects_.find(uid); it != sharedObjects_.end()) return it->second;
  if (std::find(underConstruction_.begin(), underConstruction_.end(), uid) !=
      underConstruction_.end()) {
    Log("Warning: KeyedUnarchiver: object " + std::to_string(uid) +
        " refers to itself while it is being decoded; the reference reads as nil");
    return {};
  }
  const uint32_t entry = plist_->elementAt(objects_, static_cast<uint32_t>(uid));
  underConstruction_.push_back(uid);
  ArchiveValue value = decodeNode(entry);
  underConstruction_.pop_back();
  // Model objects and bitmaps keep their identity: every reference to the
  // UID answers the same instance. Failed objects are remembered too, so that
  // they are reported and attempted once.
  const bool archivedObject = plist_->typeAt(entry) == PlistType::Dictionary;
  const auto kind = value.kind();
  if (archivedObject && (kind == ArchiveValue::Kind::Object ||
                         kind == ArchiveValue::Kind::Bitmap || kind == ArchiveValue::Kind::Absent)) {
    sharedObjects_.emplace(uid, value);
  }
  return value;
}

std::string KeyedUnarchiver::classNameOf(uint32_t dictionary) const {
  const auto classRef = plist_->lookUp(dictionary, "$class");
  if (!classRef) return {};
  const auto description = resolve(*classRef);
  if (!description || plist_->typeAt(*description) != PlistType::Dictionary) return {};
  const auto name = plist_->lookUp(*description, "$classname");
  if (!name || !plist_->isString(*name)) return {};
  return plist_->stringAt(*name);
}

ArchiveValue KeyedUnarchiver::decodeArchivedObject(uint32_t dictionary) {
  const std::string className = classNameOf(dictionary);
  if (className.empty()) {
    Log("Warning: KeyedUnarchiver: an archived object has no class description; it reads as nil");
    return {};
  }
  CurrentObjectScope scope(currentObject_, dictionary);
  if (FormReader reader = FindFormReader(className)) return reader(*this, className);

  std::shared_ptr<Object> object = ClassRegistry::shared().create(className);
  auto codable = std::dynamic_pointer_cast<Codable>(object);
  if (!codable) {
    Log("Warning: KeyedUnarchiver: the archive holds an object of unknown class \"" + className +
        "\"; it reads as nil");
    return {};
  }
  if (!codable->initWithCoder(*this)) return {};
  return ArchiveValue(std::move(object));
}

}  // namespace paintdoc
