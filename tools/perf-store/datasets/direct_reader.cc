// SPDX-License-Identifier: Apache-2.0
// Walks a text and a record's shape side by side.
#include "perf-store/datasets/direct_reader.h"

#include <algorithm>
#include <bitset>
#include <cstring>

#include "perf-store/datasets/value_bytes.h"
#include "perf-store/datasets/value_text.h"

namespace perf_store {

using parcel_notation::kind;

namespace {

constexpr std::uint32_t MAX_DEPTH = 64;       // of records within one another
constexpr std::size_t FIRST_ELEMENTS = 1024;  // bytes that an array has room for before it has to move

}  // namespace

bool direct_reader::read(const parcel_descriptor *type, const void **record) {
    const record_shape &shape = shape_of(type).record();
    depth_ = 0;
    std::uint8_t *bytes = memory_.allocate(shape.size);
    *record = bytes;
    return read_record(shape, bytes);
}

bool direct_reader::read_record(const record_shape &shape, std::uint8_t *to) {
    if (++depth_ > MAX_DEPTH) {
        return false;
    }
    const bool good = is_union(shape) ? read_union(shape, to) : read_fields(shape, to);
    --depth_;
    return good;
}

bool direct_reader::read_fields(const record_shape &shape, std::uint8_t *to) {
    if (!from_.take('{')) {
        return false;
    }
    if (from_.take('}')) {
        return true;
    }
    std::bitset<MAX_FIELDS> seen;
    std::size_t expected = 0;  // members mostly come in schema order
    do {
        const field_shape *const field = take_field_name(shape, expected);
        if (field == nullptr) {
            return false;
        }
        const auto number = static_cast<std::size_t>(field - shape.fields.data());
        if (seen[number] || !read_value(*field->type, to + field->offset)) {
            return false;
        }
        seen[number] = true;
        expected = number + 1;
    } while (from_.take(','));
    return from_.take('}');
}

const field_shape *direct_reader::take_field_name(const record_shape &shape, std::size_t expected) {
    if (expected < shape.fields.size() && from_.take_name(shape.fields[expected].name)) {
        return &shape.fields[expected];
    }
    std::string_view name;
    return from_.take_text(&name) && from_.take(':') ? shape.find(name, expected) : nullptr;
}

// An object with the discriminator and the arm that it selects.
bool direct_reader::read_union(const record_shape &shape, std::uint8_t *to) {
    if (is_address(shape) && from_.next() != '{') {
        return read_address(shape, to);
    }
    bool negative = false;
    std::uint64_t value = 0;
    if (!from_.take('{') || !from_.take_name(shape.discriminator) || !from_.take_integer(&value, &negative) ||
        !fits_32_bits(value, negative, MAX_U32)) {
        return false;
    }
    const auto selector = static_cast<std::uint32_t>(value);
    put(to, selector);
    if (from_.take(',')) {
        const field_shape *const arm = shape.arm_of(selector);
        if (arm == nullptr || arm->name.empty() || !from_.take_name(arm->name) ||
            !read_value(*arm->type, to + arm->offset)) {
            return false;
        }
    }
    return from_.take('}');
}

bool direct_reader::read_address(const record_shape &shape, std::uint8_t *to) {
    if (from_.take_word("null")) {
        put(to, NONE_VALUE);
        return true;
    }
    std::string_view text;
    return from_.take_text(&text) && put_address(text, shape, to);
}

bool direct_reader::read_value(const value_shape &shape, std::uint8_t *to) {
    switch (shape.what) {
    case kind::u32:
    case kind::u64:
    case kind::u16:
    case kind::u8:
    case kind::opaque: return read_number(shape, to);
    case kind::enumeration: return read_enumeration(to);
    case kind::boolean: return read_boolean(to);
    case kind::text: return read_text(to);
    case kind::ipv4:
    case kind::bytes: return read_octets(shape, to);
    case kind::record:
    case kind::tagged_union: return read_record(shape, to);
    case kind::optional: return read_optional(shape, to);
    case kind::array: return read_array(shape, to);
    case kind::fixed_array: return read_fixed_array(shape, to);
    }
    return false;
}

bool direct_reader::read_number(const value_shape &shape, std::uint8_t *to) {
    std::uint64_t value = 0;
    if (!from_.take_unsigned(largest_of(shape.size), &value)) {
        return false;
    }
    put_unsigned(to, value, shape.size);
    return true;
}

bool direct_reader::read_enumeration(std::uint8_t *to) {
    bool negative = false;
    std::uint64_t value = 0;
    if (!from_.take_integer(&value, &negative) || !fits_32_bits(value, negative, MAX_ENUMERATOR)) {
        return false;
    }
    put(to, static_cast<std::int32_t>(value));
    return true;
}

bool direct_reader::read_boolean(std::uint8_t *to) {
    const bool yes = from_.take_word("true");
    put<std::uint32_t>(to, yes ? 1 : 0);
    return yes || from_.take_word("false");
}

bool direct_reader::keep_text(const char **text) {
    std::string_view view;
    if (!from_.take_text(&view)) {
        return false;
    }
    *text = memory_.keep_text(view);
    return true;
}

bool direct_reader::read_text(std::uint8_t *to) {
    const char *text = nullptr;
    if (!from_.take_word("null") && !keep_text(&text)) {
        return false;
    }
    put(to, text);
    return true;
}

bool direct_reader::read_octets(const value_shape &shape, std::uint8_t *to) {
    std::string_view text;
    return from_.take_text(&text) && put_octets(text, shape, to);
}

bool direct_reader::read_optional(const value_shape &shape, std::uint8_t *to) {
    if (from_.take_word("null")) {
        return true;
    }
    std::uint8_t *value = memory_.allocate(shape.element->size);
    put(to, value);
    return read_value(*shape.element, value);
}

// How many elements there are is known at the end: they move when there are more than there is room for.
bool direct_reader::read_array(const value_shape &shape, std::uint8_t *to) {
    const value_shape &element = *shape.element;
    if (element.what == kind::opaque) {
        return read_opaque(to);
    }
    if (!from_.take('[')) {
        return false;
    }
    if (from_.take(']')) {
        return true;
    }
    std::size_t room = std::max<std::size_t>(FIRST_ELEMENTS / element.size, 1);
    std::uint8_t *elements = memory_.allocate(room * element.size);
    std::uint32_t count = 0;
    do {
        if (count == room) {
            std::uint8_t *const larger = memory_.allocate(2 * room * element.size);
            std::memcpy(larger, elements, room * element.size);
            elements = larger;
            room *= 2;
        }
        if (!read_value(element, elements + std::size_t{count} * element.size)) {
            return false;
        }
        ++count;
    } while (from_.take(','));
    put(to, parcel_array<std::uint8_t>{count, elements});
    return from_.take(']');
}

bool direct_reader::read_fixed_array(const value_shape &shape, std::uint8_t *to) {
    if (!from_.take('[')) {
        return false;
    }
    if (from_.take(']')) {
        return true;
    }
    std::uint32_t count = 0;
    do {
        if (count == shape.count || !read_value(*shape.element, to + std::size_t{count} * shape.element->size)) {
            return false;
        }
        ++count;
    } while (from_.take(','));
    return from_.take(']');
}

// A buffer of bytes, written as hexadecimal digits.
bool direct_reader::read_opaque(std::uint8_t *to) {
    std::string_view text;
    if (!from_.take_text(&text)) {
        return false;
    }
    if (text.empty()) {
        return true;
    }
    std::uint8_t *bytes = memory_.allocate(text.size() / 2 + 1);
    put(to, parcel_array<std::uint8_t>{static_cast<std::uint32_t>(text.size() / 2), bytes});
    return parse_hexadecimal(text, bytes);
}

}  // namespace perf_store
