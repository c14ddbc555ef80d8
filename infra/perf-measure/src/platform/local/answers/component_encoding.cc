// SPDX-License-Identifier: Apache-2.0
// Any text as one path component and back.
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/opstore.h"

namespace {

bool stays(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_' ||
           c == '-';
}

errcode to_heap(const std::string &text, char **out, std::size_t *length) {
    *out = strdup(text.c_str());
    *length = text.size();
    return *out != nullptr ? ERRCODE_SUCCESS : ERRCODE_NO_MEMORY;
}

}  // namespace

errcode opstore_string_encode(const char *text, char **encoded, std::size_t *length) {
    if (text == nullptr || encoded == nullptr || length == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    constexpr char DIGITS[] = "0123456789ABCDEF";
    std::string result;
    for (const char *at = text; *at != '\0'; ++at) {
        if (stays(*at)) {
            result += *at;
        } else {
            const auto byte = static_cast<unsigned char>(*at);
            result += {'%', DIGITS[byte >> 4], DIGITS[byte & 0xF]};
        }
    }
    return to_heap(result, encoded, length);
}

errcode opstore_string_decode(const char *encoded, char **text, std::size_t *length) {
    if (encoded == nullptr || text == nullptr || length == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    std::string result;
    for (const char *at = encoded; *at != '\0'; ++at) {
        if (*at != '%') {
            result += *at;
            continue;
        }
        unsigned char byte = 0;
        const std::size_t digits = strnlen(at + 1, 2);
        const auto [end, error] = std::from_chars(at + 1, at + 1 + digits, byte, 16);
        if (error != std::errc{} || end != at + 3 || byte == 0) {
            return ERRCODE_INVALID_ARGUMENT;
        }
        result += static_cast<char>(byte);
        at += 2;
    }
    return to_heap(result, text, length);
}
