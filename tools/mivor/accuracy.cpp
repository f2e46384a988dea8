// `mivor accuracy`: ulp errors against MPFR (see accuracy.h for the usage,
// accuracy_core.h for the error measure).
//
// The calls go through the export registry's thunks, as compiled code would
// call the exports; error reports are declined by a silent handler and
// counted (the references keep their domains clear of them).
#include "accuracy.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "accuracy_core.h"
#include "accuracy_refs.h"
#include "exports/registry.h"
#include "mivor/control_area.h"

namespace mivor::accuracy {
namespace {

// ---- the silent handler --------------------------------------------------

std::atomic<std::uint64_t> g_reports{0};
thread_local std::uint64_t t_reports = 0;

void decline(void*) {
    g_reports.fetch_add(1, std::memory_order_relaxed);
    ++t_reports;
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

// ---- options ------------------------------------------------------------------

struct Options {
    std::uint64_t count = 100000;
    std::uint64_t seed = 1;
    bool exhaustive = false;
    unsigned threads = 2;
    std::uint64_t step = 1;  // --exhaustive: every step-th bit pattern
    bool ranges = true;
    double bound = kUnbounded;
    std::vector<std::string_view> names;
};

int usage() {
    std::fprintf(stderr,
                 "usage: mivor accuracy [--count N] [--seed S] [--no-ranges] [--bound B] [NAME...]\n"
                 "       mivor accuracy --exhaustive [--threads T] [--step K] [--bound B] NAME...\n"
                 "       mivor accuracy --list\n");
    return 2;
}

// ---- one function ---------------------------------------------------------------

struct RangeResult {
    const Range* range;
    Tally tally;
    std::uint64_t outside = 0;  // draws that fell outside the domain
};

struct Run {
    const Reference& ref;
    const exports::Row& row;
    Layout layout;
    Tally main;                       // random arguments and ranges without a bound of their own
    std::vector<RangeResult> ranges;
    std::uint64_t reported = 0;       // exhaustive: arguments that reported, not judged
    std::uint64_t fast_violations = 0, fast_checked = 0;
    std::string how;
};

void sampled(Run& run, const Options& o) {
    Judge judge(run.ref, run.layout, run.row.thunk);
    Sampler sampler(run.ref, run.layout, o.seed);
    for (std::uint64_t i = 0; i < o.count; ++i) judge.measure(sampler.random(), run.main);
    const std::uint64_t per = std::max<std::uint64_t>(1000, o.count / 50);
    if (o.ranges) {
        for (const Range& r : run.ref.hard) {
            RangeResult rr{&r, {}, 0};
            const auto n = static_cast<std::uint64_t>(static_cast<double>(per) * r.share);
            Point p;
            for (std::uint64_t i = 0; i < n; ++i) {
                if (sampler.hard(r, p)) judge.measure(p, rr.tally);
                else ++rr.outside;
            }
            if (!r.apart()) run.main.merge(rr.tally);
            run.ranges.push_back(rr);
        }
    }
    run.how = std::to_string(o.count) + " random arguments + " + std::to_string(run.ranges.size()) + " hard ranges";
}

// Every REAL(4) argument, in `threads` interleaved slices.  With a fast
// reference of relative error 2^-b the error in ulps is taken from it (off
// by at most 2^(24-b) ulp) and the correct rounding decided by it unless
// y(1 -+ 2^-b) round to different floats; then MPFR decides.  One argument
// in 2^16 is also checked against MPFR, to hold the fast reference to its
// bound.
//
// With a step above 1, every step-th bit pattern only: an odd step visits
// every exponent and every residue of the low bits alike, and takes 1/step
// of the time.
void exhaustive(Run& run, unsigned threads, std::uint64_t step) {
    std::vector<Tally> tallies(threads);
    std::vector<std::uint64_t> reported(threads, 0), violations(threads, 0), checked(threads, 0);
    const Reference& ref = run.ref;
    auto work = [&](unsigned slice) {
        Judge judge(ref, run.layout, run.row.thunk);
        Tally& t = tallies[slice];
        const long double delta = ref.fast ? std::ldexp(1.0L, -ref.fast_bits) + 0x1p-62L : 0.0L;
        constexpr std::uint64_t kChunk = 1 << 16;
        Point p{};
        for (std::uint64_t start = slice * kChunk; start < (std::uint64_t{1} << 32); start += threads * kChunk) {
            for (std::uint64_t b = start + (step - start % step) % step; b < start + kChunk; b += step) {
                const auto bits32 = static_cast<std::uint32_t>(b);
                float x;
                std::memcpy(&x, &bits32, sizeof x);
                p.args[0].r4 = x;
                const std::uint64_t before = t_reports;
                const Value result = judge.call(p);
                if (t_reports != before) {
                    ++reported[slice];
                    continue;
                }
                if (ref.fast) {
                    const long double r = ref.fast(x);
                    // (Below 2^-140 the bound is moot: every such value
                    // rounds to zero or the least subnormals alike, and
                    // glibc's results there are double subnormals.)
                    if ((b & 0xFFFF) == 0x5A5A && std::isfinite(r) && std::fabs(r) > 0x1p-140L) {
                        ++checked[slice];
                        if (!judge.fast_within(p, r, ref.fast_bits)) ++violations[slice];
                    }
                    // Beyond the extended range (r zero or infinite while the
                    // exact value is not) the REAL(4) result is zero or
                    // infinite too: its sign and kind decide.
                    if ((r == 0 || std::isinf(r)) && !std::isnan(result.r4)) {
                        const float v = result.r4;
                        const float want = static_cast<float>(r);
                        const double err = v == want ? 0.0 : std::isinf(r) ? HUGE_VAL : std::fabs(v) * 0x1p149;
                        if (std::isinf(err)) t.figures[0].mismatch(p);
                        else t.figures[0].add(err, v == want, std::fabs(v), v != 0, p);
                        continue;
                    }
                    if (std::isfinite(r) && r != 0) {
                        const float lo = static_cast<float>(r * (1 - delta)), hi = static_cast<float>(r * (1 + delta));
                        if (lo == hi && std::isfinite(lo)) {
                            const float v = result.r4;
                            // |r| in [2^(e-1), 2^e), from the bits of r as a
                            // double (libm's frexpl and ldexpl took a quarter
                            // of the time here).
                            std::uint64_t rb;
                            const double rd = static_cast<double>(r);
                            std::memcpy(&rb, &rd, sizeof rb);
                            const int e = static_cast<int>((rb >> 52) & 0x7FF) - 1022;
                            const std::uint64_t ub = static_cast<std::uint64_t>(std::max(e - 24, -149) + 1023) << 52;
                            double ulp_d;
                            std::memcpy(&ulp_d, &ub, sizeof ulp_d);
                            const long double ulp = ulp_d;
                            const long double abs_err = std::fabs(v - r);
                            t.figures[0].add(static_cast<double>(abs_err / ulp), v == lo, abs_err, e <= -126, p);
                            continue;
                        }
                    }
                }
                judge.judge(p, result, t);
            }
        }
    };
    std::vector<std::thread> pool;
    for (unsigned i = 0; i < threads; ++i) pool.emplace_back(work, i);
    for (auto& th : pool) th.join();
    for (unsigned i = 0; i < threads; ++i) {
        run.main.merge(tallies[i]);
        run.reported += reported[i];
        run.fast_violations += violations[i];
        run.fast_checked += checked[i];
    }
    run.how = step == 1 ? "every REAL(4) argument" : "every " + std::to_string(step) + "th REAL(4) bit pattern";
}

// ---- printing ---------------------------------------------------------------------

void print_figure(const std::string& label, const Figure& f, const Layout& layout) {
    if (f.normal.err >= 0) {
        std::printf("  %-28s max %.6g at %s, mean %.4g, correctly rounded %.4f%% (%" PRIu64 " not)\n", label.c_str(),
                    f.normal.err, describe(f.normal.at, layout).c_str(), f.mean(),
                    f.count ? 100.0 * static_cast<double>(f.correct) / static_cast<double>(f.count) : 0.0,
                    f.count - f.correct);
    } else {
        std::printf("  %-28s no results in the normal range\n", label.c_str());
    }
    if (f.subnormal_count) {
        std::printf("  %-28s subnormal results: max %.6g at %s (%" PRIu64 " results)\n", "", f.subnormal.err,
                    describe(f.subnormal.at, layout).c_str(), f.subnormal_count);
    }
    if (f.mismatches) {
        std::printf("  %-28s %" PRIu64 " NaN/Inf mismatches, first at %s\n", "", f.mismatches,
                    describe(f.mismatch_at, layout).c_str());
    }
}

std::string abs_text(long double a) {
    if (!(a > 0)) return "";
    char buf[48];
    std::snprintf(buf, sizeof buf, ", abs 2^%.1f", static_cast<double>(std::log2(a)));
    return buf;
}

// Prints the run; returns false when a bound is exceeded or a result
// mismatched.
bool report(const Run& run, const Judge& judge, double seconds, const Options& o) {
    const Reference& ref = run.ref;
    const int b = judge.bounded();
    std::uint64_t arguments = run.main.figures[0].count + run.main.figures[0].mismatches;
    if (run.layout.lanes) arguments /= 2;
    for (const RangeResult& rr : run.ranges)
        if (rr.range->apart()) arguments += rr.tally.figures[0].count + rr.tally.figures[0].mismatches;
    std::printf("%.*s (%.*s -> %.*s): %" PRIu64 " arguments (%s), %.1f s\n", static_cast<int>(ref.name.size()),
                ref.name.data(), static_cast<int>(run.row.args.size()), run.row.args.data(),
                static_cast<int>(run.row.result.size()), run.row.result.data(), arguments, run.how.c_str(), seconds);
    const std::vector<std::string> labels = judge.labels();
    for (std::size_t i = 0; i < labels.size(); ++i) print_figure(labels[i], run.main.figures[i], run.layout);
    bool ok = true;
    for (const Figure& f : run.main.figures) ok = ok && f.mismatches == 0;
    if (!run.ranges.empty()) std::printf("  hard ranges, max in %s:\n", judge.bounded_format().units);
    for (const RangeResult& rr : run.ranges) {
        const Figure& f = rr.tally.figures[static_cast<std::size_t>(b)];
        std::printf("    %-44.*s ", static_cast<int>(rr.range->label.size()), rr.range->label.data());
        if (f.count == 0) {
            std::printf("no arguments in the domain\n");
            continue;
        }
        // The absolute error tells about a reduction next to multiples of a
        // constant (pi/2, ln 2), where results are tiny.
        const bool near = (rr.range->axes[0].spread == Spread::near_multiples && rr.range->axes[0].unit_constant) ||
                          rr.range->absolute;
        std::printf("max %.4g at %s%s", f.max(),
                    describe(f.max() == f.normal.err ? f.normal.at : f.subnormal.at, run.layout).c_str(),
                    near ? abs_text(f.max_abs).c_str() : "");
        if (rr.range->bound >= 0) {
            const bool within = f.max() <= rr.range->bound && f.mismatches == 0;
            std::printf(" (own bound %g%s)", rr.range->bound, within ? "" : ": EXCEEDED");
            ok = ok && within;
        }
        if (rr.range->absolute) {
            const bool within =
                (f.max_abs == 0 || std::log2(f.max_abs) <= rr.range->abs_bound_log2) && f.mismatches == 0;
            std::printf(" (absolute bound 2^%g%s)", rr.range->abs_bound_log2, within ? "" : ": EXCEEDED");
            ok = ok && within;
        }
        std::printf("\n");
    }
    if (run.main.undecided) std::printf("  (%" PRIu64 " roundings undecided at 65536 bits)\n", run.main.undecided);
    if (run.reported) std::printf("  %" PRIu64 " arguments reported an error (not judged)\n", run.reported);
    if (run.fast_checked) {
        std::printf("  fast reference checked against MPFR on %" PRIu64 " arguments: %" PRIu64 " beyond 2^-%d\n",
                    run.fast_checked, run.fast_violations, ref.fast_bits);
        ok = ok && run.fast_violations == 0;
    }
    const double bound = o.bound >= 0 ? o.bound : ref.bound;
    if (bound >= 0) {
        const Figure& f = run.main.figures[static_cast<std::size_t>(b)];
        const double sub_bound = o.bound >= 0 || ref.subnormal_bound < 0 ? bound : ref.subnormal_bound;
        const bool within = f.normal.err <= bound && f.subnormal.err <= sub_bound;
        if (sub_bound != bound) std::printf("  bound %g (subnormal results %g): %s\n", bound, sub_bound, within ? "within" : "EXCEEDED");
        else std::printf("  bound %g: %s\n", bound, within ? "within" : "EXCEEDED");
        ok = ok && within;
    }
    return ok;
}

}  // namespace

int run(int argc, char** argv) {
    Options o;
    bool list = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view a = argv[i];
        if (a == "--count" && i + 1 < argc) o.count = std::strtoull(argv[++i], nullptr, 0);
        else if (a == "--seed" && i + 1 < argc) o.seed = std::strtoull(argv[++i], nullptr, 0);
        else if (a == "--threads" && i + 1 < argc) o.threads = std::max(1u, static_cast<unsigned>(std::atoi(argv[++i])));
        else if (a == "--bound" && i + 1 < argc) o.bound = std::strtod(argv[++i], nullptr);
        else if (a == "--exhaustive") o.exhaustive = true;
        else if (a == "--step" && i + 1 < argc) o.step = std::max<std::uint64_t>(1, std::strtoull(argv[++i], nullptr, 0));
        else if (a == "--no-ranges") o.ranges = false;
        else if (a == "--list") list = true;
        else if (a.starts_with("--")) return usage();
        else o.names.push_back(a);
    }
    if (list) {
        for (const Reference& r : references()) std::printf("%.*s\n", static_cast<int>(r.name.size()), r.name.data());
        return 0;
    }
    std::vector<const Reference*> chosen;
    if (o.names.empty()) {
        for (const Reference& r : references()) {
            const exports::Row* row = exports::find(r.name);
            if (row && row->thunk) chosen.push_back(&r);
        }
    } else {
        for (std::string_view n : o.names) {
            const Reference* r = find_reference(n);
            const exports::Row* row = exports::find(n);
            if (!r) {
                std::fprintf(stderr, "mivor accuracy: no reference for %.*s\n", static_cast<int>(n.size()), n.data());
                return 2;
            }
            if (!row || !row->thunk) {
                std::printf("%.*s: not implemented\n", static_cast<int>(n.size()), n.data());
                continue;
            }
            chosen.push_back(r);
        }
    }

