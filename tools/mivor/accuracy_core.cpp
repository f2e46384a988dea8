// The measuring machinery of `mivor accuracy` (see accuracy_core.h).
#include "accuracy_core.h"

#include <algorithm>
#include <cinttypes>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace mivor::accuracy {

// ---- exact functions --------------------------------------------------------

bool Exact::evaluate(mpfr_ptr y0, mpfr_ptr y1, const mpfr_srcptr* x) const {
    switch (shape_) {
        case Shape::real1: return real1_(y0, x[0], MPFR_RNDN) == 0;
        case Shape::real2: return real2_(y0, x[0], x[1], MPFR_RNDN) == 0;
        case Shape::complex: return complex_(y0, y1, x);
    }
    return false;
}

// ---- formats ------------------------------------------------------------------

namespace {

constexpr Format kFormats[] = {
    {Scalar::binary32, "REAL(4) ulps", 24, -149, -126, 128},
    {Scalar::binary64, "REAL(8) ulps", 53, -1074, -1022, 1024},
    {Scalar::extended, "ulps of a 64-bit significand", 64, -16445, -16382, 16384},
    {Scalar::binary128, "REAL(16) ulps", 113, -16494, -16382, 16384},
    // Integers: "ulp" 1, every value below 2^(p-1) in the first binade.
    {Scalar::int32, "units", 32, 0, 31, 31},
    {Scalar::int64, "units", 64, 0, 63, 63},
    // The kernels' working format: 128 bits, a 32-bit scale of which the
    // measurements use a fraction (MPFR's default exponent range).
    {Scalar::working, "units of 2^-128 of the working format", 128, -(1L << 29), -(1L << 29) + 128, 1L << 29},
};

// A temporary number for the duration of a scope.
class Temp {
public:
    explicit Temp(mpfr_prec_t prec) { mpfr_init2(v_, prec); }
    ~Temp() { mpfr_clear(v_); }
    Temp(const Temp&) = delete;
    Temp& operator=(const Temp&) = delete;
    operator mpfr_ptr() { return v_; }

private:
    mpfr_t v_;
};

// The exponent of the unit in the last place of y (y != 0) in format f.
long ulp_exp(mpfr_srcptr y, const Format& f) {
    if (mpfr_zero_p(y)) return f.min_ulp_exp;
    return std::max<long>(mpfr_get_exp(y) - f.precision, f.min_ulp_exp);
}

// Whether y (relative error up to 2^(3 - prec), or within 8 units of its
// last place) may lie on the other side of a rounding boundary of f than the
// true value: its scaled fraction is that close to one half.
bool ambiguous(mpfr_srcptr y, const Format& f, mpfr_prec_t prec) {
    if (!mpfr_regular_p(y)) return false;
    Temp t(mpfr_get_prec(y) + 8), half(8);
    mpfr_abs(t, y, MPFR_RNDN);
    mpfr_mul_2si(t, t, -ulp_exp(y, f), MPFR_RNDN);  // exact
    Temp frac(mpfr_get_prec(y) + 8);
    mpfr_frac(frac, t, MPFR_RNDN);  // exact
    mpfr_set_d(half, 0.5, MPFR_RNDN);
    mpfr_sub(frac, frac, half, MPFR_RNDN);  // exact
    mpfr_abs(frac, frac, MPFR_RNDN);
    mpfr_mul_2si(t, t, 4 - prec, MPFR_RNDN);
    return mpfr_lessequal_p(frac, t);
}

bool same_value(mpfr_srcptr v, mpfr_srcptr r) {
    if (mpfr_nan_p(v) || mpfr_nan_p(r)) return mpfr_nan_p(v) && mpfr_nan_p(r);
    return mpfr_equal_p(v, r);
}

}  // namespace

const Format& format_of(Scalar s) { return kFormats[static_cast<int>(s)]; }

void round_to(mpfr_ptr out, mpfr_srcptr in, const Format& f, mpfr_rnd_t rnd) {
    if (!mpfr_regular_p(in)) {
        mpfr_set(out, in, MPFR_RNDN);
        return;
    }
    const long u = ulp_exp(in, f);
    Temp t(std::max<mpfr_prec_t>(mpfr_get_prec(in), f.precision) + 2);
    mpfr_mul_2si(t, in, -u, MPFR_RNDN);  // exact
    mpfr_rint(t, t, rnd);                // RNDN: ties to even
    mpfr_mul_2si(out, t, u, MPFR_RNDN);  // exact: at most p + 1 bits, 2^p at the top
    if (!mpfr_zero_p(out) && mpfr_get_exp(out) > f.max_exp) mpfr_set_inf(out, mpfr_sgn(in));
}

void key_of(mpz_ptr key, mpfr_srcptr v, const Format& f) {
    if (mpfr_zero_p(v)) {
        mpz_set_si(key, mpfr_signbit(v) ? -1 : 0);
        return;
    }
    // key = (u - min_ulp_exp) 2^(p-1) + m with |v| = m 2^u: the bit
    // pattern of an IEEE format without its sign.
    const long u = ulp_exp(v, f);
    Temp m(f.precision + 2);
    mpfr_abs(m, v, MPFR_RNDN);
    mpfr_mul_2si(m, m, -u, MPFR_RNDN);
    mpfr_get_z(key, m, MPFR_RNDN);
    mpz_t base;
    mpz_init_set_si(base, u - f.min_ulp_exp);
    mpz_mul_2exp(base, base, static_cast<mp_bitcnt_t>(f.precision - 1));
    mpz_add(key, key, base);
    mpz_clear(base);
    if (mpfr_signbit(v)) {
        mpz_neg(key, key);
        mpz_sub_ui(key, key, 1);
    }
}

