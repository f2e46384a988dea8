/*
 * The reference core run-time, mivori: owner of the control area
 * (<mivor/control_area.h>) and of the default error handler.  Besides the
 * three symbols every core run-time provides, it offers a few inspection
 * entries for tests and tools.
 */
#ifndef MIVORI_H
#define MIVORI_H

#include <stdint.h>

#include "mivor/control_area.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The handler installed at start: prints one line per report to stderr
 * (error number, then each described operand with its type) and declines
 * the retry. */
MIVORI_API void mivori_default_handler(void *error_record);

/* How many times jwe_xint has run, and the three words it last received. */
MIVORI_API int32_t mivori_xint_call_count(void);
MIVORI_API const int32_t *mivori_xint_last_block(void);

#ifdef __cplusplus
}
#endif

#endif /* MIVORI_H */
