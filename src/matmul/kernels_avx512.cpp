// The AVX-512 GEMM and GEMV kernels (x86-64 Linux, chosen at run time where
// the processor has AVX-512F): eight rows per register, a 16 x 6 GEMM tile
// with 24 accumulators of the 32 registers.  Separate multiplies and adds,
// so the bits are the reference kernels'.  Contracts: gemm_kernels.h,
// gemv_kernels.h.  Built with -mavx512f.
#if defined(MIVOR_MATMUL_AVX)
#include <immintrin.h>

#include "matmul/gemm_simd.h"
#include "matmul/gemv_simd.h"

namespace mivor::matmul {
namespace {

struct Avx512 {
    using V = __m512d;
    static constexpr int kBWidth = 1;
    template <int MV, int NR>
    static constexpr bool kHandLoop = false;
    static constexpr int kLanes = 8;
    static V zero() { return _mm512_setzero_pd(); }
    static V set1(double x) { return _mm512_set1_pd(x); }
    static V load(const double* p) { return _mm512_load_pd(p); }
    static V loadu(const double* p) { return _mm512_loadu_pd(p); }
    static V broadcast(const double* p) { return _mm512_set1_pd(*p); }
    static V add(V x, V y) { return _mm512_add_pd(x, y); }
    static V mul(V x, V y) { return _mm512_mul_pd(x, y); }
    // x times *p in every lane, the broadcast folded into the multiply's
    // memory operand.  A separate broadcast of a 512-bit register costs a
    // vector-unit operation on the processors this runs on (about a third
    // of the kernel's speed); the embedded one comes with the load.  The
    // compiler would merge the broadcasts of one value into one register,
    // hence the instruction written out.
    static V mul_broadcast(V x, const double* p) {
        V r;
        __asm__("vmulpd %2%{1to8%}, %1, %0" : "=v"(r) : "v"(x), "m"(*p));
        return r;
    }
    static void storeu(double* p, V x) { _mm512_storeu_pd(p, x); }
};

constexpr int kMv = 2, kNr = 6;

bool supported() { return __builtin_cpu_supports("avx512f"); }

// GEMV: columns streaming past the sums (A as stored), columns summed at
// once (A transposed).
constexpr int kGemvStreams = 8, kGemvCols = 8;

}  // namespace

const GemmKernel kGemmKernelAvx512 = {"avx512", kMv* Avx512::kLanes, kNr,
                                      1,        &supported,          &simd_kernel<Avx512, kMv, kNr>};

const GemvKernel kGemvKernelAvx512 = {"avx512", &supported, &simd_n_rows<Avx512, kGemvStreams>,
                                      &simd_t_cols<Avx512, kGemvCols>};

}  // namespace mivor::matmul
#endif
