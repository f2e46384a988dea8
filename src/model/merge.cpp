// MERGE(TSOURCE, FSOURCE, MASK) of the real and complex kinds: g_mrgr,
// g_mrgd, g_mrgq and g_cmrg, g_dmrg, g_qmrg (the complex names carry the
// kind letter in front).  MASK is a 32-bit logical word, true when nonzero;
// the chosen source is copied unchanged.
//
// How the copy is made is kept as the run-time has it, since it decides
// what an overlap of the result area with a source gives:
//   g_mrgr, g_mrgd   return the value (through by_value: a signalling NaN
//                    comes back quieted, as the x87 return register gives
//                    it to a 32-bit caller);
//   g_cmrg, g_mrgq   copy straight across, word by word from the lowest;
//   g_dmrg, g_qmrg   copy into a local first, so the result area may
//                    overlap either source in any way.
#include <cstring>

#include "frame/by_value.h"
#include "frame/values.h"
#include "mivor/mivor.h"

namespace {

// Word by word from the lowest address, each word read just before it is
// written (the compiler may not merge the words into one wider copy).
template <class T>
T* copy_across(T* result, const T* source) {
    static_assert(sizeof(T) % 4 == 0);
    auto* to = reinterpret_cast<unsigned char*>(result);
    const auto* from = reinterpret_cast<const unsigned char*>(source);
    for (std::size_t i = 0; i < sizeof(T); i += 4) {
        std::uint32_t w;
        std::memcpy(&w, from + i, 4);
        __asm__("" : "+r"(w));
        std::memcpy(to + i, &w, 4);
    }
    return result;
}

template <class T>
T* copy_through_local(T* result, const T* source) {
    T local;
    std::memcpy(&local, source, sizeof local);
    std::memcpy(result, &local, sizeof local);
    return result;
}

}  // namespace

using namespace mivor;

extern "C" float g_mrgr(const float* t, const float* f, const std::int32_t* mask) { return by_value(*mask ? *t : *f); }

extern "C" double g_mrgd(const double* t, const double* f, const std::int32_t* mask) {
    return by_value(*mask ? *t : *f);
}

extern "C" mivor_real16* g_mrgq(mivor_real16* result, const mivor_real16* t, const mivor_real16* f,
                                const std::int32_t* mask) {
    return copy_across(result, *mask ? t : f);
}

extern "C" mivor_complex4* g_cmrg(mivor_complex4* result, const mivor_complex4* t, const mivor_complex4* f,
                                  const std::int32_t* mask) {
    return copy_across(result, *mask ? t : f);
}

extern "C" mivor_complex8* g_dmrg(mivor_complex8* result, const mivor_complex8* t, const mivor_complex8* f,
                                  const std::int32_t* mask) {
    return copy_through_local(result, *mask ? t : f);
}

extern "C" mivor_complex16* g_qmrg(mivor_complex16* result, const mivor_complex16* t, const mivor_complex16* f,
                                   const std::int32_t* mask) {
    return copy_through_local(result, *mask ? t : f);
}
