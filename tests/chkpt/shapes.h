// SPDX-License-Identifier: Apache-2.0
// The messages of checkpoint blobs as the tests see them, so that what holds for every message is
// tested on every message.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tests/chkpt/blob.h"
#include "tests/chkpt/test_memory.h"

enum class field_kind { number, text, message, numbers, messages };

struct shape;

struct shape_field {
    field_kind kind;
    const shape *nested = nullptr;

    [[nodiscard]] bool is_array() const { return kind == field_kind::numbers || kind == field_kind::messages; }
    [[nodiscard]] bool needs_memory() const { return kind == field_kind::text || is_array(); }
    [[nodiscard]] unsigned wire_type() const {
        return kind == field_kind::number || kind == field_kind::numbers ? 0 : 2;
    }
};

// What a decoder did.
struct outcome {
    std::int32_t status;
    std::uint32_t presence;
    bool is_clear;            // every byte of the record is zero
    std::size_t allocations;  // how often it asked for memory
};

struct shape {
    std::string name;
    bool takes_memory;                // whether the decoder has an allocator
    std::vector<shape_field> fields;  // field 1 first
    std::function<outcome(const blob &, std::size_t fail_at)> decode;
    std::function<outcome(const blob &)> decode_without_allocator;

    [[nodiscard]] std::uint32_t every_field() const { return (1U << fields.size()) - 1; }
};

// All messages, those that are nested before those that nest them.
[[nodiscard]] const std::vector<const shape *> &all_shapes();

// Where a field of the message itself ends in a blob; an element of an array counts as a field.
struct field_end {
    std::size_t end;
    std::uint32_t field;
};

struct sample {
    blob bytes;
    std::vector<field_end> ends;
    std::size_t allocations = 0;  // that decoding it takes
};

// Adds one occurrence of a field, of an array one element, with content.
void add_field(sample &to, const shape &message, std::uint32_t field);

// A message with every field, arrays with two elements.
[[nodiscard]] sample full_sample(const shape &message);
