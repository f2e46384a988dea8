/* Polynomials of the REAL(16) error functions, by MPFR in 320-bit
 * arithmetic: Chebyshev interpolants (nodes cos((2i+1) pi/(2n+2))) turned
 * into monomials in t in [-1, 1], and their errors measured on 2000 points
 * of each interval.  Printed one item per line, integers in decimal, for
 * gen_quadfunc_data.py (which compiles and runs this program):
 *
 *   E i sig e neg      erf(x)/x ~ sum e_i t^i with u = x^2 = (1 + t)/8, t in
 *                      [-1, 1] (x^2 in [0, 1/4])
 *   X k lo hi deg      a piece of erfcx(x) = e^(x^2) erfc(x) in x = c + h t
 *   S k lo hi deg      a piece of G(s) = erfcx(1/s)/s in s = 1/x = c + h t
 *                      (lo, hi printed as numerator/denominator pairs)
 *   C k i sig e neg    coefficient i (lowest first) of piece k
 *   bound name v       the largest relative error found, with the
 *                      coefficients as rounded to the working format
 */
#include <mpfr.h>
#include <stdio.h>
#include <stdlib.h>

#define PREC 320
#define SAMPLES 2000

typedef void (*Fn)(mpfr_t y, const mpfr_t t, const mpfr_t c, const mpfr_t h);

/* erf(x)/x at u = x^2 = (1 + t)/8. */
static void small(mpfr_t y, const mpfr_t t, const mpfr_t c, const mpfr_t h) {
    (void)c;
    (void)h;
    mpfr_t u;
    mpfr_init2(u, PREC);
    mpfr_add_ui(u, t, 1, MPFR_RNDN);
    mpfr_div_ui(u, u, 8, MPFR_RNDN);
    if (mpfr_zero_p(u)) {
        mpfr_const_pi(y, MPFR_RNDN); /* 2/sqrt(pi) */
        mpfr_sqrt(y, y, MPFR_RNDN);
        mpfr_ui_div(y, 2, y, MPFR_RNDN);
    } else {
        mpfr_sqrt(u, u, MPFR_RNDN);
        mpfr_erf(y, u, MPFR_RNDN);
        mpfr_div(y, y, u, MPFR_RNDN);
    }
    mpfr_clear(u);
}
/* erfcx(x), x = c + h t. */
static void xpiece(mpfr_t y, const mpfr_t t, const mpfr_t c, const mpfr_t h) {
    mpfr_t x, e;
    mpfr_inits2(PREC, x, e, (mpfr_ptr)0);
    mpfr_mul(x, t, h, MPFR_RNDN);
    mpfr_add(x, x, c, MPFR_RNDN);
    mpfr_erfc(y, x, MPFR_RNDN);
    mpfr_sqr(e, x, MPFR_RNDN);
    mpfr_exp(e, e, MPFR_RNDN);
    mpfr_mul(y, y, e, MPFR_RNDN);
    mpfr_clears(x, e, (mpfr_ptr)0);
}
/* erfcx(1/s)/s, s = c + h t. */
static void spiece(mpfr_t y, const mpfr_t t, const mpfr_t c, const mpfr_t h) {
    mpfr_t s, x, e;
    mpfr_inits2(PREC, s, x, e, (mpfr_ptr)0);
    mpfr_mul(s, t, h, MPFR_RNDN);
    mpfr_add(s, s, c, MPFR_RNDN);
    mpfr_ui_div(x, 1, s, MPFR_RNDN);
    mpfr_erfc(y, x, MPFR_RNDN);
    mpfr_sqr(e, x, MPFR_RNDN);
    mpfr_exp(e, e, MPFR_RNDN);
    mpfr_mul(y, y, e, MPFR_RNDN);
    mpfr_div(y, y, s, MPFR_RNDN);
    mpfr_clears(s, x, e, (mpfr_ptr)0);
}

/* v rounded to the working format (128-bit significand), printed, and
 * returned in r (the rounded value). */
