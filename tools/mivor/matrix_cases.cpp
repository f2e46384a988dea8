#include "matrix_cases.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "mivor/descriptor.h"
#include "mivor/types.h"

namespace mivor::tool {
namespace {

struct Gen {
    std::uint64_t& state;
    std::uint64_t next() {
        std::uint64_t z = (state += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    std::int32_t below(std::int32_t n) { return static_cast<std::int32_t>(next() % static_cast<std::uint64_t>(n)); }
    bool one_in(std::int32_t n) { return below(n) == 0; }
    template <std::size_t N>
    std::int32_t pick(const std::int32_t (&values)[N]) {
        return values[below(static_cast<std::int32_t>(N))];
    }
};

// Bump allocation in one part of the arena, zero-filled, 16-byte aligned.
// The fuzzer's cases leave `gap` untouched bytes after every allocation and
// note each one in `areas`, so that a write between them shows.
struct Region {
    unsigned char* base;
    std::size_t size;
    std::size_t used = 0;
    bool full = false;
    std::size_t gap = 0;
    std::vector<MatrixArea>* areas = nullptr;
    const char* label = "";  // the name the next allocation is noted under
    std::size_t reach = 0;   // bytes from the base up to the last one written
    template <class T>
    T* take(std::size_t count) {
        used = (used + 15) & ~std::size_t{15};
        const std::size_t bytes = (count == 0 ? 1 : count) * sizeof(T);
        if (used + bytes + gap > size) {
            full = true;
            used = 0;  // reuse from the start; the case is abandoned
        }
        T* p = reinterpret_cast<T*>(base + used);
        std::memset(static_cast<void*>(p), 0, bytes);
        if (areas) areas->push_back({used, used + bytes, label});
        reach = std::max(reach, used + bytes);
        used += bytes + gap;
        return p;
    }
};

// ---- element values ---------------------------------------------------------

// Mostly moderate numbers with full significands; now and then a zero of
// either sign, an infinity, a subnormal, a huge value, or the NaN that the
// arithmetic itself produces (negative, quiet), so that every NaN of a
// computation has the same bits whichever operand an addition keeps.
std::uint64_t double_bits(Gen& g) {
    if (g.one_in(24)) {
        static constexpr std::uint64_t specials[] = {0,
                                                     0x8000000000000000u,
                                                     0x7FF0000000000000u,
                                                     0xFFF0000000000000u,
                                                     0xFFF8000000000000u,
                                                     0x0000000000000001u,
                                                     0x000FFFFFFFFFFFFFu,
                                                     0x7FE0000000000000u,
                                                     0x3FF0000000000000u};
        return specials[g.below(std::size(specials))];
    }
    const std::uint64_t exp = 1023 - 12 + static_cast<std::uint64_t>(g.below(24));
    return (exp << 52) | (g.next() >> 12) | ((g.next() & 1) << 63);
}

std::uint32_t float_bits(Gen& g) {
    if (g.one_in(24)) {
        static constexpr std::uint32_t specials[] = {0,           0x80000000u, 0x7F800000u, 0xFF800000u,
                                                     0xFFC00000u, 0x00000001u, 0x7F000000u, 0x3F800000u};
        return specials[g.below(std::size(specials))];
    }
    const std::uint32_t exp = 127 - 12 + static_cast<std::uint32_t>(g.below(24));
    return (exp << 23) | (static_cast<std::uint32_t>(g.next()) >> 9) | (static_cast<std::uint32_t>(g.next() & 1) << 31);
}

mivor_real16 quad_value(Gen& g) {
    mivor_real16 q;
    for (auto& w : q.w) w = static_cast<std::uint32_t>(g.next());
    if (g.one_in(24)) {
        static constexpr std::uint32_t tops[] = {0, 0x80000000u, 0x7FFF0000u, 0xFFFF0000u, 0x7FFEFFFFu, 0x3FFF0000u};
        q.w[3] = tops[g.below(std::size(tops))];
        if (q.w[3] != 0x7FFEFFFFu) q.w[0] = q.w[1] = q.w[2] = 0;
    } else {
        q.w[3] = (q.w[3] & 0x8000FFFFu) | ((16383u - 12 + static_cast<std::uint32_t>(g.below(24))) << 16);
    }
    return q;
}

void fill(Gen& g, float* p, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint32_t b = float_bits(g);
        std::memcpy(p + i, &b, 4);
    }
}
void fill(Gen& g, double* p, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint64_t b = double_bits(g);
        std::memcpy(p + i, &b, 8);
    }
}
void fill(Gen& g, mivor_complex4* p, std::size_t n) { fill(g, reinterpret_cast<float*>(p), 2 * n); }
void fill(Gen& g, mivor_complex8* p, std::size_t n) { fill(g, reinterpret_cast<double*>(p), 2 * n); }
void fill(Gen& g, mivor_real16* p, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) p[i] = quad_value(g);
}
void fill(Gen& g, mivor_complex16* p, std::size_t n) { fill(g, reinterpret_cast<mivor_real16*>(p), 2 * n); }

// ---- descriptors ------------------------------------------------------------

struct Cells {
    std::int32_t stride1, extent1, stride2, extent2;
};

mivor_descriptor* descriptor(Region& pointers, Region& data, void* base, int rank, const Cells& values) {
    auto* cells = data.take<Cells>(1);
    *cells = values;
    auto* d = pointers.take<mivor_descriptor>(1);
    d->base = base;
    d->rank = static_cast<std::int8_t>(rank);
    d->stride1 = &cells->stride1;
    d->extent1 = &cells->extent1;
    d->stride2 = &cells->stride2;
    d->extent2 = &cells->extent2;
    return d;
}

// A strided operand: elements `gap1` and `gap2` apart (any sign), byte
// strides carrying a remainder `slack` that the export must drop.
template <class T>
mivor_descriptor* operand(Gen& g, Region& pointers, Region& data, int rank, std::int32_t e1, std::int32_t e2) {
    const std::int32_t gap1 = (1 + g.below(3)) * (g.one_in(4) ? -1 : 1);
    std::int32_t gap2 = 0;
    if (rank == 2)
        gap2 =
            g.one_in(3) ? (1 + g.below(2)) * (g.one_in(3) ? -1 : 1) * (e1 > 0 ? e1 : 1) * 3 : gap1 * (e1 + g.below(3));
    if (rank == 2 && gap2 == 0) gap2 = 1;
    const std::int64_t span1 = std::int64_t{e1 > 0 ? e1 - 1 : 0} * gap1;
    const std::int64_t span2 = std::int64_t{e2 > 0 ? e2 - 1 : 0} * gap2;
    const std::int64_t low = (span1 < 0 ? span1 : 0) + (span2 < 0 ? span2 : 0);
    const std::int64_t high = (span1 > 0 ? span1 : 0) + (span2 > 0 ? span2 : 0);
    const std::size_t count = static_cast<std::size_t>(high - low + 1);
    T* storage = data.take<T>(count);
    fill(g, storage, count);
    T* base = storage - low;
    const std::int32_t size = sizeof(T), slack = g.below(size);
    auto bytes = [&](std::int32_t gap) { return gap * size + (gap < 0 ? -slack : slack); };
    return descriptor(pointers, data, base, rank, {bytes(gap1), e1, rank == 2 ? bytes(gap2) : 0, rank == 2 ? e2 : 0});
}

// ---- MATMUL -----------------------------------------------------------------

template <class T>
void* matmul_case(Gen& g, Region& pointers, Region& data, bool quad) {
    const std::int32_t sizes[] = {0, 1, 2, 3, 5, 7, 8, 9, 12, 16, 17};
    const std::int32_t small[] = {0, 1, 2, 3, 4, 5, 7};
    auto size = [&] { return quad ? g.pick(small) : g.pick(sizes); };
    const int shape = g.below(3);  // 0 matrix x matrix, 1 matrix x vector, 2 vector x matrix
    const std::int32_t m = size(), k = size(), n = size();
    const int rank_a = shape == 2 ? 1 : 2, rank_b = shape == 1 ? 1 : 2;
    mivor_descriptor* a = rank_a == 2 ? operand<T>(g, pointers, data, 2, m, k) : operand<T>(g, pointers, data, 1, k, 0);
    mivor_descriptor* b = rank_b == 2 ? operand<T>(g, pointers, data, 2, k, n) : operand<T>(g, pointers, data, 1, k, 0);
    // The result and one element beyond, preset, so a stray write shows.
    const std::size_t count = shape == 0 ? std::size_t(m) * n : shape == 1 ? m : n;
    T* r = data.take<T>(count + 1);
    std::memset(static_cast<void*>(r), 0xA5, (count + 1) * sizeof(T));
    int rank_r = shape == 0 ? 2 : 1;
    switch (g.below(12)) {
        case 0:  // a negative extent counts as 0 (sizes only shrink: the storage holds them)
            *(g.one_in(2) ? a : b)->extent1 = -1 - g.below(3);
            break;
        case 1:  // non-conforming, with a huge extent: 1375, and the result's rank byte anything
            *b->extent1 = 0x7FFFFFFF;
            rank_r = g.pick({-1, 0, 1, 2, 3, 7});
            break;
        case 2:  // a rank of A that is neither 1 nor 2 goes the matrix way, inner extent 0
            if (shape != 2) a->rank = 3;
            break;
        default:
            break;
    }
    mivor_descriptor* result = descriptor(pointers, data, r, rank_r, {0x5A5A5A5A, 0x5A5A5A5A, 0x5A5A5A5A, 0x5A5A5A5A});
    auto* block = pointers.take<mivor_matmul_args>(1);
    *block = {result, a, b};
    return block;
}

// ---- GEMM and GEMV ----------------------------------------------------------

bool transposes(char t) { return t != 'N' && t != 'n'; }
bool valid_trans(char t) { return t == 'N' || t == 'n' || t == 'T' || t == 't' || t == 'C' || t == 'c'; }

char letter(Gen& g) {
    static constexpr char letters[] = {'N', 'N', 'T', 'T', 'n', 't', 'C', 'c'};
    return g.one_in(40) ? 'X' : letters[g.below(std::size(letters))];
}

double scalar(Gen& g) {
    switch (g.below(8)) {
        case 0:
            return 0.0;
        case 1:
            return 1.0;
        case 2:
            return -1.0;
        case 3: {
            double v;
            const std::uint64_t b = g.one_in(2) ? 0xFFF8000000000000u : 0x4000000000000000u;
            std::memcpy(&v, &b, 8);
            return v;
        }
        default: {
            double v;
            const std::uint64_t b = double_bits(g) & 0x3FFFFFFFFFFFFFFFu;  // finite, moderate
            std::memcpy(&v, &b, 8);
            return v;
        }
    }
}

// A leading dimension for `rows` rows: enough, or now and then too small.
std::int32_t leading(Gen& g, std::int32_t rows) {
    if (g.one_in(16)) return g.one_in(2) ? 0 : rows - 1;
    return (rows > 0 ? rows : 1) + g.below(3);
}

void* gemm_case(Gen& g, Region& pointers, Region& data) {
    const std::int32_t outer[] = {0, 1, 2, 5, 7, 8, 9, 13, 17, 24};
    const std::int32_t inner[] = {0, 1, 2, 7, 8, 9, 16, 31, 127, 128, 129, 130, 200, 257};
    const char ta = letter(g), tb = letter(g);
    const std::int32_t m = g.pick(outer), n = g.pick(outer), k = g.pick(inner);
    // The descriptors' extents, from which the entry derives m, k, n (only
    // an upper-case T swaps them).
    const Cells ca = ta == 'T' ? Cells{8, k, 0, m} : Cells{8, m, 0, k};
    const Cells cb = tb == 'T' ? Cells{8, n, 0, k} : Cells{8, k, 0, n};
    // A and B as the GEMM routine reads them.
    const std::int32_t a_rows = transposes(ta) ? k : m, a_cols = transposes(ta) ? m : k;
    const std::int32_t b_rows = transposes(tb) ? n : k, b_cols = transposes(tb) ? k : n;
    auto* lds = data.take<std::int32_t>(4);
    lds[0] = leading(g, m);       // ldc
    lds[1] = leading(g, a_rows);  // lda
    lds[2] = leading(g, b_rows);  // ldb
    lds[3] = leading(g, m);       // ldd
    auto room = [](std::int32_t ld, std::int32_t rows, std::int32_t cols) {
        const std::int32_t l = ld > rows ? ld : rows;
        return std::size_t(l > 0 ? l : 1) * std::size_t(cols > 0 ? cols : 1);
    };
    double* a = data.take<double>(room(lds[1], a_rows, a_cols));
    double* b = data.take<double>(room(lds[2], b_rows, b_cols));
    double* c = data.take<double>(room(lds[0], m, n));
    double* d = data.take<double>(room(lds[3], m, n));
    fill(g, a, room(lds[1], a_rows, a_cols));
    fill(g, b, room(lds[2], b_rows, b_cols));
    fill(g, c, room(lds[0], m, n));
    fill(g, d, room(lds[3], m, n));
    auto* scalars = data.take<double>(2);
    scalars[0] = scalar(g);
    scalars[1] = scalar(g);
    auto* letters = data.take<char>(2);
    letters[0] = ta;
    letters[1] = tb;
    mivor_descriptor* da = descriptor(pointers, data, a, 2, ca);
    mivor_descriptor* db = descriptor(pointers, data, b, 2, cb);
    mivor_descriptor* dc = descriptor(pointers, data, c, 2, {8, m, 0, n});
    switch (g.below(12)) {
        case 0:  // negative extents count as 0
            *(g.one_in(2) ? da : db)->extent2 = -1 - g.below(3);
            break;
        case 1:  // non-conforming, huge: 1375 and nothing else
            *db->extent1 = 0x7FFFFFFF;
            *db->extent2 = 0x7FFFFFFF;
            break;
        default:
            break;
    }
    auto* d_cell = pointers.take<void*>(1);
    *d_cell = d;
    auto* block = pointers.take<mivor_gemm_args>(1);
    *block = {dc,          da,          db,          g.one_in(3) ? d_cell : nullptr,
              &letters[0], &letters[1], &scalars[0], &scalars[1],
              &lds[0],     &lds[1],     &lds[2],     &lds[3]};
    return block;
}

void* gemv_case(Gen& g, Region& pointers, Region& data) {
    const std::int32_t sizes[] = {0, 1, 2, 5, 7, 8, 9, 16, 17, 33, 70};
    const char t = letter(g);
    const std::int32_t rows = g.one_in(16) ? 1030 + g.below(20) : g.pick(sizes);
    const std::int32_t cols = rows > 100 ? 1 + g.below(4) : g.pick(sizes);
    auto* lda = data.take<std::int32_t>(1);
    *lda = leading(g, rows);
    const std::int32_t l = *lda > rows ? *lda : rows;
    double* a = data.take<double>(std::size_t(l > 0 ? l : 1) * (cols > 0 ? cols : 1));
    fill(g, a, std::size_t(l > 0 ? l : 1) * (cols > 0 ? cols : 1));
    // Vectors long enough for either reading of the letter ("t" conforms
    // like "N" but transposes).
    const std::int32_t len = rows > cols ? rows : cols;
    auto vector = [&](std::int32_t extent) {
        const std::int32_t gap = g.pick({1, 1, 2, -1, -3});
        const std::int32_t slack = g.below(8);
        std::int32_t stride = gap * 8 + (gap < 0 ? -slack : slack);
        if (g.one_in(24)) stride = 4;  // increment 0: ignored silently
        const std::size_t count = std::size_t(len > 0 ? len : 1) * (gap < 0 ? -gap : gap);
        double* v = data.take<double>(count);
        fill(g, v, count);
        // The base is the lowest address; a negative increment walks from
        // the far end, as the classic routines do.
        return descriptor(pointers, data, v, 1, {stride, extent, 0, 0});
    };
    const std::int32_t x_len = t == 'T' ? rows : cols;
    mivor_descriptor* y = vector(t == 'T' ? cols : rows);
    mivor_descriptor* x = vector(g.one_in(16) ? x_len + 1 : x_len);  // now and then non-conforming
    mivor_descriptor* z = vector(0);
    mivor_descriptor* da = descriptor(pointers, data, a, 2, {8, rows, 8 * (l > 0 ? l : 1), cols});
    if (g.one_in(16)) *da->extent2 = -2;
    auto* scalars = data.take<double>(2);
    scalars[0] = scalar(g);
    scalars[1] = scalar(g);
    auto* letter_cell = data.take<char>(1);
    *letter_cell = t;
    auto* block = pointers.take<mivor_gemv_args>(1);
    *block = {y, da, x, g.one_in(3) ? z : nullptr, letter_cell, &scalars[0], &scalars[1], lda};
    return block;
}

// ---- hostile cases for the fuzzer ---------------------------------------------
//
// Each builder draws the cells first, works out from them what the export
// reads and writes (the model below follows the entry points' documented
// handling of extents, strides, letters and leading dimensions), and only
// then allocates: an operand gets exactly the elements the export may read,
// the result exactly those it may write, so any access beyond them lands
// in a gap.  A case whose named elements do not fit is drawn again.

constexpr std::int32_t kHostileExtents[] = {0, -1, -2, INT32_MIN, INT32_MAX, 0x40000001, 65536};
constexpr std::int32_t kHostileLeading[] = {0, -1, -7, INT32_MIN, INT32_MAX, 0x10000};

std::int32_t clamp0(std::int32_t e) { return e < 0 ? 0 : e; }
std::int32_t at_least_1(std::int32_t v) { return v < 1 ? 1 : v; }

// The offsets, in elements, of the lowest and highest element of an
// e1 x e2 grid with element strides s1 and s2 (empty when e1 or e2 is 0).
struct Span {
    std::int64_t low = 0, high = -1;
    bool empty() const { return high < low; }
    std::int64_t count() const { return empty() ? 0 : high - low + 1; }
};
Span grid(std::int64_t e1, std::int64_t s1, std::int64_t e2, std::int64_t s2) {
    if (e1 <= 0 || e2 <= 0) return {};
    const std::int64_t a = (e1 - 1) * s1, b = (e2 - 1) * s2;
    return {std::min<std::int64_t>(a, 0) + std::min<std::int64_t>(b, 0),
            std::max<std::int64_t>(a, 0) + std::max<std::int64_t>(b, 0)};
}

struct Hostile {
    Gen& g;
    Region& pointers;
    Region& data;
    MatrixLayout& layout;
    bool on;  // false: the last attempt, hostile in nothing that can fail to fit