    QuietReports quiet;
    int status = 0;
    for (const Reference* ref : chosen) {
        const exports::Row& row = *exports::find(ref->name);
        Run run{*ref, row, {}, {}, {}, 0, 0, 0, {}};
        std::string problem;
        run.layout = layout_of(row.args, row.result, problem);
        if (problem.empty()) problem = check_reference(*ref, run.layout);
        if (!problem.empty()) {
            std::printf("%.*s: %s\n", static_cast<int>(ref->name.size()), ref->name.data(), problem.c_str());
            status = 1;
            continue;
        }
        const bool single = run.layout.args.size() == 1 && run.layout.args[0].scalar == Scalar::binary32 &&
                            row.result == "r4";
        if (o.exhaustive && !single) {
            std::printf("%.*s: --exhaustive is for REAL(4) functions of one REAL(4) argument; sampling instead\n",
                        static_cast<int>(ref->name.size()), ref->name.data());
        }
        const auto t0 = std::chrono::steady_clock::now();
        const std::uint64_t reports_before = g_reports.load();
        if (o.exhaustive && single) exhaustive(run, o.threads, o.step);
        else sampled(run, o);
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        Judge judge(*ref, run.layout, row.thunk);
        if (!report(run, judge, seconds, o)) status = 1;
        const std::uint64_t reports = g_reports.load() - reports_before;
        if (reports && !o.exhaustive) std::printf("  %" PRIu64 " error reports (declined)\n", reports);
        std::fflush(stdout);
    }
    return status;
}

}  // namespace mivor::accuracy

int mivor_accuracy_main(int argc, char** argv) { return mivor::accuracy::run(argc, argv); }
