#include "speed.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "mivor/mivor.h"

namespace mivor::tool {
namespace {

constexpr int kInputs = 2048;
constexpr int kPasses = 32;
constexpr int kRepetitions = 7;

volatile double g_sink;

// Nanoseconds per element of `body` over kInputs elements, the fastest of
// kRepetitions timings of kPasses passes each.
template <class Body>
double ns_per_element(Body body) {
    double best = 1e300;
    for (int r = 0; r < kRepetitions; ++r) {
        const auto start = std::chrono::steady_clock::now();
        double acc = 0;
        for (int p = 0; p < kPasses; ++p) acc += body();
        const auto stop = std::chrono::steady_clock::now();
        g_sink = acc;
        const double ns = std::chrono::duration<double, std::nano>(stop - start).count();
        if (ns < best) best = ns;
    }
    return best / (static_cast<double>(kPasses) * kInputs);
}

std::vector<double> inputs(double lo, double hi) {
    std::vector<double> v(kInputs);
    std::uint64_t s = 0x9E3779B97F4A7C15u;
    for (double& x : v) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        x = lo + (hi - lo) * static_cast<double>(s >> 11) * 0x1p-53;
    }
    return v;
}

void row(const char* name, const char* peer, double mine, double theirs) {
    std::printf("  %-22s %-24s %8.2f %8.2f %8.2f\n", name, peer, mine, theirs, mine / theirs);
}

template <class Mine, class Theirs>
void compare(const char* name, const char* peer, const std::vector<double>& in, Mine mine, Theirs theirs) {
    const double a = ns_per_element([&] {
        double acc = 0;
        for (double x : in) acc += mine(x);
        return acc;
    });
    const double b = ns_per_element([&] {
        double acc = 0;
        for (double x : in) acc += theirs(x);
        return acc;
    });
    row(name, peer, a, b);
}

#if defined(__SSE2__)
template <__m128d (*P)(__m128d), class Scalar>
void compare_packed(const char* name, const std::vector<double>& in, Scalar scalar) {
    const double a = ns_per_element([&] {
        __m128d acc = _mm_setzero_pd();
        for (int i = 0; i < kInputs; i += 2) acc = _mm_add_pd(acc, P(_mm_loadu_pd(&in[i])));
        double lanes[2];
        _mm_storeu_pd(lanes, acc);
        return lanes[0] + lanes[1];
    });
    const double b = ns_per_element([&] {
        double acc = 0;
        for (double x : in) acc += scalar(x);
        return acc;
    });
    row(name, "two scalar calls", a, b);
}
#endif

#if defined(__SIZEOF_FLOAT128__)
// The REAL(16) operators on operands prepared beforehand in both formats,
// so that only the operation is timed.
void compare_quad() {
    const auto in = inputs(0.5, 2.0);
    std::vector<mivor_real16> q(kInputs);
    std::vector<__float128> f(kInputs);
    for (int i = 0; i < kInputs; ++i) {
        g_qextd(&q[i], &in[i]);
        f[i] = in[i];
    }
    using Op = mivor_real16* (*)(mivor_real16*, const mivor_real16*, const mivor_real16*);
    auto mine = [&](Op op) {
        return ns_per_element([&] {
            std::uint32_t acc = 0;
            mivor_real16 r;
            for (int i = 0; i + 1 < kInputs; ++i) {
                op(&r, &q[i], &q[i + 1]);
                acc ^= r.w[0];
            }
            return static_cast<double>(acc);
        });
    };
    auto theirs = [&](int op) {
        return ns_per_element([&] {
            std::uint64_t acc = 0;
            for (int i = 0; i + 1 < kInputs; ++i) {
                const __float128 r = op == 0 ? f[i] + f[i + 1] : op == 1 ? f[i] * f[i + 1] : f[i] / f[i + 1];
                std::uint64_t low;
                std::memcpy(&low, &r, sizeof low);
                acc ^= low;
            }
            return static_cast<double>(acc);
        });
    };
    row("g_aqaq", "__float128 +", mine(g_aqaq), theirs(0));
    row("g_aqmq", "__float128 *", mine(g_aqmq), theirs(1));
    row("g_aqdq", "__float128 /", mine(g_aqdq), theirs(2));
}
#endif

}  // namespace

