// EXPONENT(X): g_expon, g_expond, g_exponq (INTEGER(4)) and g_jexpon,
// g_jexpnd, g_jexpnq (INTEGER(8)).
//
// Read straight off the exponent field (model/fields.h), without
// normalising: a zero gives 0, a subnormal -126 / -1022 / -16382, an
// infinity or NaN 129 / 1025 / 16385.
//
// The INTEGER(8) forms put the 32-bit value in the low word and 0 in the
// high word, also for a negative exponent: EXPONENT(0.25) comes back as
// 4294967295, not -1.  Callers of the run-time have always received that.
#include "mivor/mivor.h"
#include "model/fields.h"

using namespace mivor;

namespace {

template <class T>
std::int64_t wide_exponent(const T& x) {
    return static_cast<std::int64_t>(static_cast<std::uint32_t>(model::exponent(x)));
}

}  // namespace

extern "C" std::int32_t g_expon(const float* x) { return model::exponent(*x); }
extern "C" std::int32_t g_expond(const double* x) { return model::exponent(*x); }
extern "C" std::int32_t g_exponq(const mivor_real16* x) { return model::exponent(*x); }

extern "C" std::int64_t g_jexpon(const float* x) { return wide_exponent(*x); }
extern "C" std::int64_t g_jexpnd(const double* x) { return wide_exponent(*x); }
extern "C" std::int64_t g_jexpnq(const mivor_real16* x) { return wide_exponent(*x); }
