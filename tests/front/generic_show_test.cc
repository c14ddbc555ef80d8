// SPDX-License-Identifier: Apache-2.0
// Tests of front/generic_show.h.
#include "front/generic_show.h"
#include "tests/front/show_test.h"

namespace {

class GenericShowTest : public ShowTest {
protected:
    // Shows node 0x10, whose name is "lc16"; the result is in `result`. Nothing may stay allocated
    // in the codec or the store.
    printed show(const pm_show_request &request) {
        const printed output = capture([&] { result = generic_show(&request, 0x10); });
        if (request.single_item == 0) {
            EXPECT_TRUE(fake.held.empty()) << "a batch or a decoded record was not freed";
        }
        return output;
    }

    errcode result = 77;
    const std::string node = header("lc16");
};

TEST_F(GenericShowTest, AnIncompleteRequestIsRefused) {
    const auto refused = [this](const pm_show_request *request) {
        const printed output = capture([&] { result = generic_show(request, 0x10); });
        return output.out.empty() && output.err == "Invalid argument\n" && result == 22 && fake.calls.empty();
    };
    EXPECT_TRUE(refused(nullptr));
    pm_show_request request = list_request();
    request.base_path = nullptr;
    EXPECT_TRUE(refused(&request));
    request = list_request();
    request.item_path = nullptr;
    EXPECT_TRUE(refused(&request));
    request = list_request();
    request.start_key = nullptr;
    EXPECT_TRUE(refused(&request));
    request = list_request();
    request.display = nullptr;
    EXPECT_TRUE(refused(&request));
    request = list_request();
    request.parcel_desc = nullptr;
    EXPECT_TRUE(refused(&request));
    request = list_request();
    request.decoded_size = 0;
    EXPECT_TRUE(refused(&request));
}

TEST_F(GenericShowTest, AMissingStoreClientIsReportedAsAFailedBind) {
    fake.client_present = false;
    const printed output = show(list_request());
    EXPECT_EQ(result, 0x8081c200U);
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err, " generic_show: opstore_bind failed: errcode 2155987456 (0x8081c200)\n");
    EXPECT_EQ(fake.calls, calls{"client_present"});
    EXPECT_EQ(pm_show_opstore_present, 0);
}

TEST_F(GenericShowTest, TheStoreClientIsTestedOnlyUntilItIsFound) {
    show(list_request());
    show(list_request());
    EXPECT_EQ(calls_of("client_present").size(), 1U);
    EXPECT_EQ(pm_show_opstore_present, 1);
}

TEST_F(GenericShowTest, AFailedBindIsReportedAndNotUndone) {
    fake.bind_codes["/oper/perf_meas/main/node/10/"] = 0x8081c400;
    const printed output = show(list_request());
    EXPECT_EQ(result, 0x8081c400U);
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err, " generic_show: opstore_bind failed: errcode 2155987968 (0x8081c400)\n");
    EXPECT_EQ(fake.calls, (calls{"client_present", "bind /oper/perf_meas/main/node/10/ 4"}));
}

TEST_F(GenericShowTest, TheBindPathIsCutAt511Bytes) {
    const std::string root(600, 'r');
    pm_show_request request = list_request();
    request.base_path = root.c_str();
    show(request);
    EXPECT_EQ(calls_of("bind"), calls{"bind " + root.substr(0, 511) + " 4"});
}

TEST_F(GenericShowTest, AStoreClientThatVanishesDuringAShowLeavesTheNodeBound) {
    pm_show_request request = list_request();
    request.display = [](const void *) {
        pm_show_opstore_present = 0;
        fake.client_present = false;
        return 0;
    };
    const printed output = show(request);
    EXPECT_EQ(result, 0U);
    EXPECT_EQ(output.out, node);
    EXPECT_EQ(calls_of("unbind"), calls{});
}

