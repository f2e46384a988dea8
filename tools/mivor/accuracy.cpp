// `mivor accuracy`: ulp errors against MPFR (see accuracy.h for the usage).
//
// Error measure.  For a result v and the exact value y (MPFR, 160 bits),
// the error is |v - y| / ulp(y), with ulp(y) = 2^(E - p) for y in
// [2^(E-1), 2^E), p the precision of the result (24, 53, or 64 for an
// extended result), and never below the subnormal spacing of the format
// (2^-149, 2^-1074; 2^-16445 for extended).  "Correctly rounded" means v
// equals y rounded to nearest in the result's format.  A NaN or infinity
// where MPFR gives a finite value (or the other way round) is a mismatch,
// counted apart and shown with its first argument.
//
// The calls go through the export registry's thunks, as compiled code would
// call the exports; error reports are declined by a silent handler and
// counted (the reference rows keep their domains clear of them).
#include "accuracy.h"

#include <mpfr.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "accuracy_refs.h"
#include "exports/registry.h"
#include "mivor/control_area.h"

namespace mivor::accuracy {
namespace {

using exports::Value;

constexpr mpfr_prec_t kWorkingPrecision = 160;

// ---- result formats ----------------------------------------------------

struct Format {
    const char* label;
    int precision;     // p
    long min_ulp_exp;  // ulp never below 2^min_ulp_exp
};
constexpr Format kFloat{"REAL(4) ulps", 24, -149};
constexpr Format kDouble{"REAL(8) ulps", 53, -1074};
constexpr Format kExtended{"ulps of a 64-bit significand", 64, -16445};

// ---- statistics of one figure -----------------------------------------

struct Figure {
    double max = -1.0;
    double max_arg = 0.0;
    double sum = 0.0;
    std::uint64_t count = 0;
    std::uint64_t correct = 0;
    std::uint64_t mismatches = 0;
    double mismatch_arg = 0.0;

