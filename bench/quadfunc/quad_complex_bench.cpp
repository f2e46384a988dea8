// Throughput of the COMPLEX(16) functions and the complex power beside
// libquadmath's (cabsq, csqrtq, cexpq, clogq, csinq, ccosq, cpowq) in the
// same run, with the time ratios (mivor / libquadmath; below 1 is faster)
// printed after the table.  The quadrant forms are set against csinq and
// ccosq of z pi/2 (one product more, and its rounding error, on the peer's
// side).  Each iteration evaluates 1024 independent random arguments of
// moderate size, the same for both; with --benchmark_repetitions=N the
// ratios use the fastest repetition.
#include <benchmark/benchmark.h>
#include <quadmath.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "mivor/mivor.h"
#include "support/loops.h"
#include "support/operands.h"
#include "support/ratios.h"

namespace {

using mivor_bench::kN;
using Mine = mivor_complex16* (*)(mivor_complex16*, const mivor_complex16*);
using Peer = __complex128 (*)(__complex128);

const __float128 kHalfPi = acosq(-1) / 2;
__complex128 sinq_peer(__complex128 z) { return csinq(z * kHalfPi); }
__complex128 cosq_peer(__complex128 z) { return ccosq(z * kHalfPi); }
__complex128 abs_peer(__complex128 z) { return cabsq(z); }
mivor_complex16* abs_mine(mivor_complex16* r, const mivor_complex16* z) {
    g_cqabs(&r->re, z);
    return r;
}

struct Entry {
    const char* name;
    Mine mine;
    Peer peer;
    double lo, hi;  // both parts uniform in [lo, hi]
};

const Entry kEntries[] = {
    {"abs", abs_mine, abs_peer, -100, 100},     {"sqrt", g_cqsqrt, csqrtq, -100, 100},
    {"exp", g_cqexp, cexpq, -20, 20},           {"log", g_cqlog, clogq, -100, 100},
    {"sin", g_cqsin, csinq, -10, 10},           {"cos", g_cqcos, ccosq, -10, 10},
    {"sinq", g_cqsinq, sinq_peer, -8, 8},       {"cosq", g_cqcosq, cosq_peer, -8, 8},
};

struct Args {
    std::vector<mivor_complex16> z, w;
    std::vector<__complex128> fz, fw;
};

__float128 draw(std::uint64_t& s, double lo, double hi) {
    const double u = static_cast<double>(mivor_bench::splitmix(s) >> 11) * 0x1p-53;
    const double v = static_cast<double>(mivor_bench::splitmix(s) >> 11) * 0x1p-53;
    return lo + (static_cast<__float128>(u) + static_cast<__float128>(v) * 0x1p-53) * (hi - lo);
}

Args make_args(double lo, double hi, std::uint64_t seed) {
    Args a;
    a.z.resize(kN);
    a.w.resize(kN);
    a.fz.resize(kN);
    a.fw.resize(kN);
    std::uint64_t s = seed;
    for (int i = 0; i < kN; ++i) {
        const __float128 parts[4] = {draw(s, lo, hi), draw(s, lo, hi), draw(s, -3, 3), draw(s, -3, 3)};
        std::memcpy(&a.z[i], parts, 32);
        std::memcpy(&a.w[i], parts + 2, 32);
        __real__ a.fz[i] = parts[0];
        __imag__ a.fz[i] = parts[1];
        __real__ a.fw[i] = parts[2];
        __imag__ a.fw[i] = parts[3];
    }
    return a;
}

void register_all(std::vector<Args>& store) {
    store.reserve(std::size(kEntries) + 1);
    std::uint64_t seed = 7;
    for (const Entry& e : kEntries) {
        store.push_back(make_args(e.lo, e.hi, seed++));
        const Args* a = &store.back();
        const Entry* p = &e;
        benchmark::RegisterBenchmark((std::string(e.name) + "_mivor").c_str(), [a, p](benchmark::State& st) {
            mivor_bench::throughput<mivor_complex16>(st, [&](mivor_complex16& r, int i) { p->mine(&r, &a->z[i]); });
        });
        benchmark::RegisterBenchmark((std::string(e.name) + "_quadmath").c_str(), [a, p](benchmark::State& st) {
            mivor_bench::throughput<__complex128>(st, [&](__complex128& r, int i) { r = p->peer(a->fz[i]); });
        });
    }
    // z^w, base parts in [-4, 4], exponent parts in [-3, 3].
    store.push_back(make_args(-4, 4, seed));
    const Args* a = &store.back();
    benchmark::RegisterBenchmark("pow_mivor", [a](benchmark::State& st) {
        mivor_bench::throughput<mivor_complex16>(st, [&](mivor_complex16& r, int i) { g_azxz(&r, &a->z[i], &a->w[i]); });
    });
    benchmark::RegisterBenchmark("pow_quadmath", [a](benchmark::State& st) {
        mivor_bench::throughput<__complex128>(st, [&](__complex128& r, int i) { r = cpowq(a->fz[i], a->fw[i]); });
    });
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    std::vector<Args> store;
    register_all(store);
    mivor_bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nratio mivor/libquadmath per call, throughput (below 1 is faster):\n");
    for (const Entry& e : kEntries) reporter.print_ratios({e.name}, "_mivor", "_quadmath", 8);
    reporter.print_ratios({"pow"}, "_mivor", "_quadmath", 8);
    return 0;
}
