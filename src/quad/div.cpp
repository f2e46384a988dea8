// g_aqdq: REAL(16) division, x / y.
//
// Long division of the significands with an exact remainder, one rounding:
// to nearest, ties to even.  For operands and results in the normal range
// the result is the correctly rounded IEEE binary128 quotient.
//
// Method.  With the significands a, b in [1, 2) and a doubled when a < b,
// the quotient a/b lies in [1, 2): its leading one is known and the 113
// fraction bits below it come in three digits of 38, 38 and 37 bits.  Each
// digit is estimated from the leading 52 bits of the partial remainder times
// a double reciprocal of the divisor's leading 52 bits -- the only
// floating-point division -- and then made exact by the remainder update
// r' = r * 2^k - q * b, computed in integers, which moves q by one until
// 0 <= r' < b.  The estimate is within 2^-11 of the true digit (the two
// 52-bit truncations cost at most 2^(k-50) = 2^-12, the three double
// roundings less than 2^-13), so the correction almost never runs and never
// runs twice.  The estimate only steers; exactness comes from the integer
// remainder, so every flavour gives the same bits.  The final remainder
// decides, by being zero or not, whether an exact half is a tie.
//
// All doubles here hold integers below 2^53 and are built from and read
// back into integers through their bit patterns (adding and subtracting
// 2^52), so no integer conversion instruction of the platform is involved.
//
// Kept on purpose, since compiled programs see every one of these bits:
//  * only the top word decides whether an operand is zero; y zero is error
//    280 (0/0 too), tested before x; x zero gives +0 whatever the signs;
//  * no special operand is recognised: exponent field 0 is read with the
//    implicit one, field 32767 as a finite number with that exponent;
//  * no subnormal results: a final exponent field of 0 or below is
//    underflow 279, 32767 or above overflow 278.  These two reports carry
//    descriptors of both operands (REAL(16)); 280 carries none.
// Fallbacks when the handler does not correct the operands:
//   278: the infinity with the sign of x / y (IEEE results) or +HUGE;
//   279: +0;
//   280, x non-zero: the infinity with the sign of x alone -- the sign of
//        the zero divisor is ignored -- or +HUGE;
//   280, x zero: the quiet NaN 0x7FFF8000 0 0 0 (IEEE results) or +0.
#include <bit>

#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"
#include "quad/primitives.h"

