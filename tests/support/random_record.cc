// See random_record.h.
#include "tests/support/random_record.h"

#include <cstring>
#include <stdexcept>

using parcel_notation::definition;
using parcel_notation::form;
using parcel_notation::kind;
using generic_array = parcel_array<std::uint8_t>;

namespace {

constexpr int MAX_DEPTH = 6;                          // of arrays and optionals
constexpr std::uint32_t UNLISTED_DISCRIMINATOR = 77;  // no union lists it

template <class T>
T load(const std::uint8_t *from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

template <class T>
void store(std::uint8_t *to, T value) {
    std::memcpy(to, &value, sizeof value);
}

class comparison {
public:
    explicit comparison(const parcel_descriptor *descriptor) : type_(descriptor) {}

    std::string of_definition(parcel_notation::definition_index index, const std::uint8_t *a, const std::uint8_t *b) {
        const definition &what = type_.schema().definitions[index];
        const parcel_layout &layout = type_.layout_of(index);
        const bool is_union = what.what == form::choice;
        const auto value = load<std::uint32_t>(a);
        if (is_union && value != load<std::uint32_t>(b)) {
            return std::string(what.discriminator);
        }
        for (std::size_t i = 0; i < what.fields.size(); ++i) {
            const parcel_notation::field &field = what.fields[i];
            if (field.empty || (is_union && field.value != value)) {
                continue;
            }
            const std::size_t at = layout.offsets[i + (is_union ? 1 : 0)];
            const std::string inner = of_type(field.type, a + at, b + at);
            if (!inner.empty()) {
                return std::string(field.name) + (inner == "." ? "" : "." + inner);
            }
        }
        return "";
    }

private:
    // "." for a difference of the value itself.
    std::string of_type(parcel_notation::type_index index, const std::uint8_t *a, const std::uint8_t *b) {
        const parcel_notation::type &what = parcel_notation::resolve(type_.schema(), index);
        switch (what.what) {
        case kind::text: return same_text(load<const char *>(a), load<const char *>(b)) ? "" : ".";
        case kind::optional: {
            const auto *left = load<const std::uint8_t *>(a);
            const auto *right = load<const std::uint8_t *>(b);
            if (left == nullptr || right == nullptr) {
                return left == right ? "" : ".";
            }
            return of_type(what.element, left, right);
        }
        case kind::array: {
            const auto left = load<generic_array>(a);
            const auto right = load<generic_array>(b);
            return left.count != right.count ? "." : of_elements(what, left.elements, right.elements, left.count);
        }
        case kind::fixed_array: return of_elements(what, a, b, what.count);
        case kind::reference: return of_definition(what.definition, a, b);
        default: return std::memcmp(a, b, type_.size_of(index)) == 0 ? "" : ".";
        }
    }

    std::string of_elements(const parcel_notation::type &what, const std::uint8_t *a, const std::uint8_t *b,
                            std::uint32_t count) {
        const std::size_t size = type_.size_of(what.element);
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::string inner = of_type(what.element, a + i * size, b + i * size);
            if (!inner.empty()) {
                return "[" + std::to_string(i) + "]" + (inner == "." ? "" : inner);
            }
        }
        return "";
    }

    static bool same_text(const char *a, const char *b) {
        return a == nullptr || b == nullptr ? a == b : std::strcmp(a, b) == 0;
    }

    record_type type_;
};

}  // namespace

record_type::record_type(const parcel_descriptor *descriptor) : descriptor_(descriptor) {
    std::string problem;
    if (!parcel_notation::parse(descriptor->schema, &schema_, &problem)) {
        throw std::runtime_error(problem);
    }
}

const parcel_layout &record_type::layout_of(parcel_notation::definition_index index) const {
    std::uint64_t at = 0;
    while (index != 0 && descriptor_->layout[++at].number != schema_.definitions[index].number) {
        if (at == descriptor_->layout[0].number) {
            throw std::runtime_error("the layout table lacks a type");
        }
    }
    return descriptor_->layout[at];
}

std::size_t record_type::size_of(parcel_notation::type_index index) const {
    const parcel_notation::type &what = parcel_notation::resolve(schema_, index);
    switch (what.what) {
    case kind::text:
    case kind::optional: return sizeof(void *);
    case kind::array: return sizeof(generic_array);
    case kind::fixed_array: return what.count * size_of(what.element);
    case kind::reference: return layout_of(what.definition).size;
    default: return parcel_notation::scalar_size(what);
    }
}

random_record::random_record(const parcel_descriptor *descriptor, std::uint64_t seed)
    : type_(descriptor), random_(seed), data_(allocate(type_.size())) {
    fill_definition(0, static_cast<std::uint8_t *>(data_), 0);
}

void *random_record::allocate(std::size_t size) {
    blocks_.push_back(std::make_unique<std::uint64_t[]>(size / sizeof(std::uint64_t) + 1));
    return blocks_.back().get();
}

void random_record::fill_definition(parcel_notation::definition_index index, std::uint8_t *at, int depth) {
    const definition &what = type_.schema().definitions[index];
    const parcel_layout &layout = type_.layout_of(index);
    if (what.what == form::record) {
        for (std::size_t i = 0; i < what.fields.size(); ++i) {
            fill_type(what.fields[i].type, at + layout.offsets[i], depth);
        }
        return;
    }
    const std::size_t chosen = below(what.fields.size() + 1);
    if (chosen == what.fields.size()) {
        store(at, UNLISTED_DISCRIMINATOR);
        return;
    }
    store(at, what.fields[chosen].value);
    if (!what.fields[chosen].empty) {
        fill_type(what.fields[chosen].type, at + layout.offsets[chosen + 1], depth);
    }
}

void random_record::fill_type(parcel_notation::type_index index, std::uint8_t *at, int depth) {
    const parcel_notation::type &what = parcel_notation::resolve(type_.schema(), index);
    switch (what.what) {
    case kind::boolean: store<std::uint32_t>(at, static_cast<std::uint32_t>(below(2))); break;
    case kind::text:
        if (const std::uint64_t length = below(20); length > 0) {  // 0: absent
            auto *text = static_cast<char *>(allocate(length));
            std::memset(text, static_cast<int>('a' + below(26)), length - 1);
            store(at, text);
        }
        break;
    case kind::optional:
        if (depth < MAX_DEPTH && below(2) == 1) {
            auto *value = static_cast<std::uint8_t *>(allocate(type_.size_of(what.element)));
            fill_type(what.element, value, depth + 1);
            store(at, value);
        }
        break;
    case kind::array:
        if (const auto count = static_cast<std::uint32_t>(below(4)); depth < MAX_DEPTH && count > 0) {
            const std::size_t size = type_.size_of(what.element);
            auto *elements = static_cast<std::uint8_t *>(allocate(count * size));
            for (std::uint32_t i = 0; i < count; ++i) {
                fill_type(what.element, elements + i * size, depth + 1);
            }
            store(at, generic_array{count, elements});
        }
        break;
    case kind::fixed_array:
        for (std::uint32_t i = 0; i < what.count; ++i) {
            fill_type(what.element, at + i * type_.size_of(what.element), depth);
        }
        break;
    case kind::reference: fill_definition(what.definition, at, depth); break;
    default:
        for (std::size_t i = 0; i < type_.size_of(index); ++i) {
            at[i] = static_cast<std::uint8_t>(random_() >> below(57));
        }
    }
}

std::string first_difference(const parcel_descriptor *descriptor, const void *a, const void *b) {
    return comparison(descriptor)
        .of_definition(0, static_cast<const std::uint8_t *>(a), static_cast<const std::uint8_t *>(b));
}
