// SPDX-License-Identifier: Apache-2.0
// Why a session does not run: each reason that a host can cause, from a state of the host that causes it.
#include "perf-probed/service/resolve.h"

#include <gtest/gtest.h>
#include <net/if_arp.h>

#include "perf-probed/service/session_plan.h"

namespace {

using namespace probed;

ip_address address(const char *text) {
    ip_address parsed;
    EXPECT_TRUE(parse_address(text, &parsed));
    return parsed;
}

struct resolve_test : testing::Test {
    host_state host{
        {{2, "eth0", ARPHRD_ETHER, true, true, {}, {address("192.0.2.1"), address("2001:db8::1"), address("fe80::1")}}},
        {}};
    endpoint_config endpoint;
    interface_config interface;
    bool has_profile = true;
    pm_delay_mode_e mode = PM_DELAY_MODE_TWO_WAY;

    resolve_test() {
        endpoint.address = address("198.51.100.7");
        interface.name = "eth0";
        interface.next_hop = address("192.0.2.2");
    }
    host_interface &eth0() { return host.interfaces[0]; }
    pm_probe_running_error_reason of_endpoint() { return resolve(endpoint, has_profile, mode, host).reason; }
    pm_probe_running_error_reason of_interface() { return resolve(interface, has_profile, mode, host).reason; }
};

TEST_F(resolve_test, both_run_as_they_are) {
    EXPECT_EQ(of_endpoint(), PM_NOT_RUNNING_NONE);
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_NONE);
    const resolved from = resolve(interface, true, mode, host);
    EXPECT_EQ(text_of(from.source), "192.0.2.1");
    EXPECT_EQ(from.interface, 2U);
}

TEST_F(resolve_test, a_suspended_session) {
    endpoint.suspended = interface.suspended = true;
    EXPECT_EQ(of_endpoint(), PM_NOT_RUNNING_SUSPENDED);
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_SUSPENDED);
}

TEST_F(resolve_test, a_profile_that_is_not_there) {
    has_profile = false;
    EXPECT_EQ(of_endpoint(), PM_NOT_RUNNING_NO_PROFILE);
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_NO_PROFILE);
}

TEST_F(resolve_test, loopback_mode) {
    mode = PM_DELAY_MODE_LOOPBACK;
    EXPECT_EQ(of_endpoint(), PM_NOT_RUNNING_LOOPBACK_UNSUPPORTED);
}

TEST_F(resolve_test, a_vrf_that_is_not_there) {
    endpoint.vrf = "red";
    EXPECT_EQ(of_endpoint(), PM_NOT_RUNNING_NO_VRF);
    host.interfaces.push_back({3, "red", ARPHRD_ETHER, true, true, {}, {}});
    EXPECT_EQ(of_endpoint(), PM_NOT_RUNNING_NONE);
}

TEST_F(resolve_test, no_address_of_the_endpoints_family) {
    eth0().addresses = {address("192.0.2.1")};
    endpoint.address = address("2001:db8::7");
    EXPECT_EQ(of_endpoint(), PM_NOT_RUNNING_NO_SOURCE_ADDRESS);
    endpoint.address = address("::1");
    EXPECT_EQ(of_endpoint(), PM_NOT_RUNNING_NONE);
}

TEST_F(resolve_test, sources_of_endpoints) {
    endpoint.source = address("2001:db8::1");
    EXPECT_EQ(of_endpoint(), PM_NOT_RUNNING_SOURCE_FAMILY_MISMATCH);
    endpoint.source = endpoint.address;
    EXPECT_EQ(of_endpoint(), PM_NOT_RUNNING_INVALID_SOURCE_ADDRESS);
    endpoint.source = address("192.0.2.9");
    EXPECT_EQ(of_endpoint(), PM_NOT_RUNNING_NO_IP_ADDRESS);
    endpoint.source = address("192.0.2.1");
    EXPECT_EQ(of_endpoint(), PM_NOT_RUNNING_NONE);
}

TEST_F(resolve_test, interfaces_that_are_not_there_or_not_up) {
    eth0().is_running = false;
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_INTERFACE_DOWN);
    eth0().admin_up = false;
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_INTERFACE_ADMIN_DOWN);
    eth0().type = ARPHRD_CAN;
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_INTERFACE_TYPE_UNSUPPORTED);
    eth0().name = "eth1";
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_NO_INTERFACE);
}

TEST_F(resolve_test, next_hops) {
    interface.next_hop = {};
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_NO_NEXT_HOP);
    interface.next_hop = address("224.0.0.5");
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_NEXT_HOP_TYPE);
}

TEST_F(resolve_test, addresses_of_interfaces) {
    eth0().addresses = {address("2001:db8::1")};
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_IPV4_DOWN);
    eth0().addresses = {address("192.0.2.1")};
    interface.next_hop = address("fe80::2");
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_IPV6_DOWN);
    eth0().addresses = {};
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_NO_IP_ADDRESS);
    interface.next_hop = {};
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_IPV4_IPV6_DOWN);
}

TEST_F(resolve_test, sources_of_interfaces) {
    interface.source = address("fe80::1");
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_SOURCE_FAMILY_MISMATCH);
    interface.source = interface.next_hop;
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_INVALID_SOURCE_ADDRESS);
    interface.source = address("192.0.2.9");
    EXPECT_EQ(of_interface(), PM_NOT_RUNNING_NO_SOURCE_ADDRESS);
}

TEST_F(resolve_test, a_link_local_next_hop_is_reached_from_a_link_local_address) {
    interface.next_hop = address("fe80::2");
    EXPECT_EQ(text_of(resolve(interface, true, mode, host).source), "fe80::1");
    interface.next_hop = address("2001:db8::2");
    EXPECT_EQ(text_of(resolve(interface, true, mode, host).source), "2001:db8::1");
}

config with_endpoints(unsigned count, std::uint32_t rate) {
    config settings;
    settings.packet_rate = rate;
    settings.endpoint_delay.tx_interval_usec = 100'000;  // 10 a second
    for (unsigned index = 0; index < count; ++index) {
        settings.endpoints.emplace_back().delay = "";
    }
    return settings;
}

TEST(session_plan, packets_within_the_rate_keep_their_interval) {
    rate_budget budget;
    const auto plans = plan_sessions(with_endpoints(10, 100), &budget);
    EXPECT_EQ(plans[0].tx_interval_usec, 100'000U);
    EXPECT_FALSE(plans[0].stretched);
    EXPECT_EQ(budget.stretch_percent, 100U);
    EXPECT_DOUBLE_EQ(budget.endpoint.requested, 100);
}

TEST(session_plan, packets_beyond_the_rate_are_sent_further_apart) {
    rate_budget budget;
    const auto plans = plan_sessions(with_endpoints(25, 100), &budget);
    EXPECT_EQ(budget.stretch_percent, 250U);
    EXPECT_EQ(plans[0].tx_interval_usec, 250'000U);
    EXPECT_TRUE(plans[0].stretched);
    EXPECT_LE(budget.endpoint.effective, 100);
}

}  // namespace
