// Reference core run-time: the control area, lazy initialisation and the
// default handler.  Another core run-time can stand in for this one: the
// library only imports jwe_lca, jwe_x_init and jwe_xint.
#include "mivori.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

extern "C" {

// Ready before any report: the direct and short forms call the handler
// without initialising the core first.
jwe_control_area jwe_lca = {
    .reserved_0 = {},
    .suppress = 0,
    .ieee_results = 1,
    .reserved_590 = {},
    .retry_pointer = nullptr,
    .reserved_692 = {},
    .first_operand = nullptr,
    .second_operand = nullptr,
    .reserved_704 = {},
    .error_number = 0,
    .cleared_720 = 0,
    .cleared_721 = 0,
    .reserved_722 = {},
    .cleared_724 = 0,
    .reserved_728 = {},
    .cleared_732 = 0,
    .cleared_736 = 0,
    .cleared_737 = 0,
    .reserved_738 = {},
    .cleared_744 = 0,
    .reserved_748 = {},
    .operand_count = 0,
    .operand1_value = nullptr,
    .operand1_type = 0,
    .operand1_pad = 0,
    .operand2_value = nullptr,
    .operand2_type = 0,
    .operand2_pad = 0,
    .reserved_772 = {},
    .retry_word = 0,
    .reserved_800 = {},
    .handler_enabled = 1,
    .reserved_1251 = {},
    .handler = &mivori_default_handler,
};

int32_t jwe_x_init = 0;

}  // extern "C"

namespace {

int32_t xint_calls = 0;
int32_t xint_block[3] = {0, 0, 0};

const char* type_name(std::uint16_t code) {
    switch (code) {
        case MIVOR_TYPE_INTEGER4: return "INTEGER(4)";
        case MIVOR_TYPE_INTEGER8: return "INTEGER(8)";
        case MIVOR_TYPE_REAL4: return "REAL(4)";
        case MIVOR_TYPE_REAL8: return "REAL(8)";
        case MIVOR_TYPE_REAL16: return "REAL(16)";
        default: return "?";
    }
}

// Appends " TYPE value" for one descriptor.  Values are read with memcpy:
// the copies sit on the reporting function's stack with no alignment
// promise.
int describe(char* out, std::size_t size, const void* value, std::uint16_t code) {
    if (value == nullptr) return std::snprintf(out, size, " %s ?", type_name(code));
    switch (code) {
        case MIVOR_TYPE_INTEGER4: {
            int32_t v;
            std::memcpy(&v, value, sizeof v);
            return std::snprintf(out, size, " %s %" PRId32, type_name(code), v);
        }
        case MIVOR_TYPE_INTEGER8: {
            int64_t v;
            std::memcpy(&v, value, sizeof v);
            return std::snprintf(out, size, " %s %" PRId64, type_name(code), v);
        }
        case MIVOR_TYPE_REAL4: {
            float v;
            std::memcpy(&v, value, sizeof v);
            return std::snprintf(out, size, " %s %.9g", type_name(code), static_cast<double>(v));
        }
        case MIVOR_TYPE_REAL8: {
            double v;
            std::memcpy(&v, value, sizeof v);
            return std::snprintf(out, size, " %s %.17g", type_name(code), v);
        }
        case MIVOR_TYPE_REAL16: {
            uint32_t w[4];
            std::memcpy(w, value, sizeof w);
            return std::snprintf(out, size, " %s 0x%08" PRIX32 "%08" PRIX32 "%08" PRIX32 "%08" PRIX32,
                                 type_name(code), w[3], w[2], w[1], w[0]);
        }
        default: return std::snprintf(out, size, " type %u", static_cast<unsigned>(code));
    }
}

}  // namespace

extern "C" {

void jwe_xint(int32_t* block) {
    ++xint_calls;
    if (block != nullptr) std::memcpy(xint_block, block, sizeof xint_block);
    if (jwe_lca.handler == nullptr) jwe_lca.handler = &mivori_default_handler;
}

void mivori_default_handler(void* error_record) {
    jwe_control_area& area = jwe_lca;
    (void)error_record;  // always &jwe_lca.error_number
    char line[256];
    int n = std::snprintf(line, sizeof line, "mivori: run-time error %" PRId32, area.error_number);
    // Short-form reports carry no descriptors; the count is consumed below
    // so that a stale one is never shown with a later report.
    const uint32_t count = area.operand_count;
    if (count >= 1 && n > 0 && static_cast<std::size_t>(n) < sizeof line)
        n += describe(line + n, sizeof line - n, area.operand1_value, area.operand1_type);
    if (count >= 2 && n > 0 && static_cast<std::size_t>(n) < sizeof line)
        n += describe(line + n, sizeof line - n, area.operand2_value, area.operand2_type);
    std::fprintf(stderr, "%s\n", line);
    std::fflush(stderr);
    area.operand_count = 0;
    area.retry_word = 0;
}

int32_t mivori_xint_call_count(void) { return xint_calls; }
const int32_t* mivori_xint_last_block(void) { return xint_block; }

}  // extern "C"
