#include "golden.h"

#include <bit>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "exports/registry.h"
#include "mivor/control_area.h"
#include "values.h"

namespace mivor::tool {
namespace {

// splitmix64: tiny, and identical on every flavour.
struct Random {
    std::uint64_t state;
    std::uint64_t next() {
        std::uint64_t z = (state += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    std::uint32_t below(std::uint32_t n) { return static_cast<std::uint32_t>(next() % n); }
};

std::uint64_t fnv1a(std::uint64_t h, const void* data, std::size_t n) {
    const auto* p = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < n; ++i) h = (h ^ p[i]) * 0x100000001B3u;
    return h;
}

constexpr std::uint32_t kSpecials4[] = {
    0x00000000, 0x80000000, 0x3F800000, 0xBF800000, 0x40000000, 0xC0000000, 0x3F000000,
    0x7F800000, 0xFF800000, 0x7FC00000, 0xFFC00000, 0x7F7FFFFF, 0xFF7FFFFF, 0x00000001,
    0x80000001, 0x00800000, 0x007FFFFF, 0x41D80000, 0xC1D80000, 0x3F7FFFFF, 0x3F800001};
constexpr std::uint64_t kSpecials8[] = {
    0x0000000000000000, 0x8000000000000000, 0x3FF0000000000000, 0xBFF0000000000000,
    0x4000000000000000, 0xC000000000000000, 0x3FE0000000000000, 0x7FF0000000000000,
    0xFFF0000000000000, 0x7FF8000000000000, 0xFFF8000000000000, 0x7FEFFFFFFFFFFFFF,
    0xFFEFFFFFFFFFFFFF, 0x0000000000000001, 0x8000000000000001, 0x0010000000000000,
    0x000FFFFFFFFFFFFF, 0x403B000000000000, 0xC03B000000000000, 0x3FEFFFFFFFFFFFFF,
    0x3FF0000000000001, 0x4086232BDD7ABCD2, 0x40862E42FEFA39EF};
constexpr std::int64_t kSpecialIntegers[] = {0, 1, -1, 2, -2, 3, -3, 31, -1074, 1075,
                                             INT32_MAX, INT32_MIN, (std::int64_t{1} << 32) + 1,
                                             INT64_MAX, INT64_MIN, -(std::int64_t{1} << 32)};

// A REAL(4) or REAL(8) bit pattern: a special value, a number of moderate
// size (the common case), or any pattern at all.
std::uint64_t real_bits(Random& r, int width) {
    const std::uint32_t pick = r.below(8);
    if (width == 4) {
        if (pick == 0) return kSpecials4[r.below(std::size(kSpecials4))];
        if (pick < 5) return 0x3A800000u + r.below(0x0C000000u) + ((r.next() & 1) ? 0x80000000u : 0u);
        return static_cast<std::uint32_t>(r.next());
    }
    if (pick == 0) return kSpecials8[r.below(std::size(kSpecials8))];
    if (pick < 5) {
        const std::uint64_t exp = 1023 - 40 + r.below(80);
        return (exp << 52) | (r.next() >> 12) | ((r.next() & 1) << 63);
    }
    return r.next();
}

mivor_real16 real16(Random& r) {
    mivor_real16 q{};
    const std::uint32_t pick = r.below(8);
    for (auto& w : q.w) w = static_cast<std::uint32_t>(r.next());
    if (pick == 0) {  // zeros, ones, infinities, HUGE, the exponent-0 patterns
        static constexpr std::uint32_t tops[] = {0x00000000, 0x80000000, 0x3FFF0000, 0xBFFF0000,
                                                 0x7FFF0000, 0xFFFF0000, 0x7FFEFFFF, 0x00000001,
                                                 0x7FFF8000, 0x40000000};
        q.w[3] = tops[r.below(std::size(tops))];
        if (r.next() & 1) q.w[0] = q.w[1] = q.w[2] = 0;
    } else if (pick < 5) {
        q.w[3] = (q.w[3] & 0x8000FFFFu) | ((16383u - 60 + r.below(120)) << 16);
    }
    return q;
}

// A working value of the REAL(16) kernels: normalised, scales mostly near
// 0, sometimes anywhere in the REAL(16) range; now and then zero.
mivor_work work(Random& r) {
    mivor_work w{};
    for (auto& f : w.f) f = static_cast<std::uint32_t>(r.next());
    w.f[3] |= 0x80000000u;
    const std::uint32_t pick = r.below(8);
    w.scale = pick < 5 ? static_cast<std::int32_t>(r.below(40)) - 20
                       : static_cast<std::int32_t>(r.below(32000)) - 16000;
    w.sign = static_cast<std::uint32_t>(r.next() & 1);
    if (pick == 7 && r.below(4) == 0) w = mivor_work{};
    return w;
}

std::int64_t integer(Random& r, bool wide) {
    const std::uint32_t pick = r.below(4);
    std::int64_t v;
    if (pick == 0) v = kSpecialIntegers[r.below(std::size(kSpecialIntegers))];
    else if (pick < 3) v = static_cast<std::int64_t>(r.below(4001)) - 2000;
    else v = static_cast<std::int64_t>(r.next());
    return wide ? v : static_cast<std::int32_t>(v);
}

Value random_value(Random& r, std::string_view kind) {
    kind = value_kind(kind);
    Value v{};
    if (kind == "i4" || kind == "l4") v.i4 = static_cast<std::int32_t>(integer(r, false));
    else if (kind == "i8") v.i8 = integer(r, true);
    else if (kind == "r4") v.r4 = std::bit_cast<float>(static_cast<std::uint32_t>(real_bits(r, 4)));
    else if (kind == "r8") v.r8 = std::bit_cast<double>(real_bits(r, 8));
    else if (kind == "r16") v.r16 = real16(r);
    else if (kind == "c4") v.c4 = {std::bit_cast<float>(static_cast<std::uint32_t>(real_bits(r, 4))),
                                   std::bit_cast<float>(static_cast<std::uint32_t>(real_bits(r, 4)))};
    else if (kind == "c8") v.c8 = {std::bit_cast<double>(real_bits(r, 8)), std::bit_cast<double>(real_bits(r, 8))};
    else if (kind == "c16") v.c16 = {real16(r), real16(r)};
    else if (kind == "wk") v.wk = work(r);
#if defined(__SSE2__)
    else if (kind == "v2r8") v.v2r8 = _mm_set_pd(std::bit_cast<double>(real_bits(r, 8)),
                                                 std::bit_cast<double>(real_bits(r, 8)));
#endif
    return v;
}

// Declines the retry and remembers the error numbers of the current case.
// Some reports repeat by design until the handler corrects the operand (a
// NaN logarithm with IEEE results off flips its sign and reports again);
// past kMaxReports in one case the handler puts 1 into the first operand,
// in the real kind its descriptor names, and asks for a retry: the same on
// every flavour.
constexpr std::size_t kMaxReports = 8;
std::vector<std::int32_t>* g_reports = nullptr;

void recording_handler(void*) {
    jwe_control_area& area = jwe_lca;
    const std::uint32_t described = area.operand_count;
    area.retry_word = 0;
    area.operand_count = 0;
    if (!g_reports) return;
    g_reports->push_back(area.error_number);
    if (g_reports->size() < kMaxReports || described == 0 || area.first_operand == nullptr) return;
    const std::string_view kind = kind_of_type_code(area.operand1_type);
    if (kind.empty()) return;
    if (auto one = parse_value(kind, "1")) {
        std::memcpy(area.first_operand, one->bytes, significant_size(kind));
        area.retry_word = 1;
    }
}

// REAL(4)/REAL(8) results come back on the x87 stack on 32-bit x86, and
// loading a signalling NaN there quiets it.  Digests record NaN results
// quieted on every flavour, as a 32-bit caller sees them.
void quiet_signalling_nan(std::string_view kind, Value& v) {
    if (kind == "r4") {
        const auto b = std::bit_cast<std::uint32_t>(v.r4);
        if ((b & 0x7F800000u) == 0x7F800000u && (b & 0x007FFFFFu) != 0)
            v.r4 = std::bit_cast<float>(b | 0x00400000u);
    } else if (kind == "r8") {
        const auto b = std::bit_cast<std::uint64_t>(v.r8);
        if ((b & 0x7FF0000000000000u) == 0x7FF0000000000000u && (b & 0x000FFFFFFFFFFFFFu) != 0)
            v.r8 = std::bit_cast<double>(b | 0x0008000000000000u);
    }
}

bool supported(const exports::Row& row) {
    for (std::string_view k : split_kinds(row.args))
        if (k == "desc" || k == "argblk") return false;
    return true;
}

}  // namespace

int run_golden(const GoldenOptions& options) {
    std::vector<std::int32_t> reports;
    g_reports = &reports;
    jwe_lca.handler = &recording_handler;
    jwe_lca.handler_enabled = 1;
    jwe_lca.suppress = 0;

    for (const exports::Row& row : exports::rows()) {
        if (!row.thunk) continue;
        if (!options.only.empty() && row.name != options.only) continue;
        if (!supported(row)) {
            std::printf("%.*s skipped\n", static_cast<int>(row.name.size()), row.name.data());
            continue;
        }
        const std::vector<std::string_view> kinds = split_kinds(row.args);
        std::uint64_t seed = fnv1a(0xCBF29CE484222325u, row.name.data(), row.name.size());
        Random random{seed};
        std::uint64_t digest = 0xCBF29CE484222325u;
        std::uint32_t reported = 0;
        for (std::uint32_t i = 0; i < options.cases; ++i) {
            Value args[8] = {};
            for (std::size_t k = 0; k < kinds.size() && k < 8; ++k) {
                if (kinds[k] == "anyreal") {
                    // S of a kind named by the next argument, a type code.
                    static constexpr std::string_view real_kinds[] = {"r4", "r8", "r16"};
                    const std::string_view kind = real_kinds[random.below(3)];
                    args[k] = random_value(random, kind);
                    if (k + 1 < kinds.size()) {
                        args[k + 1].i4 = type_code_of(kind);
                        ++k;
                    }
                } else {
                    args[k] = random_value(random, kinds[k]);
                }
            }
            // Both fallback choices get exercised.
            jwe_lca.ieee_results = (i & 1) ? 0 : 1;
            reports.clear();
            Value result{};
            row.thunk(args, result);
            quiet_signalling_nan(row.result, result);
            const std::size_t size = significant_size(row.result);
            digest = fnv1a(digest, result.bytes, size);
            for (std::int32_t n : reports) digest = fnv1a(digest, &n, sizeof n);
            reported += static_cast<std::uint32_t>(reports.size());
            if (options.dump) {
                std::printf("%.*s #%" PRIu32 ":", static_cast<int>(row.name.size()), row.name.data(), i);
                for (std::size_t k = 0; k < kinds.size(); ++k)
                    if (kinds[k] != "anyreal") std::printf(" %s", format_value(kinds[k], args[k]).c_str());
                std::printf(" -> %s", format_value(row.result, result).c_str());
                for (std::int32_t n : reports) std::printf(" [report %" PRId32 "]", n);
                std::printf("\n");
            }
        }
        std::printf("%.*s cases=%" PRIu32 " reports=%" PRIu32 " digest=%016" PRIX64 "\n",
                    static_cast<int>(row.name.size()), row.name.data(), options.cases, reported, digest);
    }
    g_reports = nullptr;
    return 0;
}

}  // namespace mivor::tool
