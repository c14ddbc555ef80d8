// SPDX-License-Identifier: Apache-2.0
// Bounded copies and tagged allocation.
#include "platform/bounded.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

void *calloc_named(std::size_t count, std::size_t size, const char * /*tag*/) { return std::calloc(count, size); }

void safe_strncpy(char *destination, const char *source, std::size_t size) {
    if (destination == nullptr || size == 0) {
        return;
    }
    const std::size_t length = source == nullptr ? 0 : strnlen(source, size - 1);
    std::memcpy(destination, source == nullptr ? "" : source, length);
    destination[length] = '\0';
}

errcode strncpy_s(char *destination, std::size_t size, const char *source, std::size_t count) {
    if (destination == nullptr || size == 0) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    destination[0] = '\0';
    if (source == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    const std::size_t length = strnlen(source, count);
    if (length >= size) {
        return ERRCODE_RANGE;
    }
    std::memmove(destination, source, length);
    destination[length] = '\0';
    return ERRCODE_SUCCESS;
}

errcode memcpy_s(void *destination, std::size_t size, const void *source, std::size_t count) {
    if (destination == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    if (source == nullptr || count > size) {
        std::memset(destination, 0, size);
        return source == nullptr ? ERRCODE_INVALID_ARGUMENT : ERRCODE_RANGE;
    }
    std::memmove(destination, source, count);
    return ERRCODE_SUCCESS;
}

errcode strcmp_s(const char *text, std::size_t size, const char *other, int *result) {
    if (text == nullptr || other == nullptr || result == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    const std::size_t length = strnlen(text, size);
    *result = std::strncmp(text, other, length);
    if (*result == 0 && other[length] != '\0') {
        *result = -1;
    }
    return ERRCODE_SUCCESS;
}
