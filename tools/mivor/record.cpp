#include "record.h"

#include "values.h"

namespace mivor::tool {

ReportForm report_form(std::int32_t number) {
    if (number == 1375 || number == 1393 || number == 1396) return ReportForm::short_form;
    if ((number >= 261 && number <= 280) || number == 1397 || number == 1398 || (number >= 1413 && number <= 1417))
        return ReportForm::full;
    return ReportForm::direct;
}

const char* form_name(ReportForm form) {
    switch (form) {
        case ReportForm::full: return "full";
        case ReportForm::direct: return "direct";
        default: return "short";
    }
}

std::string_view kind_of_descriptor(std::uint32_t type_code) {
    switch (type_code) {
        case MIVOR_TYPE_INTEGER4: return "i4";
        case MIVOR_TYPE_INTEGER8: return "i8";
        case MIVOR_TYPE_REAL4: return "r4";
        case MIVOR_TYPE_REAL8: return "r8";
        case MIVOR_TYPE_REAL16: return "r16";
        default: return "";
    }
}

std::uint16_t descriptor_code(std::string_view kind) {
    kind = value_kind(kind);
    if (kind == "i4") return MIVOR_TYPE_INTEGER4;
    if (kind == "i8") return MIVOR_TYPE_INTEGER8;
    if (kind == "r4") return MIVOR_TYPE_REAL4;
    if (kind == "r8") return MIVOR_TYPE_REAL8;
    if (kind == "r16") return MIVOR_TYPE_REAL16;
    return 0;
}

OperandCopies operand_copies(const jwe_control_area& area, std::span<const std::string_view> argument_kinds) {
    OperandCopies c;
    c.at[0] = area.first_operand;
    c.at[1] = area.second_operand;
    c.count = c.at[1] ? 2 : c.at[0] ? 1 : 0;
    if (c.count == 0) return c;
    const std::string_view shown1 = kind_of_descriptor(area.operand1_type);
    if (area.operand_count == 2 && c.count == 2) {
        c.kind[0] = shown1;
        c.kind[1] = kind_of_descriptor(area.operand2_type);
    } else if (area.operand_count == 1 && c.count == 1) {
        c.kind[0] = shown1;
    } else if (area.operand_count == 1 && c.count == 2 && !shown1.empty()) {
        // One of two operands described: the argument kinds tell which,
        // when exactly one of the first two has the described type.
        auto code_of = [&](std::size_t i) -> std::uint16_t {
            return i < argument_kinds.size() ? descriptor_code(argument_kinds[i]) : 0;
        };
        const bool fits_first = code_of(0) == area.operand1_type, fits_second = code_of(1) == area.operand1_type;
        if (fits_first != fits_second) c.kind[fits_first ? 0 : 1] = shown1;
    }
    return c;
}

void forget_operands(jwe_control_area& area) {
    area.first_operand = nullptr;
    area.second_operand = nullptr;
    area.operand_count = 0;
}

}  // namespace mivor::tool
