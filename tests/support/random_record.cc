// SPDX-License-Identifier: Apache-2.0
// Walks descriptions of record types: to fill a structure at random, and to compare two.
#include "tests/support/random_record.h"

#include <cstring>
#include <stdexcept>

#include "platform/local/codec/parcel_wire.h"

using parcel_notation::data_type;
using parcel_notation::field;
using parcel_notation::kind;
using parcel_wire::generic_array;
using parcel_wire::load;
using parcel_wire::put;

namespace {

constexpr int MAX_DEPTH = 6;                          // of arrays and optionals
constexpr std::uint32_t UNLISTED_DISCRIMINATOR = 77;  // no union lists it

// "." for a difference of the value itself, else a member path; empty for none.
class comparison {
public:
    std::string of_compound(const data_type &type, const std::uint8_t *a, const std::uint8_t *b) {
        const bool is_union = type.what == kind::tagged_union;
        const auto value = load<std::uint32_t>(a);
        if (is_union && value != load<std::uint32_t>(b)) {
            return std::string(type.discriminator);
        }
        for (const field &each : type.fields) {
            if (each.type == nullptr || (is_union && each.value != value)) {
                continue;
            }
            const std::string inner = of_type(*each.type, a + each.offset, b + each.offset);
            if (!inner.empty()) {
                return std::string(each.name) + (inner == "." ? "" : "." + inner);
            }
        }
        return "";
    }

private:
    std::string of_type(const data_type &type, const std::uint8_t *a, const std::uint8_t *b) {
        switch (type.what) {
        case kind::text: return same_text(load<const char *>(a), load<const char *>(b)) ? "" : ".";
        case kind::optional: {
            const auto *left = load<const std::uint8_t *>(a);
            const auto *right = load<const std::uint8_t *>(b);
            if (left == nullptr || right == nullptr) {
                return left == right ? "" : ".";
            }
            return of_type(*type.element, left, right);
        }
        case kind::array: {
            const auto left = load<generic_array>(a);
            const auto right = load<generic_array>(b);
            return left.count != right.count ? "."
                                             : of_elements(*type.element, left.elements, right.elements, left.count);
        }
        case kind::fixed_array: return of_elements(*type.element, a, b, type.count);
        case kind::record:
        case kind::tagged_union: return of_compound(type, a, b);
        default: return std::memcmp(a, b, type.size) == 0 ? "" : ".";
        }
    }

    std::string of_elements(const data_type &element, const std::uint8_t *a, const std::uint8_t *b,
                            std::uint32_t count) {
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::string inner =
                of_type(element, a + std::size_t{i} * element.size, b + std::size_t{i} * element.size);
            if (!inner.empty()) {
                return "[" + std::to_string(i) + "]" + (inner == "." ? "" : inner);
            }
        }
        return "";
    }

    static bool same_text(const char *a, const char *b) {
        return a == nullptr || b == nullptr ? a == b : std::strcmp(a, b) == 0;
    }
};

}  // namespace

record_type::record_type(const parcel_descriptor *descriptor) {
    if (const pm_error error = parcel_notation::describe(descriptor, &schema_)) {
        throw std::runtime_error(error.text());
    }
}

random_record::random_record(const parcel_descriptor *descriptor, std::uint64_t seed)
    : type_(descriptor), random_(seed), data_(allocate(type_.record().size)) {
    fill(type_.record(), static_cast<std::uint8_t *>(data_), 0);
}

void *random_record::allocate(std::size_t size) {
    blocks_.push_back(std::make_unique<std::uint64_t[]>(size / sizeof(std::uint64_t) + 1));
    return blocks_.back().get();
}

void random_record::fill_union(const data_type &type, std::uint8_t *at, int depth) {
    const std::size_t chosen = below(type.fields.size() + 1);
    if (chosen == type.fields.size()) {
        put(at, UNLISTED_DISCRIMINATOR);
        return;
    }
    const field &arm = type.fields[chosen];
    put(at, arm.value);
    if (arm.type != nullptr) {
        fill(*arm.type, at + arm.offset, depth);
    }
}

void random_record::fill(const data_type &type, std::uint8_t *at, int depth) {
    switch (type.what) {
    case kind::boolean: put<std::uint32_t>(at, static_cast<std::uint32_t>(below(2))); break;
    case kind::text:
        if (const std::uint64_t length = below(20); length > 0) {  // 0: absent
            auto *text = static_cast<char *>(allocate(length));
            std::memset(text, static_cast<int>('a' + below(26)), length - 1);
            put(at, text);
        }
        break;
    case kind::optional:
        if (depth < MAX_DEPTH && below(2) == 1) {
            auto *value = static_cast<std::uint8_t *>(allocate(type.element->size));
            fill(*type.element, value, depth + 1);
            put(at, value);
        }
        break;
    case kind::array:
        if (const auto count = static_cast<std::uint32_t>(below(4)); depth < MAX_DEPTH && count > 0) {
            const std::size_t size = type.element->size;
            auto *elements = static_cast<std::uint8_t *>(allocate(count * size));
            for (std::uint32_t i = 0; i < count; ++i) {
                fill(*type.element, elements + i * size, depth + 1);
            }
            put(at, generic_array{count, elements});
        }
        break;
    case kind::fixed_array:
        for (std::uint32_t i = 0; i < type.count; ++i) {
            fill(*type.element, at + std::size_t{i} * type.element->size, depth);
        }
        break;
    case kind::record:
        for (const field &each : type.fields) {
            fill(*each.type, at + each.offset, depth);
        }
        break;
    case kind::tagged_union: fill_union(type, at, depth); break;
    default:
        for (std::size_t i = 0; i < type.size; ++i) {
            at[i] = static_cast<std::uint8_t>(random_() >> below(57));
        }
    }
}

std::string first_difference(const parcel_descriptor *descriptor, const void *a, const void *b) {
    const record_type type(descriptor);
    return comparison().of_compound(type.record(), static_cast<const std::uint8_t *>(a),
                                    static_cast<const std::uint8_t *>(b));
}
