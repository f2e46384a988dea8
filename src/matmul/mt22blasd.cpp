// g_mt22blasd: C = alpha op(A) op(B) + beta C, then C = C + D when asked,
// for compiled code that takes the BLAS-style route (argument block:
// <mivor/descriptor.h>).
//
// Conformance is decided on the descriptors' extents (negative ones count
// as 0): the inner extent of op(A) is A's extent 1 when A's letter is
// exactly "T", else its extent 2; that of op(B) is B's extent 2 when B's
// letter is exactly "T", else its extent 1.  If they differ: error 1375,
// short form, and nothing else happens.  M, K and N come from the extents
// the same way, so only an upper-case "T" swaps them here although the
// GEMM routine transposes for "t", "C" and "c" as well; this asymmetry is
// kept as compiled code expects it.  An lda or ldb of 0 becomes 1; ldc is
// passed as it is and the GEMM routine's own check applies.
//
// D is added after the product whatever the GEMM routine did, except when
// ldc or ldd is below max(1, M): then C or D is not an M x N matrix with
// that leading dimension, and adding would write outside C (below its base
// for a negative ldc, past its end for one too small), so nothing is added.
#include "matmul/gemm.h"
#include "matmul/operand.h"
#include "mivor/mivor.h"

using namespace mivor::matmul;

extern "C" void g_mt22blasd(const void* block) {
    const auto* args = static_cast<const mivor_gemm_args*>(block);
    const std::int32_t a_rows = clamped(args->a->extent1), a_cols = clamped(args->a->extent2);
    const std::int32_t b_rows = clamped(args->b->extent1), b_cols = clamped(args->b->extent2);
    const bool swap_a = *args->transa == 'T', swap_b = *args->transb == 'T';
    const std::int32_t inner_a = swap_a ? a_rows : a_cols;
    const std::int32_t inner_b = swap_b ? b_cols : b_rows;
    if (!conform_or_report(inner_a == inner_b)) return;
    const double alpha = *args->alpha;
    const std::int32_t m = swap_a ? a_cols : a_rows, k = inner_a, n = swap_b ? b_rows : b_cols;
    const std::int32_t lda = *args->lda == 0 ? 1 : *args->lda;
    const std::int32_t ldb = *args->ldb == 0 ? 1 : *args->ldb;
    double* c = static_cast<double*>(args->c->base);
    _jwe_gdgemm(args->transa, args->transb, &m, &n, &k, &alpha, static_cast<const double*>(args->a->base), &lda,
                static_cast<const double*>(args->b->base), &ldb, args->beta, c, args->ldc);
    const std::int32_t least = m > 1 ? m : 1;
    if (args->d != nullptr && *args->ldc >= least && *args->ldd >= least)
        _jwe_gdl_gema(m, n, static_cast<const double*>(*args->d), *args->ldd, c, *args->ldc);
}