    void add(double err, bool correctly_rounded, double x) {
        ++count;
        sum += err;
        correct += correctly_rounded;
        if (err > max) {
            max = err;
            max_arg = x;
        }
    }
    void mismatch(double x) {
        if (mismatches++ == 0) mismatch_arg = x;
    }
    void merge(const Figure& o) {
        if (o.max > max) {
            max = o.max;
            max_arg = o.max_arg;
        }
        sum += o.sum;
        count += o.count;
        correct += o.correct;
        if (mismatches == 0 && o.mismatches != 0) mismatch_arg = o.mismatch_arg;
        mismatches += o.mismatches;
    }
};

// What one function's run gathers: the primary figure (the result as
// returned), for r8x also the result rounded to REAL(8).
struct Tally {
    Figure primary, as_double;
    void merge(const Tally& o) {
        primary.merge(o.primary);
        as_double.merge(o.as_double);
    }
};

// ---- the silent handler --------------------------------------------------

std::atomic<std::uint64_t> g_reports{0};

void decline(void*) {
    g_reports.fetch_add(1, std::memory_order_relaxed);
    jwe_lca.retry_word = 0;
}

class QuietReports {
public:
    QuietReports() {
        std::memcpy(&saved_, &jwe_lca, sizeof saved_);
        jwe_lca.handler = &decline;
        jwe_lca.handler_enabled = 1;
        jwe_lca.suppress = 0;
        jwe_lca.ieee_results = 1;
    }
    ~QuietReports() { std::memcpy(&jwe_lca, &saved_, sizeof saved_); }
    QuietReports(const QuietReports&) = delete;
    QuietReports& operator=(const QuietReports&) = delete;

private:
    jwe_control_area saved_;
};

// ---- arguments ---------------------------------------------------------

// Order-preserving keys of the representable numbers (-0 just below +0), so
// that uniform keys are uniform bit patterns and key +- n is n ulps away.
template <class T> struct Repr;
template <> struct Repr<double> {
    using U = std::uint64_t;
    static constexpr U kTop = U{1} << 63;
    static U key(double x) {
        U b;
        std::memcpy(&b, &x, 8);
        return (b & kTop) ? ~b : (b | kTop);
    }
    static double from_key(U k) {
        const U b = (k & kTop) ? (k & ~kTop) : ~k;
        double x;
        std::memcpy(&x, &b, 8);
        return x;
    }
    static constexpr double kMinSubnormal = 0x1p-1074;
};
template <> struct Repr<float> {
    using U = std::uint32_t;
    static constexpr U kTop = U{1} << 31;
    static U key(float x) {
        U b;
        std::memcpy(&b, &x, 4);
        return (b & kTop) ? ~b : (b | kTop);
    }
    static float from_key(U k) {
        const U b = (k & kTop) ? (k & ~kTop) : ~k;
        float x;
        std::memcpy(&x, &b, 4);
        return x;
    }
    static constexpr double kMinSubnormal = 0x1p-149;
};

// Arguments of the input kind T (returned as double, exactly), within the
// domain [lo, hi].
template <class T> class Sampler {
public:
    Sampler(const Reference& ref, std::uint64_t seed) : ref_(ref), rng_(seed) {
        mpfr_inits2(kWorkingPrecision, unit_, tmp_, static_cast<mpfr_ptr>(nullptr));
    }
    ~Sampler() { mpfr_clears(unit_, tmp_, static_cast<mpfr_ptr>(nullptr)); }
    Sampler(const Sampler&) = delete;
    Sampler& operator=(const Sampler&) = delete;

    bool in_domain(double x) const { return x >= ref_.lo && x <= ref_.hi; }

    // Uniform over the representable numbers of [lo, hi] (clipped to T).
    double bits(double lo, double hi) {
        using R = Repr<T>;
        const auto a = R::key(clip(lo)), b = R::key(clip(hi));
        if (b < a) return R::from_key(a);
        std::uniform_int_distribution<typename R::U> d(a, b);
        return R::from_key(d(rng_));
    }

    // Magnitude log-uniform in [lo, hi], 0 < lo <= hi; a random sign if asked.
    double log_uniform(double lo, double hi, bool both_signs) {
        lo = std::max(lo, Repr<T>::kMinSubnormal);
        std::uniform_real_distribution<long double> d(std::log2l(lo), std::log2l(hi));
        double m = static_cast<double>(static_cast<T>(std::exp2l(d(rng_))));
        m = std::min(std::max(m, clip(lo)), clip(hi));
        if (both_signs && (rng_() & 1)) m = -m;
        return m;
    }

    // One argument of the domain: a log-uniform magnitude or a uniform bit
    // pattern, alternately.
    double random(std::uint64_t i) {
        if (i % 2 == 0) return bits(ref_.lo, ref_.hi);
        const double lo = ref_.lo, hi = ref_.hi;
        for (int attempt = 0; attempt < 64; ++attempt) {
            double x;
            if (lo >= 0) x = log_uniform(std::max(lo, Repr<T>::kMinSubnormal), hi, false);
            else if (hi <= 0) x = -log_uniform(std::max(-hi, Repr<T>::kMinSubnormal), -lo, false);
            else x = log_uniform(Repr<T>::kMinSubnormal, std::max(-lo, hi), true);
            if (in_domain(x)) return x;
        }
        return bits(lo, hi);
    }

    // A value of a hard range, unclipped: the ratio of a two-argument one.
    double ratio(const Range& r) {
        switch (r.spread) {
            case Spread::Bits: return bits(r.lo, r.hi);
            case Spread::LogUniform: return log_uniform(r.lo, r.hi, r.both_signs);
            default: return near_multiple(r);
        }
    }

    // The argument of kind T nearest v, or NaN outside the domain.
    double in_kind(double v) const {
        const double x = static_cast<double>(static_cast<T>(v));
        return in_domain(x) ? x : std::nan("");
    }

    // One argument of a hard range, or NaN when it falls outside the domain.
    double hard(const Range& r) {
        double x;
        switch (r.spread) {
            case Spread::Bits: x = bits(r.lo, r.hi); break;
            case Spread::LogUniform: x = log_uniform(r.lo, r.hi, r.both_signs); break;
            case Spread::NearMultiples: x = near_multiple(r); break;
            default: x = 0; break;
        }
        return in_domain(x) ? x : std::nan("");
    }

private:
    double clip(double v) const {
        const double big = static_cast<double>(std::numeric_limits<T>::max());
        return std::min(std::max(v, -big), big);
    }

    double near_multiple(const Range& r) {
        std::uniform_int_distribution<std::int64_t> k(static_cast<std::int64_t>(r.lo), static_cast<std::int64_t>(r.hi));
        if (r.unit_constant) {
            r.unit_constant(unit_, MPFR_RNDN);
            mpfr_mul_d(unit_, unit_, r.unit_scale, MPFR_RNDN);
        } else {
            mpfr_set_d(unit_, r.unit_scale, MPFR_RNDN);
        }
        mpfr_mul_si(tmp_, unit_, static_cast<long>(k(rng_)), MPFR_RNDN);
        const T x = sizeof(T) == 4 ? static_cast<T>(mpfr_get_flt(tmp_, MPFR_RNDN))
                                   : static_cast<T>(mpfr_get_d(tmp_, MPFR_RNDN));
        using R = Repr<T>;
        std::uniform_int_distribution<int> step(-64, 64);
        return R::from_key(R::key(x) + static_cast<typename R::U>(static_cast<std::int64_t>(step(rng_))));
    }

    const Reference& ref_;
    std::mt19937_64 rng_;
    mpfr_t unit_, tmp_;
};

// ---- measuring one argument --------------------------------------------

class Judge {
public:
    Judge(const Reference& ref, const exports::Row& row) : ref_(ref), row_(row) {
        mpfr_inits2(kWorkingPrecision, x_, x2_, y_, d_, static_cast<mpfr_ptr>(nullptr));
    }
    ~Judge() { mpfr_clears(x_, x2_, y_, d_, static_cast<mpfr_ptr>(nullptr)); }
    Judge(const Judge&) = delete;
    Judge& operator=(const Judge&) = delete;

