// Latency and throughput of g_dbleq (REAL(16) to REAL(8)) and g_qextd
// (REAL(8) to REAL(16)) beside GCC's __float128 casts (libgcc soft-fp), with
// the time ratios (mivor / __float128; below 1 is faster) printed after the
// table (CPU time: the machine is shared, so wall time is noisier).
//
//   latency     each call's input depends on the previous call's result
//               (through a word that is always zero, so the inputs are the
//               same for both sides and the compiler cannot see it);
//   throughput  1024 independent conversions of random normal values.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>

#include "mivor/mivor.h"
#include "support/loops.h"
#include "support/operands.h"
#include "support/ratios.h"

namespace {

using mivor_bench::bits;
using mivor_bench::from_bits;
using mivor_bench::kN;
using mivor_bench::latency;
using mivor_bench::splitmix;
using mivor_bench::throughput;

struct Inputs {
    mivor_real16 q[kN];
    __float128 fq[kN];
    double d[kN];
};

// REAL(16) values within REAL(8)'s normal range (exponents within 2^+-500)
// and REAL(8) values over the same range; random signs and fractions.
const Inputs& inputs() {
    static const struct Filled : Inputs {
        Filled() {
            std::uint64_t s = 2026;
            for (int i = 0; i < kN; ++i) {
                q[i] = mivor_bench::random_quad(s, 1000, false);
                std::memcpy(&fq[i], &q[i], 16);
                const std::uint64_t exponent = 1023 - 500 + splitmix(s) % 1001;
                d[i] = from_bits((splitmix(s) & 0x800FFFFFFFFFFFFFu) | (exponent << 52));
            }
        }
    } in;
    return in;
}

void dbleq_throughput_mivor(benchmark::State& state) {
    const Inputs& in = inputs();
    throughput<double>(state, [&](double& r, int i) { r = g_dbleq(&in.q[i]); });
}

void dbleq_throughput_f128(benchmark::State& state) {
    const Inputs& in = inputs();
    throughput<double>(state, [&](double& r, int i) { r = static_cast<double>(in.fq[i]); });
}

// The next input's sign word is XORed with (result sign) ^ (input sign),
// which is zero: the sign survives the conversion.
void dbleq_latency_mivor(benchmark::State& state) {
    const Inputs& in = inputs();
    latency(state, std::uint32_t{0}, [&](std::uint32_t& link, int i) {
        mivor_real16 x = in.q[i];
        x.w[3] ^= link;
        const double d = g_dbleq(&x);
        link = (static_cast<std::uint32_t>(bits(d) >> 32) ^ x.w[3]) & 0x80000000u;
    });
}

void dbleq_latency_f128(benchmark::State& state) {
    const Inputs& in = inputs();
    latency(state, std::uint32_t{0}, [&](std::uint32_t& link, int i) {
        mivor_real16 x = in.q[i];
        x.w[3] ^= link;
        __float128 f;
        std::memcpy(&f, &x, 16);
        const double d = static_cast<double>(f);
        link = (static_cast<std::uint32_t>(bits(d) >> 32) ^ x.w[3]) & 0x80000000u;
    });
}

void qextd_throughput_mivor(benchmark::State& state) {
    const Inputs& in = inputs();
    throughput<mivor_real16>(state, [&](mivor_real16& r, int i) { g_qextd(&r, &in.d[i]); });
}

void qextd_throughput_f128(benchmark::State& state) {
    const Inputs& in = inputs();
    throughput<__float128>(state, [&](__float128& r, int i) { r = static_cast<__float128>(in.d[i]); });
}

// The next input is XORed with the result's lowest word, zero for every
// widened REAL(8).
void qextd_latency_mivor(benchmark::State& state) {
    const Inputs& in = inputs();
    latency(state, std::uint32_t{0}, [&](std::uint32_t& link, int i) {
        const double d = from_bits(bits(in.d[i]) ^ link);
        mivor_real16 r;
        g_qextd(&r, &d);
        link = r.w[0];
    });
}

void qextd_latency_f128(benchmark::State& state) {
    const Inputs& in = inputs();
    latency(state, std::uint32_t{0}, [&](std::uint32_t& link, int i) {
        const double d = from_bits(bits(in.d[i]) ^ link);
        const __float128 f = static_cast<__float128>(d);
        mivor_real16 r;
        std::memcpy(&r, &f, 16);
        link = r.w[0];
    });
}

BENCHMARK(dbleq_latency_mivor)->Name("dbleq/latency/mivor");
BENCHMARK(dbleq_latency_f128)->Name("dbleq/latency/float128");
BENCHMARK(dbleq_throughput_mivor)->Name("dbleq/throughput/mivor");
BENCHMARK(dbleq_throughput_f128)->Name("dbleq/throughput/float128");
BENCHMARK(qextd_latency_mivor)->Name("qextd/latency/mivor");
BENCHMARK(qextd_latency_f128)->Name("qextd/latency/float128");
BENCHMARK(qextd_throughput_mivor)->Name("qextd/throughput/mivor");
BENCHMARK(qextd_throughput_f128)->Name("qextd/throughput/float128");

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    // The console table, then one line per conversion and measure with the
    // nanoseconds per conversion (CPU time, of the last repetition) and the
    // ratio.
    mivor_bench::TableReporter reporter({.per = kN, .fastest = false}, "conversion", {"dbleq", "qextd"});
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
