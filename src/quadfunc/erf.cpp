// The error function kernels: erf and erfc in the working format.
//
// Method.  |x| < 1/2: erf x = x E(t), t = 8x^2 - 1 in [-1, 1], E of degree
// 19.  From 1/2 on, erfc x = e^(-x^2) erfcx(x): erfcx(x) by pieces, in x
// up to 2.5 (four pieces of width 1/2, degree 30) and in s = 1/x beyond
// (ten pieces of ratio 3/2 up to x = 144, degree 32 down to 20, as G(s) =
// erfcx(1/s)/s, smooth in s), each in t = (v - c)/h in [-1, 1].  The
// polynomials are Chebyshev interpolants with errors below 2^-128.4
// relative (erf_data.h), evaluated by Horner in the working format: with t
// up to 1 in size the roundings add up, at most 33 of 2^-127.5 each,
// 2^-122.5 in all (far less where the coefficients fall off fast).
// e^(-x^2) from the exact square (square_s176: 2^-177 absolute, so
// 2^-126.9 relative in the result).  erfc within 2^-122 relative; erf x =
// 1 - erfc x from 1/2 on (erfc x < 0.48: 2^-121.8), 2 - erfc|x| and 1 -
// erf x elsewhere.
#include "quadfunc/erf.h"

#include "quadfunc/erf_data.h"
#include "quadfunc/estimate.h"
#include "quadfunc/gamma.h"
#include "quadfunc/kernels.h"

namespace mivor::quadfunc {

using namespace erf_data;

namespace {

constexpr Wide kHalf{{kTop64, 0}, 0, 0};
constexpr Wide kTwoAndHalf{{0xA000000000000000u, 0}, 2, 0};

// erfcx or G on piece k at t.
Wide piece_value(int k, const Wide& v) {
    const ErfPiece& p = kErfPieces[k];
    const Wide t = mul(sub(v, p.center()), p.inv_half());
    return horner_wide(kErfCoefficients + p.first, p.degree + 1, t);
}

}  // namespace

Wide erfc_positive(const Wide& x) {
    // x >= 1/2.
    const Wide e = exp_s176(neg(square_s176(x)));
    if (compare_magnitude(x, kTwoAndHalf) < 0) {
        // Pieces of width 1/2 from 1/2.
        const int k = static_cast<int>(nearest_int(u53_to_double(x.m.hi >> 11) * pow2(x.e - 53) * 2.0 - 1.5));
        const int kk = k < 0 ? 0 : (k > 3 ? 3 : k);
        return mul(e, piece_value(kk, x));
    }
    const Wide s = recip(x);
    int k = 4;
    while (k < kErfPieceCount - 1 && compare_magnitude(s, kErfPieces[k].low()) < 0) ++k;
    return mul(e, mul(piece_value(k, s), s));
}

Wide erf_small(const Wide& x) {
    // t = 8 x^2 - 1 in [-1, 1].
    const Wide t = sub(scaled(mul(x, x), 3), kWideOne);
    return mul(x, horner_wide(kErfSmall, 20, t));
}

namespace {
constexpr Wide kTwo{{kTop64, 0}, 2, 0};
bool below_half(const Wide& a) { return compare_magnitude(a, kHalf) < 0; }
}  // namespace

Wide erf_wide(const Wide& x) {
    if (below_half(x)) return is_zero(x) ? x : erf_small(x);
    if (x.e > 4) return with_sign(kWideOne, x.neg);  // |x| >= 16: erfc below 2^-370
    return with_sign(sub(kWideOne, erfc_positive(abs(x))), x.neg);
}

Wide erfc_wide(const Wide& x) {
    if (below_half(x)) return sub(kWideOne, is_zero(x) ? x : erf_small(x));
    if (!x.neg) return x.e > 7 ? kWideZero : erfc_positive(x);  // x >= 128: far below 2^-16382
    if (x.e > 4) return kTwo;                                    // x <= -16
    return sub(kTwo, erfc_positive(abs(x)));
}

}  // namespace mivor::quadfunc
