// SPDX-License-Identifier: Apache-2.0
// Compiles decode plans from the descriptions of the two schemas.
#include "platform/local/codec/parcel_plan.h"

#include <algorithm>
#include <map>
#include <set>

#include "platform/local/codec/checksum.h"
#include "platform/local/codec/parcel_notation.h"

namespace parcel_plan {

namespace {

using parcel_notation::data_type;
using parcel_notation::field;
using parcel_notation::is_scalar;
using parcel_notation::kind;
using parcel_notation::schema;

constexpr std::uint32_t MAX_FLATTENING = 64;    // of records that are in one another by value
constexpr std::size_t MAX_STEPS = 1U << 16;     // of a whole plan; a hostile schema could double without end
constexpr std::uint32_t MAX_PASSED = 1U << 24;  // bytes in one step
// Of programs that call each other, a level of the stack each. Values nest less deeply (docs/parcel-encoding.md).
constexpr std::uint32_t MAX_NESTING = 256;

// A program while it is made.
struct draft {
    std::vector<plan_step> steps;
    std::uint32_t least_wire = 0;
};

// Works on pairs of types: the writer's, and the reader's or null for what the reader does not know.
class compiler {
public:
    explicit compiler(made_plan *out) : plan_(out) {}

    errcode run(const data_type &writer, const data_type &reader) {
        if (is_scalar(reader.what) || is_scalar(writer.what)) {
            return PARCEL_BAD_DESCRIPTOR;
        }
        if (reader.what != writer.what) {
            return PARCEL_SCHEMA_CHANGED;
        }
        plan_->all_programs.emplace_back();
        plan_->size = reader.size;
        draft top;
        add_compound(&top, writer, &reader, 0, 0);
        finish(0, top);
        plan_->programs = plan_->all_programs;
        plan_->steps = plan_->all_steps;
        plan_->arms = plan_->all_arms;
        for (const plan_step &each : top.steps) {
            if (error_ == ERRCODE_SUCCESS && may_own(each)) {
                plan_->all_owners.push_back(each);
            }
        }
        plan_->owners = plan_->all_owners;
        return error_;
    }

private:
    void fail(errcode code) {
        if (error_ == ERRCODE_SUCCESS) {
            error_ = code;
        }
    }

    void add(draft *to, const plan_step &next, std::uint64_t least_wire) {
        if (++steps_ > MAX_STEPS) {
            fail(PARCEL_UNKNOWN_SCHEMA);
            return;
        }
        to->least_wire = static_cast<std::uint32_t>(std::min<std::uint64_t>(to->least_wire + least_wire, 0x7FFFFFFF));
        if (!to->steps.empty()) {
            plan_step &last = to->steps.back();
            if (last.kind == step_kind::copy && next.kind == step_kind::copy &&
                last.offset + last.count == next.offset) {
                last.count += next.count;
                return;
            }
            if (last.kind == step_kind::pass && next.kind == step_kind::pass && next.count <= MAX_PASSED - last.count) {
                last.count += next.count;
                return;
            }
        }
        to->steps.push_back(next);
    }

    // The program of one value of a type pair, made once.
    std::uint32_t program_of(const data_type &writer, const data_type *reader) {
        const auto key = std::make_pair(&writer, reader);
        if (const auto known = made_.find(key); known != made_.end()) {
            return known->second;
        }
        if (nesting_ == MAX_NESTING) {
            fail(PARCEL_UNKNOWN_SCHEMA);
            return 0;
        }
        const auto index = static_cast<std::uint32_t>(plan_->all_programs.size());
        made_.emplace(key, index);  // before its steps: a type may hold itself
        plan_->all_programs.emplace_back();
        draft next;
        ++nesting_;
        add_type(&next, writer, reader, 0, 0);
        --nesting_;
        finish(index, next);
        if (is_flat(next, reader)) {
            plan_->all_programs[index].flat = next.steps[0].count;
        }
        return index;
    }

    // Whether a value is one copy of the whole structure that the reader has for it, or is passed at once where the
    // reader has none. A record of which the reader knows no field is neither: it is passed, and zero in the structure.
    static bool is_flat(const draft &made, const data_type *reader) {
        if (made.steps.size() != 1) {
            return false;
        }
        const plan_step &only = made.steps[0];
        return reader == nullptr ? only.kind == step_kind::pass
                                 : only.kind == step_kind::copy && only.offset == 0 && only.count == reader->size;
    }

