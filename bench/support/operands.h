// Operand generation shared by the benchmarks: the splitmix64 stream, raw
// bit casts of REAL(8), and random normal REAL(16) values.  Pure integer
// code on fixed seeds: every flavour draws the same operands.
#pragma once

#include <cstdint>
#include <cstring>

#include "mivor/mivor.h"

namespace mivor_bench {

// Operations per benchmark iteration (and per self-timed pass).
constexpr int kN = 1024;

// Distinct operand pairs of the REAL(16) throughput measures, walked kN at
// a time.  The same 1024 pairs over and over let the branch predictor
// learn the data-dependent branches of the peer's division (libgcc's digit
// corrections): on the i386 flavour __float128 division then takes 167
// cycles, 175 over 8192 pairs and 193 over 32768, while the library's is
// flat.  Larger pools, though, leave the L2 cache (the operands and results
// of both sides take 96 bytes a pair) and then measure memory for the
// cheaper operations; 4096 pairs still fit.
constexpr int kPool = 4 * kN;

inline std::uint64_t splitmix(std::uint64_t& s) {
    std::uint64_t z = (s += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

inline std::uint64_t bits(double v) {
    std::uint64_t b;
    std::memcpy(&b, &v, 8);
    return b;
}

inline double from_bits(std::uint64_t b) {
    double v;
    std::memcpy(&v, &b, 8);
    return v;
}

// Random significands; exponents within `spread` binades of 2^0, random
// signs unless `positive`.
inline mivor_real16 random_quad(std::uint64_t& s, unsigned spread, bool positive) {
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

// The REAL(16) operators and their __float128 peers, by index: add, sub,
// mul, div.
using QuadOp = mivor_real16* (*)(mivor_real16*, const mivor_real16*, const mivor_real16*);
constexpr QuadOp kMivorQuadOps[] = {g_aqaq, g_aqsq, g_aqmq, g_aqdq};

template <int Op>
__float128 f128_op(__float128 a, __float128 b) {
    if constexpr (Op == 0) return a + b;
    else if constexpr (Op == 1) return a - b;
    else if constexpr (Op == 2) return a * b;
    else return a / b;
}

// The operator operands.  `spread`: kPool pairs of random full-precision
// operands with exponents within 2^+-8 and random signs, the mix of
// ordinary REAL(16) work.  `chain`: kN pairs in [1, 2), which keep
// products and quotients in range over a pass, with every even y negated
// so that sums in a chain wander slowly.  Each has arrays x, y
// (mivor_real16) and fx, fy (__float128).
template <class Pool, class Ops>
void fill_quad_operands(Pool& spread, Ops& chain) {
    std::uint64_t s = 2026;
    for (int i = 0; i < kPool; ++i) {
        spread.x[i] = random_quad(s, 16, false);
        spread.y[i] = random_quad(s, 16, false);
        std::memcpy(&spread.fx[i], &spread.x[i], 16);
        std::memcpy(&spread.fy[i], &spread.y[i], 16);
    }
    for (int i = 0; i < kN; ++i) {
        chain.x[i] = random_quad(s, 0, true);
        chain.y[i] = random_quad(s, 0, true);
        if (i % 2 == 0) chain.y[i].w[3] |= 0x80000000u;
        std::memcpy(&chain.fx[i], &chain.x[i], 16);
        std::memcpy(&chain.fy[i], &chain.y[i], 16);
    }
}

}  // namespace mivor_bench
