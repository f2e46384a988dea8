// quad_ulp: errors of the REAL(16) elementary functions against MPFR.
//
//     quad_ulp [--count N] [--hard N] [--threads T] [--seed S] [--check] [name ...]
//
// For each g_q export of the registry (quad_refs.cpp) that the library
// implements: N arguments (default 100000) spread over its domain, then N/10
// (--hard) in each of its hard ranges; the reference is MPFR at 300 bits,
// the error is in units of the last place of the REAL(16) result (2^-112
// times the binade of the exact value, the subnormal binades counted as
// the smallest normal one).  Printed per range: arguments, largest error
// and where, mean error, and the share of results that are the correctly
// rounded value.  Exact values below 2^-16382 are counted apart: the
// library returns no subnormals (zero instead).
//
// Exit status 1 when a result is a NaN or an infinity where the reference
// is finite or the other way round, or a report was made for an argument
// of the domain; with --check also when a function's largest error or its
// share of correctly rounded results misses the bound of its registry row.
#define MPFR_WANT_FLOAT128 1
#include <mpfr.h>
#include <quadmath.h>

#include <algorithm>
#include <cmath>
#include <atomic>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "exports/registry.h"
#include "mivor/control_area.h"
#include "quad_refs.h"

using namespace mivor::quadulp;

