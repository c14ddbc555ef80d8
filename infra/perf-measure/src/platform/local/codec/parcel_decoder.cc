// SPDX-License-Identifier: Apache-2.0
// The decoder: a walk over the steps of a plan, from the bytes of a parcel into a structure.
#include "platform/local/codec/parcel_decoder.h"

#include <algorithm>
#include <cstdlib>
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
using parcel_wire::put;
using parcel_wire::read_varint;

// Small copies without a call.
inline void copy_bytes(std::uint8_t *to, const std::uint8_t *from, std::size_t length) {
    switch (length) {
    case 1: *to = *from; break;
    case 4: std::memcpy(to, from, 4); break;
    case 8: std::memcpy(to, from, 8); break;
    case 16: std::memcpy(to, from, 16); break;
    case 24: std::memcpy(to, from, 24); break;
    case 28: std::memcpy(to, from, 28); break;
    default: std::memcpy(to, from, length);
    }
}

// The one block that holds all indirections of a record. Its first allocation is at its start,
// which is how the block is found again when it is to be freed.
class arena {
public:
    explicit arena(std::size_t limit) : limit_(limit) {}

    // Null when the bound is reached or there is no memory. The alignment is a power of two.
    std::uint8_t *allocate(std::size_t length, std::size_t alignment) {
        if (block_ == nullptr) {
            block_ = static_cast<std::uint8_t *>(std::malloc(limit_));
            if (block_ == nullptr) {
                out_of_memory_ = true;
                return nullptr;
            }
        }
        const std::size_t begin = (used_ + alignment - 1) & ~(alignment - 1);
        if (begin > limit_ || length > limit_ - begin) {
            return nullptr;
        }
        used_ = begin + length;
        return block_ + begin;
    }

    void release() { std::free(block_); }
    [[nodiscard]] bool out_of_memory() const { return out_of_memory_; }

private:
    std::size_t limit_;
    std::size_t used_ = 0;
    std::uint8_t *block_ = nullptr;
    bool out_of_memory_ = false;
};

// What is to be read next, or null once reading has failed. It is handed from step to step rather than kept in
// the decoder, so that it stays in a register between the stores into the record.
using position = const std::uint8_t *;

class decoder {
public:
    decoder(const record_plan &plan, position end, std::size_t limit)
        : plan_(plan), programs_(plan.programs.data()), end_(end), arena_(limit) {}

    errcode run(position begin, std::uint8_t *record) {
        if (decode(programs_[0], begin, record, 1, 0) == end_) {
            return ERRCODE_SUCCESS;
        }
        arena_.release();
        return arena_.out_of_memory() ? ERRCODE_NO_MEMORY : PARCEL_MALFORMED;
    }

private:
    [[nodiscard]] std::size_t left(position at) const { return static_cast<std::size_t>(end_ - at); }

    // Decodes `count` values of `size` bytes each, one after the other.
    position decode(const plan_program &program, position at, std::uint8_t *record, std::uint32_t count,
                    std::size_t size) {
        if (++depth_ > PARCEL_MAX_DEPTH) {
            return nullptr;
        }
        for (; count > 0 && at != nullptr; --count, record += size) {
            at = decode_one(program, at, record);
        }
        --depth_;
        return at;
    }

    position decode_one(const plan_program &program, position at, std::uint8_t *record) {
        const position end = end_;
        for (const plan_step &step : plan_.steps_of(program)) {
            std::uint8_t *to = record + step.offset;
            switch (step.kind) {
            case step_kind::copy:
                if (step.count > static_cast<std::size_t>(end - at)) {
                    return nullptr;
                }
                copy_bytes(to, at, step.count);
                at += step.count;
                continue;
            case step_kind::text:
            case step_kind::optional:
            case step_kind::array:
                if (at < end && *at == 0) {  // absent or empty, which the zeroed record says already
                    ++at;
                    continue;
                }
                at = decode_indirection(step, at, to);
                break;
            case step_kind::tagged_union: at = decode_union(step, at, to, record); break;
            case step_kind::fixed_array: at = decode_elements(step, at, to, step.count); break;
            case step_kind::pass:
                if (step.count > static_cast<std::size_t>(end - at)) {
                    return nullptr;
                }
                at += step.count;
                continue;
            case step_kind::skip: at = skip(programs_[step.program], at); break;
            }
            if (at == nullptr) {
                return nullptr;
            }
        }
        return at;
    }