void value_of(mpfr_ptr v, mpz_srcptr key, const Format& f) {
    mpz_t k, b;
    mpz_init_set(k, key);
    mpz_init(b);
    const bool negative = mpz_sgn(k) < 0;
    if (negative) {
        mpz_neg(k, k);
        mpz_sub_ui(k, k, 1);
    }
    mpz_fdiv_q_2exp(b, k, static_cast<mp_bitcnt_t>(f.precision - 1));
    long u = f.min_ulp_exp;
    if (mpz_cmp_ui(b, 1) > 0) {
        u += mpz_get_si(b) - 1;
        mpz_fdiv_r_2exp(k, k, static_cast<mp_bitcnt_t>(f.precision - 1));
        mpz_setbit(k, static_cast<mp_bitcnt_t>(f.precision - 1));
    }
    mpfr_set_z_2exp(v, k, u, MPFR_RNDN);
    if (negative) mpfr_neg(v, v, MPFR_RNDN);
    mpz_clears(k, b, nullptr);
}

void real16_to_mpfr(mpfr_ptr v, const mivor_real16& q) {
    const bool negative = (q.w[3] >> 31) != 0;
    const long e = (q.w[3] >> 16) & 0x7FFF;
    mpz_t m;
    mpz_init_set_ui(m, q.w[3] & 0xFFFFu);
    for (int i = 2; i >= 0; --i) {
        mpz_mul_2exp(m, m, 32);
        mpz_add_ui(m, m, q.w[i]);
    }
    if (e == 0x7FFF) {
        if (mpz_sgn(m) != 0) mpfr_set_nan(v);
        else mpfr_set_inf(v, negative ? -1 : 1);
    } else {
        if (e != 0) mpz_setbit(m, 112);
        mpfr_set_z_2exp(v, m, (e == 0 ? 1 : e) - 16383 - 112, MPFR_RNDN);
        if (negative) mpfr_neg(v, v, MPFR_RNDN);
    }
    mpz_clear(m);
}

mivor_real16 real16_from_mpfr(mpfr_srcptr v) {
    mivor_real16 q{};
    const std::uint32_t sign = mpfr_signbit(v) ? 0x80000000u : 0u;
    if (mpfr_nan_p(v)) {
        q.w[3] = 0x7FFF8000u;
        return q;
    }
    if (mpfr_inf_p(v)) {
        q.w[3] = sign | 0x7FFF0000u;
        return q;
    }
    if (mpfr_zero_p(v)) {
        q.w[3] = sign;
        return q;
    }
    const Format& f = format_of(Scalar::binary128);
    const long u = ulp_exp(v, f);
    Temp t(f.precision + 2);
    mpfr_abs(t, v, MPFR_RNDN);
    mpfr_mul_2si(t, t, -u, MPFR_RNDN);
    mpz_t m;
    mpz_init(m);
    mpfr_get_z(m, t, MPFR_RNDN);
    const std::uint32_t biased = mpz_tstbit(m, 112) ? static_cast<std::uint32_t>(u + 16495) : 0u;
    for (int i = 0; i < 4; ++i) {
        q.w[i] = static_cast<std::uint32_t>(mpz_getlimbn(m, 0) & 0xFFFFFFFFu);
        mpz_fdiv_q_2exp(m, m, 32);
    }
    mpz_clear(m);
    q.w[3] = sign | (biased << 16) | (q.w[3] & 0xFFFFu);
    return q;
}

void work_to_mpfr(mpfr_ptr v, const mivor_work& w) {
    mpz_t m;
    mpz_init_set_ui(m, w.f[3]);
    for (int i = 2; i >= 0; --i) {
        mpz_mul_2exp(m, m, 32);
        mpz_add_ui(m, m, w.f[i]);
    }
    mpfr_set_z_2exp(v, m, static_cast<long>(w.scale) - 128, MPFR_RNDN);
    if (w.sign & 1) mpfr_neg(v, v, MPFR_RNDN);
    mpz_clear(m);
}

mivor_work work_from_mpfr(mpfr_srcptr v) {
    mivor_work w{};
    w.sign = mpfr_signbit(v) ? 1u : 0u;
    if (!mpfr_regular_p(v)) return w;  // zero (a NaN or infinity has no working form)
    Temp t(130);
    mpfr_abs(t, v, MPFR_RNDN);
    const long e = mpfr_get_exp(t);
    mpfr_mul_2si(t, t, 128 - e, MPFR_RNDN);
    mpz_t m;
    mpz_init(m);
    mpfr_get_z(m, t, MPFR_RNDN);
    long scale = e;
    if (mpz_sizeinbase(m, 2) > 128) {  // rounded up to 2^128
        mpz_fdiv_q_2exp(m, m, 1);
        ++scale;
    }
    w.scale = static_cast<std::int32_t>(scale);
    for (int i = 0; i < 4; ++i) {
        w.f[i] = static_cast<std::uint32_t>(mpz_getlimbn(m, 0) & 0xFFFFFFFFu);
        mpz_fdiv_q_2exp(m, m, 32);
    }
    mpz_clear(m);
    return w;
}

