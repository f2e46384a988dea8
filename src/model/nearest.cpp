// NEAREST(X, S): g_neare, g_neared, g_neareq and the `2` forms whose S is of
// any real kind, named by a type code (9, 10, 11).
//
// Pure integer arithmetic on X's bits, so there is deliberately no special
// treatment of infinities or NaNs: NEAREST(+Inf, -1) is HUGE, NEAREST(+Inf,
// +1) is the pattern after +Inf (a NaN), HUGE stepped up is +Inf.  A REAL(4)
// or REAL(8) result that is a signalling NaN comes back quieted, as the x87
// return register delivers it to a 32-bit caller (frame/by_value.h).  A zero X
// steps to the smallest subnormal with S's sign; subnormals step through the
// subnormals down to a zero of X's sign.
//
// A zero S is error 1393, short form, and X comes back unchanged (for
// REAL(16) too, where the original leaves the result undefined).
#include <cstring>

#include "frame/by_value.h"
#include "frame/report.h"
#include "frame/values.h"
#include "mivor/mivor.h"

namespace mivor::model {
namespace {

struct Direction {
    bool zero;
    bool negative;
};

Direction direction_of(float s) { return {s == 0.0f, (bits_of(s) >> 31) != 0}; }
Direction direction_of(double s) { return {s == 0.0, (bits_of(s) >> 63) != 0}; }
// REAL(16) S is zero by its words, not by a comparison.
Direction direction_of(const Real16& s) {
    const bool zero = (s.w[3] & ~quad::kSignBit) == 0 && s.w[2] == 0 && s.w[1] == 0 && s.w[0] == 0;
    return {zero, quad::sign(s)};
}

// S of the kind named by its type code.  An unknown code reads S as a
// REAL(4), the narrowest kind, so that nothing beyond S is touched.
Direction direction_of(const void* s, std::int32_t code) {
    switch (code) {
        case MIVOR_TYPE_REAL8: {
            double v;
            std::memcpy(&v, s, sizeof v);
            return direction_of(v);
        }
        case MIVOR_TYPE_REAL16: {
            Real16 v;
            std::memcpy(&v, s, sizeof v);
            return direction_of(v);
        }
        default: {
            float v;
            std::memcpy(&v, s, sizeof v);
            return direction_of(v);
        }
    }
}

// One step of a REAL(4)/REAL(8) pattern; `down` is the sign of S.
template <class Bits>
Bits step_bits(Bits x, bool down) {
    constexpr Bits sign = Bits{1} << (sizeof(Bits) * 8 - 1);
    if ((x & ~sign) == 0) return down ? (sign | 1) : Bits{1};
    const bool negative = (x & sign) != 0;
    return negative != down ? x - 1 : x + 1;
}

float step(float x, bool down) { return float_from_bits(step_bits(bits_of(x), down)); }
double step(double x, bool down) { return double_from_bits(step_bits(bits_of(x), down)); }

// The same over four words, with carry or borrow from word 0 upwards.
Real16 step(const Real16& x, bool down) {
    if (((x.w[3] & ~quad::kSignBit) | x.w[2] | x.w[1] | x.w[0]) == 0)
        return quad::make(down ? quad::kSignBit : 0u, 0, 0, 1);
    Real16 r = x;
    if (quad::sign(x) != down) {
        for (int i = 0; i < 4 && r.w[i]-- == 0; ++i) {
        }
    } else {
        for (int i = 0; i < 4 && ++r.w[i] == 0; ++i) {
        }
    }
    return r;
}

// A zero direction reports 1393 in the short form and gives X unchanged.
template <class T>
T nearest(T x, Direction d) {
    return report::settle<report::Form::short_form>(
        [d](T x) -> report::Step<T, T> {
            if (d.zero) return report::fail(Error::nearest_zero_direction, x);
            return step(x, d.negative);
        },
        x);
}

}  // namespace
}  // namespace mivor::model

using namespace mivor;

extern "C" float g_neare(const float* x, const float* s) {
    return by_value(model::nearest(*x, model::direction_of(*s)));
}

extern "C" double g_neared(const double* x, const double* s) {
    return by_value(model::nearest(*x, model::direction_of(*s)));
}

extern "C" mivor_real16* g_neareq(mivor_real16* result, const mivor_real16* x, const mivor_real16* s) {
    *result = model::nearest(*x, model::direction_of(*s));  // both read before the result is written
    return result;
}

extern "C" float g_neare2(const float* x, const void* s, const std::int32_t* code) {
    return by_value(model::nearest(*x, model::direction_of(s, *code)));
}

extern "C" double g_neared2(const double* x, const void* s, const std::int32_t* code) {
    return by_value(model::nearest(*x, model::direction_of(s, *code)));
}

extern "C" mivor_real16* g_neareq2(mivor_real16* result, const mivor_real16* x, const void* s,
                                   const std::int32_t* code) {
    *result = model::nearest(*x, model::direction_of(s, *code));
    return result;
}
