#include "matrix_args.h"

#include <charconv>
#include <cstring>
#include <optional>
#include <string>

#include "mivor/descriptor.h"
#include "values.h"

namespace mivor::tool {
namespace {

struct Shape {
    int rank = 0;
    std::int32_t rows = 0, cols = 0;  // a vector: rows elements
    std::string value = "1";
};

std::optional<std::int32_t> number(std::string_view t) {
    std::int32_t v = 0;
    const auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), v);
    if (ec != std::errc() || end != t.data() + t.size()) return std::nullopt;
    return v;
}

std::optional<Shape> shape(std::string_view t) {
    Shape s;
    if (const std::size_t colon = t.find(':'); colon != std::string_view::npos) {
        s.value = std::string(t.substr(colon + 1));
        t = t.substr(0, colon);
    }
    const std::size_t x = t.find('x');
    if (x == std::string_view::npos) {
        const auto n = number(t);
        if (!n) return std::nullopt;
        s.rank = 1;
        s.rows = *n;
        return s;
    }
    const auto r = number(t.substr(0, x)), c = number(t.substr(x + 1));
    if (!r || !c) return std::nullopt;
    s.rank = 2;
    s.rows = *r;
    s.cols = *c;
    return s;
}

std::string_view element_kind(std::string_view name) {
    if (name == "g_matmlr") return "r4";
    if (name == "g_matmlq") return "r16";
    if (name == "g_matmlc") return "c4";
    if (name == "g_matmlx" || name == "jwe_gmx2") return "c8";
    if (name == "g_matmlz") return "c16";
    return "r8";
}

std::int32_t count(const Shape& s) {
    const std::int32_t r = s.rows > 0 ? s.rows : 0, c = s.rank == 2 ? (s.cols > 0 ? s.cols : 0) : 1;
    return r * c;
}

}  // namespace

unsigned char* MatrixCall::buffer(std::size_t bytes) {
    buffers_.push_back(std::make_unique<std::vector<unsigned char>>(bytes + 64, 0));
    return buffers_.back()->data();
}

std::unique_ptr<MatrixCall> MatrixCall::parse(const exports::Row& row, std::string_view text) {
    const std::size_t star = text.find('*');
    if (star == std::string_view::npos) return nullptr;
    const auto a = shape(text.substr(0, star)), b = shape(text.substr(star + 1));
    if (!a || !b) return nullptr;
    const std::string_view kind = element_kind(row.name);
    const std::size_t size = significant_size(kind);
    std::unique_ptr<MatrixCall> call(new MatrixCall);
    // The result first: room for every shape the operands can give.
    const std::int32_t room = (a->rows > 0 ? a->rows : 1) * (b->rank == 2 && b->cols > 0 ? b->cols : 1) +
                              (a->cols > 0 ? a->cols : 0) + (b->rows > 0 ? b->rows : 0) + 1;
    unsigned char* result = call->buffer(std::size_t(room) * size);
    auto operand = [&](const Shape& s) -> std::optional<unsigned char*> {
        auto v = parse_value(kind, s.value);
        if (!v) return std::nullopt;
        unsigned char* p = call->buffer(std::size_t(count(s) > 0 ? count(s) : 1) * size);
        for (std::int32_t i = 0; i < count(s); ++i) std::memcpy(p + std::size_t(i) * size, v->bytes, size);
        return p;
    };
    const auto pa = operand(*a), pb = operand(*b);
    if (!pa || !pb) return nullptr;
    auto descriptor = [&](void* base, const Shape& s) {
        auto* cells = reinterpret_cast<std::int32_t*>(call->buffer(4 * sizeof(std::int32_t)));
        cells[0] = static_cast<std::int32_t>(size);
        cells[1] = s.rows;
        cells[2] = static_cast<std::int32_t>(size) * (s.rows > 0 ? s.rows : 1);
        cells[3] = s.cols;
        auto* d = reinterpret_cast<mivor_descriptor*>(call->buffer(sizeof(mivor_descriptor)));
        *d = {};
        d->base = base;
        d->rank = static_cast<std::int8_t>(s.rank);
        d->stride1 = &cells[0];
        d->extent1 = &cells[1];
        d->stride2 = &cells[2];
        d->extent2 = &cells[3];
        return d;
    };
    const Shape r_shape{b->rank == 2 && a->rank == 2 ? 2 : 1, a->rows, b->cols, "0"};
    mivor_descriptor* dr = descriptor(result, r_shape);
    mivor_descriptor* da = descriptor(*pa, *a);
    mivor_descriptor* db = descriptor(*pb, *b);
    // Scalars: letter N, alpha 1, beta 0, leading dimensions the rows.
    auto* scalars = reinterpret_cast<double*>(call->buffer(2 * sizeof(double)));
    scalars[0] = 1.0;
    scalars[1] = 0.0;
    auto* letter = reinterpret_cast<char*>(call->buffer(1));
    *letter = 'N';
    auto* lds = reinterpret_cast<std::int32_t*>(call->buffer(3 * sizeof(std::int32_t)));
    lds[0] = a->rows > 1 ? a->rows : 1;  // lda, ldc
    lds[1] = b->rows > 1 ? b->rows : 1;  // ldb
    const std::string_view name = row.name;
    if (name == "g_mt22blasd") {
        const mivor_gemm_args block{dr,          da,          db,      nullptr, letter,  letter,
                                    &scalars[0], &scalars[1], &lds[0], &lds[0], &lds[1], &lds[0]};
        call->block_.assign(reinterpret_cast<const unsigned char*>(&block),
                            reinterpret_cast<const unsigned char*>(&block) + sizeof block);
    } else if (name == "g_mt21blasd") {
        const mivor_gemv_args block{dr, da, db, nullptr, letter, &scalars[0], &scalars[1], &lds[0]};
        call->block_.assign(reinterpret_cast<const unsigned char*>(&block),
                            reinterpret_cast<const unsigned char*>(&block) + sizeof block);
    } else {
        const mivor_matmul_args block{dr, da, db};
        call->block_.assign(reinterpret_cast<const unsigned char*>(&block),
                            reinterpret_cast<const unsigned char*>(&block) + sizeof block);
    }
    return call;
}

bool MatrixCall::place(exports::Value* args, std::size_t slots) const {
    if (slots * sizeof(exports::Value) < block_.size()) return false;
    std::memcpy(static_cast<void*>(args), block_.data(), block_.size());
    return true;
}

}  // namespace mivor::tool
