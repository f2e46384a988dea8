// The reference registry of quad_ulp: one row per g_q export.
//
// `random` ranges make up the export's domain (the arguments it answers
// without a report); the tool spreads its --count arguments over them.
// `hard` ranges are where errors concentrate: near 1 for the logarithms,
// the ends of the range for the exponentials, arguments closest to
// multiples of pi/2 for the circular functions, and so on.  To add a
// function: one Reference line, reusing or adding a range set.
#include "quad_refs.h"

namespace mivor::quadulp {
namespace {

// ---- exponentials ---------------------------------------------------------

constexpr Range kExpRandom[] = {
    {"uniform in [-11355, 11356]", Spread::Uniform, -11355.0, 11356.0},
    {"log-uniform magnitudes 2^-120 .. 2^13", Spread::LogUniform, -120, 13, true},
};
constexpr Range kExpHard[] = {
    {"near overflow [11350, 11356.5]", Spread::Uniform, 11350.0, 11356.5},
    {"near underflow [-11355.1, -11340]", Spread::Uniform, -11355.1, -11340.0},
    {"tiny 2^-116 .. 2^-100", Spread::LogUniform, -116, -100, true},
    {"near k ln2/256", Spread::NearMultiple, 0, 4194000, true, mpfr_const_log2, 1.0 / 256},
    {"short j 2^e, e in [-70, -40] (ties of 1 + x + x^2/2)", Spread::Short, -70, -40, true},
};
constexpr Range kExp2Random[] = {
    {"uniform in [-16382, 16383.9]", Spread::Uniform, -16382.0, 16383.9},
    {"log-uniform magnitudes 2^-120 .. 2^14", Spread::LogUniform, -120, 13, true},
};
constexpr Range kExp2Hard[] = {
    {"near overflow [16380, 16384)", Spread::Uniform, 16380.0, 16383.999},
    {"near underflow [-16382, -16370]", Spread::Uniform, -16382.0, -16370.0},
    {"tiny 2^-116 .. 2^-100", Spread::LogUniform, -116, -100, true},
    {"near k/256", Spread::NearMultiple, 0, 4194000, true, nullptr, 1.0 / 256},
};
constexpr Range kExp10Random[] = {
    {"uniform in [-4931.4, 4932]", Spread::Uniform, -4931.4, 4932.0},
    {"log-uniform magnitudes 2^-120 .. 2^12", Spread::LogUniform, -120, 11, true},
};
constexpr Range kExp10Hard[] = {
    {"near overflow [4930, 4932.07]", Spread::Uniform, 4930.0, 4932.07},
    {"near underflow [-4931.4, -4925]", Spread::Uniform, -4931.4, -4925.0},
    {"tiny 2^-116 .. 2^-100", Spread::LogUniform, -116, -100, true},
    {"near integers", Spread::NearMultiple, 0, 4900, true, nullptr, 1.0},
};

// ---- logarithms -----------------------------------------------------------

constexpr Range kLogRandom[] = {
    {"log-uniform over all positive numbers", Spread::LogUniform, -16494, 16383},
    {"uniform in (0, 4]", Spread::Uniform, 0.0, 4.0},
};
constexpr Range kLogHard[] = {
    {"near 1: [0.99, 1.01]", Spread::Uniform, 0.99, 1.01},
    {"very near 1: 1 +- 2^-100 .. 2^-8", Spread::NearMultiple, 1, 1, false, nullptr, 1.0},
    {"subnormals", Spread::LogUniform, -16494, -16382},
    {"uniform in [0.5, 2]", Spread::Uniform, 0.5, 2.0},
};

// ---- circular functions ----------------------------------------------------

constexpr Range kTrigRandom[] = {
    {"uniform in [-10, 10]", Spread::Uniform, -10.0, 10.0},
    {"log-uniform magnitudes 2^-120 .. 2^16383", Spread::LogUniform, -120, 16383, true},
};
constexpr Range kTrigHard[] = {
    {"near k pi/2, |k| <= 8", Spread::NearMultiple, 1, 8, true, mpfr_const_pi, 0.5},
    {"near k pi/2, k to 2^60", Spread::NearMultiple, 9, 0x1p60, true, mpfr_const_pi, 0.5},
    {"closest to k pi/2, binades 2^1 .. 2^16383", Spread::HardReduction, 1, 16383, true, mpfr_const_pi, 0.5},
    {"closest to k pi/2, binades 2^1 .. 2^200", Spread::HardReduction, 1, 200, true, mpfr_const_pi, 0.5},
    {"tiny 2^-120 .. 2^-40", Spread::LogUniform, -120, -40, true},
};

// ---- inverse circular functions --------------------------------------------

constexpr Range kAtanRandom[] = {
    {"uniform in [-2, 2]", Spread::Uniform, -2.0, 2.0},
    {"log-uniform magnitudes 2^-120 .. 2^16383", Spread::LogUniform, -120, 16383, true},
};
constexpr Range kAtanHard[] = {
    {"tiny 2^-120 .. 2^-40", Spread::LogUniform, -120, -40, true},
    {"near 1", Spread::BelowOne, 1, 112, true},
    {"near the table points j/64", Spread::NearMultiple, 1, 64, true, nullptr, 1.0 / 64},
    {"between the table points (j + 1/2)/64", Spread::NearMultiple, 1, 128, true, nullptr, 1.0 / 128},
};
// atan2: y from the ranges, x uniform in [0.5, 4.5] of either sign.
constexpr Range kAtan2Random[] = {
    {"y uniform in [-10, 10]", Spread::Uniform, -10.0, 10.0, false, nullptr, 1.0, 0.5, 4.5},
    {"y log-uniform 2^-200 .. 2^200", Spread::LogUniform, -200, 200, true, nullptr, 1.0, 0.5, 4.5},
};
constexpr Range kAtan2Hard[] = {
    {"|y| near |x|", Spread::Uniform, 0.45, 4.6, true, nullptr, 1.0, 0.5, 4.5},
    {"y tiny", Spread::LogUniform, -16000, -100, true, nullptr, 1.0, 0.5, 4.5},
};
constexpr Range kAsinRandom[] = {
    {"uniform in [-1, 1]", Spread::Uniform, -1.0, 1.0},
    {"log-uniform magnitudes 2^-120 .. 1", Spread::LogUniform, -120, 0, true},
};
constexpr Range kAsinHard[] = {
    {"near +-1: 1 - 2^-1 .. 1 - 2^-113", Spread::BelowOne, 1, 112, true},
    {"tiny 2^-120 .. 2^-40", Spread::LogUniform, -120, -40, true},
    {"near 1/2 and 1/sqrt2", Spread::Uniform, 0.49, 0.72, true},
};

// ---- hyperbolic functions ---------------------------------------------------

constexpr Range kHypRandom[] = {
    {"uniform in [-11355, 11355]", Spread::Uniform, -11355.0, 11355.0},
    {"log-uniform magnitudes 2^-120 .. 2^13", Spread::LogUniform, -120, 13, true},
};
constexpr Range kHypHard[] = {
    {"near 1/2, where the series ends", Spread::Uniform, 0.45, 0.55, true},
    {"[-3, 3]", Spread::Uniform, -3.0, 3.0},
    {"tiny 2^-120 .. 2^-40", Spread::LogUniform, -120, -40, true},
    {"near overflow [11350, 11356.5]", Spread::Uniform, 11350.0, 11356.5, true},
    {"short j 2^e, e in [-70, -40] (ties of 1 + x^2/2)", Spread::Short, -70, -40, true},
};
constexpr Range kTanhRandom[] = {
    {"uniform in [-45, 45]", Spread::Uniform, -45.0, 45.0},
    {"log-uniform magnitudes 2^-120 .. 2^7", Spread::LogUniform, -120, 7, true},
};
constexpr Range kTanhHard[] = {
    {"near 1/2, where the series ends", Spread::Uniform, 0.45, 0.55, true},
    {"tiny 2^-120 .. 2^-40", Spread::LogUniform, -120, -40, true},
    {"where tanh reaches 1: [38, 41]", Spread::Uniform, 38.0, 41.0, true},
};

// ---- roots ------------------------------------------------------------------

constexpr Range kSqrtRandom[] = {
    {"log-uniform over all positive numbers", Spread::LogUniform, -16494, 16383},
    {"uniform in [0, 4]", Spread::Uniform, 0.0, 4.0},
};
constexpr Range kSqrtHard[] = {
    {"near 1", Spread::BelowOne, 1, 112},
    {"subnormals", Spread::LogUniform, -16494, -16382},
    {"short j 2^e (squares and near squares)", Spread::Short, -200, 200},
};
constexpr Range kCbrtRandom[] = {
    {"log-uniform over all numbers", Spread::LogUniform, -16494, 16383, true},
    {"uniform in [-8, 8]", Spread::Uniform, -8.0, 8.0},
};
constexpr Range kCbrtHard[] = {
    {"near 1", Spread::BelowOne, 1, 112, true},
    {"subnormals", Spread::LogUniform, -16494, -16382, true},
    {"short j 2^e (cubes and near cubes)", Spread::Short, -200, 200, true},
};

// ---- gamma and log-gamma ------------------------------------------------------

constexpr Range kGammaRandom[] = {
    {"uniform in (0, 40]", Spread::Uniform, 0.0, 40.0},
    {"uniform in [-40, 0)", Spread::Uniform, -40.0, 0.0},
    {"log-uniform magnitudes 2^-120 .. 2^10", Spread::LogUniform, -120, 10},
};
constexpr Range kGammaHard[] = {
    {"near 1 and 2", Spread::Uniform, 0.98, 2.02},
    {"next to negative integers to -170", Spread::NearMultiple, 1, 170, false, nullptr, -1.0, 0, 0, false},
    {"near overflow [1700, 1755.4]", Spread::Uniform, 1700.0, 1755.4},
    {"tiny 2^-120 .. 2^-40", Spread::LogUniform, -120, -40, true},
    {"short j 2^e", Spread::Short, -10, 2},
};
constexpr Range kLgammaRandom[] = {
    {"uniform in [-40, 40]", Spread::Uniform, -40.0, 40.0},
    {"log-uniform magnitudes 2^-120 .. 2^16370", Spread::LogUniform, -120, 16370},
};
constexpr Range kLgammaHard[] = {
    {"near 1: [0.99, 1.01]", Spread::Uniform, 0.99, 1.01},
    {"near 2: [1.99, 2.01]", Spread::Uniform, 1.99, 2.01},
    {"very near 1 and 2", Spread::NearMultiple, 1, 2, false, nullptr, 1.0},
    {"around the minimum 1.46", Spread::Uniform, 1.2, 1.7},
    {"next to negative integers to -170", Spread::NearMultiple, 1, 170, false, nullptr, -1.0, 0, 0, false},
    {"tiny 2^-120 .. 2^-40", Spread::LogUniform, -120, -40, true},
    {"within 2^-10 of the zero -2.4570247", Spread::Uniform, -2.4580, -2.4560, false, nullptr, 1.0, 0, 0, true, true},
    {"within 2^-10 of the zero -2.7476826", Spread::Uniform, -2.7487, -2.7467, false, nullptr, 1.0, 0, 0, true, true},
    {"within 2^-10 of the zero -3.1435809", Spread::Uniform, -3.1446, -3.1426, false, nullptr, 1.0, 0, 0, true, true},
    {"within 2^-10 of the zero -3.9552943", Spread::Uniform, -3.9563, -3.9543, false, nullptr, 1.0, 0, 0, true, true},
};

// ---- error functions ------------------------------------------------------------

constexpr Range kErfRandom[] = {
    {"uniform in [-6, 6]", Spread::Uniform, -6.0, 6.0},
    {"log-uniform magnitudes 2^-120 .. 2^3", Spread::LogUniform, -120, 3, true},
};
constexpr Range kErfHard[] = {
    {"near the piece ends 1/2 .. 5/2", Spread::NearMultiple, 1, 5, true, nullptr, 0.5},
    {"tiny 2^-16382 .. 2^-40", Spread::LogUniform, -16382, -40, true},
    {"where erf reaches 1: [8, 9.5]", Spread::Uniform, 8.0, 9.5, true},
};
constexpr Range kErfcRandom[] = {
    {"uniform in [-10, 107]", Spread::Uniform, -10.0, 107.0},
    {"log-uniform magnitudes 2^-120 .. 2^6.7", Spread::LogUniform, -120, 6.7, true},
};
constexpr Range kErfcHard[] = {
    {"near the piece ends 1/2 .. 5/2", Spread::NearMultiple, 1, 5, true, nullptr, 0.5},
    {"near underflow [100, 106.56]", Spread::Uniform, 100.0, 106.56},
    {"[2.4, 12]", Spread::Uniform, 2.4, 12.0},
    {"tiny 2^-120 .. 2^-40", Spread::LogUniform, -120, -40, true},
};

// ---- degree and quadrant forms ---------------------------------------------

constexpr Range kDegRandom[] = {
    {"uniform in [-720, 720]", Spread::Uniform, -720.0, 720.0},
    {"log-uniform magnitudes 2^-120 .. 2^16383", Spread::LogUniform, -120, 16383, true},
};
constexpr Range kDegHard[] = {
    {"multiples of 90 and next to them, k <= 2^40", Spread::NearMultiple, 1, 0x1p40, true, nullptr, 90.0},
    {"next to multiples of 30", Spread::NearMultiple, 1, 1000, true, nullptr, 30.0},
    {"tiny 2^-16370 .. 2^-40", Spread::LogUniform, -16370, -40, true},
};
// The cotangents: the multiples of 180 degrees (of 2 quadrants) among large
// arguments are poles; the spread stops where arguments are mostly integers.
constexpr Range kDegPoleRandom[] = {
    {"uniform in [-720, 720]", Spread::Uniform, -720.0, 720.0},
    {"log-uniform magnitudes 2^-120 .. 2^100", Spread::LogUniform, -120, 100, true},
};
constexpr Range kQuadPoleRandom[] = {
    {"uniform in [-8, 8]", Spread::Uniform, -8.0, 8.0},
    {"log-uniform magnitudes 2^-120 .. 2^100", Spread::LogUniform, -120, 100, true},
};
constexpr Range kDegPoleHard[] = {
    {"next to multiples of 90, k <= 2^40", Spread::NearMultiple, 1, 0x1p40, true, nullptr, 90.0, 0, 0, false},
    {"next to multiples of 45", Spread::NearMultiple, 1, 1000, true, nullptr, 45.0, 0, 0, false},
    {"tiny 2^-16370 .. 2^-40", Spread::LogUniform, -16370, -40, true},
};
constexpr Range kQuadRandom[] = {
    {"uniform in [-8, 8]", Spread::Uniform, -8.0, 8.0},
    {"log-uniform magnitudes 2^-120 .. 2^16383", Spread::LogUniform, -120, 16383, true},
};
constexpr Range kQuadHard[] = {
    {"integers and next to them, k <= 2^40", Spread::NearMultiple, 1, 0x1p40, true, nullptr, 1.0},
    {"next to multiples of 1/3", Spread::NearMultiple, 1, 1000, true, nullptr, 1.0 / 3},
    {"tiny 2^-16380 .. 2^-40", Spread::LogUniform, -16380, -40, true},
};
constexpr Range kQuadPoleHard[] = {
    {"next to integers, k <= 2^40", Spread::NearMultiple, 1, 0x1p40, true, nullptr, 1.0, 0, 0, false},
    {"next to multiples of 1/2", Spread::NearMultiple, 1, 1000, true, nullptr, 0.5, 0, 0, false},
    {"tiny 2^-16380 .. 2^-40", Spread::LogUniform, -16380, -40, true},
};

int exp10_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_exp10(y, x, r); }
int lgamma_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) {
    int sign;
    return mpfr_lgamma(y, &sign, x, r);
}
int sind_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_sinu(y, x, 360, r); }
int cosd_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_cosu(y, x, 360, r); }
int tand_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_tanu(y, x, 360, r); }
int sinq_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_sinu(y, x, 4, r); }
int cosq_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_cosu(y, x, 4, r); }
int tanq_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_tanu(y, x, 4, r); }
// cot = 1/tan in the unit, rounded once: tan in 400 bits, then its
// reciprocal (an error below 2^-390 moves no rounding of a result this far
// from its neighbours' midpoints but by chance).
template <int u>
int cotu_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) {
    mpfr_t t;
    mpfr_init2(t, 400);
    mpfr_tanu(t, x, u, MPFR_RNDN);
    const int i = mpfr_ui_div(y, 1, t, r);
    mpfr_clear(t);
    return i;
}
// The degree and quadrant forms: MPFR's functions with the full turn as
// the unit, exact at every multiple of a right angle.
int asind_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_asinu(y, x, 360, r); }
int acosd_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_acosu(y, x, 360, r); }
int atand_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_atanu(y, x, 360, r); }
int atan2d_ref(mpfr_ptr z, mpfr_srcptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_atan2u(z, y, x, 360, r); }
int asinq_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_asinu(y, x, 4, r); }
int acosq_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_acosu(y, x, 4, r); }
int atanq_ref(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_atanu(y, x, 4, r); }
int atan2q_ref(mpfr_ptr z, mpfr_srcptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_atan2u(z, y, x, 4, r); }

