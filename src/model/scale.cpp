// SCALE(X, I) and SET_EXPONENT(X, I): g_scale, g_scaled, g_scaleq and
// g_stexp, g_stexpd, g_stexpq.  Both write a new exponent field next to X's
// sign and fraction bits, without any range check: a field value outside
// the field's range runs on, 32-bit wrapped, into the sign bit and off the
// top of the word (SCALE(1.0, 200) of REAL(4) sets the sign bit).  Callers
// rely on these bits as they are.
//
// SCALE: a zero of either sign gives +0 (a negative zero loses its sign);
// otherwise the field becomes EXPONENT(X) + I + bias - 1, that is X's own
// field plus I for every nonzero X: a subnormal, whose field is 0, gets the
// field I over its unchanged fraction bits.
//
// SET_EXPONENT: the field becomes I + bias - 1, so that a normal X gives
// FRACTION(X) * 2^I.  The zero test differs by kind, deliberately:
//   REAL(4)   only the pattern 0x00000000 (+0.0) is zero and gives +0.0;
//             -0.0 takes the general path and gives -(2^(I - 1));
//   REAL(8)   either zero comes back unchanged;
//   REAL(16)  either zero comes back unchanged, as for REAL(8).
//
// REAL(4) and REAL(8) results go back through by_value: a NaN keeps its
// fraction bits here and may be a signalling one.
#include "frame/by_value.h"
#include "mivor/mivor.h"
#include "model/fields.h"

namespace mivor::model {
namespace {

// Keeps sign and fraction, and writes `field` into the exponent field.
template <class T>
T with_field(const T& x, std::uint32_t field) {
    return Model<T>::with_top(x, (Model<T>::top(x) & (kSign | fraction_mask<T>())) | placed<T>(field));
}

template <class T>
T positive_zero();
template <>
float positive_zero<float>() {
    return 0.0f;
}
template <>
double positive_zero<double>() {
    return 0.0;
}
template <>
Real16 positive_zero<Real16>() {
    return quad::make(0, 0, 0, 0);
}

template <class T>
T scale(const T& x, std::int32_t i) {
    if (Model<T>::is_zero(x)) return positive_zero<T>();
    return with_field(x,
                      static_cast<std::uint32_t>(exponent(x)) + static_cast<std::uint32_t>(i) + (Model<T>::kBias - 1));
}

template <class T>
T set_exponent(const T& x, std::int32_t i) {
    return with_field(x, static_cast<std::uint32_t>(i) + (Model<T>::kBias - 1));
}

}  // namespace
}  // namespace mivor::model

using namespace mivor;

extern "C" float g_scale(const float* x, const std::int32_t* i) { return by_value(model::scale(*x, *i)); }
extern "C" double g_scaled(const double* x, const std::int32_t* i) { return by_value(model::scale(*x, *i)); }
extern "C" mivor_real16* g_scaleq(mivor_real16* result, const mivor_real16* x, const std::int32_t* i) {
    *result = model::scale(*x, *i);
    return result;
}

extern "C" float g_stexp(const float* x, const std::int32_t* i) {
    const float v = *x;
    if (bits_of(v) == 0) return 0.0f;  // +0.0 only
    return by_value(model::set_exponent(v, *i));
}

extern "C" double g_stexpd(const double* x, const std::int32_t* i) {
    const double v = *x;
    if (v == 0.0) return v;
    return by_value(model::set_exponent(v, *i));
}

extern "C" mivor_real16* g_stexpq(mivor_real16* result, const mivor_real16* x, const std::int32_t* i) {
    const Real16 v = *x;
    *result = model::Model<Real16>::is_zero(v) ? v : model::set_exponent(v, *i);
    return result;
}
