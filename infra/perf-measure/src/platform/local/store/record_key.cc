// SPDX-License-Identifier: Apache-2.0
// Makes keys and takes them apart.
#include "platform/local/store/record_key.h"

#include <algorithm>
#include <iterator>

namespace store {

namespace {

constexpr std::size_t NAME_AT = 1;  // the letter of the key space is before it
constexpr std::size_t NODE_AT = NAME_AT + 1;
constexpr std::size_t PATH_AT = NODE_AT + sizeof(std::uint32_t);

template <class Number>
void append_big_endian(Number number, std::string *to) {
    for (int shift = static_cast<int>(sizeof number) * 8 - 8; shift >= 0; shift -= 8) {
        to->push_back(static_cast<char>(number >> shift));
    }
}

std::uint32_t read_big_endian(std::string_view digits) {
    std::uint32_t number = 0;
    for (const char byte : digits) {
        number = number << 8 | static_cast<std::uint8_t>(byte);
    }
    return number;
}

}  // namespace

std::string key(key_space space) { return {static_cast<char>(space)}; }

std::string key(key_space space, std::uint32_t number) {
    std::string result = key(space);
    append_big_endian(number, &result);
    return result;
}

std::string root_key(key_space space, root data_root) {
    return {static_cast<char>(space), static_cast<char>(data_root)};
}

std::string schema_key(std::uint64_t fingerprint) {
    std::string result = key(key_space::schema);
    append_big_endian(fingerprint, &result);
    return result;
}

std::string branch_key(key_space space, const branch &named) {
    std::string result = root_key(space, named.data_root);
    append_big_endian(named.node, &result);
    return result;
}

std::string item_key(const branch &of, std::string_view path) {
    std::string result = branch_key(key_space::item, of);
    result += path;
    return result;
}

bool parse_number_key(std::string_view key, std::uint32_t *number) {
    if (key.size() != NAME_AT + sizeof *number) {
        return false;
    }
    *number = read_big_endian(key.substr(NAME_AT));
    return true;
}

bool parse_branch_key(std::string_view key, branch *named, std::string_view *path) {
    const auto *known = std::find_if(std::begin(ROOTS), std::end(ROOTS), [&](const root_name &each) {
        return key.size() >= PATH_AT && key[NAME_AT] == static_cast<char>(each.id);
    });
    if (known == std::end(ROOTS)) {
        return false;
    }
    *named = {known->id, read_big_endian(key.substr(NODE_AT, PATH_AT - NODE_AT))};
    *path = key.substr(PATH_AT);
    return true;
}

std::string prefix_below(std::string_view path) {
    std::string result(path);
    if (!path.empty() && !path.ends_with('/')) {
        result += '/';
    }
    return result;
}

}  // namespace store
