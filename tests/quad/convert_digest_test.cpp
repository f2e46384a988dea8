// Every conversion, comparison and small intrinsic over a fixed stream of
// 100000 pseudo-random operands each, summarised as one FNV-1a digest of
// the results (and of the error numbers reported) per export.  The
// expected digests were computed on the host flavour; i386 and the win32
// DLL must give the same bits, so a mismatch on one flavour only is a
// flavour difference (x87 precision, calling convention, 64-bit integer
// code).  After an intended change of results, run with
// MIVOR_PRINT_DIGESTS=1 to print the new table.
#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include "convert_random.h"
#include "convert_test_support.h"
#include "mivor/control_area.h"
#include "support/streams.h"

using namespace quadtest;

namespace {

constexpr int kCases = 100000;

// The object representation of each value, byte by byte.
struct Digest : mivor::testing::Fnv1a {
    template <class T> void add(const T& v) { add_bytes(&v, sizeof v); }
};

// Error numbers of the current case; every retry is declined.
std::int32_t g_reported[4];
int g_report_count = 0;
void declining_handler(void*) {
    if (g_report_count < 4) g_reported[g_report_count] = jwe_lca.error_number;
    ++g_report_count;
    jwe_lca.retry_word = 0;
}

// Operands per family of exports.
mivor_real16 near_double_range(Random& r, int i) {
    static constexpr int centers[] = {15360 - 40, 15360 + 1000, 15360 + 2030, 16383};
    return real16_near(r, centers[i % 4], 40);
}
mivor_real16 near_float_range(Random& r, int i) {
    static constexpr int centers[] = {16256 - 20, 16256 + 100, 16256 + 250, 16383};
    return real16_near(r, centers[i % 4], 20);
}
mivor_real16 integral_range(Random& r) { return real16_near(r, 16383 + 56, 60); }
mivor_real16 int4_range(Random& r) { return real16_near(r, 16383 + 16, 20); }
mivor_real16 int8_range(Random& r) { return real16_near(r, 16383 + 32, 36); }
// A REAL(16) near the widened d (for cancellation) or anywhere.
mivor_real16 partner_of(Random& r, double d) {
    if (r.coin()) return real16_near(r, 16383, 1100);
    mivor_real16 q;
    g_qextd(&q, &d);
    q.w[r.below(3)] ^= r.word();
    return q;
}

using Run = void (*)(Random&, int, Digest&);

struct Entry {
    const char* name;
    std::uint64_t expected;
    Run run;
};

template <class F> mivor_real16 r16(F f) {
    mivor_real16 v;
    f(&v);
    return v;
}

const Entry kEntries[] = {
    {"g_dbleq", 0xDFE57286821B6DC1, [](Random& r, int i, Digest& d) { auto x = near_double_range(r, i); d.add(bits(g_dbleq(&x))); }},
    {"g_snglq", 0xFD12F1DDAA87EDDF, [](Random& r, int i, Digest& d) { auto x = near_float_range(r, i); d.add(bits(g_snglq(&x))); }},
    {"g_qextd", 0x849FD0B93C52FCB1, [](Random& r, int, Digest& d) { double x = real8(r); d.add(r16([&](auto* p) { g_qextd(p, &x); })); }},
    {"g_qext", 0x1C01F8DE94E4E604, [](Random& r, int, Digest& d) { float x = real4(r); d.add(r16([&](auto* p) { g_qext(p, &x); })); }},
    {"g_qfloat", 0x312784DE2F4E2BB6, [](Random& r, int, Digest& d) { auto x = integer32(r); d.add(r16([&](auto* p) { g_qfloat(p, &x); })); }},
    {"g_aqcj", 0x344A12B711F56BE5, [](Random& r, int, Digest& d) { auto x = integer64(r); d.add(r16([&](auto* p) { g_aqcj(p, &x); })); }},
    {"g_iqint", 0x03238B0729B17587, [](Random& r, int, Digest& d) { auto x = int4_range(r); d.add(g_iqint(&x)); }},
    {"g_ajcq", 0xF1EC4A1D514BA99E, [](Random& r, int, Digest& d) { auto x = int8_range(r); d.add(g_ajcq(&x)); }},
    {"g_qint", 0x51B49729480FF6DE, [](Random& r, int, Digest& d) { auto x = integral_range(r); d.add(r16([&](auto* p) { g_qint(p, &x); })); }},
    {"g_qnint", 0x3D1A1E0B7137E7A4, [](Random& r, int, Digest& d) { auto x = integral_range(r); d.add(r16([&](auto* p) { g_qnint(p, &x); })); }},
    {"g_iqnint", 0x1EFA84740F128123, [](Random& r, int, Digest& d) { auto x = int4_range(r); d.add(g_iqnint(&x)); }},
    {"g_jqnint", 0x83C10D1F5CF9E8AA, [](Random& r, int, Digest& d) { auto x = int8_range(r); d.add(g_jqnint(&x)); }},
    {"jwe_gdsq", 0x762796F3FCEDB6D0, [](Random& r, int, Digest& d) {
         const double a = real8(r);
         const auto b = partner_of(r, a);
         d.add(r16([&](auto* p) { jwe_gdsq(p, a, b); }));
     }},
    {"jwe_gqmd", 0x244730E4ABA085DE, [](Random& r, int, Digest& d) {
         const double a = real8(r);
         const auto b = real16_near(r, 16383, 16380);
         d.add(r16([&](auto* p) { jwe_gqmd(p, b, a); }));
     }},
    {"jwe_gddq", 0x689B3266A7DF5CA6, [](Random& r, int, Digest& d) {
         const double a = real8(r);
         const auto b = partner_of(r, a);
         d.add(r16([&](auto* p) { jwe_gddq(p, a, b); }));
     }},
    {"jwe_gqqc", 0x70AE52A42099C94D, [](Random& r, int, Digest& d) { auto x = real16_near(r, 16383, 3); d.add(r16([&](auto* p) { jwe_gqqc(p, x); })); }},
    {"g_acmp", 0xE3E474264DC5BF07, [](Random& r, int, Digest& d) { mivor_real16 x, y; comparison_pair(r, x, y); d.add(g_acmp(&x, &y)); }},
    {"g_acmpe", 0x3BB5192310517F57, [](Random& r, int, Digest& d) { mivor_real16 x, y; comparison_pair(r, x, y); d.add(g_acmpe(&x, &y)); }},
    {"g_afeq", 0xFD6D149EFDDA7A85, [](Random& r, int, Digest& d) { mivor_real16 x, y; comparison_pair(r, x, y); d.add(g_afeq(&x, &y)); }},
    {"g_afne", 0x20C196EBD1884B15, [](Random& r, int, Digest& d) { mivor_real16 x, y; comparison_pair(r, x, y); d.add(g_afne(&x, &y)); }},
    {"g_afgt", 0x28B140FF1A4E6755, [](Random& r, int, Digest& d) { mivor_real16 x, y; comparison_pair(r, x, y); d.add(g_afgt(&x, &y)); }},
    {"g_afge", 0x21700A859EDDAB05, [](Random& r, int, Digest& d) { mivor_real16 x, y; comparison_pair(r, x, y); d.add(g_afge(&x, &y)); }},
    {"g_aflt", 0xA06F0AF1DB7677B5, [](Random& r, int, Digest& d) { mivor_real16 x, y; comparison_pair(r, x, y); d.add(g_aflt(&x, &y)); }},
    {"g_afle", 0xFE5AC8A075DC3AC5, [](Random& r, int, Digest& d) { mivor_real16 x, y; comparison_pair(r, x, y); d.add(g_afle(&x, &y)); }},
    {"g_qabs", 0xABA4A5818558B181, [](Random& r, int, Digest& d) { auto x = real16_any(r); d.add(r16([&](auto* p) { g_qabs(p, &x); })); }},
    {"g_qsign", 0x57D02395E914746E, [](Random& r, int, Digest& d) {
         mivor_real16 x, y;
         comparison_pair(r, x, y);
         d.add(r16([&](auto* p) { g_qsign(p, &x, &y); }));
     }},
    {"g_qdim", 0xC223DD3F3261E2B3, [](Random& r, int, Digest& d) {
         mivor_real16 x = real16_near(r, 16383, 200), y = r.coin() ? x : real16_near(r, 16383, 200);
         y.w[0] ^= r.below(4);
         d.add(r16([&](auto* p) { g_qdim(p, &x, &y); }));
     }},
    {"g_qmod", 0x044F30FBEF829C81, [](Random& r, int, Digest& d) {
         const mivor_real16 x = real16_near(r, 16383 + 40, 60), y = real16_near(r, 16383, 40);
         d.add(r16([&](auto* p) { g_qmod(p, &x, &y); }));
     }},
    {"g_qmax1", 0x88A600CDF51F46C9, [](Random& r, int, Digest& d) {
         mivor_real16 x, y;
         comparison_pair(r, x, y);
         d.add(r16([&](auto* p) { g_qmax1(p, &x, &y); }));
     }},
    {"g_qmin1", 0x9DE2EE2FF648A932, [](Random& r, int, Digest& d) {
         mivor_real16 x, y;
         comparison_pair(r, x, y);
         d.add(r16([&](auto* p) { g_qmin1(p, &x, &y); }));
     }},
    {"g_qprod", 0xD270787980D743A7, [](Random& r, int, Digest& d) {
         const double a = real8(r), b = real8(r);
         d.add(r16([&](auto* p) { g_qprod(p, &a, &b); }));
     }},
    {"g_qcmplx", 0xB9A4C519254F74FB, [](Random& r, int, Digest& d) {
         const auto a = real16_any(r), b = real16_any(r);
         mivor_complex16 z;
         g_qcmplx(&z, &a, &b);
         d.add(z);
     }},
    {"g_qcmpxo", 0x59B0CEBCA92FEE6A, [](Random& r, int, Digest& d) {
         const auto a = real16_any(r), b = real16_any(r);
         mivor_complex16 z;
         g_qcmpxo(&z, &a, (r.below(4) == 0) ? nullptr : &b);
         d.add(z);
     }},
    {"g_qreal", 0x498D975C512E8A6C, [](Random& r, int, Digest& d) {
         const mivor_complex16 z{real16_any(r), real16_any(r)};
         d.add(r16([&](auto* p) { g_qreal(p, &z); }));
     }},
    {"g_qimag", 0x69A516F1A33A743F, [](Random& r, int, Digest& d) {
         const mivor_complex16 z{real16_any(r), real16_any(r)};
         d.add(r16([&](auto* p) { g_qimag(p, &z); }));
     }},
    {"g_qconjg", 0x3F205D2767C357F6, [](Random& r, int, Digest& d) {
         const mivor_complex16 z{real16_near(r, 16383, 3), real16_near(r, 16383, 3)};
         mivor_complex16 c;
         g_qconjg(&c, &z);
         d.add(c);
     }},
    {"jwe_gflo", 0xA0BA982CC1FB223E, [](Random& r, int, Digest& d) { const float x = real4(r); d.add(bits(jwe_gflo(&x))); }},
    {"jwe_gfld", 0x86B89E05D42A15BF, [](Random& r, int, Digest& d) { const double x = real8(r); d.add(bits(jwe_gfld(&x))); }},
    {"jwe_gflq", 0x1484E81A0CFB8999, [](Random& r, int, Digest& d) { auto x = integral_range(r); d.add(r16([&](auto* p) { jwe_gflq(p, &x); })); }},
};

std::uint64_t seed_of(const char* name) {
    Digest d;
    while (*name) d.add(*name++);
    return d.value();
}

TEST(Digest, EveryExportGivesTheHostsBits) {
    jwe_control_area saved;
    std::memcpy(&saved, &jwe_lca, sizeof saved);
    jwe_lca.handler = &declining_handler;
    jwe_lca.handler_enabled = 1;
    jwe_lca.suppress = 0;
    const bool print = std::getenv("MIVOR_PRINT_DIGESTS") != nullptr;
    for (const Entry& e : kEntries) {
        Random r{seed_of(e.name)};
        Digest d;
        int reports = 0;
        for (int i = 0; i < kCases; ++i) {
            jwe_lca.ieee_results = static_cast<std::uint8_t>(i & 1);  // both fallbacks
            g_report_count = 0;
            e.run(r, i, d);
            reports += g_report_count;
            for (int k = 0; k < g_report_count && k < 4; ++k) d.add(g_reported[k]);
        }
        if (print) std::printf("    {\"%s\", 0x%016" PRIX64 ", ...},  // %d reports\n", e.name, d.value(), reports);
        EXPECT_EQ(d.value(), e.expected) << e.name << ": digest 0x" << std::hex << d.value() << " (" << std::dec << reports
                                   << " reports)";
    }
    std::memcpy(&jwe_lca, &saved, sizeof saved);
}

}  // namespace
