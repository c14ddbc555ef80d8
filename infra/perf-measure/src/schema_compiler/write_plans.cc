// SPDX-License-Identifier: Apache-2.0
// Writes the plans of a catalogue's record types, which the codec would else make from the schema texts.
#include <span>

#include "platform/local/codec/parcel_plan.h"
#include "schema_compiler/writers.h"

namespace {

using parcel_plan::made_plan;
using parcel_plan::plan_arm;
using parcel_plan::plan_program;
using parcel_plan::plan_step;

std::string literal(const plan_program &each) {
    return std::to_string(each.begin) + ", " + std::to_string(each.end) + ", " + std::to_string(each.least_wire) +
           ", " + std::to_string(each.flat);
}

std::string literal(const plan_step &each) {
    return "parcel_plan::step_kind{" + std::to_string(static_cast<unsigned>(each.kind)) + "}, " +
           std::to_string(each.offset) + ", " + std::to_string(each.count) + ", " + std::to_string(each.size) + ", " +
           std::to_string(each.program) + ", " + std::to_string(each.first_arm);
}

std::string literal(const plan_arm &each) {
    return std::to_string(each.value) + ", " + std::to_string(each.offset) + ", " + std::to_string(each.program) +
           ", " + (each.known ? "true" : "false");
}

// Defines a part of a plan; gives what the plan says of it.
template <class Part>
std::string write_part(std::ostream &out, const std::string &type, const std::string &name,
                       std::span<const Part> parts) {
    if (parts.empty()) {
        return "{}";
    }
    out << "constexpr parcel_plan::" << type << " " << name << "[] = {\n";
    for (const Part &each : parts) {
        out << "    {" << literal(each) << "},\n";
    }
    out << "};\n";
    return name;
}

// Defines the parts of a type's plan; appends the plan itself to `*plans`.
errcode write_parts(std::ostream &out, const compiled_type &of, std::string *plans) {
    made_plan plan;
    if (const errcode error = parcel_plan::compile(of.top(), of.top(), &plan); error != ERRCODE_SUCCESS) {
        return error;
    }
    const std::string &name = of.source->name;
    *plans += "    {&" + name + "_description, " + std::to_string(parcel_plan::fingerprint(of.text)) + "U, true, " +
              std::to_string(plan.size) + ",\n     " +
              write_part(out, "plan_program", name + "_programs", plan.programs) + ", " +
              write_part(out, "plan_step", name + "_steps", plan.steps) + ", " +
              write_part(out, "plan_arm", name + "_arms", plan.arms) + ", " +
              write_part(out, "plan_step", name + "_owners", plan.owners) + "},\n";
    return ERRCODE_SUCCESS;
}

}  // namespace

errcode write_plans(std::ostream &out, const record_catalogue &catalogue, const compiled_types &all) {
    std::string plans;
    out << "namespace {\n\n";
    for (const catalogue_entry &each : catalogue.entries) {
        if (each.inner) {
            continue;
        }
        if (const errcode error = write_parts(out, all.at(each.name), &plans); error != ERRCODE_SUCCESS) {
            return error;
        }
    }
    out << "\nconstexpr parcel_plan::record_plan plans[] = {\n"
        << plans << "};\n\nconstinit parcel_plan::built_plans built{plans};\n"
        << "[[maybe_unused]] const bool added = parcel_plan::add_built_plans(&built);\n\n}  // namespace\n";
    return ERRCODE_SUCCESS;
}
