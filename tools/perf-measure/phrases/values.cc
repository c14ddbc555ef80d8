// SPDX-License-Identifier: Apache-2.0
// Checks of values.
#include "perf-measure/phrases/values.h"

#include <arpa/inet.h>
#include <charconv>

namespace perf_measure {

namespace {

std::string check_address(std::string_view text, std::string *argument) {
    const std::string address(text);
    std::uint8_t octets[16];
    if (::inet_pton(AF_INET, address.c_str(), octets) != 1 && ::inet_pton(AF_INET6, address.c_str(), octets) != 1) {
        return in_quotes(text) + " is not an IPv4 or IPv6 address";
    }
    *argument = address;
    return {};
}

// perf-show joins the components with commas, cuts long ones and has a text of its own for none.
std::string check_text(std::string_view text, std::string *argument) {
    if (text.empty()) {
        return "the name is empty";
    }
    if (text.size() > LONGEST_FILTER_TEXT) {
        return in_quotes(text) + " is longer than the " + std::to_string(LONGEST_FILTER_TEXT) +
               " bytes that can be compared";
    }
    if (text.find(',') != std::string_view::npos) {
        return in_quotes(text) + " holds a comma, which separates the parts of a filter";
    }
    if (text == "________") {
        return in_quotes(text) + " means every name";
    }
    *argument = text;
    return {};
}

std::string check_name(std::string_view text, std::string *argument) {
    if (text.empty()) {
        return "the name is empty";
    }
    if (text.size() > LONGEST_NAME) {
        return in_quotes(text) + " is longer than the " + std::to_string(LONGEST_NAME) + " bytes that a name may have";
    }
    *argument = text;
    return {};
}

std::string check_number(const option &wanted, std::string_view text, std::string *argument) {
    std::uint32_t value = 0;
    if (!read_number(text, wanted.smallest, wanted.largest, &value)) {
        return in_quotes(text) + " is not " + describe_value(wanted);
    }
    *argument = std::to_string(value);
    return {};
}

}  // namespace

bool read_number(std::string_view text, std::uint32_t smallest, std::uint32_t largest, std::uint32_t *value) {
    const bool hexadecimal = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const std::string_view digits = hexadecimal ? text.substr(2) : text;
    const char *const end = digits.data() + digits.size();
    const std::from_chars_result read = std::from_chars(digits.data(), end, *value, hexadecimal ? 16 : 10);
    return !digits.empty() && read.ec == std::errc() && read.ptr == end && *value >= smallest && *value <= largest;
}

std::string check_value(const option &wanted, std::string_view text, std::string *argument) {
    switch (wanted.value) {
    case value_kind::number: return check_number(wanted, text, argument);
    case value_kind::address: return check_address(text, argument);
    case value_kind::text: return check_text(text, argument);
    case value_kind::name: return check_name(text, argument);
    case value_kind::nothing:
    case value_kind::choice:
    case value_kind::node: break;
    }
    *argument = text;
    return {};
}

std::string describe_value(const option &wanted) {
    switch (wanted.value) {
    case value_kind::number:
        return "a number from " + std::to_string(wanted.smallest) + " to " + std::to_string(wanted.largest);
    case value_kind::address: return "an IPv4 or IPv6 address";
    case value_kind::node: return "a node's name or id";
    case value_kind::text:
    case value_kind::name: return "a name";
    case value_kind::choice: {
        std::vector<std::string_view> words;
        for (const choice &each : wanted.choices) {
            words.emplace_back(each.word);
        }
        return join_words(words, " or ");
    }
    case value_kind::nothing: break;
    }
    return {};
}

std::vector<fitting_word> choice_words(const option &wanted) {
    std::vector<fitting_word> words;
    for (const choice &each : wanted.choices) {
        words.push_back({each.word, each.help});
    }
    return words;
}

}  // namespace perf_measure
