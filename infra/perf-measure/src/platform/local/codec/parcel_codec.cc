// SPDX-License-Identifier: Apache-2.0
// The codec's entry points: parcels with their headers, and the plans made so far.
#include "platform/local/codec/parcel_codec.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "platform/local/codec/built_plans.h"
#include "platform/local/codec/checksum.h"
#include "platform/local/codec/parcel_decoder.h"
#include "platform/local/codec/parcel_encoder.h"
#include "platform/local/codec/parcel_plan.h"
#include "platform/local/codec/parcel_wire.h"

namespace {

using parcel_plan::made_plan;
using parcel_plan::record_plan;
using parcel_wire::load;
using parcel_wire::put;
using parcel_wire::read_varint;

constexpr std::uint8_t MAGIC[4] = {'P', 'M', 'P', 1};  // the last byte is the version of the encoding
constexpr std::size_t CHECKSUM_AT = sizeof MAGIC;
constexpr std::size_t FINGERPRINT_AT = CHECKSUM_AT + sizeof(std::uint64_t);
constexpr std::size_t VERSION_AT = FINGERPRINT_AT + sizeof(std::uint64_t);

// The process-wide state of the codec: plans used so far, those of them that this process made, and where schemas come
// from.
struct codec_state {
    std::vector<const record_plan *> plans;
    std::vector<std::unique_ptr<const made_plan>> made;
    const record_plan *last = nullptr;
    parcel_schema_source source = nullptr;
};

codec_state &state() {
    static codec_state the_state;
    return the_state;
}

const record_plan *remember(const record_plan *plan) {
    state().plans.push_back(plan);
    return state().last = plan;
}

const record_plan *known_plan(const parcel_descriptor *descriptor, const std::uint64_t *fingerprint) {
    if (state().last != nullptr && parcel_plan::is_plan_for(*state().last, descriptor, fingerprint)) {
        return state().last;
    }
    for (const record_plan *each : state().plans) {
        if (parcel_plan::is_plan_for(*each, descriptor, fingerprint)) {
            return state().last = each;
        }
    }
    const record_plan *const built = parcel_plan::find_built_plan(descriptor, fingerprint);
    return built != nullptr ? remember(built) : nullptr;
}

errcode make_plan(const parcel_descriptor *descriptor, std::string_view schema, const record_plan **out) {
    auto next = std::make_unique<made_plan>();
    const errcode error = parcel_plan::compile(descriptor, schema, next.get());
    if (error == ERRCODE_SUCCESS) {
        *out = remember(next.get());
        state().made.push_back(std::move(next));
    }
    return error;
}

errcode native_plan(const parcel_descriptor *descriptor, const record_plan **out) {
    *out = known_plan(descriptor, nullptr);
    return *out != nullptr ? ERRCODE_SUCCESS : make_plan(descriptor, descriptor->schema, out);
}

// The plan for records of a schema: the descriptor's own, or one that the schema source knows.
errcode plan_for(const parcel_descriptor *descriptor, std::uint64_t fingerprint, const record_plan **out) {
    *out = known_plan(descriptor, &fingerprint);
    if (*out != nullptr) {
        return ERRCODE_SUCCESS;
    }
    if (const errcode error = native_plan(descriptor, out); error != ERRCODE_SUCCESS) {
        return error;
    }
    if ((*out)->fingerprint == fingerprint) {
        return ERRCODE_SUCCESS;
    }
    std::string schema;
    if (state().source == nullptr || !state().source(fingerprint, &schema) ||
        parcel_plan::fingerprint(schema) != fingerprint) {
        return PARCEL_UNKNOWN_SCHEMA;
    }
    return make_plan(descriptor, schema, out);
}

std::uint64_t checksum_of(const std::uint8_t *parcel, std::size_t length) {
    return checksum(parcel + FINGERPRINT_AT, length - FINGERPRINT_AT);
}

void append(const void *bytes, std::size_t length, std::vector<std::uint8_t> *out) {
    const auto *from = static_cast<const std::uint8_t *>(bytes);
    out->insert(out->end(), from, from + length);
}

// The header, with room for the checksum, which comes last.
void append_header(const parcel_descriptor *descriptor, std::uint64_t fingerprint, std::vector<std::uint8_t> *out) {
    const std::size_t name_length = std::strlen(descriptor->name);
    append(MAGIC, sizeof MAGIC, out);
    out->resize(out->size() + sizeof(std::uint64_t));
    append(&fingerprint, sizeof fingerprint, out);
    parcel_append_varint(descriptor->version_major, out);
    parcel_append_varint(descriptor->version_minor, out);
    parcel_append_varint(static_cast<std::uint32_t>(name_length), out);
    append(descriptor->name, name_length, out);
}

}  // namespace

