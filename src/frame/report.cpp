// The one place that writes the control area.  See report.h for the three
// forms and the runner that drives them; the field writes below are the
// record layout the core run-time reads, and nothing outside the listed
// fields is written.
#include "frame/report.h"

namespace mivor::report::detail {
namespace {

// Let any pending x87 exception surface here rather than inside the
// handler.
inline void wait_for_x87() {
#if defined(__i386__) || defined(__x86_64__)
    __asm__ __volatile__("fwait" ::: "memory");
#endif
}

// Number, the cleared fields and the retry pointer: common to all forms.
void open_record(std::int32_t number) {
    jwe_control_area& area = jwe_lca;
    area.retry_pointer = &area.retry_word;
    area.error_number = number;
    area.cleared_720 = 0;
    area.cleared_721 = 0;
    area.cleared_724 = 0;
    area.cleared_732 = 0;
    area.cleared_736 = 0;
    area.cleared_737 = 0;
    area.cleared_744 = 0;
}

void publish_operands(const Record& record) {
    jwe_control_area& area = jwe_lca;
    area.first_operand = record.first;
    if (record.second != nullptr) area.second_operand = record.second;
}

void publish_descriptors(const Record& record) {
    if (record.count == 0) return;
    jwe_control_area& area = jwe_lca;
    area.operand_count = record.count;
    area.operand1_value = record.shown[0].value;
    area.operand1_type = record.shown[0].type;
    area.operand1_pad = 0;
    if (record.count == 2) {
        area.operand2_value = record.shown[1].value;
        area.operand2_type = record.shown[1].type;
        area.operand2_pad = 0;
    }
}

Verdict fallback_only() { return Verdict{false, jwe_lca.ieee_results == 1}; }

// Calls the handler and reads its answer.  A missing handler counts as a
// declined retry: a report must never crash the program, and the retry
// word, which only a handler writes, may still hold an earlier answer.
Verdict call_handler() {
    jwe_control_area& area = jwe_lca;
    jwe_handler_fn handler = area.handler;
    if (!handler) return fallback_only();
    handler(&area.error_number);
    return Verdict{area.retry_word != 0, area.ieee_results == 1};
}

}  // namespace

Verdict raise_full(const Record& record) {
    if (jwe_x_init == 0) {
        // Set before the call: an error raised during initialisation must
        // not initialise again.
        jwe_x_init = 2;
        std::int32_t block[3] = {0, 0, 0};
        jwe_xint(block);
    }
    wait_for_x87();
    const jwe_control_area& area = jwe_lca;
    if (area.handler_enabled != 1 || area.suppress != 0) return fallback_only();
    publish_operands(record);
    open_record(record.number);
    publish_descriptors(record);
    return call_handler();
}

Verdict raise_direct(const Record& record) {
    publish_operands(record);
    open_record(record.number);
    publish_descriptors(record);
    return call_handler();
}

void raise_short(std::int32_t number) {
    open_record(number);
    jwe_control_area& area = jwe_lca;
    if (jwe_handler_fn handler = area.handler) handler(&area.error_number);
}

}  // namespace mivor::report::detail