    std::int32_t extent(std::int32_t usual) { return on && g.one_in(6) ? g.pick(kHostileExtents) : usual; }
    std::int32_t leading(std::int32_t rows) {
        if (on && g.one_in(5)) return g.one_in(3) ? rows - 1 : g.pick(kHostileLeading);
        const std::int64_t ld = std::int64_t{at_least_1(rows)} + g.below(3);
        return static_cast<std::int32_t>(std::min<std::int64_t>(ld, INT32_MAX));
    }
    char trans() { return on && g.one_in(10) ? static_cast<char>(g.next()) : letter(g); }
    // A byte stride about `gap` elements of `size` bytes, with a remainder
    // the export must drop; or, hostile, one below an element (element
    // stride 0), a far or reversed one, or any bits at all.
    std::int32_t stride(std::int32_t size, std::int32_t gap) {
        if (on && g.one_in(5)) {
            switch (g.below(4)) {
                case 0:
                    return g.below(size) * (g.one_in(2) ? -1 : 1);
                case 1:
                    return static_cast<std::int32_t>(g.next());
                case 2:
                    gap = g.pick({0, 1000, -1000, 4096});
                    break;
                default:
                    gap = -gap;
                    break;
            }
        }
        const std::int32_t slack = g.below(size);
        return gap * size + (gap < 0 ? -slack : slack);
    }
    double scalar_value() {
        if (!on || !g.one_in(8)) return scalar(g);
        const std::uint64_t b = g.next();  // any bits: signalling NaNs, subnormals
        double v;
        std::memcpy(&v, &b, 8);
        return v;
    }