errcode parcel_read_header(const void *data, std::size_t length, parcel_header *header) {
    const auto *bytes = static_cast<const std::uint8_t *>(data);
    if (length < VERSION_AT || std::memcmp(bytes, MAGIC, sizeof MAGIC) != 0) {
        return PARCEL_MALFORMED;
    }
    header->checksum = load<std::uint64_t>(bytes + CHECKSUM_AT);
    header->fingerprint = load<std::uint64_t>(bytes + FINGERPRINT_AT);
    if (header->checksum != checksum_of(bytes, length)) {
        return PARCEL_CHECKSUM;
    }
    const std::uint8_t *at = bytes + VERSION_AT;
    const std::uint8_t *end = bytes + length;
    std::uint32_t name_length = 0;
    for (std::uint32_t *number : {&header->version_major, &header->version_minor, &name_length}) {
        at = read_varint(at, end, number);
        if (at == nullptr) {
            return PARCEL_MALFORMED;
        }
    }
    if (name_length > static_cast<std::size_t>(end - at)) {
        return PARCEL_MALFORMED;
    }
    header->type = {reinterpret_cast<const char *>(at), name_length};
    header->size = static_cast<std::size_t>(at - bytes) + name_length;
    return ERRCODE_SUCCESS;
}

errcode parcel_decode(const void *data, std::uint32_t length, void *record, const parcel_descriptor *descriptor) {
    if (record == nullptr || descriptor == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    std::memset(record, 0, descriptor->layout[0].size);
    if (data == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    parcel_header header{};
    if (const errcode error = parcel_read_header(data, length, &header); error != ERRCODE_SUCCESS) {
        return error;
    }
    if (header.type != descriptor->name) {
        return PARCEL_OTHER_TYPE;
    }
    const record_plan *plan = nullptr;
    if (const errcode error = plan_for(descriptor, header.fingerprint, &plan); error != ERRCODE_SUCCESS) {
        return error;
    }
    const auto *bytes = static_cast<const std::uint8_t *>(data);
    const std::size_t growth = plan->native ? PARCEL_GROWTH : PARCEL_GROWTH_CONVERTED;
    const errcode error = parcel_decode_fields(*plan, bytes + header.size, bytes + length, growth * length,
                                               static_cast<std::uint8_t *>(record));
    if (error != ERRCODE_SUCCESS) {
        std::memset(record, 0, descriptor->layout[0].size);
    }
    return error;
}

void parcel_free_indirections(void *record, const parcel_descriptor *descriptor) {
    const record_plan *plan = nullptr;
    if (record == nullptr || descriptor == nullptr || native_plan(descriptor, &plan) != ERRCODE_SUCCESS) {
        return;
    }
    std::free(parcel_indirections(*plan, static_cast<const std::uint8_t *>(record)));
    std::memset(record, 0, plan->size);
}

errcode parcel_encode(const void *record, const parcel_descriptor *descriptor, std::vector<std::uint8_t> *out) {
    if (record == nullptr || descriptor == nullptr || out == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    const record_plan *plan = nullptr;
    if (const errcode error = native_plan(descriptor, &plan); error != ERRCODE_SUCCESS) {
        return error;
    }
    const std::size_t begin = out->size();
    append_header(descriptor, plan->fingerprint, out);
    errcode error = parcel_encode_fields(*plan, static_cast<const std::uint8_t *>(record), out);
    const std::size_t length = out->size() - begin;
    if (error == ERRCODE_SUCCESS && length > 0xFFFFFFFF) {
        error = ERRCODE_RANGE;
    }
    if (error != ERRCODE_SUCCESS) {
        out->resize(begin);
        return error;
    }
    put(out->data() + begin + CHECKSUM_AT, checksum_of(out->data() + begin, length));
    return ERRCODE_SUCCESS;
}

std::uint64_t parcel_fingerprint(const parcel_descriptor *descriptor) {
    return parcel_plan::fingerprint(descriptor->schema);
}

void parcel_set_schema_source(parcel_schema_source source) { state().source = source; }

errcode parcel_prepare(const parcel_descriptor *descriptor) {
    const record_plan *plan = nullptr;
    return native_plan(descriptor, &plan);
}