TEST_F(GenericShowTest, AStoreClientThatIsFoundAgainIsUnbound) {
    pm_show_request request = list_request();
    request.display = [](const void *) {
        pm_show_opstore_present = 0;
        return 0;
    };
    show(request);
    EXPECT_EQ(calls_of("unbind"), calls{"unbind"});
    EXPECT_EQ(pm_show_opstore_present, 1);
}

TEST_F(GenericShowTest, TheNodeHeaderIsABlankLineARuleTheNameAndARule) {
    const std::string rule = std::string(160, '-') + "\n";
    EXPECT_EQ(show(list_request()).out, "\n" + rule + "lc16\n" + rule + "[no record]");
    EXPECT_EQ(platform_fake.size_seen, 32U);
}

// Listings.

TEST_F(GenericShowTest, AnEmptyListingCallsTheDisplayOnceWithoutARecord) {
    const printed output = show(list_request());
    EXPECT_EQ(result, 0U);
    EXPECT_EQ(output.out, node + "[no record]");
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(fake.calls, (calls{"client_present", "bind /oper/perf_meas/main/node/10/ 4",
                                 "list intf/detail/ after [] 200 0", "free list", "unbind"}));
}

TEST_F(GenericShowTest, EachItemIsDecodedDisplayedAndFreedAfterABlankLine) {
    fake.batches = {batch_of(1, 2)};
    const printed output = show(list_request());
    EXPECT_EQ(result, 0U);
    EXPECT_EQ(output.out, node + "\n[d1]\n[d2]");
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(fake.calls,
              (calls{"client_present", "bind /oper/perf_meas/main/node/10/ 4", "list intf/detail/ after [] 200 0",
                     "more", "decode d1 as test_parcel", "free d1 as test_parcel", "decode d2 as test_parcel",
                     "free d2 as test_parcel", "free list", "unbind"}));
    EXPECT_EQ(fake.allocated, "1 * 8 PM decoded parcel");
}

TEST_F(GenericShowTest, AListingBeginsAfterTheStartKeyCutAt127Bytes) {
    const std::string key(130, 's');
    pm_show_request request = list_request();
    request.start_key = key.c_str();
    show(request);
    EXPECT_EQ(calls_of("list"), calls{"list intf/detail/ after [" + key.substr(0, 127) + "] 200 0"});
}

TEST_F(GenericShowTest, AFullBatchIsFollowedByAnotherRequestWithoutAskingForMore) {
    fake.batches = {batch_of(1, 200)};
    const printed output = show(list_request());
    EXPECT_EQ(calls_of("list"), (calls{"list intf/detail/ after [] 200 0", "list intf/detail/ after [k200] 200 32"}));
    EXPECT_EQ(calls_of("more"), calls{});
    EXPECT_EQ(output.out.find("[no record]"), std::string::npos);
    EXPECT_EQ(output.out.substr(output.out.size() - 7), "\n[d200]");
    EXPECT_EQ(calls_of("free list").size(), 2U);
}

TEST_F(GenericShowTest, ListingResumesAfterTheLastKeyOfAFullBatch) {
    fake.batches = {batch_of(1, 200), batch_of(201, 1)};
    const printed output = show(list_request());
    EXPECT_EQ(calls_of("list"), (calls{"list intf/detail/ after [] 200 0", "list intf/detail/ after [k200] 200 32"}));
    EXPECT_EQ(calls_of("more").size(), 1U);
    EXPECT_EQ(calls_of("decode").size(), 201U);
    EXPECT_EQ(output.out.substr(output.out.size() - 14), "\n[d200]\n[d201]");
}

TEST_F(GenericShowTest, APartialBatchIsFollowedByAnotherRequestWhenMoreItemsFollow) {
    fake.batches = {batch_of(1, 2, 1), batch_of(3, 1, 1), batch_of(4, 1, 0), batch_of(5, 1)};
    EXPECT_EQ(show(list_request()).out, node + "\n[d1]\n[d2]\n[d3]\n[d4]");
    EXPECT_EQ(calls_of("list"), (calls{"list intf/detail/ after [] 200 0", "list intf/detail/ after [k2] 200 32",
                                       "list intf/detail/ after [k3] 200 32"}));
}

