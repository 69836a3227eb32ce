#include "raster/draw_filter_types.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <string>
#include <vector>

namespace paintdoc {
namespace {

struct FilterType {
  std::string_view filterName;
  std::string_view displayName;
  bool extend;
};

// Type 0's filter name is never used: inverting goes through ImageInvertedColors.
constexpr std::array<FilterType, 10> kFilterTypes{{
    {"CIInvertColor", "Invert Colors", false},
    {"CIGaussianBlur", "Blur", true},
    {"CISharpenLuminance", "Sharpen", false},
    {"CIColorControls", "Adjust Colors", false},
    {"CICrystallize", "Crystallize", true},
    {"CIEdges", "Edges", false},
    {"CIEdgeWork", "Edge Work", true},
    {"CIPixellate", "Pixellate", true},
    {"CIPointillize", "Pointillize", true},
    {"", "Black And White", false},
}};

constexpr std::nullopt_t kNone = std::nullopt;

// Every row of every type in order; missing bounds are deliberate.
constexpr std::array<FilterSettingRow, 16> kAllRows{{
    {1, "inputRadius", "", kNone, kNone, 40, 4},
    {2, "inputSharpness", "", kNone, kNone, 10, 0.4},
    {3, "inputEV", "Exposure", -3, 0, 3, 0},
    {3, "inputSaturation", "Saturation", 0.01, 1, 5, 1},
    {3, "inputContrast", "Contrast", 0.05, 1, 2, 1},
    {3, "inputBrightness", "Brightness", -0.8, kNone, 0.8, 0},
    {3, "inputHighlightAmount", "Highlights", 0, kNone, 1, 1, true},
    {3, "inputShadowAmount", "Shadows", -1, kNone, 1, 0, true},
    {3, "inputIntensity", "Sepia", -5, kNone, 5, 0, true},
    {3, "inputAngle", "Hue", kNone, kNone, 6.2, 0},
    {3, "inputPower", "Gamma", 0.2, 1, 3, 1},
    {4, "inputRadius", "", 1, kNone, 100, 10},
    {5, "inputIntensity", "", 0.1, kNone, 500, 50},
    {6, "inputRadius", "", 0.01, kNone, 3, 0.5},
    {7, "inputScale", "", 1, kNone, 20, 5},
    {8, "inputRadius", "", 1, kNone, 20, 2},
}};

// The rows of the platform in use: the table without the newer-platform
// rows when it is the older one.
const std::vector<FilterSettingRow>& PlatformRows() {
  static const std::vector<FilterSettingRow> rows = [] {
    std::vector<FilterSettingRow> kept;
    std::copy_if(kAllRows.begin(), kAllRows.end(), std::back_inserter(kept),
                 [](const FilterSettingRow& row) { return !row.newerPlatformOnly || kHasNewerColorSettings; });
    return kept;
  }();
  return rows;
}

const FilterType* TypeEntry(int64_t type) {
  if (type < 0 || type >= static_cast<int64_t>(kFilterTypes.size())) return nullptr;
  return &kFilterTypes[static_cast<size_t>(type)];
}

// Whole numbers as integers, others as doubles, as the descriptions hold them.
ArchiveValue Number(double value) {
  if (std::trunc(value) == value) return ArchiveValue(static_cast<int64_t>(value));
  return ArchiveValue(value);
}

}  // namespace

std::span<const FilterSettingRow> FilterSettingRows(int64_t type) {
  const std::vector<FilterSettingRow>& rows = PlatformRows();
  auto first = std::find_if(rows.begin(), rows.end(), [&](const auto& row) { return row.type == type; });
  auto last = std::find_if(first, rows.end(), [&](const auto& row) { return row.type != type; });
  return {first, last};
}

bool FilterTypeHasSettings(int64_t type) { return !FilterSettingRows(type).empty(); }

ArchiveValue AvailableSettingsForFilter(int64_t type) {
  if (type == 0 || type == 9) return {};
  ValueArray descriptions;
  for (const FilterSettingRow& row : FilterSettingRows(type)) {
    ValueDictionary entries{{std::string(kSettingNameKey), std::string(row.name)},
                            {std::string(kSettingDisplayNameKey), std::string(row.displayName)}};
    auto put = [&](std::string_view key, std::optional<double> value) {
      if (value) entries.emplace_back(std::string(key), Number(*value));
    };
    put(kSettingMinValueKey, row.minValue);
    put(kSettingMidValueKey, row.midValue);
    put(kSettingMaxValueKey, row.maxValue);
    put(kSettingDefaultValueKey, row.defaultValue);
    descriptions.push_back(ArchiveValue::dictionary(std::move(entries)));
  }
  return ArchiveValue::array(std::move(descriptions));
}

std::optional<FilterSettings> DefaultSettingsForFilter(int64_t type) {
  std::span<const FilterSettingRow> rows = FilterSettingRows(type);
  if (rows.empty()) return std::nullopt;
  FilterSettings defaults;
  for (const FilterSettingRow& row : rows) defaults[std::string(row.name)] = row.defaultValue;
  return defaults;
}

std::string_view CIFilterNameWithType(int64_t type) {
  const FilterType* entry = TypeEntry(type);
  return entry ? entry->filterName : std::string_view();
}

std::string_view NameOfFilterWithType(int64_t type) {
  const FilterType* entry = TypeEntry(type);
  return entry ? entry->displayName : "Effect";
}

bool ExtendImageWhenApplyFilter(int64_t type) {
  const FilterType* entry = TypeEntry(type);
  return entry && entry->extend;
}

}  // namespace paintdoc
