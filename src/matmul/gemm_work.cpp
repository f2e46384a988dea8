// The work areas of the GEMM path.
//
// A blocked product needs a place for its packed block of alpha op(A) and
// its packed panel of op(B).  A few such areas live in static storage, and
// a call takes one for its duration by an atomic flag; a call that finds
// them all taken (more threads in GEMM at once than there are areas) packs
// into a small area on its own stack instead.  So concurrent callers never
// share an area, nothing is allocated, and no lock is waited on.  Block
// sizes other than the 128-term k-block change no bit, so both kinds of
// area give the same results; the stack one is only slower (smaller panels
// are repacked more often).
#include <atomic>

#include "matmul/gemm.h"

namespace mivor::matmul {
namespace {

// 512 rows x 128 k of packed A and 128 k x 512 columns of packed B, 512
// KiB each, per static area: a block of A that stays in the second-level
// cache while each micro-panel of B serves 32 tiles from the first (with
// 128 rows, as first planned, large products ran some 8% slower).  The
// four areas are 4 MiB of zero-initialised static storage, touched only
// by the calls that use them.
constexpr std::int32_t kStaticRows = 512;
constexpr std::int32_t kStaticCols = 512;
constexpr int kStaticAreas = 4;

struct alignas(64) StaticArea {
    double a[kStaticRows * kKBlock];
    double b[kKBlock * kStaticCols];
};

StaticArea g_areas[kStaticAreas];
std::atomic<bool> g_taken[kStaticAreas];

// Room for one micro-panel row of the widest kernel and a dozen columns
// (12 is a multiple of every kernel's NR): 28 KiB of stack.
constexpr std::int32_t kStackRows = kMaxMr;
constexpr std::int32_t kStackCols = 12;

void run_driver(bool transa, bool transb, const GemmProblem& p, const WorkArea& w, const GemmKernel& kernel) {
    if (!transa && !transb)
        _jwe_gdl_gmnn(p, w, kernel);
    else if (!transa)
        _jwe_gdl_gmnt(p, w, kernel);
    else if (!transb)
        _jwe_gdl_gmtn(p, w, kernel);
    else
        _jwe_gdl_gmtt(p, w, kernel);
}

}  // namespace

void blocked_gemm(bool transa, bool transb, const GemmProblem& p, const GemmKernel* kernel, bool static_area) {
    const GemmKernel& k = kernel != nullptr ? *kernel : gemm_kernel_for_rows(p.m);
    for (int s = 0; static_area && s < kStaticAreas; ++s) {
        if (g_taken[s].load(std::memory_order_relaxed) || g_taken[s].exchange(true, std::memory_order_acquire))
            continue;
        const WorkArea w{g_areas[s].a, g_areas[s].b, kStaticRows * kKBlock, kKBlock * kStaticCols};
        run_driver(transa, transb, p, w, k);
        g_taken[s].store(false, std::memory_order_release);
        return;
    }
    alignas(64) double a[kStackRows * kKBlock];
    alignas(64) double b[kKBlock * kStackCols];
    const WorkArea w{a, b, kStackRows * kKBlock, kKBlock * kStackCols};
    run_driver(transa, transb, p, w, k);
}

}  // namespace mivor::matmul