    // Calls the export on x (and x2, the second argument of a
    // two-argument function); returns the result.
    Value call(double x, double x2 = 0.0) {
        Value args[2];
        std::memset(args, 0, sizeof args);
        if (ref_.input == "r4") {
            args[0].r4 = static_cast<float>(x);
            args[1].r4 = static_cast<float>(x2);
        } else {
            args[0].r8 = x;
            args[1].r8 = x2;
        }
        Value result;
        std::memset(&result, 0, sizeof result);
        row_.thunk(args, result);
        return result;
    }

    // The measured value of a result: itself, or one value of a pair.
    long double value_of(const Value& v) const {
        if (row_.result == "r4") return v.r4;
        if (row_.result == "r8") return v.r8;
        if (row_.result == "c4") return ref_.part == 0 ? v.c4.re : v.c4.im;
        if (row_.result == "c8") return ref_.part == 0 ? v.c8.re : v.c8.im;
        return v.r8x;
    }

    void measure(double x, Tally& t, double x2 = 0.0) {
        const Value v = call(x, x2);
        set_reference(x, x2);
        if (row_.result == "r4" || row_.result == "c4") {
            judge(value_of(v), kFloat, x, t.primary);
        } else if (row_.result == "r8" || row_.result == "c8") {
            judge(value_of(v), kDouble, x, t.primary);
        } else {  // r8x
            judge(v.r8x, kExtended, x, t.primary);
            judge(static_cast<double>(v.r8x), kDouble, x, t.as_double);
        }
    }

    void set_reference(double x, double x2 = 0.0) {
        mpfr_set_d(x_, x, MPFR_RNDN);
        if (ref_.mpfr2) {
            mpfr_set_d(x2_, x2, MPFR_RNDN);
            ref_.mpfr2(y_, x_, x2_, MPFR_RNDN);
        } else {
            ref_.mpfr(y_, x_, MPFR_RNDN);
        }
    }

