#include "values.h"

#include <bit>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "mivor/control_area.h"

namespace mivor::tool {
namespace {

std::optional<std::uint64_t> parse_hex(std::string_view text, int max_digits) {
    if (text.size() < 3 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) return std::nullopt;
    text.remove_prefix(2);
    if (text.empty() || static_cast<int>(text.size()) > max_digits) return std::nullopt;
    std::uint64_t v = 0;
    for (char c : text) {
        int d;
        if (c >= '0' && c <= '9') d = c - '0';
        else if (c >= 'a' && c <= 'f') d = c - 'a' + 10;
        else if (c >= 'A' && c <= 'F') d = c - 'A' + 10;
        else return std::nullopt;
        v = (v << 4) | static_cast<std::uint64_t>(d);
    }
    return v;
}

bool is_hex(std::string_view text) { return text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X'); }

std::optional<long double> parse_decimal(std::string_view text) {
    std::string s(text);
    char* end = nullptr;
    errno = 0;
    // strtold reads "inf" and "nan" too.
    long double v = std::strtold(s.c_str(), &end);
    if (end == s.c_str() || *end != '\0') return std::nullopt;
    return v;
}

std::optional<std::int64_t> parse_integer(std::string_view text) {
    if (is_hex(text)) {
        auto v = parse_hex(text, 16);
        if (!v) return std::nullopt;
        return static_cast<std::int64_t>(*v);
    }
    std::string s(text);
    char* end = nullptr;
    errno = 0;
    long long v = std::strtoll(s.c_str(), &end, 10);
    if (end == s.c_str() || *end != '\0' || errno != 0) return std::nullopt;
    return v;
}

// A long double (64-bit significand) as a REAL(16): exact, since 64 < 113
// bits; values outside the REAL(16) range cannot come from a long double
// except subnormal long doubles, which flush to zero here.
mivor_real16 real16_from(long double v) {
    mivor_real16 q{};
    std::uint64_t mant;
    std::uint16_t se;
    unsigned char raw[sizeof(long double)];
    std::memcpy(raw, &v, sizeof v);
    std::memcpy(&mant, raw, 8);
    std::memcpy(&se, raw + 8, 2);
    const std::uint32_t sign = se & 0x8000u ? 0x80000000u : 0u;
    const std::uint32_t e = se & 0x7FFFu;
    if (e == 0x7FFF) {  // Inf or NaN
        const bool nan = (mant << 1) != 0;
        q.w[3] = sign | 0x7FFF0000u | (nan ? 0x8000u : 0u);
        return q;
    }
    if (e == 0 || mant == 0) {
        q.w[3] = sign;
        return q;
    }
    // Drop the explicit integer bit; 63 fraction bits go to the top of 112.
    const std::uint64_t frac = mant << 1;  // 63 bits, left aligned in 64
    q.w[3] = sign | (e << 16) | static_cast<std::uint32_t>(frac >> 48);
    q.w[2] = static_cast<std::uint32_t>(frac >> 16);
    q.w[1] = static_cast<std::uint32_t>(frac << 16);
    q.w[0] = 0;
    return q;
}

// Nearest long double to a REAL(16), for display only.
long double approx_of(const mivor_real16& q) {
    const std::uint32_t e = (q.w[3] >> 16) & 0x7FFFu;
    const bool neg = (q.w[3] >> 31) != 0;
    if (e == 0x7FFF) {
        const bool nan = (q.w[3] & 0xFFFFu) | q.w[2] | q.w[1] | q.w[0];
        long double r = nan ? __builtin_nanl("") : __builtin_infl();
        return neg ? -r : r;
    }
    std::uint64_t mant = (std::uint64_t{1} << 63) | (std::uint64_t{q.w[3] & 0xFFFFu} << 47) |
                         (std::uint64_t{q.w[2]} << 15) | (q.w[1] >> 17);
    if (e == 0) mant &= ~(std::uint64_t{1} << 63);
    std::uint16_t se = static_cast<std::uint16_t>((neg ? 0x8000u : 0u) | (e == 0 ? 0u : e));
    long double r = 0;
    unsigned char raw[sizeof(long double)] = {};
    std::memcpy(raw, &mant, 8);
    std::memcpy(raw + 8, &se, 2);
    std::memcpy(&r, raw, sizeof r);
    return r;
}

std::optional<mivor_real16> parse_real16(std::string_view text) {
    if (is_hex(text)) {
        std::string_view digits = text.substr(2);
        if (digits.empty() || digits.size() > 32) return std::nullopt;
        std::string padded(32 - digits.size(), '0');
        padded += digits;
        mivor_real16 q{};
        for (int i = 0; i < 4; ++i) {
            auto w = parse_hex("0x" + padded.substr(static_cast<std::size_t>(i) * 8, 8), 8);
            if (!w) return std::nullopt;
            q.w[3 - i] = static_cast<std::uint32_t>(*w);
        }
        return q;
    }
    auto v = parse_decimal(text);
    if (!v) return std::nullopt;
    return real16_from(*v);
}

std::optional<float> parse_real4(std::string_view text) {
    if (is_hex(text)) {
        auto b = parse_hex(text, 8);
        if (!b) return std::nullopt;
        return std::bit_cast<float>(static_cast<std::uint32_t>(*b));
    }
    std::string s(text);
    char* end = nullptr;
    float v = std::strtof(s.c_str(), &end);
    if (end == s.c_str() || *end != '\0') return std::nullopt;
    return v;
}

std::optional<double> parse_real8(std::string_view text) {
    if (is_hex(text)) {
        auto b = parse_hex(text, 16);
        if (!b) return std::nullopt;
        return std::bit_cast<double>(*b);
    }
    std::string s(text);
    char* end = nullptr;
    double v = std::strtod(s.c_str(), &end);
    if (end == s.c_str() || *end != '\0') return std::nullopt;
    return v;
}

std::pair<std::string_view, std::string_view> split_pair(std::string_view text) {
    const auto comma = text.find(',');
    if (comma == std::string_view::npos) return {text, {}};
    return {text.substr(0, comma), text.substr(comma + 1)};
}

std::string hex32(std::uint32_t b) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "0x%08" PRIX32, b);
    return buf;
}
std::string hex64(std::uint64_t b) {
    char buf[24];
    std::snprintf(buf, sizeof buf, "0x%016" PRIX64, b);
    return buf;
}
std::string show4(float f) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%s (%.9g)", hex32(std::bit_cast<std::uint32_t>(f)).c_str(), static_cast<double>(f));
    return buf;
}
std::string show8(double d) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%s (%.17g)", hex64(std::bit_cast<std::uint64_t>(d)).c_str(), d);
    return buf;
}
std::string show16(const mivor_real16& q) {
    char buf[96];
    std::snprintf(buf, sizeof buf, "0x%08" PRIX32 "%08" PRIX32 "%08" PRIX32 "%08" PRIX32 " (~%.21Lg)",
                  q.w[3], q.w[2], q.w[1], q.w[0], approx_of(q));
    return buf;
}

}  // namespace

