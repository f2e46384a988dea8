// The measuring machinery of `mivor accuracy`: formats, arguments drawn
// from a reference's domain and hard ranges, and the judgement of one call
// against the exact value.
//
// Error measure.  For a result v and the exact value y, the error is
// |v - y| / ulp(y) with ulp(y) = 2^(E - p) for |y| in [2^(E-1), 2^E), p the
// precision of the result's format, and never below the format's least
// subnormal spacing.  A complex result is judged per part and by the norm
// error |v - y| / ulp(|y|).  "Correctly rounded" means v equals y rounded
// to nearest (ties to even) in the result's format; where y lies within a
// few units of its working precision of a rounding boundary, the exact
// function is evaluated again with more bits until the rounding is decided,
// so ties and near-ties are judged exactly.  A NaN or infinity where the
// exact value is finite (or the other way round) is a mismatch, counted
// apart.
#pragma once

#include <gmp.h>
#include <mpfr.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "accuracy_refs.h"
#include "exports/registry.h"

namespace mivor::accuracy {

using exports::Value;

// ---- formats --------------------------------------------------------------

// working: the 128-bit working format of the REAL(16) kernels (mivor_work),
// a 128-bit significand whose exponent range no measured value reaches.
enum class Scalar { binary32, binary64, extended, binary128, int32, int64, working };

struct Format {
    Scalar scalar;
    const char* units;   // "REAL(4) ulps", ...
    int precision;       // p; integers: enough bits for every value
    long min_ulp_exp;    // the ulp is never below 2^min_ulp_exp
    long min_normal_exp; // normal numbers are >= 2^min_normal_exp
    long max_exp;        // finite values are below 2^max_exp
    bool integer() const { return scalar == Scalar::int32 || scalar == Scalar::int64; }
};
const Format& format_of(Scalar s);

// out = in rounded to the format by `rnd` (ties to even for RNDN); +-Inf
// beyond the largest finite value.  out needs at least the format's
// precision.
void round_to(mpfr_ptr out, mpfr_srcptr in, const Format& f, mpfr_rnd_t rnd = MPFR_RNDN);

// Order-preserving integer keys of a format's values: consecutive values
// have consecutive keys, -0 sits just below +0 (key -1 and 0).
void key_of(mpz_ptr key, mpfr_srcptr v, const Format& f);
void value_of(mpfr_ptr v, mpz_srcptr key, const Format& f);

// REAL(16) words and MPFR numbers (exact both ways; v needs 113 bits).
void real16_to_mpfr(mpfr_ptr v, const mivor_real16& q);
mivor_real16 real16_from_mpfr(mpfr_srcptr v);
// Working values and MPFR numbers (v needs 128 bits; to the working format
// rounded to nearest).
void work_to_mpfr(mpfr_ptr v, const mivor_work& w);
mivor_work work_from_mpfr(mpfr_srcptr v);

// ---- where an export's coordinates live ---------------------------------

// One real (or integer) coordinate of an argument or result: its format and
// where it sits in the Value of that argument.
struct Coordinate {
    Scalar scalar;
    int arg;     // argument index (results: 0)
    int offset;  // byte offset in the Value
};

// The coordinates of an export: argument coordinates in order (a COMPLEX
// argument gives two), result coordinates.  Packed two-lane exports have two
// of each, lane 0 first.
struct Layout {
    std::vector<Coordinate> args, results;
    std::vector<std::string_view> arg_kinds;
    std::string_view result_kind;
    bool lanes = false;     // v2r8: each lane is one call of a Real1 function
    bool extended = false;  // r8x: also judged once rounded to REAL(8)
    bool complex = false;   // two result parts, judged per part and by norm
};
// The layout of a table row's kinds, or an empty `error` naming why it
// cannot be measured.
Layout layout_of(std::string_view args, std::string_view result, std::string& error);
// The first problem of a reference against its row's layout, or "".
std::string check_reference(const Reference& ref, const Layout& layout);

void get(const Value& v, const Coordinate& c, mpfr_ptr out);
void set(Value& v, const Coordinate& c, mpfr_srcptr in);

// ---- statistics -------------------------------------------------------------

struct Point {
    std::array<Value, 4> args;
    int lane = -1;  // packed exports: the lane judged
};

struct Worst {
    double err = -1;
    Point at{};
    void offer(double e, const Point& p) {
        if (e > err) {
            err = e;
            at = p;
        }
    }
};

struct Figure {
    Worst normal, subnormal;  // by the exact result's magnitude
    double sum = 0;
    long double max_abs = 0;  // largest |v - y|
    std::uint64_t count = 0, correct = 0, subnormal_count = 0;
    std::uint64_t mismatches = 0;
    Point mismatch_at{};

