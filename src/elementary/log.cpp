// g_dlog, g_dlog2, g_dlog10, pk_dlog, pk_dlog10: logarithms in REAL(8).
//
// Method: x = 2^n (c_j + r) with x/2^n in [0.75, 1.5); c_j = (32 + j)/32 for
// the 16 intervals of width 1/32 above 1 and (32 + j)/64 for those of width
// 1/64 below, so r is exact: r = y - 1 in [0, 1/32) or y - 33/64 in
// [-1/64, 0) where y is x with its exponent and top five fraction bits
// replaced.  ln x = n ln 2 + ln c_j + r + r P_j(r), P_j of degree 7 fitted per
// interval, so no division is needed.  n ln 2 + ln c_j + r is summed in two
// exact Fast2Sum steps (|n ln2 hi| >= |ln c_j| unless n = 0, and each partial
// sum is at least as large in exponent as the next term) whose errors go,
// with the low parts, into the tail L; r P, p0 included, is rounded as it
// is evaluated and joins the tail, and S + (r P + L) rounds once at the end.
// The roundings inside P count r times ulp(P), up to 2^-5 ulp(S) each where
// |p0| and r are largest, so the result is 0.5 ulp plus up to about 0.07 for
// x in [1, 1.5) (measured 0.572 for ln, 0.600 for log2 after its scaling),
// 0.55 in [0.75, 1) and close to 0.5 once n ln 2 dominates.
//
// Base 2 and 10 scale the pair (S, P r + L) by 1/ln b split in two, the top
// 26 bits of S times the 27-bit high part being exact: again one final
// rounding plus small terms.
//
// Special cases (the order of the tests matters, see below):
//   x >= 2^-1022 (normal, +Inf)   main path; +Inf is not special-cased and
//                                 gives 1024 ln 2 (log2: 1024).
//   0 < x < 2^-1022               x 2^52, the same path, n - 52.
//   +-0                           error 245, direct form; without a retry
//                                 -Inf, or -0x1.fffffffffffb6p+1023 when IEEE
//                                 results are off.
//   x < 0, NaN                    error 245; without a retry the quiet NaN,
//                                 or, with IEEE results off, the sign of x is
//                                 flipped and everything starts again: ln |x|
//                                 after one report.  A NaN stays a NaN and is
//                                 reported again on every pass until the
//                                 handler corrects it.  Both are kept on
//                                 purpose.
// The packed forms test whether ANY lane is >= 2^-1022; if so both lanes go
// through the main path, which has no range checks, so an out-of-range lane
// beside a good one is neither reported nor special-cased.  That too is
// deliberate.  Only when no lane qualifies does each lane take the scalar
// function, lane 0 first.
#include <emmintrin.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "elementary/lanes.h"
#include "elementary/log_data.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

using namespace mivor;
using namespace mivor::elementary;

