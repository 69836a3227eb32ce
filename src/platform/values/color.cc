#include "platform/values/color.h"

#include <algorithm>
#include <map>
#include <utility>

namespace paintdoc {

Color Color::make(ColorSpaceKind space, std::array<double, 5> components) {
  Color c;
  c.space_ = space;
  c.components_ = components;
  return c;
}

Color Color::calibratedRGB(double r, double g, double b, double a) {
  return make(ColorSpaceKind::CalibratedRGB, {r, g, b, a, 0});
}
Color Color::deviceRGB(double r, double g, double b, double a) {
  return make(ColorSpaceKind::DeviceRGB, {r, g, b, a, 0});
}
Color Color::sRGB(double r, double g, double b, double a) {
  return make(ColorSpaceKind::SRGB, {r, g, b, a, 0});
}
Color Color::displayP3(double r, double g, double b, double a) {
  return make(ColorSpaceKind::DisplayP3, {r, g, b, a, 0});
}
Color Color::calibratedWhite(double white, double a) {
  return make(ColorSpaceKind::CalibratedWhite, {white, a, 0, 0, 0});
}
Color Color::deviceWhite(double white, double a) {
  return make(ColorSpaceKind::DeviceWhite, {white, a, 0, 0, 0});
}
Color Color::deviceCMYK(double c, double m, double y, double k, double a) {
  return make(ColorSpaceKind::DeviceCMYK, {c, m, y, k, a});
}

Color Color::catalog(std::string catalogName, std::string colorName, std::optional<Color> fallback) {
  Color c = make(ColorSpaceKind::Catalog, {0, 0, 0, 0, 0});
  c.catalogName_ = std::move(catalogName);
  c.colorName_ = std::move(colorName);
  if (fallback) c.fallback_ = std::make_shared<const Color>(std::move(*fallback));
  return c;
}

Color Color::clearColor() { return calibratedWhite(0, 0); }
Color Color::blackColor() { return calibratedWhite(0, 1); }
Color Color::whiteColor() { return calibratedWhite(1, 1); }
Color Color::grayColor() { return calibratedWhite(0.5, 1); }
Color Color::redColor() { return calibratedRGB(1, 0, 0, 1); }
Color Color::greenColor() { return calibratedRGB(0, 1, 0, 1); }
Color Color::blueColor() { return calibratedRGB(0, 0, 1, 1); }

int Color::numberOfComponents() const {
  switch (space_) {
    case ColorSpaceKind::CalibratedWhite:
    case ColorSpaceKind::DeviceWhite:
      return 2;
    case ColorSpaceKind::DeviceCMYK:
      return 5;
    case ColorSpaceKind::Catalog:
      return 0;
    default:
      return 4;
  }
}

double Color::alphaComponent() const {
  if (space_ == ColorSpaceKind::Catalog) return toCalibratedRGB().alpha;
  return components_[numberOfComponents() - 1];
}

RGBA Color::toCalibratedRGB() const {
  const auto& c = components_;
  switch (space_) {
    case ColorSpaceKind::CalibratedRGB:
    case ColorSpaceKind::DeviceRGB:
    case ColorSpaceKind::SRGB:
    case ColorSpaceKind::DisplayP3:
      return {c[0], c[1], c[2], c[3]};
    case ColorSpaceKind::CalibratedWhite:
    case ColorSpaceKind::DeviceWhite:
      return {c[0], c[0], c[0], c[1]};
    case ColorSpaceKind::DeviceCMYK:
      return {(1 - c[0]) * (1 - c[3]), (1 - c[1]) * (1 - c[3]), (1 - c[2]) * (1 - c[3]), c[4]};
    case ColorSpaceKind::Catalog:
      if (auto known = LookupCatalogColor(catalogName_, colorName_)) return known->toCalibratedRGB();
      if (fallback_) return fallback_->toCalibratedRGB();
      return {0, 0, 0, 1};  // an unknown name without a stored colour reads as black
  }
  return {0, 0, 0, 1};
}

Color Color::usingCalibratedRGB() const {
  const RGBA rgba = toCalibratedRGB();
  return calibratedRGB(rgba.red, rgba.green, rgba.blue, rgba.alpha);
}

Color Color::withAlphaComponent(double alpha) const {
  if (space_ == ColorSpaceKind::Catalog) return usingCalibratedRGB().withAlphaComponent(alpha);
  Color copy = *this;
  copy.components_[numberOfComponents() - 1] = alpha;
  return copy;
}

bool operator==(const Color& a, const Color& b) {
  if (a.space_ != b.space_ || a.components_ != b.components_) return false;
  if (a.catalogName_ != b.catalogName_ || a.colorName_ != b.colorName_) return false;
  if (!a.fallback_ || !b.fallback_) return !a.fallback_ && !b.fallback_;
  return *a.fallback_ == *b.fallback_;
}

std::optional<Color> LookupCatalogColor(const std::string& catalogName, const std::string& colorName) {
  // The system catalogue in its light appearance. Names that are not listed
  // fall back to the colour stored with them.
  static const std::map<std::pair<std::string, std::string>, Color> table = {
      {{"System", "clearColor"}, Color::calibratedWhite(0, 0)},
      {{"System", "blackColor"}, Color::calibratedWhite(0, 1)},
      {{"System", "whiteColor"}, Color::calibratedWhite(1, 1)},
      {{"System", "textColor"}, Color::calibratedWhite(0, 1)},
      {{"System", "textBackgroundColor"}, Color::calibratedWhite(1, 1)},
      {{"System", "labelColor"}, Color::calibratedWhite(0, 0.85)},
      {{"System", "secondaryLabelColor"}, Color::calibratedWhite(0, 0.5)},
      {{"System", "controlColor"}, Color::calibratedWhite(1, 1)},
      {{"System", "controlBackgroundColor"}, Color::calibratedWhite(1, 1)},
      {{"System", "controlTextColor"}, Color::calibratedWhite(0, 0.85)},
      {{"System", "disabledControlTextColor"}, Color::calibratedWhite(0, 0.25)},
      {{"System", "windowBackgroundColor"}, Color::calibratedWhite(0.92549, 1)},
      {{"System", "gridColor"}, Color::calibratedWhite(0.8, 1)},
      {{"System", "selectedTextBackgroundColor"}, Color::calibratedRGB(0.70196, 0.84314, 1, 1)},
      {{"System", "selectedControlColor"}, Color::calibratedRGB(0.70196, 0.84314, 1, 1)},
      {{"System", "keyboardFocusIndicatorColor"}, Color::calibratedRGB(0.0, 0.403, 0.851, 0.5)},
      {{"System", "systemRedColor"}, Color::calibratedRGB(1, 0.231, 0.188, 1)},
      {{"System", "systemGreenColor"}, Color::calibratedRGB(0.157, 0.804, 0.255, 1)},
      {{"System", "systemBlueColor"}, Color::calibratedRGB(0, 0.478, 1, 1)},
      {{"System", "systemOrangeColor"}, Color::calibratedRGB(1, 0.584, 0, 1)},
      {{"System", "systemYellowColor"}, Color::calibratedRGB(1, 0.8, 0, 1)},
      {{"System", "systemBrownColor"}, Color::calibratedRGB(0.635, 0.518, 0.369, 1)},
      {{"System", "systemPurpleColor"}, Color::calibratedRGB(0.686, 0.322, 0.871, 1)},
      {{"System", "systemGrayColor"}, Color::calibratedRGB(0.557, 0.557, 0.576, 1)},
  };
  const auto it = table.find({catalogName, colorName});
  if (it == table.end()) return std::nullopt;
  return it->second;
}

}  // namespace paintdoc
