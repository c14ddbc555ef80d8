// See record_writer.h.
#include "perf-store/datasets/record_writer.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "perf-store/datasets/value_text.h"

namespace perf_store {

using parcel_notation::kind;
using generic_array = parcel_array<std::uint8_t>;

namespace {

template <class T>
T load(const std::uint8_t *from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

std::uint64_t load_unsigned(const std::uint8_t *from, std::uint32_t size) {
    std::uint64_t value = 0;
    std::memcpy(&value, from, size);
    return value;
}

void append_value(const std::uint8_t *from, const value_shape &shape, json_fields fields, std::string *out);
void append_shape(const std::uint8_t *from, const record_shape &shape, json_fields fields, std::string *out);

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

void append_unsigned(std::uint64_t value, std::string *out) {
    const bool quoted = value > LARGEST_JSON_NUMBER;
    if (quoted) {
        out->push_back('"');
    }
    append_number(value, out);
    if (quoted) {
        out->push_back('"');
    }
}

void append_name(std::string_view name, bool first, std::string *out) {
    out->append(first ? "\"" : ",\"");
    out->append(name);
    out->append("\":");
}

void append_text(const char *text, std::string *out) {
    if (text == nullptr) {
        out->append("null");
    } else if (!append_json_text(text, out)) {
        throw std::runtime_error("a text is not UTF-8");
    }
}

void append_elements(const std::uint8_t *elements, const value_shape &element, std::uint32_t count, json_fields fields,
                     std::string *out) {
    out->push_back('[');
    for (std::uint32_t i = 0; i < count; ++i) {
        if (i != 0) {
            out->push_back(',');
        }
        append_value(elements + std::size_t{i} * element.size, element, fields, out);
    }
    out->push_back(']');
}

void append_array(const std::uint8_t *from, const value_shape &shape, json_fields fields, std::string *out) {
    const auto array = load<generic_array>(from);
    if (shape.element->what != kind::opaque) {
        append_elements(array.elements, *shape.element, array.count, fields, out);
        return;
    }
    out->push_back('"');
    append_hexadecimal(array.elements, array.count, out);
    out->push_back('"');
}

// An optional address of kind none needs the union form: null would be an absent one.
void append_optional(const std::uint8_t *from, const value_shape &shape, json_fields fields, std::string *out) {
    const auto *value = load<const std::uint8_t *>(from);
    if (value == nullptr) {
        out->append("null");
        return;
    }
    const std::size_t begin = out->size();
    append_value(value, *shape.element, fields, out);
    if (out->compare(begin, std::string::npos, "null") == 0 && shape.element->what == kind::tagged_union) {
        out->resize(begin);
        out->append("{\"" + std::string(shape.element->discriminator) + "\":2}");
    }
}

void append_octets(const std::uint8_t *from, const value_shape &shape, std::string *out) {
    out->push_back('"');
    if (shape.what == kind::ipv4) {
        append_ipv4(from, out);
    } else if (shape.format == 's') {
        append_ipv6(from, out);
    } else {
        append_mac(from, out);
    }
    out->push_back('"');
}

void append_value(const std::uint8_t *from, const value_shape &shape, json_fields fields, std::string *out) {
    switch (shape.what) {
    case kind::u32:
    case kind::u64:
    case kind::u16:
    case kind::u8:
    case kind::opaque: append_unsigned(load_unsigned(from, shape.size), out); break;
    case kind::enumeration: append_number(load<std::int32_t>(from), out); break;
    case kind::boolean: out->append(load<std::uint32_t>(from) != 0 ? "true" : "false"); break;
    case kind::text: append_text(load<const char *>(from), out); break;
    case kind::ipv4:
    case kind::bytes: append_octets(from, shape, out); break;
    case kind::record:
    case kind::tagged_union: append_shape(from, shape, fields, out); break;
    case kind::optional: append_optional(from, shape, fields, out); break;
    case kind::array: append_array(from, shape, fields, out); break;
    case kind::fixed_array: append_elements(from, *shape.element, shape.count, fields, out); break;
    }
}

// Address text, null for none; false for a kind that has no text.
bool append_address(const std::uint8_t *from, const record_shape &shape, json_fields fields, std::string *out) {
    const auto value = load<std::uint32_t>(from);
    const field_shape *arm = shape.arm_of(value);
    if (arm == nullptr) {
        return false;
    }
    if (arm->type == nullptr) {
        out->append("null");
    } else {
        append_value(from + arm->offset, *arm->type, fields, out);
    }
    return true;
}

void append_union(const std::uint8_t *from, const record_shape &shape, json_fields fields, std::string *out) {
    if (is_address(shape) && append_address(from, shape, fields, out)) {
        return;
    }
    const auto value = load<std::uint32_t>(from);
    const field_shape *arm = shape.arm_of(value);
    out->push_back('{');
    append_name(shape.discriminator, true, out);
    append_number(value, out);
    if (arm != nullptr && arm->type != nullptr) {
        append_name(arm->name, false, out);
        append_value(from + arm->offset, *arm->type, fields, out);
    }
    out->push_back('}');
}

void append_shape(const std::uint8_t *from, const record_shape &shape, json_fields fields, std::string *out) {
    if (is_union(shape)) {
        append_union(from, shape, fields, out);
        return;
    }
    out->push_back('{');
    bool first = true;
    for (const field_shape &field : shape.fields) {
        if (fields == json_fields::set && is_zero(from + field.offset, *field.type)) {
            continue;
        }
        append_name(field.name, first, out);
        append_value(from + field.offset, *field.type, fields, out);
        first = false;
    }
    out->push_back('}');
}

}  // namespace

void append_record(const void *record, const record_shape &shape, json_fields fields, std::string *out) {
    append_shape(static_cast<const std::uint8_t *>(record), shape, fields, out);
}

}  // namespace perf_store
