// SPDX-License-Identifier: Apache-2.0
// What a message shows of a text that may be long or hold anything.
#include "perf-store/datasets/message_text.h"

#include <cstdint>

#include "perf-store/datasets/value_text.h"

namespace perf_store {

std::string excerpt(std::string_view text, std::size_t longest) {
    if (text.size() <= longest) {
        return std::string(text);
    }
    std::size_t length = longest;
    while (length > 0 && (text[length] & 0xC0) == 0x80) {  // not within a character
        --length;
    }
    return std::string(text.substr(0, length)) + "...";
}

std::string on_one_line(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<std::uint8_t>(c);
        if (byte >= 0x20 && byte != 0x7F) {
            result.push_back(c);
        } else {
            result += "\\x";
            append_hexadecimal(&byte, 1, &result);
        }
    }
    return result;
}

}  // namespace perf_store
