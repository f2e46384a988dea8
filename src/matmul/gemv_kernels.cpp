// The portable reference GEMV kernels, written as the contract reads
// (gemv_kernels.h), and the registry of the kernels built in.
#include "matmul/gemv_kernels.h"

#include <atomic>
#include <cstring>

namespace mivor::matmul {
namespace {

void reference_n_rows(std::int32_t m, std::int32_t n, double alpha, const double* a, std::int32_t lda, const double* x,
                      std::int32_t incx, double* y) {
    for (std::int32_t i = 0; i < m; ++i) {
        double s = 0.0;
        for (std::int32_t j = 0; j < n; ++j)
            s = s + a[i + static_cast<std::ptrdiff_t>(j) * lda] * x[static_cast<std::ptrdiff_t>(j) * incx];
        y[i] = y[i] + alpha * s;
    }
}

void reference_t_cols(std::int32_t m, std::int32_t n, double alpha, const double* a, std::int32_t lda, const double* x,
                      double* y, std::int32_t incy) {
    const std::int32_t full = m / 8 * 8;
    for (std::int32_t j = 0; j < n; ++j) {
        const double* aj = a + static_cast<std::ptrdiff_t>(j) * lda;
        double part[8] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
        for (std::int32_t i = 0; i < full; ++i) part[i % 8] = part[i % 8] + aj[i] * x[i];
        double s = join_parts(part);
        for (std::int32_t i = full; i < m; ++i) s = s + aj[i] * x[i];
        double& yj = y[static_cast<std::ptrdiff_t>(j) * incy];
        yj = yj + alpha * s;
    }
}

bool always() { return true; }

const GemvKernel* const kPreference[] = {
#if defined(MIVOR_MATMUL_AVX)
    &kGemvKernelAvx512,
    &kGemvKernelAvx2,
#endif
    &kGemvKernelSse2,
};

const GemvKernel* const kAll[] = {
    &kGemvKernelReference,
    &kGemvKernelSse2,
#if defined(MIVOR_MATMUL_AVX)
    &kGemvKernelAvx2,
    &kGemvKernelAvx512,
#endif
};

}  // namespace

const GemvKernel kGemvKernelReference = {"reference", &always, &reference_n_rows, &reference_t_cols};

std::span<const GemvKernel* const> gemv_kernels() { return kAll; }

const GemvKernel& gemv_kernel() {
    static std::atomic<const GemvKernel*> chosen{nullptr};
    const GemvKernel* k = chosen.load(std::memory_order_relaxed);
    if (k == nullptr) {
        k = &kGemvKernelSse2;
        for (const GemvKernel* candidate : kPreference)
            if (candidate->supported()) {
                k = candidate;
                break;
            }
        chosen.store(k, std::memory_order_relaxed);
    }
    return *k;
}

const GemvKernel* find_gemv_kernel(const char* name) {
    for (const GemvKernel* k : kAll)
        if (std::strcmp(k->name, name) == 0) return k->supported() ? k : nullptr;
    return nullptr;
}

}  // namespace mivor::matmul
