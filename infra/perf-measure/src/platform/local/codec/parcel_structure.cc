// SPDX-License-Identifier: Apache-2.0
// Sizes and offsets of described types: taken from a layout table, or laid out as the C language does.
#include <algorithm>
#include <string>

#include "platform/local/codec/parcel_notation.h"

namespace parcel_notation {

namespace {

constexpr std::uint64_t MAX_STRUCTURE = 1U << 24;  // bytes
constexpr std::uint32_t DISCRIMINATOR_SIZE = 4;

std::string reference(const data_type &definition) { return "$" + std::to_string(definition.number); }

// The entry of a table for a definition of the schema; null when the table lacks it.
const parcel_layout *entry_of(const parcel_layout *table, const schema &of, const data_type &definition) {
    if (&definition == of.definitions.front()) {
        return table;
    }
    const parcel_layout *end = table + 1 + table->number;
    const parcel_layout *found =
        std::find_if(table + 1, end, [&](const parcel_layout &each) { return each.number == definition.number; });
    return found != end ? found : nullptr;
}

// Takes sizes and offsets from an entry; false when one is beyond any reason.
bool take_entry(const parcel_layout &entry, data_type *to) {
    if (entry.size > MAX_STRUCTURE) {
        return false;
    }
    to->size = static_cast<std::uint32_t>(entry.size);
    const std::uint64_t *offset = entry.offsets + (to->what == kind::tagged_union ? 1 : 0);
    for (field &each : to->fields) {
        if (*offset > MAX_STRUCTURE) {
            return false;
        }
        each.offset = static_cast<std::uint32_t>(*offset++);
    }
    return true;
}

// Sets the size of a fixed array whose element has one; false when it is beyond any reason.
bool size_elements(data_type *array) {
    const std::uint64_t size = std::uint64_t{array->element->size} * array->count;
    array->size = static_cast<std::uint32_t>(size);
    return size <= MAX_STRUCTURE;
}

std::uint32_t round_up(std::uint32_t value, std::uint32_t alignment) {
    return (value + alignment - 1) / alignment * alignment;
}

// Lays types out, each after those that it holds by value. A type that is done has an alignment.
class structure_maker {
public:
    pm_error make(data_type *of) {
        if (of == nullptr || of->alignment != 0) {
            return {};
        }
        switch (of->what) {
        case kind::record:
        case kind::tagged_union: return make_definition(of);
        case kind::fixed_array: return make_array(of);
        case kind::text:
        case kind::optional:
        case kind::array: of->alignment = alignof(void *); break;
        case kind::bytes: of->alignment = of->format == 's' ? alignof(parcel_ipv6) : alignof(parcel_mac); break;
        default: of->alignment = of->size;
        }
        return {};
    }

private:
    pm_error make_array(data_type *of) {
        if (pm_error error = make(of->element)) {
            return error;
        }
        of->alignment = of->element->alignment;
        return size_elements(of) ? pm_error() : pm_error(std::string(of->notation) + " is too large");
    }

    pm_error make_definition(data_type *of) {
        if (std::find(unfinished_.begin(), unfinished_.end(), of) != unfinished_.end()) {
            return pm_error(reference(*of) + " holds itself by value");
        }
        unfinished_.push_back(of);
        for (const field &each : of->fields) {
            if (pm_error error = make(each.type)) {
                return error;
            }
        }
        unfinished_.pop_back();
        if (of->what == kind::tagged_union) {
            place_arms(of);
        } else {
            place_fields(of);
        }
        return of->size <= MAX_STRUCTURE ? pm_error() : pm_error(reference(*of) + " is too large");
    }

    static void place_fields(data_type *record) {
        std::uint32_t at = 0;
        record->alignment = 1;
        for (field &each : record->fields) {
            each.offset = round_up(at, each.type->alignment);
            at = each.offset + each.type->size;
            record->alignment = std::max(record->alignment, each.type->alignment);
        }
        record->size = round_up(at, record->alignment);
    }

    // All arms begin at the first multiple of the strictest alignment after the discriminator.
    static void place_arms(data_type *of) {
        std::uint32_t largest = 0;
        of->alignment = DISCRIMINATOR_SIZE;
        std::uint32_t begin = DISCRIMINATOR_SIZE;
        for (const field &arm : of->fields) {
            if (arm.type != nullptr) {
                largest = std::max(largest, arm.type->size);
                of->alignment = std::max(of->alignment, arm.type->alignment);
            }
        }
        begin = round_up(begin, of->alignment);
        for (field &arm : of->fields) {
            arm.offset = begin;
        }
        of->size = round_up(begin + largest, of->alignment);
    }

    std::vector<const data_type *> unfinished_;
};

}  // namespace

pm_error take_layout(const parcel_descriptor *descriptor, schema *of) {
    const auto bad = [](const std::string &what) { return pm_error(PARCEL_BAD_DESCRIPTOR, what); };
    for (data_type *each : of->definitions) {
        if (is_scalar(each->what)) {
            continue;
        }
        const parcel_layout *entry = entry_of(descriptor->layout, *of, *each);
        if (entry == nullptr) {
            return bad("the layout table lacks " + reference(*each));
        }
        if (!take_entry(*entry, each)) {
            return bad("the layout of " + reference(*each) + " is too large");
        }
    }
    for (data_type &each : of->types) {  // an element is before its array
        if (each.what == kind::fixed_array && !size_elements(&each)) {
            return bad(std::string(each.notation) + " is too large");
        }
    }
    return {};
}

pm_error describe(const parcel_descriptor *descriptor, schema *out) {
    if (pm_error error = parse(descriptor->schema, out)) {
        return pm_error(PARCEL_BAD_DESCRIPTOR, error.text());
    }
    return take_layout(descriptor, out);
}

pm_error lay_out(schema *of) {
    structure_maker maker;
    for (data_type &each : of->types) {
        if (pm_error error = maker.make(&each)) {
            return error;
        }
    }
    return {};
}

}  // namespace parcel_notation
