/*
 * Tables of the exponential and logarithm kernels, computed with MPFR.
 *
 *   exp_log_tables e256   2^(j/256), j = 0..255, as (hi, lo) pairs
 *   exp_log_tables e64    2^(j/64),  j = 0..63,  as (hi, lo) pairs
 *   exp_log_tables atbl   ln c_j, j = 0..32, as (hi, lo) pairs, where
 *                         c_j = (32 + j)/32 for j < 16 and (32 + j)/64 above
 *   exp_log_tables logf   64 (invc, logc) pairs of the REAL(4) logarithm
 *   exp_log_tables scale  1/ln 2 and 1/ln 10 as (hi, lo), hi with 27
 *                         significant bits
 *
 * In the power-of-two tables hi is 2^(j/n) truncated to double, so lo is
 * never negative; in atbl hi is ln c_j rounded to nearest.  lo is the
 * remainder rounded to nearest, so hi + lo is within 2^-106 (relative) of
 * the value.
 * Output is C++ initialiser rows with hex-float literals; tools/tables/
 * gen_exp_log.py puts them into the source headers.
 */
#include <stdio.h>
#include <string.h>

#include <mpfr.h>

#define PREC 256

static void split(mpfr_t v, mpfr_rnd_t mode, double *hi, double *lo) {
    mpfr_t t;
    mpfr_init2(t, PREC);
    *hi = mpfr_get_d(v, mode);
    mpfr_sub_d(t, v, *hi, MPFR_RNDN);
    *lo = mpfr_get_d(t, MPFR_RNDN);
    mpfr_clear(t);
}

static void row_pair(double hi, double lo, int j) {
    printf("    {%a, %a},  // %d\n", hi, lo, j);
}

static void powers_of_two(int n) {
    mpfr_t v;
    mpfr_init2(v, PREC);
    for (int j = 0; j < n; ++j) {
        double hi, lo;
        mpfr_set_si(v, j, MPFR_RNDN);
        mpfr_div_si(v, v, n, MPFR_RNDN);
        mpfr_exp2(v, v, MPFR_RNDN);
        split(v, MPFR_RNDZ, &hi, &lo);
        row_pair(hi, lo, j);
    }
    mpfr_clear(v);
}

static void log_centres(void) {
    mpfr_t v;
    mpfr_init2(v, PREC);
    for (int j = 0; j <= 32; ++j) {
        double hi, lo;
        mpfr_set_si(v, 32 + j, MPFR_RNDN);
        mpfr_div_si(v, v, j < 16 ? 32 : 64, MPFR_RNDN);
        mpfr_log(v, v, MPFR_RNDN);
        split(v, MPFR_RNDN, &hi, &lo);
        row_pair(hi, lo, j);
    }
    mpfr_clear(v);
}

/*
 * REAL(4) logarithm: z in [0.75, 1.5) falls in sub-interval i = 0..63 by
 * the bits of (pattern(z) - pattern(0.75)) >> 17: 32 intervals of width
 * 1/128 below 1 and 32 of width 1/64 above.  invc is 1/centre rounded to
 * 29 significant bits, so that z * invc (24 + 29 bits) is exact in double
 * and r = z * invc - 1 is exact too.  The two intervals that touch 1 use
 * invc = 1: near 1 the result is about r itself, and a table value there
 * would cancel against r.  logc is
 * -ln(invc) rounded to nearest.
 */
static void logf_table(void) {
    mpfr_t v, c;
    mpfr_init2(v, PREC);
    mpfr_init2(c, PREC);
    for (int i = 0; i < 64; ++i) {
        double lo_end = i < 32 ? 0.75 + i / 128.0 : 1.0 + (i - 32) / 64.0;
        double width = i < 32 ? 1 / 128.0 : 1 / 64.0;
        mpfr_t inv;
        mpfr_init2(inv, 29);
        if (i == 31 || i == 32) {
            mpfr_set_d(inv, 1.0, MPFR_RNDN);
        } else {
            mpfr_set_d(c, lo_end + width / 2, MPFR_RNDN);
            mpfr_ui_div(inv, 1, c, MPFR_RNDN);
        }
        double invc = mpfr_get_d(inv, MPFR_RNDN);
        mpfr_set(v, inv, MPFR_RNDN);
        mpfr_log(v, v, MPFR_RNDN);
        mpfr_neg(v, v, MPFR_RNDN);
        double logc = mpfr_get_d(v, MPFR_RNDN) + 0.0; /* -0 at invc = 1 */
        printf("    {%a, %a},  // %d\n", invc, logc, i);
        mpfr_clear(inv);
    }
    mpfr_clear(v);
    mpfr_clear(c);
}

/*
 * The base-2 and base-10 logarithms scale ln x, held as S + lo, by 1/ln b.
 * hi keeps 27 significant bits so that its product with the top 26 bits of
 * S is exact.
 */
static void scales(void) {
    mpfr_t v, h, t;
    mpfr_init2(v, PREC);
    mpfr_init2(h, 27);
    mpfr_init2(t, PREC);
    for (int b = 2; b <= 10; b += 8) {
        mpfr_set_ui(v, b, MPFR_RNDN);
        mpfr_log(v, v, MPFR_RNDN);
        mpfr_ui_div(v, 1, v, MPFR_RNDN);
        mpfr_set(h, v, MPFR_RNDN);
        mpfr_sub(t, v, h, MPFR_RNDN);
        printf("inline constexpr LogSplit log_inv_ln%d = {%a, %a};\n", b, mpfr_get_d(h, MPFR_RNDN),
               mpfr_get_d(t, MPFR_RNDN));
    }
    mpfr_clear(v);
    mpfr_clear(h);
    mpfr_clear(t);
}

int main(int argc, char **argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: exp_log_tables e256|e64|atbl|logf|scale\n");
        return 2;
    }
    if (!strcmp(argv[1], "e256")) powers_of_two(256);
    else if (!strcmp(argv[1], "e64")) powers_of_two(64);
    else if (!strcmp(argv[1], "atbl")) log_centres();
    else if (!strcmp(argv[1], "logf")) logf_table();
    else if (!strcmp(argv[1], "scale")) scales();
    else return 2;
    return 0;
}