TEST_F(GenericShowTest, AFullBatchKeepsTheMoreFlagOfTheBatchBefore) {
    fake.batches = {batch_of(1, 1, 1), batch_of(2, 200), batch_of(202, 1, 0)};
    show(list_request());
    EXPECT_EQ(calls_of("list").size(), 3U);
}

TEST_F(GenericShowTest, TheResumePointIsCutAt127Bytes) {
    const std::string key(130, 'k');
    fake_batch batch;
    batch.items = {item(key, "d1")};
    batch.more = 1;
    fake.batches = {batch};
    show(list_request());
    EXPECT_EQ(calls_of("list").at(1), "list intf/detail/ after [" + key.substr(0, 127) + "] 200 32");
}

TEST_F(GenericShowTest, ADisplayThatDidNotPrintNormallySuppressesTheBlankLineBeforeTheNextItem) {
    fake.batches = {batch_of(1, 4)};
    results = {{"d1", PM_SHOW_NOTHING}, {"d2", PM_SHOW_NO_RECORD}, {"d3", PM_SHOW_PRINTED}};
    EXPECT_EQ(show(list_request()).out, node + "\n[d1][d2][d3]\n[d4]");
    EXPECT_EQ(result, 0U);
}

TEST_F(GenericShowTest, TheLastDisplayResultCountsForTheNextBatchToo) {
    fake.batches = {batch_of(1, 1, 1), batch_of(2, 1)};
    results = {{"d1", PM_SHOW_NOTHING}};
    EXPECT_EQ(show(list_request()).out, node + "\n[d1][d2]");
}

TEST_F(GenericShowTest, ADenseListingHasNoBlankLines) {
    fake.batches = {batch_of(1, 2)};
    pm_show_request request = list_request();
    request.spacing = pm_show_spacing::dense;
    EXPECT_EQ(show(request).out, node + "[d1][d2]");
}

TEST_F(GenericShowTest, TheStoresAnswersToAListing) {
    const struct {
        errcode code;
        const char *text;
    } answers[] = {
        {0x40812a00, ""},
        {0x40818600, "PM process is not running\n"},
        {0x40818a00, "PM process is not running\n"},
        {0x40819000, "PM process is not running\n"},
        {6, "infra/perf-measure/src/pm_show_client:589, (errcode 6)\n"},
        {0x8081c400, "infra/perf-measure/src/pm_show_client:589, (errcode 2155987968)\n"},
    };
    for (const auto &answer : answers) {
        SetUp();
        fake_batch batch;
        batch.list_code = answer.code;
        fake.batches = {batch};
        const printed output = show(list_request());
        EXPECT_EQ(output.out, node + answer.text);
        EXPECT_EQ(output.err, "");
        EXPECT_EQ(result, 0U);
        EXPECT_EQ(fake.calls.back(), "unbind");
    }
}

TEST_F(GenericShowTest, AnAnswerToALaterRequestEndsTheListing) {
    fake_batch stopped;
    stopped.list_code = 0x40819000;
    fake.batches = {batch_of(1, 1, 1), stopped};
    EXPECT_EQ(show(list_request()).out, node + "\n[d1]PM process is not running\n");
    EXPECT_EQ(result, 0U);
}

TEST_F(GenericShowTest, ABranchThatNoProcessServesAnyMoreEndsTheListingSilently) {
    fake_batch not_published;
    not_published.list_code = 0x40812a00;
    fake.batches = {batch_of(1, 1, 1), not_published};
    const printed output = show(list_request());
    EXPECT_EQ(output.out, node + "\n[d1]");
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(result, 0U);
    EXPECT_EQ(calls_of("list").size(), 2U);
    EXPECT_EQ(fake.calls.back(), "unbind");
}

