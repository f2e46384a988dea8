/*
 * Polynomial tables of log-gamma, computed with MPFR (mpfr_lngamma at 320
 * bits): gen_gamma_data.py compiles this program, runs it and formats
 * src/elementary/gamma_data.h.
 *
 * Each row approximates a function on [a, b] by a polynomial in d = x - mid:
 *   ordinary rows   lgamma(x) ~ c0 + c1 d + ... + c11 d^11, mid = (a + b)/2;
 *   zero rows       lgamma(x) ~ d (c1 + c2 d + ... + c11 d^10), mid the zero
 *                   of lgamma (1 or 2) at an end of the row, so that values
 *                   near the zero keep their relative accuracy.
 * The polynomial interpolates at the Chebyshev nodes of the row (within a
 * small factor of the best approximation), computed at 320 bits; c0 and c1
 * are then split into double-doubles (the high part of c1 rounded to 26
 * bits, so that its products with the halves of a split d are exact), the
 * others rounded to doubles, and the relative error of the rounded
 * polynomial is measured on 4001 points.
 *
 * Output, one line per item, hex floats:
 *   row NAME I A B MID C0HI C0LO C1HI C1LO C2 .. C11 ERR
 *   stirling K S_K      lgamma(x) = (x - 1/2) log x - x + log(2 pi)/2 + S(1/x),
 *                       S(z) = z (S0 + S1 z^2 + ... + S6 z^12) on z <= 1/16
 *   stirling_err E      its relative error
 *   half_log_two_pi HI LO
 * Tables: "small" 32 rows for lgamma(1 + x), x in [-1/2, 1/2), rows of
 * width 1/32 (the two next to 0 are zero rows at 0), "main" 104 rows for
 * lgamma(x), x in [1/2, 1024): sixteen rows of width 1/32 in [1/2, 1),
 * sixteen of width 1/16 in [1, 2) and eight per binade above, "low" 56 rows
 * for lgamma(x), x in [2^-8, 1/2), eight per binade.
 */
#include <math.h>
#include <stdio.h>
#include <string.h>

#include <mpfr.h>

#define PREC 320
#define DEG 11 /* ordinary rows: degree 11; zero rows: d times degree 10 */

typedef enum { LGAMMA, LGAMMA1P, STIRLING } Kind;

/* f(x) into r: lgamma(x), lgamma(1 + x), or S(z)/z as a function of u = z^2. */
static void eval(mpfr_t r, const mpfr_t x, Kind kind) {
    mpfr_t t, u;
    mpfr_inits2(PREC, t, u, (mpfr_ptr)0);
    if (kind == LGAMMA) {
        mpfr_lngamma(r, x, MPFR_RNDN);
    } else if (kind == LGAMMA1P) {
        mpfr_add_ui(t, x, 1, MPFR_RNDN);
        mpfr_lngamma(r, t, MPFR_RNDN);
    } else { /* x is u = z^2; X = 1/z */
        mpfr_sqrt(t, x, MPFR_RNDN);   /* z */
        mpfr_ui_div(t, 1, t, MPFR_RNDN); /* X */
        mpfr_lngamma(r, t, MPFR_RNDN);
        mpfr_log(u, t, MPFR_RNDN);
        mpfr_sub_d(t, t, 0.5, MPFR_RNDN);
        mpfr_mul(u, u, t, MPFR_RNDN);        /* (X - 1/2) log X */
        mpfr_sub(r, r, u, MPFR_RNDN);
        mpfr_add_d(t, t, 0.5, MPFR_RNDN);
        mpfr_add(r, r, t, MPFR_RNDN);        /* + X */
        mpfr_const_pi(u, MPFR_RNDN);
        mpfr_mul_ui(u, u, 2, MPFR_RNDN);
        mpfr_log(u, u, MPFR_RNDN);
        mpfr_div_ui(u, u, 2, MPFR_RNDN);
        mpfr_sub(r, r, u, MPFR_RNDN);        /* S(z) */
        mpfr_sqrt(u, x, MPFR_RNDN);
        mpfr_div(r, r, u, MPFR_RNDN);        /* S(z)/z */
    }
    mpfr_clears(t, u, (mpfr_ptr)0);
}

/* Coefficients c[0..n] of the polynomial in d = x - mid interpolating
 * g(d) = f(mid + d) (or f(mid + d)/d for a zero row) at n + 1 Chebyshev
 * nodes of [lo, hi] (bounds relative to mid). */
