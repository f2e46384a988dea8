// The jwe_gu exports: the kernels of the REAL(16) elementary functions on
// the working format, for sibling libraries (contracts in exports.tab).
// Each reads all its operands before writing the result, so the result
// may share an operand.
#include <algorithm>
#include <cstdint>

#include "mivor/mivor.h"
#include "quadfunc/atan.h"
#include "quadfunc/erf.h"
#include "quadfunc/gamma.h"
#include "quadfunc/gamma_data.h"
#include "quadfunc/hyperbolic.h"
#include "quadfunc/kernels.h"
#include "quadfunc/sincos.h"

using namespace mivor;
using namespace mivor::quadfunc;

namespace {

constexpr Wide kLargest{{~std::uint64_t{0}, ~std::uint64_t{0}}, 0x7FFFFFFF, 0};

// mivor_work as a working value, normalised if its fraction is not.
Wide in(const mivor_work* a) {
    const U128 f{(std::uint64_t{a->f[3]} << 32) | a->f[2], (std::uint64_t{a->f[1]} << 32) | a->f[0]};
    const std::uint32_t neg = a->sign & 1;
    if (is_zero(f)) return Wide{{0, 0}, kZeroScale, neg};
    const int s = clz(f);
    // A caller's scale may be any 32-bit value; beyond +-2^20 every kernel
    // is far outside its domain (overflow, underflow or its limit) alike,
    // and the clamp leaves the kernels' exponent sums (products of products)
    // room before they could wrap.
    constexpr std::int64_t kScaleLimit = std::int64_t{1} << 20;
    const std::int64_t e = std::clamp<std::int64_t>(std::int64_t{a->scale} - s, -kScaleLimit, kScaleLimit);
    return Wide{shl(f, s), static_cast<std::int32_t>(e), neg};
}

mivor_work* out(mivor_work* r, const Wide& w) {
    const Wide v = is_zero(w) ? Wide{{0, 0}, kZeroScale, w.neg} : w;
    r->f[0] = static_cast<std::uint32_t>(v.m.lo);
    r->f[1] = static_cast<std::uint32_t>(v.m.lo >> 32);
    r->f[2] = static_cast<std::uint32_t>(v.m.hi);
    r->f[3] = static_cast<std::uint32_t>(v.m.hi >> 32);
    r->scale = v.e;
    r->sign = v.neg;
    return r;
}

bool within(const Wide& a, std::int32_t scale) { return is_zero(a) || a.e <= scale; }
Wide signed_largest(std::uint32_t neg) { return with_sign(kLargest, neg); }

}  // namespace

extern "C" mivor_work* jwe_guunp(mivor_work* r, const mivor_real16* x) { return out(r, from_real16(*x)); }

extern "C" mivor_real16* jwe_gurnd(mivor_real16* r, const mivor_work* a) {
    *r = round_to_real16(in(a)).value;
    return r;
}

extern "C" mivor_work* jwe_guadd(mivor_work* r, const mivor_work* a, const mivor_work* b) {
    return out(r, add(in(a), in(b)));
}
extern "C" mivor_work* jwe_gumul(mivor_work* r, const mivor_work* a, const mivor_work* b) {
    return out(r, mul(in(a), in(b)));
}
extern "C" mivor_work* jwe_gudiv(mivor_work* r, const mivor_work* a, const mivor_work* b) {
    const Wide x = in(a), y = in(b);
    return out(r, is_zero(y) ? Wide{{0, 0}, kZeroScale, x.neg ^ y.neg} : div(x, y));
}
extern "C" mivor_work* jwe_gusqt(mivor_work* r, const mivor_work* a) { return out(r, sqrt(in(a))); }

extern "C" mivor_work* jwe_guexp(mivor_work* r, const mivor_work* a) {
    const Wide x = in(a);
    if (!within(x, 15)) return out(r, x.neg ? kWideZero : kLargest);
    return out(r, exp_s176(to_s176(x)));
}
extern "C" mivor_work* jwe_gulog(mivor_work* r, const mivor_work* a) {
    const Wide x = abs(in(a));
    return out(r, is_zero(x) ? signed_largest(1) : log_wide(x));
}

