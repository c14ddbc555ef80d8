// See record_shape.h.
#include "perf-store/datasets/record_shape.h"

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace perf_store {

using parcel_notation::form;
using parcel_notation::kind;

namespace {

// The union that every address of a record is: IPv4, IPv6 or none, selected by its kind.
constexpr char ADDRESS_DISCRIMINATOR[] = "IPAddressType";

}  // namespace

const field_shape *record_shape::arm_of(std::uint32_t value) const {
    const auto found =
        std::find_if(fields.begin(), fields.end(), [&](const field_shape &each) { return each.value == value; });
    return found != fields.end() ? &*found : nullptr;
}

type_shape::type_shape(const parcel_descriptor *descriptor) : descriptor_(descriptor) {
    std::string problem;
    if (!parcel_notation::parse(descriptor->schema, &schema_, &problem)) {
        throw std::logic_error(std::string(descriptor->name) + ": " + problem);
    }
    records_.resize(schema_.definitions.size());
    for (parcel_notation::definition_index i = 0; i < schema_.definitions.size(); ++i) {
        fill(i);
    }
}

const parcel_layout &type_shape::layout_of(parcel_notation::definition_index index) const {
    std::uint64_t at = 0;
    while (index != 0 && descriptor_->layout[++at].number != schema_.definitions[index].number) {
    }
    return descriptor_->layout[at];
}

void type_shape::fill(parcel_notation::definition_index index) {
    const parcel_notation::definition &definition = schema_.definitions[index];
    if (definition.what == form::scalar) {
        return;
    }
    const parcel_layout &layout = layout_of(index);
    record_shape &record = records_[index];
    record.is_union = definition.what == form::choice;
    record.is_address = definition.discriminator == ADDRESS_DISCRIMINATOR;
    record.size = static_cast<std::uint32_t>(layout.size);
    record.discriminator = definition.discriminator;
    for (std::size_t i = 0; i < definition.fields.size(); ++i) {
        const parcel_notation::field &field = definition.fields[i];
        field_shape next;
        next.name = field.name;
        next.value = field.value;
        next.offset = static_cast<std::uint32_t>(layout.offsets[i + (record.is_union ? 1 : 0)]);
        next.type = field.empty ? nullptr : value(field.type);
        record.fields.push_back(std::move(next));
    }
    for (const field_shape &each : record.fields) {
        record.by_name.emplace(each.name, static_cast<std::size_t>(&each - record.fields.data()));
    }
}

const value_shape *type_shape::value(parcel_notation::type_index index) {
    const parcel_notation::type &type = parcel_notation::resolve(schema_, index);
    value_shape shape;
    shape.what = type.what;
    shape.format = type.format;
    shape.count = type.count;
    shape.notation = parcel_notation::notation(schema_, index);
    switch (type.what) {
    case kind::text: shape.size = sizeof(char *); break;
    case kind::optional:
        shape.element = value(type.element);
        shape.size = sizeof(void *);
        break;
    case kind::array:
        shape.element = value(type.element);
        shape.size = sizeof(parcel_array<char>);
        break;
    case kind::fixed_array:
        shape.element = value(type.element);
        shape.size = shape.element->size * type.count;
        break;
    case kind::reference:
        shape.record = &records_[type.definition];
        shape.size = static_cast<std::uint32_t>(layout_of(type.definition).size);
        break;
    default: shape.size = parcel_notation::scalar_size(type);
    }
    values_.push_back(std::move(shape));
    return &values_.back();
}

const type_shape &shape_of(const parcel_descriptor *descriptor) {
    static std::unordered_map<const parcel_descriptor *, std::unique_ptr<type_shape>> shapes;
    std::unique_ptr<type_shape> &shape = shapes[descriptor];
    if (shape == nullptr) {
        shape = std::make_unique<type_shape>(descriptor);
    }
    return *shape;
}

}  // namespace perf_store
