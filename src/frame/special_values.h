// The special values every function takes its IEEE specials from, and the
// finite substitutes returned instead of infinities when the run-time asks
// for finite results.
//
// The REAL(4) and REAL(8) substitutes are deliberately a few units below the
// largest finite values (0x7F7FFFEE, 0x7FEFFFFFFFFFFFB6): compiled programs
// and the run-time's messages rely on those exact bits.  The REAL(16) one is
// the true largest finite value.
#pragma once

#include <cstdint>

#include "frame/values.h"

namespace mivor {

inline constexpr std::uint32_t kNaN_F_bits = 0x7FC00000u;
inline constexpr std::uint32_t kMNaN_F_bits = 0xFFC00000u;
inline constexpr std::uint32_t kInf_F_bits = 0x7F800000u;
inline constexpr std::uint32_t kMInf_F_bits = 0xFF800000u;
inline constexpr std::uint64_t kNaN_D_bits = 0x7FF8000000000000u;
inline constexpr std::uint64_t kMNaN_D_bits = 0xFFF8000000000000u;
inline constexpr std::uint64_t kInf_D_bits = 0x7FF0000000000000u;
inline constexpr std::uint64_t kMInf_D_bits = 0xFFF0000000000000u;

inline constexpr float _NaN_F = std::bit_cast<float>(kNaN_F_bits);
inline constexpr float _MNaN_F = std::bit_cast<float>(kMNaN_F_bits);
inline constexpr float _Inf_F = std::bit_cast<float>(kInf_F_bits);
inline constexpr float _MInf_F = std::bit_cast<float>(kMInf_F_bits);
inline constexpr double _NaN_D = std::bit_cast<double>(kNaN_D_bits);
inline constexpr double _MNaN_D = std::bit_cast<double>(kMNaN_D_bits);
inline constexpr double _Inf_D = std::bit_cast<double>(kInf_D_bits);
inline constexpr double _MInf_D = std::bit_cast<double>(kMInf_D_bits);
inline constexpr Real16 _NaN_Q = quad::make(0x7FFF8000u, 0, 0, 0);
inline constexpr Real16 _MNaN_Q = quad::make(0xFFFF8000u, 0, 0, 0);
inline constexpr Real16 _Inf_Q = quad::make(0x7FFF0000u, 0, 0, 0);
inline constexpr Real16 _MInf_Q = quad::make(0xFFFF0000u, 0, 0, 0);

// Finite substitutes ("huge" results when IEEE results are off).
inline constexpr std::uint32_t kHuge_F_bits = 0x7F7FFFEEu;  // 3.402820018375656e+38
inline constexpr std::uint64_t kHuge_D_bits = 0x7FEFFFFFFFFFFFB6u;  // 1.7976931348623011e+308
inline constexpr float kHuge_F = std::bit_cast<float>(kHuge_F_bits);
inline constexpr double kHuge_D = std::bit_cast<double>(kHuge_D_bits);
inline constexpr Real16 kHuge_Q = quad::make(0x7FFEFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu);

}  // namespace mivor
