// SPDX-License-Identifier: Apache-2.0
// Registration with the codec itself.
#include <gtest/gtest.h>

#include "schema/pm_descriptors.h"
#include "tests/support/codec_fixture.h"

namespace {

// A type of that name, which no other test registers.
const parcel_descriptor *named(const char *name, const char *schema = "$1={Count}D;") {
    auto *type = const_cast<parcel_descriptor *>(make_type(schema, 4, {0}));
    type->name = name;
    return type;
}

class Registry : public testing::Test {
protected:
    void TearDown() override { parcel_register_abort(); }
};

TEST_F(Registry, ATypeIsRegisteredWhenItsTransactionEnds) {
    const parcel_descriptor *type = named("committed");
    ASSERT_EQ(parcel_register_start(), ERRCODE_SUCCESS);
    ASSERT_EQ(parcel_register(type), ERRCODE_SUCCESS);
    EXPECT_EQ(parcel_registered("committed"), nullptr);
    ASSERT_EQ(parcel_register_end(), ERRCODE_SUCCESS);
    EXPECT_EQ(parcel_registered("committed"), type);
    EXPECT_EQ(parcel_registered("commit"), nullptr);
}

TEST_F(Registry, AnAbortedTransactionRegistersNothing) {
    const parcel_descriptor *kept = named("kept");
    ASSERT_EQ(parcel_register_start(), ERRCODE_SUCCESS);
    ASSERT_EQ(parcel_register(kept), ERRCODE_SUCCESS);
    ASSERT_EQ(parcel_register_end(), ERRCODE_SUCCESS);
    ASSERT_EQ(parcel_register_start(), ERRCODE_SUCCESS);
    ASSERT_EQ(parcel_register(named("aborted")), ERRCODE_SUCCESS);
    parcel_register_abort();
    EXPECT_EQ(parcel_registered("aborted"), nullptr);
    EXPECT_EQ(parcel_registered("kept"), kept);
    ASSERT_EQ(parcel_register_start(), ERRCODE_SUCCESS);
    ASSERT_EQ(parcel_register_end(), ERRCODE_SUCCESS);
    EXPECT_EQ(parcel_registered("aborted"), nullptr);
}

TEST_F(Registry, CallsOutsideOfATransactionAreRefused) {
    EXPECT_EQ(parcel_register(named("outside")), ERRCODE_INVALID_ARGUMENT);
    EXPECT_EQ(parcel_register_end(), ERRCODE_INVALID_ARGUMENT);
    ASSERT_EQ(parcel_register_start(), ERRCODE_SUCCESS);
    EXPECT_EQ(parcel_register_start(), ERRCODE_INVALID_ARGUMENT);
    EXPECT_EQ(parcel_register(nullptr), ERRCODE_INVALID_ARGUMENT);
    EXPECT_EQ(parcel_register_end(), ERRCODE_SUCCESS);
    EXPECT_EQ(parcel_registered("outside"), nullptr);
}

TEST_F(Registry, ANameBelongsToOneDescriptor) {
    const parcel_descriptor *first = named("twice");
    const parcel_descriptor *second = named("twice");
    ASSERT_EQ(parcel_register_start(), ERRCODE_SUCCESS);
    ASSERT_EQ(parcel_register(first), ERRCODE_SUCCESS);
    EXPECT_EQ(parcel_register(first), ERRCODE_SUCCESS);
    EXPECT_EQ(parcel_register(second), ERRCODE_INVALID_ARGUMENT);
    ASSERT_EQ(parcel_register_end(), ERRCODE_SUCCESS);
    ASSERT_EQ(parcel_register_start(), ERRCODE_SUCCESS);
    EXPECT_EQ(parcel_register(first), ERRCODE_SUCCESS);
    EXPECT_EQ(parcel_register(second), ERRCODE_INVALID_ARGUMENT);
    EXPECT_EQ(parcel_registered("twice"), first);
}

TEST_F(Registry, ADescriptorThatIsWrongIsRefused) {
    ASSERT_EQ(parcel_register_start(), ERRCODE_SUCCESS);
    EXPECT_EQ(parcel_register(named("wrong", "$1={Count}Q;")), PARCEL_BAD_DESCRIPTOR);
    EXPECT_EQ(parcel_register(named("incomplete", "$1={Part}$2;$2={Count}D;")), PARCEL_BAD_DESCRIPTOR);
    ASSERT_EQ(parcel_register_end(), ERRCODE_SUCCESS);
    EXPECT_EQ(parcel_registered("wrong"), nullptr);
}

TEST_F(Registry, TheRoutinesRegisterAllRecordTypes) {
    for (errcode (*routine)() :
         {pm_register_main_parcels, pm_register_responder_parcels, pm_register_receive_parcels,
          pm_register_checkpoint_parcels, pm_register_process_parcels, pm_register_queue_parcels}) {
        EXPECT_EQ(routine(), ERRCODE_SUCCESS);
    }
    for (const parcel_descriptor *each : pm_descriptors()) {
        EXPECT_EQ(parcel_registered(each->name), each);
    }
}

}  // namespace
