// Every flavour (x86-64, i386, the win32 DLL) must give the same bits: a
// digest of each exponential and logarithm over a fixed input stream is
// compared with the value computed on x86-64.  The stream mixes arbitrary
// bit patterns (specials, NaNs, reports) with dense sampling of each
// function's working range, built from integers alone so that it is the
// same everywhere.
//
// MIVOR_PRINT_DIGESTS=1 prints the table rows instead of checking them.
#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"
#include "support/streams.h"

namespace {

using mivor::testing::RecordingHandler;
using mivor::testing::bits;
using mivor::testing::f64;
using mivor::testing::Fnv1a;

constexpr int kCases = 60000;

struct Stream {
    std::uint64_t s;
    std::uint64_t next() {
        s = s * 6364136223846793005u + 1442695040888963407u;
        return s ^ (s >> 29);
    }
};

// A pattern between those of two positive doubles, with a random sign when
// `signed_range`.
double between(Stream& st, double lo, double hi, bool signed_range) {
    const std::uint64_t a = bits(lo), b = bits(hi);
    const std::uint64_t r = st.next();
    std::uint64_t v = a + r % (b - a + 1);
    if (signed_range && (r >> 63)) v |= 0x8000000000000000u;
    return f64(v);
}

struct Range {
    double lo, hi;
    bool signed_range;
};

double input(Stream& st, int i, const Range* ranges, int n_ranges) {
    if (i % 8 == 0) return f64(st.next());  // anything at all
    const Range& r = ranges[i % n_ranges];
    return between(st, r.lo, r.hi, r.signed_range);
}

enum class Kind { scalar8, scalar4, packed };

struct Case {
    const char* name;
    Kind kind;
    double (*f8)(const double*);
    float (*f4)(const float*);
    __m128d (*pk)(__m128d);
    Range ranges[3];
    std::uint64_t expected;
};

const Range kExp[3] = {{0x1p-60, 745.2, true}, {708.0, 710.0, true}, {0x1p-30, 2.0, true}};
const Range kExp2[3] = {{0x1p-60, 1075.0, true}, {1022.0, 1025.0, true}, {0x1p-30, 2.0, true}};
const Range kExp10[3] = {{0x1p-60, 324.0, true}, {303.0, 309.0, true}, {0x1p-30, 2.0, true}};
const Range kLog[3] = {{0x1p-1074, 0x1.fffffffffffffp+1023, false}, {0.5, 2.0, false}, {0x1p-1074, 0x1p-1000, true}};
const Range kExpF[3] = {{0x1p-30, 105.0, true}, {85.0, 90.0, true}, {0x1p-10, 2.0, true}};
const Range kExp2F[3] = {{0x1p-30, 152.0, true}, {125.0, 129.0, true}, {0x1p-10, 2.0, true}};
const Range kExp10F[3] = {{0x1p-30, 46.0, true}, {37.0, 39.0, true}, {0x1p-10, 2.0, true}};
const Range kLogF[3] = {{0x1p-149, 0x1p128, false}, {0.5, 2.0, false}, {0x1p-149, 0x1p-120, true}};

#define R3(r) {r[0], r[1], r[2]}
// Expected digests: x86-64, MIVOR_PRINT_DIGESTS=1.
Case kCasesTable[] = {
    {"g_dexp", Kind::scalar8, g_dexp, nullptr, nullptr, R3(kExp), 0xef92956139b0a3a1u},
    {"g_dexp2", Kind::scalar8, g_dexp2, nullptr, nullptr, R3(kExp2), 0xaa5b57606575e59bu},
    {"g_dexp10", Kind::scalar8, g_dexp10, nullptr, nullptr, R3(kExp10), 0x5ceaff8779d39529u},
    {"g_dlog", Kind::scalar8, g_dlog, nullptr, nullptr, R3(kLog), 0x39d4403020e80ed3u},
    {"g_dlog2", Kind::scalar8, g_dlog2, nullptr, nullptr, R3(kLog), 0xf4b2f8a16694cf54u},
    {"g_dlog10", Kind::scalar8, g_dlog10, nullptr, nullptr, R3(kLog), 0x650aca847b1ff243u},
    {"pk_dexp", Kind::packed, nullptr, nullptr, pk_dexp, R3(kExp), 0xfb6d453d5230ad2au},
    {"pk_dlog", Kind::packed, nullptr, nullptr, pk_dlog, R3(kLog), 0xa0968c5c588bf9a6u},
    {"pk_dlog10", Kind::packed, nullptr, nullptr, pk_dlog10, R3(kLog), 0x4a7568aa36e540ebu},
    {"g_exp", Kind::scalar4, nullptr, g_exp, nullptr, R3(kExpF), 0xd5733bd7e4e99699u},
    {"g_exp2", Kind::scalar4, nullptr, g_exp2, nullptr, R3(kExp2F), 0xcd04e822740db599u},
    {"g_exp10", Kind::scalar4, nullptr, g_exp10, nullptr, R3(kExp10F), 0x67eddb190f523796u},
    {"g_alog", Kind::scalar4, nullptr, g_alog, nullptr, R3(kLogF), 0x058bdf83ffaa5b90u},
    {"g_alog2", Kind::scalar4, nullptr, g_alog2, nullptr, R3(kLogF), 0x8a5d3bc6b69fa469u},
    {"g_alog10", Kind::scalar4, nullptr, g_alog10, nullptr, R3(kLogF), 0x6fe96975d8c08822u},
};

std::uint64_t digest(const Case& c) {
    RecordingHandler handler;  // no retry; IEEE results on
    Stream st{0x9E3779B97F4A7C15u};
    Fnv1a h;
    for (int i = 0; i < kCases; ++i) {
        const double x = input(st, i, c.ranges, 3);
        switch (c.kind) {
            case Kind::scalar8:
                h.add_u64(bits(c.f8(&x)));
                break;
            case Kind::scalar4: {
                std::uint32_t b = static_cast<std::uint32_t>(bits(x) >> 32);  // raw patterns too
                float f;
                if (i % 8 == 0) {
                    std::memcpy(&f, &b, sizeof f);
                } else {
                    f = static_cast<float>(x);
                }
                const float y = c.f4(&f);
                std::uint32_t yb;
                std::memcpy(&yb, &y, sizeof yb);
                h.add_u64(yb);
                break;
            }
            case Kind::packed: {
                const double x2 = input(st, i + 1, c.ranges, 3);
                alignas(16) double out[2];
                _mm_store_pd(out, c.pk(_mm_set_pd(x2, x)));
                h.add_u64(bits(out[0]));
                h.add_u64(bits(out[1]));
                break;
            }
        }
    }
    for (const auto& r : handler.reports()) h.add_u64(static_cast<std::uint64_t>(r.number));
    h.add_u64(handler.reports().size());
    return h.value();
}

TEST(ExpLogDigest, EveryFlavourGivesTheBitsOfX86_64) {
    const char* print = std::getenv("MIVOR_PRINT_DIGESTS");
    for (const Case& c : kCasesTable) {
        const std::uint64_t d = digest(c);
        if (print && *print == '1') {
            std::printf("%-10s 0x%016" PRIx64 "u\n", c.name, d);
            continue;
        }
        EXPECT_EQ(d, c.expected) << c.name << ": 0x" << std::hex << d;
    }
}

}  // namespace