namespace {

struct Random {
    std::uint64_t s;
    std::uint64_t next() {
        std::uint64_t z = (s += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    double unit() { return static_cast<double>(next() >> 11) * 0x1p-53; }
    __float128 unit128() {  // uniform in [0, 1) with 113 bits
        return (static_cast<__float128>(next() >> 15) * static_cast<__float128>(0x1p-49) + static_cast<__float128>(next())) * static_cast<__float128>(0x1p-64);
    }
};

mivor_real16 to_real16(__float128 v) {
    mivor_real16 q;
    std::memcpy(&q, &v, 16);
    return q;
}
__float128 from_real16(const mivor_real16& q) {
    __float128 v;
    std::memcpy(&v, &q, 16);
    return v;
}

std::atomic<std::uint64_t> g_reports{0};
void counting_handler(void*) {
    ++g_reports;
    jwe_lca.retry_word = 0;
}

// One thread's MPFR scratch.
struct Scratch {
    mpfr_t x, y, ref, ours, diff, rounded, unit, t;
    Scratch() {
        mpfr_inits2(300, x, y, ref, ours, diff, unit, t, (mpfr_ptr)0);
        mpfr_init2(rounded, 113);
    }
    ~Scratch() { mpfr_clears(x, y, ref, ours, diff, rounded, unit, t, (mpfr_ptr)0); }
};

// A binary128 x = M 2^(E-112) whose distance to a multiple of unit is among
// the smallest for its binade: M the denominator of a convergent of
// frac(2^(E-112)/unit) brought into [2^112, 2^113) by a small multiple.
__float128 hard_reduction(Random& r, int E, Scratch& s) {
    const mpfr_prec_t prec = (E > 0 ? E : 0) + 600;
    mpfr_t a;
    mpfr_init2(a, prec);
    mpfr_set_prec(s.t, prec);
    mpfr_set(s.t, s.unit, MPFR_RNDN);
    mpfr_ui_div(a, 1, s.t, MPFR_RNDN);
    mpfr_mul_2si(a, a, E - 112, MPFR_RNDN);
    mpfr_frac(a, a, MPFR_RNDN);
    // a = P / 2^N.
    mpz_t P, Q, h0, h1, q0, q1, t, num, den;
    mpz_inits(P, Q, h0, h1, q0, q1, t, num, den, (mpz_ptr)0);
    mpfr_mul_2ui(a, a, 500, MPFR_RNDN);
    mpfr_get_z(P, a, MPFR_RNDN);
    mpz_set_ui(Q, 1);
    mpz_mul_2exp(Q, Q, 500);
    // Convergents of P/Q: q_{n} = a_n q_{n-1} + q_{n-2}.
    mpz_set(num, P);
    mpz_set(den, Q);
    mpz_set_ui(q0, 0);  // q_{-2}... q_{-1}
    mpz_set_ui(q1, 1);
    mpz_t limit, best;
    mpz_inits(limit, best, (mpz_ptr)0);
    mpz_set_ui(limit, 1);
    mpz_mul_2exp(limit, limit, 113);
    mpz_set_ui(best, 1);
    // Swap to Q/P form: continued fraction of P/Q starts with a0 = 0.
    while (mpz_sgn(num) != 0) {
        mpz_fdiv_qr(t, h0, den, num);  // den = t num + h0
        // next denominator: t q1 + q0
        mpz_mul(h1, t, q1);
        mpz_add(h1, h1, q0);
        if (mpz_cmp(h1, limit) >= 0) break;
        mpz_set(q0, q1);
        mpz_set(q1, h1);
        mpz_set(best, h1);
        mpz_set(den, num);
        mpz_set(num, h0);
    }
    // Into [2^112, 2^113).
    mpz_t low;
    mpz_init(low);
    mpz_set_ui(low, 1);
    mpz_mul_2exp(low, low, 112);
    mpz_cdiv_q(t, low, best);
    if (mpz_sgn(t) == 0) mpz_set_ui(t, 1);
    mpz_mul(best, best, t);
    while (mpz_cmp(best, limit) >= 0) mpz_sub(best, best, q1);
    mpfr_set_prec(s.t, 300);
    mpfr_set_z_2exp(s.t, best, E - 112, MPFR_RNDN);
    __float128 x = mpfr_get_float128(s.t, MPFR_RNDN);
    const int j = static_cast<int>(r.next() % 9) - 4;
    for (int i = 0; i < j; ++i) x = nextafterq(x, HUGE_VALQ);
    for (int i = 0; i > j; --i) x = nextafterq(x, -HUGE_VALQ);
    mpz_clears(P, Q, h0, h1, q0, q1, t, num, den, limit, best, low, (mpz_ptr)0);
    mpfr_clear(a);
    return x;
}

__float128 sample(const Range& g, Random& r, Scratch& s) {
    switch (g.spread) {
        case Spread::Uniform: {
            const __float128 lo = g.lo, hi = g.hi;
            return lo + r.unit128() * (hi - lo);
        }
        case Spread::LogUniform: {
            const double e = g.lo + r.unit() * (g.hi - g.lo);
            const int E = static_cast<int>(e >= 0 ? e : e - 1);
            const __float128 m = 1 + r.unit128();
            __float128 x = ldexpq(m, E);
            if (g.both_signs && (r.next() & 1)) x = -x;
            return x;
        }
        case Spread::NearMultiple: {
            double k;
            if (g.hi <= 1024) k = g.lo + static_cast<double>(r.next() % static_cast<std::uint64_t>(g.hi - g.lo + 1));
            else k = std::floor(std::exp2(10 + r.unit() * (std::log2(g.hi) - 10)));
            if (g.both_signs && (r.next() & 1)) k = -k;
            mpfr_mul_d(s.t, s.unit, k, MPFR_RNDN);
            __float128 x = mpfr_get_float128(s.t, MPFR_RNDN);
            int j = static_cast<int>(r.next() % 129) - 64;
            if (j == 0 && !g.exact_too) j = 1;
            for (int i = 0; i < j; ++i) x = nextafterq(x, HUGE_VALQ);
            for (int i = 0; i > j; --i) x = nextafterq(x, -HUGE_VALQ);
            return x;
        }
        case Spread::Short: {
            const int e = static_cast<int>(g.lo + r.next() % static_cast<std::uint64_t>(g.hi - g.lo + 1));
            __float128 x = ldexpq(static_cast<__float128>(2 * (r.next() % 128) + 1), e);
            if (g.both_signs && (r.next() & 1)) x = -x;
            return x;
        }
        case Spread::BelowOne: {
            const double t = g.lo + r.unit() * (g.hi - g.lo);
            __float128 x = 1 - ldexpq(1 + r.unit128(), -static_cast<int>(t) - 1);
            if (g.both_signs && (r.next() & 1)) x = -x;
            return x;
        }
        case Spread::HardReduction: {
            const int E = static_cast<int>(g.lo + r.next() % static_cast<std::uint64_t>(g.hi - g.lo + 1));
            __float128 x = hard_reduction(r, E, s);
            if (g.both_signs && (r.next() & 1)) x = -x;
            return x;
        }
    }
    return 0;
}

struct Stats {
    std::uint64_t count = 0, correct = 0, flushed = 0, mismatched = 0, reported = 0;
    double max_ulp = 0, sum_ulp = 0;
    double max_abs_log2 = -10000;  // largest absolute error, as a power of two
    __float128 worst_x = 0, worst_y = 0;
    void merge(const Stats& o) {
        count += o.count;
        correct += o.correct;
        flushed += o.flushed;
        mismatched += o.mismatched;
        reported += o.reported;
        sum_ulp += o.sum_ulp;
        if (o.max_abs_log2 > max_abs_log2) max_abs_log2 = o.max_abs_log2;
        if (o.max_ulp > max_ulp) {
            max_ulp = o.max_ulp;
            worst_x = o.worst_x;
            worst_y = o.worst_y;
        }
    }
};

void measure_one(const Reference& ref, const mivor::exports::Row& row, __float128 x, __float128 y, Scratch& s,
                 Stats& st) {
    mivor::exports::Value args[2] = {}, result{};
    args[0].r16 = to_real16(x);
    args[1].r16 = to_real16(y);
    const std::uint64_t before = g_reports.load();
    row.thunk(args, result);
    if (g_reports.load() != before) {
        ++st.reported;
        return;
    }
    const __float128 ours = from_real16(result.r16);
    mpfr_set_float128(s.x, x, MPFR_RNDN);
    if (ref.ref2) {
        mpfr_set_float128(s.y, y, MPFR_RNDN);
        ref.ref2(s.ref, s.x, s.y, MPFR_RNDN);
    } else {
        ref.ref1(s.ref, s.x, MPFR_RNDN);
    }
    ++st.count;
    const bool ours_special = isnanq(ours) || isinfq(ours);
    if (!mpfr_number_p(s.ref) || ours_special) {
        const bool same = (mpfr_nan_p(s.ref) && isnanq(ours)) ||
                          (mpfr_inf_p(s.ref) && isinfq(ours) && (mpfr_sgn(s.ref) < 0) == (ours < 0));
        if (same) ++st.correct;
        else ++st.mismatched;
        return;
    }
    if (mpfr_zero_p(s.ref)) {
        if (ours == 0) ++st.correct;
        else ++st.mismatched;
        return;
    }
    const mpfr_exp_t e = mpfr_get_exp(s.ref);  // |ref| in [2^(e-1), 2^e)
    if (e - 1 < -16382) {
        ++st.flushed;
        return;
    }
    mpfr_set_float128(s.ours, ours, MPFR_RNDN);
    mpfr_sub(s.diff, s.ours, s.ref, MPFR_RNDN);
    mpfr_abs(s.diff, s.diff, MPFR_RNDN);
    if (!mpfr_zero_p(s.diff)) {
        mpfr_set(s.t, s.diff, MPFR_RNDN);
        mpfr_log2(s.t, s.t, MPFR_RNDN);
        const double a = mpfr_get_d(s.t, MPFR_RNDN);
        if (a > st.max_abs_log2) st.max_abs_log2 = a;
    }
    mpfr_mul_2si(s.diff, s.diff, 112 - (e - 1), MPFR_RNDN);
    const double err = mpfr_get_d(s.diff, MPFR_RNDU);
    mpfr_set(s.rounded, s.ref, MPFR_RNDN);
    if (mpfr_equal_p(s.rounded, s.ours)) ++st.correct;
    st.sum_ulp += err;
    if (err > st.max_ulp) {
        st.max_ulp = err;
        st.worst_x = x;
        st.worst_y = y;
    }
}

std::string text(__float128 v) {
    char buf[64];
    quadmath_snprintf(buf, sizeof buf, "%.36Qg", v);
    return buf;
}

void print_absolute(const char* label, const Stats& st) {
    std::printf("  %-44s %8" PRIu64 "  absolute error at most 2^%.1f (stated there instead of ulps)", label,
                st.count, st.max_abs_log2);
    if (st.mismatched) std::printf("  NaN/Inf mismatches: %" PRIu64, st.mismatched);
    if (st.reported) std::printf("  reports: %" PRIu64, st.reported);
    std::printf("\n");
}

void print_stats(const char* label, const Stats& st, bool two) {
    const double share = st.count ? 100.0 * static_cast<double>(st.correct) / static_cast<double>(st.count - st.flushed) : 0;
    std::printf("  %-44s %8" PRIu64 "  max %.4f ulp  mean %.4f  correctly rounded %.4f%%", label, st.count, st.max_ulp,
                st.count ? st.sum_ulp / static_cast<double>(st.count) : 0.0, share);
    if (st.flushed) std::printf("  below 2^-16382: %" PRIu64, st.flushed);
    if (st.mismatched) std::printf("  NaN/Inf mismatches: %" PRIu64, st.mismatched);
    if (st.reported) std::printf("  reports: %" PRIu64, st.reported);
    std::printf("\n");
    if (st.max_ulp > 0) {
        std::printf("      worst at x = %s", text(st.worst_x).c_str());
        if (two) std::printf(", %s", text(st.worst_y).c_str());
        std::printf("\n");
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::uint64_t count = 100000, hard = 0, seed = 1;
    unsigned threads = 2;
    bool check = false;
    std::vector<std::string> names;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--count" && i + 1 < argc) count = std::strtoull(argv[++i], nullptr, 10);
        else if (a == "--hard" && i + 1 < argc) hard = std::strtoull(argv[++i], nullptr, 10);
        else if (a == "--threads" && i + 1 < argc) threads = static_cast<unsigned>(std::strtoul(argv[++i], nullptr, 10));
        else if (a == "--seed" && i + 1 < argc) seed = std::strtoull(argv[++i], nullptr, 10);
        else if (a == "--check") check = true;
        else names.push_back(a);
    }
    if (hard == 0) hard = count / 10;
    jwe_lca.handler = &counting_handler;
    jwe_lca.handler_enabled = 1;
    jwe_lca.suppress = 0;
    jwe_lca.ieee_results = 1;
    bool bad = false;
    for (const Reference& ref : references()) {
        if (!names.empty() && std::find(names.begin(), names.end(), std::string(ref.name)) == names.end()) continue;
        const mivor::exports::Row* row = mivor::exports::find(ref.name);
        if (!row || !row->thunk) continue;
        std::printf("%.*s\n", static_cast<int>(ref.name.size()), ref.name.data());
        Stats all;
        auto run = [&](const Range& g, std::uint64_t n, std::uint64_t salt) {
            std::vector<Stats> parts(threads);
            std::vector<std::thread> pool;
            for (unsigned t = 0; t < threads; ++t) {
                pool.emplace_back([&, t] {
                    Scratch s;
                    if (g.unit_constant) {
                        g.unit_constant(s.unit, MPFR_RNDN);
                        mpfr_mul_d(s.unit, s.unit, g.unit_scale, MPFR_RNDN);
                    } else {
                        mpfr_set_d(s.unit, g.unit_scale, MPFR_RNDN);
                    }
                    Random r{seed * 0x1000193u + salt * 0x9E37u + t};
                    for (std::uint64_t i = t; i < n; i += threads) {
                        const __float128 x = sample(g, r, s);
                        __float128 y = 0;
                        if (ref.ref2) {
                            y = g.lo2 + r.unit128() * (static_cast<__float128>(g.hi2) - g.lo2);
                            if (r.next() & 1) y = -y;
                        }
                        measure_one(ref, *row, x, y, s, parts[t]);
                    }
                });
            }
            for (auto& th : pool) th.join();
            Stats st;
            for (const Stats& p : parts) st.merge(p);
            return st;
        };
        std::uint64_t salt = 1;
        for (const Range& g : ref.random) {
            const Stats st = run(g, count / ref.random.size(), salt++);
            print_stats(std::string(g.label).c_str(), st, ref.ref2 != nullptr);
            all.merge(st);
        }
        for (const Range& g : ref.hard) {
            const Stats st = run(g, hard, salt++);
            if (g.absolute) {
                print_absolute(std::string(g.label).c_str(), st);
                if (st.mismatched || st.reported) bad = true;
                continue;
            }
            print_stats(std::string(g.label).c_str(), st, ref.ref2 != nullptr);
            all.merge(st);
        }
        print_stats("all", all, ref.ref2 != nullptr);
        if (all.mismatched || all.reported) bad = true;
        if (check) {
            const double share = 100.0 * static_cast<double>(all.correct) / static_cast<double>(all.count - all.flushed);
            if (all.max_ulp > ref.max_ulp || share < ref.min_correct) {
                std::printf("  FAILS its bound: max %.3f ulp, %.2f%% correctly rounded\n", ref.max_ulp, ref.min_correct);
                bad = true;
            }
        }
    }
    return bad ? 1 : 0;
}
