// SPDX-License-Identifier: Apache-2.0
// Walks two records along their shape.
#include "perf-store/diff/record_differences.h"

#include <algorithm>
#include <cstring>

#include "perf-store/datasets/record_shape.h"
#include "perf-store/diff/counters.h"
#include "platform/local/codec/parcel_wire.h"

namespace perf_store {

namespace {

using parcel_notation::kind;
using parcel_wire::generic_array;
using parcel_wire::load;

constexpr std::string_view OWN_TIME = "Timestamp";  // of a sample, beside its counters

// The same value of both records.
struct pair {
    const std::uint8_t *from;
    const std::uint8_t *to;

    [[nodiscard]] pair operator+(std::size_t offset) const { return {from + offset, to + offset}; }
    template <class T>
    [[nodiscard]] bool same() const {
        return load<T>(from) == load<T>(to);
    }
};

// A record that members are being compared of.
struct enclosing_record {
    pair values;
    const record_shape *shape;
};

class comparison {
public:
    comparison(const comparison_options &options, differences *out) : options_(options), out_(*out) {}

    void compare_record(pair values, const record_shape &shape);
    [[nodiscard]] const pm_error &error() const { return error_; }

private:
    void compare_value(pair values, const value_shape &shape);
    void compare_text(pair values, const value_shape &shape);
    void compare_union(pair values, const record_shape &shape);
    void compare_optional(pair values, const value_shape &shape);
    void compare_array(pair values, const value_shape &shape);
    void compare_elements(pair arrays, std::uint32_t from_count, std::uint32_t to_count, const value_shape &element);
    void tell_element(std::uint32_t index, const char *what, const std::uint8_t *element, const value_shape &shape);
    void tell_arm(const field_shape *arm, const char *what, const std::uint8_t *of);
    void tell_change(pair values, const value_shape &shape);
    [[nodiscard]] std::string note_on(pair values, const value_shape &shape) const;
    [[nodiscard]] std::uint64_t interval_msec() const;
    [[nodiscard]] std::string text_of(const std::uint8_t *value, const value_shape &shape);

    // Compares what is at a member, unless it is ignored.
    template <class Step, class Compare>
    void within(Step step, Compare compare) {
        path_.enter(step);
        if (!options_.ignored.cover(path_)) {
            compare();
        }
        path_.leave();
    }

