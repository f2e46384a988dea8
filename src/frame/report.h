// Error reports to the core run-time through the control area `jwe_lca`:
// the one runner of the report -> retry -> fallback sequence.
//
// Kernels never touch the control area and never loop on a handler's
// answer.  An operation that can fail is written as one pass over its
// operands that either finishes with a result or names a failure:
//
//     report::settle<report::Form::direct>(
//         [](double x) -> report::Step<double, double> {
//             if (x >= kOverflow) return report::fail(Error::exp_overflow_r8, _Inf_D, kHuge_D);
//             return kernel(x);
//         },
//         x);
//
// `settle` runs the pass; on a failure it makes the report in the form of
// the family, and then
//   - when the handler asked for a retry, runs the whole pass again on the
//     operands the handler corrected (special cases tested anew; nothing
//     bounds the number of retries: a handler that never declines sees the
//     same report forever, as the run-time expects);
//   - otherwise returns the failure's fallback, chosen by byte 589 of the
//     control area, read after the handler returned:
//       fail(e, ieee, substitute)   the IEEE special (589 = 1) or a finite
//                                   substitute (clamped value, HUGE, ...);
//       fail(e, value)              the same result either way;
//       fail_then_restart(e, ieee, operands...)
//                                   the IEEE special, or else the pass runs
//                                   again on the given operands (a logarithm
//                                   of a negative number goes on with -x);
//                                   the new pass may report again.
//
// The three forms (the form is the family's, not the site's):
//   full    powers and REAL(16) operators: lazy initialisation of the core
//           run-time, then nothing at all but the fallback unless the
//           handler is enabled (1250) and reports are not suppressed (588);
//           operand copies and descriptors, the handler, retry;
//   direct  elementary functions: no initialisation and no flag tests; the
//           record is filled and the handler called at once, retry honoured;
//   short   MODULO, NEAREST, matrix products: number and handler only; the
//           retry word is not read and byte 589 plays no part: the pass's
//           fallback is its `ieee` member (write such sites with
//           fail(e, value)).
//
// Operands: the full and direct forms publish modifiable copies of the
// first and second operand of the pass at 696 and 700 (a pass has one or
// two operands; state that is not an operand is captured by the lambda).
// By default every operand that has a type code is described at 752 on;
// `.described(...)` narrows that per site (zero to a negative power shows
// the exponent only, ATAN2 of two zeros shows none).
#pragma once

#include <cstdint>
#include <tuple>
#include <type_traits>

#include "frame/errors.h"
#include "frame/values.h"
#include "mivor/control_area.h"

namespace mivor::report {

enum class Form { full, direct, short_form };

// Which operands a report describes at 752 onwards.
enum class Describe : std::uint8_t { all, none, first, second };

// The fallback of an error site.
template <class R>
struct Failure {
    Error number;
    R ieee;        // byte 589 is 1
    R substitute;  // byte 589 is anything else
    Describe shown = Describe::all;

    constexpr Failure described(Describe d) const {
        Failure f = *this;
        f.shown = d;
        return f;
    }
};

// The fallback of a site that goes on with other operands when IEEE
// results are off.
template <class R, class... Ops>
struct Restart {
    Error number;
    R ieee;
    std::tuple<Ops...> operands;
    Describe shown = Describe::all;

    constexpr Restart described(Describe d) const {
        Restart f = *this;
        f.shown = d;
        return f;
    }
};

template <class R>
constexpr Failure<R> fail(Error number, R ieee, R substitute) {
    return Failure<R>{number, ieee, substitute};
}
template <class R>
constexpr Failure<R> fail(Error number, R result) {
    return Failure<R>{number, result, result};
}
template <class R, class... Ops>
constexpr Restart<R, Ops...> fail_then_restart(Error number, R ieee, Ops... operands) {
    return Restart<R, Ops...>{number, ieee, std::tuple<Ops...>(operands...)};
}

// The outcome of one pass over the operands Ops...: a result of kind R, or
// a failure with its fallback.
template <class R, class... Ops>
class Step {
public:
    using Result = R;

    Step(R value) : value_(value) {}  // NOLINT: a finished pass reads as its result
    Step(const Failure<R>& f)         // NOLINT
        : kind_(Kind::failure), number_(f.number), shown_(f.shown), value_(f.ieee), substitute_(f.substitute) {}
    Step(const Restart<R, Ops...>& f)  // NOLINT
        : kind_(Kind::restart), number_(f.number), shown_(f.shown), value_(f.ieee), restart_(f.operands) {}