std::optional<Value> parse_value(std::string_view kind, std::string_view text) {
    kind = value_kind(kind);
    Value v{};
    if (kind == "i4" || kind == "l4") {
        // A 32-bit value: in range as a decimal, at most 8 digits as bits.
        if (is_hex(text)) {
            auto b = parse_hex(text, 8);
            if (!b) return std::nullopt;
            v.i4 = static_cast<std::int32_t>(static_cast<std::uint32_t>(*b));
        } else {
            auto i = parse_integer(text);
            if (!i || *i < INT32_MIN || *i > INT32_MAX) return std::nullopt;
            v.i4 = static_cast<std::int32_t>(*i);
        }
    } else if (kind == "i8") {
        auto i = parse_integer(text);
        if (!i) return std::nullopt;
        v.i8 = *i;
    } else if (kind == "r4") {
        auto f = parse_real4(text);
        if (!f) return std::nullopt;
        v.r4 = *f;
    } else if (kind == "r8") {
        auto d = parse_real8(text);
        if (!d) return std::nullopt;
        v.r8 = *d;
    } else if (kind == "r8x") {
        // A REAL(8) value, widened exactly (NaN payloads included).
        auto d = parse_real8(text);
        if (!d) return std::nullopt;
        v.r8x = static_cast<long double>(*d);
    } else if (kind == "r16") {
        auto q = parse_real16(text);
        if (!q) return std::nullopt;
        v.r16 = *q;
    } else if (kind == "c4") {
        auto [re, im] = split_pair(text);
        auto a = parse_real4(re), b = parse_real4(im.empty() ? "0" : im);
        if (!a || !b) return std::nullopt;
        v.c4 = {*a, *b};
    } else if (kind == "c8") {
        auto [re, im] = split_pair(text);
        auto a = parse_real8(re), b = parse_real8(im.empty() ? "0" : im);
        if (!a || !b) return std::nullopt;
        v.c8 = {*a, *b};
    } else if (kind == "c16") {
        auto [re, im] = split_pair(text);
        auto a = parse_real16(re), b = parse_real16(im.empty() ? "0" : im);
        if (!a || !b) return std::nullopt;
        v.c16 = {*a, *b};
    } else if (kind == "wk") {
        // Words f3 f2 f1 f0, scale and sign: "0xF3F2F1F0,SCALE,SIGN".
        auto [frac, rest] = split_pair(text);
        auto [scale, sign] = split_pair(rest);
        if (frac.size() != 34 || !is_hex(frac)) return std::nullopt;
        for (int i = 0; i < 4; ++i) {
            auto w = parse_hex(std::string("0x") + std::string(frac.substr(2 + 8 * (3 - i), 8)), 8);
            if (!w) return std::nullopt;
            v.wk.f[i] = static_cast<std::uint32_t>(*w);
        }
        auto e = parse_integer(scale.empty() ? "0" : scale), n = parse_integer(sign.empty() ? "0" : sign);
        if (!e || !n) return std::nullopt;
        v.wk.scale = static_cast<std::int32_t>(*e);
        v.wk.sign = static_cast<std::uint32_t>(*n) & 1;
#if defined(__SSE2__)
    } else if (kind == "v2r8") {
        auto [lo, hi] = split_pair(text);
        auto a = parse_real8(lo), b = parse_real8(hi.empty() ? lo : hi);
        if (!a || !b) return std::nullopt;
        v.v2r8 = _mm_set_pd(*b, *a);
#endif
    } else {
        return std::nullopt;
    }
    return v;
}

