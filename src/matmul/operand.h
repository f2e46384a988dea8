// Reading the array descriptors of the matrix entries, and what all of them
// share: the report of non-conforming operands.
//
// An operand's extents are read as signed 32-bit cells with a negative
// extent counting as 0; its byte strides become element strides by signed
// division by the element size, truncating toward zero (a stride that is
// not a multiple of the element size loses its remainder, as compiled code
// expects).  Only the dimension pairs that the rank byte announces are
// read: dimension 2 of anything but a matrix counts as extent 0, stride 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/report.h"
#include "mivor/descriptor.h"

namespace mivor::matmul {

// Whether the operands conform; when they do not, error 1375 in the short
// form (the handler is told, nothing is described, the retry word is not
// read) and false.
inline bool conform_or_report(bool conforming) {
    return report::settle<report::Form::short_form>(
        [](bool ok) -> report::Step<bool, bool> {
            if (!ok) return report::fail(Error::matmul_nonconforming, false);
            return true;
        },
        conforming);
}

inline std::int32_t clamped(const std::int32_t* cell) { return *cell < 0 ? 0 : *cell; }

// Elements are read and written by copying their bytes: compiled code may
// hand over operands at any address (a REAL(8) array 4 bytes off a multiple
// of 8 is legitimate), which x86 loads and stores serve as they are.
template <class T>
inline T load(const T* p) {
    T v;
    std::memcpy(static_cast<void*>(&v), p, sizeof v);
    return v;
}
template <class T>
inline void store(T* p, const T& v) {
    std::memcpy(static_cast<void*>(p), &v, sizeof v);
}

// Offsets are formed in 64 bits: extents and strides are both 32-bit, and
// their product must not wrap on the 64-bit flavour.
template <class T>
struct Operand {
    T* base = nullptr;
    int rank = 0;
    std::int32_t extent1 = 0, extent2 = 0;
    std::int32_t stride1 = 0, stride2 = 0;

    const T* ptr(std::int64_t i, std::int64_t j) const {
        return base + static_cast<std::ptrdiff_t>(i * stride1 + j * stride2);
    }
    T at(std::int64_t i, std::int64_t j) const { return load(ptr(i, j)); }
    T at(std::int64_t i) const { return load(base + static_cast<std::ptrdiff_t>(i * stride1)); }
};

template <class T>
Operand<T> read_operand(const mivor_descriptor* d) {
    constexpr std::int32_t size = sizeof(T);
    Operand<T> o;
    o.base = static_cast<T*>(d->base);
    o.rank = d->rank;
    o.extent1 = clamped(d->extent1);
    o.stride1 = *d->stride1 / size;
    if (o.rank == 2) {
        o.extent2 = clamped(d->extent2);
        o.stride2 = *d->stride2 / size;
    }
    return o;
}

// The increment of a REAL(8) vector: its byte stride over 8, truncated.
inline std::int32_t increment_of(const mivor_descriptor* d) { return *d->stride1 / 8; }

}  // namespace mivor::matmul