static void interpolate(mpfr_t *c, int n, double mid, double lo, double hi, Kind kind, int zero_row) {
    const int m = n + 1;
    mpfr_t a[16][17], x, t, w, ctr, pi;
    mpfr_inits2(PREC, x, t, w, ctr, pi, (mpfr_ptr)0);
    mpfr_const_pi(pi, MPFR_RNDN);
    mpfr_set_d(w, (hi - lo) / 2, MPFR_RNDN);
    mpfr_set_d(ctr, (hi + lo) / 2, MPFR_RNDN);
    for (int i = 0; i < m; ++i) {
        for (int j = 0; j <= m; ++j) mpfr_init2(a[i][j], PREC);
        /* node s_i = ctr + w cos((2i + 1) pi / (2m)) */
        mpfr_mul_ui(t, pi, 2 * i + 1, MPFR_RNDN);
        mpfr_div_ui(t, t, 2 * m, MPFR_RNDN);
        mpfr_cos(t, t, MPFR_RNDN);
        mpfr_mul(t, t, w, MPFR_RNDN);
        mpfr_add(t, t, ctr, MPFR_RNDN); /* d */
        mpfr_set_ui(a[i][0], 1, MPFR_RNDN);
        for (int j = 1; j < m; ++j) mpfr_mul(a[i][j], a[i][j - 1], t, MPFR_RNDN);
        mpfr_add_d(x, t, mid, MPFR_RNDN);
        eval(a[i][m], x, kind);
        if (zero_row) mpfr_div(a[i][m], a[i][m], t, MPFR_RNDN);
    }
    /* Gaussian elimination with partial pivoting. */
    for (int k = 0; k < m; ++k) {
        int p = k;
        for (int i = k + 1; i < m; ++i)
            if (mpfr_cmpabs(a[i][k], a[p][k]) > 0) p = i;
        if (p != k)
            for (int j = 0; j <= m; ++j) mpfr_swap(a[p][j], a[k][j]);
        for (int i = k + 1; i < m; ++i) {
            mpfr_div(t, a[i][k], a[k][k], MPFR_RNDN);
            for (int j = k; j <= m; ++j) {
                mpfr_mul(x, t, a[k][j], MPFR_RNDN);
                mpfr_sub(a[i][j], a[i][j], x, MPFR_RNDN);
            }
        }
    }
    for (int k = m - 1; k >= 0; --k) {
        mpfr_set(t, a[k][m], MPFR_RNDN);
        for (int j = k + 1; j < m; ++j) {
            mpfr_mul(x, a[k][j], c[j], MPFR_RNDN);
            mpfr_sub(t, t, x, MPFR_RNDN);
        }
        mpfr_div(c[k], t, a[k][k], MPFR_RNDN);
    }
    for (int i = 0; i < m; ++i)
        for (int j = 0; j <= m; ++j) mpfr_clear(a[i][j]);
    mpfr_clears(x, t, w, ctr, pi, (mpfr_ptr)0);
}

/* v = hi + lo, hi rounded to `bits` significant bits (53: a double). */
static void split(const mpfr_t v, double *hi, double *lo, int bits) {
    mpfr_t t, h;
    mpfr_init2(t, PREC);
    mpfr_init2(h, bits);
    mpfr_set(h, v, MPFR_RNDN);
    *hi = mpfr_get_d(h, MPFR_RNDN);
    mpfr_sub_d(t, v, *hi, MPFR_RNDN);
    *lo = mpfr_get_d(t, MPFR_RNDN);
    mpfr_clears(t, h, (mpfr_ptr)0);
}

/* One row: fit, round, measure, print. */
static void row(const char *name, int index, double a, double b, Kind kind, double zero) {
    const int zero_row = !isnan(zero);
    const double mid = zero_row ? zero : (a + b) / 2;
    const int n = zero_row ? DEG - 1 : DEG;
    mpfr_t c[DEG + 1], x, y, p, t;
    for (int k = 0; k <= DEG; ++k) mpfr_init2(c[k], PREC);
    mpfr_inits2(PREC, x, y, p, t, (mpfr_ptr)0);
    interpolate(c, n, mid, a - mid, b - mid, kind, zero_row);
    /* As coefficients of 1, d, ..., d^11 of the value. */
    double k0[2] = {0, 0}, k1[2], rest[DEG + 1];
    if (zero_row) {
        split(c[0], &k1[0], &k1[1], 26);
        for (int k = 1; k <= n; ++k) rest[k + 1] = mpfr_get_d(c[k], MPFR_RNDN);
    } else {
        split(c[0], &k0[0], &k0[1], 53);
        split(c[1], &k1[0], &k1[1], 26);
        for (int k = 2; k <= n; ++k) rest[k] = mpfr_get_d(c[k], MPFR_RNDN);
    }
    /* The relative error of the rounded polynomial. */
    double err = 0;
    for (int i = 0; i <= 4000; ++i) {
        const double d = (a - mid) + (b - a) * i / 4000.0;
        if (d == 0 && zero_row) continue;
        mpfr_set_d(p, rest[DEG], MPFR_RNDN);
        for (int k = DEG - 1; k >= 2; --k) {
            mpfr_mul_d(p, p, d, MPFR_RNDN);
            mpfr_add_d(p, p, rest[k], MPFR_RNDN);
        }
        mpfr_mul_d(p, p, d, MPFR_RNDN);
        mpfr_add_d(p, p, k1[1], MPFR_RNDN);
        mpfr_add_d(p, p, k1[0], MPFR_RNDN);
        mpfr_mul_d(p, p, d, MPFR_RNDN);
        mpfr_add_d(p, p, k0[1], MPFR_RNDN);
        mpfr_add_d(p, p, k0[0], MPFR_RNDN);
        mpfr_set_d(x, d, MPFR_RNDN);
        mpfr_add_d(x, x, mid, MPFR_RNDN);
        eval(y, x, kind);
        mpfr_sub(t, p, y, MPFR_RNDN);
        mpfr_div(t, t, y, MPFR_RNDN);
        const double e = fabs(mpfr_get_d(t, MPFR_RNDN));
        if (e > err) err = e;
    }
    printf("row %s %d %a %a %a %a %a %a %a", name, index, a, b, mid, k0[0], k0[1], k1[0], k1[1]);
    for (int k = 2; k <= DEG; ++k) printf(" %a", rest[k]);
    printf(" %a\n", err);
    for (int k = 0; k <= DEG; ++k) mpfr_clear(c[k]);
    mpfr_clears(x, y, p, t, (mpfr_ptr)0);
}

