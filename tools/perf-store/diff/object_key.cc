// SPDX-License-Identifier: Apache-2.0
// Makes keys of objects and takes them apart: the kind, then numbers in big-endian order, then the path.
#include "perf-store/diff/object_key.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "perf-store/datasets/store_contents.h"

namespace perf_store {

namespace {

constexpr std::size_t NUMBER_AT = 1;  // of a node or an interface
constexpr std::size_t ROOT_AT = 1;
constexpr std::size_t NODE_AT = ROOT_AT + 1;
constexpr std::size_t PATH_AT = NODE_AT + sizeof(std::uint32_t);

void append_big_endian(std::uint32_t number, std::string *to) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        to->push_back(static_cast<char>(number >> shift));
    }
}

std::uint32_t big_endian_at(std::string_view key, std::size_t at) {
    std::uint32_t number = 0;
    for (const char byte : key.substr(at, sizeof number)) {
        number = number << 8 | static_cast<std::uint8_t>(byte);
    }
    return number;
}

std::string word_and_number(const char *word, std::uint32_t number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, " %#x", number);
    return std::string(word) + digits;
}

}  // namespace

std::string object_key(object_kind kind) { return {static_cast<char>(kind)}; }

std::string object_key(object_kind kind, std::uint32_t number) {
    std::string key = object_key(kind);
    append_big_endian(number, &key);
    return key;
}

std::string object_key(object_kind kind, const store::branch &of, std::string_view path) {
    std::string key = object_key(kind);
    const auto *root = std::find_if(std::begin(store::ROOTS), std::end(store::ROOTS),
                                    [&](const auto &each) { return each.id == of.data_root; });
    key.push_back(static_cast<char>(root - std::begin(store::ROOTS)));  // in the order of the roots
    append_big_endian(of.node, &key);
    key += path;
    return key;
}

object_kind kind_of(std::string_view key) { return static_cast<object_kind>(key.front()); }

std::optional<std::uint32_t> node_of(std::string_view key) {
    const object_kind kind = kind_of(key);
    return kind == object_kind::publisher || kind == object_kind::item ? std::optional(big_endian_at(key, NODE_AT))
                                                                       : std::nullopt;
}

std::string describe_object(std::string_view key) {
    const auto root_word = [&] { return store::ROOTS[static_cast<std::size_t>(key[ROOT_AT])].word; };
    switch (kind_of(key)) {
    case object_kind::platform: return "platform";
    case object_kind::node: return word_and_number("node", big_endian_at(key, NUMBER_AT));
    case object_kind::interface: return word_and_number("interface", big_endian_at(key, NUMBER_AT));
    case object_kind::publisher: return "publisher " + word_and_number(root_word(), big_endian_at(key, NODE_AT));
    case object_kind::item: break;
    }
    const auto &root = store::ROOTS[static_cast<std::size_t>(key[ROOT_AT])];
    return describe_item({root, big_endian_at(key, NODE_AT), key.substr(PATH_AT)});
}

}  // namespace perf_store
