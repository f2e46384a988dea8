/*
 * The intrinsic run-time mivorfsse2, as far as this library uses it: the
 * truncations f_aint and f_dint, by which the real powers decide whether an
 * exponent is integral, and the leading-zero count jwe_fnzb of the REAL(16)
 * conversions from integers.  core/ builds a stand-in written from this
 * interface alone; another build of the sibling library can take its place.
 *
 * Every argument is passed by address, as in the rest of the run-time;
 * REAL(4) and REAL(8) results come back by value (x87 st(0) on 32-bit x86).
 */
#ifndef MIVORFSSE2_H
#define MIVORFSSE2_H

#include <stdint.h>

#if defined(_WIN32)
#  if defined(MIVORFSSE2_BUILDING)
#    define MIVORFSSE2_API __declspec(dllexport)
#  else
#    define MIVORFSSE2_API __declspec(dllimport)
#  endif
#else
#  define MIVORFSSE2_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* AINT: x truncated toward zero to an integral value of the same kind; the
 * sign of a zero result is the sign of x.  Infinities and NaNs come back as
 * they are (a signalling NaN quieted). */
MIVORFSSE2_API float f_aint(const float *x);
MIVORFSSE2_API double f_dint(const double *x);

/* The number of leading zero bits of a 32-bit word: 0 to 31, and 32 for 0. */
MIVORFSSE2_API int32_t jwe_fnzb(const uint32_t *word);

#ifdef __cplusplus
}
#endif

#endif /* MIVORFSSE2_H */
