// Throughput of the integer powers, complex products and quotients and the
// numeric-model intrinsics beside their peers, in one run: the same
// expressions compiled by gfortran -O2 (gfortran_peers.f90), C's _Complex
// with libgcc's __divdc3 and friends, and __float128 / __complex128 doing
// the library's own computation (c_peers.c).
//
// Every row is 1024 independent operations on fixed random operands; the
// library is called once per element through its export, as compiled code
// calls it, while the peers run their own loops (gfortran expands some of
// these inline).  Self-timed: each repetition times the library and its
// peers back to back, and the table keeps the fastest repetition of each,
// so that on a shared machine both sides see the same neighbours.  A last
// row gives the cost of the call itself: an exported function of another
// shared library that only returns its REAL(8) argument.
//
//   operators_bench [repetitions]     (default 30)
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "mivor/mivor.h"
#include "support/operands.h"

using mivor_bench::kN;
using mivor_bench::splitmix;

// The peers (C linkage, one loop each over n elements).
extern "C" {
#define PEER_MODEL(k, R)                                                  \
    void gf_exponent_r##k(int, const R*, std::int32_t*);                  \
    void gf_fraction_r##k(int, const R*, R*);                             \
    void gf_rrspacing_r##k(int, const R*, R*);                            \
    void gf_spacing_r##k(int, const R*, R*);                              \
    void gf_scale_r##k(int, const R*, const std::int32_t*, R*);           \
    void gf_set_exponent_r##k(int, const R*, const std::int32_t*, R*);    \
    void gf_nearest_r##k(int, const R*, const R*, R*);                    \
    void gf_modulo_r##k(int, const R*, const R*, R*);                     \
    void gf_merge_r##k(int, const R*, const R*, const std::int32_t*, R*); \
    void gf_power_r##k##_i4(int, const R*, const std::int32_t*, R*);      \
    void gf_power_r##k##_i8(int, const R*, const std::int64_t*, R*);
PEER_MODEL(4, float)
PEER_MODEL(8, double)
PEER_MODEL(16, mivor_real16)
#define PEER_COMPLEX(k, C)                                           \
    void gf_multiply_c##k(int, const C*, const C*, C*);              \
    void gf_divide_c##k(int, const C*, const C*, C*);                \
    void gf_power_c##k##_i4(int, const C*, const std::int32_t*, C*); \
    void c_multiply_c##k(int, const C*, const C*, C*);               \
    void c_divide_c##k(int, const C*, const C*, C*);
PEER_COMPLEX(4, mivor_complex4)
PEER_COMPLEX(8, mivor_complex8)
PEER_COMPLEX(16, mivor_complex16)
void c_power_r16_i4(int, const mivor_real16*, const std::int32_t*, mivor_real16*);
void c_power_r16_i8(int, const mivor_real16*, const std::int64_t*, mivor_real16*);
void c_power_c16_i4(int, const mivor_complex16*, const std::int32_t*, mivor_complex16*);
double mivor_bench_pass(const double* x);
}

namespace {

int g_repetitions = 30;
constexpr int kPasses = 20;

template <class Pass>
double once(Pass pass) {
    const auto t0 = std::chrono::steady_clock::now();
    for (int p = 0; p < kPasses; ++p) {
        pass();
        __asm__ __volatile__("" ::: "memory");
    }
    const auto t1 = std::chrono::steady_clock::now();
    return std::chrono::duration<double, std::nano>(t1 - t0).count() / (double{kPasses} * kN);
}

void header(const char* title) {
    std::printf("\n%-30s %9s %9s %7s  %s\n", title, "mivor ns", "peer ns", "ratio", "peer");
}

// The library's pass and up to two peers', timed back to back.
template <class Mine, class Peer1, class Peer2>
void row(const char* op, Mine mine, const char* name1, Peer1 peer1, const char* name2, Peer2 peer2) {
    double best[3] = {1e30, 1e30, 1e30};
    for (int r = 0; r < g_repetitions; ++r) {
        best[0] = std::min(best[0], once(mine));
        best[1] = std::min(best[1], once(peer1));
        if (name2) best[2] = std::min(best[2], once(peer2));
    }
    std::printf("%-30s %9.2f %9.2f %7.2f  %s\n", op, best[0], best[1], best[0] / best[1], name1);
    if (name2) std::printf("%-30s %9s %9.2f %7.2f  %s\n", "", "", best[2], best[0] / best[2], name2);
}
template <class Mine, class Peer>
void row(const char* op, Mine mine, const char* name, Peer peer) {
    row(op, mine, name, peer, nullptr, peer);
}

double uniform(std::uint64_t& s, double lo, double hi) {
    return lo + (hi - lo) * static_cast<double>(splitmix(s) >> 11) * 0x1p-53;
}

mivor_real16 quad_of(double v) {
    mivor_real16 q;
    g_qextd(&q, &v);
    return q;
}

// Operands of one real kind: normal numbers of moderate size for the
// model intrinsics, bases in [0.5, 2) and exponents in [-64, 64] for the
// powers, complex operands with parts in [-2, 2] (divisors away from 0).
template <class R>
struct Data {
    std::vector<R> x = std::vector<R>(kN), s = std::vector<R>(kN), p = std::vector<R>(kN), base = std::vector<R>(kN),
                   r = std::vector<R>(kN);
    std::vector<std::int32_t> e = std::vector<std::int32_t>(kN), n4 = std::vector<std::int32_t>(kN),
                              mask = std::vector<std::int32_t>(kN), ir = std::vector<std::int32_t>(kN);
    std::vector<std::int64_t> n8 = std::vector<std::int64_t>(kN);