// ---- layouts ----------------------------------------------------------------

namespace {

bool add_coordinates(std::string_view kind, int arg, std::vector<Coordinate>& out) {
    auto one = [&](Scalar s) { out.push_back({s, arg, 0}); };
    auto two = [&](Scalar s, int size) {
        out.push_back({s, arg, 0});
        out.push_back({s, arg, size});
    };
    if (kind == "r4") one(Scalar::binary32);
    else if (kind == "r8" || kind == "r8v") one(Scalar::binary64);
    else if (kind == "r8x") one(Scalar::extended);
    else if (kind == "r16" || kind == "r16v") one(Scalar::binary128);
    else if (kind == "i4") one(Scalar::int32);
    else if (kind == "i8") one(Scalar::int64);
    else if (kind == "c4") two(Scalar::binary32, 4);
    else if (kind == "c8" || kind == "v2r8") two(Scalar::binary64, 8);
    else if (kind == "c16") two(Scalar::binary128, 16);
    else if (kind == "wk") one(Scalar::working);
    else return false;
    return true;
}

std::vector<std::string_view> split(std::string_view list) {
    std::vector<std::string_view> out;
    if (list == "-" || list.empty()) return out;
    std::size_t start = 0;
    while (true) {
        const std::size_t comma = list.find(',', start);
        out.push_back(list.substr(start, comma - start));
        if (comma == std::string_view::npos) break;
        start = comma + 1;
    }
    return out;
}

}  // namespace

Layout layout_of(std::string_view args, std::string_view result, std::string& error) {
    Layout l;
    l.arg_kinds = split(args);
    l.result_kind = result;
    error.clear();
    for (std::size_t i = 0; i < l.arg_kinds.size(); ++i) {
        if (l.arg_kinds.size() > 4 || !add_coordinates(l.arg_kinds[i], static_cast<int>(i), l.args) ||
            l.args.size() > 4 || l.arg_kinds[i] == "r8x") {
            error = "argument kinds " + std::string(args) + " are not measured";
            return l;
        }
    }
    if (result == "i4" || result == "i8" || result == "r8v" || result == "r16v" ||
        !add_coordinates(result, 0, l.results)) {
        error = "result kind " + std::string(result) + " is not measured";
        return l;
    }
    l.extended = result == "r8x";
    l.lanes = result == "v2r8";
    l.complex = result[0] == 'c';
    if (l.lanes && !(l.arg_kinds.size() == 1 && l.arg_kinds[0] == "v2r8")) error = "packed result without packed argument";
    return l;
}

std::string check_reference(const Reference& ref, const Layout& l) {
    const std::size_t coords = l.lanes ? 1 : l.args.size();
    switch (ref.exact.shape()) {
        case Exact::Shape::real1:
            if (coords != 1 || (l.results.size() != 1 && !l.lanes)) return "a Real1 function needs one real argument and result";
            break;
        case Exact::Shape::real2:
            // (or one complex argument: the modulus of g_cabs, g_cdabs)
            if (coords != 2 || l.results.size() != 1 || (l.arg_kinds.size() != 2 && l.arg_kinds[0][0] != 'c'))
                return "a Real2 function needs two real arguments (or one complex) and one real result";
            break;
        case Exact::Shape::complex:
            if (!l.complex) return "a Complex function needs a complex result";
            break;
    }
    auto check_axes = [&](const std::array<Axis, 4>& axes) {
        for (std::size_t i = coords; i < axes.size(); ++i)
            if (axes[i].spread != Spread::unset) return false;
        return true;
    };
    if (!check_axes(ref.domain.axes)) return "the domain has more axes than the arguments have coordinates";
    for (std::size_t i = 0; i < coords; ++i)
        if (ref.domain.axes[i].spread != Spread::unset && ref.domain.axes[i].spread != Spread::interval)
            return "a domain axis is an interval or magnitudes";
    for (const Range& r : ref.hard) {
        if (!r.generate && !check_axes(r.axes))
            return "hard range '" + std::string(r.label) + "' has more axes than the arguments have coordinates";
    }
    if (ref.fast && !(l.args.size() == 1 && l.args[0].scalar == Scalar::binary32 && l.result_kind == "r4"))
        return "a fast reference serves REAL(4) functions of one REAL(4) argument";
    return "";
}

void get(const Value& v, const Coordinate& c, mpfr_ptr out) {
    const unsigned char* p = v.bytes + c.offset;
    switch (c.scalar) {
        case Scalar::binary32: {
            float f;
            std::memcpy(&f, p, sizeof f);
            mpfr_set_flt(out, f, MPFR_RNDN);
            break;
        }
        case Scalar::binary64: {
            double d;
            std::memcpy(&d, p, sizeof d);
            mpfr_set_d(out, d, MPFR_RNDN);
            break;
        }
        case Scalar::extended: {
            long double e;
            std::memcpy(&e, p, sizeof e);
            mpfr_set_ld(out, e, MPFR_RNDN);
            break;
        }
        case Scalar::binary128: {
            mivor_real16 q;
            std::memcpy(&q, p, sizeof q);
            real16_to_mpfr(out, q);
            break;
        }
        case Scalar::int32: {
            std::int32_t i;
            std::memcpy(&i, p, sizeof i);
            mpfr_set_si(out, i, MPFR_RNDN);
            break;
        }
        case Scalar::int64: {
            std::int64_t i;
            std::memcpy(&i, p, sizeof i);
            mpfr_set_si(out, static_cast<long>(i), MPFR_RNDN);
            break;
        }
        case Scalar::working: {
            mivor_work w;
            std::memcpy(&w, p, sizeof w);
            work_to_mpfr(out, w);
            break;
        }
    }
}

