// SPDX-License-Identifier: Apache-2.0
// A place in a JSON text, for readers that know what may come next.
//
// Takes JSON as programs write it: strings without escapes, and integers. What the routines take, the parser of
// json_document.h reads alike. They take nothing that is not JSON, and leave some that is to the parser, which also
// knows what is wrong and where.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace perf_store {

// Each routine passes what it takes, and white space before it. A token that is not the one asked for stays; after any
// other failure the place is undefined.
class json_cursor {
public:
    // The text is terminated: a zero byte is at its end, after it.
    explicit json_cursor(std::string_view text)
        : begin_(text.data()), at_(text.data()), end_(text.data() + text.size()) {}

    // What the next token begins with; zero at the end of the text.
    [[nodiscard]] char next() {
        while (static_cast<unsigned char>(*at_) <= ' ' &&
               (*at_ == ' ' || *at_ == '\n' || *at_ == '\t' || *at_ == '\r')) {
            ++at_;
        }
        return *at_;
    }

    // A token of one character, or one of null, true and false.
    [[nodiscard]] bool take(char token) {
        const bool is_there = next() == token;
        at_ += is_there ? 1 : 0;
        return is_there;
    }
    [[nodiscard]] bool take_word(std::string_view word) { return next() == word[0] && take_bytes(word); }

    // A member's name, if it is this one, and the colon after it.
    [[nodiscard]] bool take_name(std::string_view name) {
        const std::size_t size = name.size();
        if (next() != '"' || static_cast<std::size_t>(end_ - at_) < size + 2 || at_[size + 1] != '"' ||
            std::memcmp(at_ + 1, name.data(), size) != 0) {
            return false;
        }
        at_ += size + 2;
        return take(':');
    }

    // A string, as a view of the text.
    [[nodiscard]] bool take_text(std::string_view *text);

    // An integer of 64 bits, a number or in C notation in a string, as parse_integer() gives it.
    [[nodiscard]] bool take_integer(std::uint64_t *value, bool *negative);
    [[nodiscard]] bool take_unsigned(std::uint64_t largest, std::uint64_t *value) {
        bool negative = false;
        return take_integer(value, &negative) && !negative && *value <= largest;
    }

    // Bytes passed so far.
    [[nodiscard]] std::size_t passed() const { return static_cast<std::size_t>(at_ - begin_); }
    // Whether the text ended where something was looked for.
    [[nodiscard]] bool is_at_end() const { return at_ == end_; }

private:
    [[nodiscard]] bool take_bytes(std::string_view bytes) {
        if (static_cast<std::size_t>(end_ - at_) < bytes.size() || std::memcmp(at_, bytes.data(), bytes.size()) != 0) {
            return false;
        }
        at_ += bytes.size();
        return true;
    }

    const char *begin_;
    const char *at_;
    const char *end_;
};

}  // namespace perf_store