    std::size_t offset(const void* p) const {
        return static_cast<std::size_t>(static_cast<const unsigned char*>(p) - data.base);
    }
    void writable(const void* p, std::size_t bytes, const char* what) {
        if (bytes) layout.writable.push_back({offset(p), offset(p) + bytes, what});
    }
    // Storage for the elements of `span`, filled; returns the address of
    // offset 0 (null when the span does not fit).  An empty span still
    // gets one element, so that every base points into the arena.
    template <class T>
    T* storage(const Span& span, const char* what) {
        const std::int64_t count = span.empty() ? 1 : span.count();
        if (count > std::int64_t(data.size / 4 / sizeof(T))) return nullptr;
        data.label = what;
        T* p = data.take<T>(static_cast<std::size_t>(count));
        fill(g, p, static_cast<std::size_t>(count));
        return p - (span.empty() ? 0 : span.low);
    }
    mivor_descriptor* describe(void* base, int rank, const Cells& cells, const char* what) {
        data.label = what;
        return descriptor(pointers, data, base, rank, cells);
    }
    template <class T>
    T* cell(T value, const char* what) {
        data.label = what;
        T* p = data.take<T>(1);
        *p = value;
        return p;
    }
};

template <class T>
void* hostile_matmul(Hostile& h, bool quad) {
    Gen& g = h.g;
    const std::int32_t size = sizeof(T);
    const std::int32_t sizes[] = {0, 1, 2, 3, 5, 7, 8, 9, 12, 16, 17};
    const std::int32_t small[] = {0, 1, 2, 3, 4, 5, 7};
    auto draw = [&] { return quad ? g.pick(small) : g.pick(sizes); };
    const int shape = g.below(3);  // 0 matrix x matrix, 1 matrix x vector, 2 vector x matrix
    const std::int32_t m = draw(), k = draw(), n = draw();
    int rank_a = shape == 2 ? 1 : 2, rank_b = shape == 1 ? 1 : 2, rank_r = shape == 0 ? 2 : 1;
    if (h.on && g.one_in(12)) rank_a = g.pick({0, 3, -1, 127});
    if (h.on && g.one_in(12)) rank_b = g.pick({0, 3, -1, 127});
    if (h.on && g.one_in(4)) rank_r = g.pick({-1, 0, 1, 2, 3, 7});
    const std::int32_t a1 = rank_a == 1 ? k : m;
    const Cells ca{h.stride(size, 1 + g.below(3)), h.extent(a1), h.stride(size, (a1 > 0 ? a1 : 1) + g.below(3)),
                   h.extent(k)};
    const Cells cb{h.stride(size, 1 + g.below(3)), h.extent(k), h.stride(size, (k > 0 ? k : 1) + g.below(3)),
                   h.extent(n)};

    // What the entry point makes of them.
    const std::int32_t am = clamp0(ca.extent1), ak = rank_a == 2 ? clamp0(ca.extent2) : 0;
    const std::int32_t kb = clamp0(cb.extent1), bn = rank_b == 2 ? clamp0(cb.extent2) : 0;
    const bool conform = rank_a == 2 ? ak == kb : rank_a == 1 ? am == kb : true;
    const std::int32_t inner = rank_a == 1 ? am : ak;
    const bool empty = am == 0 || kb == 0 || (rank_a != 1 && inner == 0) || (rank_b == 2 && bn == 0);
    const std::int64_t count = !conform ? 0 : rank_a == 1 ? bn : rank_b == 2 ? std::int64_t{am} * bn : am;
    Span sa, sb;
    if (conform && !empty) {
        sa = rank_a == 2 ? grid(am, ca.stride1 / size, inner, ca.stride2 / size) : grid(inner, ca.stride1 / size, 1, 0);
        sb = rank_b == 2 ? grid(kb, cb.stride1 / size, bn, cb.stride2 / size) : grid(kb, cb.stride1 / size, 1, 0);
    }
    if (count > std::int64_t(h.data.size / 4 / sizeof(T))) return nullptr;
    // An element stride of 0 lets a huge extent fit in one element, and
    // the export then does all that work, as it must: 2^30 terms of
    // COMPLEX(16) take minutes.  Such cases are drawn again, so that a
    // call's time stays a few milliseconds.
    const std::int64_t terms = count * (empty ? 0 : inner);
    if (terms > (quad ? std::int64_t{1} << 14 : std::int64_t{1} << 20)) return nullptr;
    T* a = h.storage<T>(sa, "A");
    T* b = h.storage<T>(sb, "B");
    if (!a || !b) return nullptr;
    // The result and one element beyond, preset, so a stray write shows
    // in the digests as well.
    h.data.label = "result";
    T* r = h.data.take<T>(static_cast<std::size_t>(count) + 1);
    std::memset(static_cast<void*>(r), 0xA5, (static_cast<std::size_t>(count) + 1) * sizeof(T));
    h.writable(r, static_cast<std::size_t>(count) * sizeof(T), "result");
    mivor_descriptor* da = h.describe(a, rank_a, ca, "A cells");
    mivor_descriptor* db = h.describe(b, rank_b, cb, "B cells");
    mivor_descriptor* dr = h.describe(r, rank_r, {0x5A5A5A5A, 0x5A5A5A5A, 0x5A5A5A5A, 0x5A5A5A5A}, "result cells");
    h.writable(dr->stride1, sizeof(Cells), "result cells");
    auto* block = h.pointers.take<mivor_matmul_args>(1);
    *block = {dr, da, db};
    return block;
}

void* hostile_gemm(Hostile& h) {
    Gen& g = h.g;
    const std::int32_t outer[] = {0, 1, 2, 5, 7, 8, 9, 13, 17, 24};
    const std::int32_t inner[] = {0, 1, 2, 7, 8, 9, 16, 31, 127, 128, 129, 130, 200, 257};
    const char ta = h.trans(), tb = h.trans();
    const std::int32_t m0 = g.pick(outer), n0 = g.pick(outer), k0 = g.pick(inner);
    const Cells ca = ta == 'T' ? Cells{8, h.extent(k0), 0, h.extent(m0)} : Cells{8, h.extent(m0), 0, h.extent(k0)};
    const Cells cb = tb == 'T' ? Cells{8, h.extent(n0), 0, h.extent(k0)} : Cells{8, h.extent(k0), 0, h.extent(n0)};

    // The entry point: m, k, n from the clamped extents (only "T" swaps);
    // then the GEMM routine's checks (any transposing letter), and the
    // addition of D whenever ldc and ldd are long enough.
    const std::int32_t a_rows = clamp0(ca.extent1), a_cols = clamp0(ca.extent2);
    const std::int32_t b_rows = clamp0(cb.extent1), b_cols = clamp0(cb.extent2);
    const std::int32_t m = ta == 'T' ? a_cols : a_rows, k = ta == 'T' ? a_rows : a_cols;
    const std::int32_t n = tb == 'T' ? b_rows : b_cols;
    const bool conform = k == (tb == 'T' ? b_cols : b_rows);
    const std::int32_t ra = transposes(ta) ? k : m, qa = transposes(ta) ? m : k;
    const std::int32_t rb = transposes(tb) ? n : k, qb = transposes(tb) ? k : n;
    const std::int32_t ldc = h.leading(m), lda = h.leading(ra), ldb = h.leading(rb), ldd = h.leading(m);
    const std::int32_t lda1 = lda == 0 ? 1 : lda, ldb1 = ldb == 0 ? 1 : ldb;
    const bool with_d = g.one_in(3);
    const bool product = conform && valid_trans(ta) && valid_trans(tb) && lda1 >= at_least_1(ra) &&
                         ldb1 >= at_least_1(rb) && ldc >= at_least_1(m) && m > 0 && n > 0;
    const bool add_d = conform && with_d && ldc >= at_least_1(m) && ldd >= at_least_1(m) && m > 0 && n > 0;
    Span sa, sb, sc, sd;
    if (product && k > 0) {
        sa = grid(ra, 1, qa, lda1);
        sb = grid(rb, 1, qb, ldb1);
    }
    if (product || add_d) sc = grid(m, 1, n, ldc);
    if (add_d) sd = grid(m, 1, n, ldd);
    double* a = h.storage<double>(sa, "A");
    double* b = h.storage<double>(sb, "B");
    double* c = h.storage<double>(sc, "C");
    double* d = h.storage<double>(sd, "D");
    if (!a || !b || !c || !d) return nullptr;
    if (product || add_d)
        for (std::int32_t j = 0; j < n; ++j) h.writable(c + std::int64_t{j} * ldc, std::size_t(m) * 8, "C");
    const std::int32_t* lds[4] = {h.cell(ldc, "ldc"), h.cell(lda, "lda"), h.cell(ldb, "ldb"), h.cell(ldd, "ldd")};
    const double* alpha = h.cell(h.scalar_value(), "alpha");
    const double* beta = h.cell(h.scalar_value(), "beta");
    const char* la = h.cell(ta, "transa");
    const char* lb = h.cell(tb, "transb");
    mivor_descriptor* da = h.describe(a, 2, ca, "A cells");
    mivor_descriptor* db = h.describe(b, 2, cb, "B cells");
    mivor_descriptor* dc = h.describe(c, 2, {8, m, 0, n}, "C cells");
    auto* d_cell = h.pointers.take<void*>(1);
    *d_cell = d;
    auto* block = h.pointers.take<mivor_gemm_args>(1);
    *block = {dc, da, db, with_d ? d_cell : nullptr, la, lb, alpha, beta, lds[0], lds[1], lds[2], lds[3]};
    return block;
}

void* hostile_gemv(Hostile& h) {
    Gen& g = h.g;
    const std::int32_t sizes[] = {0, 1, 2, 5, 7, 8, 9, 16, 17, 33, 70};
    const char t = h.trans();
    const std::int32_t rows0 = g.one_in(16) ? 1030 + g.below(20) : g.pick(sizes);
    const std::int32_t cols0 = rows0 > 100 ? 1 + g.below(4) : g.pick(sizes);
    const Cells ca{8, h.extent(rows0), 0, h.extent(cols0)};
    const std::int32_t x_usual = t == 'T' ? rows0 : cols0;
    const std::int32_t x_extent = g.one_in(16) ? x_usual + 1 : h.extent(x_usual);  // now and then non-conforming
    auto increment = [&] {
        return g.one_in(24) ? g.below(8) * (g.one_in(2) ? -1 : 1) : h.stride(8, g.pick({1, 1, 2, -1, -3}));
    };
    const std::int32_t sx = increment(), sy = increment(), sz = increment();
    const bool with_z = g.one_in(3);

    // The entry point: conformance on the clamped extents (only "T"
    // transposes here), an empty inner dimension made 1 with alpha 0;
    // then the GEMV routine's checks, the product for m, n > 0 and the
    // addition of z over the length of y.
    std::int32_t m = clamp0(ca.extent1), n = clamp0(ca.extent2);
    std::int32_t& inner = t == 'T' ? m : n;
    const bool conform = inner == clamp0(x_extent);
    if (inner == 0) inner = 1;
    const std::int32_t lda = h.leading(m), lda1 = lda == 0 ? 1 : lda;
    const std::int32_t incx = sx / 8, incy = sy / 8, incz = sz / 8;
    const bool checked =
        conform && valid_trans(t) && lda1 >= at_least_1(m) && incx != 0 && incy != 0 && (!with_z || incz != 0);
    const bool product = checked && m > 0 && n > 0;
    const std::int32_t len_x = transposes(t) ? m : n, len_y = transposes(t) ? n : m;
    const bool add_z = checked && with_z && len_y > 0;
    auto magnitude = [](std::int32_t v) { return std::int64_t{v < 0 ? -std::int64_t{v} : v}; };
    Span sa, sxs, sys, szs;
    if (product) {
        sa = grid(m, 1, n, lda1);
        sxs = grid(len_x, magnitude(incx), 1, 0);
    }
    if (product || add_z) sys = grid(len_y, magnitude(incy), 1, 0);
    if (add_z) szs = grid(len_y, magnitude(incz), 1, 0);
    double* a = h.storage<double>(sa, "A");
    double* x = h.storage<double>(sxs, "x");
    double* y = h.storage<double>(sys, "y");
    double* z = h.storage<double>(szs, "z");
    if (!a || !x || !y || !z) return nullptr;
    // The base is the lowest address whatever the increment's sign.
    if (product || add_z)
        for (std::int32_t i = 0; i < len_y; ++i) h.writable(y + std::int64_t{i} * magnitude(incy), 8, "y");
    const std::int32_t* lda_cell = h.cell(lda, "lda");
    const double* alpha = h.cell(h.scalar_value(), "alpha");
    const double* beta = h.cell(h.scalar_value(), "beta");
    const char* letter_cell = h.cell(t, "trans");
    mivor_descriptor* dy = h.describe(y, 1, {sy, 0, 0, 0}, "y cells");
    mivor_descriptor* da = h.describe(a, 2, ca, "A cells");
    mivor_descriptor* dx = h.describe(x, 1, {sx, x_extent, 0, 0}, "x cells");
    mivor_descriptor* dz = h.describe(z, 1, {sz, 0, 0, 0}, "z cells");
    auto* block = h.pointers.take<mivor_gemv_args>(1);
    *block = {dy, da, dx, with_z ? dz : nullptr, letter_cell, alpha, beta, lda_cell};
    return block;
}

std::size_t block_size_of(std::string_view name) {
    return name == "g_mt22blasd"   ? sizeof(mivor_gemm_args)
           : name == "g_mt21blasd" ? sizeof(mivor_gemv_args)
                                   : sizeof(mivor_matmul_args);
}

}  // namespace