int run_speed() {
    std::printf("  %-22s %-24s %8s %8s %8s\n", "export", "peer", "ns", "peer ns", "ratio");
    const auto exp_in = inputs(-700, 700), log_in = inputs(1e-300, 1e300), trig_in = inputs(-10, 10);
    compare("g_dexp", "libm exp", exp_in, [](double x) { return g_dexp(&x); }, [](double x) { return std::exp(x); });
    compare("g_dlog", "libm log", log_in, [](double x) { return g_dlog(&x); }, [](double x) { return std::log(x); });
    compare("g_dsin", "libm sin", trig_in, [](double x) { return g_dsin(&x); }, [](double x) { return std::sin(x); });
    compare("g_dcos", "libm cos", trig_in, [](double x) { return g_dcos(&x); }, [](double x) { return std::cos(x); });
    compare("g_dtan", "libm tan", trig_in, [](double x) { return g_dtan(&x); }, [](double x) { return std::tan(x); });
    compare("g_exp", "libm expf", inputs(-80, 80),
            [](double x) { const float f = static_cast<float>(x); return static_cast<double>(g_exp(&f)); },
            [](double x) { return static_cast<double>(std::exp(static_cast<float>(x))); });
    compare("g_alog", "libm logf", inputs(1e-30, 1e30),
            [](double x) { const float f = static_cast<float>(x); return static_cast<double>(g_alog(&f)); },
            [](double x) { return static_cast<double>(std::log(static_cast<float>(x))); });
    compare("g_sin", "libm sinf", trig_in,
            [](double x) { const float f = static_cast<float>(x); return static_cast<double>(g_sin(&f)); },
            [](double x) { return static_cast<double>(std::sin(static_cast<float>(x))); });
    const auto unit_in = inputs(-1, 1), deg_in = inputs(-720, 720), hyp_in = inputs(-20, 20);
    compare("g_dasin", "libm asin", unit_in, [](double x) { return g_dasin(&x); }, [](double x) { return std::asin(x); });
    compare("g_datan (FPATAN)", "libm atan", trig_in, [](double x) { return static_cast<double>(g_datan(&x)); },
            [](double x) { return std::atan(x); });
    compare("g_dsind", "libm sin(x pi/180)", deg_in, [](double x) { return g_dsind(&x); },
            [](double x) { return std::sin(x * (3.141592653589793 / 180)); });
    compare("g_dsinh", "libm sinh", hyp_in, [](double x) { return g_dsinh(&x); }, [](double x) { return std::sinh(x); });
    compare("g_dcosh", "libm cosh", hyp_in, [](double x) { return g_dcosh(&x); }, [](double x) { return std::cosh(x); });
    compare("g_dtanh", "libm tanh", hyp_in, [](double x) { return g_dtanh(&x); }, [](double x) { return std::tanh(x); });
    compare("g_dscn", "g_dsin + g_dcos", trig_in,
            [](double x) { mivor_complex8 r; g_dscn(&r, &x); return r.re + r.im; },
            [](double x) { return g_dsin(&x) + g_dcos(&x); });
#if defined(__SSE2__)
    compare_packed<pk_dexp>("pk_dexp", exp_in, [](double x) { return g_dexp(&x); });
    compare_packed<pk_dlog>("pk_dlog", log_in, [](double x) { return g_dlog(&x); });
    compare_packed<pk_dsin>("pk_dsin", trig_in, [](double x) { return g_dsin(&x); });
#endif
#if defined(__SIZEOF_FLOAT128__)
    compare_quad();
#endif
    return 0;
}

}  // namespace mivor::tool
