// Complex sine and cosine against MPFR beside glibc's csin and ccos on the
// same arguments (host flavour): each part within 2 ulps (COMPLEX(4): 0.51)
// and never further than glibc's on any argument set.  The quadrant forms
// are set beside glibc on z pi/2, whose rounding glibc cannot undo: there
// only our own bound is held.  The worst errors are printed.
#include <gtest/gtest.h>
#include <mpfr.h>

#include <algorithm>
#include <complex>
#include <cstdint>
#include <cstdio>

#include "mivor/mivor.h"

namespace {

// z = x + iy; the exact parts to 256 bits.
class Exact {
public:
    Exact() { mpfr_inits2(256, x_, y_, s_, c_, sh_, ch_, re_, im_, d_, static_cast<mpfr_ptr>(nullptr)); }
    ~Exact() { mpfr_clears(x_, y_, s_, c_, sh_, ch_, re_, im_, d_, static_cast<mpfr_ptr>(nullptr)); }
    Exact(const Exact&) = delete;
    Exact& operator=(const Exact&) = delete;

    void set(bool cosine, bool quadrants, double x, double y) {
        mpfr_set_d(x_, x, MPFR_RNDN);
        mpfr_set_d(y_, y, MPFR_RNDN);
        if (quadrants) {
            mpfr_sinu(s_, x_, 4, MPFR_RNDN);
            mpfr_cosu(c_, x_, 4, MPFR_RNDN);
            mpfr_const_pi(d_, MPFR_RNDN);
            mpfr_mul(y_, y_, d_, MPFR_RNDN);
            mpfr_div_2ui(y_, y_, 1, MPFR_RNDN);
        } else {
            mpfr_sin_cos(s_, c_, x_, MPFR_RNDN);
        }
        mpfr_sinh_cosh(sh_, ch_, y_, MPFR_RNDN);
        mpfr_mul(re_, cosine ? c_ : s_, ch_, MPFR_RNDN);
        mpfr_mul(im_, cosine ? s_ : c_, sh_, MPFR_RNDN);
        if (cosine) mpfr_neg(im_, im_, MPFR_RNDN);
    }
    // |v - part| in ulps of the part at precision p, whose least subnormal
    // is 2^least (an exact zero: 0 or 1e9).
    double ulps(double v, bool imaginary, int p, int least) {
        mpfr_srcptr e = imaginary ? im_ : re_;
        if (mpfr_zero_p(e)) return v == 0 ? 0 : 1e9;
        mpfr_set_d(d_, v, MPFR_RNDN);
        mpfr_sub(d_, d_, e, MPFR_RNDN);
        mpfr_abs(d_, d_, MPFR_RNDN);
        mpfr_mul_2si(d_, d_, -std::max(static_cast<long>(mpfr_get_exp(e)) - p, static_cast<long>(least)), MPFR_RNDN);
        return mpfr_get_d(d_, MPFR_RNDN);
    }

private:
    mpfr_t x_, y_, s_, c_, sh_, ch_, re_, im_, d_;
};

struct Member {
    const char* name;
    mivor_complex8* (*f8)(mivor_complex8*, const mivor_complex8*);
    mivor_complex4* (*f4)(mivor_complex4*, const mivor_complex4*);
    bool cosine, quadrants;
};
const Member kMembers[] = {
    {"sin", g_cdsin, g_csin, false, false},
    {"cos", g_cdcos, g_ccos, true, false},
    {"sinq", g_cdsinq, g_csinq, false, true},
    {"cosq", g_cdcosq, g_ccosq, true, true},
};

std::uint64_t next(std::uint64_t& s) {
    s = s * 6364136223846793005u + 1442695040888963407u;
    return s >> 11;
}
double uniform(std::uint64_t& s, double lo, double hi) { return lo + static_cast<double>(next(s)) * 0x1p-53 * (hi - lo); }

// Argument sets: x next to multiples of a right angle (pi/2 or 1), |y|
// spread over the series, the exponential, and next to overflow (for the
// quadrant forms |y| pi/2 so spread).
struct Set {
    const char* label;
    double y_lo, y_hi;
    bool near_multiples;
    bool single;  // also COMPLEX(4)
    double bound;
};
const Set kSets[] = {
    {"common", -5, 5, false, true, 2.0},
    {"x near k pi/2", -3, 3, true, true, 2.0},
    {"|y| to 88", -88, 88, false, true, 2.0},
    {"|y| to 700", -700, 700, false, false, 2.0},
};

TEST(ComplexSinCosMpfr, WithinTwoUlpsAndNoWorseThanGlibc) {
    Exact exact;
    for (const Member& m : kMembers) {
        for (const Set& set : kSets) {
            std::uint64_t s = 2024;
            double ours[2] = {0, 0}, theirs[2] = {0, 0}, ours4 = 0;
            for (int i = 0; i < 20000; ++i) {
                double x = uniform(s, -10, 10);
                if (set.near_multiples) {
                    const double k = static_cast<double>(next(s) % 64) - 32;
                    x = m.quadrants ? k + (k * 0x1p-40) * uniform(s, -1, 1) : k * 1.5707963267948966;
                    x = std::nextafter(x, uniform(s, -1, 1) < 0 ? -1e300 : 1e300);
                }
                const double y = uniform(s, set.y_lo, set.y_hi) * (m.quadrants ? 0.6366197723675814 : 1.0);
                exact.set(m.cosine, m.quadrants, x, y);
                const mivor_complex8 z{x, y};
                mivor_complex8 r;
                m.f8(&r, &z);
                const double k = m.quadrants ? 1.5707963267948966 : 1.0;
                const std::complex<double> w{x * k, y * k};
                const std::complex<double> g = m.cosine ? std::cos(w) : std::sin(w);
                for (int part = 0; part < 2; ++part) {
                    ours[part] = std::max(ours[part], exact.ulps(part ? r.im : r.re, part, 53, -1074));
                    theirs[part] = std::max(theirs[part], exact.ulps(part ? g.imag() : g.real(), part, 53, -1074));
                }
                if (!set.single) continue;
                const mivor_complex4 z4{static_cast<float>(x), static_cast<float>(y)};
                mivor_complex4 r4;
                m.f4(&r4, &z4);
                exact.set(m.cosine, m.quadrants, z4.re, z4.im);
                ours4 = std::max({ours4, exact.ulps(r4.re, false, 24, -149), exact.ulps(r4.im, true, 24, -149)});
            }
            std::printf("%-5s %-14s ours %.3f / %.3f  glibc %.3f / %.3f  COMPLEX(4) %.3f\n", m.name, set.label,
                        ours[0], ours[1], theirs[0], theirs[1], ours4);
            for (int part = 0; part < 2; ++part) {
                EXPECT_LE(ours[part], set.bound) << m.name << " " << set.label << " part " << part;
                if (!m.quadrants) {
                    EXPECT_LE(ours[part], theirs[part]) << m.name << " " << set.label << " part " << part;
                }
            }
            EXPECT_LE(ours4, 0.51) << m.name << " " << set.label;
        }
    }
}

}  // namespace