bool is_matrix_export(std::string_view name) {
    return name.substr(0, 7) == "g_matml" || name == "jwe_gmd2" || name == "jwe_gmx2" || name == "g_mt21blasd" ||
           name == "g_mt22blasd";
}

std::span<const unsigned char> run_matrix_case(const exports::Row& row, std::uint64_t& state, exports::Value* args,
                                               std::size_t slots, const MatrixArena& arena) {
    Gen g{state};
    Region pointers{arena.pointers, arena.pointers_size};
    Region data{arena.data, arena.data_size};
    std::memset(arena.data, 0, arena.data_size);
    const std::string_view name = row.name;
    void* block = nullptr;
    if (name == "g_matmlr")
        block = matmul_case<float>(g, pointers, data, false);
    else if (name == "g_matmld" || name == "jwe_gmd2")
        block = matmul_case<double>(g, pointers, data, false);
    else if (name == "g_matmlq")
        block = matmul_case<mivor_real16>(g, pointers, data, true);
    else if (name == "g_matmlc")
        block = matmul_case<mivor_complex4>(g, pointers, data, false);
    else if (name == "g_matmlx" || name == "jwe_gmx2")
        block = matmul_case<mivor_complex8>(g, pointers, data, false);
    else if (name == "g_matmlz")
        block = matmul_case<mivor_complex16>(g, pointers, data, true);
    else if (name == "g_mt22blasd")
        block = gemm_case(g, pointers, data);
    else if (name == "g_mt21blasd")
        block = gemv_case(g, pointers, data);
    const std::size_t block_size = name == "g_mt22blasd"   ? sizeof(mivor_gemm_args)
                                   : name == "g_mt21blasd" ? sizeof(mivor_gemv_args)
                                                           : sizeof(mivor_matmul_args);
    if (block == nullptr || pointers.full || data.full || slots * sizeof(exports::Value) < block_size) return {};
    std::memcpy(static_cast<void*>(args), block, block_size);
    exports::Value result{};
    row.thunk(args, result);
    return {arena.data, data.used};
}

}  // namespace mivor::tool

