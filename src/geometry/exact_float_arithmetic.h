// Include first in a source file whose results depend on single-precision
// rounding happening exactly where the code says (curve samples, path-length
// sums, ellipse points). clang may fuse a multiply and an add into one
// instruction with a single rounding, so contraction is turned off. (g++ 12's
// vectoriser bug that drops float round trips is handled for the whole build
// in the top-level CMakeLists.txt.)
#pragma once

#ifdef __clang__
#pragma clang fp contract(off)
#endif
