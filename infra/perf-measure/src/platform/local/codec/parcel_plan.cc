// Compiles decode plans. See parcel_plan.h.
#include "platform/local/codec/parcel_plan.h"

#include <algorithm>
#include <map>
#include <set>

#include "platform/local/codec/checksum.h"
#include "platform/local/codec/parcel_notation.h"

namespace parcel_plan {

namespace {

using parcel_notation::definition;
using parcel_notation::form;
using parcel_notation::kind;
using parcel_notation::schema;
using parcel_notation::type;
using parcel_notation::type_index;

constexpr type_index NOT_READ = 0xFFFFFFFF;        // the reader does not know this part
constexpr std::uint32_t MAX_FLATTENING = 64;       // of records that stand in one another by value
constexpr std::size_t MAX_STEPS = 1U << 16;        // of a whole plan; a hostile schema could double without end
constexpr std::uint64_t MAX_STRUCTURE = 1U << 24;  // bytes

// A program while it is made.
struct draft {
    std::vector<step> steps;
    std::uint32_t least_wire = 0;
};

class compiler {
public:
    compiler(const parcel_descriptor *descriptor, const schema &reader, const schema &writer, plan *out)
        : descriptor_(descriptor), reader_(reader), writer_(writer), plan_(out) {}

    errcode run() {
        if (reader_.definitions[0].what == form::scalar || writer_.definitions[0].what == form::scalar) {
            return PARCEL_BAD_DESCRIPTOR;
        }
        plan_->programs.emplace_back();
        plan_->size = checked(descriptor_->layout[0].size);
        draft top;
        add_definition(&top, 0, 0, 0, 0);
        finish(0, top);
        for (const step &each : top.steps) {
            if (error_ == ERRCODE_SUCCESS && may_own(each)) {
                plan_->owners.push_back(each);
            }
        }
        return error_;
    }

private:
    void fail(errcode code) {
        if (error_ == ERRCODE_SUCCESS) {
            error_ = code;
        }
    }

    std::uint32_t checked(std::uint64_t bytes) {
        if (bytes > MAX_STRUCTURE) {
            fail(PARCEL_BAD_DESCRIPTOR);
            return 0;
        }
        return static_cast<std::uint32_t>(bytes);
    }

    // The layout entry of a reader definition; null when the table lacks it.
    const parcel_layout *layout_of(parcel_notation::definition_index index) {
        if (index == 0) {
            return &descriptor_->layout[0];
        }
        const std::uint32_t number = reader_.definitions[index].number;
        for (std::uint64_t i = 1; i <= descriptor_->layout[0].number; ++i) {
            if (descriptor_->layout[i].number == number) {
                return &descriptor_->layout[i];
            }
        }
        fail(PARCEL_BAD_DESCRIPTOR);
        return nullptr;
    }

    // Bytes of a reader type in the structure.
    std::uint32_t size_of(type_index index) {
        const type &type = parcel_notation::resolve(reader_, index);
        switch (type.what) {
        case kind::text:
        case kind::optional: return sizeof(void *);
        case kind::array: return sizeof(parcel_array<char>);
        case kind::fixed_array: return checked(std::uint64_t{size_of(type.element)} * type.count);
        case kind::reference: {
            const parcel_layout *layout = layout_of(type.definition);
            return layout == nullptr ? 0 : checked(layout->size);
        }
        default: return parcel_notation::scalar_size(type);
        }
    }

    void add(draft *to, const step &next, std::uint64_t least_wire) {
        if (++steps_ > MAX_STEPS) {
            fail(PARCEL_UNKNOWN_SCHEMA);
            return;
        }
        to->least_wire = static_cast<std::uint32_t>(std::min<std::uint64_t>(to->least_wire + least_wire, 0x7FFFFFFF));
        if (!to->steps.empty()) {
            step &last = to->steps.back();
            if (last.kind == step_kind::copy && next.kind == step_kind::copy &&
                last.offset + last.count == next.offset) {
                last.count += next.count;
                return;
            }
            if (last.kind == step_kind::pass && next.kind == step_kind::pass &&
                next.count <= MAX_STRUCTURE - last.count) {
                last.count += next.count;
                return;
            }
        }
        to->steps.push_back(next);
    }

