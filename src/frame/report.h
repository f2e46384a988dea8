// Error reports to the core run-time through the control area `jwe_lca`.
//
// Kernels never touch the control area: at an error site they call one of
// the three report forms below and act on the verdict.
//
//   full    powers and REAL(16) operators: lazy initialisation of the core
//           run-time, the handler-enabled and suppress flags, operand copies
//           and descriptors, the handler, retry;
//   direct  elementary functions: no initialisation and no flag tests; the
//           record is filled and the handler called at once, retry honoured;
//   short   MODULO, NEAREST, matrix products: number and handler only; the
//           retry word is ignored.
//
// On a retry the operands passed by reference receive the handler's
// corrections and the caller starts the whole operation again, special
// cases included; nothing bounds the number of retries.  Otherwise the
// caller returns the fallback of its error site, chosen by `ieee_results`.
#pragma once

#include <cstdint>

#include "frame/values.h"
#include "mivor/control_area.h"

namespace mivor::report {

struct Verdict {
    bool retry;         // the handler corrected the operands: start again
    bool ieee_results;  // fallback choice: IEEE special (true) or finite substitute
};

// Which operands a full-form report describes at 752 onwards.
enum class Describe { none, second, both };

template <class T> inline constexpr std::uint16_t type_code = 0;
template <> inline constexpr std::uint16_t type_code<std::int32_t> = MIVOR_TYPE_INTEGER4;
template <> inline constexpr std::uint16_t type_code<std::int64_t> = MIVOR_TYPE_INTEGER8;
template <> inline constexpr std::uint16_t type_code<float> = MIVOR_TYPE_REAL4;
template <> inline constexpr std::uint16_t type_code<double> = MIVOR_TYPE_REAL8;
template <> inline constexpr std::uint16_t type_code<Real16> = MIVOR_TYPE_REAL16;

namespace detail {

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

}  // namespace detail

// Full form.  `first` and `second` are the operation's operands (base and
// exponent for the powers); they are updated from the handler's corrections
// when the verdict is a retry.
template <Describe describe, class First, class Second>
[[gnu::cold, gnu::noinline]] Verdict full(std::int32_t number, First& first, Second& second) {
    First first_copy = first;    // modifiable copies
    Second second_copy = second;
    const First first_shown = first;  // descriptor copies, for the message
    const Second second_shown = second;
    detail::Record record{number, &first_copy, &second_copy, 0, {}};
    if constexpr (describe == Describe::second) {
        static_assert(type_code<Second> != 0);
        record.count = 1;
        record.shown[0] = {&second_shown, type_code<Second>};
    } else if constexpr (describe == Describe::both) {
        static_assert(type_code<First> != 0 && type_code<Second> != 0);
        record.count = 2;
        record.shown[0] = {&first_shown, type_code<First>};
        record.shown[1] = {&second_shown, type_code<Second>};
    }
    const Verdict verdict = detail::raise_full(record);
    if (verdict.retry) {
        first = first_copy;
        second = second_copy;
    }
    return verdict;
}

// Direct form with one operand: the argument, described by its own type.
template <class T>
[[gnu::cold, gnu::noinline]] Verdict direct(std::int32_t number, T& x) {
    static_assert(type_code<T> != 0);
    T copy = x;
    const T shown = x;
    detail::Record record{number, &copy, nullptr, 1, {{&shown, type_code<T>}, {}}};
    const Verdict verdict = detail::raise_direct(record);
    if (verdict.retry) x = copy;
    return verdict;
}

// Direct form with two operands, both described (two-argument functions).
template <class A, class B>
[[gnu::cold, gnu::noinline]] Verdict direct(std::int32_t number, A& first, B& second) {
    static_assert(type_code<A> != 0 && type_code<B> != 0);
    A first_copy = first;
    B second_copy = second;
    const A first_shown = first;
    const B second_shown = second;
    detail::Record record{number, &first_copy, &second_copy, 2,
                          {{&first_shown, type_code<A>}, {&second_shown, type_code<B>}}};
    const Verdict verdict = detail::raise_direct(record);
    if (verdict.retry) {
        first = first_copy;
        second = second_copy;
    }
    return verdict;
}

// Short form: the handler is told, its retry word is not consulted.
[[gnu::cold, gnu::noinline]] void short_form(std::int32_t number);

}  // namespace mivor::report
