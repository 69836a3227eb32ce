// The tables of the filter layers: for each type number its filter name,
// display name and whether its input is extended beyond the selection, and
// the descriptions of its adjustable settings.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "archive/archive_value.h"
#include "platform/filters/filter_inputs.h"

namespace paintdoc {

// The graphics framework's version number this system stands for. From
// kNewerColorSettingsVersion on, "Adjust Colors" has highlight, shadow and
// sepia settings and applies their filters; below it, it has neither.
inline constexpr double kGraphicsFrameworkVersion = 1138.0;
inline constexpr int64_t kNewerColorSettingsVersion = 1138;
inline constexpr bool kHasNewerColorSettings =
    static_cast<int64_t>(kGraphicsFrameworkVersion) >= kNewerColorSettingsVersion;

// The keys of a setting description, each with a triple "t" as the files
// and callers know them.
inline constexpr std::string_view kSettingNameKey = "SetttingName";
inline constexpr std::string_view kSettingDisplayNameKey = "SetttingDisplayName";
inline constexpr std::string_view kSettingMinValueKey = "SetttingMinValue";
inline constexpr std::string_view kSettingMidValueKey = "SetttingMidValue";
inline constexpr std::string_view kSettingMaxValueKey = "SetttingMaxValue";
inline constexpr std::string_view kSettingDefaultValueKey = "SetttingDefaultValue";

// One adjustable setting of a filter type; absent bounds stay absent.
struct FilterSettingRow {
  int64_t type = 0;
  std::string_view name;
  std::string_view displayName;
  std::optional<double> minValue, midValue, maxValue;
  double defaultValue = 0;
  bool newerPlatformOnly = false;
};

// The rows of a type in order, those of the newer platform only when it is
// the newer one. Empty for types without settings.
std::span<const FilterSettingRow> FilterSettingRows(int64_t type);
// Whether a type has a row table at all (types 1 to 8).
bool FilterTypeHasSettings(int64_t type);

// The descriptions as an array of dictionaries (the keys above; numbers
// whole in value as integers, others as doubles). Absent for types 0 and 9,
// an empty array above 9 (and below 0).
ArchiveValue AvailableSettingsForFilter(int64_t type);
// Setting name → default value of every row; none for types without rows.
std::optional<FilterSettings> DefaultSettingsForFilter(int64_t type);

// The filter name of a type ("CIGaussianBlur"…), empty for types 9 and above.
std::string_view CIFilterNameWithType(int64_t type);
// The display name ("Blur"…); "Effect" for unknown types.
std::string_view NameOfFilterWithType(int64_t type);
// Whether the input is extended beyond the selection before filtering.
bool ExtendImageWhenApplyFilter(int64_t type);

}  // namespace paintdoc
