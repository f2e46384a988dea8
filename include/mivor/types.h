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

#endif /* MIVOR_TYPES_H */
