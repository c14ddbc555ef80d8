// SPDX-License-Identifier: Apache-2.0
// The configuration: what is read, and errors that name file, line and key.
#include "perf-probed/config/config.h"

#include <gtest/gtest.h>

#include "perf-probed/config/section.h"

namespace {

using namespace probed;

config read(const std::string &text) {
    config settings;
    const config_report report = parse_config("f.yaml", text, &settings);
    EXPECT_TRUE(report.ok()) << (report.errors.empty() ? "" : report.errors.front());
    return settings;
}

// All errors, one a line.
std::string errors(const std::string &text) {
    config settings;
    std::string all;
    for (const std::string &each : parse_config("f.yaml", text, &settings).errors) {
        all += (all.empty() ? "" : "\n") + each;
    }
    return all;
}

TEST(config, an_empty_file_measures_nothing_and_answers_nobody) {
    const config settings = read("");
    EXPECT_FALSE(settings.reflector.enabled);
    EXPECT_TRUE(settings.endpoints.empty());
    EXPECT_EQ(settings.endpoint_delay.computation_interval_sec, 30U);
    EXPECT_EQ(settings.endpoint_delay.tx_interval_usec, 3'000'000U);
    EXPECT_EQ(settings.endpoint_delay.packets_per_computation(3'000'000), 10U);
    EXPECT_EQ(settings.endpoint_liveness.multiplier, 3);
}

TEST(config, loss_is_measured_of_interfaces_with_thresholds_in_percent) {
    const config settings = read(R"(
profiles:
  - {name: x, kind: loss, computation-interval: 10 s, tx-interval: 100 ms, burst-count: 50, response-timeout: 300 ms,
     dscp: 10, advertisement: {periodic: {interval: 15 s, threshold: 7, minimum-change: 2},
                               accelerated: {threshold: 30, minimum-change: 4}}}
interfaces:
  - {name: eth0, next-hop: 192.0.2.1, loss: x}
  - {name: eth1, next-hop: 192.0.2.5, loss: true}
  - {name: eth2, next-hop: 192.0.2.9, delay: true}
)");
    const loss_profile *const profile = settings.find_loss("x");
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(profile->packets_per_computation(profile->tx_interval_usec), 50U);
    EXPECT_EQ(profile->effective_periodic_interval_sec(), 20U);
    EXPECT_EQ(profile->advertisement.periodic_threshold_percent, 7U);
    EXPECT_EQ(profile->advertisement.periodic_minimum_change_usec, 2U);
    EXPECT_TRUE(profile->advertisement.accelerated_enabled);
    EXPECT_EQ(profile->advertisement.accelerated_minimum_change_usec, 4U);
    EXPECT_EQ(profile->dscp, 10);
    EXPECT_EQ(settings.interfaces[0].loss, "x");
    EXPECT_EQ(settings.find_loss(*settings.interfaces[1].loss), &settings.interface_loss);
    EXPECT_EQ(settings.interface_loss.tx_interval_usec, 1'000'000U);
    EXPECT_FALSE(settings.interfaces[2].loss);
    EXPECT_EQ(errors("profiles:\n  - {name: x, kind: loss, advertisement: {periodic: {minimum-change: 101}}}\n"),
              "f.yaml:2: profiles[0].advertisement.periodic.minimum-change: '101' is not a number from 0 to 100");
    EXPECT_EQ(errors("profiles:\n  - {name: x, kind: loss, measurement-mode: two-way}\n"),
              "f.yaml:2: profiles[0].measurement-mode: is no key that is known here");
}

TEST(config, a_reflector_listens_at_862_of_every_address_unless_told) {
    const config settings = read("reflector: {}");
    ASSERT_EQ(settings.reflector.listen.size(), 1U);
    EXPECT_EQ(settings.reflector.listen[0].port, 862);
    EXPECT_FALSE(settings.reflector.listen[0].address);
}

TEST(config, every_key_is_read) {
    const config settings = read(R"(
node: {name: rp0, id: 0x100}
store: lmdb:/tmp/x
clock: {synchronised: true, format: ptp, error: 5 us}
packet-rate: 77
reflector:
  enabled: false
  answer-short-requests: true
  allowed-queriers: [10.0.0.0/8, "2001:db8::/32"]
  listen:
    - {address: 192.0.2.1, port: 8620, key-file: /k}
allowed-responders: [192.0.2.7]
history: {probe: 1, aggregated: 2, advertisement: 3, liveness: 4}
defaults:
  endpoint-delay:
    computation-interval: 1 min
    tx-interval: 20 ms
    burst-count: 50
    response-timeout: 200 ms
    dscp: 46
    measurement-mode: one-way
    advertisement:
      periodic: {enabled: false, interval: 2 min, threshold: 5, minimum-change: 100 us}
      accelerated: {threshold: 30, minimum-change: 1 ms, upper-bound: 9 ms}
      anomaly: {upper-bound: 8 ms, lower-bound: 2 ms}
      threshold-check: {average: true, minimum: false, maximum: true}
      log-delay-exceeded: true
  endpoint-liveness: {tx-interval: 50 ms, multiplier: 5, log-state-change: false, dscp: 8}
  endpoint-probe: {tx-interval: 10 s, hop-limit: 3, traffic-class: 184}
profiles:
  - {name: gold, kind: liveness, multiplier: 9}
endpoints:
  - {name: a, address: 192.0.2.7, port: 1, source: 192.0.2.1, source-port: 2, vrf: red, description: D,
     key-file: /k, suspended: true, advertise-delay: 7 us, delay: true, liveness: gold, probe: {}}
interfaces:
  - {name: eth0, next-hop: "fe80::1", port: 3, source: "fe80::2", delay: {profile: x}}
)");
    EXPECT_EQ(settings.node.id, 256U);
    EXPECT_EQ(settings.store, "lmdb:/tmp/x");
    EXPECT_EQ(settings.clock, (clock_quality{true, stamp_format::ptp, 5000}));
    EXPECT_EQ(settings.packet_rate, 77U);
    EXPECT_FALSE(settings.reflector.enabled);
    EXPECT_TRUE(settings.reflector.answer_short);
    EXPECT_EQ(settings.reflector.allowed_queriers.size(), 2U);
    EXPECT_EQ(settings.reflector.listen[0].key_file, "/k");
    EXPECT_EQ(settings.allowed_responders[0].length, 32);
    EXPECT_EQ(settings.histories, (history_sizes{1, 2, 3, 4}));
    const delay_profile &delay = settings.endpoint_delay;
    EXPECT_EQ(delay.computation_interval_sec, 60U);
    EXPECT_EQ(delay.tx_interval_usec, 20'000U);
    EXPECT_EQ(delay.burst_count, 50U);
    EXPECT_EQ(delay.response_timeout_msec, 200U);
    EXPECT_EQ(delay.dscp, 46);
    EXPECT_EQ(delay.mode, PM_DELAY_MODE_ONE_WAY);
    const advertisement_settings expected{false, 120,  5,    100,  true,  30,   1000, 9000,
                                          true,  8000, 2000, true, false, true, true};
    EXPECT_EQ(delay.advertisement, expected);
    EXPECT_EQ(settings.endpoint_liveness, (liveness_profile{"", 50'000, 5, false, 8}));
    EXPECT_EQ(settings.endpoint_probe.hop_limit, 3);
    EXPECT_EQ(settings.endpoint_probe.traffic_classes, std::vector<std::uint8_t>{184});
    EXPECT_EQ(settings.find_liveness("gold")->multiplier, 9);
    const endpoint_config &endpoint = settings.endpoints.at(0);
    EXPECT_EQ(endpoint.vrf, "red");
    EXPECT_TRUE(endpoint.suspended);
    EXPECT_EQ(endpoint.static_delay_usec, 7U);
    EXPECT_EQ(endpoint.delay, "");
    EXPECT_EQ(endpoint.liveness, "gold");
    EXPECT_EQ(endpoint.probe, "");
    EXPECT_EQ(settings.interfaces.at(0).delay, "x");
    EXPECT_TRUE(settings.interfaces.at(0).next_hop.is_link_local());
}

struct error_case {
    const char *text;
    const char *expected;
};
constexpr error_case ERRORS[] = {
    {"\nnope: 1", "f.yaml:2: nope: is no key that is known here"},
    {"node:\n  id: 1\n  id: 2", "f.yaml:3: node.id: is given twice"},
    {"node: 7", "f.yaml:1: node: is not a mapping"},
    {"[1]", "f.yaml:1: is not a mapping"},
    {"packet-rate: many", "f.yaml:1: packet-rate: 'many' is not a number from 1 to 10000000"},
    {"packet-rate: 0", "f.yaml:1: packet-rate: '0' is not a number from 1 to 10000000"},
    {"packet-rate: [1]", "f.yaml:1: packet-rate: is not a single value"},
    {"clock: {format: utc}", "f.yaml:1: clock.format: 'utc' is none of: ntp, ptp"},
    {"clock: {error: 5}", "f.yaml:1: clock.error: '5' is no time such as 500 us, 20 ms, 3 s, 2 min or 1 h"},
    {"clock: {synchronised: perhaps}", "f.yaml:1: clock.synchronised: 'perhaps' is neither true nor false"},
    {"allowed-responders: 10.0.0.0/8", "f.yaml:1: allowed-responders: is not a list"},
    {"allowed-responders:\n  - 10.0.0.1/8", "f.yaml:2: allowed-responders: '10.0.0.1/8' is no address or prefix"},
    {"allowed-responders:\n  - 10.0.0.0/33", "f.yaml:2: allowed-responders: '10.0.0.0/33' is no address or prefix"},
    {"endpoints:\n  - name: a", "f.yaml:2: endpoints[0].address: is missing"},
    {"endpoints:\n  - {name: a, address: 1.2.3.4}\n  - {name: a, address: 1.2.3.4}",
     "f.yaml:3: endpoints[1].name: 'a' is used twice"},
    {"endpoints:\n  - {name: a, address: 224.0.0.1}", "f.yaml:2: endpoints[0].address: is not the address of one host"},
    {"endpoints:\n  - {name: a/b, address: 1.2.3.4}",
     "f.yaml:2: endpoints[0].name: is longer than 64 bytes or has a slash"},
    {"endpoints:\n  - {name: a, address: here}", "f.yaml:2: endpoints[0].address: 'here' is no IPv4 or IPv6 address"},
    {"defaults:\n  endpoint-delay:\n    tx-interval: 40 s",
     "f.yaml:3: defaults.endpoint-delay.tx-interval: is longer than the computation interval"},
    {"defaults:\n  endpoint-delay:\n    burst-count: 11",
     "f.yaml:3: defaults.endpoint-delay.burst-count: packets do not fit into the computation interval"},
    {"defaults:\n  endpoint-delay:\n    tx-interval: 5 us",
     "f.yaml:3: defaults.endpoint-delay.tx-interval: '5 us' is not from 1 ms to 1 h in steps of 1 us"},
    {"defaults:\n  endpoint-delay:\n    response-timeout: 31 s",
     "f.yaml:3: defaults.endpoint-delay.response-timeout: is longer than the computation interval"},
    {"defaults:\n  endpoint-delay: {tx-interval: 1 ms,\n    response-timeout: 20 s}",
     "f.yaml:3: defaults.endpoint-delay.response-timeout: is longer than 2048 tx intervals"},
    {"defaults:\n  endpoint-delay:\n    measurement-mode: one-way",
     "f.yaml:3: defaults.endpoint-delay.measurement-mode: one-way needs clock.synchronised"},
    {"defaults:\n  endpoint-delay:\n    advertisement:\n      anomaly: {upper-bound: 1 ms,\n        lower-bound: 2 ms}",
     "f.yaml:5: defaults.endpoint-delay.advertisement.anomaly.lower-bound: is above the upper bound"},
    {"profiles:\n  - {name: x, kind: jitter}",
     "f.yaml:2: profiles[0].kind: 'jitter' is none of: delay, liveness, probe, loss"},
};

TEST(config, errors_name_file_line_and_key) {
    for (const error_case &each : ERRORS) {
        EXPECT_EQ(errors(each.text), each.expected) << each.text;
    }
}

TEST(config, what_is_no_yaml_is_an_error_with_its_line) {
    EXPECT_TRUE(errors("a: 1\nb: [").starts_with("f.yaml:")) << errors("a: 1\nb: [");
}

TEST(config, all_errors_are_told_at_once) {
    EXPECT_EQ(errors("packet-rate: 0\nnode: 1"),
              "f.yaml:1: packet-rate: '0' is not a number from 1 to 10000000\nf.yaml:2: node: is not a mapping");
}

TEST(config, a_profile_that_nobody_defined_is_a_warning) {
    config settings;
    const config_report report =
        parse_config("f.yaml", "endpoints:\n  - {name: a, address: 1.2.3.4,\n     delay: gold}", &settings);
    EXPECT_TRUE(report.ok());
    ASSERT_EQ(report.warnings.size(), 1U);
    EXPECT_EQ(report.warnings[0], "f.yaml:3: endpoints[0].delay: there is no profile 'gold'; the session will not run");
}

TEST(config, a_file_that_is_not_there_is_an_error) {
    config settings;
    EXPECT_EQ(load_config("/nonexistent/f.yaml", &settings).errors.at(0), "/nonexistent/f.yaml: cannot be read");
}

TEST(config, times_have_units) {
    std::uint64_t nsec = 0;
    EXPECT_TRUE(parse_time("30 s", &nsec));
    EXPECT_EQ(nsec, 30'000'000'000U);
    EXPECT_TRUE(parse_time("500us", &nsec));
    EXPECT_EQ(nsec, 500'000U);
    EXPECT_FALSE(parse_time("99999999999999999999 s", &nsec));
    EXPECT_FALSE(parse_time("18446744073709551615 h", &nsec));
    EXPECT_FALSE(parse_time("", &nsec));
    EXPECT_FALSE(parse_time("s", &nsec));
    EXPECT_FALSE(parse_time("-1 s", &nsec));
    EXPECT_EQ(time_text(90'000'000'000), "90 s");
}

}  // namespace
