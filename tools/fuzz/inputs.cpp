#include "inputs.h"

#include <cstdio>
#include <cstring>

#include "mivor/control_area.h"
#include "mivor/report_cases.h"
#include "mivor/values.h"

namespace mivor::fuzz {
namespace {

// Where functions branch: zeros, ones, infinities, quiet and signalling
// NaNs, the largest and smallest numbers, and the limits of the families
// (exponential overflow and underflow, the end of exact integers, the
// refusal limit of the circular functions).
constexpr std::uint32_t kSpecials4[] = {
    0x00000000, 0x80000000, 0x3F800000, 0xBF800000, 0x40000000, 0xC0000000, 0x3F000000, 0x7F800000,
    0xFF800000, 0x7FC00000, 0xFFC00000, 0x7F800001, 0x7FBFFFFF, 0xFFFFFFFF, 0x7F7FFFFF, 0xFF7FFFFF,
    0x00000001, 0x80000001, 0x00800000, 0x007FFFFF, 0x42B17218, 0xC2CFF1B5, 0x4B000000, 0x3F7FFFFF,
    0x3F800001, 0x4AC90FDB, 0x49742400, 0x3FC90FDB};
constexpr std::uint64_t kSpecials8[] = {
    0x0000000000000000, 0x8000000000000000, 0x3FF0000000000000, 0xBFF0000000000000, 0x4000000000000000,
    0xC000000000000000, 0x3FE0000000000000, 0x7FF0000000000000, 0xFFF0000000000000, 0x7FF8000000000000,
    0xFFF8000000000000, 0x7FF0000000000001, 0x7FF4000000000000, 0xFFFFFFFFFFFFFFFF, 0x7FEFFFFFFFFFFFFF,
    0xFFEFFFFFFFFFFFFF, 0x0000000000000001, 0x8000000000000001, 0x0010000000000000, 0x000FFFFFFFFFFFFF,
    0x40862E42FEFA39EF, 0xC0874910D52D3051, 0xC08FF80000000000, 0x4090000000000000, 0x40734410624DD2F2,
    0x4330000000000000, 0x3FEFFFFFFFFFFFFF, 0x3FF0000000000001, 0x43291508B9AB4C36, 0x3FF921FB54442D18};
constexpr std::uint32_t kSpecialTops16[] = {
    0x00000000, 0x80000000, 0x3FFF0000, 0xBFFF0000, 0x7FFF0000, 0xFFFF0000, 0x7FFF8000, 0x7FFF0000,
    0x7FFEFFFF, 0xFFFEFFFF, 0x00010000, 0x00008000, 0x406F0000, 0x403E0000, 0x3FFE0000, 0x3FFF8000,
    0x3C8E0000, 0x40D00000};
constexpr std::int64_t kSpecialIntegers[] = {0,         1,         -1,        2,         -2,       3,
                                             31,        32,        63,        -1074,     1075,     INT32_MAX,
                                             INT32_MIN, INT64_MAX, INT64_MIN, 0x100000000, -0x100000000, 0x100000001};

std::uint64_t real_bits(Random& r, int width) {
    const std::uint32_t pick = r.below(10);
    if (width == 4) {
        if (pick < 3) return kSpecials4[r.below(std::size(kSpecials4))];
        if (pick < 6) return 0x3A800000u + r.below(0x0C000000u) + (r.chance(50) ? 0x80000000u : 0u);
        return static_cast<std::uint32_t>(r.next());
    }
    if (pick < 3) return kSpecials8[r.below(std::size(kSpecials8))];
    if (pick < 6) return ((1023 - 40 + r.next() % 80) << 52) | (r.next() >> 12) | ((r.next() & 1) << 63);
    return r.next();
}

mivor_real16 real16(Random& r) {
    mivor_real16 q{};
    for (auto& w : q.w) w = static_cast<std::uint32_t>(r.next());
    const std::uint32_t pick = r.below(10);
    if (pick < 3) {
        q.w[3] = kSpecialTops16[r.below(std::size(kSpecialTops16))];
        if (r.chance(60)) q.w[0] = q.w[1] = q.w[2] = 0;
        if (q.w[3] == 0x7FFF0000 && r.chance(50)) q.w[0] = 1;  // signalling NaN
    } else if (pick < 6) {
        q.w[3] = (q.w[3] & 0x8000FFFFu) | ((16383u - 60 + r.below(120)) << 16);
    }
    return q;
}

std::int64_t integer(Random& r) {
    const std::uint32_t pick = r.below(4);
    if (pick == 0) return kSpecialIntegers[r.below(std::size(kSpecialIntegers))];
    if (pick < 3) return static_cast<std::int64_t>(r.below(4001)) - 2000;
    return static_cast<std::int64_t>(r.next());
}

void fill(Random& r, std::string_view kind, Value& v) {
    kind = tool::value_kind(kind);
    auto put4 = [&](unsigned char* p) {
        const auto b = static_cast<std::uint32_t>(real_bits(r, 4));
        std::memcpy(p, &b, 4);
    };
    auto put8 = [&](unsigned char* p) {
        const std::uint64_t b = real_bits(r, 8);
        std::memcpy(p, &b, 8);
    };
    auto put16 = [&](unsigned char* p) {
        const mivor_real16 q = real16(r);
        std::memcpy(p, &q, 16);
    };
    if (kind == "i4" || kind == "l4") v.i4 = static_cast<std::int32_t>(integer(r));
    else if (kind == "i8") v.i8 = integer(r);
    else if (kind == "r4") put4(v.bytes);
    else if (kind == "r8") put8(v.bytes);
    else if (kind == "r16") put16(v.bytes);
    else if (kind == "c4") put4(v.bytes), put4(v.bytes + 4);
    else if (kind == "c8" || kind == "v2r8") put8(v.bytes), put8(v.bytes + 8);
    else if (kind == "c16") put16(v.bytes), put16(v.bytes + 16);
}

// A corrected operand as the handler writes it: any bits, or a special
// value of some kind.
void chunk(Random& r, std::vector<std::uint8_t>& out) {
    unsigned char b[16];
    for (auto& x : b) x = static_cast<unsigned char>(r.next());
    if (r.chance(50)) {
        static constexpr std::string_view kinds[] = {"r4", "r8", "r16", "i4", "i8"};
        Value v{};
        fill(r, kinds[r.below(std::size(kinds))], v);
        std::memcpy(b, v.bytes, 16);
    }
    out.insert(out.end(), b, b + 16);
}

std::uint8_t random_action(Random& r) {
    const std::uint32_t p = r.below(100);
    std::uint8_t a = p < 50 ? Action::decline : p < 65 ? Action::retry : p < 90 ? Action::correct_retry
                                                                                 : Action::correct_decline;
    if (r.chance(15)) a |= Action::scribble;
    a |= static_cast<std::uint8_t>(r.below(4) << 4);
    if (r.chance(20)) a |= 0x40;
    return a;
}

// The arguments of a row, anyreal followed by a type code that mostly names
// a real kind.
void random_arguments(const Row& row, Random& r, Value* args) {
    const auto kinds = tool::split_kinds(row.args);
    for (std::size_t k = 0; k < kinds.size(); ++k) {
        if (kinds[k] == "anyreal") {
            static constexpr std::string_view reals[] = {"r4", "r8", "r16"};
            const std::string_view kind = reals[r.below(3)];
            fill(r, kind, args[k]);
            if (k + 1 < kinds.size()) {
                args[k + 1].i4 = r.chance(90) ? tool::type_code_of(kind) : static_cast<std::int32_t>(integer(r));
                ++k;
            }
        } else {
            fill(r, kinds[k], args[k]);
        }
    }
}

// The i-th special value of a kind, for the edge seeds.
std::size_t special_count(std::string_view kind) {
    kind = tool::value_kind(kind);
    if (kind == "r4" || kind == "c4") return std::size(kSpecials4);
    if (kind == "r8" || kind == "c8" || kind == "v2r8") return std::size(kSpecials8);
    if (kind == "r16" || kind == "c16" || kind == "anyreal") return std::size(kSpecialTops16);
    return std::size(kSpecialIntegers);
}

void special(std::string_view kind, std::size_t i, Value& v) {
    kind = tool::value_kind(kind);
    auto r16 = [](std::size_t j) {
        mivor_real16 q{};
        q.w[3] = kSpecialTops16[j % std::size(kSpecialTops16)];
        return q;
    };
    auto r4 = [](std::size_t j) {
        float f;
        std::memcpy(&f, &kSpecials4[j % std::size(kSpecials4)], 4);
        return f;
    };
    auto r8 = [](std::size_t j) {
        double d;
        std::memcpy(&d, &kSpecials8[j % std::size(kSpecials8)], 8);
        return d;
    };
    // The second part of a pair runs through the list at another pace.
    const std::size_t j = i * 7 + 3;
    if (kind == "i4" || kind == "l4") v.i4 = static_cast<std::int32_t>(kSpecialIntegers[i % std::size(kSpecialIntegers)]);
    else if (kind == "i8") v.i8 = kSpecialIntegers[i % std::size(kSpecialIntegers)];
    else if (kind == "r4") v.r4 = r4(i);
    else if (kind == "r8") v.r8 = r8(i);
    else if (kind == "r16" || kind == "anyreal") v.r16 = r16(i);
    else if (kind == "c4") v.c4 = {r4(i), r4(j)};
    else if (kind == "c8") v.c8 = {r8(i), r8(j)};
    else if (kind == "c16") v.c16 = {r16(i), r16(j)};
    else if (kind == "v2r8") {
        const double lanes[2] = {r8(i), r8(j)};
        std::memcpy(v.bytes, lanes, 16);
    }
}

}  // namespace

Case random_case(const Row& row, Random& r) {
    Case c;
    c.row = &row;
    c.suppress = r.chance(85) ? 0 : static_cast<std::uint8_t>(1 + r.below(255));
    const std::uint32_t i = r.below(100);
    c.ieee = i < 45 ? 1 : i < 90 ? 0 : static_cast<std::uint8_t>(r.next());
    const std::uint32_t e = r.below(100);
    c.enabled = e < 85 ? 1 : e < 95 ? 0 : static_cast<std::uint8_t>(r.next());
    if (r.chance(4)) c.mode |= Mode::no_handler;
    if (r.chance(10)) c.mode |= Mode::uninitialised;
    if (r.chance(30)) c.mode |= Mode::aliased;
    if (r.chance((c.mode & Mode::no_handler) ? 50 : 10)) c.mode |= Mode::stale_retry;
    for (auto& a : c.script) a = random_action(r);
    random_arguments(row, r, c.args);
    for (int k = 0; k < 8; ++k) chunk(r, c.stream);
    return c;
}

std::vector<Seed> edge_seeds(const std::vector<const Row*>& rows, const std::string& report_cases,
                             std::vector<std::string>& problems) {
    std::vector<Seed> seeds;
    auto ours = [&](const Row* row) {
        for (const Row* r : rows)
            if (r == row) return true;
        return false;
    };

    // Each directed report case under the handlers and flags that change
    // its course.
    if (!report_cases.empty()) {
        for (const tool::ReportCase& rc : tool::read_report_cases(report_cases, problems)) {
            if (!ours(rc.row)) continue;
            Case base;
            base.row = rc.row;
            if (!tool::case_arguments(rc, base.args)) {
                problems.push_back(std::string(rc.row->name) + " (line " + std::to_string(rc.line) +
                                   "): arguments do not fit");
                continue;
            }
            // Corrections: the first argument's bits, then each neighbour.
            for (int k = 0; k < 4; ++k) {
                unsigned char b[16];
                std::memcpy(b, base.args[0].bytes, 16);
                b[0] = static_cast<unsigned char>(b[0] ^ (1u << k));
                base.stream.insert(base.stream.end(), b, b + 16);
            }
            struct Variant {
                const char* label;
                std::uint8_t ieee, enabled, suppress, mode;
                std::array<std::uint8_t, 8> script;
            };
            static constexpr Variant variants[] = {
                {"ieee", 1, 1, 0, 0, {}},
                {"finite", 0, 1, 0, 0, {}},
                {"retry-twice", 0, 1, 0, 0, {1, 1, 0}},
                {"correct", 1, 1, 0, 0, {2, 2, 0}},
                {"correct-declined", 0, 1, 0, Mode::aliased, {3, 3, 0}},
                {"scribbled", 0, 1, 0, 0, {5, 4, 0x46, 0}},
                {"disabled", 0, 0, 0, 0, {}},
                {"suppressed", 1, 1, 1, 0, {}},
                {"uninitialised", 0, 1, 0, Mode::uninitialised, {}},
                {"no-handler", 0, 1, 0, Mode::no_handler | Mode::stale_retry, {}},
            };
            for (const Variant& v : variants) {
                Seed s{std::string(rc.row->name) + "-line" + std::to_string(rc.line) + "-" + v.label, base};
                s.c.ieee = v.ieee;
                s.c.enabled = v.enabled;
                s.c.suppress = v.suppress;
                s.c.mode = v.mode;
                s.c.script = v.script;
                seeds.push_back(s);
            }
        }
    }

    // Every argument at each special value of its kind, both fallbacks.
    for (const Row* row : rows) {
        const auto kinds = tool::split_kinds(row->args);
        std::size_t n = 1;
        for (std::string_view k : kinds) n = std::max(n, special_count(k));
        for (std::size_t i = 0; i < n; ++i) {
            Seed s{std::string(row->name) + "-special" + std::to_string(i), {}};
            s.c.row = row;
            s.c.ieee = i & 1 ? 0 : 1;
            if (i & 2) s.c.mode = Mode::aliased;
            for (std::size_t k = 0; k < kinds.size(); ++k) {
                special(kinds[k], i + 5 * k, s.c.args[k]);
                if (kinds[k] == "anyreal" && k + 1 < kinds.size()) {
                    static constexpr std::int32_t codes[] = {MIVOR_TYPE_REAL4, MIVOR_TYPE_REAL8, MIVOR_TYPE_REAL16, 0};
                    const std::int32_t code = codes[i % 4];
                    if (code == MIVOR_TYPE_REAL4) special("r4", i, s.c.args[k]);
                    else if (code == MIVOR_TYPE_REAL8) special("r8", i, s.c.args[k]);
                    s.c.args[++k].i4 = code;
                }
            }
            seeds.push_back(s);
        }
    }
    return seeds;
}

std::vector<std::string> dictionary(const std::vector<const Row*>& rows) {
    std::vector<std::string> out;
    auto token = [&](const void* p, std::size_t n) {
        std::string t = "\"";
        char buf[8];
        for (std::size_t i = 0; i < n; ++i) {
            std::snprintf(buf, sizeof buf, "\\x%02X", static_cast<const unsigned char*>(p)[i]);
            t += buf;
        }
        out.push_back(t + "\"");
    };
    for (const Row* r : rows) {
        std::string named(1, static_cast<char>(r->name.size()));
        named += r->name;
        token(named.data(), named.size());
    }
    for (std::uint32_t b : kSpecials4) token(&b, 4);
    for (std::uint64_t b : kSpecials8) token(&b, 8);
    for (std::uint32_t b : kSpecialTops16) token(&b, 4);
    return out;
}

}  // namespace mivor::fuzz
