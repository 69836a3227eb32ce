// The structural check every property list read from a file passes: walking
// the containers reachable from the top object must not meet an object that
// contains itself, and must not nest deeper than the limit.
#pragma once

#include <cstdint>
#include <string>

#include "archive/archive_limits.h"

namespace paintdoc {

class PropertyList;

// False (with *error set) on a cycle or when nesting exceeds limits.maxDepth.
bool CheckPlistGraph(const PropertyList& plist, uint32_t top, const ArchiveLimits& limits,
                     std::string* error);

}  // namespace paintdoc
