// SPDX-License-Identifier: Apache-2.0
// What words show is, byte for byte, what the numbers show: every phrase, with each of its options.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "perf-measure/phrases/phrase_table.h"
#include "tests/perf-measure/support/programs.h"

namespace {

using namespace perf_measure;

struct asked {
    std::string words;
    std::string numbers;
};

// A value for each option that takes one, as words and as numbers have it.
std::string value_for(option_id id, const name_source &names) {
    switch (id) {
    case option_id::name: {
        const std::string prefix = names.prefix;
        return prefix.starts_with("srpolicy")   ? "policy-c40"
               : prefix.starts_with("endpoint") ? "ep-100.64.0.1"
               : prefix.starts_with("rsvpte")   ? "tunnel-te10"
                                                : "eth0/0/0/0";
    }
    case option_id::profile_name: return "metro";
    case option_id::policy_endpoint: return "172.16.0.1";
    case option_id::endpoint_address: return "2001:db8::22";
    case option_id::destination: return "192.0.2.31";
    case option_id::segment_list: return "sl-policy-c40-1";
    case option_id::vrf: return "default";
    case option_id::color: return "40";
    case option_id::preference: return "200";
    case option_id::node: return "256";
    default: return "1";
    }
}

std::vector<asked> with_option(const phrase &of, option_id id) {
    const option &each = option_of(id);
    const std::string words = of.words + std::string(" ") + each.word;
    const std::string numbers = of.letters + std::string(" ") + each.letters;
    if (each.value == value_kind::nothing) {
        return {{words, numbers}};
    }
    std::vector<asked> all;
    for (const choice &value : each.choices) {
        if (value.wants == nullptr) {
            all.push_back({words + ' ' + value.word, numbers + ' ' + value.letters});
        }
    }
    if (each.value != value_kind::choice) {
        const std::string value = value_for(id, of.names);
        all.push_back({words + ' ' + value, numbers + ' ' + value});
    }
    return all;
}

std::vector<asked> everything() {
    std::vector<asked> all;
    for (const phrase &each : phrases()) {
        if (each.takes_name || each.is_metrics) {
            continue;  // a plot or metrics, which no number is
        }
        all.push_back({each.words, each.letters});
        for (unsigned i = 0; i < static_cast<unsigned>(option_id::count); ++i) {
            const auto id = static_cast<option_id>(i);
            if ((each.options & bit(id)) != 0) {
                const std::vector<asked> more = with_option(each, id);
                all.insert(all.end(), more.begin(), more.end());
            }
        }
    }
    // Several together.
    all.push_back({"show sr-policies brief kind liveness host npu", "-c 17 -b -h 2 -j"});
    all.push_back({"sh sr-p v int na policy-c40 no rp0", "-c 17 -d -v -p -i policy-c40 -N 0x100"});
    all.push_back({"show profiles named transport generic kind delay name metro", "-c 23 -P -T 4 -D 0 -Q metro"});
    all.push_back({"show endpoints brief vrf default kind delay", "-c 26 -b -V default -h 0"});
    return all;
}

// Runs all on one store; the words that differ, a line each.
std::string differing(const std::string &store) {
    const temporary_folder work;
    std::string script = "export PERF_SHOW_NOW=1709647390000\n";
    for (const asked &each : everything()) {
        script += "perf-show " + each.numbers + " >a 2>/dev/null; perf-measure " + each.words +
                  " >b 2>/dev/null; cmp -s a b || echo '" + each.words + "'\n";
    }
    write_file(work.path() + "/script", script);
    return run_command("cd " + work.path() + "; . ./script", store).out;
}

TEST(Equality, OfWordsAndNumbersOnTheExampleChassis) {
    ASSERT_GT(everything().size(), 250U);
    const temporary_folder store;
    ASSERT_EQ(run_command("perf-store load \"$EXAMPLE\"", store.path()).status, 0);
    EXPECT_EQ(differing(store.path()), "");
}

TEST(Equality, OfWordsAndNumbersOnASyntheticRouter) {
    const temporary_folder store;
    ASSERT_EQ(
        run_command("perf-store gen --policies 20 --endpoints 20 --interfaces 20 --tunnels 10 | perf-store load -",
                    store.path())
            .status,
        0);
    EXPECT_EQ(differing(store.path()), "");
}

}  // namespace
