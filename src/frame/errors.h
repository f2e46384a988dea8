// The error numbers the library reports to the run-time, by condition.
//
// Each error site names its condition here; no number is computed or
// written as a bare literal elsewhere.  The numbering is uneven on purpose:
// the run 1355 and up was added beside the older run 202..280 and is
// interleaved by kind and unit, and the run-time's message catalogue is
// keyed on these exact values.  Where one condition has two numbers for a
// function pair (tangent/cotangent), the first is the argument refused or
// out of range and the second the other case.
//
// Which export may report which numbers is stated by the `errors` column of
// src/exports/exports.tab; tests/exports/report_cases.tab makes every
// implemented export produce each of its numbers, and the golden run checks
// that no export reports a number its row does not list.
#pragma once

#include <cstdint>

namespace mivor {

enum class Error : std::int32_t {
    // Sine and cosine (radians): argument refused (too large, infinite, NaN).
    sin_cos_refused_r4 = 202,
    sin_cos_refused_r8 = 203,
    sin_cos_refused_r16 = 204,
    // Complex sine, cosine.
    complex_sin_c4 = 205,
    complex_cos_c4 = 206,
    complex_sin_c8 = 207,
    complex_cos_c8 = 208,
    complex_sin_c16 = 209,
    complex_cos_c16 = 210,
    // Tangent, cotangent (radians): argument refused; zero denominator.
    tan_cot_refused_r4 = 211,
    tan_cot_pole_r4 = 212,
    tan_cot_refused_r8 = 213,
    tan_cot_pole_r8 = 214,
    tan_cot_refused_r16 = 215,
    tan_cot_pole_r16 = 216,
    // Arcsine, arccosine: magnitude above 1.
    asin_acos_domain_r4 = 217,
    asin_acos_domain_r8 = 218,
    asin_acos_domain_r16 = 219,
    // ATAN2 of two zeros.
    atan2_zeros_r4 = 220,
    atan2_zeros_r8 = 221,
    atan2_zeros_r16 = 222,
    // Hyperbolic functions overflow.
    hyperbolic_overflow_r4 = 223,
    hyperbolic_overflow_r8 = 224,
    hyperbolic_overflow_r16 = 225,
    // Square root of a negative number.
    sqrt_negative_r4 = 226,
    sqrt_negative_r8 = 227,
    sqrt_negative_r16 = 228,
    // e**x overflows.
    exp_overflow_r4 = 229,
    exp_overflow_r8 = 230,
    exp_overflow_r16 = 231,
    // Complex exponential: argument refused; overflow.
    complex_exp_refused_c4 = 232,
    complex_exp_overflow_c4 = 233,
    complex_exp_refused_c8 = 234,
    complex_exp_overflow_c8 = 235,
    complex_exp_refused_c16 = 236,
    complex_exp_overflow_c16 = 237,
    // 2**x overflows.
    exp2_overflow_r8 = 239,
    exp2_overflow_r16 = 240,
    // 10**x overflows.
    exp10_overflow_r4 = 241,
    exp10_overflow_r8 = 242,
    exp10_overflow_r16 = 243,
    // Logarithm of zero, a negative number or NaN.
    log_domain_r4 = 244,
    log_domain_r8 = 245,
    log_domain_r16 = 246,
    // Complex logarithm of zero.
    complex_log_c4 = 247,
    complex_log_c16 = 249,
    // Gamma function: pole or overflow.
    gamma_r4 = 250,
    gamma_r8 = 251,
    gamma_r16 = 252,
    // Log-gamma: pole or overflow.
    lgamma_r4 = 253,
    lgamma_r16 = 255,
    // Zero raised to a negative power, by base and exponent kind.
    zero_to_negative_r4_i4 = 261,
    zero_to_negative_r4_r4 = 262,
    negative_base_r4 = 263,  // negative base, non-integral real exponent
    zero_to_negative_r8_i4 = 264,
    zero_to_negative_r8_i8 = 265,
    zero_to_negative_r8_r8 = 266,
    negative_base_r8 = 267,
    zero_to_negative_r16_i4 = 268,
    zero_to_negative_r16_i8 = 269,
    zero_to_negative_r16_r16 = 270,
    negative_base_r16 = 271,
    power_overflow_r16 = 272,
    zero_to_negative_c4_i4 = 273,
    zero_to_negative_c8_i4 = 274,
    zero_to_negative_c8_i8 = 275,
    zero_to_negative_c16_i4 = 276,
    zero_to_negative_c16_i8 = 277,
    // REAL(16) quotient.
    quad_quotient_overflow = 278,
    quad_quotient_underflow = 279,
    quad_division_by_zero = 280,
    // Quadrant forms.
    tan_cot_quadrant_r4 = 1355,
    tan_cot_quadrant_r8 = 1356,
    asin_acos_quadrant_r4 = 1357,
    asin_acos_quadrant_r8 = 1358,
    atan2_quadrant_r4 = 1359,
    atan2_quadrant_r8 = 1360,
    // Degree forms.
    sin_cos_degree_r4 = 1361,
    sin_cos_degree_r8 = 1362,
    tan_cot_degree_refused_r4 = 1363,
    tan_cot_degree_refused_r8 = 1364,
    tan_cot_degree_pole_r4 = 1365,
    tan_cot_degree_pole_r8 = 1366,
    asin_acos_degree_r4 = 1367,
    asin_acos_degree_r8 = 1368,
    atan2_degree_r4 = 1369,
    atan2_degree_r8 = 1370,
    // Matrix operands that do not conform (short form).
    matmul_nonconforming = 1375,
    // NEAREST with a zero direction (short form).
    nearest_zero_direction = 1393,
    // MODULO with a zero second argument (short form).
    modulo_zero = 1396,
    // REAL(16) sum, difference, product.
    quad_overflow = 1397,
    quad_underflow = 1398,
    // REAL(16) quadrant and degree forms.
    tan_cot_quadrant_r16 = 1399,
    asin_acos_quadrant_r16 = 1400,
    atan2_quadrant_r16 = 1401,
    sin_cos_degree_r16 = 1402,
    tan_cot_degree_refused_r16 = 1403,
    tan_cot_degree_pole_r16 = 1404,
    asin_acos_degree_r16 = 1405,
    atan2_degree_r16 = 1406,
    // Complex quadrant sine, cosine.
    complex_sin_quadrant_c4 = 1407,
    complex_cos_quadrant_c4 = 1408,
    complex_sin_quadrant_c8 = 1409,
    complex_cos_quadrant_c8 = 1410,
    complex_sin_quadrant_c16 = 1411,
    complex_cos_quadrant_c16 = 1412,
    // More zero-to-a-negative-power cases.
    zero_to_negative_r4_i8 = 1413,
    zero_to_negative_c4_i8 = 1414,
    // Real powers overflow.
    power_overflow_r4 = 1416,
    power_overflow_r8 = 1417,
};

constexpr std::int32_t number_of(Error e) { return static_cast<std::int32_t>(e); }

}  // namespace mivor
