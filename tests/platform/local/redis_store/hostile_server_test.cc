// SPDX-License-Identifier: Apache-2.0
// Servers that answer anything, and how often a server is asked.
#include <gtest/gtest.h>

#include "platform/local/redis_store/redis_reader.h"
#include "tests/support/fake_server.h"
#include "tests/support/redis_server.h"

namespace {

pm_error answer_to_start(const std::string &answer) {
    const fake_server server(answer);
    std::unique_ptr<store::reader> ignored;
    return redis_store::open_reader("redis+unix://" + server.path() + "?timeout=1000", &ignored);
}

TEST(HostileServer, IsDamagedWhenItsBytesAreNoAnswer) {
    const std::string endless(200'000, '+');
    for (const std::string &answer :
         {std::string("HTTP/1.1 200 OK\r\n\r\n"), std::string("*1000000000\r\n"), std::string("*-2\r\n"),
          std::string("$99999999999999999999\r\n"), std::string("$-5\r\n"),
          std::string("*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n:1\r\n"),
          std::string("*6\r\n:1\r\n:1\r\n:1\r\n:1\r\n:1\r\n:1\r\n"), endless, std::string("\0\0\0\0\r\n", 6)}) {
        const pm_error error = answer_to_start(answer);
        EXPECT_EQ(error.code(), OPSTORE_DAMAGED) << answer.substr(0, 40);
        EXPECT_NE(error.text().find("/fake: "), std::string::npos) << error.text();
    }
}

TEST(HostileServer, ThatClosesWithinAnAnswerIsAnError) {
    for (const char *answer : {"", "*3\r\n", "*3\r\n$-1\r\n$-1\r\n", "$100\r\nshort"}) {
        EXPECT_EQ(answer_to_start(answer).code(), OPSTORE_NO_CLIENT) << answer;
    }
}

TEST(HostileServer, CannotSendControlCharactersToATerminal) {
    const std::string text = answer_to_start("-ERR \x1b[2J gone\r\n*0\r\n*0\r\n").text();
    EXPECT_NE(text.find("ERR ?[2J gone"), std::string::npos) << text;
}

// One for the start, with SELECT in it, one for an item, and one for each batch of 200; the last batch of the four
// tells that no other follows.
TEST(RoundTrips, AreOneForTheStartAndOneForABatch) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url("&db=1"), 700));
    const passing_server proxy(server.socket());
    {
        const auto reader = read_store("redis+unix://" + proxy.path() + "?db=1");
        EXPECT_EQ(proxy.round_trips(), 1);
        EXPECT_EQ(name_at(reader.get(), "item/000005"), "x");
        EXPECT_EQ(proxy.round_trips(), 2);
        pm_error error;
        int batches = 0;
        EXPECT_EQ(all_paths(reader.get(), "item/", &error, &batches).size(), 700U);
        EXPECT_EQ(batches, 4);
        EXPECT_EQ(proxy.round_trips(), 6);
    }
}

}  // namespace
