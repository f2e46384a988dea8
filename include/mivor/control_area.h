/*
 * The run-time control area `jwe_lca` and its companions, owned by the core
 * run-time (mivori) and shared with this library.
 *
 * On the 32-bit targets the layout is a fixed binary interface: every field
 * sits at the byte offset that separately built core run-times expect, and the
 * static assertions below pin those offsets.  The 64-bit build keeps the same
 * fields in the same order; only the pointer slots widen to 8 bytes (and the
 * gaps between fields are kept as they are), so offsets after the first
 * pointer differ there.  Code always names fields, never offsets.
 *
 * Usable from C and C++.
 */
#ifndef MIVOR_CONTROL_AREA_H
#define MIVOR_CONTROL_AREA_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Symbols that the core run-time exports and the library imports. */
#if defined(_WIN32)
#  if defined(MIVORI_BUILDING)
#    define MIVORI_API __declspec(dllexport)
#  else
#    define MIVORI_API __declspec(dllimport)
#  endif
#else
#  define MIVORI_API __attribute__((visibility("default")))
#endif

/* Type codes of the operand descriptors of an error record. */
enum {
    MIVOR_TYPE_INTEGER4 = 3,
    MIVOR_TYPE_INTEGER8 = 4,
    MIVOR_TYPE_REAL4 = 9,
    MIVOR_TYPE_REAL8 = 10,
    MIVOR_TYPE_REAL16 = 11
};

/* The handler receives the address of `error_number` (the start of the
 * error record); the caller pops the argument (cdecl). */
typedef void (*jwe_handler_fn)(void *error_record);

typedef struct jwe_control_area {
    uint8_t reserved_0[588];
    uint8_t suppress;           /* 588: nonzero: report nothing, take the fallback */
    uint8_t ieee_results;       /* 589: 1: fallbacks are IEEE specials, else finite substitutes */
    uint8_t reserved_590[98];
    uint32_t *retry_pointer;    /* 688: address of `retry_word` */
    uint8_t reserved_692[4];
    void *first_operand;        /* 696: the reporting function's modifiable copy of operand 1 */
    void *second_operand;       /* 700: ... of operand 2 */
    uint8_t reserved_704[12];
    /* The error record starts here; the handler gets its address. */
    int32_t error_number;       /* 716 */
    uint8_t cleared_720;        /* 720..744: cleared by every report; the core's own fields */
    uint8_t cleared_721;
    uint8_t reserved_722[2];
    uint32_t cleared_724;
    uint8_t reserved_728[4];
    uint32_t cleared_732;
    uint8_t cleared_736;
    uint8_t cleared_737;
    uint8_t reserved_738[6];
    uint32_t cleared_744;
    uint8_t reserved_748[4];
    uint32_t operand_count;     /* 752: descriptors that follow: 1 or 2 */
    const void *operand1_value; /* 756: copy of operand 1, for the message */
    uint16_t operand1_type;     /* 760: type code */
    uint16_t operand1_pad;      /* 762: 0 */
    const void *operand2_value; /* 764 */
    uint16_t operand2_type;     /* 768 */
    uint16_t operand2_pad;      /* 770 */
    uint8_t reserved_772[24];
    uint32_t retry_word;        /* 796: set nonzero by the handler to ask for a retry */
    uint8_t reserved_800[450];
    uint8_t handler_enabled;    /* 1250: full-form reports call the handler only when 1 */
    uint8_t reserved_1251[1049];
    jwe_handler_fn handler;     /* 2300 */
} jwe_control_area;

MIVORI_API extern jwe_control_area jwe_lca;
/* 0 until the core run-time has been initialised; the library stores 2
 * into it before calling jwe_xint. */
MIVORI_API extern int32_t jwe_x_init;
/* Initialises the core run-time; the library passes three zero words. */
MIVORI_API void jwe_xint(int32_t *block);

#ifdef __cplusplus
} /* extern "C" */
#endif

#ifdef __cplusplus
#  define MIVOR_STATIC_ASSERT static_assert
#else
#  define MIVOR_STATIC_ASSERT _Static_assert
#endif

#if UINTPTR_MAX == 0xFFFFFFFFu
/* The binary interface of the 32-bit targets. */
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, suppress) == 588, "suppress");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, ieee_results) == 589, "ieee_results");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, retry_pointer) == 688, "retry_pointer");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, first_operand) == 696, "first_operand");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, second_operand) == 700, "second_operand");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, error_number) == 716, "error_number");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, cleared_720) == 720, "720");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, cleared_721) == 721, "721");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, cleared_724) == 724, "724");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, cleared_732) == 732, "732");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, cleared_736) == 736, "736");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, cleared_737) == 737, "737");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, cleared_744) == 744, "744");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, operand_count) == 752, "operand_count");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, operand1_value) == 756, "operand1_value");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, operand1_type) == 760, "operand1_type");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, operand1_pad) == 762, "operand1_pad");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, operand2_value) == 764, "operand2_value");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, operand2_type) == 768, "operand2_type");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, operand2_pad) == 770, "operand2_pad");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, retry_word) == 796, "retry_word");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, handler_enabled) == 1250, "handler_enabled");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, handler) == 2300, "handler");
MIVOR_STATIC_ASSERT(sizeof(jwe_control_area) == 2304, "size");
#else
/* 64-bit: the same order, pointer slots of 8 bytes. */
MIVOR_STATIC_ASSERT(sizeof(void *) == 8, "pointer slots");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, suppress) == 588, "suppress");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, retry_pointer) == 688, "retry_pointer");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, error_number) <
                        offsetof(jwe_control_area, operand_count), "order");
MIVOR_STATIC_ASSERT(offsetof(jwe_control_area, retry_word) <
                        offsetof(jwe_control_area, handler_enabled), "order");
#endif

#endif /* MIVOR_CONTROL_AREA_H */
