// SPDX-License-Identifier: Apache-2.0
// Walks a document's nodes and a record's shape side by side.
#include "perf-store/datasets/record_reader.h"

#include <bitset>
#include <cstring>

#include "perf-store/datasets/message_text.h"
#include "perf-store/datasets/nearest_word.h"
#include "perf-store/datasets/value_bytes.h"
#include "perf-store/datasets/value_text.h"

namespace perf_store {

using parcel_notation::kind;

namespace {

constexpr std::uint32_t MAX_DEPTH = 256;  // of records within one another; the codec's own limit is lower

}  // namespace

pm_error record_reader::read(const json_node &node, const parcel_descriptor *type, const void **record) {
    const record_shape &shape = shape_of(type).record();
    depth_ = 0;
    std::uint8_t *bytes = memory_->allocate(shape.size);
    *record = bytes;
    return read_record(node, shape, bytes);
}

pm_error record_reader::require(const json_node &node, json_kind wanted) const {
    if (node.kind == wanted) {
        return {};
    }
    return refuse(node, std::string("expected ") + json_kind_name(wanted) + ", found " + json_kind_name(node.kind));
}

pm_error record_reader::out_of_range(const json_node &node, std::string_view type) const {
    return refuse(node, excerpt(node.text) + " is out of range for " + std::string(type));
}

// The integer of a number or of text in C notation, as 64 bits.
pm_error record_reader::read_integer(const json_node &node, std::string_view type, std::uint64_t *value,
                                     bool *negative) const {
    if (node.kind != json_kind::number && node.kind != json_kind::text) {
        return refuse(node, std::string("expected a number, found ") + json_kind_name(node.kind));
    }
    switch (parse_integer(node.text, value, negative)) {
    case number_result::ok: return {};
    case number_result::out_of_range: return out_of_range(node, type);
    case number_result::not_a_number: break;
    }
    return refuse(node, (node.text.empty() ? "empty text" : excerpt(node.text)) + " is not an integer");
}

pm_error record_reader::read_unsigned(const json_node &node, std::uint64_t largest, std::string_view type,
                                      std::uint64_t *value) {
    bool negative = false;
    if (pm_error error = read_integer(node, type, value, &negative)) {
        return error;
    }
    return negative || *value > largest ? out_of_range(node, type) : pm_error();
}

pm_error record_reader::read_enumeration(const json_node &node, const value_shape &shape, std::uint8_t *to) {
    bool negative = false;
    std::uint64_t value = 0;
    if (pm_error error = read_integer(node, shape.notation, &value, &negative)) {
        return error;
    }
    if (!fits_32_bits(value, negative, MAX_ENUMERATOR)) {
        return out_of_range(node, shape.notation);
    }
    put(to, static_cast<std::int32_t>(value));
    return {};
}

pm_error record_reader::read_boolean(const json_node &node, bool *value) {
    *value = node.value;
    return require(node, json_kind::boolean);
}

pm_error record_reader::read_text(const json_node &node, std::string_view *text) {
    if (pm_error error = require(node, json_kind::text)) {
        return error;
    }
    *text = node.text;
    return text->find('\0') == std::string_view::npos ? pm_error() : refuse(node, "text holds a zero byte");
}

pm_error record_reader::keep_text(const json_node &node, const char **text) {
    std::string_view view;
    if (pm_error error = read_text(node, &view)) {
        return error;
    }
    *text = memory_->keep_text(view);
    return {};
}

pm_error record_reader::read_record(const json_node &node, const record_shape &shape, std::uint8_t *to) {
    if (is_union(shape)) {
        return read_union(node, shape, to);
    }
    if (pm_error error = require(node, json_kind::object)) {
        return error;
    }
    if (++depth_ > MAX_DEPTH) {
        return refuse(node, "nested too deeply");
    }
    std::bitset<MAX_FIELDS> seen;
    std::size_t expected = 0;  // members mostly come in schema order
    const json_node *member = document_->inside(node);
    for (std::uint32_t i = 0; i < node.count; ++i) {
        const json_node &value = member[1];
        path_->enter(member->text);
        if (expected >= shape.fields.size() || shape.fields[expected].name != member->text) {
            const field_shape *found = shape.find(member->text, expected);
            if (found == nullptr) {
                return refuse(*member,
                              "unknown field" + did_you_mean(member->text, shape.fields,
                                                             [](const field_shape &each) { return each.name; }));
            }
            expected = static_cast<std::size_t>(found - shape.fields.data());
        }
        if (seen[expected]) {
            return refuse(*member, "given twice");
        }
        seen[expected] = true;
        const field_shape &field = shape.fields[expected++];
        if (pm_error error = read_value(value, *field.type, to + field.offset)) {
            return error;
        }
        path_->leave();
        member = document_->after(value);
    }
    --depth_;
    return {};
}

// An object with the discriminator and the arm that it selects.
pm_error record_reader::read_union(const json_node &node, const record_shape &shape, std::uint8_t *to) {
    if (is_address(shape) && node.kind != json_kind::object) {
        return read_address(node, shape, to);
    }
    if (pm_error error = require(node, json_kind::object)) {
        return error;
    }
    const json_node *discriminator = nullptr;  // the members
    const json_node *content = nullptr;
    const json_node *member = document_->inside(node);
    for (std::uint32_t i = 0; i < node.count; ++i) {
        const bool selects = member->text == shape.discriminator;
        const json_node *&place = selects ? discriminator : content;
        path_->enter(member->text);
        if (!selects && (member->text.empty() || shape.find(member->text) == nullptr)) {
            return refuse(*member, "unknown field");
        }
        if (place != nullptr) {
            return refuse(*member, selects ? "given twice" : "a union has one arm only");
        }
        path_->leave();
        place = member;
        member = document_->after(member[1]);
    }
    if (discriminator != nullptr) {
        if (pm_error error = read_discriminator(discriminator[1], shape, to)) {
            return error;
        }
    }
    if (content == nullptr) {
        return {};
    }
    path_->enter(content->text);
    if (discriminator == nullptr) {
        return refuse(*content, "needs " + std::string(shape.discriminator) + " beside it");
    }
    std::uint32_t value = 0;
    std::memcpy(&value, to, sizeof value);
    const field_shape *arm = shape.arm_of(value);
    if (arm == nullptr || arm->name != content->text) {
        return refuse(*content, "is not the arm that " + std::string(shape.discriminator) + " " +
                                    std::string(discriminator[1].text) + " selects");
    }
    if (pm_error error = read_value(content[1], *arm->type, to + arm->offset)) {
        return error;
    }
    path_->leave();
    return {};
}

pm_error record_reader::read_discriminator(const json_node &node, const record_shape &shape, std::uint8_t *to) {
    path_->enter(shape.discriminator);
    bool negative = false;
    std::uint64_t value = 0;
    if (pm_error error = read_integer(node, "D", &value, &negative)) {
        return error;
    }
    if (!fits_32_bits(value, negative, MAX_U32)) {
        return out_of_range(node, "D");
    }
    put(to, static_cast<std::uint32_t>(value));
    path_->leave();
    return {};
}

pm_error record_reader::read_address(const json_node &node, const record_shape &shape, std::uint8_t *to) {
    if (node.kind == json_kind::null) {
        put(to, NONE_VALUE);
        return {};
    }
    std::string_view text;
    if (pm_error error = read_text(node, &text)) {
        return error;
    }
    return put_address(text, shape, to) ? pm_error() : refuse(node, excerpt(text) + " is not an address");
}

pm_error record_reader::read_value(const json_node &node, const value_shape &shape, std::uint8_t *to) {
    switch (shape.what) {
    case kind::u32:
    case kind::u64:
    case kind::u16:
    case kind::u8:
    case kind::opaque: {
        std::uint64_t value = 0;
        pm_error error = read_unsigned(node, largest_of(shape.size), shape.notation, &value);
        put_unsigned(to, value, shape.size);
        return error;
    }
    case kind::enumeration: return read_enumeration(node, shape, to);
    case kind::boolean: {
        bool value = false;
        pm_error error = read_boolean(node, &value);
        put<std::uint32_t>(to, value ? 1 : 0);
        return error;
    }
    case kind::text: {
        const char *text = nullptr;
        pm_error error = node.kind == json_kind::null ? pm_error() : keep_text(node, &text);
        put(to, text);
        return error;
    }
    case kind::ipv4:
    case kind::bytes: return read_octets(node, shape, to);
    case kind::record:
    case kind::tagged_union: return read_record(node, shape, to);
    case kind::optional: return read_optional(node, shape, to);
    case kind::array: return read_array(node, shape, to);
    case kind::fixed_array: return read_fixed_array(node, shape, to);
    }
    return {};
}

pm_error record_reader::read_octets(const json_node &node, const value_shape &shape, std::uint8_t *to) {
    std::string_view text;
    if (pm_error error = read_text(node, &text)) {
        return error;
    }
    if (put_octets(text, shape, to)) {
        return {};
    }
    const char *const what = shape.what == kind::ipv4 ? "an IPv4 address"
                             : shape.format == 's'    ? "an IPv6 address"
                                                      : "a MAC address";
    return refuse(node, excerpt(text) + " is not " + what);
}

pm_error record_reader::read_optional(const json_node &node, const value_shape &shape, std::uint8_t *to) {
    if (node.kind == json_kind::null) {
        return {};
    }
    std::uint8_t *value = memory_->allocate(shape.element->size);
    put(to, value);
    return read_value(node, *shape.element, value);
}

pm_error record_reader::read_array(const json_node &node, const value_shape &shape, std::uint8_t *to) {
    if (shape.element->what == kind::opaque) {
        return read_opaque(node, to);
    }
    if (pm_error error = require(node, json_kind::array)) {
        return error;
    }
    if (node.count == 0) {
        return {};
    }
    std::uint8_t *elements = memory_->allocate(std::size_t{node.count} * shape.element->size);
    put(to, parcel_array<std::uint8_t>{node.count, elements});
    return read_elements(node, *shape.element, elements);
}

pm_error record_reader::read_fixed_array(const json_node &node, const value_shape &shape, std::uint8_t *to) {
    if (pm_error error = require(node, json_kind::array)) {
        return error;
    }
    if (node.count > shape.count) {
        return refuse(node, std::to_string(node.count) + " elements are too many for " + std::string(shape.notation));
    }
    return read_elements(node, *shape.element, to);
}

// A buffer of bytes, written as hexadecimal digits.
pm_error record_reader::read_opaque(const json_node &node, std::uint8_t *to) {
    std::string_view text;
    if (pm_error error = read_text(node, &text)) {
        return error;
    }
    if (text.empty()) {
        return {};
    }
    std::uint8_t *bytes = memory_->allocate(text.size() / 2 + 1);
    if (!parse_hexadecimal(text, bytes)) {
        return refuse(node, "expected an even number of hexadecimal digits");
    }
    put(to, parcel_array<std::uint8_t>{static_cast<std::uint32_t>(text.size() / 2), bytes});
    return {};
}

pm_error record_reader::read_elements(const json_node &node, const value_shape &element, std::uint8_t *to) {
    const json_node *each = document_->inside(node);
    for (std::uint32_t i = 0; i < node.count; ++i) {
        path_->enter(i);
        if (pm_error error = read_value(*each, element, to + std::size_t{i} * element.size)) {
            return error;
        }
        path_->leave();
        each = document_->after(*each);
    }
    return {};
}

}  // namespace perf_store
