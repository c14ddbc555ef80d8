// SPDX-License-Identifier: Apache-2.0
// Makes keys, and bounds of ranges.
#include "platform/local/redis_store/redis_key.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace redis_store {

namespace {

constexpr char AFTER_PATH = '\x01';  // follows the zero byte that ends a path
constexpr std::size_t BRANCH_NAME_LENGTH = 9;

}  // namespace

std::string key_names::of(const store::branch &named, branch_part part) const {
    return prefix_ + ":{" + branch_name(named) + "}:" + static_cast<char>(part);
}

std::string key_names::of(state_part part) const { return prefix_ + ":{state}:" + static_cast<char>(part); }

std::string key_names::stage(const store::branch &named, const std::string &token) const {
    return prefix_ + ":{" + branch_name(named) + "}:s:" + token;
}

std::string hexadecimal(std::uint64_t number, int digits) {
    std::string text(static_cast<std::size_t>(digits), '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, number >>= 4) {
        *digit = "0123456789abcdef"[number & 0xf];
    }
    return text;
}

std::string branch_name(const store::branch &named) {
    return static_cast<char>(named.data_root) + hexadecimal(named.node, 8);
}

bool parse_branch_name(std::string_view name, store::branch *named) {
    if (name.size() != BRANCH_NAME_LENGTH) {
        return false;
    }
    const auto *known =
        std::find_if(std::begin(store::ROOTS), std::end(store::ROOTS),
                     [&](const store::root_name &each) { return static_cast<char>(each.id) == name.front(); });
    std::uint32_t node = 0;
    const auto [end, code] = std::from_chars(name.data() + 1, name.data() + name.size(), node, 16);
    if (known == std::end(store::ROOTS) || code != std::errc{} || end != name.data() + name.size()) {
        return false;
    }
    *named = {known->id, node};
    return true;
}

member_range range_of_path(std::string_view path) {
    member_range range{"[" + std::string(path), "(" + std::string(path)};
    range.first += '\0';
    range.last += AFTER_PATH;
    return range;
}

member_range range_of_prefix(std::string_view prefix, std::string_view after) {
    const std::string next = std::string(after) + AFTER_PATH;
    member_range range{"[" + (after.empty() ? std::string(prefix) : std::max(next, std::string(prefix))), "+"};
    std::string past(prefix);
    while (!past.empty() && past.back() == '\xff') {
        past.pop_back();
    }
    if (range.first.size() == 1) {
        range.first = "-";
    }
    if (!past.empty()) {
        past.back() = static_cast<char>(past.back() + 1);
        range.last = "(" + past;
    }
    return range;
}

}  // namespace redis_store
