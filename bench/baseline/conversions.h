#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/// A text that grows and is used again from row to row. Begins as all zeros.
struct text_buffer {
    char *bytes;
    size_t size;
    size_t capacity;
};

void append_text(struct text_buffer *text, const char *bytes, size_t size);

/// A part of a text that belongs to somebody else.
struct text_part {
    const char *begin;
    size_t size;
};

/// Without blanks at both ends.
struct text_part trim(const char *bytes, size_t size);

/// Microseconds since 1601-01-01 UTC to Unix seconds; ten digits are Unix seconds already. False
/// for 0, which means no time.
bool seconds_of_browser_time(int64_t browser_time, int64_t *seconds);

enum { utc_text_size = 21 };
/// "dd-MMM-yyyy hh:mm:ss"; empty for 0 and for what 32 bits do not hold. Returns the length.
size_t utc_text(int64_t seconds, char text[utc_text_size]);

/// "mm:ss Min" or "hh:mm:ss Hrs" of a visit; the limits of 32 bits hold here too. Returns the
/// length.
size_t duration_text(int64_t microseconds, char text[utc_text_size]);

/// Every "%" and two hexadecimal digits replaced by the byte they name; what has no "%" is not
/// copied.
struct text_part percent_decoded(const char *bytes, size_t size, struct text_buffer *space);
