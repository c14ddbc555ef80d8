// SPDX-License-Identifier: Apache-2.0
// Decode plans: a descriptor's schema and layout, compiled into a flat list of steps.
//
// The plans of the catalogues' own record types are made while the program is built. Any other is made once for each
// record type and schema that a stored record was written with. A plan drives decoding, encoding and freeing without
// looking at the schema text again. Records that are in others by value are flattened into the steps of their owner;
// only the elements of arrays and optionals and the arms of unions are programs of their own.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "platform/parcel.h"

namespace parcel_notation {
struct data_type;
}

namespace parcel_plan {

inline constexpr std::uint32_t NO_PROGRAM = 0xFFFFFFFF;

enum class step_kind : std::uint8_t {
    copy,  // `count` bytes that look the same in the structure
    text,
    optional,      // `program` describes the value, of `size` bytes
    array,         // `program` describes an element, of `size` bytes
    fixed_array,   // `count` elements of `size` bytes, `program` describes one
    tagged_union,  // a union: `count` arms from `first_arm`
    pass,          // `count` bytes of fields that the reader does not know
    skip,          // such fields of any length: `program` describes them
};

struct plan_step {
    step_kind kind{};
    std::uint32_t offset = 0;  // in the structure
    std::uint32_t count = 0;   // of a copy: bytes
    std::uint32_t size = 0;
    std::uint32_t program = NO_PROGRAM;
    std::uint32_t first_arm = 0;
};

struct plan_arm {
    std::uint32_t value = 0;
    std::uint32_t offset = 0;            // of the arm in the structure
    std::uint32_t program = NO_PROGRAM;  // none: an arm without content
    bool known = true;                   // to the reader; else its content is skipped
};

// How one type of value is encoded: steps begin to end of the plan.
struct plan_program {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    std::uint32_t least_wire = 0;  // bytes that an encoding takes at the least
    std::uint32_t flat = 0;        // bytes when the whole value is one copy to its start, or passed at once; else 0
};

struct record_plan {
    const parcel_descriptor *descriptor = nullptr;
    std::uint64_t fingerprint = 0;             // of the schema that the record was written with
    bool native = true;                        // that schema is the descriptor's own
    std::uint32_t size = 0;                    // bytes of the structure
    std::span<const plan_program> programs{};  // the first is the record's
    std::span<const plan_step> steps{};
    std::span<const plan_arm> arms{};
    std::span<const plan_step> owners{};  // the record's steps that may hold pointers, arms included

    // The steps of a program, to iterate over.
    [[nodiscard]] std::span<const plan_step> steps_of(const plan_program &program) const {
        return steps.subspan(program.begin, program.end - program.begin);
    }
};

// A plan made by this process, which owns the parts of it.
struct made_plan : record_plan {
    std::vector<plan_program> all_programs;
    std::vector<plan_step> all_steps;
    std::vector<plan_arm> all_arms;
    std::vector<plan_step> all_owners;

    made_plan() = default;
    made_plan(const made_plan &) = delete;  // the plan has views into the parts
    made_plan &operator=(const made_plan &) = delete;
};

// Identifies a schema text.
[[nodiscard]] std::uint64_t fingerprint(std::string_view schema);

// Compiles the plan for reading records written with `writer_schema` into the descriptor's
// structure. Fields are matched by name: those that the reader lacks are skipped, those that the
// writer lacked stay zero. PARCEL_SCHEMA_CHANGED when a field is of another kind on the two sides,
// PARCEL_UNKNOWN_SCHEMA when the writer's schema is no schema, PARCEL_BAD_DESCRIPTOR when the
// descriptor's schema and layout do not fit together.
[[nodiscard]] errcode compile(const parcel_descriptor *descriptor, std::string_view writer_schema, made_plan *out);

// The same for two record types that are described and laid out already. Sets neither the descriptor nor what
// identifies the schema.
[[nodiscard]] errcode compile(const parcel_notation::data_type &writer, const parcel_notation::data_type &reader,
                              made_plan *out);

}  // namespace parcel_plan
