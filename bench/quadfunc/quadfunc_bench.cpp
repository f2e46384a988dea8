// Throughput of the REAL(16) elementary functions beside libquadmath in the
// same run, with the time ratios (mivor / libquadmath; below 1 is faster)
// printed after the table.
//
// Each iteration evaluates 1024 independent random arguments of the
// function's useful range, the same for both.  Where libquadmath has no
// such function the peer is the obvious composition: expq(x ln10) for
// 10^x, powq(10, y) for 10**y, 1/tanq for the cotangent, sinq(x pi/180) for the degree forms and
// so on (cheaper and less accurate than a real implementation would be).
// With --benchmark_repetitions=N the ratios use the fastest repetition.
#include <benchmark/benchmark.h>
#include <quadmath.h>

#include <cmath>
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
using Mine1 = mivor_real16* (*)(mivor_real16*, const mivor_real16*);
using Mine2 = mivor_real16* (*)(mivor_real16*, const mivor_real16*, const mivor_real16*);
using Peer1 = __float128 (*)(__float128);
using Peer2 = __float128 (*)(__float128, __float128);

struct Entry {
    const char* name;
    Mine1 mine1;
    Mine2 mine2;
    Peer1 peer1;
    Peer2 peer2;
    double lo, hi;     // arguments uniform in [lo, hi], or log-uniform magnitudes when log_scale
    bool log_scale;
    bool both_signs;
};

const __float128 kPi = acosq(-1);
const __float128 kLn10 = logq(10);
__float128 exp10_peer(__float128 x) { return expq(x * kLn10); }
__float128 pow10_peer(__float128 y) { return powq(10, y); }
__float128 cot_peer(__float128 x) { return 1 / tanq(x); }
const __float128 kDeg = 180 / kPi, kQuad = 2 / kPi;
__float128 atand_peer(__float128 x) { return atanq(x) * kDeg; }
__float128 asind_peer(__float128 x) { return asinq(x) * kDeg; }
__float128 acosd_peer(__float128 x) { return acosq(x) * kDeg; }
__float128 atan2d_peer(__float128 y, __float128 x) { return atan2q(y, x) * kDeg; }
__float128 atanq_peer(__float128 x) { return atanq(x) * kQuad; }
__float128 asinq_peer(__float128 x) { return asinq(x) * kQuad; }
__float128 acosq_peer(__float128 x) { return acosq(x) * kQuad; }
__float128 atan2q_peer(__float128 y, __float128 x) { return atan2q(y, x) * kQuad; }
const __float128 kRadPerDeg = kPi / 180, kRadPerQuad = kPi / 2;
__float128 sind_peer(__float128 x) { return sinq(x * kRadPerDeg); }
__float128 cosd_peer(__float128 x) { return cosq(x * kRadPerDeg); }
__float128 tand_peer(__float128 x) { return tanq(x * kRadPerDeg); }
__float128 cotd_peer(__float128 x) { return 1 / tanq(x * kRadPerDeg); }
__float128 sinq_peer(__float128 x) { return sinq(x * kRadPerQuad); }
__float128 cosq_peer(__float128 x) { return cosq(x * kRadPerQuad); }
__float128 tanq_peer(__float128 x) { return tanq(x * kRadPerQuad); }
__float128 cotq_peer(__float128 x) { return 1 / tanq(x * kRadPerQuad); }

