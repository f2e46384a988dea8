// SPACING(X): g_spaci, g_spacid, g_spaciq -- 2^(EXPONENT(X) - p), p = 24,
// 53, 113, built from bits.
//
// EXPONENT(X) is taken first, for a zero too, and read off the field as
// model/fields.h does (so every subnormal X has the exponent of the
// smallest normal).  Then:
//   X = 0: the smallest normal number (2^-126, 2^-1022, 2^-16382);
//   2^d normal: its field alone;
//   2^d below the normal range: the subnormal with that one bit set, down
//   to the smallest subnormal, which is also what every d below it gives.
// So SPACING(2^-120) of REAL(4) is the subnormal 2^-143, not TINY, and a
// subnormal X gives 2^-149 / 2^-1074 / 2^-16494.  Infinities and NaNs are
// not tested: they give 2^(129 - 24), 2^(1025 - 53), 2^(16385 - 113).
//
// REAL(4) and REAL(8) follow the run-time's shift ladder word by word:
// REAL(4) shifts 0x00800000 right (arithmetically) by -126 - d; REAL(8)
// shifts 0x00100000 in the high word, then 0x80000000 in the low word
// (logically).  REAL(16) sets the bit of 2^d among its 112 fraction bits.
#include "mivor/mivor.h"
#include "model/fields.h"

namespace mivor::model {
namespace {

float spacing(float x) {
    const std::int32_t d = exponent(x) - 24;
    if (x == 0.0f) return float_from_bits(0x00800000u);
    if (d > -127) return float_from_bits(static_cast<std::uint32_t>(d + 127) << 23);
    if (d > -150) return float_from_bits(static_cast<std::uint32_t>(0x00800000 >> (-126 - d)));
    return float_from_bits(1);
}

double spacing(double x) {
    const std::int32_t d = exponent(x) - 53;
    if (x == 0.0) return make_double(0x00100000u, 0);
    if (d > -1023) return make_double(static_cast<std::uint32_t>(d + 1023) << 20, 0);
    if (d > -1043) return make_double(static_cast<std::uint32_t>(0x00100000 >> (-1022 - d)), 0);
    if (d > -1075) return make_double(0, 0x80000000u >> (-1043 - d));
    return make_double(0, 1);
}

Real16 spacing(const Real16& x) {
    const std::int32_t d = exponent(x) - 113;
    if (Model<Real16>::is_zero(x)) return quad::make(0x00010000u, 0, 0, 0);
    if (d > -16383) return quad::make(static_cast<std::uint32_t>(d + 16383) << 16, 0, 0, 0);
    // 2^-16494 is fraction bit 0; below it the smallest subnormal stays.
    const int bit = d > -16495 ? d + 16494 : 0;
    Real16 r = quad::make(0, 0, 0, 0);
    r.w[bit / 32] = std::uint32_t{1} << (bit % 32);
    return r;
}

}  // namespace
}  // namespace mivor::model

using namespace mivor;

// Every result is a positive finite number: nothing for by_value to do.
extern "C" float g_spaci(const float* x) { return model::spacing(*x); }
extern "C" double g_spacid(const double* x) { return model::spacing(*x); }
extern "C" mivor_real16* g_spaciq(mivor_real16* result, const mivor_real16* x) {
    *result = model::spacing(*x);
    return result;
}
