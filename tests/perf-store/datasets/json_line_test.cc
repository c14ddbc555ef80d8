// SPDX-License-Identifier: Apache-2.0
// Lines read by the fast parser, which must take nothing that the careful one reads otherwise.
#include <cstring>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "perf-store/datasets/json_document.h"

namespace {

using namespace perf_store;
using namespace std::string_literals;

// A text with the bytes after it that the fast parser may read: here the ones that would mislead it most.
class padded_text {
public:
    explicit padded_text(const std::string &text)
        : size_(text.size()), bytes_(text + '\0' + std::string(json_document::PADDING - 1, '"')) {}

    [[nodiscard]] std::string_view line() const { return {bytes_.data(), size_}; }

private:
    std::size_t size_;
    std::string bytes_;
};

bool takes(const std::string &text) {
    json_document document;
    return document.read_line(padded_text(text).line());
}

// Everything that readers see of a document but the exact offsets, which are within the tokens.
std::string nodes_of(const json_document &document) {
    std::string out;
    const json_node *node = &document.root();
    const json_node *const end = document.after(document.root());
    for (; node != end; ++node) {
        out += std::to_string(static_cast<int>(node->kind)) + (node->value ? "t" : "f") + std::to_string(node->count) +
               "/" + std::to_string(node->next) + "'" + std::string(node->text) + "' ";
    }
    return out;
}

// What is wrong with how the fast parser reads a text; nothing when it does not take it.
std::string difference(const std::string &text) {
    const padded_text padded(text);
    json_document fast;
    if (!fast.read_line(padded.line())) {
        return "";
    }
    json_document careful;
    std::size_t length = 0;
    if (careful.read(padded.line().data(), &length)) {
        return "the careful parser refuses it";
    }
    if (std::string_view(padded.line()).substr(length).find_first_not_of(" \t\r\n") != std::string_view::npos) {
        return "more follows";
    }
    return nodes_of(fast) == nodes_of(careful) ? "" : nodes_of(fast) + "is not " + nodes_of(careful);
}

TEST(JsonLine, TakesTheObjectsOfDataSets) {
    for (const char *text :
         {"{}", R"({"node":{"id":16,"name":"rp0"}})", R"( {"a" : [ 1 , -25 , true , false , null , "" ] } )",
          R"({"a":{"b":[{},[],[[0]]]},"":"x"})", "\n\t{\"a\":1}\r", R"({"a":1,"a":2})"}) {
        EXPECT_TRUE(takes(text)) << text;
        EXPECT_EQ(difference(text), "") << text;
    }
}

TEST(JsonLine, LeavesTheRestToTheCarefulParser) {
    const std::string deep(100, '[');
    for (const std::string &text : {R"({"a":"\n"})"s,
                                    R"({"\u0061":1})"s,
                                    "[]"s,
                                    "1"s,
                                    "\"x\""s,
                                    " "s,
                                    ""s,
                                    R"({"a":1} {"b":2})"s,
                                    R"({"a":1}x)"s,
                                    "{\"a\":" + deep + std::string(100, ']') + "}",
                                    R"({"a":1,})"s,
                                    R"({"a":01})"s,
                                    R"({"a":1.5})"s,
                                    R"({"a":1e3})"s,
                                    R"({"a":1.})"s,
                                    R"({"a":123456789012345678901})"s,
                                    R"({"a":+1})"s,
                                    R"({"a":1"b"})"s,
                                    R"({"a":tru})"s,
                                    R"({"a":truex})"s,
                                    R"({"a":nullnull})"s,
                                    R"({"a")"s,
                                    R"({"a":"x)"s,
                                    "{\"a\":\"\xFF\"}"s,
                                    "{\"a\":\"\t\"}"s,
                                    "{\"a\":1\0}"s,
                                    R"({"a":[1 2]})"s,
                                    R"({"a" 1})"s,
                                    R"({1:2})"s,
                                    R"({"a":-})"s,
                                    R"({"a":1e})"s,
                                    "{\"a\":1\x01}"s,
                                    R"({"a":"x""y"})"s,
                                    R"({"a":[1})"s}) {
        EXPECT_FALSE(takes(text)) << text;
    }
}

TEST(JsonLine, KnowsWhereTheTokensAre) {
    const std::string text = R"( {"name" : [ "rp0" , 12 , true ] })";
    const padded_text padded(text);
    json_document document;
    ASSERT_TRUE(document.read_line(padded.line()));
    const json_node *node = &document.root();
    for (const std::string token : {"{", "\"name\"", "[", "\"rp0\"", "12", "true"}) {
        EXPECT_GE(node->offset, token == "{" ? 0 : text.find(token)) << token;
        EXPECT_LE(node->offset, text.find(token) + token.size()) << token;
        ++node;
    }
}

// Lines with one to three bytes changed, removed or added: most are no JSON, many are.
TEST(JsonLine, TakesNothingThatTheCarefulParserReadsOtherwise) {
    const std::string lines[] = {
        R"({"item":{"root":"main","node":256,"path":"summary","type":"t","record":{"A":1,"B":[true,null,-51]}}})",
        R"({"a":"","b":{},"c":[],"d":[[1],{"e":"f"}],"g":0,"h":false})",
        "{ \"K\xC3\xB6ln\" : [ \"\xE6\x97\xA5\" , -13 ] , \"x\" : { \"y\" : \"z\" } }",
    };
    const std::string bytes = "{}[]:,\"\\ \t\n0123456789-+.eEtrufalsn\x01\x7F\x80\xC3\xFF"s + '\0';
    std::mt19937 random(1);
    const auto below = [&](std::size_t end) { return random() % end; };
    std::size_t taken = 0;
    for (int i = 0; i < 200000; ++i) {
        std::string text = lines[below(std::size(lines))];
        for (std::size_t change = below(3) + 1; change > 0; --change) {
            const std::size_t at = below(text.size());
            switch (below(3)) {
            case 0: text[at] = bytes[below(bytes.size())]; break;
            case 1: text.erase(at, 1); break;
            default: text.insert(at, 1, bytes[below(bytes.size())]); break;
            }
        }
        taken += takes(text) ? 1 : 0;
        ASSERT_EQ(difference(text), "") << text;
    }
    EXPECT_GT(taken, 10000U);  // enough that both parsers have read
}

}  // namespace
