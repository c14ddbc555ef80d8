// SPDX-License-Identifier: Apache-2.0
// The filters that the program composes from its options, read from a real store.
#include <cstdio>

#include "front/dispatch.h"
#include "front/generic_show.h"
#include "front/options.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"
#include "tests/platform/local/filters/derived_store.h"

namespace {

using namespace derived_test;

std::string shown;  // a line for each record: its name

template <class Record, const char *Record::*Name>
int record_name(const void *decoded_parcel) {
    shown += decoded_parcel != nullptr ? static_cast<const Record *>(decoded_parcel)->*Name : "(nothing)";
    shown += '\n';
    return PM_SHOW_PRINTED;
}

pm_show_display display_of(const parcel_descriptor *type) {
    const std::pair<const parcel_descriptor *, pm_show_display> displays[] = {
        {pm_srpolicy_parcel_descriptor(), record_name<pm_srpolicy_parcel, &pm_srpolicy_parcel::PolicyName>},
        {pm_srpolicy_counters_parcel_descriptor(),
         record_name<pm_srpolicy_counters_parcel, &pm_srpolicy_counters_parcel::PolicyName>},
        {pm_srpolicy_history_parcel_descriptor(),
         record_name<pm_srpolicy_history_parcel, &pm_srpolicy_history_parcel::PolicyName>},
        {pm_endpoint_common_descriptor(), record_name<pm_endpoint_common, &pm_endpoint_common::EndpointName>},
        {pm_endpoint_counters_parcel_descriptor(),
         record_name<pm_endpoint_counters_parcel, &pm_endpoint_counters_parcel::EndpointName>},
        {pm_endpoint_history_parcel_descriptor(),
         record_name<pm_endpoint_history_parcel, &pm_endpoint_history_parcel::EndpointName>},
        {pm_rsvpte_parcel_descriptor(), record_name<pm_rsvpte_parcel, &pm_rsvpte_parcel::TunnelName>},
        {pm_rsvpte_counters_parcel_descriptor(),
         record_name<pm_rsvpte_counters_parcel, &pm_rsvpte_counters_parcel::TunnelName>},
        {pm_rsvpte_history_parcel_descriptor(),
         record_name<pm_rsvpte_history_parcel, &pm_rsvpte_history_parcel::TunnelName>},
        {pm_name_profile_parcel_descriptor(), record_name<pm_name_profile_parcel, &pm_name_profile_parcel::Name>},
    };
    for (const auto &[each, display] : displays) {
        if (each == type) {
            return display;
        }
    }
    return nullptr;
}

class ComposedPaths : public DerivedStore {
protected:
    struct command {
        const char *options;
        names wanted;
    };

    // The names of the records that a command line shows of a node; "code N" when it fails.
    static names shown_by(const std::string &options, std::uint32_t node = NODE) {
        return lines_of_child([&] {
            names words{"perf-show"};
            std::istringstream in(options);
            for (std::string word; in >> word;) {
                words.push_back(word);
            }
            std::vector<char *> argv;
            for (std::string &word : words) {
                argv.push_back(word.data());
            }
            argv.push_back(nullptr);
            pm_show_request request{};
            pm_show_path path;
            if (std::freopen("/dev/null", "w", stdout) == nullptr ||
                std::freopen("/dev/null", "w", stderr) == nullptr) {
                return std::string("(no output)\n");
            }
            pm_show_parse_options(static_cast<int>(words.size()), argv.data());
            if (pm_show_build_request(&request, path) != pm_show_build::ready) {
                return std::string("(no request)\n");
            }
            request.display = display_of(request.parcel_desc);
            const errcode code = generic_show(&request, node);
            return code == ERRCODE_SUCCESS ? shown : "code " + std::to_string(code) + "\n";
        });
    }

