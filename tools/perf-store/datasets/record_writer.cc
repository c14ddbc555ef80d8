// SPDX-License-Identifier: Apache-2.0
// Records to JSON: walks a record's shape, with no code per type.
#include <algorithm>
#include <cstring>

#include "perf-store/datasets/record_json.h"
#include "perf-store/datasets/record_shape.h"
#include "perf-store/datasets/value_text.h"
#include "platform/local/codec/parcel_wire.h"

namespace perf_store {

using parcel_notation::kind;
using parcel_wire::generic_array;
using parcel_wire::load;

namespace {

std::uint64_t load_unsigned(const std::uint8_t *from, std::uint32_t size) {
    std::uint64_t value = 0;
    std::memcpy(&value, from, size);
    return value;
}

bool is_zero(const std::uint8_t *from, const value_shape &shape);

bool is_zero_record(const std::uint8_t *from, const record_shape &shape) {
    if (is_union(shape)) {
        const field_shape *arm = load<std::uint32_t>(from) == 0 ? shape.arm_of(0) : nullptr;
        return load<std::uint32_t>(from) == 0 &&
               (arm == nullptr || arm->type == nullptr || is_zero(from + arm->offset, *arm->type));
    }
    return std::all_of(shape.fields.begin(), shape.fields.end(),
                       [&](const field_shape &field) { return is_zero(from + field.offset, *field.type); });
}

// Whether a value is zero, false, absent or empty. Field by field: the bytes between fields may be anything.
bool is_zero(const std::uint8_t *from, const value_shape &shape) {
    switch (shape.what) {
    case kind::record:
    case kind::tagged_union: return is_zero_record(from, shape);
    case kind::array: return load<generic_array>(from).count == 0;
    case kind::fixed_array:
        for (std::uint32_t i = 0; i < shape.count; ++i) {
            if (!is_zero(from + std::size_t{i} * shape.element->size, *shape.element)) {
                return false;
            }
        }
        return true;
    default: return *from == 0 && std::memcmp(from, from + 1, shape.size - 1) == 0;
    }
}

// Appends values to one text. The first text that is not UTF-8 is remembered, and the rest goes on.
class record_writer {
public:
    record_writer(json_fields fields, std::string *out) : fields_(fields), out_(*out) {}

    void append_shape(const std::uint8_t *from, const record_shape &shape);
    void append_value(const std::uint8_t *from, const value_shape &shape);
    [[nodiscard]] bool all_utf8() const { return all_utf8_; }

private:
    void append_name(std::string_view name, bool first);
    void append_unsigned(std::uint64_t value);
    void append_text(const char *text);
    void append_optional(const std::uint8_t *from, const value_shape &shape);
    void append_octets(const std::uint8_t *from, const value_shape &shape);
    void append_array(const std::uint8_t *from, const value_shape &shape);
    void append_elements(const std::uint8_t *elements, const value_shape &element, std::uint32_t count);
    void append_union(const std::uint8_t *from, const record_shape &shape);
    [[nodiscard]] bool append_address(const std::uint8_t *from, const record_shape &shape);

