// The GEMM blocking drivers _jwe_gdl_gmnn, _gmnt, _gmtn, _gmtt (A then B,
// n as stored, t transposed).
//
// The inner dimension k is cut into (k - 1) div 128 + 1 blocks: the first
// has k mod 128 terms (128 when k is a multiple of 128), every later one
// 128, taken in ascending k.  For every (i, j) the first block starts from
// the caller's beta and each later block from what the earlier ones left in
// C (beta exactly 1), so C(i, j) is rounded once per block.  Within a block
// the kernels keep the even/odd order of the contract (gemm_kernels.h).
//
// Nothing else about the blocking changes a bit: the rows and columns are
// cut into packed blocks and panels of whatever sizes the work area holds
// (in the static areas 512 rows of op(A) and 512 columns of op(B) at depth
// 128, proportionally more for a shorter k-block, so that a rank-7 update
// walks long columns of C), and the loops over them run in the order that
// keeps the packed data in cache: columns of C, then k-blocks, then rows;
// in a block, micro-panels of B outside, of A inside.  op(B) is packed too
// (values copied, not computed), once per k-block and column panel.
#include "matmul/gemm.h"

namespace mivor::matmul {
namespace {

inline std::int32_t min32(std::int32_t a, std::int32_t b) { return a < b ? a : b; }

// op(B)(k0 .. k0 + kb - 1, j0 .. j0 + nb - 1) into micro-panels of nr
// columns: value (k, c) at (k nr + c) bw + w for w < bw (bw copies side by
// side), zero beyond the last column.  `b` points at the first element as
// stored.
template <bool kTrans, int kWidth>
void pack_b_as(std::int32_t kb, std::int32_t nb, const double* b, std::int32_t ldb, double* packed, int nr) {
    const std::ptrdiff_t row = static_cast<std::ptrdiff_t>(nr) * kWidth;
    for (std::int32_t s = 0; s < nb; s += nr, packed += row * kb) {
        const int cols = nb - s < nr ? nb - s : nr;
        for (int c = 0; c < nr; ++c) {
            double* dst = packed + c * kWidth;
            if (c >= cols) {
                for (std::int32_t k = 0; k < kb; ++k)
                    for (int w = 0; w < kWidth; ++w) dst[k * row + w] = 0.0;
            } else if constexpr (kTrans) {
                const double* src = b + s + c;
                for (std::int32_t k = 0; k < kb; ++k)
                    for (int w = 0; w < kWidth; ++w) dst[k * row + w] = src[static_cast<std::ptrdiff_t>(k) * ldb];
            } else {
                const double* src = b + static_cast<std::ptrdiff_t>(s + c) * ldb;
                for (std::int32_t k = 0; k < kb; ++k)
                    for (int w = 0; w < kWidth; ++w) dst[k * row + w] = src[k];
            }
        }
    }
}

template <bool kTrans>
void pack_b(std::int32_t kb, std::int32_t nb, const double* b, std::int32_t ldb, double* packed, int nr, int bw) {
    if (bw == 2)
        pack_b_as<kTrans, 2>(kb, nb, b, ldb, packed, nr);
    else
        pack_b_as<kTrans, 1>(kb, nb, b, ldb, packed, nr);
}

// An edge tile, smaller than the kernel's, goes through a private tile so
// that the kernel never touches C outside the product.
void edge_tile(const GemmKernel& kernel, std::int32_t kb, const double* a, const double* b, double* c, std::int32_t ldc,
               int rows, int cols, Start start, double beta) {
    alignas(64) double t[kMaxMr * kMaxNr] = {};
    const int mr = kernel.mr;
    if (start != Start::zero)
        for (int j = 0; j < cols; ++j)
            for (int r = 0; r < rows; ++r) t[j * mr + r] = c[static_cast<std::ptrdiff_t>(j) * ldc + r];
    kernel.run(kb, 1, a, b, t, mr, start, beta);
    for (int j = 0; j < cols; ++j)
        for (int r = 0; r < rows; ++r) c[static_cast<std::ptrdiff_t>(j) * ldc + r] = t[j * mr + r];
}

// As many whole micro-panels of `unit` as `size` doubles hold at depth kb.
inline std::int32_t fit(std::int32_t size, std::int32_t kb, int unit) { return size / kb / unit * unit; }

template <bool kTransA, bool kTransB>
void drive(const GemmProblem& p, const WorkArea& w, const GemmKernel& kernel) {
    const int mr = kernel.mr, nr = kernel.nr, bw = kernel.b_width;
    const std::int32_t first = p.k % kKBlock == 0 ? kKBlock : p.k % kKBlock;
    // Columns per panel for the deepest k-block; rows per block for each.
    const std::int32_t nc = fit(w.b_size / bw, p.k < kKBlock ? p.k : kKBlock, nr);
    for (std::int32_t jc = 0; jc < p.n; jc += nc) {
        const std::int32_t nb = min32(nc, p.n - jc);
        std::int32_t kb = first;
        for (std::int32_t k0 = 0; k0 < p.k; k0 += kb, kb = kKBlock) {
            // A NaN beta is not 1 and not 0: it scales.
            const Start start = k0 > 0 || p.beta == 1.0 ? Start::copy : p.beta == 0.0 ? Start::zero : Start::scale;
            const double* b0 = kTransB ? p.b + jc + static_cast<std::ptrdiff_t>(k0) * p.ldb
                                       : p.b + k0 + static_cast<std::ptrdiff_t>(jc) * p.ldb;
            pack_b<kTransB>(kb, nb, b0, p.ldb, w.b, nr, bw);
            const std::int32_t mc = fit(w.a_size, kb, mr);
            for (std::int32_t ic = 0; ic < p.m; ic += mc) {
                const std::int32_t mb = min32(mc, p.m - ic);
                if constexpr (kTransA)
                    _jwe_gdl_gmcopya_t(mb, kb, p.alpha, p.a + k0 + static_cast<std::ptrdiff_t>(ic) * p.lda, p.lda, w.a,
                                       mr);
                else
                    _jwe_gdl_gmcopya_n(mb, kb, p.alpha, p.a + ic + static_cast<std::ptrdiff_t>(k0) * p.lda, p.lda, w.a,
                                       mr);
                for (std::int32_t jr = 0; jr < nb; jr += nr) {
                    const double* bp = w.b + static_cast<std::ptrdiff_t>(jr) * kb * bw;
                    double* cc = p.c + ic + static_cast<std::ptrdiff_t>(jc + jr) * p.ldc;
                    const int cols = nb - jr < nr ? nb - jr : nr;
                    std::int32_t ir = 0;
                    if (cols == nr) {
                        const std::int32_t tiles = mb / mr;
                        kernel.run(kb, tiles, w.a, bp, cc, p.ldc, start, p.beta);
                        ir = tiles * mr;
                    }
                    for (; ir < mb; ir += mr) {
                        const int rows = mb - ir < mr ? mb - ir : mr;
                        edge_tile(kernel, kb, w.a + static_cast<std::ptrdiff_t>(ir) * kb, bp, cc + ir, p.ldc, rows,
                                  cols, start, p.beta);
                    }
                }
            }
        }
    }
}

}  // namespace

void _jwe_gdl_gmnn(const GemmProblem& p, const WorkArea& w, const GemmKernel& k) { drive<false, false>(p, w, k); }
void _jwe_gdl_gmnt(const GemmProblem& p, const WorkArea& w, const GemmKernel& k) { drive<false, true>(p, w, k); }
void _jwe_gdl_gmtn(const GemmProblem& p, const WorkArea& w, const GemmKernel& k) { drive<true, false>(p, w, k); }
void _jwe_gdl_gmtt(const GemmProblem& p, const WorkArea& w, const GemmKernel& k) { drive<true, true>(p, w, k); }

}  // namespace mivor::matmul
