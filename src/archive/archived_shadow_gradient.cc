// NSShadow and NSGradient.
//
// A shadow stores its offset and blur as doubles, each only when not zero,
// and its colour only when one was set explicitly. A gradient stores its
// colours, their locations and its colour space (the keys of the one known
// reimplementation; the platform's own form is not documented).
#include "archive/archived_forms.h"

namespace paintdoc {

namespace {

// "NSID" numbers of the named colour spaces a gradient can be in.
constexpr int64_t kGenericRGB = 1;
constexpr int64_t kGenericGray = 2;
constexpr int64_t kDeviceRGB = 4;
constexpr int64_t kDeviceGray = 5;
constexpr int64_t kDeviceCMYK = 6;
constexpr int64_t kSRGB = 7;
constexpr int64_t kDisplayP3SpaceId = 12;  // an "NSSpaceID"

std::optional<ColorSpaceKind> SpaceOfColorSpaceObject(const ArchiveValue& space) {
  if (const ArchiveValue* spaceId = space.valueForKey("NSSpaceID")) {
    if (spaceId->toInt64() == kDisplayP3SpaceId) return ColorSpaceKind::DisplayP3;
  }
  const ArchiveValue* id = space.valueForKey("NSID");
  if (!id) return std::nullopt;
  switch (id->toInt64()) {
    case kGenericRGB: return ColorSpaceKind::CalibratedRGB;
    case kGenericGray: return ColorSpaceKind::CalibratedWhite;
    case kDeviceRGB: return ColorSpaceKind::DeviceRGB;
    case kDeviceGray: return ColorSpaceKind::DeviceWhite;
    case kDeviceCMYK: return ColorSpaceKind::DeviceCMYK;
    case kSRGB: return ColorSpaceKind::SRGB;
    default: return std::nullopt;
  }
}

}  // namespace

ArchiveValue ReadShadowObject(KeyedUnarchiver& coder, std::string_view) {
  Shadow shadow;
  shadow.setShadowOffset({coder.decodeDoubleForKey("NSShadowHoriz"),
                          coder.decodeDoubleForKey("NSShadowVert")});
  shadow.setShadowBlurRadius(coder.decodeDoubleForKey("NSShadowBlurRadius"));
  shadow.setShadowColor(coder.decodeColorForKey("NSShadowColor"));
  return ArchiveValue(std::move(shadow));
}

uint64_t WriteShadow(ArchiveObjectWriter& writer, const Shadow& shadow) {
  const uint64_t uid = writer.begin({"NSShadow", "NSObject"});
  KeyedArchiver& coder = writer.coder();
  const Size offset = shadow.shadowOffset();
  if (offset.width != 0) coder.encodeDoubleForKey(offset.width, "NSShadowHoriz");
  if (offset.height != 0) coder.encodeDoubleForKey(offset.height, "NSShadowVert");
  if (shadow.shadowBlurRadius() != 0) {
    coder.encodeDoubleForKey(shadow.shadowBlurRadius(), "NSShadowBlurRadius");
  }
  if (shadow.explicitColor()) coder.encodeColorForKey(*shadow.explicitColor(), "NSShadowColor");
  writer.finish();
  return uid;
}

ArchiveValue ReadGradientObject(KeyedUnarchiver& coder, std::string_view) {
  std::vector<Color> colors;
  std::vector<double> locations;
  const ArchiveValue colorArray = coder.decodeValueForKey("NSColors");
  if (const ValueArray* elements = colorArray.asArray()) {
    for (const ArchiveValue& element : *elements) {
      if (const Color* color = element.as<Color>()) colors.push_back(*color);
    }
  }
  const ArchiveValue locationArray = coder.decodeValueForKey("NSLocations");
  if (const ValueArray* elements = locationArray.asArray()) {
    for (const ArchiveValue& element : *elements) locations.push_back(element.toDouble());
  }
  // Locations beyond the colours are ignored; missing ones are spaced evenly.
  if (locations.size() > colors.size()) locations.resize(colors.size());
  if (locations.size() < colors.size()) locations.clear();
  const auto space = SpaceOfColorSpaceObject(coder.decodeValueForKey("NSColorSpace"));
  return ArchiveValue(Gradient::withColors(colors, locations, space));
}

uint64_t WriteGradient(ArchiveObjectWriter& writer, const Gradient& gradient) {
  ValueArray colors;
  ValueArray locations;
  for (const GradientStop& stop : gradient.stops()) {
    colors.emplace_back(stop.color);
    locations.emplace_back(stop.location);
  }
  const char* idKey = "NSID";
  int64_t id = kGenericRGB;
  switch (gradient.colorSpace()) {
    case ColorSpaceKind::CalibratedWhite: id = kGenericGray; break;
    case ColorSpaceKind::DeviceRGB: id = kDeviceRGB; break;
    case ColorSpaceKind::DeviceWhite: id = kDeviceGray; break;
    case ColorSpaceKind::DeviceCMYK: id = kDeviceCMYK; break;
    case ColorSpaceKind::SRGB: id = kSRGB; break;
    case ColorSpaceKind::DisplayP3: idKey = "NSSpaceID", id = kDisplayP3SpaceId; break;
    default: break;
  }
  const uint64_t colorArray = writer.archive(ArchiveValue::array(std::move(colors)));
  const uint64_t locationArray = writer.archive(ArchiveValue::array(std::move(locations)));
  const uint64_t space = writer.begin({"NSColorSpace", "NSObject"});
  writer.coder().encodeInt64ForKey(id, idKey);
  writer.finish();

  const uint64_t uid = writer.begin({"NSGradient", "NSObject"});
  writer.encodeReference(colorArray, "NSColors");
  writer.encodeReference(locationArray, "NSLocations");
  writer.encodeReference(space, "NSColorSpace");
  writer.finish();
  return uid;
}

}  // namespace paintdoc