    bool finished() const { return kind_ == Kind::value; }
    bool restarts() const { return kind_ == Kind::restart; }
    Error number() const { return number_; }
    Describe shown() const { return shown_; }
    const R& value() const { return value_; }  // the result, or the IEEE fallback
    const R& substitute() const { return substitute_; }
    const std::tuple<Ops...>& restart_operands() const { return restart_; }

private:
    enum class Kind : std::uint8_t { value, failure, restart };
    Kind kind_ = Kind::value;
    Error number_{};
    Describe shown_ = Describe::all;
    R value_;
    R substitute_{};
    std::tuple<Ops...> restart_{};
};

template <class T> inline constexpr std::uint16_t type_code = 0;
template <> inline constexpr std::uint16_t type_code<std::int32_t> = MIVOR_TYPE_INTEGER4;
template <> inline constexpr std::uint16_t type_code<std::int64_t> = MIVOR_TYPE_INTEGER8;
template <> inline constexpr std::uint16_t type_code<float> = MIVOR_TYPE_REAL4;
template <> inline constexpr std::uint16_t type_code<double> = MIVOR_TYPE_REAL8;
template <> inline constexpr std::uint16_t type_code<Real16> = MIVOR_TYPE_REAL16;

namespace detail {

struct Verdict {
    bool retry;         // the handler corrected the operands: start again
    bool ieee_results;  // byte 589 is 1
};

struct Descriptor {
    const void* value = nullptr;
    std::uint16_t type = 0;
};

struct Record {
    std::int32_t number;
    void* first;   // modifiable copies, published at 696 and 700
    void* second;  // (null: not published)
    std::uint32_t count;
    Descriptor shown[2];
};

Verdict raise_full(const Record& record);
Verdict raise_direct(const Record& record);
void raise_short(std::int32_t number);

inline bool shows(Describe d, int index) {
    return d == Describe::all || (d == Describe::first && index == 0) || (d == Describe::second && index == 1);
}

// Fills the record from copies of the operands, makes the report and, on a
// retry, hands the handler's corrections back to the operands.
template <Form form, class... Ops>
[[gnu::cold, gnu::noinline]] Verdict raise(Error number, Describe shown, Ops&... operands) {
    static_assert(sizeof...(Ops) == 1 || sizeof...(Ops) == 2, "a report names one or two operands");
    std::tuple<Ops...> copies(operands...);            // modifiable by the handler
    const std::tuple<Ops...> displayed(operands...);   // what the message shows
    Record record{number_of(number), &std::get<0>(copies), nullptr, 0, {}};
    if constexpr (sizeof...(Ops) == 2) record.second = &std::get<1>(copies);
    auto describe = [&]<std::size_t I>(std::integral_constant<std::size_t, I>) {
        using T = std::tuple_element_t<I, std::tuple<Ops...>>;
        if constexpr (type_code<T> != 0) {
            if (shows(shown, static_cast<int>(I))) record.shown[record.count++] = {&std::get<I>(displayed), type_code<T>};
        }
    };
    describe(std::integral_constant<std::size_t, 0>{});
    if constexpr (sizeof...(Ops) == 2) describe(std::integral_constant<std::size_t, 1>{});
    const Verdict verdict = form == Form::full ? raise_full(record) : raise_direct(record);
    if (verdict.retry) std::tie(operands...) = copies;
    return verdict;
}

}  // namespace detail

// Runs `pass` over the operands until it finishes, or until a failure's
// fallback is taken; see the top of this file.
template <Form form, class Pass, class... Ops>
inline auto settle(Pass pass, Ops... operands) -> typename decltype(pass(operands...))::Result {
    for (;;) {
        const auto step = pass(operands...);
        if (step.finished()) return step.value();
        if constexpr (form == Form::short_form) {
            detail::raise_short(number_of(step.number()));
            return step.value();
        } else {
            const detail::Verdict verdict = detail::raise<form>(step.number(), step.shown(), operands...);
            if (verdict.retry) continue;
            if (verdict.ieee_results) return step.value();
            if (!step.restarts()) return step.substitute();
            std::tie(operands...) = step.restart_operands();
        }
    }
}

// The common direct-form site of one operand: the pass computes when the
// operand is `accepted` and fails otherwise.  For the refusals that the
// hot path has already found, where a retry must go back to the top.
template <class T, class Accepted, class Compute, class R>
inline R settle_direct(T x, Accepted accepted, Compute compute, Failure<R> failure) {
    return settle<Form::direct>(
        [&](T x) -> Step<R, T> {
            if (accepted(x)) return compute(x);
            return failure;
        },
        x);
}

}  // namespace mivor::report