namespace {
SinCos circular(const Wide& x) {
    const Reduced red = reduce_radians(x);
    SinCos sc = by_quadrant(sincos_reduced(red.r), red.quadrant);
    sc.sin.neg ^= x.neg;
    return sc;
}
}  // namespace

extern "C" mivor_work* jwe_gusin(mivor_work* r, const mivor_work* a) {
    const Wide x = in(a);
    if (is_zero(x) || !within(x, 16384)) return out(r, with_sign(kWideZero, x.neg));
    return out(r, circular(x).sin);
}
extern "C" mivor_work* jwe_gucos(mivor_work* r, const mivor_work* a) {
    const Wide x = in(a);
    if (is_zero(x)) return out(r, kWideOne);
    if (!within(x, 16384)) return out(r, kWideZero);
    return out(r, circular(x).cos);
}
extern "C" mivor_work* jwe_gutan(mivor_work* r, const mivor_work* a) {
    const Wide x = in(a);
    if (is_zero(x) || !within(x, 16384)) return out(r, with_sign(kWideZero, x.neg));
    const SinCos sc = circular(x);
    return out(r, div(sc.sin, sc.cos));
}

extern "C" mivor_work* jwe_guatn(mivor_work* r, const mivor_work* a, const mivor_work* b) {
    const Wide y = in(a), x = in(b);
    if (is_zero(y) && is_zero(x)) return out(r, kWideZero);
    return out(r, atan2_wide(y, x));
}
extern "C" mivor_work* jwe_guasn(mivor_work* r, const mivor_work* a) {
    Wide x = in(a);
    if (compare_magnitude(x, kWideOne) > 0) x = with_sign(kWideOne, x.neg);
    return out(r, asin_wide(x));
}
extern "C" mivor_work* jwe_guacs(mivor_work* r, const mivor_work* a) {
    Wide x = in(a);
    if (compare_magnitude(x, kWideOne) > 0) x = with_sign(kWideOne, x.neg);
    return out(r, acos_wide(x));
}

extern "C" mivor_work* jwe_gusnh(mivor_work* r, const mivor_work* a) {
    const Wide x = in(a);
    if (!within(x, 14)) return out(r, signed_largest(x.neg));
    return out(r, sinh_wide(x));
}
extern "C" mivor_work* jwe_gucsh(mivor_work* r, const mivor_work* a) {
    const Wide x = in(a);
    if (!within(x, 14)) return out(r, kLargest);
    return out(r, cosh_wide(x));
}
extern "C" mivor_work* jwe_guthn(mivor_work* r, const mivor_work* a) {
    const Wide x = in(a);
    if (!within(x, 14)) return out(r, with_sign(kWideOne, x.neg));
    return out(r, tanh_wide(x));
}

extern "C" mivor_work* jwe_gulgm(mivor_work* r, const mivor_work* a) {
    const Wide x = in(a);
    if (is_zero(x) || !within(x, 16384)) return out(r, kLargest);
    if (!x.neg) return out(r, lgamma_wide(lgamma_positive(x)));
    if (x.e >= 128 || (x.e > 0 && is_zero(shl(x.m, x.e)))) return out(r, kLargest);  // a pole
    const Wide one_minus = add(kWideOne, abs(x));
    return out(r, sub(sub(gamma_data::kLnPi(), log_wide(abs(sin_pi(x)))), lgamma_wide(lgamma_positive(one_minus))));
}

extern "C" mivor_work* jwe_guerf(mivor_work* r, const mivor_work* a) { return out(r, erf_wide(in(a))); }
extern "C" mivor_work* jwe_guerc(mivor_work* r, const mivor_work* a) { return out(r, erfc_wide(in(a))); }
