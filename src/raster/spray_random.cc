#include "raster/spray_random.h"

#include <cstddef>

namespace paintdoc {

namespace {
// The generator discards this many numbers after seeding, so that the first
// ones do not follow the seed too closely.
constexpr int kWarmUpRounds = 310;
}  // namespace

SprayRandom::SprayRandom(uint32_t seed) {
  int32_t word = seed == 0 ? 1 : static_cast<int32_t>(seed);
  state_[0] = word;
  // The Park-Miller minimal standard generator fills the table, computed
  // without overflow by Schrage's method.
  for (int i = 1; i < kDegree; ++i) {
    const int32_t hi = word / 127773;
    const int32_t lo = word % 127773;
    word = 16807 * lo - 2836 * hi;
    if (word < 0) word += 2147483647;
    state_[static_cast<size_t>(i)] = word;
  }
  for (int i = 0; i < kWarmUpRounds; ++i) next();
}

int32_t SprayRandom::next() {
  auto& front = state_[static_cast<size_t>(front_)];
  const auto sum = static_cast<uint32_t>(front) + static_cast<uint32_t>(state_[static_cast<size_t>(rear_)]);
  front = static_cast<int32_t>(sum);
  front_ = (front_ + 1) % kDegree;
  rear_ = (rear_ + 1) % kDegree;
  return static_cast<int32_t>(sum >> 1);
}

SprayRandom& SharedSprayRandom() {
  thread_local SprayRandom generator;
  return generator;
}

}  // namespace paintdoc