    // Judges v against the current reference.
    void judge(long double v, const Format& f, double x, Figure& fig) {
        if (mpfr_nan_p(y_)) {
            if (std::isnan(v)) fig.add(0.0, true, x);
            else fig.mismatch(x);
            return;
        }
        const long double rounded = round_to(f);
        if (std::isnan(v) || std::isinf(v) || std::isinf(rounded)) {
            if (v == rounded) fig.add(0.0, true, x);  // the same infinity
            else fig.mismatch(x);
            return;
        }
        fig.add(ulp_error(v, f), v == rounded, x);
    }

    // |v - y| / ulp(y) in the format f.
    double ulp_error(long double v, const Format& f) {
        mpfr_set_ld(d_, v, MPFR_RNDN);
        mpfr_sub(d_, d_, y_, MPFR_RNDN);
        mpfr_abs(d_, d_, MPFR_RNDN);
        long e = mpfr_zero_p(y_) ? f.min_ulp_exp : mpfr_get_exp(y_) - f.precision;
        e = std::max(e, f.min_ulp_exp);
        mpfr_mul_2si(d_, d_, -e, MPFR_RNDN);
        return mpfr_get_d(d_, MPFR_RNDN);
    }

    long double round_to(const Format& f) const {
        if (f.precision == 24) return mpfr_get_flt(y_, MPFR_RNDN);
        if (f.precision == 53) return mpfr_get_d(y_, MPFR_RNDN);
        return mpfr_get_ld(y_, MPFR_RNDN);
    }

