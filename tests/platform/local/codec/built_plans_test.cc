// SPDX-License-Identifier: Apache-2.0
// The plans made while the program is built are those that the codec would make from the schema texts.
#include "platform/local/codec/built_plans.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <span>
#include <vector>

#include "platform/local/filters/view_descriptors.h"
#include "platform/local/store/local_store_descriptors.h"
#include "schema/pm_descriptors.h"

namespace parcel_plan {

// Compared member by member, for the parts have padding.
static bool operator==(const plan_program &a, const plan_program &b) {
    return a.begin == b.begin && a.end == b.end && a.least_wire == b.least_wire && a.flat == b.flat;
}
static bool operator==(const plan_step &a, const plan_step &b) {
    return a.kind == b.kind && a.offset == b.offset && a.count == b.count && a.size == b.size &&
           a.program == b.program && a.first_arm == b.first_arm;
}
static bool operator==(const plan_arm &a, const plan_arm &b) {
    return a.value == b.value && a.offset == b.offset && a.program == b.program && a.known == b.known;
}

namespace {

template <class Part>
bool same(std::span<const Part> a, std::span<const Part> b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

std::vector<const parcel_descriptor *> all_types() {
    std::vector<const parcel_descriptor *> types;
    for (const auto list : {pm_descriptors(), view_descriptors(), local_store_descriptors()}) {
        types.insert(types.end(), list.begin(), list.end());
    }
    return types;
}

TEST(BuiltPlans, AreWhatTheSchemasGive) {
    ASSERT_GT(all_types().size(), 50U);
    for (const parcel_descriptor *type : all_types()) {
        made_plan made;
        ASSERT_EQ(compile(type, type->schema, &made), ERRCODE_SUCCESS) << type->name;
        const record_plan *const built = find_built_plan(type, nullptr);
        ASSERT_NE(built, nullptr) << type->name;
        EXPECT_EQ(built->descriptor, type);
        EXPECT_EQ(built->fingerprint, made.fingerprint) << type->name;
        EXPECT_TRUE(built->native);
        EXPECT_EQ(built->size, made.size) << type->name;
        EXPECT_TRUE(same(built->programs, made.programs)) << type->name;
        EXPECT_TRUE(same(built->steps, made.steps)) << type->name;
        EXPECT_TRUE(same(built->arms, made.arms)) << type->name;
        EXPECT_TRUE(same(built->owners, made.owners)) << type->name;
    }
}

TEST(BuiltPlans, AreFoundByTheSchemaOfARecord) {
    const parcel_descriptor *const type = pm_values_parcel_descriptor();
    const std::uint64_t own = fingerprint(type->schema);
    const std::uint64_t other = own + 1;
    EXPECT_EQ(find_built_plan(type, &own), find_built_plan(type, nullptr));
    EXPECT_EQ(find_built_plan(type, &other), nullptr);
    const parcel_descriptor unknown = *type;
    EXPECT_EQ(find_built_plan(&unknown, nullptr), nullptr);
    EXPECT_EQ(find_built_plan(&unknown, &own), nullptr);
}

}  // namespace
}  // namespace parcel_plan