    // The program of one value of a type pair, made once.
    std::uint32_t program_of(type_index writer, type_index reader) {
        const auto key = std::make_pair(writer, reader);
        if (const auto known = made_.find(key); known != made_.end()) {
            return known->second;
        }
        const auto index = static_cast<std::uint32_t>(plan_->programs.size());
        made_.emplace(key, index);  // before its steps: a type may hold itself
        plan_->programs.emplace_back();
        draft next;
        add_type(&next, writer, reader, 0, 0);
        finish(index, next);
        if (reader != NOT_READ && next.steps.size() == 1 && next.steps[0].kind == step_kind::copy &&
            next.steps[0].offset == 0 && next.steps[0].count == size_of(reader)) {
            plan_->programs[index].flat = next.steps[0].count;
        }
        if (next.steps.size() == 1 && next.steps[0].kind == step_kind::pass) {
            plan_->programs[index].flat = next.steps[0].count;
        }
        return index;
    }

    // Whether a step can put a pointer into the structure that it belongs to. An arm that the reader does not
    // know puts nothing there, and may hold its own union.
    [[nodiscard]] bool may_own(const step &step) const {
        const auto program_owns = [&](std::uint32_t program) {
            const auto steps = plan_->steps_of(plan_->programs[program]);
            return std::any_of(steps.begin(), steps.end(), [&](const auto &each) { return may_own(each); });
        };
        switch (step.kind) {
        case step_kind::text:
        case step_kind::optional:
        case step_kind::array: return true;
        case step_kind::fixed_array: return program_owns(step.program);
        case step_kind::choice:
            return std::any_of(plan_->arms.begin() + step.first_arm, plan_->arms.begin() + step.first_arm + step.count,
                               [&](const arm &each) {
                                   return each.known && each.program != NO_PROGRAM && program_owns(each.program);
                               });
        default: return false;
        }
    }

    void finish(std::uint32_t index, const draft &made) {
        program &finished = plan_->programs[index];
        finished.begin = static_cast<std::uint32_t>(plan_->steps.size());
        plan_->steps.insert(plan_->steps.end(), made.steps.begin(), made.steps.end());
        finished.end = static_cast<std::uint32_t>(plan_->steps.size());
        finished.least_wire = made.least_wire;
    }

    // Whether values of the two types are encoded alike, as far as this level shows.
    [[nodiscard]] bool same_kind(const type &writer, const type &reader) const {
        if (writer.what != reader.what || writer.count != reader.count) {
            return false;
        }
        if (writer.what == kind::reference) {
            return writer_.definitions[writer.definition].what == reader_.definitions[reader.definition].what;
        }
        return writer.what != kind::bytes || writer.format == reader.format;
    }

    // Adds the steps of a value that stands at `offset`; `reader` is NOT_READ in a skipped part.
    void add_type(draft *to, type_index writer, type_index reader, std::uint32_t offset, std::uint32_t depth) {
        if (error_ != ERRCODE_SUCCESS) {
            return;
        }
        const type &from = parcel_notation::resolve(writer_, writer);
        const bool read = reader != NOT_READ;
        const type *into = read ? &parcel_notation::resolve(reader_, reader) : nullptr;
        if (read && !same_kind(from, *into)) {
            fail(PARCEL_SCHEMA_CHANGED);
            return;
        }
        step next;
        next.offset = offset;
        switch (from.what) {
        case kind::reference:
            add_definition(to, from.definition, read ? into->definition : NOT_READ, offset, depth + 1);
            return;
        case kind::text:
            next.kind = step_kind::text;
            add(to, next, 1);
            return;
        case kind::optional:
        case kind::array: add_indirection(to, from, into, next); return;
        case kind::fixed_array: add_fixed_array(to, from, into, next); return;
        default:
            next.kind = read ? step_kind::copy : step_kind::pass;
            next.count = parcel_notation::scalar_size(from);
            add(to, next, next.count);
        }
    }

