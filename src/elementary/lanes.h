// Constants of the two-lane (pk_) kernels.
//
// Each constant is stored twice in a row, 16-byte aligned, so that the
// packed instructions take it straight from memory as an operand.  Left to
// itself the compiler shares the scalar kernel's 8-byte constants and
// broadcasts each on every call (a load and a shuffle per constant, a third
// of a packed kernel's instructions), even when the pairs are in memory:
// `opaque` hides where a table of pairs lives, so that its values cannot be
// propagated and are read from it instead.
#pragma once

#include <emmintrin.h>

namespace mivor::elementary {

struct alignas(16) Lanes {
    double v[2];
};

constexpr Lanes twice(double d) { return Lanes{{d, d}}; }

inline __m128d lanes(const Lanes& c) { return _mm_load_pd(c.v); }

template <class Table>
inline const Table& opaque(const Table& table) {
    const Table* p = &table;
    __asm__("" : "+r"(p));
    return *p;
}

}  // namespace mivor::elementary
