/*
 * What the plug-in interfaces share: the export mark, the compile-time checks of record layouts, and the
 * type of "some function" that callbacks are registered as.
 *
 * All records are native little-endian structures of a 64-bit process. Members named `reserved` are not
 * read by the host; whoever fills a record sets them to 0.
 */
#ifndef VELLOR_BASE_H
#define VELLOR_BASE_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define VELLOR_EXPORT __attribute__((visibility("default")))
#else
#define VELLOR_EXPORT
#endif

#ifdef __cplusplus
#define VELLOR_STATIC_ASSERT(condition, name) static_assert(condition, #name)
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
#define VELLOR_STATIC_ASSERT(condition, name) _Static_assert(condition, #name)
#else
#define VELLOR_STATIC_ASSERT(condition, name) typedef char vellor_check_##name[(condition) ? 1 : -1]
#endif

#define VELLOR_CHECK_SIZE(record, bytes) VELLOR_STATIC_ASSERT(sizeof(record) == (bytes), record##_size)
#define VELLOR_CHECK_FIELD(record, field, bytes)                                                             \
    VELLOR_STATIC_ASSERT(offsetof(record, field) == (bytes), record##_##field)

VELLOR_STATIC_ASSERT(sizeof(void*) == 8, pointers_of_64_bits);

#ifdef __cplusplus
extern "C" {
#endif

/* Any function. Callbacks are cast to this to be registered, and back to their own type to be called. */
typedef void (*VellorFunction)(void);

#ifdef __cplusplus
}
#endif

#endif
