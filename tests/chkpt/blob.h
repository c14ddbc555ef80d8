// SPDX-License-Identifier: Apache-2.0
// Builds checkpoint blobs byte by byte, for tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

struct blob {
    std::vector<std::uint8_t> bytes;

    template <class Bytes>
    blob &append(const Bytes &more) {
        for (const auto byte : more) {
            bytes.push_back(static_cast<std::uint8_t>(byte));
        }
        return *this;
    }
    blob &raw(std::initializer_list<std::uint8_t> more) { return append(more); }
    blob &add(const blob &more) { return append(more.bytes); }

    // A number in as few bytes as it needs.
    blob &varint(std::uint64_t value) {
        for (; value >= 0x80; value >>= 7) {
            bytes.push_back(static_cast<std::uint8_t>(value | 0x80));
        }
        bytes.push_back(static_cast<std::uint8_t>(value));
        return *this;
    }
    blob &tag(std::uint32_t field, unsigned wire_type) {
        return varint(static_cast<std::uint64_t>(field) << 3 | wire_type);
    }

    blob &number(std::uint32_t field, std::uint64_t value) { return tag(field, 0).varint(value); }
    blob &text(std::uint32_t field, const std::string &value) {
        return tag(field, 2).varint(value.size()).append(value);
    }
    blob &message(std::uint32_t field, const blob &content) {
        return tag(field, 2).varint(content.bytes.size()).add(content);
    }

    // The first `size` bytes.
    [[nodiscard]] blob cut(std::size_t size) const {
        return {{bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)}};
    }
};
