// g_mt21blasd: y = alpha op(A) x + beta y, then y = y + z when asked, for
// compiled code that takes the BLAS-style route (argument block:
// <mivor/descriptor.h>).
//
// Conformance: with the letter exactly "T", A's extent 1 must equal x's
// extent 1, otherwise A's extent 2 must (extents clamped to 0); a mismatch
// is error 1375, short form, and nothing is computed.  An empty inner
// dimension becomes 1 with alpha 0, so that the GEMV routine only scales y
// by beta.  Increments are the vectors' byte strides over 8; an lda of 0
// becomes 1.  With z the call goes to _jwe_gdgemva, otherwise to
// _jwe_gdgemv; their silent argument checks apply.
#include "matmul/gemm.h"
#include "matmul/operand.h"
#include "mivor/mivor.h"

using namespace mivor::matmul;

extern "C" void g_mt21blasd(const void* block) {
    const auto* args = static_cast<const mivor_gemv_args*>(block);
    std::int32_t a_rows = clamped(args->a->extent1), a_cols = clamped(args->a->extent2);
    const std::int32_t x_len = clamped(args->x->extent1);
    const bool upper_t = *args->trans == 'T';
    std::int32_t& inner = upper_t ? a_rows : a_cols;
    if (!conform_or_report(inner == x_len)) return;
    double alpha = *args->alpha;
    if (inner == 0) {
        inner = 1;
        alpha = 0.0;
    }
    const std::int32_t lda = *args->lda == 0 ? 1 : *args->lda;
    const std::int32_t incx = increment_of(args->x), incy = increment_of(args->y);
    const auto* a = static_cast<const double*>(args->a->base);
    const auto* x = static_cast<const double*>(args->x->base);
    auto* y = static_cast<double*>(args->y->base);
    if (args->z != nullptr) {
        const std::int32_t incz = increment_of(args->z);
        _jwe_gdgemva(args->trans, &a_rows, &a_cols, &alpha, a, &lda, x, &incx,
                     static_cast<const double*>(args->z->base), &incz, args->beta, y, &incy);
    } else {
        _jwe_gdgemv(args->trans, &a_rows, &a_cols, &alpha, a, &lda, x, &incx, args->beta, y, &incy);
    }
}