    position decode_indirection(const plan_step &step, position at, std::uint8_t *to) {
        switch (step.kind) {
        case step_kind::text: return decode_text(at, to);
        case step_kind::optional: return decode_optional(step, at, to);
        default: return decode_array(step, at, to);
        }
    }

    position decode_text(position at, std::uint8_t *to) {
        std::uint32_t claimed = 0;  // its length and one
        at = read_varint(at, end_, &claimed);
        const std::size_t length = std::size_t{claimed} - 1;
        if (at == nullptr || length > left(at) || std::memchr(at, '\0', length) != nullptr) {
            return nullptr;
        }
        std::uint8_t *text = arena_.allocate(length + 1, 1);
        if (text == nullptr) {
            return nullptr;
        }
        std::memcpy(text, at, length);
        text[length] = '\0';
        put(to, text);
        return at + length;
    }

    position decode_optional(const plan_step &step, position at, std::uint8_t *to) {
        if (at == end_ || *at != 1) {
            return nullptr;
        }
        std::uint8_t *value = arena_.allocate(step.size, alignof(std::uint64_t));
        if (value == nullptr) {
            return nullptr;
        }
        put(to, value);
        return decode_elements(step, at + 1, value, 1);
    }

    position decode_array(const plan_step &step, position at, std::uint8_t *to) {
        std::uint32_t count = 0;
        at = read_varint(at, end_, &count);
        if (at == nullptr || count == 0) {
            return at;
        }
        // Elements that cannot all be there are refused before anything is allocated for them.
        if (std::uint64_t{count} * std::max<std::uint32_t>(programs_[step.program].least_wire, 1) > left(at)) {
            return nullptr;
        }
        std::uint8_t *elements = arena_.allocate(std::size_t{count} * step.size, alignof(std::uint64_t));
        if (elements == nullptr) {
            return nullptr;
        }
        put(to, generic_array{count, elements});
        return decode_elements(step, at, elements, count);
    }

    position decode_elements(const plan_step &step, position at, std::uint8_t *elements, std::uint32_t count) {
        const plan_program &element = programs_[step.program];
        const std::size_t size = std::size_t{count} * step.size;
        if (element.flat != 0) {
            if (size > left(at)) {
                return nullptr;
            }
            copy_bytes(elements, at, size);
            return at + size;
        }
        std::memset(elements, 0, size);
        return decode(element, at, elements, count, step.size);
    }

    position decode_union(const plan_step &step, position at, std::uint8_t *to, std::uint8_t *record) {
        if (left(at) < sizeof(std::uint32_t)) {
            return nullptr;
        }
        const auto value = load<std::uint32_t>(at);
        put(to, value);
        at += sizeof value;
        const plan_arm *chosen = find_arm(plan_, step, value);
        if (chosen == nullptr || chosen->program == parcel_plan::NO_PROGRAM) {
            return at;
        }
        const plan_program &content = programs_[chosen->program];
        if (!chosen->known) {
            return skip(content, at);
        }
        if (content.flat == 0) {
            return decode(content, at, record + chosen->offset, 1, 0);
        }
        if (content.flat > left(at)) {
            return nullptr;
        }
        copy_bytes(record + chosen->offset, at, content.flat);
        return at + content.flat;
    }

