// A self-timed companion of arith_bench for a shared, busy machine: each
// repetition times mivor and __float128 back to back on the same operands,
// and the table keeps the fastest repetition of each, so that both sides
// see the same neighbours.  Same operands and measures as arith_bench.
//
//   quad_arith_timing [repetitions]      (default 40)
#include <chrono>
#include <cstdlib>
#include <string>

#include "mivor/mivor.h"
#include "support/operands.h"
#include "support/table.h"

namespace {

using mivor_bench::f128_op;
using mivor_bench::kN;

constexpr int kPasses = 50;

using mivor_bench::kPool;

template <int n>
struct Operands {
    mivor_real16 x[n], y[n], r[n];
    __float128 fx[n], fy[n], fr[n];
};
Operands<kPool> spread;  // walked kN pairs per pass
Operands<kN> chain;

// body(base) does kN operations from pair `base` of the pool on.
template <class Body>
double ns_per_op(Body body) {
    const auto t0 = std::chrono::steady_clock::now();
    for (int p = 0; p < kPasses; ++p) {
        body((p * kN) % kPool);
        __asm__ __volatile__("" ::: "memory");  // every pass is done anew
    }
    const auto t1 = std::chrono::steady_clock::now();
    return std::chrono::duration<double, std::nano>(t1 - t0).count() / (double{kPasses} * kN);
}

template <int Op>
void measure(const char* name, int reps) {
    const mivor_bench::QuadOp fn = mivor_bench::kMivorQuadOps[Op];
    double best[4] = {1e30, 1e30, 1e30, 1e30};  // latency mivor/f128, throughput mivor/f128
    for (int rep = 0; rep < reps; ++rep) {
        double t = ns_per_op([&](int) {
            mivor_real16 r = chain.x[0];
            for (int i = 0; i < kN; ++i) fn(&r, &r, &chain.y[i]);
            chain.r[0] = r;
        });
        if (t < best[0]) best[0] = t;
        t = ns_per_op([&](int) {
            __float128 r = chain.fx[0];
            for (int i = 0; i < kN; ++i) r = f128_op<Op>(r, chain.fy[i]);
            chain.fr[0] = r;
        });
        if (t < best[1]) best[1] = t;
        t = ns_per_op([&](int base) {
            for (int i = base; i < base + kN; ++i) fn(&spread.r[i], &spread.x[i], &spread.y[i]);
        });
        if (t < best[2]) best[2] = t;
        t = ns_per_op([&](int base) {
            for (int i = base; i < base + kN; ++i) spread.fr[i] = f128_op<Op>(spread.fx[i], spread.fy[i]);
        });
        if (t < best[3]) best[3] = t;
    }
    mivor_bench::print_row((std::string(name) + "/latency").c_str(), best[0], best[1]);
    mivor_bench::print_row((std::string(name) + "/throughput").c_str(), best[2], best[3]);
}

}  // namespace

int main(int argc, char** argv) {
    const int reps = argc > 1 ? std::atoi(argv[1]) : 40;
    mivor_bench::fill_quad_operands(spread, chain);
    mivor_bench::print_header("operation");
    measure<0>("add", reps);
    measure<1>("sub", reps);
    measure<2>("mul", reps);
    measure<3>("div", reps);
    return 0;
}
