// SPDX-License-Identifier: Apache-2.0
// Fills messages from records by walking the description of the record type.
#include "bench/proto_mirror.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include "platform/local/codec/parcel_notation.h"
#include "platform/local/codec/parcel_wire.h"

namespace {

using google::protobuf::FieldDescriptor;
using google::protobuf::Message;
using parcel_notation::data_type;
using parcel_notation::kind;
using parcel_wire::generic_array;
using parcel_wire::load;

class filler {
public:
    static void fill(const data_type &type, const std::uint8_t *record, Message *message) {
        const bool is_union = type.what == kind::tagged_union;
        int at = 1;
        if (is_union) {
            message->GetReflection()->SetUInt32(message, field(*message, at++), load<std::uint32_t>(record));
        }
        for (const parcel_notation::field &each : type.fields) {
            if (each.type != nullptr && (!is_union || each.value == load<std::uint32_t>(record))) {
                fill_field(*each.type, record + each.offset, message, field(*message, at));
            }
            ++at;
        }
    }

private:
    static const FieldDescriptor *field(const Message &message, int number) {
        return message.GetDescriptor()->FindFieldByNumber(number);
    }

    static std::uint64_t number(const std::uint8_t *at, std::size_t size) {
        std::uint64_t value = 0;
        std::memcpy(&value, at, size);
        return value;
    }

    static void fill_field(const data_type &type, const std::uint8_t *at, Message *message,
                           const FieldDescriptor *field) {
        const auto *reflection = message->GetReflection();
        switch (type.what) {
        case kind::text:
            if (const auto *text = load<const char *>(at); text != nullptr) {
                reflection->SetString(message, field, text);
            }
            break;
        case kind::optional:
            if (const auto *value = load<const std::uint8_t *>(at); value != nullptr) {
                fill_field(*type.element, value, message, field);
            }
            break;
        case kind::array: {
            const auto array = load<generic_array>(at);
            for (std::uint32_t i = 0; i < array.count; ++i) {
                add_element(*type.element, array.elements + std::size_t{i} * type.element->size, message, field);
            }
            break;
        }
        case kind::record:
        case kind::tagged_union: fill(type, at, reflection->MutableMessage(message, field)); break;
        case kind::bytes:
            reflection->SetString(message, field, std::string(reinterpret_cast<const char *>(at), type.count));
            break;
        case kind::u64: reflection->SetUInt64(message, field, load<std::uint64_t>(at)); break;
        case kind::boolean: reflection->SetBool(message, field, load<std::uint32_t>(at) != 0); break;
        case kind::enumeration: reflection->SetInt32(message, field, load<std::int32_t>(at)); break;
        default: reflection->SetUInt32(message, field, static_cast<std::uint32_t>(number(at, type.size)));
        }
    }

    static void add_element(const data_type &type, const std::uint8_t *at, Message *message,
                            const FieldDescriptor *field) {
        const auto *reflection = message->GetReflection();
        if (!parcel_notation::is_scalar(type.what)) {
            fill(type, at, reflection->AddMessage(message, field));
        } else {
            reflection->AddUInt32(message, field, static_cast<std::uint32_t>(number(at, type.size)));
        }
    }
};

}  // namespace

void fill_mirror(const parcel_descriptor *descriptor, const void *record, Message *message) {
    parcel_notation::schema schema;
    if (parcel_notation::describe(descriptor, &schema)) {
        throw std::runtime_error("bad schema");
    }
    filler::fill(*schema.definitions.front(), static_cast<const std::uint8_t *>(record), message);
}
