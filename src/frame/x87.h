// The x87 unit, for the paths that compute in extended precision.
//
// Those results depend on the precision-control field of the x87 control
// word, which belongs to the calling program: Linux starts processes at
// 64-bit precision, while Windows programs often run at 53 bits.  To give
// the same bits on every target, an extended-precision path sets 64-bit
// precision and round-to-nearest for its own duration and restores the
// caller's control word on the way out.
#pragma once

#include <cstdint>

namespace mivor::x87 {

class ExtendedPrecision {
public:
    ExtendedPrecision() {
        __asm__ __volatile__("fnstcw %0" : "=m"(saved_));
        wanted_ = static_cast<std::uint16_t>((saved_ & ~kPrecisionAndRounding) | kExtendedNearest);
        if (wanted_ != saved_) __asm__ __volatile__("fldcw %0" : : "m"(wanted_) : "memory");
    }
    ~ExtendedPrecision() {
        if (wanted_ != saved_) __asm__ __volatile__("fldcw %0" : : "m"(saved_) : "memory");
    }
    ExtendedPrecision(const ExtendedPrecision&) = delete;
    ExtendedPrecision& operator=(const ExtendedPrecision&) = delete;

    // Ties a value to the scope: arithmetic that consumes a pinned input
    // cannot be hoisted above the control-word change, and a pinned result
    // is complete before the caller's control word comes back.
    static long double pin(long double v) {
        __asm__ __volatile__("" : "+t"(v));
        return v;
    }

    // v rounded to double or float within the scope: the conversion is a
    // store that the rounding control affects, and it must not drift past
    // the restoring of the caller's control word.
    static double to_double(long double v) {
        double d = static_cast<double>(pin(v));
        __asm__ __volatile__("" : "+m"(d));
        return d;
    }
    static float to_float(long double v) {
        float f = static_cast<float>(pin(v));
        __asm__ __volatile__("" : "+m"(f));
        return f;
    }

private:
    static constexpr std::uint16_t kPrecisionAndRounding = 0x0F00;  // PC bits 8-9, RC bits 10-11
    static constexpr std::uint16_t kExtendedNearest = 0x0300;       // PC = 64 bits, RC = nearest
    std::uint16_t saved_;
    std::uint16_t wanted_;
};

// FSQRT: the square root rounded once to the current x87 precision.
inline long double fsqrt(long double v) {
    __asm__("fsqrt" : "+t"(v));
    return v;
}

// FPATAN: the angle of the point (x, y), atan(y/x) placed in (-pi, pi] by
// the signs of both, as the processor's partial arctangent gives it (within
// one unit of a 64-bit significand).  The instruction leaves its result in
// st(1) and pops: the operand there is consumed.
inline long double fpatan(long double y, long double x) {
    long double angle;
    __asm__("fpatan" : "=t"(angle) : "0"(x), "u"(y) : "st(1)");
    return angle;
}

}  // namespace mivor::x87