void set(Value& v, const Coordinate& c, mpfr_srcptr in) {
    unsigned char* p = v.bytes + c.offset;
    switch (c.scalar) {
        case Scalar::binary32: {
            const float f = mpfr_get_flt(in, MPFR_RNDN);
            std::memcpy(p, &f, sizeof f);
            break;
        }
        case Scalar::binary64: {
            const double d = mpfr_get_d(in, MPFR_RNDN);
            std::memcpy(p, &d, sizeof d);
            break;
        }
        case Scalar::extended: {
            const long double e = mpfr_get_ld(in, MPFR_RNDN);
            std::memcpy(p, &e, sizeof e);
            break;
        }
        case Scalar::binary128: {
            const mivor_real16 q = real16_from_mpfr(in);
            std::memcpy(p, &q, sizeof q);
            break;
        }
        case Scalar::int32: {
            const auto i = static_cast<std::int32_t>(mpfr_get_si(in, MPFR_RNDN));
            std::memcpy(p, &i, sizeof i);
            break;
        }
        case Scalar::int64: {
            const auto i = static_cast<std::int64_t>(mpfr_get_si(in, MPFR_RNDN));
            std::memcpy(p, &i, sizeof i);
            break;
        }
        case Scalar::working: {
            const mivor_work w = work_from_mpfr(in);
            std::memcpy(p, &w, sizeof w);
            break;
        }
    }
}

// ---- statistics ---------------------------------------------------------------

int Figure::add(double err, bool is_correct, long double abs_err, bool subnormal_result, const Point& at) {
    ++count;
    sum += err;
    correct += is_correct;
    max_abs = std::max(max_abs, abs_err);
    if (subnormal_result) {
        ++subnormal_count;
        subnormal.offer(err, at);
    } else {
        normal.offer(err, at);
    }
    return is_correct ? 1 : 0;
}

int Figure::mismatch(const Point& at) {
    if (mismatches++ == 0) mismatch_at = at;
    return -1;
}

void Figure::merge(const Figure& o) {
    normal.offer(o.normal.err, o.normal.at);
    subnormal.offer(o.subnormal.err, o.subnormal.at);
    sum += o.sum;
    max_abs = std::max(max_abs, o.max_abs);
    count += o.count;
    correct += o.correct;
    subnormal_count += o.subnormal_count;
    if (mismatches == 0 && o.mismatches != 0) mismatch_at = o.mismatch_at;
    mismatches += o.mismatches;
}

// ---- judging --------------------------------------------------------------------

Judge::Judge(const Reference& ref, const Layout& layout, exports::Thunk thunk)
    : ref_(ref), layout_(layout), thunk_(thunk) {
    int p = 0;
    for (const Coordinate& c : layout.results) p = std::max(p, format_of(c.scalar).precision);
    // Enough that the error's own error is negligible and a rounding
    // boundary is rarely within reach.
    working_ = p <= 64 ? 160 : 256;
    for (auto& x : x_) mpfr_init2(x, 128);
    for (auto& y : y_) mpfr_init2(y, working_);
    for (auto& z : z_) mpfr_init2(z, working_);
    mpfr_inits2(working_, d_, t_, static_cast<mpfr_ptr>(nullptr));
    mpfr_inits2(128, v_, r_, static_cast<mpfr_ptr>(nullptr));
}

Judge::~Judge() {
    for (auto& x : x_) mpfr_clear(x);
    for (auto& y : y_) mpfr_clear(y);
    for (auto& z : z_) mpfr_clear(z);
    mpfr_clears(d_, t_, v_, r_, static_cast<mpfr_ptr>(nullptr));
}

Value Judge::call(const Point& p) const {
    Value args[4];
    std::memcpy(args, p.args.data(), sizeof args);
    Value result;
    std::memset(&result, 0, sizeof result);
    thunk_(args, result);
    return result;
}

void Judge::measure(const Point& p, Tally& t) { judge(p, call(p), t); }

// Evaluates the exact function into y_ (lane >= 0: on that lane's argument).
void Judge::evaluate(const Point& p, int lane, mpfr_prec_t prec) {
    mpfr_srcptr xs[4];
    if (lane >= 0) {
        get(p.args[0], layout_.args[static_cast<std::size_t>(lane)], x_[0]);
        xs[0] = x_[0];
    } else {
        for (std::size_t i = 0; i < layout_.args.size(); ++i) {
            get(p.args[static_cast<std::size_t>(layout_.args[i].arg)], layout_.args[i], x_[i]);
            xs[i] = x_[i];
        }
    }
    auto& out = prec == working_ ? y_ : z_;
    if (mpfr_get_prec(out[0]) != prec) {
        mpfr_set_prec(out[0], prec);
        mpfr_set_prec(out[1], prec);
    }
    exact_ = ref_.exact.evaluate(out[0], out[1], xs);
}

