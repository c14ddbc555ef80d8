// SPDX-License-Identifier: Apache-2.0
// A text with its length, for labels and words: that of a literal is known when the program is compiled, so that no
// line counts its label.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstring>

struct pm_text {
    const char *bytes;   // a zero byte follows them
    std::size_t length;  // without it

    template <std::size_t Size>
    consteval pm_text(const char (&literal)[Size]) : bytes(literal), length(Size - 1) {}
    // Any other text; null is what "%s" prints of it. Templates, so that literals prefer the constructor above.
    template <class Text>
    requires std::same_as<Text, const char *> || std::same_as<Text, char *> pm_text(Text text)
        : bytes(text != nullptr ? text : "(null)"), length(std::strlen(bytes)) {}
    template <std::size_t Size>
    pm_text(char (&buffer)[Size]) : bytes(buffer), length(std::strlen(buffer)) {}

    explicit operator const char *() const { return bytes; }
};