std::string format_value(std::string_view kind, const Value& v) {
    kind = value_kind(kind);
    char buf[160];
    if (kind == "i4" || kind == "l4") {
        std::snprintf(buf, sizeof buf, "%s (%" PRId32 ")", hex32(static_cast<std::uint32_t>(v.i4)).c_str(), v.i4);
        return buf;
    }
    if (kind == "i8") {
        std::snprintf(buf, sizeof buf, "%s (%" PRId64 ")", hex64(static_cast<std::uint64_t>(v.i8)).c_str(), v.i8);
        return buf;
    }
    if (kind == "r4") return show4(v.r4);
    if (kind == "r8") return show8(v.r8);
    if (kind == "r8x") {
        // The extended value as returned, then as a caller storing REAL(8) sees it.
        std::uint64_t mant;
        std::uint16_t se;
        std::memcpy(&mant, &v.r8x, 8);
        std::memcpy(&se, reinterpret_cast<const unsigned char*>(&v.r8x) + 8, 2);
        std::snprintf(buf, sizeof buf, "extended 0x%04X%016" PRIX64 " (%.21Lg); as REAL(8) %s", se, mant, v.r8x,
                      show8(static_cast<double>(v.r8x)).c_str());
        return buf;
    }
    if (kind == "r16") return show16(v.r16);
    if (kind == "c4") return show4(v.c4.re) + ", " + show4(v.c4.im);
    if (kind == "c8") return show8(v.c8.re) + ", " + show8(v.c8.im);
    if (kind == "c16") return show16(v.c16.re) + ", " + show16(v.c16.im);
    if (kind == "wk") {
        std::snprintf(buf, sizeof buf, "0x%08" PRIX32 "%08" PRIX32 "%08" PRIX32 "%08" PRIX32 ",%" PRId32 ",%" PRIu32,
                      v.wk.f[3], v.wk.f[2], v.wk.f[1], v.wk.f[0], v.wk.scale, v.wk.sign);
        return buf;
    }
#if defined(__SSE2__)
    if (kind == "v2r8") {
        double lanes[2];
        _mm_storeu_pd(lanes, v.v2r8);
        return show8(lanes[0]) + ", " + show8(lanes[1]);
    }
#endif
    return "(no value)";
}

std::size_t significant_size(std::string_view kind) {
    if (kind == "i4" || kind == "l4" || kind == "r4") return 4;
    if (kind == "i8" || kind == "r8" || kind == "c4") return 8;
    if (kind == "r8x") return 10;
    if (kind == "r16" || kind == "c8" || kind == "v2r8") return 16;
    if (kind == "c16") return 32;
    if (kind == "wk") return 24;
    return 0;
}

std::vector<std::string_view> split_kinds(std::string_view list) {
    std::vector<std::string_view> out;
    if (list == "-") return out;
    while (!list.empty()) {
        const auto comma = list.find(',');
        out.push_back(list.substr(0, comma));
        if (comma == std::string_view::npos) break;
        list.remove_prefix(comma + 1);
    }
    return out;
}

std::int32_t type_code_of(std::string_view kind) {
    if (kind == "r4") return MIVOR_TYPE_REAL4;
    if (kind == "r8") return MIVOR_TYPE_REAL8;
    if (kind == "r16") return MIVOR_TYPE_REAL16;
    return 0;
}

std::string_view kind_of_type_code(std::int32_t code) {
    switch (code) {
        case MIVOR_TYPE_REAL4: return "r4";
        case MIVOR_TYPE_REAL8: return "r8";
        case MIVOR_TYPE_REAL16: return "r16";
        default: return "";
    }
}

}  // namespace mivor::tool
