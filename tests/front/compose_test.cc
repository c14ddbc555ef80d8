// SPDX-License-Identifier: Apache-2.0
// Tests of front/compose.h.
#include "front/compose.h"
#include "tests/front/front_test.h"

namespace {

using path_grammar::place;

class ComposeTest : public FrontTest {
protected:
    // The path that is composed for a command line.
    std::string filtered(place at, const std::string &arguments) {
        given(arguments);
        pm_show_path path;
        pm_show_compose_filtered(path, at);
        return path;
    }
    std::string srpolicy(const std::string &arguments) { return filtered(place::srpolicy_detail, arguments); }
    std::string endpoint(const std::string &arguments) { return filtered(place::endpoint_detail, arguments); }
    std::string rsvpte(const std::string &arguments) { return filtered(place::rsvpte_detail, arguments); }

    std::string session(const std::string &arguments) {
        given(arguments);
        pm_show_path path;
        pm_show_compose_session(path, place::session);
        return path;
    }

    // The path of a profile command line, followed by " single" when it names one item, or the
    // failure.
    std::string profile(const std::string &arguments) {
        given(arguments);
        pm_show_path path;
        bool single = false;
        const errcode code = pm_show_compose_named_profile(path, &single);
        if (code != ERRCODE_SUCCESS) {
            return "failure " + std::to_string(code);
        }
        return path + std::string(single ? " single" : "");
    }
};

TEST_F(ComposeTest, TheBoundedFormatterTerminatesTheLastByteOfTheBuffer) {
    char buffer[8] = {'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x'};
    pm_snprintf(buffer, sizeof buffer, "%s-%u", "a", 7U);
    EXPECT_STREQ(buffer, "a-7");
    EXPECT_EQ(buffer[4], 'x');
    EXPECT_EQ(buffer[7], '\0');
}

TEST_F(ComposeTest, TheBoundedFormatterCutsWhatDoesNotFit) {
    char buffer[4];
    pm_snprintf(buffer, sizeof buffer, "%s", "abcdef");
    EXPECT_STREQ(buffer, "abc");
}

TEST_F(ComposeTest, TheBoundedFormatterLeavesAnAbsentBufferAlone) {
    pm_snprintf(nullptr, 8, "%s", "abc");
    char buffer[1] = {'x'};
    pm_snprintf(buffer, 0, "%s", "abc");
    EXPECT_EQ(buffer[0], 'x');
}

TEST_F(ComposeTest, APlainPathIsThePrefixAndTheName) {
    EXPECT_EQ(srpolicy(""), "srpolicy/detail/");
    EXPECT_EQ(srpolicy("-i pol1"), "srpolicy/detail/pol1");
    EXPECT_EQ(endpoint("-i ep1"), "endpoint/detail/ep1");
    EXPECT_EQ(rsvpte("-i tun1"), "rsvpte/detail/tun1");
}

TEST_F(ComposeTest, APlainPathIsCutAt511Bytes) {
    EXPECT_EQ(srpolicy("-i " + std::string(600, 'x')), "srpolicy/detail/" + std::string(495, 'x'));
}

TEST_F(ComposeTest, ASessionPathEndsInTheSessionIdInHex) {
    EXPECT_EQ(session("-s 0x1f"), "session/1f");
    EXPECT_EQ(session("-s 0xffffffff"), "session/ffffffff");
    EXPECT_EQ(session("-s 0"), "session/");
    EXPECT_EQ(session("-i ignored"), "session/");
}

// The address component comes from the platform also when no address was given.
TEST_F(ComposeTest, AnSrPolicyKeyHasElevenComponentsInOrder) {
    fake.addresses["10.0.0.1"] = {IP_FAMILY_IPV4, {10, 0, 0, 1}};
    EXPECT_EQ(srpolicy("-f 1 -e 10.0.0.1 -o 2 -g 3 -m 4 -n list -O -h 5 -j -u 6 -k 7 -i pol1"),
              "srpolicy/detail-filter/0x1,0a000001,0x2,0x3,0x4,list,TRUE,0x5,0x1,0x6,0x7/pol1");
    EXPECT_EQ(fake.address_seen.family, IP_FAMILY_IPV4);
    EXPECT_EQ(fake.address_seen.octets[0], 10);
}

TEST_F(ComposeTest, EachSrPolicyComponentAloneLeavesTheOthersWild) {
    fake.address_text_code = ERRCODE_INVALID_ARGUMENT;
    const std::string w = "________";
    const auto key = [&w](int position, const std::string &text) {
        std::string result = "srpolicy/detail-filter/";
        for (int at = 1; at <= 11; ++at) {
            result += (at == position ? text : w) + (at < 11 ? "," : "/");
        }
        return result;
    };
    EXPECT_EQ(srpolicy("-f 0xabc"), key(1, "0xabc"));
    EXPECT_EQ(srpolicy("-o 30"), key(3, "0x1e"));
    EXPECT_EQ(srpolicy("-g 0xffffffff"), key(4, "0xffffffff"));
    EXPECT_EQ(srpolicy("-m 100"), key(5, "0x64"));
    EXPECT_EQ(srpolicy("-n list"), key(6, "list"));
    EXPECT_EQ(srpolicy("-O"), key(7, "TRUE"));
    EXPECT_EQ(srpolicy("-h 0"), key(8, "0x0"));
    EXPECT_EQ(srpolicy("-j"), key(9, "0x1"));
    EXPECT_EQ(srpolicy("-r"), key(9, "0x0"));
    EXPECT_EQ(srpolicy("-u 1"), key(10, "0x1"));
    EXPECT_EQ(srpolicy("-k 0x100000"), key(11, "0x100000"));
}

TEST_F(ComposeTest, OfTheTwoOptionsOfOneSrPolicyComponentTheLaterCounts) {
    fake.address_text_code = ERRCODE_INVALID_ARGUMENT;
    EXPECT_EQ(
        srpolicy("-j -r"),
        "srpolicy/detail-filter/________,________,________,________,________,________,________,________,0x0,________,"
        "________/");
    EXPECT_EQ(
        srpolicy("-r -j"),
        "srpolicy/detail-filter/________,________,________,________,________,________,________,________,0x1,________,"
        "________/");
}

TEST_F(ComposeTest, AnAddressAloneLeavesTheOtherComponentsWild) {
    fake.addresses["10.0.0.1"] = {IP_FAMILY_IPV4, {10, 0, 0, 1}};
    EXPECT_EQ(srpolicy("-e 10.0.0.1"),
              "srpolicy/detail-filter/"
              "________,0a000001,________,________,________,________,________,________,________,________,"
              "________/");
    EXPECT_EQ(endpoint("-e 10.0.0.1"), "endpoint/detail-filter/________,0a000001,________,________/");
}

TEST_F(ComposeTest, AnAddressAloneIsAFilterEvenWhenItCouldNotBeRead) {
    fake.address_text_code = ERRCODE_INVALID_ARGUMENT;
    const printed output = capture([this] {
        EXPECT_EQ(
            srpolicy("-e nonsense"),
            "srpolicy/detail-filter/________,________,________,________,________,________,________,________,________,"
            "________,________/");
        EXPECT_EQ(endpoint("-e nonsense"), "endpoint/detail-filter/________,________,________,________/");
        EXPECT_EQ(rsvpte("-e nonsense"), "rsvpte/detail-filter/________,________/");
    });
    EXPECT_EQ(output.err, "Invalid IP addressInvalid IP addressInvalid IP address");
}

TEST_F(ComposeTest, TheAddressComponentIsWrittenWithoutAnAddressWhenThePlatformHasATextForIt) {
    fake.address_text = "00000000";
    EXPECT_EQ(
        srpolicy("-n list"),
        "srpolicy/detail-filter/________,00000000,________,________,________,list,________,________,________,________,"
        "________/");
    EXPECT_EQ(fake.address_seen.family, 0U);
    EXPECT_EQ(endpoint("-n list"), "endpoint/detail-filter/________,00000000,list,________/");
    EXPECT_EQ(rsvpte("-a 1"), "rsvpte/detail-filter/0x1,00000000/");
}

TEST_F(ComposeTest, OptionsOfOtherFamiliesAreNoSrPolicyFilter) {
    EXPECT_EQ(srpolicy("-a 1 -V red -s 5 -D 1 -T 2 -b -i pol1"), "srpolicy/detail/pol1");
}

TEST_F(ComposeTest, AnEndpointKeyHasFourComponentsInOrder) {
    fake.addresses["10.0.0.1"] = {IP_FAMILY_IPV4, {10, 0, 0, 1}};
    EXPECT_EQ(endpoint("-V red -e 10.0.0.1 -n list -h 3 -i ep1"), "endpoint/detail-filter/red,0a000001,list,0x3/ep1");
}

TEST_F(ComposeTest, EachEndpointComponentAloneLeavesTheOthersWild) {
    fake.address_text_code = ERRCODE_INVALID_ARGUMENT;
    EXPECT_EQ(endpoint("-V red"), "endpoint/detail-filter/red,________,________,________/");
    EXPECT_EQ(endpoint("-n list"), "endpoint/detail-filter/________,________,list,________/");
    EXPECT_EQ(endpoint("-h 2"), "endpoint/detail-filter/________,________,________,0x2/");
}

TEST_F(ComposeTest, AnEmptyTextIsAComponentOfItsOwn) {
    fake.address_text_code = ERRCODE_INVALID_ARGUMENT;
    EXPECT_EQ(endpoint("-V  -n list"), "endpoint/detail-filter/,________,list,________/");
    EXPECT_EQ(endpoint("-n  -V red"), "endpoint/detail-filter/red,________,,________/");
}

TEST_F(ComposeTest, OptionsOfOtherFamiliesAreNoEndpointFilter) {
    EXPECT_EQ(endpoint("-f 1 -o 1 -g 1 -m 1 -O -j -u 1 -k 1 -a 1"), "endpoint/detail/");
}

TEST_F(ComposeTest, AnRsvpTeKeyIsTheNumberThenTheAddress) {
    fake.addresses["10.0.0.1"] = {IP_FAMILY_IPV4, {10, 0, 0, 1}};
    EXPECT_EQ(rsvpte("-e 10.0.0.1 -a 12 -i tun1"), "rsvpte/detail-filter/0xc,0a000001/tun1");
    EXPECT_EQ(rsvpte("-e 10.0.0.1"), "rsvpte/detail-filter/________,0a000001/");
    fake.address_text_code = ERRCODE_INVALID_ARGUMENT;
    EXPECT_EQ(rsvpte("-a 12"), "rsvpte/detail-filter/0xc,________/");
}

TEST_F(ComposeTest, OptionsOfOtherFamiliesAreNoRsvpTeFilter) {
    EXPECT_EQ(rsvpte("-f 1 -o 1 -g 1 -m 1 -n list -O -h 1 -j -u 1 -k 1 -V red"), "rsvpte/detail/");
}

TEST_F(ComposeTest, TextComponentsAreCutAt63Bytes) {
    fake.address_text_code = ERRCODE_INVALID_ARGUMENT;
    const std::string cut(63, 'x');
    EXPECT_EQ(endpoint("-V " + cut + "y -n " + cut + "z"),
              "endpoint/detail-filter/" + cut + ",________," + cut + ",________/");
    EXPECT_EQ(srpolicy("-n " + cut + "z"), "srpolicy/detail-filter/________,________,________,________,________," +
                                               cut + ",________,________,________,________,________/");
}

TEST_F(ComposeTest, AnAddressComponentIsCutAt255Bytes) {
    fake.address_text = std::string(255, 'a') + "bc";
    EXPECT_EQ(rsvpte("-a 1"), "rsvpte/detail-filter/0x1," + std::string(255, 'a') + "/");
}

TEST_F(ComposeTest, TheWidestSrPolicyKeyIsWholeAndTheNameIsCut) {
    fake.address_text = std::string(255, 'a');
    const std::string list(63, 'l');
    const std::string name(300, 'n');
    const std::string number = "0xffffffff";
    const std::string whole = "srpolicy/detail-filter/" + number + "," + fake.address_text + "," + number + "," +
                              number + "," + number + "," + list + ",TRUE," + number + ",0x1," + number + "," + number +
                              "/";
    EXPECT_EQ(srpolicy("-f -1 -o -1 -g -1 -m -1 -n " + list + " -O -h -1 -j -u -1 -k -1 -i " + name),
              (whole + name).substr(0, 511));
}

TEST_F(ComposeTest, AGenericNamedProfileIsOneItem) {
    EXPECT_EQ(profile("-P -D 1 -T 4 -Q gold"), "name-profile/0x1/0x4/<gold> single");
}

TEST_F(ComposeTest, GenericNamedProfilesWithoutANameAreAListing) {
    EXPECT_EQ(profile("-P -W 2 -T 4"), "name-profile/0x2/0x4/");
}

TEST_F(ComposeTest, AGenericNamedProfileHasTheDefaultKindWhenNoneIsGiven) {
    EXPECT_EQ(profile("-P -T 4 -Q gold"), "name-profile/0x4/0x4/<gold> single");
}

TEST_F(ComposeTest, ANamedProfileWithKindTypeAndNameIsOneItemWithItsKeyWrittenTwice) {
    EXPECT_EQ(profile("-P -D 0 -T 2 -Q gold"), "name-profile-filter/0x0,0x2,<gold>/0x0,0x2,<gold> single");
    EXPECT_EQ(profile("-P -L 1 -T 0 -Q gold"), "name-profile-filter/0x1,0x0,<gold>/0x1,0x0,<gold> single");
    EXPECT_EQ(profile("-P -W 2 -T 3 -Q gold"), "name-profile-filter/0x2,0x3,<gold>/0x2,0x3,<gold> single");
}

TEST_F(ComposeTest, TheProbeKindNamesOneItemButStaysWildInTheKey) {
    EXPECT_EQ(profile("-P -M 3 -T 3 -Q gold"), "name-profile-filter/________,0x3,<gold>/________,0x3,<gold> single");
}

TEST_F(ComposeTest, ANamedProfileWithoutKindTypeOrNameIsAListing) {
    EXPECT_EQ(profile("-P"), "name-profile-filter/________,________,________");
    EXPECT_EQ(profile("-P -T 2 -Q gold"), "name-profile-filter/________,0x2,<gold>");
    EXPECT_EQ(profile("-P -D 0 -Q gold"), "name-profile-filter/0x0,________,<gold>");
    EXPECT_EQ(profile("-P -D 0 -T 2"), "name-profile-filter/0x0,0x2,________");
}

TEST_F(ComposeTest, AProfileNameIsCutAt255BytesInTheKeyAndAt511InAPath) {
    const std::string name(600, 'q');
    EXPECT_EQ(profile("-P -Q " + name), "name-profile-filter/________,________,<" + name.substr(0, 254));
    EXPECT_EQ(profile("-P -T 4 -Q " + name), "name-profile/0x4/0x4/<" + name.substr(0, 489) + " single");
}

TEST_F(ComposeTest, ADoubledProfileKeyIsCutWithItsPathAt511Bytes) {
    const auto q = [](std::size_t count) { return std::string(count, 'q'); };
    EXPECT_EQ(profile("-P -D 1 -T 2 -Q " + q(235)),  // 20 + 245 + 1 + 245 bytes
              "name-profile-filter/0x1,0x2,<" + q(235) + ">/0x1,0x2,<" + q(235) + "> single");
    EXPECT_EQ(profile("-P -D 1 -T 2 -Q " + q(236)),
              "name-profile-filter/0x1,0x2,<" + q(236) + ">/0x1,0x2,<" + q(235) + " single");
    EXPECT_EQ(profile("-P -D 1 -T 2 -Q " + q(300)),  // the name is cut before
              "name-profile-filter/0x1,0x2,<" + q(254) + "/0x1,0x2,<" + q(218) + " single");
}

TEST_F(ComposeTest, AProfileNameThatCannotBeEncodedIsReported) {
    fake.encode_code = 22;
    printed output = capture([this] { EXPECT_EQ(profile("-P -T 4 -Q gold"), "failure 22"); });
    EXPECT_EQ(output.err,
              "pm_show_compose_generic_named_profile_opstore_path: Error encoding name name gold: errcode 22 (0x16)");
    EXPECT_EQ(output.out, "");
    output = capture([this] { EXPECT_EQ(profile("-P -D 0 -T 2 -Q gold"), "failure 22"); });
    EXPECT_EQ(output.err, "pm_show_compose_name_profile_filter: Error encoding name name gold: errcode 22 (0x16)");
    EXPECT_EQ(output.out, "");
}

}  // namespace