    static void expect(const std::vector<command> &commands) {
        for (const command &each : commands) {
            EXPECT_EQ(shown_by(each.options), each.wanted) << each.options;
        }
    }
};

const names NOTHING{"(nothing)"};
const names NOT_FOUND{"code 6"};

TEST_F(ComposedPaths, EachOptionFiltersPolicies) {
    expect({
        {"-c 17", {"a", "b", "c", "d"}},
        {"-c 17 -f 10", {"a", "c"}},
        {"-c 17 -f 0xffffffff", {"d"}},
        {"-c 17 -f 11", NOTHING},
        {"-c 17 -e 10.0.0.1", {"a"}},
        {"-c 17 -e 2001:db8::1", {"b"}},
        {"-c 17 -e 2001:db8::2", NOTHING},
        {"-c 17 -e 0.0.0.0", NOTHING},
        {"-c 17 -o 30", {"a"}},
        {"-c 17 -o 10", {"a", "d"}},
        {"-c 17 -g 101", {"a"}},
        {"-c 17 -g 0", {"d"}},
        {"-c 17 -m 50", {"a"}},
        {"-c 17 -m 0xffffffff", {"d"}},
        {"-c 17 -n sl-a3", {"a"}},
        {"-c 17 -n sl-c", NOTHING},
        {"-c 17 -O", {"a", "b", "c", "d"}},
        {"-c 17 -h 0", {"a", "d"}},
        {"-c 17 -h 2", {"a", "b"}},
        {"-c 17 -h 4", {"a", "b", "c", "d"}},
        {"-c 17 -j", {"b", "d"}},
        {"-c 17 -r", {"a"}},
        {"-c 17 -j -r", {"a"}},
        {"-c 17 -r -j", {"b", "d"}},
        {"-c 17 -u 5", {"b"}},
        {"-c 17 -u 255", {"d"}},
        {"-c 17 -u 6", NOTHING},
        {"-c 17 -k 24001", {"a"}},
        {"-c 17 -k 1048575", {"d"}},
        {"-c 17 -k 1048576", NOTHING},
    });
}

TEST_F(ComposedPaths, OptionsOfPoliciesTogether) {
    expect({
        {"-c 17 -f 10 -e 10.0.0.1 -o 30 -g 100 -m 50 -n sl-a2 -O -h 2 -r -u 3 -k 24000", {"a"}},
        {"-c 17 -f 10 -e 10.0.0.1 -o 30 -g 100 -m 50 -n sl-a2 -O -h 2 -j -u 3 -k 24000", NOTHING},
        {"-c 17 -h 2 -j", {"b"}},
        {"-c 17 -f 10 -i a", {"a"}},
        {"-c 17 -f 20 -i a", NOT_FOUND},
        {"-c 17 -f 10 -i e", NOT_FOUND},
    });
}

TEST_F(ComposedPaths, AnAddressThatCannotBeReadFiltersNothing) {
    expect({{"-c 17 -e nonsense", {"a", "b", "c", "d"}}, {"-c 17 -e nonsense -f 20", {"b"}}});
}

TEST_F(ComposedPaths, CountersAndHistoriesOfPolicies) {
    for (const std::string show : {"-c 18", "-c 4 -t 19", "-c 5 -t 19", "-c 20 -t 19", "-c 27 -t 19"}) {
        EXPECT_EQ(shown_by(show), (names{"a", "b", "c", "d", "orphan"})) << show;
        EXPECT_EQ(shown_by(show + " -f 10"), (names{"a", "c"})) << show;
        EXPECT_EQ(shown_by(show + " -e 2001:db8::1"), names{"b"}) << show;
        EXPECT_EQ(shown_by(show + " -f 99"), NOTHING) << show;
        EXPECT_EQ(shown_by(show + " -u 255 -i d"), names{"d"}) << show;
        EXPECT_EQ(shown_by(show + " -f 10 -i orphan"), NOT_FOUND) << show;
        EXPECT_EQ(shown_by(show + " -i orphan"), names{"orphan"}) << show;
    }
}

TEST_F(ComposedPaths, Endpoints) {
    expect({
        {"-c 26", {"v", "w", "x", "y", "z"}},
        {"-c 26 -V red", {"w", "x", "z"}},
        {"-c 26 -V re", NOTHING},
        {"-c 26 -e 10.1.0.4", {"w"}},
        {"-c 26 -e 2001:db8::2", {"y"}},
        {"-c 26 -n sl-x2", {"x"}},
        {"-c 26 -h 0", {"w", "x"}},
        {"-c 26 -h 2", {"w", "y"}},
        {"-c 26 -h 3", {"w", "z"}},
        {"-c 26 -h 4", {"v", "w", "x", "y", "z"}},
        {"-c 26 -V red -e 10.1.0.3 -n sl-z -h 3", {"z"}},
        {"-c 26 -V red -e 10.1.0.3 -n sl-z -h 0", NOTHING},
        {"-c 26 -V red -i z", {"z"}},
        {"-c 26 -V red -i y", NOT_FOUND},
        {"-c 26 -f 10", {"v", "w", "x", "y", "z"}},  // no component of an endpoint's key
    });
    for (const std::string show : {"-c 28", "-c 4 -t 29", "-c 5 -t 29", "-c 20 -t 29", "-c 27 -t 29"}) {
        EXPECT_EQ(shown_by(show), (names{"orphan", "v", "w", "x", "y", "z"})) << show;
        EXPECT_EQ(shown_by(show + " -V red"), (names{"w", "x", "z"})) << show;
        EXPECT_EQ(shown_by(show + " -V purple"), NOTHING) << show;
        EXPECT_EQ(shown_by(show + " -h 2 -i y"), names{"y"}) << show;
    }
}

TEST_F(ComposedPaths, Tunnels) {
    for (const std::string show : {"-c 15", "-c 4 -t 21", "-c 5 -t 21", "-c 20 -t 21"}) {
        EXPECT_EQ(shown_by(show + " -a 6"), (names{"t1", "t2"})) << show;
        EXPECT_EQ(shown_by(show + " -e 10.2.0.1"), (names{"t1", "t3"})) << show;
        EXPECT_EQ(shown_by(show + " -a 6 -e 10.2.0.1"), names{"t1"}) << show;
        EXPECT_EQ(shown_by(show + " -a 7"), NOTHING) << show;
        EXPECT_EQ(shown_by(show + " -e 2001:db8::1"), NOTHING) << show;
        EXPECT_EQ(shown_by(show + " -a 5 -i t1"), names{"t1"}) << show;
        EXPECT_EQ(shown_by(show + " -a 5 -i t2"), NOT_FOUND) << show;
    }
    EXPECT_EQ(shown_by("-c 16 -a 6"), (names{"orphan", "t1", "t2", "t3"}));  // never filtered
}

TEST_F(ComposedPaths, Profiles) {
    const names all{"0x0/0x1/gold", "0x0/0x2/gold",       "0x0/0x2/silver",
                    "0x1/0x2/gold", "0x2/0x1/live%20one", "0x3/0x2/probe"};
    expect({
        {"-c 23", all},
        {"-c 23 -P", all},
        {"-c 23 -P -D 0", {"0x0/0x1/gold", "0x0/0x2/gold", "0x0/0x2/silver"}},
        {"-c 23 -P -L 1", {"0x1/0x2/gold"}},
        {"-c 23 -P -T 2", {"0x0/0x2/gold", "0x0/0x2/silver", "0x1/0x2/gold", "0x3/0x2/probe"}},
        {"-c 23 -P -Q gold", {"0x0/0x1/gold", "0x0/0x2/gold", "0x1/0x2/gold"}},
        {"-c 23 -P -D 0 -T 2 -Q gold", {"0x0/0x2/gold"}},
        {"-c 23 -P -D 0 -T 1 -Q silver", NOT_FOUND},
        {"-c 23 -P -M 3 -T 2 -Q probe", {"0x3/0x2/probe"}},
        {"-c 23 -P -W 2 -Q none", NOTHING},
    });
}

TEST_F(ComposedPaths, ManyMatches) {
    names wanted;
    for (unsigned i = 0; i < MANY; i += EVERY) {
        wanted.push_back(long_name(i));
    }
    const names found = shown_by("-c 17 -f 7", LARGE_NODE);
    EXPECT_TRUE(found == wanted) << found.size() << " items";
    EXPECT_EQ(shown_by("-c 17 -f 7 -i " + long_name(EVERY), LARGE_NODE), names{long_name(EVERY)});
    EXPECT_EQ(shown_by("-c 17 -f 7 -i " + long_name(1), LARGE_NODE), NOT_FOUND);
}

}  // namespace