// Rounds part `part` of the exact value into r_, with more precision where
// the working value is too close to a rounding boundary; returns whether v
// is that rounding.
bool Judge::decide(int part, int lane, const Format& f, const Point& p, mpfr_srcptr v, Tally& t) {
    mpfr_srcptr y = y_[static_cast<std::size_t>(part)];
    round_to(r_, y, f);
    if (exact_ || !ambiguous(y, f, working_)) return same_value(v, r_);
    const bool saved_exact = exact_;
    for (mpfr_prec_t prec = 4 * working_; prec <= 65536; prec *= 4) {
        evaluate(p, lane, prec);
        mpfr_srcptr z = z_[static_cast<std::size_t>(part)];
        round_to(r_, z, f);
        if (exact_ || !ambiguous(z, f, prec)) {
            exact_ = saved_exact;
            return same_value(v, r_);
        }
    }
    exact_ = saved_exact;
    ++t.undecided;
    return same_value(v, r_);
}

void Judge::judge_part(int part, int lane, mpfr_srcptr v, const Format& f, const Point& p, Figure& fig, Tally& t) {
    Point at = p;
    at.lane = lane;
    mpfr_srcptr y = y_[static_cast<std::size_t>(part)];
    int outcome;
    if (mpfr_nan_p(y) || mpfr_nan_p(v)) {
        outcome = mpfr_nan_p(y) && mpfr_nan_p(v) ? fig.add(0, true, 0, false, at) : fig.mismatch(at);
    } else {
        const bool correct = decide(part, lane, f, p, v, t);
        if (mpfr_inf_p(v) || mpfr_inf_p(r_)) {
            outcome = correct ? fig.add(0, true, 0, false, at) : fig.mismatch(at);
        } else {
            mpfr_sub(d_, v, y, MPFR_RNDN);
            mpfr_abs(d_, d_, MPFR_RNDN);
            const long double abs_err = mpfr_get_ld(d_, MPFR_RNDN);
            mpfr_mul_2si(d_, d_, -ulp_exp(y, f), MPFR_RNDN);
            const bool subnormal = !mpfr_zero_p(y) && mpfr_get_exp(y) <= f.min_normal_exp;
            outcome = fig.add(mpfr_get_d(d_, MPFR_RNDN), correct, abs_err, subnormal, at);
        }
    }
    part_outcome_[static_cast<std::size_t>(part)] = outcome;
}

void Judge::judge_norm(const Value& result, const Point& p, Figure& fig) {
    if (part_outcome_[0] < 0 || part_outcome_[1] < 0) return;  // counted as a mismatch of its part
    const Format& f = format_of(layout_.results[0].scalar);
    Temp vr(128), vi(128), m(working_);
    get(result, layout_.results[0], vr);
    get(result, layout_.results[1], vi);
    if (!mpfr_number_p(vr) || !mpfr_number_p(vi) || !mpfr_number_p(y_[0]) || !mpfr_number_p(y_[1])) {
        fig.add(0, part_outcome_[0] == 1 && part_outcome_[1] == 1, 0, false, p);
        return;
    }
    mpfr_sub(d_, vr, y_[0], MPFR_RNDN);
    mpfr_sub(t_, vi, y_[1], MPFR_RNDN);
    mpfr_hypot(d_, d_, t_, MPFR_RNDN);
    mpfr_hypot(m, y_[0], y_[1], MPFR_RNDN);
    const long double abs_err = mpfr_get_ld(d_, MPFR_RNDN);
    mpfr_mul_2si(d_, d_, -ulp_exp(m, f), MPFR_RNDN);
    const bool subnormal = !mpfr_zero_p(m) && mpfr_get_exp(m) <= f.min_normal_exp;
    fig.add(mpfr_get_d(d_, MPFR_RNDN), part_outcome_[0] == 1 && part_outcome_[1] == 1, abs_err, subnormal, p);
}

void Judge::judge(const Point& p, const Value& result, Tally& t) {
    if (layout_.lanes) {
        for (int lane = 0; lane < 2; ++lane) {
            evaluate(p, lane, working_);
            get(result, layout_.results[static_cast<std::size_t>(lane)], v_);
            judge_part(0, lane, v_, format_of(Scalar::binary64), p, t.figures[0], t);
        }
        return;
    }
    evaluate(p, -1, working_);
    if (layout_.complex) {
        const Format& f = format_of(layout_.results[0].scalar);
        for (int part = 0; part < 2; ++part) {
            get(result, layout_.results[static_cast<std::size_t>(part)], v_);
            judge_part(part, -1, v_, f, p, t.figures[static_cast<std::size_t>(part)], t);
        }
        judge_norm(result, p, t.figures[2]);
        return;
    }
    get(result, layout_.results[0], v_);
    judge_part(0, -1, v_, format_of(layout_.results[0].scalar), p, t.figures[0], t);
    if (layout_.extended) {
        round_to(v_, v_, format_of(Scalar::binary64));  // what a REAL(8) store makes of it
        judge_part(0, -1, v_, format_of(Scalar::binary64), p, t.figures[1], t);
    }
}

std::vector<std::string> Judge::labels() const {
    if (layout_.extended) return {"extended, 64-bit ulps:", "rounded to REAL(8), ulps:"};
    const std::string units = format_of(layout_.results[0].scalar).units;
    if (layout_.complex) return {"real part, " + units + ":", "imaginary part:", "norm, ulps of |y|:"};
    return {units + ":"};
}

