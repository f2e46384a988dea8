#include "golden.h"

#include <bit>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "exports/registry.h"
#include "matrix_cases.h"
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

// Flips the quiet bit of every NaN in a result: what a flavour that
// returned signalling NaNs where the others quiet them would give.  Only
// for the test that shows the comparison catches such a difference.
void flip_quiet_bits(std::string_view kind, Value& v) {
    auto flip4 = [](float& x) {
        const auto b = std::bit_cast<std::uint32_t>(x);
        if ((b & 0x7F800000u) == 0x7F800000u && (b & 0x007FFFFFu) != 0) x = std::bit_cast<float>(b ^ 0x00400000u);
    };
    auto flip8 = [](double& x) {
        const auto b = std::bit_cast<std::uint64_t>(x);
        if ((b & 0x7FF0000000000000u) == 0x7FF0000000000000u && (b & 0x000FFFFFFFFFFFFFu) != 0)
            x = std::bit_cast<double>(b ^ 0x0008000000000000u);
    };
    auto flip16 = [](mivor_real16& q) {
        if ((q.w[3] & 0x7FFF0000u) == 0x7FFF0000u && ((q.w[3] & 0xFFFFu) | q.w[2] | q.w[1] | q.w[0]) != 0)
            q.w[3] ^= 0x00008000u;
    };
    if (kind == "r4") flip4(v.r4);
    else if (kind == "r8") flip8(v.r8);
    else if (kind == "r16") flip16(v.r16);
    else if (kind == "c4") flip4(v.c4.re), flip4(v.c4.im);
    else if (kind == "c8") flip8(v.c8.re), flip8(v.c8.im);
    else if (kind == "c16") flip16(v.c16.re), flip16(v.c16.im);
}

bool listed(std::string_view errors, std::int32_t number) {
    const std::string n = std::to_string(number);
    std::size_t start = 0;
    while (start <= errors.size()) {
        const std::size_t end = std::min(errors.find(',', start), errors.size());
        if (errors.substr(start, end - start) == n) return true;
        start = end + 1;
    }
    return false;
}

bool supported(const exports::Row& row) {
    if (is_matrix_export(row.name)) return true;
    for (std::string_view k : split_kinds(row.args))
        if (k == "desc" || k == "argblk") return false;
    return true;
}

}  // namespace

namespace {

// The committed digests: "name cases=N reports=R digest=X" per line.
std::map<std::string, std::string> read_digests(const char* path, bool& ok) {
    std::map<std::string, std::string> lines;
    std::FILE* f = std::fopen(path, "r");
    ok = f != nullptr;
    if (!f) return lines;
    char buffer[512];
    while (std::fgets(buffer, sizeof buffer, f)) {
        std::string line(buffer);
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        lines[line.substr(0, line.find(' '))] = line;
    }
    std::fclose(f);
    return lines;
}

}  // namespace

int run_golden(const GoldenOptions& options) {
    std::vector<std::int32_t> reports;
    g_reports = &reports;
    jwe_lca.handler = &recording_handler;
    jwe_lca.handler_enabled = 1;
    jwe_lca.suppress = 0;

    bool failed = false;
    std::map<std::string, std::string> computed;
    // Operands, results and cells of the matrix exports' cases.
    std::vector<unsigned char> matrix_data(kMatrixDataBytes), matrix_pointers(kMatrixPointerBytes);
    const MatrixArena arena{matrix_data.data(), matrix_data.size(), matrix_pointers.data(), matrix_pointers.size()};
    for (const exports::Row& row : exports::rows()) {
        if (!row.thunk) continue;
        if (!options.only.empty() && row.name != options.only) continue;
        const std::string name(row.name);
        if (!supported(row)) {
            std::fprintf(stderr, "golden: no inputs for %s: its argument kinds (%.*s) have no generator\n",
                         name.c_str(), static_cast<int>(row.args.size()), row.args.data());
            failed = true;
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
            if (is_matrix_export(row.name)) {
                const auto bytes = run_matrix_case(row, random.state, args, std::size(args), arena);
                digest = fnv1a(digest, bytes.data(), bytes.size());
            } else {
                row.thunk(args, result);
            }
            if (row.name == options.perturb) flip_quiet_bits(row.result, result);
            // Every bit of the result counts, NaN payloads and quiet bits
            // included: the flavours must return the same bits.
            const std::size_t size = significant_size(row.result);
            digest = fnv1a(digest, result.bytes, size);
            for (std::int32_t n : reports) {
                digest = fnv1a(digest, &n, sizeof n);
                if (!listed(row.errors, n)) {
                    std::fprintf(stderr, "golden: %s reported error %" PRId32 ", which its row does not list (%.*s)\n",
                                 name.c_str(), n, static_cast<int>(row.errors.size()), row.errors.data());
                    failed = true;
                }
            }
            reported += static_cast<std::uint32_t>(reports.size());
            if (options.dump) {
                std::printf("%s #%" PRIu32 ":", name.c_str(), i);
                for (std::size_t k = 0; k < kinds.size(); ++k)
                    if (kinds[k] != "anyreal") std::printf(" %s", format_value(kinds[k], args[k]).c_str());
                std::printf(" -> %s", format_value(row.result, result).c_str());
                for (std::int32_t n : reports) std::printf(" [report %" PRId32 "]", n);
                std::printf("\n");
            }
        }
        char line[256];
        std::snprintf(line, sizeof line, "%s cases=%" PRIu32 " reports=%" PRIu32 " digest=%016" PRIX64, name.c_str(),
                      options.cases, reported, digest);
        computed[name] = line;
        if (!options.check) std::printf("%s\n", line);
    }
    g_reports = nullptr;

    if (options.check) {
        bool readable = false;
        const std::map<std::string, std::string> expected = read_digests(options.check, readable);
        if (!readable) {
            std::fprintf(stderr, "golden: cannot read %s\n", options.check);
            return 2;
        }
        int differ = 0;
        for (const auto& [name, line] : computed) {
            auto e = expected.find(name);
            if (e == expected.end()) {
                std::printf("golden: %s has no committed digest\n", name.c_str());
                ++differ;
            } else if (e->second != line) {
                std::printf("golden: %s differs\n  committed %s\n  computed  %s\n", name.c_str(), e->second.c_str(),
                            line.c_str());
                ++differ;
            }
        }
        if (options.only.empty()) {
            for (const auto& [name, line] : expected) {
                if (!computed.count(name)) {
                    std::printf("golden: %s has a committed digest but is not implemented here\n", name.c_str());
                    ++differ;
                }
            }
        }
        std::printf("golden: %zu exports computed, %d differ from %s\n", computed.size(), differ, options.check);
        if (differ) failed = true;
    }
    return failed ? 1 : 0;
}

}  // namespace mivor::tool
