#define _POSIX_C_SOURCE 200809L

#include "baseline/conversions.h"

#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

void append_text(struct text_buffer *text, const char *bytes, size_t size)
{
    if (size >= text->capacity - text->size) {
        text->capacity = 2 * text->capacity + size + 64;
        text->bytes = realloc(text->bytes, text->capacity);
        if (text->bytes == NULL) {
            fputs("out of memory\n", stderr);
            exit(1);
        }
    }
    memcpy(text->bytes + text->size, bytes, size);
    text->size += size;
}

static bool is_blank(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

struct text_part trim(const char *bytes, size_t size)
{
    while (size > 0 && is_blank(bytes[size - 1]))
        --size;
    while (size > 0 && is_blank(*bytes)) {
        ++bytes;
        --size;
    }
    return (struct text_part){bytes, size};
}

bool seconds_of_browser_time(int64_t browser_time, int64_t *seconds)
{
    const int64_t seconds_from_1601_to_1970 = 11644473600;
    if (browser_time == 0)
        return false;
    if (browser_time >= 1000000000 && browser_time <= 9999999999)
        *seconds = browser_time;
    else
        *seconds = browser_time / 1000000 - seconds_from_1601_to_1970;
    return true;
}

size_t utc_text(int64_t seconds, char text[utc_text_size])
{
    const time_t instant = (time_t)seconds;
    struct tm fields;
    if (seconds == 0 || seconds < INT_MIN || seconds > INT_MAX ||
        gmtime_r(&instant, &fields) == NULL)
        return 0;
    return strftime(text, utc_text_size, "%d-%b-%Y %H:%M:%S", &fields);
}

size_t duration_text(int64_t microseconds, char text[utc_text_size])
{
    if (microseconds < INT_MIN || microseconds > INT_MAX)
        microseconds = 0;
    const int seconds = (int)(microseconds / 1000000);
    if (seconds < 0)
        return 0;
    if (seconds < 3600)
        return (size_t)snprintf(text, utc_text_size, "%02d:%02d Min", seconds / 60, seconds % 60);
    return (size_t)snprintf(text, utc_text_size, "%02d:%02d:%02d Hrs", seconds / 3600,
                            seconds % 3600 / 60, seconds % 60);
}

static int hexadecimal_digit(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    return -1;
}

struct text_part percent_decoded(const char *bytes, size_t size, struct text_buffer *space)
{
    if (memchr(bytes, '%', size) == NULL)
        return (struct text_part){bytes, size};
    space->size = 0;
    for (size_t at = 0; at < size; ++at) {
        char byte = bytes[at];
        if (byte == '%' && at + 2 < size) {
            const int high = hexadecimal_digit(bytes[at + 1]);
            const int low = hexadecimal_digit(bytes[at + 2]);
            if (high >= 0 && low >= 0) {
                byte = (char)(unsigned char)(high * 16 + low);
                at += 2;
            }
        }
        append_text(space, &byte, 1);
    }
    return (struct text_part){space->bytes, space->size};
}