    // Passes over a value that the reader does not know.
    position skip(const plan_program &program, position at) {
        if (++depth_ > PARCEL_MAX_DEPTH) {
            return nullptr;
        }
        for (const plan_step &step : plan_.steps_of(program)) {
            at = skip(step, at);
            if (at == nullptr) {
                return nullptr;
            }
        }
        --depth_;
        return at;
    }

    position skip(const plan_step &step, position at) {
        std::uint32_t count = step.count;
        switch (step.kind) {
        case step_kind::copy:
        case step_kind::pass: return count <= left(at) ? at + count : nullptr;
        case step_kind::text:
            at = read_varint(at, end_, &count);
            if (at == nullptr || count == 0) {
                return at;
            }
            return count - 1 <= left(at) ? at + (count - 1) : nullptr;
        case step_kind::tagged_union: return skip_union(step, at);
        case step_kind::optional:
        case step_kind::array:
            at = read_varint(at, end_, &count);
            if (step.kind == step_kind::optional && count > 1) {
                return nullptr;
            }
            break;
        case step_kind::fixed_array: break;
        case step_kind::skip: count = 1; break;
        }
        return at != nullptr ? skip_values(programs_[step.program], at, count) : nullptr;
    }

    position skip_values(const plan_program &program, position at, std::uint32_t count) {
        if (program.flat != 0) {
            const std::uint64_t size = std::uint64_t{count} * program.flat;
            return size <= left(at) ? at + size : nullptr;
        }
        for (; count > 0 && at != nullptr; --count) {
            at = skip(program, at);
        }
        return at;
    }

    position skip_union(const plan_step &step, position at) {
        if (left(at) < sizeof(std::uint32_t)) {
            return nullptr;
        }
        const plan_arm *chosen = find_arm(plan_, step, load<std::uint32_t>(at));
        at += sizeof(std::uint32_t);
        return chosen == nullptr || chosen->program == parcel_plan::NO_PROGRAM ? at
                                                                               : skip(programs_[chosen->program], at);
    }

    const record_plan &plan_;
    const plan_program *programs_;
    position end_;
    arena arena_;
    std::uint32_t depth_ = 0;
};

// The lowest address that a structure points to from inside itself: the start of the arena, whose
// first allocation always belongs to the record and not to something that hangs off it.
template <class Steps>
void lowest_pointer(const record_plan &plan, const Steps &steps, const std::uint8_t *record, std::uint8_t **lowest) {
    const auto consider = [&](std::uint8_t *pointer) {
        if (pointer != nullptr && (*lowest == nullptr || pointer < *lowest)) {
            *lowest = pointer;
        }
    };
    for (const plan_step &step : steps) {
        const std::uint8_t *at = record + step.offset;
        switch (step.kind) {
        case step_kind::text:
        case step_kind::optional: consider(load<std::uint8_t *>(at)); break;
        case step_kind::array: consider(load<generic_array>(at).elements); break;
        case step_kind::fixed_array:
            for (std::uint32_t i = 0; i < step.count; ++i) {
                lowest_pointer(plan, plan.steps_of(plan.programs[step.program]), at + std::size_t{i} * step.size,
                               lowest);
            }
            break;
        case step_kind::tagged_union:
            if (const plan_arm *chosen = find_arm(plan, step, load<std::uint32_t>(at));
                chosen != nullptr && chosen->program != parcel_plan::NO_PROGRAM && chosen->known) {
                lowest_pointer(plan, plan.steps_of(plan.programs[chosen->program]), record + chosen->offset, lowest);
            }
            break;
        default: break;
        }
    }
}

}  // namespace

errcode parcel_decode_fields(const record_plan &plan, const std::uint8_t *begin, const std::uint8_t *end,
                             std::size_t limit, std::uint8_t *record) {
    return decoder(plan, end, limit).run(begin, record);
}

void *parcel_indirections(const record_plan &plan, const std::uint8_t *record) {
    std::uint8_t *lowest = nullptr;
    lowest_pointer(plan, plan.owners, record, &lowest);
    return lowest;
}
