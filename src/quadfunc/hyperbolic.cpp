// The hyperbolic kernels: sinh, cosh, tanh in the working format.
//
// Method.  For |x| < 1/2 the series, Remez fits of degree 11 in u = x^2 <
// 1/4 (hyperbolic_data.h): sinh x = x (1 + u S(u)) (fit 2^-130.5 relative),
// cosh x = 1 + u C(u) (2^-133.9 absolute), with Horner in S.127 and u in
// S.129 (each step's error shrinks by u <= 1/4 in the next: 0.67 units of
// 2^-127 in all), u S rounded in Q1.127 (2^-128): sinh within 2^-126.9
// relative after its product with x.  cosh for |x| < 1/2 is 1 + x^2 C(u)
// with the tail in the working format (x^2, C and their product rounded:
// 2^-126.4 relative to the tail, at most 0.13) and the sum formed exactly
// where it is rounded (accumulate.h): 1 + x^2/2 is a tie for x = 2^-56,
// decided only by x^4/24.
//
// From 1/2 on, E = e^|x| (exp_s176, 2^-126.9) and 1/E (recip, 2^-126.4 on
// top of E's error): cosh = (E + 1/E)/2 (terms of one sign: 2^-125.7),
// sinh = (E - 1/E)/2 (the difference at least (e^(1/2) - e^(-1/2))/e^(1/2)
// = 0.63 of E: 2^-125.1); from |x| = 64 on 1/E is below 2^-184 of E and is
// left out.  tanh x = (F - 1)/(F + 1) with F = e^(2|x|) exact in its
// argument: F >= e, so F - 1 >= 0.63 F: 2^-124.6 with the quotient.
// tanh for |x| < 1/2 is sinh/cosh from the series: 2^-125.1.
//
// The working format's range is wide enough for E itself up to |x| = 2^15,
// so overflow is seen when the result is rounded.
#include "quadfunc/hyperbolic.h"

#include "quadfunc/accumulate.h"
#include "quadfunc/hyperbolic_data.h"
#include "quadfunc/kernels.h"

namespace mivor::quadfunc {

using namespace hyperbolic_data;

namespace {

// 1/2 as a working value, and the comparison |x| < 1/2.
constexpr Wide kHalf{{kTop64, 0}, 0, 0};
bool below_half(const Wide& a) { return compare_magnitude(a, kHalf) < 0; }

// u = x^2 in S.129 for |x| < 1/2 (u < 1/4: fits), and u P(u) in S.127
// rounded, for a polynomial P of the table (12 coefficients): the product
// u p is u p 2^128 from mul_hi, rounded once more to S.127.
U128 u_times(const U128* poly, U128 U) {
    const U128 p = horner_s127(poly, 12, U, 1);
    return sar_round(mul_hi_signed(U, p), 1);
}
U128 square_s129(const Wide& x) {
    const U128 X = to_fixed(x, 129);  // |x| 2^129 < 2^128
    return shr_round(mul_hi(X, X), 1);  // x^2 2^130, to S.129
}
// 1 + t for t >= 0 in S.127, as a working value.
Wide one_plus(U128 t) { return from_fixed(add(U128{kTop64, 0}, t), 127); }

}  // namespace

Wide sinh_wide(const Wide& x) {
    if (below_half(x)) {
        // x (1 + u S(u)).
        return mul(x, one_plus(u_times(kSinhPoly, square_s129(x))));
    }
    const Wide E = exp_s176(to_s176(abs(x)));
    Wide s = x.e > 7 ? E : sub(E, recip(E));  // |x| >= 64: e^-|x| is nothing
    s = scaled(s, -1);
    s.neg = x.neg;
    return s;
}

CoshParts cosh_parts(const Wide& x) {
    if (below_half(x)) {
        // The tail u C(u) with x^2 and C(u) as working values, so that it
        // keeps its relative precision however small it is (the tie of 1 +
        // x^2/2 at x = 2^-56 needs it to 2^-228).
        const U128 c = horner_s127(kCoshPoly, 12, square_s129(x), 1);  // C(u), about 1/2
        return CoshParts{kWideOne, mul(mul(x, x), from_fixed(c, 127))};
    }
    const Wide E = exp_s176(to_s176(abs(x)));
    const Wide c = x.e > 7 ? E : add(E, recip(E));
    return CoshParts{scaled(c, -1), kWideZero};
}

Wide cosh_wide(const Wide& x) {
    const CoshParts p = cosh_parts(x);
    return add(p.main, p.tail);
}

Rounded cosh_rounded(const Wide& x) {
    const CoshParts p = cosh_parts(x);
    if (is_zero(p.tail)) return round_to_real16(p.main);
    Acc256 acc(-253);  // 1 <= cosh < 2 here
    acc.add(p.main);
    acc.add(p.tail);
    return acc.round();
}

Wide tanh_wide(const Wide& x) {
    if (below_half(x)) {
        const U128 U = square_s129(x);
        return div(mul(x, one_plus(u_times(kSinhPoly, U))), one_plus(u_times(kCoshPoly, U)));
    }
    // |x| >= 64: 1 - tanh |x| < 2^-183, far below half a unit of 1.
    if (x.e > 6) return with_sign(kWideOne, x.neg);
    const Wide F = exp_s176(to_s176(scaled(abs(x), 1)));
    Wide t = div(sub(F, kWideOne), add(F, kWideOne));
    t.neg = x.neg;
    return t;
}

}  // namespace mivor::quadfunc
