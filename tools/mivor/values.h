// Reading and printing values of every kind for the `mivor` command.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "exports/registry.h"

namespace mivor::tool {

using exports::Value;

// The kind of the value behind an argument kind: by-value arguments (r8v,
// r16v) hold the same values as their by-address kinds.
constexpr std::string_view value_kind(std::string_view kind) {
    if (kind == "r8v") return "r8";
    if (kind == "r16v") return "r16";
    return kind;
}

// Parses `text` as a value of `kind` (i4 i8 l4 r4 r8 r16 ...).  Numbers are
// decimal, or a bit pattern in hex ("0x3F800000"; for r16 the 32 hex digits
// of words 3, 2, 1, 0).  Complex values are "re,im".
std::optional<Value> parse_value(std::string_view kind, std::string_view text);

// "0xBITS (decimal)" for a value of `kind`.
std::string format_value(std::string_view kind, const Value& v);

// The bytes of a value of `kind` that carry information (no padding).
std::size_t significant_size(std::string_view kind);

// The kinds of a comma-separated list ("r8,i4"); "-" is the empty list.
std::vector<std::string_view> split_kinds(std::string_view list);

// The type code of the error record for a real kind (9, 10, 11), else 0.
std::int32_t type_code_of(std::string_view kind);
// The real kind named by a type code, or "" when there is none.
std::string_view kind_of_type_code(std::int32_t code);

}  // namespace mivor::tool
