// SPDX-License-Identifier: Apache-2.0
// Decodes a fuzz input and checks what the codec promises.
#include "fuzz/parcel_decode_fuzz.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/schema_edit.h"
#include "fuzz/unknown_fields.h"
#include "platform/local/codec/parcel_codec.h"
#include "platform/local/codec/parcel_decoder.h"
#include "platform/local/codec/parcel_encoder.h"
#include "platform/local/codec/parcel_plan.h"
#include "schema/pm_descriptors.h"

namespace {

constexpr std::size_t HEAD = 3;
constexpr std::size_t SCHEMA_HEAD = 2;

using structure = std::vector<std::uint64_t>;  // aligned for any record

void require(bool promise) {
    if (!promise) {
        std::abort();
    }
}

structure make_structure(const parcel_descriptor *descriptor, std::uint64_t fill) {
    return structure(descriptor->layout[0].size / sizeof(std::uint64_t) + 1, fill);
}

bool all_zero(const structure &record, std::size_t size) {
    const auto *bytes = reinterpret_cast<const std::uint8_t *>(record.data());
    return std::all_of(bytes, bytes + size, [](std::uint8_t byte) { return byte == 0; });
}

void decode_parcel(const std::uint8_t *data, std::size_t size, const parcel_descriptor *descriptor) {
    structure record = make_structure(descriptor, ~0ULL);
    if (parcel_decode(data, static_cast<std::uint32_t>(size), record.data(), descriptor) != ERRCODE_SUCCESS) {
        require(all_zero(record, descriptor->layout[0].size));
        return;
    }
    parcel_free_indirections(record.data(), descriptor);
}

// A record that decodes encodes again, and what is encoded decodes to the same bytes.
void decode_fields(const std::uint8_t *data, std::size_t size, const parcel_descriptor *descriptor) {
    parcel_plan::made_plan plan;
    require(parcel_plan::compile(descriptor, descriptor->schema, &plan) == ERRCODE_SUCCESS);
    structure record = make_structure(descriptor, 0);
    auto *bytes = reinterpret_cast<std::uint8_t *>(record.data());
    if (parcel_decode_fields(plan, data, data + size, PARCEL_GROWTH * size, bytes) != ERRCODE_SUCCESS) {
        return;
    }
    std::vector<std::uint8_t> first;
    std::vector<std::uint8_t> second;
    require(parcel_encode(bytes, descriptor, &first) == ERRCODE_SUCCESS);
    std::free(parcel_indirections(plan, bytes));
    require(parcel_decode(first.data(), static_cast<std::uint32_t>(first.size()), bytes, descriptor) ==
            ERRCODE_SUCCESS);
    require(parcel_encode(bytes, descriptor, &second) == ERRCODE_SUCCESS);
    require(first == second);
    parcel_free_indirections(bytes, descriptor);
}

// Decodes fields that were written with any schema.
void decode_with(std::string_view schema, const std::uint8_t *fields, const std::uint8_t *end,
                 const parcel_descriptor *descriptor) {
    parcel_plan::made_plan plan;
    if (parcel_plan::compile(descriptor, schema, &plan) != ERRCODE_SUCCESS) {
        return;
    }
    structure record = make_structure(descriptor, 0);
    auto *bytes = reinterpret_cast<std::uint8_t *>(record.data());
    const std::size_t limit = PARCEL_GROWTH_CONVERTED * static_cast<std::size_t>(end - fields);
    if (parcel_decode_fields(plan, fields, end, limit, bytes) == ERRCODE_SUCCESS) {
        require(unknown_fields_are_zero(schema, descriptor, bytes));
        std::free(parcel_indirections(plan, bytes));
    }
}

void decode_other_schema(const std::uint8_t *data, std::size_t size, const parcel_descriptor *descriptor) {
    if (size < SCHEMA_HEAD) {
        return;
    }
    const std::size_t length = std::min(static_cast<std::size_t>(data[0] | data[1] << 8), size - SCHEMA_HEAD);
    const std::string_view schema(reinterpret_cast<const char *>(data) + SCHEMA_HEAD, length);
    decode_with(schema, data + SCHEMA_HEAD + length, data + size, descriptor);
}

void decode_edited_schema(const std::uint8_t *data, std::size_t size, const parcel_descriptor *descriptor) {
    std::string schema = descriptor->schema;
    const std::size_t used = edit_schema({data, size}, &schema);
    decode_with(schema, data + used, data + size, descriptor);
}

}  // namespace

void parcel_fuzz_one(const std::uint8_t *data, std::size_t size) {
    if (size < HEAD) {
        return;
    }
    const auto mode = static_cast<parcel_fuzz_mode>(data[0] % static_cast<std::uint8_t>(parcel_fuzz_mode::count));
    const std::size_t type = static_cast<std::size_t>(data[1] | data[2] << 8) % pm_descriptors().size();
    const parcel_descriptor *descriptor = pm_descriptors()[type];
    data += HEAD;
    size -= HEAD;
    switch (mode) {
    case parcel_fuzz_mode::whole_parcel: decode_parcel(data, size, descriptor); break;
    case parcel_fuzz_mode::fields: decode_fields(data, size, descriptor); break;
    case parcel_fuzz_mode::other_schema: decode_other_schema(data, size, descriptor); break;
    case parcel_fuzz_mode::edited_schema: decode_edited_schema(data, size, descriptor); break;
    case parcel_fuzz_mode::count: break;
    }
}
