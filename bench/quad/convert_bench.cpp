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
#include <cstdio>
#include <cstring>
#include <map>
#include <string>

#include "mivor/mivor.h"

namespace {

constexpr int kN = 1024;

struct Inputs {
    mivor_real16 q[kN];
    __float128 fq[kN];
    double d[kN];
};

std::uint64_t splitmix(std::uint64_t& s) {
    std::uint64_t z = (s += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

std::uint64_t bits(double v) {
    std::uint64_t b;
    std::memcpy(&b, &v, 8);
    return b;
}
double from_bits(std::uint64_t b) {
    double v;
    std::memcpy(&v, &b, 8);
    return v;
}

// REAL(16) values within REAL(8)'s normal range (exponents within 2^+-500)
// and REAL(8) values over the same range; random signs and fractions.
const Inputs& inputs() {
    static Inputs in;
    static bool ready = false;
    if (!ready) {
        std::uint64_t s = 2026;
        for (int i = 0; i < kN; ++i) {
            const std::uint64_t a = splitmix(s), b = splitmix(s);
            const auto field = static_cast<std::uint32_t>(16383 - 500 + splitmix(s) % 1001);
            in.q[i].w[0] = static_cast<std::uint32_t>(a);
            in.q[i].w[1] = static_cast<std::uint32_t>(a >> 32);
            in.q[i].w[2] = static_cast<std::uint32_t>(b);
            in.q[i].w[3] = (static_cast<std::uint32_t>(b >> 32) & 0x8000FFFFu) | (field << 16);
            std::memcpy(&in.fq[i], &in.q[i], 16);
            const std::uint64_t exponent = 1023 - 500 + splitmix(s) % 1001;
            in.d[i] = from_bits((splitmix(s) & 0x800FFFFFFFFFFFFFu) | (exponent << 52));
        }
        ready = true;
    }
    return in;
}

void dbleq_throughput_mivor(benchmark::State& state) {
    const Inputs& in = inputs();
    static double r[kN];
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) r[i] = g_dbleq(&in.q[i]);
        benchmark::DoNotOptimize(r);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

void dbleq_throughput_f128(benchmark::State& state) {
    const Inputs& in = inputs();
    static double r[kN];
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) r[i] = static_cast<double>(in.fq[i]);
        benchmark::DoNotOptimize(r);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

// The next input's sign word is XORed with (result sign) ^ (input sign),
// which is zero: the sign survives the conversion.
void dbleq_latency_mivor(benchmark::State& state) {
    const Inputs& in = inputs();
    for (auto _ : state) {
        std::uint32_t link = 0;
        for (int i = 0; i < kN; ++i) {
            mivor_real16 x = in.q[i];
            x.w[3] ^= link;
            const double d = g_dbleq(&x);
            link = (static_cast<std::uint32_t>(bits(d) >> 32) ^ x.w[3]) & 0x80000000u;
        }
        benchmark::DoNotOptimize(link);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

void dbleq_latency_f128(benchmark::State& state) {
    const Inputs& in = inputs();
    for (auto _ : state) {
        std::uint32_t link = 0;
        for (int i = 0; i < kN; ++i) {
            mivor_real16 x = in.q[i];
            x.w[3] ^= link;
            __float128 f;
            std::memcpy(&f, &x, 16);
            const double d = static_cast<double>(f);
            link = (static_cast<std::uint32_t>(bits(d) >> 32) ^ x.w[3]) & 0x80000000u;
        }
        benchmark::DoNotOptimize(link);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

void qextd_throughput_mivor(benchmark::State& state) {
    const Inputs& in = inputs();
    static mivor_real16 r[kN];
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) g_qextd(&r[i], &in.d[i]);
        benchmark::DoNotOptimize(r);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

void qextd_throughput_f128(benchmark::State& state) {
    const Inputs& in = inputs();
    static __float128 r[kN];
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) r[i] = static_cast<__float128>(in.d[i]);
        benchmark::DoNotOptimize(r);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

// The next input is XORed with the result's lowest word, zero for every
// widened REAL(8).
void qextd_latency_mivor(benchmark::State& state) {
    const Inputs& in = inputs();
    for (auto _ : state) {
        std::uint32_t link = 0;
        for (int i = 0; i < kN; ++i) {
            const double d = from_bits(bits(in.d[i]) ^ link);
            mivor_real16 r;
            g_qextd(&r, &d);
            link = r.w[0];
        }
        benchmark::DoNotOptimize(link);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

void qextd_latency_f128(benchmark::State& state) {
    const Inputs& in = inputs();
    for (auto _ : state) {
        std::uint32_t link = 0;
        for (int i = 0; i < kN; ++i) {
            const double d = from_bits(bits(in.d[i]) ^ link);
            const __float128 f = static_cast<__float128>(d);
            mivor_real16 r;
            std::memcpy(&r, &f, 16);
            link = r.w[0];
        }
        benchmark::DoNotOptimize(link);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

BENCHMARK(dbleq_latency_mivor)->Name("dbleq/latency/mivor");
BENCHMARK(dbleq_latency_f128)->Name("dbleq/latency/float128");
BENCHMARK(dbleq_throughput_mivor)->Name("dbleq/throughput/mivor");
BENCHMARK(dbleq_throughput_f128)->Name("dbleq/throughput/float128");
BENCHMARK(qextd_latency_mivor)->Name("qextd/latency/mivor");
BENCHMARK(qextd_latency_f128)->Name("qextd/latency/float128");
BENCHMARK(qextd_throughput_mivor)->Name("qextd/throughput/mivor");
BENCHMARK(qextd_throughput_f128)->Name("qextd/throughput/float128");

// The console table, then one line per conversion and measure with the
// nanoseconds per conversion and the ratio.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.iterations == 0) continue;
            ns_[run.benchmark_name()] = run.GetAdjustedCPUTime() / kN;
        }
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        std::printf("\n%-18s %12s %12s %8s\n", "conversion", "mivor ns", "float128 ns", "ratio");
        for (const char* op : {"dbleq", "qextd"}) {
            for (const char* measure : {"latency", "throughput"}) {
                const std::string base = std::string(op) + "/" + measure;
                const auto m = ns_.find(base + "/mivor"), f = ns_.find(base + "/float128");
                if (m == ns_.end() || f == ns_.end()) continue;
                std::printf("%-18s %12.2f %12.2f %8.2f\n", base.c_str(), m->second, f->second, m->second / f->second);
            }
        }
    }

private:
    std::map<std::string, double> ns_;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
