// SPDX-License-Identifier: Apache-2.0
// Walks through both descriptions of a record at once, without the codec's plans.
#include "fuzz/unknown_fields.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "platform/local/codec/parcel_notation.h"

namespace {

using parcel_notation::data_type;
using parcel_notation::field;
using parcel_notation::kind;
using parcel_notation::schema;

template <class Value>
Value load(const std::uint8_t *at) {
    Value value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

bool is_zero(const std::uint8_t *bytes, std::size_t size) {
    return std::all_of(bytes, bytes + size, [](std::uint8_t byte) { return byte == 0; });
}

const field *same_field(const data_type &of, const field &wanted) {
    const auto found = std::find_if(of.fields.begin(), of.fields.end(), [&](const field &each) {
        return each.name == wanted.name && each.value == wanted.value;
    });
    return found != of.fields.end() ? &*found : nullptr;
}

bool check(const data_type &writer, const data_type &reader, const std::uint8_t *bytes);

bool check_field(const data_type &writer, const field &known, const std::uint8_t *bytes) {
    const field *written = same_field(writer, known);
    if (known.type == nullptr) {
        return true;
    }
    return written != nullptr && written->type != nullptr ? check(*written->type, *known.type, bytes + known.offset)
                                                          : is_zero(bytes + known.offset, known.type->size);
}

bool check_elements(const data_type &writer, const data_type &reader, const std::uint8_t *first, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (!check(*writer.element, *reader.element, first + i * reader.element->size)) {
            return false;
        }
    }
    return true;
}

bool check(const data_type &writer, const data_type &reader, const std::uint8_t *bytes) {
    switch (reader.what) {
    case kind::record:
        return std::all_of(reader.fields.begin(), reader.fields.end(),
                           [&](const field &each) { return check_field(writer, each, bytes); });
    case kind::tagged_union: {
        const field *arm = reader.arm_of(load<std::uint32_t>(bytes));
        return arm == nullptr || check_field(writer, *arm, bytes);
    }
    case kind::optional: {
        const auto *element = load<const std::uint8_t *>(bytes);
        return element == nullptr || check(*writer.element, *reader.element, element);
    }
    case kind::array: {
        const auto array = load<parcel_array<std::uint8_t>>(bytes);
        return check_elements(writer, reader, array.elements, array.count);
    }
    case kind::fixed_array: return check_elements(writer, reader, bytes, reader.count);
    default: return true;
    }
}

const data_type &reader_type(const parcel_descriptor *descriptor) {
    static std::map<const parcel_descriptor *, schema> known;
    schema &own = known[descriptor];
    if (own.definitions.empty()) {
        static_cast<void>(parcel_notation::describe(descriptor, &own));
    }
    return *own.definitions.front();
}

}  // namespace

bool unknown_fields_are_zero(std::string_view writer_schema, const parcel_descriptor *descriptor,
                             const std::uint8_t *record) {
    schema writer;
    return !parcel_notation::parse(writer_schema, &writer) &&
           check(*writer.definitions.front(), reader_type(descriptor), record);
}
