// See proto_mirror.h.
#include "bench/proto_mirror.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include "platform/local/codec/parcel_notation.h"

namespace {

using google::protobuf::FieldDescriptor;
using google::protobuf::Message;
using parcel_notation::form;
using parcel_notation::kind;

using generic_array = parcel_array<std::uint8_t>;

template <class T>
T load(const std::uint8_t *from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

class filler {
public:
    explicit filler(const parcel_descriptor *descriptor) : descriptor_(descriptor) {
        if (!parcel_notation::parse(descriptor->schema, &schema_, nullptr)) {
            throw std::runtime_error("bad schema");
        }
    }

    void fill(parcel_notation::definition_index index, const std::uint8_t *record, Message *message) {
        const parcel_notation::definition &definition = schema_.definitions[index];
        const parcel_layout &layout = layout_of(index);
        const bool is_union = definition.what == form::choice;
        if (is_union) {
            message->GetReflection()->SetUInt32(message, field(*message, 1), load<std::uint32_t>(record));
        }
        for (std::size_t i = 0; i < definition.fields.size(); ++i) {
            const parcel_notation::field &each = definition.fields[i];
            const std::size_t at = i + (is_union ? 1 : 0);
            if (!each.empty && (!is_union || each.value == load<std::uint32_t>(record))) {
                fill_field(each.type, record + layout.offsets[at], message, field(*message, static_cast<int>(at) + 1));
            }
        }
    }

private:
    static const FieldDescriptor *field(const Message &message, int number) {
        return message.GetDescriptor()->FindFieldByNumber(number);
    }

    const parcel_layout &layout_of(parcel_notation::definition_index index) const {
        std::uint64_t at = 0;
        while (index != 0 && descriptor_->layout[++at].number != schema_.definitions[index].number) {
        }
        return descriptor_->layout[at];
    }

    std::size_t size_of(parcel_notation::type_index index) const {
        const parcel_notation::type &what = parcel_notation::resolve(schema_, index);
        return what.what == kind::reference ? layout_of(what.definition).size : parcel_notation::scalar_size(what);
    }

    static std::uint64_t number(const std::uint8_t *at, std::size_t size) {
        std::uint64_t value = 0;
        std::memcpy(&value, at, size);
        return value;
    }

    void fill_field(parcel_notation::type_index index, const std::uint8_t *at, Message *message,
                    const FieldDescriptor *field) {
        const parcel_notation::type &what = parcel_notation::resolve(schema_, index);
        const auto *reflection = message->GetReflection();
        switch (what.what) {
        case kind::text:
            if (const auto *text = load<const char *>(at); text != nullptr) {
                reflection->SetString(message, field, text);
            }
            break;
        case kind::optional:
            if (const auto *value = load<const std::uint8_t *>(at); value != nullptr) {
                fill_field(what.element, value, message, field);
            }
            break;
        case kind::array: {
            const auto array = load<generic_array>(at);
            for (std::uint32_t i = 0; i < array.count; ++i) {
                add_element(what.element, array.elements + i * size_of(what.element), message, field);
            }
            break;
        }
        case kind::reference: fill(what.definition, at, reflection->MutableMessage(message, field)); break;
        case kind::bytes:
            reflection->SetString(message, field, std::string(reinterpret_cast<const char *>(at), what.count));
            break;
        case kind::u64: reflection->SetUInt64(message, field, load<std::uint64_t>(at)); break;
        case kind::boolean: reflection->SetBool(message, field, load<std::uint32_t>(at) != 0); break;
        case kind::enumeration: reflection->SetInt32(message, field, load<std::int32_t>(at)); break;
        default:
            reflection->SetUInt32(message, field,
                                  static_cast<std::uint32_t>(number(at, parcel_notation::scalar_size(what))));
        }
    }

    void add_element(parcel_notation::type_index index, const std::uint8_t *at, Message *message,
                     const FieldDescriptor *field) {
        const parcel_notation::type &what = parcel_notation::resolve(schema_, index);
        const auto *reflection = message->GetReflection();
        if (what.what == kind::reference) {
            fill(what.definition, at, reflection->AddMessage(message, field));
        } else {
            reflection->AddUInt32(message, field,
                                  static_cast<std::uint32_t>(number(at, parcel_notation::scalar_size(what))));
        }
    }

    const parcel_descriptor *descriptor_;
    parcel_notation::schema schema_;
};

}  // namespace

void fill_mirror(const parcel_descriptor *descriptor, const void *record, Message *message) {
    filler(descriptor).fill(0, static_cast<const std::uint8_t *>(record), message);
}