    // Whether a step can put a pointer into the structure that it belongs to. An arm that the reader does not
    // know puts nothing there, and may hold its own union.
    [[nodiscard]] bool may_own(const plan_step &step) const {
        const auto program_owns = [&](std::uint32_t program) {
            const auto steps = plan_->steps_of(plan_->programs[program]);
            return std::any_of(steps.begin(), steps.end(), [&](const auto &each) { return may_own(each); });
        };
        switch (step.kind) {
        case step_kind::text:
        case step_kind::optional:
        case step_kind::array: return true;
        case step_kind::fixed_array: return program_owns(step.program);
        case step_kind::tagged_union:
            return std::any_of(plan_->arms.begin() + step.first_arm, plan_->arms.begin() + step.first_arm + step.count,
                               [&](const plan_arm &each) {
                                   return each.known && each.program != NO_PROGRAM && program_owns(each.program);
                               });
        default: return false;
        }
    }

    void finish(std::uint32_t index, const draft &made) {
        plan_program &finished = plan_->all_programs[index];
        finished.begin = static_cast<std::uint32_t>(plan_->all_steps.size());
        plan_->all_steps.insert(plan_->all_steps.end(), made.steps.begin(), made.steps.end());
        finished.end = static_cast<std::uint32_t>(plan_->all_steps.size());
        finished.least_wire = made.least_wire;
    }

    // Whether values of the two types are encoded alike, as far as this level shows.
    static bool same_kind(const data_type &writer, const data_type &reader) {
        return writer.what == reader.what && writer.count == reader.count && writer.format == reader.format;
    }

    // Adds the steps of a value that is at `offset` of the structure.
    void add_type(draft *to, const data_type &writer, const data_type *reader, std::uint32_t offset,
                  std::uint32_t depth) {
        if (error_ != ERRCODE_SUCCESS) {
            return;
        }
        if (reader != nullptr && !same_kind(writer, *reader)) {
            fail(PARCEL_SCHEMA_CHANGED);
            return;
        }
        plan_step next;
        next.offset = offset;
        switch (writer.what) {
        case kind::record:
        case kind::tagged_union: add_compound(to, writer, reader, offset, depth + 1); return;
        case kind::text:
            next.kind = step_kind::text;
            add(to, next, 1);
            return;
        case kind::optional:
        case kind::array: add_indirection(to, writer, reader, next); return;
        case kind::fixed_array: add_fixed_array(to, writer, reader, next); return;
        default:
            next.kind = reader != nullptr ? step_kind::copy : step_kind::pass;
            next.count = writer.size;
            add(to, next, next.count);
        }
    }

    // Sets what a step needs to know of its elements.
    void set_element(plan_step *of, const data_type &writer, const data_type *reader) {
        of->program = program_of(*writer.element, reader != nullptr ? reader->element : nullptr);
        of->size = reader != nullptr ? reader->element->size : 0;
    }

    void add_indirection(draft *to, const data_type &writer, const data_type *reader, plan_step next) {
        next.kind = writer.what == kind::optional ? step_kind::optional : step_kind::array;
        set_element(&next, writer, reader);
        if (next.kind == step_kind::array) {
            refuse_empty(*writer.element);
        }
        add(to, next, 1);
    }

    void add_fixed_array(draft *to, const data_type &writer, const data_type *reader, plan_step next) {
        const data_type &element = *writer.element;
        if (reader != nullptr && !same_kind(element, *reader->element)) {
            fail(PARCEL_SCHEMA_CHANGED);
            return;
        }
        if (is_scalar(element.what)) {
            next.kind = reader != nullptr ? step_kind::copy : step_kind::pass;
            next.count = element.size * writer.count;
            add(to, next, next.count);
            return;
        }
        refuse_empty(element);
        next.kind = step_kind::fixed_array;
        next.count = writer.count;
        set_element(&next, writer, reader);
        add(to, next, std::uint64_t{plan_->all_programs[next.program].least_wire} * writer.count);
    }

    // An element that takes no bytes could be claimed any number of times.
    void refuse_empty(const data_type &element) {
        if (takes_nothing(element, 0)) {
            fail(PARCEL_UNKNOWN_SCHEMA);
        }
    }

    // Whether a value of a writer's type can be encoded in no bytes: a record without fields, or of nothing else.
    bool takes_nothing(const data_type &writer, std::uint32_t depth) {
        if (writer.what == kind::fixed_array) {
            return takes_nothing(*writer.element, depth);
        }
        if (writer.what != kind::record || depth > MAX_FLATTENING) {
            return writer.what == kind::record;
        }
        const auto [known, first] = empty_.emplace(&writer, true);
        if (first) {
            known->second = std::all_of(writer.fields.begin(), writer.fields.end(),
                                        [&](const field &each) { return takes_nothing(*each.type, depth + 1); });
        }
        return known->second;
    }

    // Records and unions count as steps too, as a hostile schema could double empty ones without end.
    void add_compound(draft *to, const data_type &writer, const data_type *reader, std::uint32_t offset,
                      std::uint32_t depth) {
        if (depth > MAX_FLATTENING || ++steps_ > MAX_STEPS) {  // at first: a record that holds itself by value
            fail(PARCEL_UNKNOWN_SCHEMA);
        } else if (writer.what == kind::tagged_union) {
            add_union(to, writer, reader, offset);
        } else {
            add_record(to, writer, reader, offset, depth);
        }
    }

