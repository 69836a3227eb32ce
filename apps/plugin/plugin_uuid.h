// UUIDs of the plug-in model: made from their text form or their bytes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "plugin/plugin_interface.h"

namespace paintdoc {

// "5E2D9680-5022-40FA-B806-43349622E5B9" (either letter case) as bytes;
// nothing for any other form.
std::optional<PaintdocUUIDBytes> UUIDFromString(std::string_view text);
// The upper-case text form.
std::string StringFromUUID(const PaintdocUUIDBytes& uuid);
bool UUIDEqual(const PaintdocUUIDBytes& a, const PaintdocUUIDBytes& b);

}  // namespace paintdoc
