// g_aqxi, g_aqxj: REAL(16) raised to an INTEGER(4), INTEGER(8).
//
// Binary powering with the REAL(16) operators g_aqmq and g_aqdq (their
// value forms on the 64-bit target), whose reports (overflow, underflow, a
// zero divisor) reach the caller unchanged: each product and the
// reciprocal is one correctly rounded operation.  Kept
// on purpose, since compiled programs see every one of these bits:
//  * the reciprocal comes first: for n < 0 the base is replaced by
//    1 / x and |n| powered; there is no final division, no doubling and no
//    shortcut for n = 1, 2 or a base of +-1;
//  * the accumulator starts at 1.0 and is multiplied in as in the real
//    INTEGER(8) powers: multiply when the exponent's low bit is set, shift
//    right (logically), stop when it is 0, else square the base;
//  * INTEGER(4): |n| as an unsigned 32-bit value, so -2^31 is 2^31;
//  * INTEGER(8): the exponent in two 32-bit words; a negative one negated
//    as a 64-bit value (-2^63 stays 2^63, read unsigned), and a nonzero
//    high word takes exactly 32 rounds over the low word, squaring after
//    each, before the high word's own loop;
//  * zero base, by word 3 as the REAL(16) operators test zero: n = 0 gives
//    1.0, n > 0 gives +0, n < 0 is error 268/269 (full form, the exponent
//    described) with +Inf or the largest finite value as the fallback.
#include "frame/special_values.h"
#include "mivor/mivor.h"
#include "power/zero_base.h"
#include "quad/operators.h"

namespace mivor::power {
namespace {

constexpr Real16 kOne = quad::make(0x3FFF0000u, 0, 0, 0);

bool top_is_zero(const Real16& x) { return (x.w[3] & ~quad::kSignBit) == 0; }

// The operators: on the 64-bit target their value forms (quad/operators.h),
// which keep a chain of squarings in registers; the exports elsewhere.
#if defined(__x86_64__)
using Value = quad::detail::Halves;
Value value_of(const Real16& x) { return quad::detail::load(&x); }
Real16 real16_of(Value v) { return quad::detail::to_real16(v); }
Value mul(Value x, Value y) { return quad::multiply(x, y); }
Value reciprocal(Value x) { return quad::divide(value_of(kOne), x); }
#else
using Value = Real16;
Value value_of(const Real16& x) { return x; }
Real16 real16_of(Value v) { return v; }
Value mul(const Value& x, const Value& y) {
    Real16 r;
    g_aqmq(&r, &x, &y);
    return r;
}
Value reciprocal(const Value& x) {
    Real16 r;
    g_aqdq(&r, &kOne, &x);
    return r;
}
#endif

// Stops as soon as the word runs out: no squaring after its last bit.
void run_word(Value& acc, Value& x, std::uint32_t word) {
    for (;;) {
        if (word & 1) acc = mul(acc, x);
        word >>= 1;
        if (word == 0) return;
        x = mul(x, x);
    }
}

Real16 power_by_int4(Real16 base, std::int32_t n) {
    Value x = value_of(base), acc = value_of(kOne);
    std::uint32_t m = static_cast<std::uint32_t>(n);
    if (n < 0) {
        m = 0u - m;
        x = reciprocal(x);
    }
    run_word(acc, x, m);
    return real16_of(acc);
}

Real16 power_by_int8(Real16 base, std::int64_t n) {
    std::uint32_t low = static_cast<std::uint32_t>(static_cast<std::uint64_t>(n));
    std::uint32_t high = static_cast<std::uint32_t>(static_cast<std::uint64_t>(n) >> 32);
    Value x = value_of(base), acc = value_of(kOne);
    if (static_cast<std::int32_t>(high) < 0) {
        high = low != 0 ? ~high : 0u - high;
        low = 0u - low;
        x = reciprocal(x);
    }
    if (high == 0) {
        run_word(acc, x, low);
        return real16_of(acc);
    }
    for (int i = 0; i < 32; ++i) {
        if (low & 1) acc = mul(acc, x);
        low >>= 1;
        x = mul(x, x);
    }
    run_word(acc, x, high);
    return real16_of(acc);
}

template <class N, Real16 (*power)(Real16, N)>
Real16 raise(Real16 x, N n, Error error) {
    if (top_is_zero(x)) [[unlikely]]
        return zero_base(x, n, ZeroBase<Real16>{error, kOne, quad::make(0, 0, 0, 0), _Inf_Q, kHuge_Q}, top_is_zero,
                         power);
    return power(x, n);
}

}  // namespace
}  // namespace mivor::power

using namespace mivor;

extern "C" mivor_real16* g_aqxi(mivor_real16* result, const mivor_real16* base, const std::int32_t* exponent) {
    *result = power::raise<std::int32_t, power::power_by_int4>(*base, *exponent, Error::zero_to_negative_r16_i4);
    return result;
}

extern "C" mivor_real16* g_aqxj(mivor_real16* result, const mivor_real16* base, const std::int64_t* exponent) {
    *result = power::raise<std::int64_t, power::power_by_int8>(*base, *exponent, Error::zero_to_negative_r16_i8);
    return result;
}
