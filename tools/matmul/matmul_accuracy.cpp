// Accuracy of the REAL(8) matrix products against sums in binary128
// (products of doubles are exact there; the sums' own rounding is far below
// a double's): g_matmld (x87 sums, blocks of 8), g_mt22blasd (even/odd
// double sums, 128-term blocks), and for comparison OpenBLAS's dgemm and,
// where linked, gfortran's MATMUL.  Operands uniform in [-1, 1), or with
// exponents spread over 2^-20 .. 2^20 (--spread).  Errors in units of the
// last place of each exact result (mean, and the share of results that are
// the exact one correctly rounded), and, since cancellation makes the ulps
// of a small result meaningless, the largest error relative to the sum of
// |a| |b| in units of 2^-53, the scale of the classic error bound (k u
// for a running sum).
//
//   matmul_accuracy [--spread] [N ...]      (default 64 256 512)
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "mivor/descriptor.h"
#include "mivor/mivor.h"

extern "C" {
void cblas_dgemm(int order, int transa, int transb, int m, int n, int k, double alpha, const double* a, int lda,
                 const double* b, int ldb, double beta, double* c, int ldc);
void openblas_set_num_threads(int n);
#if defined(MIVOR_ACCURACY_GFORTRAN)
void gf_matmul_d(int m, int k, int n, const double* a, const double* b, double* c);
#endif
}

namespace {

std::uint64_t g_state = 12345;
double uniform() {
    g_state = g_state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<double>(g_state >> 11) * 0x1p-52 - 1.0;
}

struct Desc {
    std::int32_t s1, e1, s2, e2;
    mivor_descriptor d{};
    Desc(double* base, int n) : s1(8), e1(n), s2(8 * n), e2(n) {
        d.base = base;
        d.rank = 2;
        d.stride1 = &s1;
        d.extent1 = &e1;
        d.stride2 = &s2;
        d.extent2 = &e2;
    }
};

// |got - exact| in ulps of the double nearest exact.
double ulps(double got, __float128 exact) {
    const double e = static_cast<double>(exact);
    if (e == 0) return got == 0 ? 0 : INFINITY;
    const double ulp = std::ldexp(1.0, std::ilogb(e) - 52);
    const __float128 diff = static_cast<__float128>(got) - exact;
    return std::fabs(static_cast<double>(diff)) / ulp;
}

void report(const char* what, const std::vector<double>& c, const std::vector<__float128>& exact,
            const std::vector<double>& scale) {
    double worst = 0, sum = 0;
    std::size_t exact_hits = 0;
    for (std::size_t i = 0; i < c.size(); ++i) {
        sum += ulps(c[i], exact[i]);
        const double err = std::fabs(static_cast<double>(static_cast<__float128>(c[i]) - exact[i]));
        const double rel = err / (scale[i] * 0x1p-53);
        worst = rel > worst ? rel : worst;
        exact_hits += c[i] == static_cast<double>(exact[i]);
    }
    std::printf("  %-18s mean %7.3f ulp   correctly rounded %5.1f%%   max error %7.3f u sum|ab|\n", what,
                sum / static_cast<double>(c.size()),
                100.0 * static_cast<double>(exact_hits) / static_cast<double>(c.size()), worst);
}

}  // namespace

int main(int argc, char** argv) {
    openblas_set_num_threads(1);
    bool spread = false;
    std::vector<int> sizes;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--spread") == 0)
            spread = true;
        else
            sizes.push_back(std::atoi(argv[i]));
    }
    if (sizes.empty()) sizes = {64, 256, 512};
    for (int n : sizes) {
        std::vector<double> a(std::size_t(n) * n), b(a.size());
        for (double& x : a) x = spread ? std::ldexp(uniform(), static_cast<int>(uniform() * 20)) : uniform();
        for (double& x : b) x = spread ? std::ldexp(uniform(), static_cast<int>(uniform() * 20)) : uniform();
        std::vector<__float128> exact(a.size());
        std::vector<double> scale(a.size());
        for (int j = 0; j < n; ++j)
            for (int i = 0; i < n; ++i) {
                __float128 s = 0;
                double t = 0;
                for (int k = 0; k < n; ++k) {
                    const double x = a[i + std::size_t(k) * n], y = b[k + std::size_t(j) * n];
                    s += static_cast<__float128>(x) * y;
                    t += std::fabs(x * y);
                }
                exact[i + std::size_t(j) * n] = s;
                scale[i + std::size_t(j) * n] = t;
            }
        std::printf("n = %d, operands %s\n", n, spread ? "+-[2^-20, 2^20)" : "uniform in [-1, 1)");
        std::vector<double> c(a.size(), 0.0);
        Desc da(a.data(), n), db(b.data(), n), dc(c.data(), n);
        mivor_matmul_args margs{&dc.d, &da.d, &db.d};
        g_matmld(&margs);
        report("g_matmld", c, exact, scale);
        const char t = 'N';
        const double one = 1, zero = 0;
        const std::int32_t ld = n;
        mivor_gemm_args gargs{&dc.d, &da.d, &db.d, nullptr, &t, &t, &one, &zero, &ld, &ld, &ld, &ld};
        g_mt22blasd(&gargs);
        report("g_mt22blasd", c, exact, scale);
        cblas_dgemm(102, 111, 111, n, n, n, 1.0, a.data(), n, b.data(), n, 0.0, c.data(), n);
        report("OpenBLAS dgemm", c, exact, scale);
#if defined(MIVOR_ACCURACY_GFORTRAN)
        gf_matmul_d(n, n, n, a.data(), b.data(), c.data());
        report("gfortran MATMUL", c, exact, scale);
#endif
    }
    return 0;
}
