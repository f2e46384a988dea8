// Cases for the matrix exports (g_matml*, jwe_gmd2, jwe_gmx2, g_mt21blasd,
// g_mt22blasd), whose one argument is a block of descriptor and operand
// addresses: random but valid shapes, strides and leading dimensions, and
// now and then a hostile one (negative or huge extents, zero or too small
// leading dimensions, byte strides that are not whole elements, unknown
// letters), every one of which has a documented outcome that touches
// nothing outside its operands.
//
// All data lives in a caller-provided arena: the operands, the result, the
// stride and extent cells and the scalars in the data part, the
// descriptors (which hold addresses) in the pointer part.  The data part
// holds no address, so its bytes after the call are the same on every
// flavour exactly when the export computed the same bits, wrote the same
// cells and nothing else.  The golden run digests them.
//
// The fuzzer draws from the same generator, more hostile still (any
// extent, stride, rank, letter or leading dimension, as long as what the
// descriptors name fits in the arena), and learns where everything lies:
// the areas the case allocated (the bytes between them are left as the
// caller filled them) and the bytes the export may write, which are the
// result's elements and cells as the descriptors and leading dimensions
// name them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "exports/registry.h"

namespace mivor::tool {

struct MatrixArena {
    unsigned char* data;      // digested after the call
    std::size_t data_size;    // at least kMatrixDataBytes
    unsigned char* pointers;  // descriptors; not digested
    std::size_t pointers_size;
};

inline constexpr std::size_t kMatrixDataBytes = 1 << 20;
inline constexpr std::size_t kMatrixPointerBytes = 1024;

// A part of the data arena, as offsets [begin, end).
struct MatrixArea {
    std::size_t begin, end;
    const char* what;  // "A", "result cells", "lda", ...
};

struct MatrixLayout {
    std::size_t block_size = 0;        // bytes of the argument block placed over the slots
    std::size_t data_used = 0;         // bytes of the data part the case reaches
    // Bytes of the data part the generator wrote, counting the draws it
    // abandoned because they did not fit: those can reach far beyond the
    // case it keeps, into what becomes its gaps and beyond data_used.
    std::size_t data_touched = 0;
    std::vector<MatrixArea> areas;     // everything the case allocated
    std::vector<MatrixArea> writable;  // what the export may write
};

// Whether `name` is one of the matrix exports.
bool is_matrix_export(std::string_view name);

// One case: draws it from the splitmix64 `state`, builds it in `arena`,
// writes the argument block over the Value slots `args` (the block may
// span several of them; `slots` says how many there are) and calls the
// export through row.thunk.  Returns the data part of the arena to digest.
std::span<const unsigned char> run_matrix_case(const exports::Row& row, std::uint64_t& state, exports::Value* args,
                                               std::size_t slots, const MatrixArena& arena);

// One hostile case for the fuzzer: draws it from `state`, builds it in
// `arena` with `gap` bytes left between allocations, writes the block over
// the slots and describes it in `layout`.  Does not call the export.  The
// gaps keep what the caller left in them, except where an abandoned draw
// wrote (layout.data_touched says how far that goes): a caller that wants
// its pattern there puts it back.  False when the slots are too few or no
// draw fits; data_touched is set either way.
bool build_hostile_matrix_case(const exports::Row& row, std::uint64_t state, exports::Value* args, std::size_t slots,
                               const MatrixArena& arena, std::size_t gap, MatrixLayout& layout);

}  // namespace mivor::tool