namespace {

constexpr double T1 = 0.75;                               // n: x/2^n in [0.75, 1.5)
constexpr double T2 = 0x1p-1022;                          // smallest normal
constexpr std::uint64_t T3 = 0x7FF07FFFFFFFFFFFu;         // exponent and low 47 fraction bits
constexpr double lg2e = 0x1.62e42fefa3p-1;                // ln 2, high part: n*lg2e exact
constexpr double lg2es = 0x1.3de6af278ece6p-42;           // ln 2, low part
constexpr double norm = 0x1p+52;                          // scales subnormals up
constexpr double ctbl[2] = {1.0, 0x1.08p-1};              // c_b: 1, 33/64
constexpr std::uint32_t kT1High = 0x3FE80000u;            // high word of T1
constexpr std::uint32_t kT2High = 0x00100000u;            // high word of T2
constexpr std::uint32_t kInfHigh = 0x7FF00000u;           // high word of +Inf
constexpr std::uint64_t kNegHugeBits = 0xFFEFFFFFFFFFFFB6u;
constexpr std::uint64_t kTop26 = ~((std::uint64_t{1} << 27) - 1);
static_assert(std::bit_cast<std::uint64_t>(T1) >> 32 == kT1High);
static_assert(std::bit_cast<std::uint64_t>(T2) == std::uint64_t{kT2High} << 32);

enum class Base { e, two, ten };

// The tables in the order the kernel reads them, indexed by f5 (the top five
// fraction bits) rather than j = f5 + b, so that each byte offset is two
// integer operations on the high word: row f5 is interval f5 + (f5 >> 4)
// (interval 16 is never used).  kPoly[f5], one 64-byte line, holds p0..p7
// paired (p0,p4) (p1,p5) (p2,p6) (p3,p7), so that the two halves of the
// Estrin scheme, p0 + p1 r + r2 (p2 + p3 r) and p4 + p5 r + r2 (p6 + p7 r),
// run together in one register with each pair an aligned operand; kLn[f5]
// is ln c_j and the c_b that r is measured from (1 or 33/64).  Built at
// compile time from the generated tables: same values, so the same bits.
struct alignas(64) PolyRow {
    double p04[2], p15[2], p26[2], p37[2];
};
struct alignas(32) LnRow {
    double hi, lo, c, unused;
};
constexpr unsigned interval_of(unsigned f5) { return f5 + (f5 >> 4); }

consteval std::array<PolyRow, 32> make_poly() {
    std::array<PolyRow, 32> rows{};
    for (unsigned f5 = 0; f5 < 32; ++f5) {
        const double* p = log_p[interval_of(f5)].c;
        rows[f5] = PolyRow{{p[0], p[4]}, {p[1], p[5]}, {p[2], p[6]}, {p[3], p[7]}};
    }
    return rows;
}
consteval std::array<LnRow, 32> make_ln() {
    std::array<LnRow, 32> rows{};
    for (unsigned f5 = 0; f5 < 32; ++f5) {
        const LogSplit& t = log_atbl[interval_of(f5)];
        rows[f5] = LnRow{t.hi, t.lo, ctbl[f5 >> 4], 0.0};
    }
    return rows;
}
constexpr std::array<PolyRow, 32> kPoly = make_poly();
constexpr std::array<LnRow, 32> kLn = make_ln();

// Rows of f5 from the high word hw (of either lane: the shifts keep the
// bits of one 32-bit word).
inline const PolyRow& poly_row(std::uint32_t hw) {
    return *reinterpret_cast<const PolyRow*>(reinterpret_cast<const char*>(kPoly.data()) + ((hw >> 9) & 0x7C0u));
}
inline const LnRow& ln_row(std::uint32_t hw) {
    return *reinterpret_cast<const LnRow*>(reinterpret_cast<const char*>(kLn.data()) + ((hw >> 10) & 0x3E0u));
}

// Pairs read as packed operands (see lanes.h).
struct Scale {
    Lanes hi, lo, full;
};
constexpr Scale scale_lanes(LogSplit c) { return {twice(c.hi), twice(c.lo), twice(c.hi + c.lo)}; }
constexpr double from_bits(std::uint64_t b) { return std::bit_cast<double>(b); }
struct Constants {
    Lanes t2, lg2e, lg2es, top26, t3, t1, expo, fb51, one;
    Scale base2, base10;
};
constexpr Constants kConst = {
    twice(T2),
    twice(lg2e),
    twice(lg2es),
    twice(from_bits(kTop26)),
    twice(from_bits(T3)),
    twice(T1),
    twice(from_bits(0xFFF0000000000000u)),
    twice(from_bits(std::uint64_t{1} << 51)),
    twice(1.0),
    scale_lanes(log_inv_ln2),
    scale_lanes(log_inv_ln10),
};

// ln x = S + lo.
struct Parts {
    double S, lo;
};

// y of each lane of x in the vector unit (on i386 a 64-bit pattern built in
// a register pair and moved over stalls on store forwarding), the same for
// every pattern, as the packed form needs for its unchecked lanes:
// n << 52 = (x - T1's pattern) & 0xFFF0...0, since the high word of that
// 64-bit difference is hw - 0x3FE80000 (nothing borrows from the low word)
// and n << 52 keeps just its top twelve bits, as the mask does.
inline __m128i y_bits(__m128d x, const Constants& k) {
    const __m128i nsh = _mm_and_si128(_mm_sub_epi64(_mm_castpd_si128(x), _mm_castpd_si128(lanes(k.t1))),
                                      _mm_castpd_si128(lanes(k.expo)));
    return _mm_sub_epi64(_mm_castpd_si128(_mm_and_pd(x, lanes(k.t3))), nsh);
}

// r = y - c_b of both lanes, c_b = 1 - (b << 52) + (b << 47) formed from
// bit 51 (1.0 for b = 0, 33/64 for b = 1): five integer operations, which
// the packed form runs faster than two loads from the rows; r is exact
// either way.
inline __m128d reduced(__m128d x, const Constants& k) {
    const __m128i w = _mm_castpd_si128(x);
    const __m128i y = y_bits(x, k);
    const __m128i bit = _mm_and_si128(w, _mm_castpd_si128(lanes(k.fb51)));
    const __m128i c = _mm_add_epi64(_mm_sub_epi64(_mm_castpd_si128(lanes(k.one)), _mm_slli_epi64(bit, 1)),
                                    _mm_srli_epi64(bit, 4));
    return _mm_sub_pd(_mm_castsi128_pd(y), _mm_castsi128_pd(c));
}

// n of each lane's high word (lanes 1 and 3 of x's words), as doubles.
inline __m128d exponent_n(__m128i hw2) {
    return _mm_cvtepi32_pd(_mm_srai_epi32(_mm_sub_epi32(hw2, _mm_set1_epi32(static_cast<int>(kT1High))), 20));
}

// x in lane 0 of xv, hw its high word (read from memory when the caller
// has it there: the row addresses then never wait for the vector unit).  n
// is formed and converted on the integer side (one cvtsi2sd costs fewer
// vector operations than forming it from x's lanes), y in the vector unit,
// c_b from the row.  The polynomial's two Estrin halves run as pairs; each
// operation is the one of the scalar formula, so the bits do not depend on
// the pairing.
inline Parts ln_parts(__m128d xv, std::uint32_t hw, int n_offset) {
    const Constants& k = opaque(kConst);
    const LnRow& t = ln_row(hw);
    const PolyRow& c = poly_row(hw);
    const __m128d r1 = _mm_sub_sd(_mm_castsi128_pd(y_bits(xv, k)), _mm_load_sd(&t.c));
    const double r = _mm_cvtsd_f64(r1);
    const double dn = static_cast<double>((static_cast<std::int32_t>(hw - kT1High) >> 20) + n_offset);
    const double a = dn * lg2e;
    const double S1 = a + t.hi;
    const double e1 = t.hi + (a - S1);
    const double S = S1 + r;
    const double e2 = r + (S1 - S);
    const double L = (e1 + e2) + (dn * lg2es + t.lo);
    const __m128d rr = _mm_unpacklo_pd(r1, r1);
    const __m128d r2 = _mm_mul_pd(rr, rr);
    const __m128d lo_hi = _mm_add_pd(_mm_add_pd(_mm_load_pd(c.p04), _mm_mul_pd(_mm_load_pd(c.p15), rr)),
                                     _mm_mul_pd(r2, _mm_add_pd(_mm_load_pd(c.p26), _mm_mul_pd(_mm_load_pd(c.p37), rr))));
    const __m128d r4 = _mm_mul_sd(r2, r2);
    const double P = _mm_cvtsd_f64(_mm_add_sd(lo_hi, _mm_mul_sd(r4, _mm_unpackhi_pd(lo_hi, lo_hi))));
    return {S, P * r + L};
}

constexpr LogSplit scale_of(Base base) { return base == Base::two ? log_inv_ln2 : log_inv_ln10; }

// Base 2 and 10: Sh (the top 26 bits of S, cut in the vector unit) times
// the 27-bit C.hi is exact.
template <Base base>
inline double finish(Parts q) {
    if constexpr (base == Base::e) {
        return q.S + q.lo;
    } else {
        constexpr LogSplit C = scale_of(base);
        constexpr double Cfull = C.hi + C.lo;
        const double Sh = _mm_cvtsd_f64(_mm_and_pd(_mm_set_sd(q.S), lanes(opaque(kConst).top26)));
        const double Sl = q.S - Sh;
        return Sh * C.hi + ((Sl * C.hi + q.S * C.lo) + q.lo * Cfull);
    }
}

inline std::uint32_t high_word(double x) { return static_cast<std::uint32_t>(bits_of(x) >> 32); }

// Everything below the smallest normal: subnormals, zeros, negatives, NaN.
template <Base base>
[[gnu::cold, gnu::noinline]] double below_normal(double x) {
    return report::settle<report::Form::direct>(
        [](double x) -> report::Step<double, double> {
            if (x >= T2) return finish<base>(ln_parts(_mm_set_sd(x), high_word(x), 0));
            if (x > 0.0) {
                const double xs = x * norm;
                return finish<base>(ln_parts(_mm_set_sd(xs), high_word(xs), -52));
            }
            if (x == 0.0) return report::fail(Error::log_domain_r8, _MInf_D, double_from_bits(kNegHugeBits));
            // Negative or NaN: with IEEE results off, ln|x| (a NaN reports
            // again, pass after pass, until the handler corrects it).
            return report::fail_then_restart(Error::log_domain_r8, _NaN_D, -x);
        },
        x);
}

template <Base base>
inline double scalar_log(const double* arg) {
    // x >= 2^-1022 tested on the high word, on the integer side: positive,
    // normal and finite.  +Inf fails it here and takes the main path from
    // below_normal, whose first test is x >= T2 itself.
    std::uint32_t hw;
    std::memcpy(&hw, reinterpret_cast<const unsigned char*>(arg) + 4, sizeof hw);
    if (hw - kT2High < kInfHigh - kT2High) [[likely]]
        return finish<base>(ln_parts(_mm_load_sd(arg), hw, 0));
    return below_normal<base>(*arg);
}

// Both lanes through the main path: n, y and r in the vector unit, the
// table rows by index, and the arithmetic two lanes at a time in the order
// of ln_parts and finish.  The polynomial runs per lane on its row's pairs
// as operands (cheaper than transposing eight coefficients per lane), the
// two lanes' halves then joined.
template <Base base>
inline __m128d packed_log(__m128d x) {
    const Constants& k = opaque(kConst);
    if (_mm_movemask_pd(_mm_cmpge_pd(x, lanes(k.t2))) == 0) {
        alignas(16) double lane[2];
        _mm_store_pd(lane, x);
        const double r0 = scalar_log<base>(&lane[0]);
        const double r1 = scalar_log<base>(&lane[1]);
        return _mm_set_pd(r1, r0);
    }
    const __m128i hw = _mm_shuffle_epi32(_mm_castpd_si128(x), _MM_SHUFFLE(3, 1, 3, 1));  // high words, twice
    const __m128d dn = exponent_n(hw);
    const __m128d r = reduced(x, k);
    const auto h0 = static_cast<std::uint32_t>(_mm_cvtsi128_si32(hw));
    const auto h1 = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_shuffle_epi32(hw, _MM_SHUFFLE(1, 1, 1, 1))));
    const PolyRow& t0 = poly_row(h0);
    const PolyRow& t1 = poly_row(h1);
    const __m128d ln0 = _mm_load_pd(&ln_row(h0).hi);
    const __m128d ln1 = _mm_load_pd(&ln_row(h1).hi);
    const __m128d thi = _mm_unpacklo_pd(ln0, ln1);
    const __m128d tlo = _mm_unpackhi_pd(ln0, ln1);
    const __m128d a = _mm_mul_pd(dn, lanes(k.lg2e));
    const __m128d S1 = _mm_add_pd(a, thi);
    const __m128d e1 = _mm_add_pd(thi, _mm_sub_pd(a, S1));
    const __m128d S = _mm_add_pd(S1, r);
    const __m128d e2 = _mm_add_pd(r, _mm_sub_pd(S1, S));
    const __m128d L = _mm_add_pd(_mm_add_pd(e1, e2), _mm_add_pd(_mm_mul_pd(dn, lanes(k.lg2es)), tlo));
    const __m128d r2 = _mm_mul_pd(r, r);
    const auto halves = [](const PolyRow& t, __m128d rr, __m128d rr2) {
        return _mm_add_pd(_mm_add_pd(_mm_load_pd(t.p04), _mm_mul_pd(_mm_load_pd(t.p15), rr)),
                          _mm_mul_pd(rr2, _mm_add_pd(_mm_load_pd(t.p26), _mm_mul_pd(_mm_load_pd(t.p37), rr))));
    };
    const __m128d h0v = halves(t0, _mm_unpacklo_pd(r, r), _mm_unpacklo_pd(r2, r2));
    const __m128d h1v = halves(t1, _mm_unpackhi_pd(r, r), _mm_unpackhi_pd(r2, r2));
    const __m128d r4 = _mm_mul_pd(r2, r2);
    const __m128d P = _mm_add_pd(_mm_unpacklo_pd(h0v, h1v), _mm_mul_pd(r4, _mm_unpackhi_pd(h0v, h1v)));
    const __m128d lo = _mm_add_pd(_mm_mul_pd(P, r), L);
    if constexpr (base == Base::e) {
        return _mm_add_pd(S, lo);
    } else {
        const Scale& C = base == Base::two ? k.base2 : k.base10;
        const __m128d Ch = lanes(C.hi);
        const __m128d Sh = _mm_and_pd(S, lanes(k.top26));
        const __m128d Sl = _mm_sub_pd(S, Sh);
        const __m128d tail = _mm_add_pd(_mm_add_pd(_mm_mul_pd(Sl, Ch), _mm_mul_pd(S, lanes(C.lo))),
                                        _mm_mul_pd(lo, lanes(C.full)));
        return _mm_add_pd(_mm_mul_pd(Sh, Ch), tail);
    }
}

}  // namespace

extern "C" MIVOR_DISPATCHED double g_dlog(const double* arg) { return scalar_log<Base::e>(arg); }
extern "C" MIVOR_DISPATCHED double g_dlog2(const double* arg) { return scalar_log<Base::two>(arg); }
extern "C" MIVOR_DISPATCHED double g_dlog10(const double* arg) { return scalar_log<Base::ten>(arg); }
extern "C" MIVOR_DISPATCHED __m128d pk_dlog(__m128d x) { return packed_log<Base::e>(x); }
extern "C" MIVOR_DISPATCHED __m128d pk_dlog10(__m128d x) { return packed_log<Base::ten>(x); }