TEST_F(GenericShowTest, AListingWithoutMemoryIsReportedAndUnbound) {
    fake.out_of_memory = true;
    const printed output = show(list_request());
    EXPECT_EQ(output.out, node);
    EXPECT_EQ(output.err, "Not enough memory to allocate parcel of size 8");
    EXPECT_EQ(result, 22U);
    EXPECT_EQ(calls_of("list"), calls{});
    EXPECT_EQ(calls_of("unbind"), calls{"unbind"});
}

constexpr char undecodable[] = "generic_datalist_show: Cannot decode the requested information from system database: ";

TEST_F(GenericShowTest, AFailureToStepToAnItemEndsTheListing) {
    fake_batch batch = batch_of(1, 3);
    batch.items[1].next_code = 41;
    fake.batches = {batch};
    const printed output = show(list_request());
    EXPECT_EQ(output.out, node + "\n[d1]");
    EXPECT_EQ(output.err, undecodable + std::string("errcode 41 (0x29)\n"));
    EXPECT_EQ(result, 0U);
    EXPECT_EQ(calls_of("list").size(), 1U);
    EXPECT_EQ(fake.calls.back(), "unbind");
}

TEST_F(GenericShowTest, AnItemWithoutDataOrKeyEndsTheListingWithCode0) {
    for (const bool without_key : {false, true}) {
        SetUp();
        fake_batch batch = batch_of(1, 2);
        (without_key ? batch.items[0].key : batch.items[0].data).reset();
        fake.batches = {batch};
        const printed output = show(list_request());
        EXPECT_EQ(output.out, node);
        EXPECT_EQ(output.err, undecodable + std::string("errcode 0 (0x0)\n"));
        EXPECT_EQ(result, 0U);
    }
}

TEST_F(GenericShowTest, AnItemThatCannotBeDecodedEndsTheListing) {
    fake.batches = {batch_of(1, 3, 1)};
    fake.undecodable["d2"] = 0x40821a00;
    const printed output = show(list_request());
    EXPECT_EQ(output.out, node + "\n[d1]");
    EXPECT_EQ(output.err, undecodable + std::string("errcode 1082268160 (0x40821a00)\n"));
    EXPECT_EQ(result, 0U);
    EXPECT_EQ(calls_of("list").size(), 1U);
}

TEST_F(GenericShowTest, AMoreFlagThatCannotBeReadEndsTheListingBeforeItsItems) {
    fake_batch batch = batch_of(1, 2);
    batch.more_code = 41;
    fake.batches = {batch};
    const printed output = show(list_request());
    EXPECT_EQ(output.out, node);
    EXPECT_EQ(output.err, undecodable + std::string("errcode 41 (0x29)\n"));
    EXPECT_EQ(result, 0U);
}

constexpr char not_freed[] = "generic_datalist_show: Cannot free the data from system database: errcode 41 (0x29)\n";

TEST_F(GenericShowTest, ABatchThatCannotBeFreedIsReportedAndTheListingGoesOn) {
    fake.batches = {batch_of(1, 1, 1), batch_of(2, 1)};
    fake.batches[0].free_code = 41;
    const printed output = show(list_request());
    EXPECT_EQ(output.out, node + "\n[d1]\n[d2]");
    EXPECT_EQ(output.err, not_freed);
    EXPECT_EQ(calls_of("free list").size(), 2U);
}

TEST_F(GenericShowTest, ABatchThatCannotBeFreedAfterTheListingIsReported) {
    fake_batch empty;
    empty.free_code = 41;
    fake.batches = {empty};
    const printed output = show(list_request());
    EXPECT_EQ(output.out, node + "[no record]");
    EXPECT_EQ(output.err, not_freed);
    EXPECT_EQ(result, 0U);
}

