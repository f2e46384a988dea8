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
// cells and nothing else.  The golden run digests them; a fuzzer can use
// the same generator.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

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

// Whether `name` is one of the matrix exports.
bool is_matrix_export(std::string_view name);

// One case: draws it from the splitmix64 `state`, builds it in `arena`,
// writes the argument block over the Value slots `args` (the block may
// span several of them; `slots` says how many there are) and calls the
// export through row.thunk.  Returns the data part of the arena to digest.
std::span<const unsigned char> run_matrix_case(const exports::Row& row, std::uint64_t& state, exports::Value* args,
                                               std::size_t slots, const MatrixArena& arena);

}  // namespace mivor::tool