static void wide(const char* tag, int k, int i, const mpfr_t v, mpfr_t r) {
    if (mpfr_zero_p(v)) {
        printf("%s %d %d 0 0 0\n", tag, k, i);
        mpfr_set_zero(r, 1);
        return;
    }
    mpfr_t t;
    mpz_t z;
    mpfr_init2(t, PREC);
    mpz_init(z);
    const int negative = mpfr_sgn(v) < 0;  /* v and r may be one variable */
    long e = mpfr_get_exp(v);
    mpfr_abs(t, v, MPFR_RNDN);
    mpfr_mul_2si(t, t, 128 - e, MPFR_RNDN);
    mpfr_rint(t, t, MPFR_RNDN);
    mpfr_get_z(z, t, MPFR_RNDN);
    if (mpz_sizeinbase(z, 2) > 128) {
        mpz_fdiv_q_2exp(z, z, 1);
        ++e;
    }
    if (k < 0) gmp_printf("%s %d %Zd %ld %d\n", tag, i, z, e, negative);
    else gmp_printf("%s %d %d %Zd %ld %d\n", tag, k, i, z, e, negative);
    mpfr_set_z_2exp(r, z, e - 128, MPFR_RNDN);
    if (negative) mpfr_neg(r, r, MPFR_RNDN);
    mpz_clear(z);
    mpfr_clear(t);
}

/* Fits f on t in [-1, 1] with degree n, prints the coefficients (tag,
 * piece k) and the measured relative error (bound label). */
static void fit(Fn f, const mpfr_t c, const mpfr_t h, int n, const char* tag, int k, const char* label) {
    mpfr_t *fv = malloc(sizeof(mpfr_t) * (n + 1)), *ch = malloc(sizeof(mpfr_t) * (n + 1));
    mpfr_t *mono = malloc(sizeof(mpfr_t) * (n + 1)), *Tprev = malloc(sizeof(mpfr_t) * (n + 1));
    mpfr_t *Tcur = malloc(sizeof(mpfr_t) * (n + 1)), *Tnext = malloc(sizeof(mpfr_t) * (n + 1));
    mpfr_t t, pi, a, y, p, err, worst;
    mpfr_inits2(PREC, t, pi, a, y, p, err, worst, (mpfr_ptr)0);
    mpfr_const_pi(pi, MPFR_RNDN);
    for (int i = 0; i <= n; ++i) {
        mpfr_inits2(PREC, fv[i], ch[i], mono[i], Tprev[i], Tcur[i], Tnext[i], (mpfr_ptr)0);
        mpfr_set_zero(mono[i], 1);
    }
    /* Values at the nodes, Chebyshev coefficients. */
    for (int i = 0; i <= n; ++i) {
        mpfr_mul_ui(a, pi, 2 * i + 1, MPFR_RNDN);
        mpfr_div_ui(a, a, 2 * n + 2, MPFR_RNDN);
        mpfr_cos(t, a, MPFR_RNDN);
        f(fv[i], t, c, h);
    }
    for (int j = 0; j <= n; ++j) {
        mpfr_set_zero(ch[j], 1);
        for (int i = 0; i <= n; ++i) {
            mpfr_mul_ui(a, pi, (unsigned long)j * (2 * i + 1), MPFR_RNDN);
            mpfr_div_ui(a, a, 2 * n + 2, MPFR_RNDN);
            mpfr_cos(a, a, MPFR_RNDN);
            mpfr_mul(a, a, fv[i], MPFR_RNDN);
            mpfr_add(ch[j], ch[j], a, MPFR_RNDN);
        }
        mpfr_mul_ui(ch[j], ch[j], j == 0 ? 1 : 2, MPFR_RNDN);
        mpfr_div_ui(ch[j], ch[j], n + 1, MPFR_RNDN);
    }
    /* Monomials: T0 = 1, T1 = t, T_{j+1} = 2t T_j - T_{j-1}. */
    for (int i = 0; i <= n; ++i) {
        mpfr_set_zero(Tprev[i], 1);
        mpfr_set_zero(Tcur[i], 1);
    }
    mpfr_set_ui(Tprev[0], 1, MPFR_RNDN); /* T0 */
    mpfr_set_ui(Tcur[1], 1, MPFR_RNDN);  /* T1 */
    for (int i = 0; i <= n; ++i) mpfr_set(mono[i], i == 0 ? ch[0] : mono[i], MPFR_RNDN);
    if (n >= 1) mpfr_add(mono[1], mono[1], ch[1], MPFR_RNDN);
    for (int j = 2; j <= n; ++j) {
        for (int i = 0; i <= n; ++i) {
            mpfr_set_zero(Tnext[i], 1);
            if (i > 0) mpfr_mul_ui(Tnext[i], Tcur[i - 1], 2, MPFR_RNDN);
            mpfr_sub(Tnext[i], Tnext[i], Tprev[i], MPFR_RNDN);
        }
        for (int i = 0; i <= n; ++i) {
            mpfr_mul(a, ch[j], Tnext[i], MPFR_RNDN);
            mpfr_add(mono[i], mono[i], a, MPFR_RNDN);
            mpfr_set(Tprev[i], Tcur[i], MPFR_RNDN);
            mpfr_set(Tcur[i], Tnext[i], MPFR_RNDN);
        }
    }
    /* Rounded coefficients, then the error on a grid. */
    for (int i = 0; i <= n; ++i) wide(tag, k, i, mono[i], mono[i]);
    mpfr_set_zero(worst, 1);
    for (int s = 0; s <= SAMPLES; ++s) {
        mpfr_set_si(t, 2 * s - SAMPLES, MPFR_RNDN);
        mpfr_div_ui(t, t, SAMPLES, MPFR_RNDN);
        f(y, t, c, h);
        mpfr_set(p, mono[n], MPFR_RNDN);
        for (int i = n - 1; i >= 0; --i) {
            mpfr_mul(p, p, t, MPFR_RNDN);
            mpfr_add(p, p, mono[i], MPFR_RNDN);
        }
        mpfr_sub(err, p, y, MPFR_RNDN);
        mpfr_div(err, err, y, MPFR_RNDN);
        mpfr_abs(err, err, MPFR_RNDN);
        if (mpfr_cmp(err, worst) > 0) mpfr_set(worst, err, MPFR_RNDN);
    }
    mpfr_printf("bound %s %.3Re\n", label, worst);
    for (int i = 0; i <= n; ++i) mpfr_clears(fv[i], ch[i], mono[i], Tprev[i], Tcur[i], Tnext[i], (mpfr_ptr)0);
    free(fv); free(ch); free(mono); free(Tprev); free(Tcur); free(Tnext);
    mpfr_clears(t, pi, a, y, p, err, worst, (mpfr_ptr)0);
}

