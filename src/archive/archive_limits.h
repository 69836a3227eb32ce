// Bounds that reading untrusted archives keeps to.
#pragma once

#include <cstddef>

namespace paintdoc {

struct ArchiveLimits {
  // Property-list objects in one file (each costs a table entry when read).
  size_t maxObjects = 4'000'000;
  // Nesting of containers in the property list, and of archived objects
  // within each other while decoding.
  size_t maxDepth = 512;
};

}  // namespace paintdoc
