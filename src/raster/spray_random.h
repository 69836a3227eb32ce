// The random source of the airbrush: the additive feedback generator of the
// C library's random() (degree 31, separation 3), unseeded, that is seeded
// with 1. Its own copy rather than the process's generator, so that no other
// caller of random() changes the dots a spray gets, and the same sequence of
// sprays always yields the same dots.
#pragma once

#include <array>
#include <cstdint>

namespace paintdoc {

class SprayRandom {
 public:
  explicit SprayRandom(uint32_t seed = 1);
  // The next number, 0 … 2^31 − 1.
  int32_t next();

 private:
  static constexpr int kDegree = 31;
  static constexpr int kSeparation = 3;
  std::array<int32_t, kDegree> state_{};
  int front_ = kSeparation;
  int rear_ = 0;
};

// The generator the airbrush draws its dots from (one a thread).
SprayRandom& SharedSprayRandom();

}  // namespace paintdoc