TEST_F(GenericShowTest, ABatchThatCannotBeFreedAfterAFailedDecodeIsReportedAfterIt) {
    fake.batches = {batch_of(1, 2)};
    fake.batches[0].free_code = 41;
    fake.undecodable["d2"] = 0x40821a00;
    const printed output = show(list_request());
    EXPECT_EQ(output.out, node + "\n[d1]");
    EXPECT_EQ(output.err, undecodable + std::string("errcode 1082268160 (0x40821a00)\n") + not_freed);
    EXPECT_EQ(result, 0U);
    EXPECT_EQ(calls_of("free list").size(), 1U);
}

TEST_F(GenericShowTest, AnUnlimitedListingIsOneRequest) {
    pm_show_request request = list_request();
    request.batch_size = 0xFFFFFFFF;
    fake.batches = {batch_of(1, 300), batch_of(301, 1)};
    show(request);
    EXPECT_EQ(calls_of("list"), calls{"list intf/detail/ after [] 4294967295 0"});
    EXPECT_EQ(calls_of("decode").size(), 300U);
    EXPECT_EQ(calls_of("free list").size(), 1U);
}

// Single items.

TEST_F(GenericShowTest, ASingleItemIsDecodedAndDisplayedWithoutABlankLine) {
    const printed output = show(single_request());
    EXPECT_EQ(result, 0U);
    EXPECT_EQ(output.out, node + "[item]");
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(fake.calls, (calls{"client_present", "bind /oper/perf_meas/main/node/10/ 4", "get summary 0",
                                 "decode item as test_parcel", "unbind"}));
    EXPECT_EQ(fake.allocated, "1 * 8 MPLS-TE decoded parcel");
}

TEST_F(GenericShowTest, TheDisplaysResultIsTheResultOfASingleItem) {
    for (const int answer : {PM_SHOW_NOTHING, PM_SHOW_NO_RECORD, PM_SHOW_PRINTED}) {
        results["item"] = answer;
        show(single_request());
        EXPECT_EQ(result, static_cast<errcode>(answer));
    }
}

TEST_F(GenericShowTest, AStoreWithoutTheSingleItemSaysWhyAndItsCodeIsTheResult) {
    const struct {
        errcode code;
        const char *text;
    } answers[] = {
        {0x40812a00, ""},
        {0x40818600, "PM process is not running\n"},
        {0x40819000, "PM process is not running\n"},
        {0x40818a00, "infra/perf-measure/src/pm_show_client:732, (errcode 1082231296)\n"},
        {6, "Item not found\n"},
        {41, "infra/perf-measure/src/pm_show_client:732, (errcode 41)\n"},
    };
    for (const auto &answer : answers) {
        SetUp();
        fake.item_code = answer.code;
        const printed output = show(single_request());
        EXPECT_EQ(output.out, node + answer.text);
        EXPECT_EQ(output.err, "");
        EXPECT_EQ(result, answer.code);
        EXPECT_EQ(fake.calls.back(), "unbind");
    }
}

TEST_F(GenericShowTest, ASingleItemWithoutMemoryIsReported) {
    fake.out_of_memory = true;
    const printed output = show(single_request());
    EXPECT_EQ(output.out, node);
    EXPECT_EQ(output.err, "Not enough memory to allocate parcel of size 8");
    EXPECT_EQ(result, 0U);
    EXPECT_EQ(fake.calls.back(), "unbind");
}

TEST_F(GenericShowTest, ASingleItemThatIsNoParcelIsReported) {
    fake.item_type = 8;
    const printed output = show(single_request());
    EXPECT_EQ(output.out, node);
    EXPECT_EQ(output.err, "Unknown data type returned by get for path [summary]");
    EXPECT_EQ(result, 0U);
    EXPECT_EQ(calls_of("decode"), calls{});
}

TEST_F(GenericShowTest, ASingleItemThatCannotBeDecodedIsReported) {
    fake.undecodable["item"] = 41;
    const printed output = show(single_request());
    EXPECT_EQ(output.out, node);
    EXPECT_EQ(output.err, "Failure to decode parcel for path [summary], errcode 41");
    EXPECT_EQ(result, 41U);
    EXPECT_EQ(fake.calls.back(), "unbind");
}

}  // namespace
