/*
 * Value kinds shared by the library and its callers (C and C++).
 *
 * REAL(16) is IEEE binary128 held as four little-endian 32-bit words: w[0]
 * is the least significant; w[3] holds the sign (bit 31), the biased
 * exponent (bits 16..30, bias 16383) and the top 16 fraction bits.
 * Complex kinds store the real part first.
 */
#ifndef MIVOR_TYPES_H
#define MIVOR_TYPES_H

#include <stdint.h>

typedef struct mivor_real16 {
    uint32_t w[4];
} mivor_real16;

typedef struct mivor_complex4 {
    float re, im;
} mivor_complex4;

typedef struct mivor_complex8 {
    double re, im;
} mivor_complex8;

typedef struct mivor_complex16 {
    mivor_real16 re, im;
} mivor_complex16;

/*
 * The working format of the REAL(16) elementary-function kernels (the
 * jwe_gu exports): a 128-bit fixed-point fraction with a binary scale,
 *
 *     value = (-1)^sign * (f / 2^128) * 2^scale,
 *
 * f in words f[0] (least significant) .. f[3], normalised (bit 31 of f[3]
 * set, so the value lies in [2^(scale-1), 2^scale)) or all zero for zero;
 * sign is 0 or 1.  It holds 15 bits beyond a REAL(16) significand and a
 * 32-bit scale, so chains of kernels neither overflow nor underflow and
 * round once, with jwe_gurnd.
 */
typedef struct mivor_work {
    uint32_t f[4];
    int32_t scale;
    uint32_t sign;
} mivor_work;

#endif /* MIVOR_TYPES_H */