int main(void) {
    mpfr_t c, h;
    mpfr_inits2(PREC, c, h, (mpfr_ptr)0);
    fit(small, c, h, 19, "E", -1, "small");
    /* x pieces [1/2 + k/2, 1 + k/2], k = 0..3. */
    for (int k = 0; k < 4; ++k) {
        mpfr_set_ui(c, 3 + 2 * k, MPFR_RNDN);
        mpfr_div_ui(c, c, 4, MPFR_RNDN);
        mpfr_set_ui(h, 1, MPFR_RNDN);
        mpfr_div_ui(h, h, 4, MPFR_RNDN);
        printf("X %d %d/2 %d/2 30\n", k, 1 + k, 2 + k);
        char label[8];
        snprintf(label, sizeof label, "%d", k);
        fit(xpiece, c, h, 30, "C", k, label);
    }
    /* s pieces [hi 2/3, hi], hi = (2/5)(2/3)^(k-4), k = 4..13. */
    /* Degrees: the pieces next to x = 2.5 are the hardest. */
    static const int degree[14] = {0, 0, 0, 0, 32, 28, 26, 24, 24, 22, 22, 20, 20, 20};
    unsigned long num = 2, den = 5;
    for (int k = 4; k < 14; ++k) {
        /* hi = num/den, lo = 2 num/(3 den); c = 5 num/(6 den), h = num/(6 den). */
        mpfr_set_ui(c, 5 * num, MPFR_RNDN);
        mpfr_div_ui(c, c, 6 * den, MPFR_RNDN);
        mpfr_set_ui(h, num, MPFR_RNDN);
        mpfr_div_ui(h, h, 6 * den, MPFR_RNDN);
        printf("S %d %lu/%lu %lu/%lu %d\n", k, 2 * num, 3 * den, num, den, degree[k]);
        char label[8];
        snprintf(label, sizeof label, "%d", k);
        fit(spiece, c, h, degree[k], "C", k, label);
        num *= 2;
        den *= 3;
    }
    return 0;
}
