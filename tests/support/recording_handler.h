// A stand-in for the run-time's error handler, for tests: it records every
// report as the control area shows it during the handler call and lets the
// test decide, per report, whether to correct the operands and retry.
//
// Installing one saves the whole control area and puts it back afterwards,
// so tests can set flags freely.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

#include "mivor/control_area.h"
#include "mivor/types.h"

namespace mivor::testing {

struct Report {
    std::int32_t number = 0;
    void* record = nullptr;          // the argument the handler received
    std::uint32_t* retry_pointer = nullptr;
    void* first_operand = nullptr;   // 696
    void* second_operand = nullptr;  // 700
    std::uint32_t count = 0;         // 752
    std::uint16_t type1 = 0, pad1 = 0, type2 = 0, pad2 = 0;
    unsigned char value1[16] = {};   // the described operands, as shown
    unsigned char value2[16] = {};
    bool cleared = false;            // 720..744 all zero

    template <class T> T shown1() const { T v; std::memcpy(&v, value1, sizeof v); return v; }
    template <class T> T shown2() const { T v; std::memcpy(&v, value2, sizeof v); return v; }
};

class RecordingHandler {
public:
    // Asked for each report; may change the operand copies (first_operand,
    // second_operand); returns true to ask for a retry.
    using Decision = std::function<bool(const Report&, jwe_control_area&)>;

    explicit RecordingHandler(Decision decide = {}) : decide_(std::move(decide)) {
        std::memcpy(&saved_, &jwe_lca, sizeof saved_);
        current() = this;
        jwe_lca.handler = &RecordingHandler::trampoline;
        jwe_lca.handler_enabled = 1;
        jwe_lca.suppress = 0;
        jwe_lca.ieee_results = 1;
    }
    ~RecordingHandler() {
        std::memcpy(&jwe_lca, &saved_, sizeof saved_);
        current() = nullptr;
    }
    RecordingHandler(const RecordingHandler&) = delete;
    RecordingHandler& operator=(const RecordingHandler&) = delete;

    void decide(Decision d) { decide_ = std::move(d); }
    const std::vector<Report>& reports() const { return reports_; }
    std::vector<std::int32_t> numbers() const {
        std::vector<std::int32_t> n;
        for (const Report& r : reports_) n.push_back(r.number);
        return n;
    }
    void clear() { reports_.clear(); }

    // Fills the record area with a pattern, to see what a report writes.
    static void scribble() {
        std::memset(&jwe_lca.cleared_720, 0xA5,
                    offsetof(jwe_control_area, retry_word) - offsetof(jwe_control_area, cleared_720));
        jwe_lca.error_number = -1;
    }

private:
    static RecordingHandler*& current() {
        static RecordingHandler* h = nullptr;
        return h;
    }

    static void trampoline(void* record) {
        RecordingHandler* self = current();
        jwe_control_area& a = jwe_lca;
        Report r;
        r.number = a.error_number;
        r.record = record;
        r.retry_pointer = a.retry_pointer;
        r.first_operand = a.first_operand;
        r.second_operand = a.second_operand;
        r.count = a.operand_count;
        r.type1 = a.operand1_type;
        r.pad1 = a.operand1_pad;
        r.type2 = a.operand2_type;
        r.pad2 = a.operand2_pad;
        if (r.count >= 1 && a.operand1_value) std::memcpy(r.value1, a.operand1_value, size_of(r.type1));
        if (r.count >= 2 && a.operand2_value) std::memcpy(r.value2, a.operand2_value, size_of(r.type2));
        r.cleared = a.cleared_720 == 0 && a.cleared_721 == 0 && a.cleared_724 == 0 &&
                    a.cleared_732 == 0 && a.cleared_736 == 0 && a.cleared_737 == 0 &&
                    a.cleared_744 == 0;
        self->reports_.push_back(r);
        const bool retry = self->decide_ ? self->decide_(self->reports_.back(), a) : false;
        a.retry_word = retry ? 1u : 0u;
        // Consumed, so that a later report without descriptors shows none.
        a.operand_count = 0;
    }

    static std::size_t size_of(std::uint16_t code) {
        switch (code) {
            case MIVOR_TYPE_INTEGER4: case MIVOR_TYPE_REAL4: return 4;
            case MIVOR_TYPE_INTEGER8: case MIVOR_TYPE_REAL8: return 8;
            case MIVOR_TYPE_REAL16: return 16;
            default: return 0;
        }
    }

    Decision decide_;
    std::vector<Report> reports_;
    jwe_control_area saved_;
};

}  // namespace mivor::testing
