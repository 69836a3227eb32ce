// Include first in a source file whose results depend on single-precision
// rounding happening exactly where the code says (curve samples, path-length
// sums, ellipse points). It keeps compilers from changing that rounding:
// - g++ 12's basic-block vectoriser drops double -> float -> double round
//   trips when it pairs the x and y computations of a point, so the
//   vectorisers are turned off for the rest of the file;
// - clang may fuse a multiply and an add into one instruction with a single
//   rounding, so contraction is turned off.
#pragma once

#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC optimize("no-tree-vectorize")
#endif

#ifdef __clang__
#pragma clang fp contract(off)
#endif
