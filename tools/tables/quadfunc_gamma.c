/* Coefficients of the REAL(16) gamma and log-gamma functions, by MPFR in
 * 600-bit arithmetic: the Stirling tail and the Taylor series of ln Gamma
 * at 1 and 2.  Printed one item per line, integers in decimal, for
 * gen_quadfunc_data.py (which compiles and runs this program):
 *
 *   S k sig e neg   a_k = B_2k / (2k (2k-1)), k = 1..22, in the working
 *                   format (sig: 128-bit significand, value in [2^(e-1), 2^e))
 *                   ln Gamma(x) = (x - 1/2) ln x - x + ln(2 pi)/2
 *                                 + sum a_k x^(1-2k)
 *   A k sig e neg   ln Gamma(1 + z) = sum_k A_k z^k, k = 1..20: A_1 = -gamma,
 *                   A_k = (-1)^k zeta(k)/k
 *   B k sig e neg   ln Gamma(2 + z) = sum_k B_k z^k: B_1 = 1 - gamma, B_k =
 *                   (-1)^k (zeta(k) - 1)/k
 *   K name v        S.176 constants (nearest integer of value 2^176)
 *   W name sig e neg   working-format constants
 *   bound name v    the first omitted term's size at the end of the range
 *                   (x = 20 for Stirling, |z| = 1/128 for the Taylor series)
 */
#include <mpfr.h>
#include <stdio.h>

static void wide(const char* tag, int k, mpfr_t v) {
    mpz_t z;
    mpfr_t t;
    mpz_init(z);
    mpfr_init2(t, 600);
    long e = mpfr_get_exp(v);
    mpfr_abs(t, v, MPFR_RNDN);
    mpfr_mul_2si(t, t, 128 - e, MPFR_RNDN);
    mpfr_rint(t, t, MPFR_RNDN);
    mpfr_get_z(z, t, MPFR_RNDN);
    if (mpz_sizeinbase(z, 2) > 128) { mpz_fdiv_q_2exp(z, z, 1); ++e; }
    gmp_printf("%s %d %Zd %ld %d\n", tag, k, z, e, mpfr_sgn(v) < 0);
    mpz_clear(z);
    mpfr_clear(t);
}

static void named(const char* tag, const char* name, mpfr_t v) {
    mpz_t z;
    mpfr_t t;
    mpz_init(z);
    mpfr_init2(t, 600);
    long e = mpfr_get_exp(v);
    mpfr_abs(t, v, MPFR_RNDN);
    mpfr_mul_2si(t, t, 128 - e, MPFR_RNDN);
    mpfr_rint(t, t, MPFR_RNDN);
    mpfr_get_z(z, t, MPFR_RNDN);
    if (mpz_sizeinbase(z, 2) > 128) { mpz_fdiv_q_2exp(z, z, 1); ++e; }
    gmp_printf("%s %s %Zd %ld %d\n", tag, name, z, e, mpfr_sgn(v) < 0);
    mpz_clear(z);
    mpfr_clear(t);
}

int main(void) {
    mpfr_t a, b, t, g;
    mpfr_inits2(600, a, b, t, g, (mpfr_ptr)0);
    mpfr_const_euler(g, MPFR_RNDN);
    /* Stirling: a_k = (-1)^(k+1) 2 (2k-2)! zeta(2k) / (2 pi)^(2k). */
    for (int k = 1; k <= 23; ++k) {
        mpfr_zeta_ui(a, 2 * k, MPFR_RNDN);
        mpfr_fac_ui(b, 2 * k - 2, MPFR_RNDN);
        mpfr_mul(a, a, b, MPFR_RNDN);
        mpfr_mul_ui(a, a, 2, MPFR_RNDN);
        mpfr_const_pi(t, MPFR_RNDN);
        mpfr_mul_ui(t, t, 2, MPFR_RNDN);
        mpfr_pow_ui(t, t, 2 * k, MPFR_RNDN);
        mpfr_div(a, a, t, MPFR_RNDN);
        if (k % 2 == 0) mpfr_neg(a, a, MPFR_RNDN);
        if (k <= 22) {
            wide("S", k, a);
        } else {
            mpfr_set_ui(t, 20, MPFR_RNDN);
            mpfr_pow_ui(t, t, 2 * k - 1, MPFR_RNDN);
            mpfr_div(a, a, t, MPFR_RNDN);
            mpfr_abs(a, a, MPFR_RNDN);
            mpfr_printf("bound stirling %.3Re\n", a);
        }
    }
    /* Taylor series of ln Gamma at 1 and 2. */
    for (int k = 1; k <= 21; ++k) {
        if (k == 1) {
            mpfr_neg(a, g, MPFR_RNDN);
            mpfr_ui_sub(b, 1, g, MPFR_RNDN);
        } else {
            mpfr_zeta_ui(a, k, MPFR_RNDN);
            mpfr_sub_ui(b, a, 1, MPFR_RNDN);
            mpfr_div_ui(a, a, k, MPFR_RNDN);
            mpfr_div_ui(b, b, k, MPFR_RNDN);
            if (k % 2) {
                mpfr_neg(a, a, MPFR_RNDN);
                mpfr_neg(b, b, MPFR_RNDN);
            }
        }
        if (k <= 20) {
            wide("A", k, a);
            wide("B", k, b);
        } else {
            /* The first omitted term relative to the smallest result there,
               about gamma z (at 1) and (1 - gamma) z (at 2). */
            mpfr_abs(a, a, MPFR_RNDN);
            mpfr_div_2ui(a, a, 7 * (k - 1), MPFR_RNDN);
            mpfr_div(a, a, g, MPFR_RNDN);
            mpfr_printf("bound near1 %.3Re\n", a);
            mpfr_abs(b, b, MPFR_RNDN);
            mpfr_div_2ui(b, b, 7 * (k - 1), MPFR_RNDN);
            mpfr_ui_sub(t, 1, g, MPFR_RNDN);
            mpfr_div(b, b, t, MPFR_RNDN);
            mpfr_printf("bound near2 %.3Re\n", b);
        }
    }
    /* ln(2 pi)/2 in S.176, ln(pi) and pi in the working format. */
    mpfr_const_pi(t, MPFR_RNDN);
    mpfr_mul_ui(a, t, 2, MPFR_RNDN);
    mpfr_log(a, a, MPFR_RNDN);
    mpfr_div_ui(a, a, 2, MPFR_RNDN);
    mpfr_mul_2ui(a, a, 176, MPFR_RNDN);
    mpfr_rint(a, a, MPFR_RNDN);
    mpfr_printf("K half_ln_2pi %.0Rf\n", a);
    mpfr_log(b, t, MPFR_RNDN);
    named("W", "ln_pi", b);
    return 0;
}