constexpr Reference kReferences[] = {
    {"g_qexp", nullptr, nullptr, mpfr_exp, nullptr, kExpRandom, kExpHard},
    {"g_qexp2", nullptr, nullptr, mpfr_exp2, nullptr, kExp2Random, kExp2Hard},
    {"g_qexp10", nullptr, nullptr, exp10_ref, nullptr, kExp10Random, kExp10Hard},
    {"g_qlog", nullptr, nullptr, mpfr_log, nullptr, kLogRandom, kLogHard},
    {"g_qlog2", nullptr, nullptr, mpfr_log2, nullptr, kLogRandom, kLogHard},
    {"g_qlog10", nullptr, nullptr, mpfr_log10, nullptr, kLogRandom, kLogHard},
    {"g_qsin", nullptr, nullptr, mpfr_sin, nullptr, kTrigRandom, kTrigHard},
    {"g_qcos", nullptr, nullptr, mpfr_cos, nullptr, kTrigRandom, kTrigHard},
    {"g_qtan", nullptr, nullptr, mpfr_tan, nullptr, kTrigRandom, kTrigHard},
    {"g_qcotan", nullptr, nullptr, mpfr_cot, nullptr, kTrigRandom, kTrigHard},
    {"g_qatan", nullptr, nullptr, mpfr_atan, nullptr, kAtanRandom, kAtanHard},
    {"g_qatand", nullptr, nullptr, atand_ref, nullptr, kAtanRandom, kAtanHard},
    {"g_qatanq", nullptr, nullptr, atanq_ref, nullptr, kAtanRandom, kAtanHard},
    {"g_qatan2", nullptr, nullptr, nullptr, mpfr_atan2, kAtan2Random, kAtan2Hard},
    {"g_qatan2d", nullptr, nullptr, nullptr, atan2d_ref, kAtan2Random, kAtan2Hard},
    {"g_qatan2q", nullptr, nullptr, nullptr, atan2q_ref, kAtan2Random, kAtan2Hard},
    {"g_qasin", nullptr, nullptr, mpfr_asin, nullptr, kAsinRandom, kAsinHard},
    {"g_qasind", nullptr, nullptr, asind_ref, nullptr, kAsinRandom, kAsinHard},
    {"g_qasinq", nullptr, nullptr, asinq_ref, nullptr, kAsinRandom, kAsinHard},
    {"g_qacos", nullptr, nullptr, mpfr_acos, nullptr, kAsinRandom, kAsinHard},
    {"g_qacosd", nullptr, nullptr, acosd_ref, nullptr, kAsinRandom, kAsinHard},
    {"g_qacosq", nullptr, nullptr, acosq_ref, nullptr, kAsinRandom, kAsinHard},
    {"g_qsinh", nullptr, nullptr, mpfr_sinh, nullptr, kHypRandom, kHypHard},
    {"g_qcosh", nullptr, nullptr, mpfr_cosh, nullptr, kHypRandom, kHypHard},
    {"g_qtanh", nullptr, nullptr, mpfr_tanh, nullptr, kTanhRandom, kTanhHard},
    {"g_qsqrt", nullptr, nullptr, mpfr_sqrt, nullptr, kSqrtRandom, kSqrtHard, 0.5, 100.0},
    {"g_qcbrt", nullptr, nullptr, mpfr_cbrt, nullptr, kCbrtRandom, kCbrtHard, 0.5, 100.0},
    {"g_qgamma", nullptr, nullptr, mpfr_gamma, nullptr, kGammaRandom, kGammaHard, 1.0, 99.0},
    {"g_qlgama", nullptr, nullptr, lgamma_ref, nullptr, kLgammaRandom, kLgammaHard, 1.0, 99.0},
    {"g_qerf", nullptr, nullptr, mpfr_erf, nullptr, kErfRandom, kErfHard, 1.0, 99.9},
    {"g_qerfc", nullptr, nullptr, mpfr_erfc, nullptr, kErfcRandom, kErfcHard, 1.0, 99.9},
    {"g_qsind", nullptr, nullptr, sind_ref, nullptr, kDegRandom, kDegHard},
    {"g_qcosd", nullptr, nullptr, cosd_ref, nullptr, kDegRandom, kDegHard},
    {"g_qtand", nullptr, nullptr, tand_ref, nullptr, kDegPoleRandom, kDegPoleHard},
    {"g_qcotd", nullptr, nullptr, cotu_ref<360>, nullptr, kDegPoleRandom, kDegPoleHard},
    {"g_qsinq", nullptr, nullptr, sinq_ref, nullptr, kQuadRandom, kQuadHard},
    {"g_qcosq", nullptr, nullptr, cosq_ref, nullptr, kQuadRandom, kQuadHard},
    {"g_qtanq", nullptr, nullptr, tanq_ref, nullptr, kQuadPoleRandom, kQuadPoleHard},
    {"g_qcotq", nullptr, nullptr, cotu_ref<4>, nullptr, kQuadPoleRandom, kQuadPoleHard},
};

}  // namespace

std::span<const Reference> references() { return kReferences; }

}  // namespace mivor::quadulp