    json_fields fields_;
    std::string &out_;
    bool all_utf8_ = true;
};

void record_writer::append_shape(const std::uint8_t *from, const record_shape &shape) {
    if (is_union(shape)) {
        append_union(from, shape);
        return;
    }
    out_.push_back('{');
    bool first = true;
    for (const field_shape &field : shape.fields) {
        if (fields_ == json_fields::set && is_zero(from + field.offset, *field.type)) {
            continue;
        }
        append_name(field.name, first);
        append_value(from + field.offset, *field.type);
        first = false;
    }
    out_.push_back('}');
}

void record_writer::append_name(std::string_view name, bool first) {
    out_.append(first ? "\"" : ",\"");
    out_.append(name);
    out_.append("\":");
}

void record_writer::append_unsigned(std::uint64_t value) {
    const bool quoted = value > LARGEST_JSON_NUMBER;
    if (quoted) {
        out_.push_back('"');
    }
    append_number(value, &out_);
    if (quoted) {
        out_.push_back('"');
    }
}

void record_writer::append_text(const char *text) {
    if (text == nullptr) {
        out_.append("null");
    } else if (!append_json_text(text, &out_)) {
        all_utf8_ = false;
    }
}

void record_writer::append_value(const std::uint8_t *from, const value_shape &shape) {
    switch (shape.what) {
    case kind::u32:
    case kind::u64:
    case kind::u16:
    case kind::u8:
    case kind::opaque: append_unsigned(load_unsigned(from, shape.size)); break;
    case kind::enumeration: append_number(load<std::int32_t>(from), &out_); break;
    case kind::boolean: out_.append(load<std::uint32_t>(from) != 0 ? "true" : "false"); break;
    case kind::text: append_text(load<const char *>(from)); break;
    case kind::ipv4:
    case kind::bytes: append_octets(from, shape); break;
    case kind::record:
    case kind::tagged_union: append_shape(from, shape); break;
    case kind::optional: append_optional(from, shape); break;
    case kind::array: append_array(from, shape); break;
    case kind::fixed_array: append_elements(from, *shape.element, shape.count); break;
    }
}

// An optional address of kind none needs the form of a union: null would be an absent one.
void record_writer::append_optional(const std::uint8_t *from, const value_shape &shape) {
    const auto *value = load<const std::uint8_t *>(from);
    if (value == nullptr) {
        out_.append("null");
        return;
    }
    const std::size_t begin = out_.size();
    append_value(value, *shape.element);
    if (out_.compare(begin, std::string::npos, "null") == 0 && shape.element->what == kind::tagged_union) {
        out_.resize(begin);
        out_.append("{\"" + std::string(shape.element->discriminator) + "\":2}");
    }
}

void record_writer::append_octets(const std::uint8_t *from, const value_shape &shape) {
    out_.push_back('"');
    if (shape.what == kind::ipv4) {
        append_ipv4(from, &out_);
    } else if (shape.format == 's') {
        append_ipv6(from, &out_);
    } else {
        append_mac(from, &out_);
    }
    out_.push_back('"');
}

void record_writer::append_array(const std::uint8_t *from, const value_shape &shape) {
    const auto array = load<generic_array>(from);
    if (shape.element->what != kind::opaque) {
        append_elements(array.elements, *shape.element, array.count);
        return;
    }
    out_.push_back('"');
    append_hexadecimal(array.elements, array.count, &out_);
    out_.push_back('"');
}

void record_writer::append_elements(const std::uint8_t *elements, const value_shape &element, std::uint32_t count) {
    out_.push_back('[');
    for (std::uint32_t i = 0; i < count; ++i) {
        if (i != 0) {
            out_.push_back(',');
        }
        append_value(elements + std::size_t{i} * element.size, element);
    }
    out_.push_back(']');
}

void record_writer::append_union(const std::uint8_t *from, const record_shape &shape) {
    if (is_address(shape) && append_address(from, shape)) {
        return;
    }
    const auto value = load<std::uint32_t>(from);
    const field_shape *arm = shape.arm_of(value);
    out_.push_back('{');
    append_name(shape.discriminator, true);
    append_number(value, &out_);
    if (arm != nullptr && arm->type != nullptr) {
        append_name(arm->name, false);
        append_value(from + arm->offset, *arm->type);
    }
    out_.push_back('}');
}

// Address text, null for none; false for a kind that has no text.
bool record_writer::append_address(const std::uint8_t *from, const record_shape &shape) {
    const field_shape *arm = shape.arm_of(load<std::uint32_t>(from));
    if (arm == nullptr) {
        return false;
    }
    if (arm->type == nullptr) {
        out_.append("null");
    } else {
        append_value(from + arm->offset, *arm->type);
    }
    return true;
}

}  // namespace

pm_error append_record(const void *record, const parcel_descriptor *type, json_fields fields, std::string *out) {
    return append_value(static_cast<const std::uint8_t *>(record), shape_of(type).record(), fields, out);
}

pm_error append_value(const std::uint8_t *value, const value_shape &shape, json_fields fields, std::string *out) {
    const std::size_t begin = out->size();
    record_writer writer(fields, out);
    writer.append_value(value, shape);
    if (!writer.all_utf8()) {
        out->resize(begin);
        return pm_error("a text is not UTF-8");
    }
    return {};
}

}  // namespace perf_store
