// SPDX-License-Identifier: Apache-2.0
// Which members are counters, and how their growth is told.
#include "perf-store/diff/counters.h"

#include <gtest/gtest.h>
#include <set>
#include <string>

#include "perf-store/datasets/record_shape.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"

namespace {

using perf_store::counter_change;
using perf_store::is_counter;
using perf_store::is_time_stamp;
using perf_store::newest_time_stamp;

constexpr std::uint64_t NO_INTERVAL = 0;

TEST(CounterChange, IsTheGrowthAndItsRate) {
    EXPECT_EQ(counter_change(120, 140, 64, NO_INTERVAL), "+20");
    EXPECT_EQ(counter_change(120, 120, 32, NO_INTERVAL), "+0");
    EXPECT_EQ(counter_change(120, 140, 64, 10'000), "+20, 2.000/s");
    EXPECT_EQ(counter_change(0, 1, 32, 3'000), "+1, 0.333/s");
    EXPECT_EQ(counter_change(0, UINT64_MAX, 64, NO_INTERVAL), "+18446744073709551615");
}

TEST(CounterChange, OfOneThatWentBackIsAReset) {
    EXPECT_EQ(counter_change(140, 5, 64, 10'000), "reset");
    EXPECT_EQ(counter_change(140, 0, 32, 10'000), "reset");
    EXPECT_EQ(counter_change(2'147'483'647, 0, 32, NO_INTERVAL), "reset");  // more than half of the range back
}

TEST(CounterChange, WrapsWhereTheWayForwardIsTheShorterOne) {
    EXPECT_EQ(counter_change(4'294'967'290, 4, 32, 1'000), "+10 (wrapped), 10.000/s");
    EXPECT_EQ(counter_change(UINT64_MAX, 1, 64, NO_INTERVAL), "+2 (wrapped)");
    EXPECT_EQ(counter_change(2'147'483'649, 0, 32, NO_INTERVAL), "+2147483647 (wrapped)");
}

// All names of fields that hold numbers, of all record types.
std::set<std::string_view> numbers_of_64_bits() {
    using parcel_notation::kind;
    std::set<std::string_view> names;
    for (const parcel_descriptor *type : pm_descriptors()) {
        for (const parcel_notation::field &field : perf_store::shape_of(type).record().fields) {
            const auto *shape = field.type;
            while (shape != nullptr && shape->element != nullptr) {
                shape = shape->element;
            }
            if (shape != nullptr && shape->what == kind::u64) {
                names.insert(field.name);
            }
        }
    }
    return names;
}

// A new field of 64 bits is to be classified: as a counter, as a time stamp or here.
TEST(Counters, AreToldFromEveryOtherNumberOf64Bits) {
    const std::set<std::string_view> neither = {
        "MeasurementValue",         // a delay
        "CurrentPacketTXInWindow",  // begin anew with each window
        "CurrentPacketRXInWindow",  //
        "NumSentPacket",            // of one probe
        "NumReceivedPacket",        //
        "DriftAboveThresholdPercentage",
        "PacketKPKT_RxPuntPPS_Percentage",
        "PacketIP_UDP_PuntPPS_Percentage",
        "PacketPD_RxPuntPPS_Percentage",
        "TransmitTime",
        "ReceiveTime",
    };
    const std::set<std::string_view> names = numbers_of_64_bits();
    ASSERT_GT(names.size(), 80U);
    for (const std::string_view name : names) {
        EXPECT_EQ(is_counter(name) + is_time_stamp(name) + (neither.contains(name) ? 1 : 0), 1) << name;
    }
    for (const std::string_view name : neither) {
        EXPECT_TRUE(names.contains(name)) << name;
    }
}

TEST(Counters, OfQueuesAndOfTheNpuHave32Bits) {
    EXPECT_TRUE(is_counter("NumberOfEnqueues"));
    EXPECT_TRUE(is_counter("LivenessUPNotificatins"));
    EXPECT_FALSE(is_counter("QueueSize"));
    EXPECT_FALSE(is_counter("NumberOfPacketsSent"));  // of the probe that runs
}

TEST(NewestTimeStamp, IsFoundWhereverItIsInARecord) {
    pm_scb_sample_parcel samples[2]{};
    samples[0].QueryTimestamp = 1'700'000'000'500;
    samples[1].QueryTimestamp = 1'700'000'000'100;
    samples[1].MeasurementValue = 1'900'000'000'000;  // no time
    pm_scb_parcel session{};
    session.ProbeHistory = {2, samples};
    session.CurrentProbe.ProbeStartTimeStamp = 1'700'000'000'000;
    pm_intf_parcel record{};
    record.DelayMeasurementSessions = {1, &session};
    EXPECT_EQ(newest_time_stamp(&record, pm_intf_parcel_descriptor()), 1'700'000'000'500U);
    session.CurrentProbe.ProbeStartTimeStamp = 1'700'000'001'000;
    EXPECT_EQ(newest_time_stamp(&record, pm_intf_parcel_descriptor()), 1'700'000'001'000U);
}

TEST(NewestTimeStamp, OfARecordWithoutOneIsZero) {
    const pm_intf_parcel record{};
    EXPECT_EQ(newest_time_stamp(&record, pm_intf_parcel_descriptor()), 0U);
}

}  // namespace
