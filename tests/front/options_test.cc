// SPDX-License-Identifier: Apache-2.0
// Tests of front/options.h.
#include "tests/front/front_test.h"

#include <cstring>

namespace {

using OptionsTest = FrontTest;
const pm_show_options_record &options = pm_show_options;

TEST_F(OptionsTest, WithoutOptionsEverythingHasItsDefault) {
    std::memset(static_cast<void *>(&pm_show_options), 0x5a, sizeof pm_show_options);
    pm_show_options.name = pm_show_options.n_text = pm_show_options.profile_name = pm_show_options.V_text = nullptr;
    given("");
    EXPECT_EQ(options.command_type, 0U);
    EXPECT_EQ(options.subtype, 0U);
    EXPECT_EQ(options.history_limit, 0U);
    EXPECT_EQ(options.name, nullptr);
    EXPECT_EQ(options.session_id, 0U);
    EXPECT_FALSE(options.detail);
    EXPECT_FALSE(options.verbose);
    EXPECT_FALSE(options.internal);
    EXPECT_EQ(options.node_id, 0xFFFFFFFFU);
    EXPECT_FALSE(options.all_nodes);
    EXPECT_FALSE(options.f_set);
    EXPECT_EQ(options.f_value, 0U);
    EXPECT_FALSE(options.address_set);
    constexpr ip_address no_address{};
    EXPECT_EQ(std::memcmp(&options.address, &no_address, sizeof no_address), 0);
    EXPECT_FALSE(options.o_set);
    EXPECT_EQ(options.o_value, 0U);
    EXPECT_FALSE(options.g_set);
    EXPECT_EQ(options.g_value, 0U);
    EXPECT_FALSE(options.m_set);
    EXPECT_EQ(options.m_value, 0U);
    EXPECT_FALSE(options.n_set);
    EXPECT_EQ(options.n_text, nullptr);
    EXPECT_FALSE(options.true_flag);
    EXPECT_FALSE(options.a_set);
    EXPECT_EQ(options.a_value, 0U);
    EXPECT_FALSE(options.delay_kind);
    EXPECT_FALSE(options.loss_kind);
    EXPECT_FALSE(options.liveness_kind);
    EXPECT_FALSE(options.probe_kind);
    EXPECT_EQ(options.profile_kind, 4U);
    EXPECT_FALSE(options.profile_type_set);
    EXPECT_EQ(options.profile_type, 4U);
    EXPECT_FALSE(options.brief);
    EXPECT_FALSE(options.named_profile);
    EXPECT_EQ(options.profile_name, nullptr);
    EXPECT_FALSE(options.global_profile);
    EXPECT_FALSE(options.V_set);
    EXPECT_EQ(options.V_text, nullptr);
    EXPECT_FALSE(options.h_set);
    EXPECT_EQ(options.h_value, 4U);
    EXPECT_FALSE(options.jr_set);
    EXPECT_EQ(options.jr_value, 2U);
    EXPECT_FALSE(options.u_set);
    EXPECT_EQ(options.u_value, 0xFFFFU);
    EXPECT_FALSE(options.k_set);
    EXPECT_EQ(options.k_value, 0x100000U);
    EXPECT_FALSE(options.local_node_only);
}

TEST_F(OptionsTest, PlainNumbersAreStored) {
    given("-c 17 -t 19 -l 25 -s 31 -N 256");
    EXPECT_EQ(options.command_type, 17U);
    EXPECT_EQ(options.subtype, 19U);
    EXPECT_EQ(options.history_limit, 25U);
    EXPECT_EQ(options.session_id, 31U);
    EXPECT_EQ(options.node_id, 256U);
}

TEST_F(OptionsTest, FilterNumbersAreStoredOneByOneWithTheirFlags) {
    using record = pm_show_options_record;
    struct {
        const char *letter;
        bool record::*flag;
        std::uint32_t record::*value;
        std::uint32_t default_value;
    } const filters[] = {
        {"-f", &record::f_set, &record::f_value, 0},        {"-o", &record::o_set, &record::o_value, 0},
        {"-g", &record::g_set, &record::g_value, 0},        {"-m", &record::m_set, &record::m_value, 0},
        {"-h", &record::h_set, &record::h_value, 4},        {"-u", &record::u_set, &record::u_value, 0xFFFF},
        {"-k", &record::k_set, &record::k_value, 0x100000}, {"-a", &record::a_set, &record::a_value, 0},
    };
    for (const auto &filter : filters) {
        given(std::string(filter.letter) + " 77");
        for (const auto &other : filters) {
            SCOPED_TRACE(std::string(other.letter) + " after " + filter.letter);
            EXPECT_EQ(options.*other.flag, &other == &filter);
            EXPECT_EQ(options.*other.value, &other == &filter ? 77 : other.default_value);
        }
    }
}

TEST_F(OptionsTest, OneTextSetsItsOwnFlagOnly) {
    given("-n list");
    EXPECT_TRUE(options.n_set);
    EXPECT_FALSE(options.V_set);
    given("-V red");
    EXPECT_FALSE(options.n_set);
    EXPECT_TRUE(options.V_set);
}

TEST_F(OptionsTest, TextsAreStoredAsOwnedCopies) {
    given("-i eth0/1/0/4 -n list -V red -Q gold");  // the arguments are gone after parsing
    EXPECT_STREQ(options.name, "eth0/1/0/4");
    EXPECT_TRUE(options.n_set);
    EXPECT_STREQ(options.n_text, "list");
    EXPECT_TRUE(options.V_set);
    EXPECT_STREQ(options.V_text, "red");
    EXPECT_STREQ(options.profile_name, "gold");
}

TEST_F(OptionsTest, SwitchesAreStoredOneByOne) {
    struct {
        const char *argument;
        bool pm_show_options_record::*flag;
    } const switches[] = {
        {"-A", &pm_show_options_record::all_nodes},     {"-O", &pm_show_options_record::true_flag},
        {"-P", &pm_show_options_record::named_profile}, {"-S", &pm_show_options_record::global_profile},
        {"-d", &pm_show_options_record::detail},        {"-v", &pm_show_options_record::verbose},
        {"-p", &pm_show_options_record::internal},      {"-b", &pm_show_options_record::brief},
    };
    for (const auto &given_switch : switches) {
        given(given_switch.argument);
        for (const auto &other : switches) {
            EXPECT_EQ(options.*other.flag, &other == &given_switch)
                << other.argument << " after " << given_switch.argument;
        }
    }
}

TEST_F(OptionsTest, EachKindSetsItsOwnFlagAndTheCommonProfileKind) {
    struct {
        const char *letter;
        bool pm_show_options_record::*flag;
    } const kinds[] = {
        {"-D", &pm_show_options_record::delay_kind},
        {"-L", &pm_show_options_record::loss_kind},
        {"-W", &pm_show_options_record::liveness_kind},
        {"-M", &pm_show_options_record::probe_kind},
    };
    for (const auto &kind : kinds) {
        given(std::string(kind.letter) + " 9");
        EXPECT_EQ(options.profile_kind, 9U) << kind.letter;
        for (const auto &other : kinds) {
            EXPECT_EQ(options.*other.flag, &other == &kind) << other.letter << " after " << kind.letter;
        }
    }
}

TEST_F(OptionsTest, OfSeveralKindsTheLastNumberWinsAndAllFlagsStay) {
    given("-D 1 -L 2 -W 3 -M 7");
    EXPECT_TRUE(options.delay_kind);
    EXPECT_TRUE(options.loss_kind);
    EXPECT_TRUE(options.liveness_kind);
    EXPECT_TRUE(options.probe_kind);
    EXPECT_EQ(options.profile_kind, 7U);
    given("-M 7 -D 1");
    EXPECT_EQ(options.profile_kind, 1U);
}

TEST_F(OptionsTest, TheProfileTypeIsStoredWithItsFlag) {
    given("-T 2");
    EXPECT_TRUE(options.profile_type_set);
    EXPECT_EQ(options.profile_type, 2U);
}

TEST_F(OptionsTest, OfJAndRTheLaterOneWins) {
    given("-j");
    EXPECT_TRUE(options.jr_set);
    EXPECT_EQ(options.jr_value, 1U);
    given("-r");
    EXPECT_TRUE(options.jr_set);
    EXPECT_EQ(options.jr_value, 0U);
    given("-j -r");
    EXPECT_EQ(options.jr_value, 0U);
    given("-rj");
    EXPECT_EQ(options.jr_value, 1U);
}

TEST_F(OptionsTest, NumbersAreReadAsCWritesThem) {
    given("-s 0x1f -f 017 -o junk -g 12x -m 0x100000002");
    EXPECT_EQ(options.session_id, 0x1fU);
    EXPECT_EQ(options.f_value, 15U);
    EXPECT_EQ(options.o_value, 0U);
    EXPECT_EQ(options.g_value, 12U);
    EXPECT_EQ(options.m_value, 2U);  // cut to 32 bits
}

TEST_F(OptionsTest, AnAddressIsReadIntoTheFilter) {
    fake.addresses["10.0.0.1"] = {IP_FAMILY_IPV4, {10, 0, 0, 1}};
    const printed output = capture([this] { given("-e 10.0.0.1"); });
    EXPECT_TRUE(options.address_set);
    EXPECT_EQ(options.address.family, IP_FAMILY_IPV4);
    EXPECT_EQ(options.address.octets[0], 10);
    EXPECT_EQ(options.address.octets[3], 1);
    EXPECT_EQ(output.err, "");
}

TEST_F(OptionsTest, ABadAddressIsReportedAndStillCountsAsGiven) {
    const printed output = capture([this] { given("-e nonsense -c 9"); });
    EXPECT_EQ(output.err, "Invalid IP address");
    EXPECT_EQ(output.out, "");
    EXPECT_TRUE(options.address_set);
    EXPECT_EQ(options.address.family, 0U);
    EXPECT_EQ(options.command_type, 9U);
}

TEST_F(OptionsTest, AnUnknownLetterIsReportedByTheCodeOfTheQuestionMarkAndParsingGoesOn) {
    const printed output = capture([this] { given("-z -c 9"); });
    EXPECT_EQ(output.err, "Unrecognised argument 63");
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(options.command_type, 9U);
}

TEST_F(OptionsTest, AMissingArgumentIsReportedTheSameWay) {
    const printed output = capture([this] { given("-d -c"); });
    EXPECT_EQ(output.err, "Unrecognised argument 63");
    EXPECT_TRUE(options.detail);
    EXPECT_EQ(options.command_type, 0U);
}

TEST_F(OptionsTest, LettersMayBeBundledAndArgumentsAttached) {
    given("-bdc17 -N0x100");
    EXPECT_TRUE(options.brief);
    EXPECT_TRUE(options.detail);
    EXPECT_EQ(options.command_type, 17U);
    EXPECT_EQ(options.node_id, 0x100U);
}

TEST_F(OptionsTest, TheSeparatorsAreLinesOf160Columns) {
    EXPECT_EQ(pm_show_separator, std::string(160, '-') + "\n");
    EXPECT_EQ(pm_show_table_rule, " " + std::string(158, '-') + " \n");
}

}  // namespace
