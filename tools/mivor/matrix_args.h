// Argument blocks of the matrix exports from a short text, for directed
// cases (the report cases, `mivor call`): the descriptors, cells and
// operands live in the returned object, and place() writes the block over
// Value slots for the export's registry thunk.
//
//   OPERAND*OPERAND     MATMUL: MATRIX_A*MATRIX_B; g_mt22blasd: A*B;
//                       g_mt21blasd: A*x
//   OPERAND             RxC (a matrix) or N (a vector), then optionally
//                       :VALUE for every element (default 1), read in the
//                       element's kind as `mivor call` reads values
//
// g_mt22blasd takes letters N N, alpha 1, beta 0 and leading dimensions
// equal to the rows; g_mt21blasd letter N, alpha 1, beta 0.  Results are
// laid out contiguously with room for any shape the operands can give.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "exports/registry.h"

namespace mivor::tool {

class MatrixCall {
public:
    // Null when `text` does not describe operands for this export.
    static std::unique_ptr<MatrixCall> parse(const exports::Row& row, std::string_view text);

    // Copies the argument block over `slots` Value slots; false when they
    // are too few.
    bool place(exports::Value* args, std::size_t slots) const;

    // The result storage after a call, as bytes.
    const std::vector<unsigned char>& result() const { return *buffers_.front(); }

private:
    MatrixCall() = default;
    unsigned char* buffer(std::size_t bytes);

    std::vector<std::unique_ptr<std::vector<unsigned char>>> buffers_;  // result first
    std::vector<unsigned char> block_;
};

}  // namespace mivor::tool
