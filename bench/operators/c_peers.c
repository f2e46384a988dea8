/* The C peers of bench/operators, compiled as C at the build's optimisation
 * level without -ffast-math: complex products and quotients with C's
 * _Complex (a quotient calls libgcc's __divsc3 / __divdc3, a product calls
 * __mulsc3 / __muldc3 only when its inline result is NaN), with GCC's
 * __complex128 (__multc3, __divtc3), and the integer powers of REAL(16)
 * and COMPLEX(16) computed the library's way -- reciprocal first, then
 * binary powering -- with __float128 and __complex128 operations.
 */
#include <stdint.h>

typedef _Complex float cfloat;
typedef _Complex double cdouble;
typedef _Complex float __attribute__((mode(TC))) cquad; /* __complex128 */

#define LOOP2(name, type, op)                                 \
    void name(int n, const type* x, const type* y, type* r) { \
        for (int i = 0; i < n; ++i) r[i] = x[i] op y[i];      \
    }

LOOP2(c_multiply_c4, cfloat, *)
LOOP2(c_divide_c4, cfloat, /)
LOOP2(c_multiply_c8, cdouble, *)
LOOP2(c_divide_c8, cdouble, /)
LOOP2(c_multiply_c16, cquad, *)
LOOP2(c_divide_c16, cquad, /)

#define POWER(name, type, etype)                                   \
    static type name##_one(type x, etype n) {                      \
        uint64_t m = n < 0 ? 0 - (uint64_t)n : (uint64_t)n;        \
        type acc = 1;                                              \
        if (n < 0) x = 1 / x;                                      \
        for (;;) {                                                 \
            if (m & 1) acc = acc * x;                              \
            m >>= 1;                                               \
            if (m == 0) return acc;                                \
            x = x * x;                                             \
        }                                                          \
    }                                                              \
    void name(int n, const type* x, const etype* e, type* r) {     \
        for (int i = 0; i < n; ++i) r[i] = name##_one(x[i], e[i]); \
    }

POWER(c_power_r16_i4, __float128, int32_t)
POWER(c_power_r16_i8, __float128, int64_t)
POWER(c_power_c16_i4, cquad, int32_t)
