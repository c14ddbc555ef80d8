// SPDX-License-Identifier: Apache-2.0
// Registration of the record types, against a codec that fails where a test says.
#include "schema/registration.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "schema/pm_descriptors.h"

namespace {

constexpr errcode FAILURE = 0x1234;

// What the codec was asked for, and which call it refuses.
struct fake_codec {
    std::vector<std::string> calls;
    bool start_fails = false;
    bool end_fails = false;
    std::string refused_type;
};

fake_codec codec;

}  // namespace

errcode parcel_register_start() {
    codec.calls.emplace_back("start");
    return codec.start_fails ? FAILURE : ERRCODE_SUCCESS;
}

errcode parcel_register(const parcel_descriptor *descriptor) {
    codec.calls.emplace_back(descriptor->name);
    return codec.refused_type == descriptor->name ? FAILURE : ERRCODE_SUCCESS;
}

errcode parcel_register_end() {
    codec.calls.emplace_back("end");
    return codec.end_fails ? FAILURE : ERRCODE_SUCCESS;
}

void parcel_register_abort() { codec.calls.emplace_back("abort"); }

namespace {

class Registration : public testing::Test {
protected:
    void SetUp() override { codec = {}; }
};

TEST_F(Registration, EachRoutineRegistersItsRunOfTheCatalogueInOrder) {
    struct run {
        errcode (*routine)();
        const char *first;
    };
    std::size_t total = 0;
    for (const run &wanted : {run{pm_register_main_parcels, "pm_values_parcel"},
                              run{pm_register_responder_parcels, "pm_counter_resp_parcel"},
                              run{pm_register_receive_parcels, "pm_counter_rx_type_parcel"},
                              run{pm_register_checkpoint_parcels, "pm_chkpt_scb_parcel"},
                              run{pm_register_process_parcels, "pm_failover_status"},
                              run{pm_register_queue_parcels, "pm_queue_stats_parcel"}}) {
        codec = {};
        EXPECT_EQ(wanted.routine(), ERRCODE_SUCCESS);
        ASSERT_GT(codec.calls.size(), 2U);
        EXPECT_EQ(codec.calls.front(), "start");
        EXPECT_EQ(codec.calls[1], wanted.first);
        EXPECT_EQ(codec.calls.back(), "end");
        const std::size_t types = codec.calls.size() - 2;
        ASSERT_LE(total + types, pm_descriptors().size());
        for (std::size_t i = 0; i < types; ++i) {
            EXPECT_EQ(codec.calls[i + 1], pm_descriptors()[total + i]->name);
        }
        total += types;
    }
    EXPECT_EQ(total, pm_descriptors().size());
}

TEST_F(Registration, AFailedStartRegistersNothing) {
    codec.start_fails = true;
    EXPECT_EQ(pm_register_checkpoint_parcels(), FAILURE);
    EXPECT_EQ(codec.calls, (std::vector<std::string>{"start"}));
}

TEST_F(Registration, TheFirstRefusedTypeAbortsTheRun) {
    codec.refused_type = "pm_chkpt_dr_info";
    EXPECT_EQ(pm_register_checkpoint_parcels(), FAILURE);
    EXPECT_EQ(codec.calls, (std::vector<std::string>{"start", "pm_chkpt_scb_parcel", "pm_chkpt_dr_info", "abort"}));
}

TEST_F(Registration, AFailedEndIsTheResult) {
    codec.end_fails = true;
    EXPECT_EQ(pm_register_queue_parcels(), FAILURE);
    EXPECT_EQ(codec.calls.back(), "end");
}

}  // namespace