    void add_indirection(draft *to, const type &from, const type *into, step next) {
        next.kind = from.what == kind::optional ? step_kind::optional : step_kind::array;
        next.program = program_of(from.element, into != nullptr ? into->element : NOT_READ);
        next.size = into != nullptr ? size_of(into->element) : 0;
        if (next.kind == step_kind::array) {
            refuse_empty(from.element);
        }
        add(to, next, 1);
    }

    void add_fixed_array(draft *to, const type &from, const type *into, step next) {
        const type &element = parcel_notation::resolve(writer_, from.element);
        if (into != nullptr && !same_kind(element, parcel_notation::resolve(reader_, into->element))) {
            fail(PARCEL_SCHEMA_CHANGED);
            return;
        }
        const std::uint32_t scalar = parcel_notation::scalar_size(element);
        if (scalar != 0) {
            next.kind = into != nullptr ? step_kind::copy : step_kind::pass;
            next.count = scalar * from.count;
            add(to, next, next.count);
            return;
        }
        refuse_empty(from.element);
        next.kind = step_kind::fixed_array;
        next.count = from.count;
        next.size = into != nullptr ? size_of(into->element) : 0;
        next.program = program_of(from.element, into != nullptr ? into->element : NOT_READ);
        add(to, next, std::uint64_t{plan_->programs[next.program].least_wire} * from.count);
    }

    // An element that takes no bytes could be claimed any number of times.
    void refuse_empty(type_index writer_element) {
        if (takes_nothing(writer_element, 0)) {
            fail(PARCEL_UNKNOWN_SCHEMA);
        }
    }

    // Whether a value of a writer type can be encoded in no bytes: a record without fields.
    [[nodiscard]] bool takes_nothing(type_index index, std::uint32_t depth) const {
        const type &type = parcel_notation::resolve(writer_, index);
        if (type.what == kind::fixed_array) {
            return takes_nothing(type.element, depth);
        }
        if (type.what != kind::reference || writer_.definitions[type.definition].what == form::choice) {
            return false;
        }
        if (depth > MAX_FLATTENING) {
            return true;
        }
        const auto &fields = writer_.definitions[type.definition].fields;
        return std::all_of(fields.begin(), fields.end(),
                           [&](const parcel_notation::field &each) { return takes_nothing(each.type, depth + 1); });
    }

    void add_definition(draft *to, parcel_notation::definition_index writer, parcel_notation::definition_index reader,
                        std::uint32_t offset, std::uint32_t depth) {
        if (depth > MAX_FLATTENING) {  // a record that holds itself by value
            fail(PARCEL_UNKNOWN_SCHEMA);
            return;
        }
        const parcel_layout *layout = reader != NOT_READ ? layout_of(reader) : nullptr;
        if (error_ != ERRCODE_SUCCESS) {
            return;
        }
        if (writer_.definitions[writer].what == form::choice) {
            add_choice(to, writer_.definitions[writer], reader, layout, offset);
        } else {
            add_record(to, writer_.definitions[writer], reader, layout, offset, depth);
        }
    }

    // The reader's field or arm of that name and value; -1 when it has none.
    static int find(const definition *in, const parcel_notation::field &wanted) {
        if (in != nullptr) {
            for (std::size_t i = 0; i < in->fields.size(); ++i) {
                if (in->fields[i].name == wanted.name && in->fields[i].value == wanted.value) {
                    return static_cast<int>(i);
                }
            }
        }
        return -1;
    }

