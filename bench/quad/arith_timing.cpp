// A self-timed companion of arith_bench for a shared, busy machine: each
// repetition times mivor and __float128 back to back on the same operands,
// and the table keeps the fastest repetition of each, so that both sides
// see the same neighbours.  Same operands and measures as arith_bench.
//
//   quad_arith_timing [repetitions]      (default 40)
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "mivor/mivor.h"

namespace {

constexpr int kN = 1024;
constexpr int kPasses = 50;

std::uint64_t splitmix(std::uint64_t& s) {
    std::uint64_t z = (s += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

mivor_real16 random_quad(std::uint64_t& s, unsigned spread, bool positive) {
    mivor_real16 q;
    const std::uint64_t a = splitmix(s), b = splitmix(s);
    q.w[0] = static_cast<std::uint32_t>(a);
    q.w[1] = static_cast<std::uint32_t>(a >> 32);
    q.w[2] = static_cast<std::uint32_t>(b);
    const std::uint32_t field = 16383 - spread / 2 + static_cast<std::uint32_t>(splitmix(s) % (spread + 1));
    q.w[3] = (static_cast<std::uint32_t>(b >> 32) & 0xFFFFu) | (field << 16) |
             (positive ? 0u : static_cast<std::uint32_t>(b >> 63) << 31);
    return q;
}

struct Operands {
    mivor_real16 x[kN], y[kN], r[kN];
    __float128 fx[kN], fy[kN], fr[kN];
};
Operands spread, chain;

using Fn = mivor_real16* (*)(mivor_real16*, const mivor_real16*, const mivor_real16*);
constexpr Fn kMivor[] = {g_aqaq, g_aqsq, g_aqmq, g_aqdq};

template <int Op>
__float128 f128_op(__float128 a, __float128 b) {
    if constexpr (Op == 0) return a + b;
    else if constexpr (Op == 1) return a - b;
    else if constexpr (Op == 2) return a * b;
    else return a / b;
}

template <class Body>
double ns_per_op(Body body) {
    const auto t0 = std::chrono::steady_clock::now();
    for (int p = 0; p < kPasses; ++p) {
        body();
        __asm__ __volatile__("" ::: "memory");  // every pass is done anew
    }
    const auto t1 = std::chrono::steady_clock::now();
    return std::chrono::duration<double, std::nano>(t1 - t0).count() / (double{kPasses} * kN);
}

template <int Op>
void measure(const char* name, int reps) {
    const Fn fn = kMivor[Op];
    double best[4] = {1e30, 1e30, 1e30, 1e30};  // latency mivor/f128, throughput mivor/f128
    for (int rep = 0; rep < reps; ++rep) {
        double t = ns_per_op([&] {
            mivor_real16 r = chain.x[0];
            for (int i = 0; i < kN; ++i) fn(&r, &r, &chain.y[i]);
            chain.r[0] = r;
        });
        if (t < best[0]) best[0] = t;
        t = ns_per_op([&] {
            __float128 r = chain.fx[0];
            for (int i = 0; i < kN; ++i) r = f128_op<Op>(r, chain.fy[i]);
            chain.fr[0] = r;
        });
        if (t < best[1]) best[1] = t;
        t = ns_per_op([&] {
            for (int i = 0; i < kN; ++i) fn(&spread.r[i], &spread.x[i], &spread.y[i]);
        });
        if (t < best[2]) best[2] = t;
        t = ns_per_op([&] {
            for (int i = 0; i < kN; ++i) spread.fr[i] = f128_op<Op>(spread.fx[i], spread.fy[i]);
        });
        if (t < best[3]) best[3] = t;
    }
    std::printf("%s/%-14s %12.2f %12.2f %8.2f\n", name, "latency", best[0], best[1], best[0] / best[1]);
    std::printf("%s/%-14s %12.2f %12.2f %8.2f\n", name, "throughput", best[2], best[3], best[2] / best[3]);
}

}  // namespace

int main(int argc, char** argv) {
    const int reps = argc > 1 ? std::atoi(argv[1]) : 40;
    std::uint64_t s = 2026;
    for (int i = 0; i < kN; ++i) {
        spread.x[i] = random_quad(s, 60, false);
        spread.y[i] = random_quad(s, 60, false);
        chain.x[i] = random_quad(s, 0, true);
        chain.y[i] = random_quad(s, 0, true);
        if (i % 2 == 0) chain.y[i].w[3] |= 0x80000000u;
        std::memcpy(&spread.fx[i], &spread.x[i], 16);
        std::memcpy(&spread.fy[i], &spread.y[i], 16);
        std::memcpy(&chain.fx[i], &chain.x[i], 16);
        std::memcpy(&chain.fy[i], &chain.y[i], 16);
    }
    std::printf("%-18s %12s %12s %8s\n", "operation", "mivor ns", "float128 ns", "ratio");
    measure<0>("add", reps);
    measure<1>("sub", reps);
    measure<2>("mul", reps);
    measure<3>("div", reps);
    return 0;
}
