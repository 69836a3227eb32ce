// A colour with the colour space it was made in, as the platform keeps it:
// calibrated, device, generic and sRGB colours, calibrated and device white,
// device CMYK, and named catalogue colours with an optional resolved fallback.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>

namespace paintdoc {

enum class ColorSpaceKind {
  CalibratedRGB,    // also the generic RGB space
  DeviceRGB,
  SRGB,
  DisplayP3,
  CalibratedWhite,  // also the generic grey space
  DeviceWhite,
  DeviceCMYK,
  Catalog,          // a named colour, resolved through the catalogue table
};

struct RGBA {
  double red = 0, green = 0, blue = 0, alpha = 1;
  friend bool operator==(const RGBA&, const RGBA&) = default;
};

class Color {
 public:
  // Opaque black in the calibrated RGB space.
  Color() = default;

  static Color calibratedRGB(double r, double g, double b, double a = 1);
  static Color deviceRGB(double r, double g, double b, double a = 1);
  static Color sRGB(double r, double g, double b, double a = 1);
  static Color displayP3(double r, double g, double b, double a = 1);
  static Color calibratedWhite(double white, double a = 1);
  static Color deviceWhite(double white, double a = 1);
  static Color deviceCMYK(double c, double m, double y, double k, double a = 1);
  // A catalogue colour ("System", "controlColor"); `fallback` is the resolved
  // colour stored with it, used when the name is not in the table.
  static Color catalog(std::string catalogName, std::string colorName,
                       std::optional<Color> fallback = std::nullopt);

  // The platform's named constructors.
  static Color clearColor();   // calibrated white 0, alpha 0
  static Color blackColor();   // calibrated white 0
  static Color whiteColor();   // calibrated white 1
  static Color grayColor();    // calibrated white 0.5
  static Color redColor();     // calibrated RGB 1 0 0
  static Color greenColor();
  static Color blueColor();

  ColorSpaceKind colorSpace() const { return space_; }
  // Components in the colour's own space, alpha last: RGB a, white a, CMYK a.
  // A catalogue colour has none (its resolved colour has them).
  const std::array<double, 5>& components() const { return components_; }
  int numberOfComponents() const;
  double alphaComponent() const;
  const std::string& catalogName() const { return catalogName_; }
  const std::string& colorName() const { return colorName_; }
  const Color* catalogFallback() const { return fallback_.get(); }

  // The colour in the calibrated RGB space. Without colour management the
  // components of every RGB space are taken as they stand, white w is (w, w, w),
  // CMYK converts naively and a catalogue colour resolves by name.
  RGBA toCalibratedRGB() const;
  Color usingCalibratedRGB() const;
  // The same colour with another alpha (a catalogue colour resolves first).
  Color withAlphaComponent(double alpha) const;

  friend bool operator==(const Color& a, const Color& b);

 private:
  static Color make(ColorSpaceKind space, std::array<double, 5> components);

  ColorSpaceKind space_ = ColorSpaceKind::CalibratedRGB;
  std::array<double, 5> components_{0, 0, 0, 1, 0};
  std::string catalogName_;
  std::string colorName_;
  std::shared_ptr<const Color> fallback_;
};

// The catalogue colours this build knows, by catalogue and colour name.
std::optional<Color> LookupCatalogColor(const std::string& catalogName,
                                        const std::string& colorName);

}  // namespace paintdoc
