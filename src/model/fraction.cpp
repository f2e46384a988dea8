// FRACTION(X) and RRSPACING(X): g_fract, g_fractd, g_fractq and g_rrspa,
// g_rrspad, g_rrspaq.  Both keep X's fraction bits and put a fixed value in
// the exponent field; nothing is normalised and no special value is tested.
//
// FRACTION: below the smallest normal magnitude (a zero of either sign or
// a subnormal) X comes back unchanged, not normalised; otherwise the field
// becomes that of 0.5, with X's sign: the result lies in [0.5, 1) in
// magnitude.  An infinity gives +-0.5, a NaN a finite number built from its
// fraction bits.
//
// RRSPACING: a zero comes back unchanged, sign included; otherwise the sign
// is dropped and the field becomes that of 2^(p - 1) (p = 24, 53, 113): the
// value 1.F times 2^(p - 1).  A subnormal is read as if its field were a
// normal one's, infinities and NaNs give finite values as well.
//
// REAL(4) and REAL(8) results go back through by_value (frame/by_value.h):
// X returned unchanged may be a signalling NaN.
#include "frame/by_value.h"
#include "mivor/mivor.h"
#include "model/fields.h"

namespace mivor::model {
namespace {

template <class T>
T fraction(const T& x) {
    const std::uint32_t top = Model<T>::top(x);
    if ((top & ~kSign) < placed<T>(1)) return x;
    return Model<T>::with_top(x, (top & (kSign | fraction_mask<T>())) | placed<T>(Model<T>::kBias - 1));
}

template <class T>
T rrspacing(const T& x) {
    if (Model<T>::is_zero(x)) return x;
    const std::uint32_t top = Model<T>::top(x);
    return Model<T>::with_top(x, (top & fraction_mask<T>()) | placed<T>(Model<T>::kBias + Model<T>::kDigits - 1));
}

}  // namespace
}  // namespace mivor::model

using namespace mivor;

extern "C" float g_fract(const float* x) { return by_value(model::fraction(*x)); }
extern "C" double g_fractd(const double* x) { return by_value(model::fraction(*x)); }
extern "C" mivor_real16* g_fractq(mivor_real16* result, const mivor_real16* x) {
    *result = model::fraction(*x);
    return result;
}

extern "C" float g_rrspa(const float* x) { return by_value(model::rrspacing(*x)); }
extern "C" double g_rrspad(const double* x) { return by_value(model::rrspacing(*x)); }
extern "C" mivor_real16* g_rrspaq(mivor_real16* result, const mivor_real16* x) {
    *result = model::rrspacing(*x);
    return result;
}