namespace mivor::quad {
namespace {

using detail::Status;

constexpr std::int32_t kOverflow = 278;
constexpr std::int32_t kUnderflow = 279;
constexpr std::int32_t kZeroDivisor = 280;

// 2^52 as a bit pattern and as a double: an integer n < 2^52 planted in the
// mantissa of 2^52 gives the double 2^52 + n exactly.
constexpr std::uint64_t kTwo52Bits = 0x4330000000000000u;
constexpr double kTwo52 = 0x1p52;

inline double double_of(std::uint64_t n) { return std::bit_cast<double>(kTwo52Bits | n) - kTwo52; }

// floor(v) for 0 <= v < 2^51, up to ties (v - 1/2 is rounded to nearest).
// An estimate rounded to nearest would be one too large for half of all
// digits, each time a mispredicted correction; with the floor the
// correction runs only when the estimate's error straddles an integer.
inline std::uint64_t floor_of(double v) {
    constexpr double kMagic = 0x1.8p52;  // 2^52 + 2^51: v - 1/2 + kMagic is in [2^52, 2^53)
    return std::bit_cast<std::uint64_t>((v - 0.5) + kMagic) - std::bit_cast<std::uint64_t>(kMagic);
}

struct Remainder {
    std::uint64_t hi, lo;
};

// One digit of k bits: q = floor(r * 2^k / b), with r replaced by
// r * 2^k - q * b.  Requires 0 <= r < b < 2^113, 1 <= k <= 63, and
// `scaled_recip` = 2^k / (b >> 61) rounded.  The remainder update is done
// modulo 2^128: its true value lies in (-2b, 2b) whatever the estimate, so
// the low 128 bits determine it.
inline std::uint64_t next_digit(Remainder& r, std::uint64_t bh, std::uint64_t bl, int k,
                                double scaled_recip) {
    const std::uint64_t top = (r.hi << 3) | (r.lo >> 61);  // < 2^52
    std::uint64_t q = floor_of(double_of(top) * scaled_recip);
    std::uint64_t ph;
    const std::uint64_t pl = detail::mul_64x64(q, bl, &ph);
    ph += detail::mul_low(q, bh);
    const std::uint64_t nh = (r.hi << k) | (r.lo >> (64 - k));
    const std::uint64_t nl = r.lo << k;
    std::uint64_t lo = nl - pl;
    std::uint64_t hi = nh - ph - (nl < pl);
    while ((hi >> 63) != 0) {  // estimate too large
        --q;
        lo += bl;
        hi += bh + (lo < bl);
    }
    while (hi > bh || (hi == bh && lo >= bl)) {  // too small
        ++q;
        hi -= bh + (lo < bl);
        lo -= bl;
    }
    r = Remainder{hi, lo};
    return q;
}

// x / y for non-zero tops.
inline Status divide_nonzero(const Real16& x, const Real16& y, Real16* out) {
    const std::uint32_t sign = (x.w[3] ^ y.w[3]) & kSignBit;
    std::int32_t e = static_cast<std::int32_t>(exponent_field(x)) - static_cast<std::int32_t>(exponent_field(y)) + kBias;
    std::uint64_t ah = detail::significand_high(x), al = detail::low_half(x);
    const std::uint64_t bh = detail::significand_high(y), bl = detail::low_half(y);
    if (ah < bh || (ah == bh && al < bl)) {
        ah = (ah << 1) | (al >> 63);
        al <<= 1;
        --e;
    }
    // The quotient's leading one: r = a - b < b.
    Remainder r{ah - bh - (al < bl), al - bl};
    const double recip = 1.0 / double_of((bh << 3) | (bl >> 61));
    const std::uint64_t q1 = next_digit(r, bh, bl, 38, recip * 0x1p38);
    const std::uint64_t q2 = next_digit(r, bh, bl, 38, recip * 0x1p38);
    const std::uint64_t q3 = next_digit(r, bh, bl, 37, recip * 0x1p37);
    // Quotient = 2^113 + q1 2^75 + q2 2^37 + q3; its top 113 bits are the
    // significand, bit 0 the first guard bit, the remainder the rest.
    const std::uint64_t qh = (std::uint64_t{1} << 49) | (q1 << 11) | (q2 >> 27);
    const std::uint64_t ql = (q2 << 37) | q3;
    const std::uint64_t hi = qh >> 1;
    const std::uint64_t lo = (ql >> 1) | (qh << 63);
    const std::uint64_t ext = (ql << 63) | ((r.hi | r.lo) != 0);
    return detail::round_and_pack(sign, e, hi, lo, ext, out);
}

// The overflow and underflow reports and their fallbacks; true when the
// handler corrected x and y and the operation is to start again.
[[gnu::cold]] bool report(Status status, Real16& x, Real16& y, Real16* out) {
    const std::int32_t number = status == Status::overflow ? kOverflow : kUnderflow;
    const report::Verdict v = report::full<report::Describe::both>(number, x, y);
    if (v.retry) return true;
    if (status == Status::underflow) {
        *out = Real16{{0, 0, 0, 0}};
    } else if (v.ieee_results) {
        *out = ((x.w[3] ^ y.w[3]) & kSignBit) != 0 ? _MInf_Q : _Inf_Q;
    } else {
        *out = kHuge_Q;
    }
    return false;
}

// Division by zero; same contract.
[[gnu::cold]] bool report_zero_divisor(Real16& x, Real16& y, Real16* out) {
    const report::Verdict v = report::full<report::Describe::none>(kZeroDivisor, x, y);
    if (v.retry) return true;
    if (detail::top_is_zero(x.w[3])) {
        *out = v.ieee_results ? _NaN_Q : Real16{{0, 0, 0, 0}};
    } else if (v.ieee_results) {
        *out = sign(x) ? _MInf_Q : _Inf_Q;
    } else {
        *out = kHuge_Q;
    }
    return false;
}

}  // namespace
}  // namespace mivor::quad

using namespace mivor;

extern "C" mivor_real16* g_aqdq(mivor_real16* result, const mivor_real16* a, const mivor_real16* b) {
    Real16 x = *a;
    Real16 y = *b;
    Real16 r;
    for (;;) {
        if (quad::detail::top_is_zero(y.w[3])) {
            if (quad::report_zero_divisor(x, y, &r)) continue;
        } else if (quad::detail::top_is_zero(x.w[3])) {
            r = Real16{{0, 0, 0, 0}};
        } else {
            const quad::detail::Status s = quad::divide_nonzero(x, y, &r);
            if (s != quad::detail::Status::ok && quad::report(s, x, y, &r)) continue;
        }
        break;
    }
    *result = r;
    return result;
}
