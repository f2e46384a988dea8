// _jwe_gdgemm: C = alpha op(A) op(B) + beta C with the classic dgemm
// argument list.
//
//  1. Arguments are checked in the classic order; the first invalid one
//     ends the call with its code and C untouched (nothing is reported at
//     this level: the silent quick return is deliberate).
//  2. m = 0 or n = 0: nothing to do.  (alpha = 0 or k = 0) and beta = 1:
//     nothing to do (IEEE comparisons: a NaN alpha is not 0, a NaN beta is
//     not 1).  alpha = 0 or k = 0 otherwise: C = +0.0 without reading it
//     when beta = 0, else C = beta x C.
//  3. Any of m, n, k above 7: the blocked path (dl_gmnn.cpp) with the
//     even/odd kernels and 128-term k-blocks.
//  4. All of m, n, k at most 7: the reference loops, kept in the x87
//     register format like MATMUL's sums (64-bit precision for the
//     duration, so every flavour agrees), each C(i, j) rounded when stored:
//       A transposed:  t = +0 + A(1, i) op(B)(1, j) + ... over l ascending;
//                      C(i, j) = alpha t (beta = 0) or alpha t + beta C(i, j);
//       A as stored:   per column j, first C(:, j) = +0 (beta = 0) or
//                      beta C(:, j) (beta not 1), stored; then for each l,
//                      t = alpha op(B)(l, j) in the register and
//                      C(i, j) = C(i, j) + t A(i, l), stored each time.
#include "frame/x87.h"
#include "matmul/gemm.h"

namespace mivor::matmul {
namespace {

using Ext = long double;

inline std::int32_t at_least_1(std::int32_t v) { return v < 1 ? 1 : v; }

// op(X)(row, col) of a column-major X with leading dimension ld.
inline double op(const double* x, std::int32_t ld, bool trans, std::int32_t row, std::int32_t col) {
    return trans ? x[col + static_cast<std::ptrdiff_t>(row) * ld] : x[row + static_cast<std::ptrdiff_t>(col) * ld];
}

void small_gemm(bool ta, bool tb, std::int32_t m, std::int32_t n, std::int32_t k, double alpha, const double* a,
                std::int32_t lda, const double* b, std::int32_t ldb, double beta, double* c, std::int32_t ldc) {
    x87::ExtendedPrecision guard;
    for (std::int32_t j = 0; j < n; ++j) {
        double* cj = c + static_cast<std::ptrdiff_t>(j) * ldc;
        if (ta) {
            for (std::int32_t i = 0; i < m; ++i) {
                Ext t = 0.0L;
                for (std::int32_t l = 0; l < k; ++l)
                    t = t + static_cast<Ext>(op(a, lda, true, i, l)) * static_cast<Ext>(op(b, ldb, tb, l, j));
                if (beta == 0.0)
                    cj[i] = static_cast<double>(static_cast<Ext>(alpha) * t);
                else
                    cj[i] = static_cast<double>(static_cast<Ext>(alpha) * t +
                                                static_cast<Ext>(beta) * static_cast<Ext>(cj[i]));
            }
            continue;
        }
        if (beta == 0.0) {
            for (std::int32_t i = 0; i < m; ++i) cj[i] = 0.0;
        } else if (beta != 1.0) {
            for (std::int32_t i = 0; i < m; ++i)
                cj[i] = static_cast<double>(static_cast<Ext>(beta) * static_cast<Ext>(cj[i]));
        }
        for (std::int32_t l = 0; l < k; ++l) {
            const Ext t = static_cast<Ext>(alpha) * static_cast<Ext>(op(b, ldb, tb, l, j));
            const double* al = a + static_cast<std::ptrdiff_t>(l) * lda;
            for (std::int32_t i = 0; i < m; ++i)
                cj[i] = static_cast<double>(static_cast<Ext>(cj[i]) + t * static_cast<Ext>(al[i]));
        }
    }
}

}  // namespace

int _jwe_gdgemm(const char* transa, const char* transb, const std::int32_t* m, const std::int32_t* n,
                const std::int32_t* k, const double* alpha, const double* a, const std::int32_t* lda, const double* b,
                const std::int32_t* ldb, const double* beta, double* c, const std::int32_t* ldc,
                const GemmKernel* kernel) {
    const char ta = *transa, tb = *transb;
    const bool trans_a = transposes(ta), trans_b = transposes(tb);
    const std::int32_t rows_a = trans_a ? *k : *m;  // rows of A as stored
    const std::int32_t rows_b = trans_b ? *n : *k;
    if (!valid_trans(ta)) return 1;
    if (!valid_trans(tb)) return 2;
    if (*m < 0) return 3;
    if (*n < 0) return 4;
    if (*k < 0) return 5;
    if (*lda < at_least_1(rows_a)) return 8;
    if (*ldb < at_least_1(rows_b)) return 10;
    if (*ldc < at_least_1(*m)) return 13;

    const std::int32_t mm = *m, nn = *n, kk = *k, ldcc = *ldc;
    if (mm == 0 || nn == 0) return 0;
    const double al = *alpha, be = *beta;
    if ((al == 0.0 || kk == 0) && be == 1.0) return 0;
    if (al == 0.0 || kk == 0) {
        for (std::int32_t j = 0; j < nn; ++j) {
            double* cj = c + static_cast<std::ptrdiff_t>(j) * ldcc;
            if (be == 0.0)
                for (std::int32_t i = 0; i < mm; ++i) cj[i] = 0.0;
            else
                for (std::int32_t i = 0; i < mm; ++i) cj[i] = be * cj[i];
        }
        return 0;
    }
    if (mm > 7 || nn > 7 || kk > 7) {
        blocked_gemm(trans_a, trans_b, GemmProblem{mm, nn, kk, al, a, *lda, b, *ldb, be, c, ldcc}, kernel);
        return 0;
    }
    small_gemm(trans_a, trans_b, mm, nn, kk, al, a, *lda, b, *ldb, be, c, ldcc);
    return 0;
}

}  // namespace mivor::matmul