namespace mivor::tool {

bool build_hostile_matrix_case(const exports::Row& row, std::uint64_t state, exports::Value* args, std::size_t slots,
                               const MatrixArena& arena, std::size_t gap, MatrixLayout& layout) {
    const std::string_view name = row.name;
    const std::size_t block_size = block_size_of(name);
    if (slots * sizeof(exports::Value) < block_size) return false;
    // A draw whose named elements do not fit is drawn again; the last
    // attempt keeps to what always fits.
    constexpr int kAttempts = 8;
    std::size_t reach = 0;  // over every attempt, the abandoned ones too
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        layout = MatrixLayout{};
        Gen g{state};
        Region pointers{arena.pointers, arena.pointers_size};
        Region data{arena.data, arena.data_size};
        data.gap = gap;
        data.areas = &layout.areas;
        Hostile h{g, pointers, data, layout, attempt + 1 < kAttempts};
        void* block = nullptr;
        if (name == "g_matmlr")
            block = hostile_matmul<float>(h, false);
        else if (name == "g_matmld" || name == "jwe_gmd2")
            block = hostile_matmul<double>(h, false);
        else if (name == "g_matmlq")
            block = hostile_matmul<mivor_real16>(h, true);
        else if (name == "g_matmlc")
            block = hostile_matmul<mivor_complex4>(h, false);
        else if (name == "g_matmlx" || name == "jwe_gmx2")
            block = hostile_matmul<mivor_complex8>(h, false);
        else if (name == "g_matmlz")
            block = hostile_matmul<mivor_complex16>(h, true);
        else if (name == "g_mt22blasd")
            block = hostile_gemm(h);
        else if (name == "g_mt21blasd")
            block = hostile_gemv(h);
        else
            return false;
        reach = std::max(reach, data.reach);
        layout.data_touched = reach;
        if (block == nullptr || pointers.full || data.full) continue;
        std::memcpy(static_cast<void*>(args), block, block_size);
        layout.block_size = block_size;
        layout.data_used = data.used;
        return true;
    }
    return false;
}

}  // namespace mivor::tool