const Entry kEntries[] = {
    {"exp", g_qexp, nullptr, expq, nullptr, -11000, 11000, false, false},
    {"exp2", g_qexp2, nullptr, exp2q, nullptr, -16000, 16000, false, false},
    {"exp10", g_qexp10, nullptr, exp10_peer, nullptr, -4900, 4900, false, false},
    {"log", g_qlog, nullptr, logq, nullptr, -16000, 16000, true, false},
    {"log2", g_qlog2, nullptr, log2q, nullptr, -16000, 16000, true, false},
    {"log10", g_qlog10, nullptr, log10q, nullptr, -16000, 16000, true, false},
    {"sin", g_qsin, nullptr, sinq, nullptr, -10, 10, false, false},
    {"cos", g_qcos, nullptr, cosq, nullptr, -10, 10, false, false},
    {"tan", g_qtan, nullptr, tanq, nullptr, -10, 10, false, false},
    {"cotan", g_qcotan, nullptr, cot_peer, nullptr, -10, 10, false, false},
    {"sin_big", g_qsin, nullptr, sinq, nullptr, 10, 16000, true, true},
    {"atan", g_qatan, nullptr, atanq, nullptr, -4, 4, false, false},
    {"atan2", nullptr, g_qatan2, nullptr, atan2q, -4, 4, false, false},
    {"asin", g_qasin, nullptr, asinq, nullptr, -1, 1, false, false},
    {"acos", g_qacos, nullptr, acosq, nullptr, -1, 1, false, false},
    {"atand", g_qatand, nullptr, atand_peer, nullptr, -4, 4, false, false},
    {"atan2d", nullptr, g_qatan2d, nullptr, atan2d_peer, -4, 4, false, false},
    {"asind", g_qasind, nullptr, asind_peer, nullptr, -1, 1, false, false},
    {"acosd", g_qacosd, nullptr, acosd_peer, nullptr, -1, 1, false, false},
    {"atanq", g_qatanq, nullptr, atanq_peer, nullptr, -4, 4, false, false},
    {"atan2q", nullptr, g_qatan2q, nullptr, atan2q_peer, -4, 4, false, false},
    {"asinq", g_qasinq, nullptr, asinq_peer, nullptr, -1, 1, false, false},
    {"acosq", g_qacosq, nullptr, acosq_peer, nullptr, -1, 1, false, false},
    {"sqrt", g_qsqrt, nullptr, sqrtq, nullptr, -16000, 16000, true, false},
    {"cbrt", g_qcbrt, nullptr, cbrtq, nullptr, -16000, 16000, true, true},
    {"sinh", g_qsinh, nullptr, sinhq, nullptr, -100, 100, false, false},
    {"cosh", g_qcosh, nullptr, coshq, nullptr, -100, 100, false, false},
    {"tanh", g_qtanh, nullptr, tanhq, nullptr, -5, 5, false, false},
    {"gamma", g_qgamma, nullptr, tgammaq, nullptr, 0.1, 50, false, false},
    {"lgamma", g_qlgama, nullptr, lgammaq, nullptr, 0.1, 1000, false, false},
    {"erf", g_qerf, nullptr, erfq, nullptr, -5, 5, false, false},
    {"erfc", g_qerfc, nullptr, erfcq, nullptr, -5, 20, false, false},
    {"sind", g_qsind, nullptr, sind_peer, nullptr, -720, 720, false, false},
    {"cosd", g_qcosd, nullptr, cosd_peer, nullptr, -720, 720, false, false},
    {"tand", g_qtand, nullptr, tand_peer, nullptr, -720, 720, false, false},
    {"cotd", g_qcotd, nullptr, cotd_peer, nullptr, -720, 720, false, false},
    {"sinq", g_qsinq, nullptr, sinq_peer, nullptr, -8, 8, false, false},
    {"cosq", g_qcosq, nullptr, cosq_peer, nullptr, -8, 8, false, false},
    {"tanq", g_qtanq, nullptr, tanq_peer, nullptr, -8, 8, false, false},
    {"cotq", g_qcotq, nullptr, cotq_peer, nullptr, -8, 8, false, false},
    // The real powers: x log-uniform over 2^-60 .. 2^60, y in [0.5, 4.5].
    {"pow", nullptr, g_aqxq, nullptr, powq, -60, 60, true, false},
    {"pow2", g_a2xq, nullptr, exp2q, nullptr, -16000, 16000, false, false},
    {"pow10", g_atxq, nullptr, pow10_peer, nullptr, -4900, 4900, false, false},
};

struct Args {
    std::vector<mivor_real16> x, y;
    std::vector<__float128> fx, fy;
};

Args make_args(const Entry& e, std::uint64_t seed) {
    Args a;
    a.x.resize(kN);
    a.y.resize(kN);
    a.fx.resize(kN);
    a.fy.resize(kN);
    std::uint64_t s = seed;
    for (int i = 0; i < kN; ++i) {
        const double u = static_cast<double>(mivor_bench::splitmix(s) >> 11) * 0x1p-53;
        const double frac = static_cast<double>(mivor_bench::splitmix(s) >> 11) * 0x1p-53;
        __float128 v;
        if (e.log_scale) v = ldexpq(1 + static_cast<__float128>(frac), static_cast<int>(e.lo + u * (e.hi - e.lo)));
        else v = e.lo + (static_cast<__float128>(u) + static_cast<__float128>(frac) * 0x1p-53) * (e.hi - e.lo);
        if (e.both_signs && (mivor_bench::splitmix(s) & 1)) v = -v;
        a.fx[i] = v;
        std::memcpy(&a.x[i], &v, 16);
        const __float128 w = 0.5 + static_cast<__float128>(frac) * 4;
        a.fy[i] = w;
        std::memcpy(&a.y[i], &w, 16);
    }
    return a;
}

void register_all(std::vector<Args>& store) {
    store.reserve(std::size(kEntries));
    std::uint64_t seed = 42;
    for (const Entry& e : kEntries) {
        store.push_back(make_args(e, seed++));
        const Args* a = &store.back();
        const Entry* p = &e;
        benchmark::RegisterBenchmark((std::string(e.name) + "_mivor").c_str(), [a, p](benchmark::State& st) {
            mivor_bench::throughput<mivor_real16>(st, [&](mivor_real16& r, int i) {
                if (p->mine2) p->mine2(&r, &a->x[i], &a->y[i]);
                else p->mine1(&r, &a->x[i]);
            });
        });
        benchmark::RegisterBenchmark((std::string(e.name) + "_quadmath").c_str(), [a, p](benchmark::State& st) {
            mivor_bench::throughput<__float128>(st, [&](__float128& r, int i) {
                r = p->peer2 ? p->peer2(a->fx[i], a->fy[i]) : p->peer1(a->fx[i]);
            });
        });
    }
}

}  // namespace

int main(int argc, char** argv) {
    (void)kPi;
    benchmark::Initialize(&argc, argv);
    std::vector<Args> store;
    register_all(store);
    mivor_bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nratio mivor/libquadmath per call, throughput (below 1 is faster):\n");
    for (const Entry& e : kEntries) reporter.print_ratios({e.name}, "_mivor", "_quadmath", 8);
    return 0;
}