    // The reader's field or arm of that name and value; null when it has none.
    static const field *match(const data_type *reader, const field &wanted) {
        if (reader == nullptr) {
            return nullptr;
        }
        const auto found = std::find_if(reader->fields.begin(), reader->fields.end(), [&](const field &each) {
            return each.name == wanted.name && each.value == wanted.value;
        });
        return found != reader->fields.end() ? &*found : nullptr;
    }

    void add_record(draft *to, const data_type &writer, const data_type *reader, std::uint32_t offset,
                    std::uint32_t depth) {
        draft unread;  // the fields since the last one that the reader knows
        for (const field &each : writer.fields) {
            if (reader == nullptr) {
                add_type(to, *each.type, nullptr, 0, depth);
            } else if (const field *known = match(reader, each); known == nullptr) {
                add_type(&unread, *each.type, nullptr, 0, depth);
            } else {
                add_unread(to, &unread);
                add_type(to, *each.type, known->type, offset + known->offset, depth);
            }
            if (error_ != ERRCODE_SUCCESS) {
                return;
            }
        }
        add_unread(to, &unread);
    }

    // Adds steps that go past the fields collected in `unread`, which is empty afterwards: one for the bytes
    // that they begin with, one for the rest.
    void add_unread(draft *to, draft *unread) {
        if (!unread->steps.empty() && unread->steps[0].kind == step_kind::pass) {
            const plan_step first = unread->steps[0];
            add(to, first, first.count);
            unread->steps.erase(unread->steps.begin());
            unread->least_wire -= std::min(unread->least_wire, first.count);
        }
        if (!unread->steps.empty()) {
            plan_step next;
            next.kind = step_kind::skip;
            next.program = static_cast<std::uint32_t>(plan_->all_programs.size());
            plan_->all_programs.emplace_back();
            finish(next.program, *unread);
            add(to, next, unread->least_wire);
        }
        *unread = {};
    }

    void add_union(draft *to, const data_type &writer, const data_type *reader, std::uint32_t offset) {
        std::vector<plan_arm> arms;
        for (const field &each : writer.fields) {
            const field *known = match(reader, each);
            plan_arm next;
            next.value = each.value;
            next.known = known != nullptr || each.type == nullptr;
            if (each.type != nullptr) {
                next.program = program_of(*each.type, known != nullptr ? known->type : nullptr);
                next.offset = known != nullptr ? offset + known->offset : 0;
            }
            arms.push_back(next);
        }
        plan_step next;
        next.kind = step_kind::tagged_union;
        next.offset = offset;
        next.count = static_cast<std::uint32_t>(arms.size());
        next.first_arm = static_cast<std::uint32_t>(plan_->all_arms.size());
        plan_->all_arms.insert(plan_->all_arms.end(), arms.begin(), arms.end());
        add(to, next, sizeof(std::uint32_t));
    }

    made_plan *plan_;
    std::map<std::pair<const data_type *, const data_type *>, std::uint32_t> made_;
    std::map<const data_type *, bool> empty_;
    std::size_t steps_ = 0;
    std::uint32_t nesting_ = 0;  // of programs that are being made
    errcode error_ = ERRCODE_SUCCESS;
};

// Whether a definition names a field, or lists a value of a union, twice. Such a schema would give one
// place of the structure two contents.
bool repeats_a_field(const schema &written) {
    return std::any_of(written.definitions.begin(), written.definitions.end(), [](const data_type *each) {
        std::set<std::pair<std::string_view, std::uint32_t>> seen;
        return !std::all_of(each->fields.begin(), each->fields.end(), [&](const field &one) {
            const auto name = each->what == kind::tagged_union ? std::string_view{} : one.name;
            return seen.emplace(name, one.value).second;
        });
    });
}

}  // namespace

std::uint64_t fingerprint(std::string_view schema) { return checksum(schema.data(), schema.size()); }

errcode compile(const parcel_descriptor *descriptor, std::string_view writer_schema, made_plan *out) {
    schema reader;
    if (descriptor->format != 1 || parcel_notation::describe(descriptor, &reader)) {
        return PARCEL_BAD_DESCRIPTOR;
    }
    const data_type &record = *reader.definitions.front();
    out->descriptor = descriptor;
    out->fingerprint = fingerprint(writer_schema);
    out->native = writer_schema == descriptor->schema;
    if (out->native) {
        return compile(record, record, out);
    }
    schema writer;
    if (parcel_notation::parse(writer_schema, &writer) || repeats_a_field(writer)) {
        return PARCEL_UNKNOWN_SCHEMA;
    }
    return compile(*writer.definitions.front(), record, out);
}

errcode compile(const data_type &writer, const data_type &reader, made_plan *out) {
    return compiler(out).run(writer, reader);
}

}  // namespace parcel_plan