static void stirling(void) {
    const int n = 6;
    mpfr_t c[7], x, y, p;
    for (int k = 0; k <= n; ++k) mpfr_init2(c[k], PREC);
    mpfr_inits2(PREC, x, y, p, (mpfr_ptr)0);
    const double umax = 1.0 / 256;
    interpolate(c, n, 0.0, 0.0, umax, STIRLING, 0);
    double s[7];
    for (int k = 0; k <= n; ++k) {
        s[k] = mpfr_get_d(c[k], MPFR_RNDN);
        printf("stirling %d %a\n", k, s[k]);
    }
    double err = 0;
    for (int i = 1; i <= 4000; ++i) {
        const double u = umax * i / 4000.0;
        mpfr_set_d(p, s[n], MPFR_RNDN);
        for (int k = n - 1; k >= 0; --k) {
            mpfr_mul_d(p, p, u, MPFR_RNDN);
            mpfr_add_d(p, p, s[k], MPFR_RNDN);
        }
        mpfr_set_d(x, u, MPFR_RNDN);
        eval(y, x, STIRLING);
        mpfr_sub(p, p, y, MPFR_RNDN);
        mpfr_div(p, p, y, MPFR_RNDN);
        const double e = fabs(mpfr_get_d(p, MPFR_RNDN));
        if (e > err) err = e;
    }
    printf("stirling_err %a\n", err);
    for (int k = 0; k <= n; ++k) mpfr_clear(c[k]);
    mpfr_clears(x, y, p, (mpfr_ptr)0);
}

int main(void) {
    const double none = NAN;
    for (int i = 0; i < 32; ++i)
        row("small", i, (i - 16) / 32.0, (i - 15) / 32.0, LGAMMA1P, i == 15 || i == 16 ? 0.0 : none);
    for (int i = 0; i < 16; ++i) row("main", i, 0.5 + i / 32.0, 0.5 + (i + 1) / 32.0, LGAMMA, i == 15 ? 1.0 : none);
    for (int j = 0; j < 16; ++j)
        row("main", 16 + j, 1.0 + j / 16.0, 1.0 + (j + 1) / 16.0, LGAMMA, j == 0 ? 1.0 : j == 15 ? 2.0 : none);
    int index = 32;
    for (int e = 1; e < 10; ++e) {
        for (int j = 0; j < 8; ++j, ++index) {
            const double a = ldexp(1.0 + j / 8.0, e), b = ldexp(1.0 + (j + 1) / 8.0, e);
            row("main", index, a, b, LGAMMA, e == 1 && j == 0 ? 2.0 : none);
        }
    }
    for (int e = -8, i = 0; e < -1; ++e)
        for (int j = 0; j < 8; ++j, ++i)
            row("low", i, ldexp(1.0 + j / 8.0, e), ldexp(1.0 + (j + 1) / 8.0, e), LGAMMA, none);
    stirling();
    mpfr_t v;
    mpfr_init2(v, PREC);
    mpfr_const_pi(v, MPFR_RNDN);
    mpfr_mul_ui(v, v, 2, MPFR_RNDN);
    mpfr_log(v, v, MPFR_RNDN);
    mpfr_div_ui(v, v, 2, MPFR_RNDN);
    double hi, lo;
    split(v, &hi, &lo, 53);
    printf("half_log_two_pi %a %a\n", hi, lo);
    mpfr_clear(v);
    return 0;
}