    void add_record(draft *to, const definition &from, parcel_notation::definition_index reader,
                    const parcel_layout *layout, std::uint32_t offset, std::uint32_t depth) {
        const definition *into = reader != NOT_READ ? &reader_.definitions[reader] : nullptr;
        draft unread;  // the fields since the last one that the reader knows
        for (const parcel_notation::field &field : from.fields) {
            if (into == nullptr) {
                add_type(to, field.type, NOT_READ, 0, depth);
            } else if (const int match = find(into, field); match < 0) {
                add_type(&unread, field.type, NOT_READ, 0, depth);
            } else {
                add_unread(to, &unread);
                const auto at = static_cast<std::size_t>(match);
                add_type(to, field.type, into->fields[at].type, offset + checked(layout->offsets[at]), depth);
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
            const step first = unread->steps[0];
            add(to, first, first.count);
            unread->steps.erase(unread->steps.begin());
            unread->least_wire -= std::min(unread->least_wire, first.count);
        }
        if (!unread->steps.empty()) {
            step next;
            next.kind = step_kind::skip;
            next.program = static_cast<std::uint32_t>(plan_->programs.size());
            plan_->programs.emplace_back();
            finish(next.program, *unread);
            add(to, next, unread->least_wire);
        }
        *unread = {};
    }

    void add_choice(draft *to, const definition &from, parcel_notation::definition_index reader,
                    const parcel_layout *layout, std::uint32_t offset) {
        const definition *into = reader != NOT_READ ? &reader_.definitions[reader] : nullptr;
        std::vector<arm> arms;
        for (const parcel_notation::field &field : from.fields) {
            arm next;
            next.value = field.value;
            const int match = find(into, field);
            next.known = match >= 0 || field.empty;
            if (!field.empty) {
                const auto at = static_cast<std::size_t>(std::max(match, 0));
                next.program = program_of(field.type, match >= 0 ? into->fields[at].type : NOT_READ);
                next.offset = match >= 0 ? offset + checked(layout->offsets[at + 1]) : 0;
            }
            arms.push_back(next);
        }
        step next;
        next.kind = step_kind::choice;
        next.offset = offset;
        next.count = static_cast<std::uint32_t>(arms.size());
        next.first_arm = static_cast<std::uint32_t>(plan_->arms.size());
        plan_->arms.insert(plan_->arms.end(), arms.begin(), arms.end());
        add(to, next, sizeof(std::uint32_t));
    }

    const parcel_descriptor *descriptor_;
    const schema &reader_;
    const schema &writer_;
    plan *plan_;
    std::map<std::pair<type_index, type_index>, std::uint32_t> made_;
    std::size_t steps_ = 0;
    errcode error_ = ERRCODE_SUCCESS;
};

// Whether a definition names a field, or lists a value of a union, twice. Such a schema would give one
// place of the structure two contents.
bool repeats_a_field(const schema &schema) {
    return std::any_of(schema.definitions.begin(), schema.definitions.end(), [](const definition &each) {
        std::set<std::pair<std::string_view, std::uint32_t>> seen;
        return !std::all_of(each.fields.begin(), each.fields.end(), [&](const parcel_notation::field &field) {
            const auto name = each.what == form::choice ? std::string_view{} : field.name;
            return seen.emplace(name, field.value).second;
        });
    });
}

}  // namespace

std::uint64_t fingerprint(std::string_view schema) { return checksum(schema.data(), schema.size()); }

errcode compile(const parcel_descriptor *descriptor, std::string_view writer_schema, plan *out) {
    schema reader;
    if (descriptor->format != 1 || !parcel_notation::parse(descriptor->schema, &reader, nullptr)) {
        return PARCEL_BAD_DESCRIPTOR;
    }
    out->descriptor = descriptor;
    out->fingerprint = fingerprint(writer_schema);
    out->native = writer_schema == descriptor->schema;
    if (out->native) {
        return compiler(descriptor, reader, reader, out).run();
    }
    schema writer;
    if (!parcel_notation::parse(writer_schema, &writer, nullptr) || repeats_a_field(writer)) {
        return PARCEL_UNKNOWN_SCHEMA;
    }
    return compiler(descriptor, reader, writer, out).run();
}

}  // namespace parcel_plan