int Judge::bounded() const { return layout_.extended ? 1 : layout_.complex ? 2 : 0; }

const Format& Judge::bounded_format() const {
    return layout_.extended ? format_of(Scalar::binary64) : format_of(layout_.results[0].scalar);
}

bool Judge::fast_within(const Point& p, long double fast, int bits) {
    evaluate(p, -1, working_);
    if (!mpfr_regular_p(y_[0])) return true;
    mpfr_set_ld(d_, fast, MPFR_RNDN);
    mpfr_sub(d_, d_, y_[0], MPFR_RNDN);
    mpfr_div(d_, d_, y_[0], MPFR_RNDN);
    mpfr_abs(d_, d_, MPFR_RNDN);
    return mpfr_cmp_d(d_, std::ldexp(1.0, -bits)) <= 0;
}

// ---- drawing ------------------------------------------------------------------------

Sampler::Sampler(const Reference& ref, const Layout& layout, std::uint64_t seed) : ref_(ref), layout_(layout) {
    gmp_randinit_mt(rng_);
    gmp_randseed_ui(rng_, static_cast<unsigned long>(seed));
    for (auto& c : c_) mpfr_init2(c, 256);
    mpfr_inits2(256, a_, b_, u_, static_cast<mpfr_ptr>(nullptr));
    mpz_inits(ka_, kb_, k_, nullptr);
}

Sampler::~Sampler() {
    gmp_randclear(rng_);
    for (auto& c : c_) mpfr_clear(c);
    mpfr_clears(a_, b_, u_, static_cast<mpfr_ptr>(nullptr));
    mpz_clears(ka_, kb_, k_, nullptr);
}

const Axis& Sampler::domain_axis(int i) const { return ref_.domain.axes[layout_.lanes ? 0 : static_cast<std::size_t>(i)]; }

const Format& Sampler::format(int i) const { return format_of(layout_.args[static_cast<std::size_t>(i)].scalar); }

// The largest finite value of f (integers: the largest value).
static void largest(mpfr_ptr out, const Format& f) {
    mpfr_set_ui_2exp(out, 1, f.max_exp, MPFR_RNDN);
    if (f.integer()) {
        mpfr_sub_ui(out, out, 1, MPFR_RNDN);
        return;
    }
    Temp ulp(8);
    mpfr_set_ui_2exp(ulp, 1, f.max_exp - f.precision, MPFR_RNDN);
    mpfr_sub(out, out, ulp, MPFR_RNDN);
}

double Sampler::unit() { return std::ldexp(static_cast<double>(gmp_urandomb_ui(rng_, 53)), -53); }

void Sampler::round(int i, mpfr_ptr v) { round_to(v, v, format(i)); }

void Sampler::step(int i, mpfr_ptr v, long steps) {
    const Format& f = format(i);
    key_of(k_, v, f);
    if (steps >= 0) mpz_add_ui(k_, k_, static_cast<unsigned long>(steps));
    else mpz_sub_ui(k_, k_, static_cast<unsigned long>(-steps));
    value_of(v, k_, f);
    if (!mpfr_zero_p(v) && mpfr_get_exp(v) > f.max_exp) {  // past the largest finite value: stay on it
        const bool negative = mpfr_signbit(v);
        largest(v, f);
        if (negative) mpfr_neg(v, v, MPFR_RNDN);
    }
}

// A value with uniformly distributed key between the format's values
// nearest lo (from above) and hi (from below).
void Sampler::bits(const Format& f, long double lo, long double hi, mpfr_ptr out) {
    Temp big(f.precision + 2);
    largest(big, f);
    mpfr_set_ld(a_, lo, MPFR_RNDN);
    mpfr_set_ld(b_, hi, MPFR_RNDN);
    mpfr_min(b_, b_, big, MPFR_RNDN);
    mpfr_neg(big, big, MPFR_RNDN);
    mpfr_max(a_, a_, big, MPFR_RNDN);
    round_to(a_, a_, f, MPFR_RNDU);
    round_to(b_, b_, f, MPFR_RNDD);
    key_of(ka_, a_, f);
    key_of(kb_, b_, f);
    if (mpz_cmp(kb_, ka_) < 0) {
        mpfr_set(out, a_, MPFR_RNDN);
        return;
    }
    mpz_sub(k_, kb_, ka_);
    mpz_add_ui(k_, k_, 1);
    mpz_urandomm(k_, rng_, k_);
    mpz_add(k_, k_, ka_);
    value_of(out, k_, f);
}

// A magnitude log-uniform in [lo, hi] (0 < lo <= hi), rounded to f and
// kept within the two bounds.
void Sampler::log_uniform(const Format& f, long double lo, long double hi, mpfr_ptr out) {
    Temp least(8);
    mpfr_set_ui_2exp(least, 1, f.min_ulp_exp, MPFR_RNDN);
    mpfr_set_ld(a_, lo, MPFR_RNDN);
    mpfr_max(a_, a_, least, MPFR_RNDN);
    mpfr_set_ld(b_, hi, MPFR_RNDN);
    Temp big(f.precision + 2);
    largest(big, f);
    mpfr_min(b_, b_, big, MPFR_RNDN);
    round_to(a_, a_, f, MPFR_RNDU);
    round_to(b_, b_, f, MPFR_RNDD);
    if (mpfr_cmp(b_, a_) <= 0) {
        mpfr_set(out, a_, MPFR_RNDN);
        return;
    }
    Temp la(64), lb(64);
    mpfr_log2(la, a_, MPFR_RNDN);
    mpfr_log2(lb, b_, MPFR_RNDN);
    mpfr_urandomb(u_, rng_);
    mpfr_sub(lb, lb, la, MPFR_RNDN);
    mpfr_mul(u_, u_, lb, MPFR_RNDN);
    mpfr_add(u_, u_, la, MPFR_RNDN);
    mpfr_exp2(out, u_, MPFR_RNDN);
    round_to(out, out, f);
    mpfr_max(out, out, a_, MPFR_RNDN);
    mpfr_min(out, out, b_, MPFR_RNDN);
}

