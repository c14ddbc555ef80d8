// SPDX-License-Identifier: Apache-2.0
// The encoder: a walk over the steps of a plan, from a structure to the bytes of a parcel.
#include "platform/local/codec/parcel_encoder.h"

#include <cstring>

#include "platform/local/codec/parcel_codec.h"
#include "platform/local/codec/parcel_wire.h"

namespace {

using parcel_plan::plan_arm;
using parcel_plan::plan_program;
using parcel_plan::plan_step;
using parcel_plan::record_plan;
using parcel_plan::step_kind;
using parcel_wire::find_arm;
using parcel_wire::generic_array;
using parcel_wire::load;

class encoder {
public:
    encoder(const record_plan &plan, std::vector<std::uint8_t> *out) : plan_(plan), out_(out) {}

    errcode encode(const plan_program &program, const std::uint8_t *record) {
        if (++depth_ > PARCEL_MAX_DEPTH) {
            return ERRCODE_RANGE;
        }
        for (const plan_step &step : plan_.steps_of(program)) {
            if (const errcode error = encode(step, record); error != ERRCODE_SUCCESS) {
                return error;
            }
        }
        --depth_;
        return ERRCODE_SUCCESS;
    }

private:
    void append(const void *bytes, std::size_t length) {
        const auto *from = static_cast<const std::uint8_t *>(bytes);
        out_->insert(out_->end(), from, from + length);
    }

    errcode encode(const plan_step &step, const std::uint8_t *record) {
        const std::uint8_t *from = record + step.offset;
        switch (step.kind) {
        case step_kind::copy: append(from, step.count); return ERRCODE_SUCCESS;
        case step_kind::text: return encode_text(load<const char *>(from));
        case step_kind::optional: {
            const auto *value = load<const std::uint8_t *>(from);
            out_->push_back(value != nullptr ? 1 : 0);
            return value != nullptr ? encode(plan_.programs[step.program], value) : ERRCODE_SUCCESS;
        }
        case step_kind::array: {
            const auto array = load<generic_array>(from);
            if (array.count != 0 && array.elements == nullptr) {
                return ERRCODE_INVALID_ARGUMENT;
            }
            parcel_append_varint(array.count, out_);
            return encode_elements(step, array.elements, array.count);
        }
        case step_kind::fixed_array: return encode_elements(step, from, step.count);
        case step_kind::tagged_union: {
            append(from, sizeof(std::uint32_t));
            const plan_arm *chosen = find_arm(plan_, step, load<std::uint32_t>(from));
            return chosen == nullptr || chosen->program == parcel_plan::NO_PROGRAM
                       ? ERRCODE_SUCCESS
                       : encode(plan_.programs[chosen->program], record + chosen->offset);
        }
        case step_kind::pass:
        case step_kind::skip: break;  // only in plans that convert
        }
        return ERRCODE_INVALID_ARGUMENT;
    }

    errcode encode_text(const char *text) {
        if (text == nullptr) {
            parcel_append_varint(0, out_);
            return ERRCODE_SUCCESS;
        }
        const std::size_t length = std::strlen(text);
        if (length >= 0xFFFFFFFF) {
            return ERRCODE_RANGE;
        }
        parcel_append_varint(static_cast<std::uint32_t>(length + 1), out_);
        append(text, length);
        return ERRCODE_SUCCESS;
    }

    errcode encode_elements(const plan_step &step, const std::uint8_t *elements, std::uint32_t count) {
        const plan_program &element = plan_.programs[step.program];
        if (element.flat != 0) {
            append(elements, std::size_t{count} * step.size);
            return ERRCODE_SUCCESS;
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            if (const errcode error = encode(element, elements + std::size_t{i} * step.size);
                error != ERRCODE_SUCCESS) {
                return error;
            }
        }
        return ERRCODE_SUCCESS;
    }

    const record_plan &plan_;
    std::vector<std::uint8_t> *out_;
    std::uint32_t depth_ = 0;
};

}  // namespace

errcode parcel_encode_fields(const record_plan &plan, const std::uint8_t *record, std::vector<std::uint8_t> *out) {
    return encoder(plan, out).encode(plan.programs[0], record);
}

void parcel_append_varint(std::uint32_t value, std::vector<std::uint8_t> *out) {
    for (; value >= 0x80; value >>= 7) {
        out->push_back(static_cast<std::uint8_t>(value | 0x80));
    }
    out->push_back(static_cast<std::uint8_t>(value));
}
