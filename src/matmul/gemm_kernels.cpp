// The portable reference GEMM kernel, written as the contract reads
// (gemm_kernels.h), and the registry of the kernels built in.
#include "matmul/gemm_kernels.h"

#include <atomic>
#include <cstring>

namespace mivor::matmul {
namespace {

constexpr int kRefMr = 4, kRefNr = 4;

void reference_tile(int kb, const double* a, const double* b, double* c, std::ptrdiff_t ldc, Start start, double beta) {
    for (int j = 0; j < kRefNr; ++j) {
        for (int r = 0; r < kRefMr; ++r) {
            double& cij = c[j * ldc + r];
            double even = start == Start::zero ? 0.0 : start == Start::copy ? cij : beta * cij;
            double odd = 0.0;
            int k = 0;
            for (; k + 1 < kb; k += 2) {
                even = even + a[k * kRefMr + r] * b[k * kRefNr + j];
                odd = odd + a[(k + 1) * kRefMr + r] * b[(k + 1) * kRefNr + j];
            }
            if (k < kb) even = even + a[k * kRefMr + r] * b[k * kRefNr + j];
            cij = odd + even;
        }
    }
}

void reference_kernel(int kb, int tiles, const double* a, const double* b, double* c, std::ptrdiff_t ldc, Start start,
                      double beta) {
    for (int t = 0; t < tiles; ++t)
        reference_tile(kb, a + static_cast<std::ptrdiff_t>(t) * kRefMr * kb, b, c + t * kRefMr, ldc, start, beta);
}

bool always() { return true; }

// Widest first: the first supported one is the fastest.
const GemmKernel* const kPreference[] = {
#if defined(MIVOR_MATMUL_AVX)
    &kGemmKernelAvx512,
    &kGemmKernelAvx2,
#endif
    &kGemmKernelSse2,
};

const GemmKernel* const kAll[] = {
    &kGemmKernelReference,
    &kGemmKernelSse2,
#if defined(MIVOR_MATMUL_AVX)
    &kGemmKernelAvx2,
    &kGemmKernelAvx512,
#endif
};

}  // namespace

const GemmKernel kGemmKernelReference = {"reference", kRefMr, kRefNr, 1, &always, &reference_kernel};

std::span<const GemmKernel* const> gemm_kernels() { return kAll; }

const GemmKernel& gemm_kernel() {
    // Every caller computes the same answer, so a race only repeats it.
    static std::atomic<const GemmKernel*> chosen{nullptr};
    const GemmKernel* k = chosen.load(std::memory_order_relaxed);
    if (k == nullptr) {
        k = &kGemmKernelSse2;
        for (const GemmKernel* candidate : kPreference)
            if (candidate->supported()) {
                k = candidate;
                break;
            }
        chosen.store(k, std::memory_order_relaxed);
    }
    return *k;
}

const GemmKernel& gemm_kernel_for_rows(std::int32_t m) {
    const GemmKernel& fastest = gemm_kernel();
#if defined(MIVOR_MATMUL_AVX)
    // The 16-row AVX-512 tile computes 16 rows for at most 8: the 8-row
    // AVX2 tile runs at nearly the same rate where both are supported.
    if (&fastest == &kGemmKernelAvx512 && m <= kGemmKernelAvx2.mr && kGemmKernelAvx2.supported())
        return kGemmKernelAvx2;
#endif
    (void)m;
    return fastest;
}

const GemmKernel* find_gemm_kernel(const char* name) {
    for (const GemmKernel* k : kAll)
        if (std::strcmp(k->name, name) == 0) return k->supported() ? k : nullptr;
    return nullptr;
}

}  // namespace mivor::matmul
