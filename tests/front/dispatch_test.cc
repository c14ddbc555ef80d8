// SPDX-License-Identifier: Apache-2.0
// Tests of pm_show_dispatch of front/dispatch.h.
#include "front/dispatch.h"
#include "tests/front/front_test.h"

namespace {

class DispatchTest : public FrontTest {
protected:
    // Runs a command line; its exit status is in `status`.
    printed run(const std::string &arguments) {
        return capture([&] {
            given(arguments);
            status = pm_show_dispatch();
        });
    }

    int status = 77;
};

TEST_F(DispatchTest, AnInvalidCommandTypeEndsWithAnErrorAndReadsNothing) {
    for (const char *const type : {"0", "3", "19", "21", "29", "1000"}) {
        SCOPED_TRACE(type);
        status = 77;
        const printed output = run("-c " + std::string(type));
        EXPECT_EQ(status, -1);
        EXPECT_EQ(output.err, "Show command type invalid " + std::string(type) + "\n");
        EXPECT_EQ(output.out, "");
        EXPECT_EQ(fake.calls, std::vector<std::string>{});
    }
}

TEST_F(DispatchTest, AnInvalidSubtypeEndsWithAnErrorAndReadsNothing) {
    const printed output = run("-c 20 -t 30");
    EXPECT_EQ(status, -1);
    EXPECT_EQ(output.err, "Show command subtype invalid 30\n");
    EXPECT_EQ(output.out, "");  // and no legend
    EXPECT_EQ(fake.calls, std::vector<std::string>{});
}

TEST_F(DispatchTest, AnInvalidSubtypeOfLiveHistoryEndsWithAnError) {
    const printed output = run("-c 27 -t 3");
    EXPECT_EQ(status, -1);
    EXPECT_EQ(output.err, "Liveness history only supported for SR Policy and Endpoint");
    EXPECT_EQ(output.out, "");
}

TEST_F(DispatchTest, AProfileNameThatCannotBeEncodedShowsNothing) {
    fake.encode_code = 22;
    const printed output = run("-c 23 -P -T 4 -Q gold");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(output.err,
              "pm_show_compose_generic_named_profile_opstore_path: Error encoding name name gold: errcode 22 (0x16)");
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(fake.calls, std::vector<std::string>{});
}

TEST_F(DispatchTest, ABadOptionDoesNotKeepTheCommandFromRunning) {
    const printed output = run("-z -c 3");
    EXPECT_EQ(status, -1);
    EXPECT_EQ(output.err, "Unrecognised argument 63Show command type invalid 3\n");
}

TEST_F(DispatchTest, AShowIsReadFromEveryNodeAndEndsWithStatus0AlsoWhenItFails) {
    fake.nodes = {{1}, {2}};
    fake.item_code = ERRCODE_NOT_FOUND;
    const printed output = run("-c 9");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(output.out, "\n" + std::string(pm_show_separator) + "lc1\n" + pm_show_separator + "Item not found\n" +
                              "\n" + std::string(pm_show_separator) + "lc2\n" + pm_show_separator + "Item not found\n" +
                              "\n");
    EXPECT_EQ(fake.calls, (std::vector<std::string>{"inventory 7", "partner of central-services", "client_present",
                                                    "bind /oper/perf_meas/main/node/1/ 4", "get summary 0", "unbind",
                                                    "bind /oper/perf_meas/main/node/2/ 4", "get summary 0", "unbind"}));
}

}  // namespace