    const comparison_options &options_;
    differences &out_;
    member_path path_;
    enclosing_record record_{};
    pm_error error_;
};

void comparison::compare_record(pair values, const record_shape &shape) {
    if (is_union(shape)) {
        compare_union(values, shape);
        return;
    }
    const enclosing_record outer = record_;
    for (const field_shape &field : shape.fields) {
        record_ = {values, &shape};
        within(field.name, [&] { compare_value(values + field.offset, *field.type); });
    }
    record_ = outer;
}

void comparison::compare_value(pair values, const value_shape &shape) {
    switch (shape.what) {
    case kind::text: compare_text(values, shape); break;
    case kind::record:
    case kind::tagged_union: compare_record(values, shape); break;
    case kind::optional: compare_optional(values, shape); break;
    case kind::array: compare_array(values, shape); break;
    case kind::fixed_array: compare_elements(values, shape.count, shape.count, *shape.element); break;
    case kind::boolean:  // any number but 0 is true
        if ((load<std::uint32_t>(values.from) != 0) != (load<std::uint32_t>(values.to) != 0)) {
            tell_change(values, shape);
        }
        break;
    default:
        if (std::memcmp(values.from, values.to, shape.size) != 0) {
            tell_change(values, shape);
        }
    }
}

void comparison::compare_text(pair values, const value_shape &shape) {
    const auto *from = load<const char *>(values.from);
    const auto *to = load<const char *>(values.to);
    const bool same = from == nullptr || to == nullptr ? from == to : std::strcmp(from, to) == 0;
    if (!same) {
        tell_change(values, shape);
    }
}

// An address is one value. Of other unions an arm that went away is removed, one that came is added.
void comparison::compare_union(pair values, const record_shape &shape) {
    if (is_address(shape)) {
        if (text_of(values.from, shape) != text_of(values.to, shape)) {
            tell_change(values, shape);
        }
        return;
    }
    const field_shape *from = shape.arm_of(load<std::uint32_t>(values.from));
    const field_shape *to = shape.arm_of(load<std::uint32_t>(values.to));
    if (values.same<std::uint32_t>()) {
        if (from != nullptr && from->type != nullptr) {
            within(from->name, [&] { compare_value(values + from->offset, *from->type); });
        }
        return;
    }
    within(shape.discriminator, [&] {
        out_.changed(path_, std::to_string(load<std::uint32_t>(values.from)),
                     std::to_string(load<std::uint32_t>(values.to)));
    });
    tell_arm(from, REMOVED, values.from);
    tell_arm(to, ADDED, values.to);
}

void comparison::tell_arm(const field_shape *arm, const char *what, const std::uint8_t *of) {
    if (arm != nullptr && arm->type != nullptr) {
        within(arm->name, [&] { out_.element(path_, what, text_of(of + arm->offset, *arm->type)); });
    }
}

void comparison::compare_optional(pair values, const value_shape &shape) {
    const pair contents{load<const std::uint8_t *>(values.from), load<const std::uint8_t *>(values.to)};
    if (contents.from != nullptr && contents.to != nullptr) {
        compare_value(contents, *shape.element);
    } else if (contents.from != contents.to) {
        tell_change(values, shape);
    }
}

void comparison::compare_array(pair values, const value_shape &shape) {
    const auto from = load<generic_array>(values.from);
    const auto to = load<generic_array>(values.to);
    if (shape.element->what != kind::opaque) {
        compare_elements({from.elements, to.elements}, from.count, to.count, *shape.element);
    } else if (!std::equal(from.begin(), from.end(), to.begin(), to.end())) {
        tell_change(values, shape);
    }
}

void comparison::compare_elements(pair arrays, std::uint32_t from_count, std::uint32_t to_count,
                                  const value_shape &element) {
    const std::uint32_t both = std::min(from_count, to_count);
    for (std::uint32_t i = 0; i < both; ++i) {
        within(i, [&] { compare_value(arrays + std::size_t{i} * element.size, element); });
    }
    for (std::uint32_t i = both; i < from_count; ++i) {
        tell_element(i, REMOVED, arrays.from + std::size_t{i} * element.size, element);
    }
    for (std::uint32_t i = both; i < to_count; ++i) {
        tell_element(i, ADDED, arrays.to + std::size_t{i} * element.size, element);
    }
}

void comparison::tell_element(std::uint32_t index, const char *what, const std::uint8_t *element,
                              const value_shape &shape) {
    within(index, [&] { out_.element(path_, what, text_of(element, shape)); });
}

void comparison::tell_change(pair values, const value_shape &shape) {
    out_.changed(path_, text_of(values.from, shape), text_of(values.to, shape), note_on(values, shape));
}

// What is to be said of a counter.
std::string comparison::note_on(pair values, const value_shape &shape) const {
    if (!options_.counters || path_.steps().back().is_element || !is_counter(path_.steps().back().name)) {
        return {};
    }
    if (shape.what == kind::u64) {
        return counter_change(load<std::uint64_t>(values.from), load<std::uint64_t>(values.to), 64, interval_msec());
    }
    if (shape.what == kind::u32) {
        return counter_change(load<std::uint32_t>(values.from), load<std::uint32_t>(values.to), 32, interval_msec());
    }
    return {};
}

// The time between the two values: what the user says, or the sample's own time stamps, or else those of the node.
std::uint64_t comparison::interval_msec() const {
    const field_shape *own = record_.shape->find(OWN_TIME);
    if (options_.interval_given || own == nullptr || own->type->what != kind::u64) {
        return options_.interval_msec;
    }
    const auto from = load<std::uint64_t>(record_.values.from + own->offset);
    const auto to = load<std::uint64_t>(record_.values.to + own->offset);
    return from != 0 && to > from ? to - from : 0;
}

std::string comparison::text_of(const std::uint8_t *value, const value_shape &shape) {
    std::string text;
    if (const pm_error error = append_value(value, shape, json_fields::set, &text); error && !error_) {
        error_ = pm_error(path_.text() + ": " + error.text());
    }
    return text;
}

}  // namespace

pm_error compare_records(const void *from, const void *to, const parcel_descriptor *type,
                         const comparison_options &options, differences *out) {
    comparison walk(options, out);
    walk.compare_record({static_cast<const std::uint8_t *>(from), static_cast<const std::uint8_t *>(to)},
                        shape_of(type).record());
    return walk.error();
}

}  // namespace perf_store