    double max() const { return std::max(normal.err, subnormal.err); }
    double mean() const { return count ? sum / static_cast<double>(count) : 0.0; }
    // One judged result; returns 1 when correctly rounded, else 0.
    int add(double err, bool correct, long double abs_err, bool subnormal_result, const Point& at);
    // A NaN or infinity against the other; returns -1.
    int mismatch(const Point& at);
    void merge(const Figure& o);
};

// A function's figures: see Judge::labels().
struct Tally {
    std::array<Figure, 3> figures{};
    std::uint64_t undecided = 0;  // roundings not decided at 65536 bits
    void merge(const Tally& o) {
        for (std::size_t i = 0; i < figures.size(); ++i) figures[i].merge(o.figures[i]);
        undecided += o.undecided;
    }
};

// ---- judging one call ---------------------------------------------------------

class Judge {
public:
    Judge(const Reference& ref, const Layout& layout, exports::Thunk thunk);
    ~Judge();
    Judge(const Judge&) = delete;
    Judge& operator=(const Judge&) = delete;

    // Calls the export on the point's arguments and judges every result
    // coordinate.
    void measure(const Point& p, Tally& t);
    // Judges a given result (no call).
    void judge(const Point& p, const Value& result, Tally& t);

    Value call(const Point& p) const;

    // The figures this layout fills, and which of them the bound applies to:
    // the value (real results, both lanes), the value rounded to REAL(8) (r8x),
    // the norm (complex).
    std::vector<std::string> labels() const;
    int bounded() const;
    const Format& bounded_format() const;

    // Whether the exact function's value at this point, rounded to the
    // result format, is within 2^-bits of y (relative): the check of a fast
    // reference (REAL(4), one argument).
    bool fast_within(const Point& p, long double fast, int bits);

private:
    void evaluate(const Point& p, int lane, mpfr_prec_t prec);
    void judge_part(int part, int lane, mpfr_srcptr v, const Format& f, const Point& p, Figure& fig, Tally& t);
    bool decide(int part, int lane, const Format& f, const Point& p, mpfr_srcptr v, Tally& t);
    void judge_norm(const Value& result, const Point& p, Figure& fig);

    const Reference& ref_;
    const Layout& layout_;
    exports::Thunk thunk_;
    mpfr_prec_t working_;
    std::array<mpfr_t, 4> x_;   // argument coordinates
    std::array<mpfr_t, 2> y_;   // exact parts at working precision
    std::array<mpfr_t, 2> z_;   // refined parts
    mpfr_t v_, d_, r_, t_;
    bool exact_ = false;
    std::array<int, 2> part_outcome_{};  // per part: 1 correctly rounded, 0 not, -1 mismatch
};

// ---- drawing arguments ------------------------------------------------------

class Sampler final : public Draw {
public:
    Sampler(const Reference& ref, const Layout& layout, std::uint64_t seed);
    ~Sampler() override;
    Sampler(const Sampler&) = delete;
    Sampler& operator=(const Sampler&) = delete;

    // A point of the domain: each coordinate a uniform bit pattern or a
    // log-uniform magnitude, alternately.
    Point random();
    // A point of a hard range, or false when it falls outside the domain.
    bool hard(const Range& r, Point& p);
    bool in_domain(const Point& p);

    // Draw
    void axis(int i, const Axis& a, mpfr_ptr out) override;
    void round(int i, mpfr_ptr v) override;
    double unit() override;
    void step(int i, mpfr_ptr v, long steps) override;

private:
    const Axis& domain_axis(int i) const;
    const Format& format(int i) const;
    void domain_sample(int i, mpfr_ptr out);
    void bits(const Format& f, long double lo, long double hi, mpfr_ptr out);
    void log_uniform(const Format& f, long double lo, long double hi, mpfr_ptr out);
    bool coordinate_in_domain(int i, mpfr_srcptr v) const;
    void store(Point& p, int i, mpfr_srcptr v) const;

    const Reference& ref_;
    const Layout& layout_;
    gmp_randstate_t rng_;
    std::uint64_t counter_ = 0;
    std::array<mpfr_t, 4> c_;
    mpfr_t a_, b_, u_;
    mpz_t ka_, kb_, k_;
};

// Text of a point's arguments ("x = 0x1.8p+1 (3)"; "a = ..., b = ...").
std::string describe(const Point& p, const Layout& layout);

}  // namespace mivor::accuracy
