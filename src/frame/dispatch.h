// Run-time choice of instruction encoding for the hot elementary kernels.
//
// With MIVOR_DISPATCH_AVX (the x86-64 Linux build) each export marked
// MIVOR_DISPATCHED is compiled twice, for the SSE2 baseline and for AVX,
// and the dynamic linker binds one of them on the first call according to
// the processor (GCC's target_clones: an ifunc, no cost per call beyond the
// usual PLT jump).  Only the encoding changes: AVX's three-operand forms
// drop the register copies that two-operand SSE needs, worth 5-10% per
// call in these latency-bound kernels.  The arithmetic is the same IEEE
// operations in the same order, and neither clone may fuse a multiply and
// an add (-ffp-contract=off; FMA is not in the AVX target), so both give
// the same bits.  The i386 and win32 builds and the sanitizer build keep
// the baseline alone, and the golden comparison of the flavours checks
// the clones against it.
#pragma once

#if defined(MIVOR_DISPATCH_AVX)
#define MIVOR_DISPATCHED __attribute__((target_clones("avx", "default")))
#else
#define MIVOR_DISPATCHED
#endif