    const Reference& reference() const { return ref_; }

private:
    const Reference& ref_;
    const exports::Row& row_;
    mpfr_t x_, x2_, y_, d_;
};

// ---- printing ------------------------------------------------------------

void print_argument(double x, bool single) {
    if (single) std::printf("%a (%.9g)", x, x);
    else std::printf("%a (%.17g)", x, x);
}

void print_figure(const char* label, const Figure& f, bool single) {
    std::printf("  %-30s max %.6g at x = ", label, f.max < 0 ? 0.0 : f.max);
    print_argument(f.max_arg, single);
    std::printf(", mean %.4g, correctly rounded %.4f%% (%" PRIu64 " not)\n",
                f.count ? f.sum / static_cast<double>(f.count) : 0.0,
                f.count ? 100.0 * static_cast<double>(f.correct) / static_cast<double>(f.count) : 0.0,
                f.count - f.correct);
    if (f.mismatches) {
        std::printf("  %-30s %" PRIu64 " NaN/Inf mismatches, first at x = ", "", f.mismatches);
        print_argument(f.mismatch_arg, single);
        std::printf("\n");
    }
}

// ---- runs ------------------------------------------------------------------

struct Options {
    std::uint64_t count = 100000;
    std::uint64_t seed = 1;
    bool exhaustive = false;
    unsigned threads = 2;
    bool ranges = true;
    std::vector<std::string_view> names;
};

template <class T> Tally sampled_run(const Reference& ref, const exports::Row& row, const Options& o,
                                     std::vector<std::pair<std::string_view, Figure>>& per_range) {
    Judge judge(ref, row);
    Sampler<T> sampler(ref, o.seed);
    Tally total;
    const bool two = ref.mpfr2 != nullptr;
    for (std::uint64_t i = 0; i < o.count; ++i) {
        const double x = sampler.random(i);
        if (two) judge.measure(x, total, sampler.random(i / 2));
        else judge.measure(x, total);
    }
    const std::uint64_t per = std::max<std::uint64_t>(1000, o.count / 50);
    for (const Range& r : ref.hard) {
        Tally t;
        for (std::uint64_t i = 0; i < per; ++i) {
            if (two) {
                const double x2 = sampler.random(i);
                const double x = sampler.in_kind(x2 * sampler.ratio(r));
                if (!std::isnan(x) && x != 0.0 && x2 != 0.0) judge.measure(x, t, x2);  // a zero y: the sign rule
                continue;
            }
            const double x = sampler.hard(r);
            if (!std::isnan(x)) judge.measure(x, t);
        }
        per_range.emplace_back(r.label, row.result == "r8x" ? t.as_double : t.primary);
        total.merge(t);
    }
    return total;
}

// Every REAL(4) argument in the domain, in `threads` interleaved slices.
// With a fast reference of relative error 2^-b, the error in ulps is taken
// from it (off by at most 2^(24-b) ulp) and the correct rounding decided by
// it unless y(1 -+ 2^-b) round to different floats; then MPFR decides.
Tally exhaustive_run(const Reference& ref, const exports::Row& row, unsigned threads, std::uint64_t& undecided) {
    std::vector<Tally> tallies(threads);
    std::vector<std::uint64_t> fallbacks(threads, 0);
    auto work = [&](unsigned slice) {
        Judge judge(ref, row);
        Tally& t = tallies[slice];
        const long double delta = ref.fast ? std::ldexp(1.0L, -ref.fast_bound_log2) : 0.0L;
        constexpr std::uint64_t kChunk = 1 << 16;
        for (std::uint64_t start = slice * kChunk; start < (std::uint64_t{1} << 32); start += threads * kChunk) {
            for (std::uint64_t b = start; b < start + kChunk; ++b) {
                const std::uint32_t bits32 = static_cast<std::uint32_t>(b);
                float xf;
                std::memcpy(&xf, &bits32, 4);
                const double x = xf;
                if (!(x >= ref.lo && x <= ref.hi)) continue;
                if (ref.fast && (row.result == "r4" || row.result == "c4")) {
                    const long double r = ref.fast(x);
                    if (std::isfinite(r) && r != 0) {
                        const float lo = static_cast<float>(r * (1 - delta)), hi = static_cast<float>(r * (1 + delta));
                        if (lo == hi && std::isfinite(lo)) {
                            const float v = static_cast<float>(judge.value_of(judge.call(x)));
                            int e;
                            std::frexp(r, &e);  // r in [2^(e-1), 2^e)
                            const long double ulp = std::ldexp(1.0L, std::max(e - 24, -149));
                            t.primary.add(static_cast<double>(std::fabs(v - r) / ulp), v == lo, x);
                            continue;
                        }
                    }
                    ++fallbacks[slice];
                }
                judge.measure(x, t);
            }
        }
    };
    std::vector<std::thread> pool;
    for (unsigned i = 0; i < threads; ++i) pool.emplace_back(work, i);
    for (auto& th : pool) th.join();
    Tally total;
    for (const Tally& t : tallies) total.merge(t);
    undecided = 0;
    for (auto f : fallbacks) undecided += f;
    return total;
}

int usage() {
    std::fprintf(stderr,
                 "usage: mivor accuracy [--count N] [--seed S] [--exhaustive] [--threads T] [--no-ranges] [NAME...]\n"
                 "       mivor accuracy --list\n");
    return 2;
}

}  // namespace

int run(int argc, char** argv) {
    Options o;
    for (int i = 1; i < argc; ++i) {
        const std::string_view a = argv[i];
        if (a == "--count" && i + 1 < argc) o.count = std::strtoull(argv[++i], nullptr, 0);
        else if (a == "--seed" && i + 1 < argc) o.seed = std::strtoull(argv[++i], nullptr, 0);
        else if (a == "--threads" && i + 1 < argc) o.threads = std::max(1u, static_cast<unsigned>(std::atoi(argv[++i])));
        else if (a == "--exhaustive") o.exhaustive = true;
        else if (a == "--no-ranges") o.ranges = false;
        else if (a == "--list") {
            // The exports measured against MPFR (the coverage check reads this).
            for (const Reference& r : references())
                std::printf("%.*s\n", static_cast<int>(r.name.size()), r.name.data());
            return 0;
        } else if (a.starts_with("--")) return usage();
        else o.names.push_back(a);
    }
    std::vector<const Reference*> chosen;
    if (o.names.empty()) {
        for (const Reference& r : references()) {
            const exports::Row* row = exports::find(r.name);
            if (row && row->thunk) chosen.push_back(&r);
        }
    } else {
        for (std::string_view n : o.names) {
            const std::vector<const Reference*> refs = find_references(n);
            const exports::Row* row = exports::find(n);
            if (refs.empty()) {
                std::fprintf(stderr, "mivor accuracy: no reference for %.*s\n", static_cast<int>(n.size()), n.data());
                return 2;
            }
            if (!row || !row->thunk) {
                std::printf("%.*s: not implemented\n", static_cast<int>(n.size()), n.data());
                continue;
            }
            chosen.insert(chosen.end(), refs.begin(), refs.end());
        }
    }

    QuietReports quiet;
    int status = 0;
    for (const Reference* ref : chosen) {
        const exports::Row& row = *exports::find(ref->name);
        const bool single = ref->input == "r4";
        const bool two = ref->mpfr2 != nullptr;
        const std::string args = two ? std::string(ref->input) + "," + std::string(ref->input) : std::string(ref->input);
        const bool pair = row.result == "c4" || row.result == "c8";
        if (row.args != args || (row.result != "r4" && row.result != "r8" && row.result != "r8x" && !pair) ||
            pair != (ref->part >= 0)) {
            std::printf("%.*s: kinds %.*s -> %.*s not measurable here\n", static_cast<int>(ref->name.size()),
                        ref->name.data(), static_cast<int>(row.args.size()), row.args.data(),
                        static_cast<int>(row.result.size()), row.result.data());
            continue;
        }
        const auto t0 = std::chrono::steady_clock::now();
        const std::uint64_t reports_before = g_reports.load();
        Tally tally;
        std::vector<std::pair<std::string_view, Figure>> per_range;
        std::uint64_t undecided = 0;
        std::string how;
        if (o.exhaustive) {
            if (!single || two) {
                std::printf("%.*s: --exhaustive is for one REAL(4) argument; sampling instead\n",
                            static_cast<int>(ref->name.size()), ref->name.data());
            }
        }
        if (o.exhaustive && single && !two) {
            tally = exhaustive_run(*ref, row, o.threads, undecided);
            how = "every REAL(4) argument in the domain";
        } else {
            Options oo = o;
            Reference r = *ref;
            if (!o.ranges) r.hard = {};
            tally = single ? sampled_run<float>(r, row, oo, per_range) : sampled_run<double>(r, row, oo, per_range);
            how = std::to_string(o.count) + " random arguments + " + std::to_string(per_range.size()) +
                  " hard ranges";
        }
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        const std::string title = ref->label.empty() ? std::string(ref->name)
                                                      : std::string(ref->name) + " [" + std::string(ref->label) + "]";
        std::printf("%s (%.*s -> %.*s): %" PRIu64 " arguments (%s), %.1f s\n", title.c_str(),
                    static_cast<int>(row.args.size()), row.args.data(),
                    static_cast<int>(row.result.size()), row.result.data(), tally.primary.count + tally.primary.mismatches,
                    how.c_str(), seconds);
        if (row.result == "r8x") {
            print_figure("extended, 64-bit ulps:", tally.primary, single);
            print_figure("rounded to REAL(8), ulps:", tally.as_double, single);
        } else {
            print_figure(single ? "REAL(4) ulps:" : "REAL(8) ulps:", tally.primary, single);
        }
        if (!per_range.empty())
            std::printf("  hard ranges, max in %s:\n", single ? "REAL(4) ulps" : "REAL(8) ulps");
        for (const auto& [label, fig] : per_range) {
            std::printf("    %-44.*s max %.4g at ", static_cast<int>(label.size()), label.data(),
                        fig.max < 0 ? 0.0 : fig.max);
            print_argument(fig.max_arg, single);
            std::printf("\n");
        }
        if (undecided) std::printf("  (%" PRIu64 " arguments decided by MPFR)\n", undecided);
        const std::uint64_t reports = g_reports.load() - reports_before;
        if (reports) std::printf("  %" PRIu64 " error reports (declined)\n", reports);
        if (tally.primary.mismatches || tally.as_double.mismatches) status = 1;
        std::fflush(stdout);
    }
    return status;
}

}  // namespace mivor::accuracy

int mivor_accuracy_main(int argc, char** argv) { return mivor::accuracy::run(argc, argv); }
