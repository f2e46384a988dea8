// The pseudo-random stream and the digest that several tests share.  Both
// are integer code only, so every flavour draws and hashes the same bits;
// committed digests depend on their exact output.
#pragma once

#include <cstddef>
#include <cstdint>

namespace mivor::testing {

// splitmix64: advances `state` and returns the next value.
inline std::uint64_t splitmix64(std::uint64_t& state) {
    std::uint64_t z = (state += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

// FNV-1a, 64 bits.  Integers go in as their little-endian bytes.
class Fnv1a {
public:
    void add_byte(unsigned char b) { hash_ = (hash_ ^ b) * 0x100000001B3u; }
    void add_bytes(const void* data, std::size_t n) {
        const auto* p = static_cast<const unsigned char*>(data);
        for (std::size_t i = 0; i < n; ++i) add_byte(p[i]);
    }
    void add_u32(std::uint32_t v) {
        for (int i = 0; i < 4; ++i) add_byte(static_cast<unsigned char>(v >> (8 * i)));
    }
    void add_u64(std::uint64_t v) {
        for (int i = 0; i < 8; ++i) add_byte(static_cast<unsigned char>(v >> (8 * i)));
    }
    std::uint64_t value() const { return hash_; }

private:
    std::uint64_t hash_ = 0xCBF29CE484222325u;
};

}  // namespace mivor::testing