void Sampler::domain_sample(int i, mpfr_ptr out) {
    const Axis& d = domain_axis(i);
    const Format& f = format(i);
    Temp big(f.precision + 2);
    largest(big, f);
    long double lo = -mpfr_get_ld(big, MPFR_RNDN), hi = -lo;
    bool mirrored = false;
    if (d.spread == Spread::interval) {
        lo = d.lo;
        hi = d.hi;
        mirrored = d.mirrored;
    }
    const bool use_bits = ((counter_ >> i) & 1) == 0;
    // (The least REAL(16) and working values lie below the least long
    // double: the log-uniform half starts there, not at zero.)
    const long double least =
        f.integer() ? 1.0L
                    : std::max(std::ldexp(1.0L, static_cast<int>(std::max(f.min_ulp_exp, long{INT_MIN / 2}))),
                               std::numeric_limits<long double>::denorm_min());
    if (use_bits || (!mirrored && hi < least && lo > -least)) {
        bits(f, lo, hi, out);
    } else if (mirrored || lo >= 0) {
        log_uniform(f, std::max(lo, least), hi, out);
    } else if (hi <= 0) {
        log_uniform(f, std::max(-hi, least), -lo, out);
        mpfr_neg(out, out, MPFR_RNDN);
    } else {
        for (int attempt = 0; attempt < 64; ++attempt) {
            log_uniform(f, least, std::max(-lo, hi), out);
            if (gmp_urandomb_ui(rng_, 1)) mpfr_neg(out, out, MPFR_RNDN);
            if (coordinate_in_domain(i, out)) return;
        }
        bits(f, lo, hi, out);
        return;
    }
    if (mirrored && gmp_urandomb_ui(rng_, 1)) mpfr_neg(out, out, MPFR_RNDN);
}

void Sampler::axis(int i, const Axis& a, mpfr_ptr out) {
    const Format& f = format(i);
    switch (a.spread) {
        case Spread::unset: domain_sample(i, out); return;
        case Spread::interval:
        case Spread::bits: bits(f, a.lo, a.hi, out); break;
        case Spread::log_uniform: log_uniform(f, a.lo, a.hi, out); break;
        case Spread::uniform: {
            const auto parts = static_cast<unsigned long>(std::max(1, a.parts));
            const unsigned long j = counter_ % parts;
            mpfr_urandomb(u_, rng_);
            mpfr_add_ui(u_, u_, j, MPFR_RNDN);
            mpfr_div_ui(u_, u_, parts, MPFR_RNDN);  // (j + u) / parts
            mpfr_set_ld(a_, a.lo, MPFR_RNDN);
            mpfr_set_ld(b_, a.hi, MPFR_RNDN);
            mpfr_sub(b_, b_, a_, MPFR_RNDN);
            mpfr_fma(out, b_, u_, a_, MPFR_RNDN);
            round_to(out, out, f);
            mpfr_set_ld(b_, a.hi, MPFR_RNDN);
            if (mpfr_cmp(out, a_) < 0) round_to(out, a_, f, MPFR_RNDU);
            if (mpfr_cmp(out, b_) > 0) round_to(out, b_, f, MPFR_RNDD);
            break;
        }
        case Spread::near_multiples: {
            mpz_set_si(ka_, static_cast<long>(a.lo));
            mpz_set_si(kb_, static_cast<long>(a.hi));
            mpz_sub(k_, kb_, ka_);
            mpz_add_ui(k_, k_, 1);
            mpz_urandomm(k_, rng_, k_);
            mpz_add(k_, k_, ka_);
            if (a.unit_constant) {
                a.unit_constant(a_, MPFR_RNDN);
                mpfr_set_ld(b_, a.unit_scale, MPFR_RNDN);
                mpfr_mul(a_, a_, b_, MPFR_RNDN);
            } else {
                mpfr_set_ld(a_, a.unit_scale, MPFR_RNDN);
            }
            mpfr_mul_z(out, a_, k_, MPFR_RNDN);
            round_to(out, out, f);
            const auto span = static_cast<unsigned long>(a.max_step - a.min_step + 1);
            long s = a.min_step + static_cast<long>(gmp_urandomm_ui(rng_, span));
            if (gmp_urandomb_ui(rng_, 1)) s = -s;
            if (s != 0 && mpfr_number_p(out)) step(i, out, s);
            return;
        }
    }
    if (a.mirrored && gmp_urandomb_ui(rng_, 1)) mpfr_neg(out, out, MPFR_RNDN);
}

