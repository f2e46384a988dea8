// What a handler can learn from the error record during a report: the form
// of the report, and which operand copies it may change and in which kind.
//
// A handler that corrects an operand writes through 696 or 700 into the
// reporting function's private copy.  The copy has the kind of the operand
// the function reports on, which is not always the kind of the export's
// argument (the packed pk_ entries report lane by lane in REAL(8); the
// mixed REAL(8)/REAL(16) kernels report on REAL(16) operands), so the only
// trustworthy source of its width is the descriptor's type code.  Writing
// a width guessed from the argument list would run past the copy.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "mivor/control_area.h"

namespace mivor::tool {

enum class ReportForm { full, direct, short_form };

// The form in which the library makes the report of `number`: the powers
// and the REAL(16) operators use the full form, MODULO, NEAREST and the
// matrix products the short form, every elementary function the direct
// form.
ReportForm report_form(std::int32_t number);
const char* form_name(ReportForm form);

// The kind a descriptor's type code names (i4, i8, r4, r8, r16), or "";
// and the other way round (0 for a kind no descriptor shows).
std::string_view kind_of_descriptor(std::uint32_t type_code);
std::uint16_t descriptor_code(std::string_view kind);

// The modifiable operand copies of the current report and their kinds
// ("" where the record does not tell).  Relies on the handler's habit of
// clearing 696, 700 and the operand count after every report (as the core
// run-time's default handler clears the count): then a non-null 700 means
// the report has a second operand, and a count of 0 means no descriptor
// was written.
struct OperandCopies {
    void* at[2] = {nullptr, nullptr};
    std::string_view kind[2];
    int count = 0;  // operands published: 0, 1 or 2
};

// `argument_kinds` (the export's, from its table row) settles only one
// question: which of two operands a single descriptor describes, when its
// type code fits one argument and not the other.
OperandCopies operand_copies(const jwe_control_area& area, std::span<const std::string_view> argument_kinds);

// Clears what operand_copies relies on; a handler calls it before it
// returns.
void forget_operands(jwe_control_area& area);

}  // namespace mivor::tool
