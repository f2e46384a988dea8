// The export table as data, for tests, golden runs and the `mivor` command:
// one row per export with its kinds, family and error numbers, and for the
// implemented ones a thunk that calls the export with arguments taken from
// Value slots.  The rows come from registry.inc, generated from exports.tab.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "mivor/mivor.h"

namespace mivor::exports {

// Storage for one argument or result of any kind.
union Value {
    std::int32_t i4;
    std::int64_t i8;
    float r4;
    double r8;
    long double r8x;
    mivor_real16 r16;
    mivor_complex4 c4;
    mivor_complex8 c8;
    mivor_complex16 c16;
    mivor_work wk;
#if defined(__SSE2__)
    __m128d v2r8;
#endif
    unsigned char bytes[32];
};

using Thunk = void (*)(const Value* args, Value& result);

struct Row {
    std::string_view name;
    std::string_view result;
    std::string_view args;
    std::string_view family;
    std::string_view errors;
    std::string_view oracle;  // what its results are checked against
    Thunk thunk;              // null: not implemented yet
};

inline constexpr Row kRows[] = {
#define MIVOR_EXPORT_ROW(name, result, args, family, errors, oracle, thunk) \
    Row{name, result, args, family, errors, oracle, thunk},
#include "exports/registry.inc"
#undef MIVOR_EXPORT_ROW
};

inline std::span<const Row> rows() { return kRows; }

inline const Row* find(std::string_view name) {
    for (const Row& row : kRows)
        if (row.name == name) return &row;
    return nullptr;
}

}  // namespace mivor::exports
