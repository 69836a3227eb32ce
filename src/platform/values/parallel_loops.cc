#include "platform/values/parallel_loops.h"

#include <atomic>

namespace paintdoc {

namespace {
std::atomic<bool> parallelPixelLoops{false};
}  // namespace

void SetParallelPixelLoops(bool on) { parallelPixelLoops.store(on, std::memory_order_relaxed); }

bool ParallelPixelLoops() { return parallelPixelLoops.load(std::memory_order_relaxed); }

}  // namespace paintdoc