    template <class Convert>
    explicit Data(Convert convert) {
        std::uint64_t seed = 1234 + sizeof(R);
        for (int i = 0; i < kN; ++i) {
            x[i] = convert(std::ldexp(uniform(seed, 1, 2), static_cast<int>(splitmix(seed) % 61) - 30) *
                           ((splitmix(seed) & 1) ? -1 : 1));
            s[i] = convert((splitmix(seed) & 1) ? -1.0 : 1.0);
            p[i] = convert(uniform(seed, 0.5, 8) * ((splitmix(seed) & 1) ? -1 : 1));
            base[i] = convert(uniform(seed, 0.5, 2));
            e[i] = static_cast<std::int32_t>(splitmix(seed) % 21) - 10;
            n4[i] = static_cast<std::int32_t>(splitmix(seed) % 129) - 64;
            n8[i] = n4[i];
            mask[i] = static_cast<std::int32_t>(splitmix(seed) & 1);
        }
    }
};

template <class C>
struct ComplexData {
    std::vector<C> x = std::vector<C>(kN), y = std::vector<C>(kN), r = std::vector<C>(kN), base = std::vector<C>(kN);
    template <class Convert>
    explicit ComplexData(Convert convert) {
        std::uint64_t seed = 99 + sizeof(C);
        for (int i = 0; i < kN; ++i) {
            x[i] = {convert(uniform(seed, -2, 2)), convert(uniform(seed, -2, 2))};
            y[i] = {convert(uniform(seed, 0.25, 2) * ((splitmix(seed) & 1) ? -1 : 1)), convert(uniform(seed, -2, 2))};
            const double angle = uniform(seed, 0, 6.283185307179586), radius = uniform(seed, 0.9, 1.1);
            base[i] = {convert(radius * std::cos(angle)), convert(radius * std::sin(angle))};
        }
    }
};

float to_float(double v) { return static_cast<float>(v); }
double to_double(double v) { return v; }

// One kind's complex product and quotient rows.
#define COMPLEX_ROWS(k, label, mul, div, d)                                                              \
    row(                                                                                                 \
        label " x*y",                                                                                    \
        [&] {                                                                                            \
            for (int i = 0; i < kN; ++i) mul(&d.r[i], &d.x[i], &d.y[i]);                                 \
        },                                                                                               \
        "gfortran -O2", [&] { gf_multiply_c##k(kN, d.x.data(), d.y.data(), d.r.data()); }, "C _Complex", \
        [&] { c_multiply_c##k(kN, d.x.data(), d.y.data(), d.r.data()); });                               \
    row(                                                                                                 \
        label " x/y",                                                                                    \
        [&] {                                                                                            \
            for (int i = 0; i < kN; ++i) div(&d.r[i], &d.x[i], &d.y[i]);                                 \
        },                                                                                               \
        "gfortran -O2", [&] { gf_divide_c##k(kN, d.x.data(), d.y.data(), d.r.data()); }, "C _Complex",   \
        [&] { c_divide_c##k(kN, d.x.data(), d.y.data(), d.r.data()); });

// One kind's numeric-model rows, each export call written out.
#define MODEL_ROWS(k, label, d, EXPON, FRACT, RRSPA, SPACI, SCALE, STEXP, NEARE, MODUL, MERGE)  \
    row(                                                                                        \
        label " EXPONENT",                                                                      \
        [&] {                                                                                   \
            for (int i = 0; i < kN; ++i) d.ir[i] = EXPON(&d.x[i]);                              \
        },                                                                                      \
        "gfortran -O2", [&] { gf_exponent_r##k(kN, d.x.data(), d.ir.data()); });                \
    row(                                                                                        \
        label " FRACTION",                                                                      \
        [&] {                                                                                   \
            for (int i = 0; i < kN; ++i) FRACT;                                                 \
        },                                                                                      \
        "gfortran -O2", [&] { gf_fraction_r##k(kN, d.x.data(), d.r.data()); });                 \
    row(                                                                                        \
        label " RRSPACING",                                                                     \
        [&] {                                                                                   \
            for (int i = 0; i < kN; ++i) RRSPA;                                                 \
        },                                                                                      \
        "gfortran -O2", [&] { gf_rrspacing_r##k(kN, d.x.data(), d.r.data()); });                \
    row(                                                                                        \
        label " SPACING",                                                                       \
        [&] {                                                                                   \
            for (int i = 0; i < kN; ++i) SPACI;                                                 \
        },                                                                                      \
        "gfortran -O2", [&] { gf_spacing_r##k(kN, d.x.data(), d.r.data()); });                  \
    row(                                                                                        \
        label " SCALE",                                                                         \
        [&] {                                                                                   \
            for (int i = 0; i < kN; ++i) SCALE;                                                 \
        },                                                                                      \
        "gfortran -O2", [&] { gf_scale_r##k(kN, d.x.data(), d.e.data(), d.r.data()); });        \
    row(                                                                                        \
        label " SET_EXPONENT",                                                                  \
        [&] {                                                                                   \
            for (int i = 0; i < kN; ++i) STEXP;                                                 \
        },                                                                                      \
        "gfortran -O2", [&] { gf_set_exponent_r##k(kN, d.x.data(), d.e.data(), d.r.data()); }); \
    row(                                                                                        \
        label " NEAREST",                                                                       \
        [&] {                                                                                   \
            for (int i = 0; i < kN; ++i) NEARE;                                                 \
        },                                                                                      \
        "gfortran -O2", [&] { gf_nearest_r##k(kN, d.x.data(), d.s.data(), d.r.data()); });      \
    row(                                                                                        \
        label " MODULO",                                                                        \
        [&] {                                                                                   \
            for (int i = 0; i < kN; ++i) MODUL;                                                 \
        },                                                                                      \
        "gfortran -O2", [&] { gf_modulo_r##k(kN, d.x.data(), d.p.data(), d.r.data()); });       \
    row(                                                                                        \
        label " MERGE",                                                                         \
        [&] {                                                                                   \
            for (int i = 0; i < kN; ++i) MERGE;                                                 \
        },                                                                                      \
        "gfortran -O2", [&] { gf_merge_r##k(kN, d.x.data(), d.s.data(), d.mask.data(), d.r.data()); });

}  // namespace

int main(int argc, char** argv) {
    if (argc > 1) g_repetitions = std::max(1, std::atoi(argv[1]));
    Data<float> f(to_float);
    Data<double> d(to_double);
    Data<mivor_real16> q(quad_of);
    ComplexData<mivor_complex4> c4(to_float);
    ComplexData<mivor_complex8> c8(to_double);
    ComplexData<mivor_complex16> c16(quad_of);

    header("complex product and quotient");
    COMPLEX_ROWS(4, "COMPLEX(4)", g_acmc, g_acdc, c4)
    COMPLEX_ROWS(8, "COMPLEX(8)", g_axmx, g_axdx, c8)
    COMPLEX_ROWS(16, "COMPLEX(16)", g_azmz, g_azdz, c16)

    header("integer powers, n in [-64, 64]");
    row(
        "REAL(4)**INTEGER(4)",
        [&] {
            for (int i = 0; i < kN; ++i) f.r[i] = g_arxi(&f.base[i], &f.n4[i]);
        },
        "gfortran -O2", [&] { gf_power_r4_i4(kN, f.base.data(), f.n4.data(), f.r.data()); });
    row(
        "REAL(8)**INTEGER(4)",
        [&] {
            for (int i = 0; i < kN; ++i) d.r[i] = g_adxi(&d.base[i], &d.n4[i]);
        },
        "gfortran -O2", [&] { gf_power_r8_i4(kN, d.base.data(), d.n4.data(), d.r.data()); });
    row(
        "REAL(8)**INTEGER(8)",
        [&] {
            for (int i = 0; i < kN; ++i) d.r[i] = g_adxj(&d.base[i], &d.n8[i]);
        },
        "gfortran -O2", [&] { gf_power_r8_i8(kN, d.base.data(), d.n8.data(), d.r.data()); });
    row(
        "REAL(16)**INTEGER(4)",
        [&] {
            for (int i = 0; i < kN; ++i) g_aqxi(&q.r[i], &q.base[i], &q.n4[i]);
        },
        "gfortran -O2", [&] { gf_power_r16_i4(kN, q.base.data(), q.n4.data(), q.r.data()); }, "__float128, same method",
        [&] { c_power_r16_i4(kN, q.base.data(), q.n4.data(), q.r.data()); });
    row(
        "REAL(16)**INTEGER(8)",
        [&] {
            for (int i = 0; i < kN; ++i) g_aqxj(&q.r[i], &q.base[i], &q.n8[i]);
        },
        "gfortran -O2", [&] { gf_power_r16_i8(kN, q.base.data(), q.n8.data(), q.r.data()); }, "__float128, same method",
        [&] { c_power_r16_i8(kN, q.base.data(), q.n8.data(), q.r.data()); });
    row(
        "COMPLEX(8)**INTEGER(4)",
        [&] {
            for (int i = 0; i < kN; ++i) g_axxi(&c8.r[i], &c8.base[i], &d.n4[i]);
        },
        "gfortran -O2", [&] { gf_power_c8_i4(kN, c8.base.data(), d.n4.data(), c8.r.data()); });
    row(
        "COMPLEX(16)**INTEGER(4)",
        [&] {
            for (int i = 0; i < kN; ++i) g_azxi(&c16.r[i], &c16.base[i], &q.n4[i]);
        },
        "gfortran -O2", [&] { gf_power_c16_i4(kN, c16.base.data(), q.n4.data(), c16.r.data()); },
        "__complex128, same method", [&] { c_power_c16_i4(kN, c16.base.data(), q.n4.data(), c16.r.data()); });

    header("numeric model, MODULO, MERGE");
    MODEL_ROWS(4, "REAL(4)", f, g_expon, f.r[i] = g_fract(&f.x[i]), f.r[i] = g_rrspa(&f.x[i]),
               f.r[i] = g_spaci(&f.x[i]), f.r[i] = g_scale(&f.x[i], &f.e[i]), f.r[i] = g_stexp(&f.x[i], &f.e[i]),
               f.r[i] = g_neare(&f.x[i], &f.s[i]), f.r[i] = g_modlr(&f.x[i], &f.p[i]),
               f.r[i] = g_mrgr(&f.x[i], &f.s[i], &f.mask[i]))
    MODEL_ROWS(8, "REAL(8)", d, g_expond, d.r[i] = g_fractd(&d.x[i]), d.r[i] = g_rrspad(&d.x[i]),
               d.r[i] = g_spacid(&d.x[i]), d.r[i] = g_scaled(&d.x[i], &d.e[i]), d.r[i] = g_stexpd(&d.x[i], &d.e[i]),
               d.r[i] = g_neared(&d.x[i], &d.s[i]), d.r[i] = g_modld(&d.x[i], &d.p[i]),
               d.r[i] = g_mrgd(&d.x[i], &d.s[i], &d.mask[i]))
    MODEL_ROWS(16, "REAL(16)", q, g_exponq, g_fractq(&q.r[i], &q.x[i]), g_rrspaq(&q.r[i], &q.x[i]),
               g_spaciq(&q.r[i], &q.x[i]), g_scaleq(&q.r[i], &q.x[i], &q.e[i]), g_stexpq(&q.r[i], &q.x[i], &q.e[i]),
               g_neareq(&q.r[i], &q.x[i], &q.s[i]), g_modlq(&q.r[i], &q.x[i], &q.p[i]),
               g_mrgq(&q.r[i], &q.x[i], &q.s[i], &q.mask[i]))

    // The call alone: an export of another shared library returning its
    // REAL(8) argument, beside the same loop without a call.
    row(
        "call cost: f(&x) = x",
        [&] {
            for (int i = 0; i < kN; ++i) d.r[i] = mivor_bench_pass(&d.x[i]);
        },
        "a copy, no call",
        [&] {
            for (int i = 0; i < kN; ++i) {
                double v = d.x[i];
                __asm__("" : "+x"(v));
                d.r[i] = v;
            }
        });
    return 0;
}