bool Sampler::coordinate_in_domain(int i, mpfr_srcptr v) const {
    if (!mpfr_number_p(v)) return false;
    const Axis& d = domain_axis(i);
    if (d.spread != Spread::interval) return true;
    if (d.mirrored && mpfr_signbit(v)) return mpfr_cmp_ld(v, -d.hi) >= 0 && mpfr_cmp_ld(v, -d.lo) <= 0;
    return mpfr_cmp_ld(v, d.lo) >= 0 && mpfr_cmp_ld(v, d.hi) <= 0;
}

void Sampler::store(Point& p, int i, mpfr_srcptr v) const {
    const Coordinate& c = layout_.args[static_cast<std::size_t>(i)];
    set(p.args[static_cast<std::size_t>(c.arg)], c, v);
}

bool Sampler::in_domain(const Point& p) {
    for (std::size_t i = 0; i < layout_.args.size(); ++i) {
        get(p.args[static_cast<std::size_t>(layout_.args[i].arg)], layout_.args[i], c_[i]);
        if (!coordinate_in_domain(static_cast<int>(i), c_[i])) return false;
    }
    return true;
}

Point Sampler::random() {
    Point p{};
    for (std::size_t i = 0; i < layout_.args.size(); ++i) {
        domain_sample(static_cast<int>(i), c_[i]);
        store(p, static_cast<int>(i), c_[i]);
    }
    ++counter_;
    return p;
}

bool Sampler::hard(const Range& r, Point& p) {
    const int n = static_cast<int>(layout_.args.size());
    for (int attempt = 0; attempt < 16; ++attempt) {
        if (r.generate) {
            const mpfr_ptr coords[4] = {c_[0], c_[1], c_[2], c_[3]};
            r.generate(*this, coords);
        } else {
            for (int i = 0; i < n; ++i) axis(i, r.axes[layout_.lanes ? 0 : static_cast<std::size_t>(i)], c_[static_cast<std::size_t>(i)]);
        }
        ++counter_;
        bool inside = true;
        for (int i = 0; i < n && inside; ++i) inside = coordinate_in_domain(i, c_[static_cast<std::size_t>(i)]);
        if (!inside) continue;
        p = Point{};
        for (int i = 0; i < n; ++i) store(p, i, c_[static_cast<std::size_t>(i)]);
        return true;
    }
    return false;
}

// ---- describing points ------------------------------------------------------------------

namespace {

std::string describe_coordinate(const Value& v, const Coordinate& c) {
    char buf[160];
    const unsigned char* p = v.bytes + c.offset;
    switch (c.scalar) {
        case Scalar::binary32: {
            float f;
            std::memcpy(&f, p, sizeof f);
            std::snprintf(buf, sizeof buf, "%a (%.9g)", static_cast<double>(f), static_cast<double>(f));
            break;
        }
        case Scalar::binary64:
        case Scalar::extended: {
            double d;
            std::memcpy(&d, p, sizeof d);
            std::snprintf(buf, sizeof buf, "%a (%.17g)", d, d);
            break;
        }
        case Scalar::binary128: {
            mivor_real16 q;
            std::memcpy(&q, p, sizeof q);
            mpfr_t x;
            mpfr_init2(x, 113);
            real16_to_mpfr(x, q);
            char dec[80];
            mpfr_snprintf(dec, sizeof dec, "%.36Rg", x);
            mpfr_clear(x);
            std::snprintf(buf, sizeof buf, "0x%08X%08X%08X%08X (%s)", q.w[3], q.w[2], q.w[1], q.w[0], dec);
            break;
        }
        case Scalar::int32: {
            std::int32_t i;
            std::memcpy(&i, p, sizeof i);
            std::snprintf(buf, sizeof buf, "%" PRId32, i);
            break;
        }
        case Scalar::int64: {
            std::int64_t i;
            std::memcpy(&i, p, sizeof i);
            std::snprintf(buf, sizeof buf, "%" PRId64, i);
            break;
        }
        case Scalar::working: {
            mivor_work w;
            std::memcpy(&w, p, sizeof w);
            mpfr_t x;
            mpfr_init2(x, 128);
            work_to_mpfr(x, w);
            char dec[80];
            mpfr_snprintf(dec, sizeof dec, "%.40Rg", x);
            mpfr_clear(x);
            std::snprintf(buf, sizeof buf, "0x%08X%08X%08X%08X,%d,%u (%s)", w.f[3], w.f[2], w.f[1], w.f[0],
                          static_cast<int>(w.scale), w.sign, dec);
            break;
        }
    }
    return buf;
}

}  // namespace

std::string describe(const Point& p, const Layout& layout) {
    if (layout.lanes) {
        const int lane = std::max(p.lane, 0);
        return "x = " + describe_coordinate(p.args[0], layout.args[static_cast<std::size_t>(lane)]) + " (lane " +
               std::to_string(lane) + ")";
    }
    static const char* const kNames[] = {"a", "b", "c", "d"};
    const bool one = layout.arg_kinds.size() == 1;
    std::string out;
    for (std::size_t a = 0; a < layout.arg_kinds.size(); ++a) {
        if (a) out += ", ";
        out += one ? "x" : kNames[a];
        out += " = ";
        std::string parts;
        int n = 0;
        for (const Coordinate& c : layout.args) {
            if (c.arg != static_cast<int>(a)) continue;
            if (n++) parts += ", ";
            parts += describe_coordinate(p.args[a], c);
        }
        out += n > 1 ? "(" + parts + ")" : parts;
    }
    return out;
}

}  // namespace mivor::accuracy
