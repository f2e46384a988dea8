// The word the numeric-model intrinsics work on, for each real kind.
//
// EXPONENT, FRACTION, RRSPACING, SCALE, SET_EXPONENT and SPACING change only
// the sign and the exponent field, which sit in one 32-bit word together
// with the top fraction bits: the whole REAL(4), the high word of a REAL(8),
// word 3 of a REAL(16).  Model<T> names that word's layout and reads and
// rewrites it, leaving every other bit of the value as it is; the recipes
// in exponent.cpp, fraction.cpp, scale.cpp and spacing.cpp are written once
// over it.
//
// "X = 0" is the floating-point comparison with 0.0 for REAL(4) and REAL(8)
// (true for both signed zeros) and, for REAL(16), the same comparison as
// the library's REAL(16) relational operators make: all four words, sign
// aside, zero.  A REAL(16) with word 3 zero and a lower word set is a
// (subnormal) number here, as it is to those operators.
#pragma once

#include <cstdint>
#if !defined(__x86_64__)
#include <emmintrin.h>
#endif

#include "frame/values.h"

namespace mivor::model {

// A REAL(8) from its words.  The 32-bit targets join them in an SSE
// register: two 32-bit stores read back as one 64-bit value (to return it
// on the x87 stack) would miss store forwarding and stall.
inline double make_double(std::uint32_t high, std::uint32_t low) {
#if defined(__x86_64__)
    return double_from_words(high, low);
#else
    return _mm_cvtsd_f64(_mm_castsi128_pd(
        _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(low)), _mm_cvtsi32_si128(static_cast<int>(high)))));
#endif
}

template <class T>
struct Model;

template <>
struct Model<float> {
    static constexpr int kShift = 23;  // exponent field starts at this bit of the word
    static constexpr int kBias = 127;
    static constexpr int kDigits = 24;  // significand bits, implicit one included
    static std::uint32_t top(float x) { return bits_of(x); }
    static float with_top(float, std::uint32_t top) { return float_from_bits(top); }
    static bool is_zero(float x) { return x == 0.0f; }
};

template <>
struct Model<double> {
    static constexpr int kShift = 20;
    static constexpr int kBias = 1023;
    static constexpr int kDigits = 53;
    static std::uint32_t top(double x) { return high_word(x); }
    static double with_top(double x, std::uint32_t top) { return make_double(top, low_word(x)); }
    static bool is_zero(double x) { return x == 0.0; }
};

template <>
struct Model<Real16> {
    static constexpr int kShift = 16;
    static constexpr int kBias = 16383;
    static constexpr int kDigits = 113;
    static std::uint32_t top(const Real16& x) { return x.w[3]; }
    static Real16 with_top(Real16 x, std::uint32_t top) {
        x.w[3] = top;
        return x;
    }
    static bool is_zero(const Real16& x) { return ((x.w[3] & ~quad::kSignBit) | x.w[2] | x.w[1] | x.w[0]) == 0; }
};

inline constexpr std::uint32_t kSign = 0x80000000u;

template <class T>
constexpr std::uint32_t fraction_mask() {
    return (std::uint32_t{1} << Model<T>::kShift) - 1;
}

template <class T>
constexpr std::uint32_t field_of(std::uint32_t top) {
    return (top & ~kSign) >> Model<T>::kShift;
}

// A value for the exponent field, placed in the word.  The shift is done on
// 32 bits: a value outside the field's range runs into the sign bit and
// off the top of the word, as SCALE and SET_EXPONENT require.
template <class T>
constexpr std::uint32_t placed(std::uint32_t field) {
    return field << Model<T>::kShift;
}

// EXPONENT(X): 0 for a zero, else the field less bias - 1, with no special
// case: subnormals (field 0) give -126, -1022, -16382 whatever their
// leading bit, and infinities and NaNs 129, 1025, 16385.
template <class T>
std::int32_t exponent(const T& x) {
    if (Model<T>::is_zero(x)) return 0;
    return static_cast<std::int32_t>(field_of<T>(Model<T>::top(x))) - (Model<T>::kBias - 1);
}

}  // namespace mivor::model
