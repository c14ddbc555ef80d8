// SPDX-License-Identifier: Apache-2.0
// JSON texts into nodes.
#include "perf-store/datasets/json_document.h"

#include <cstring>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace {

using namespace perf_store;
using namespace std::string_literals;

// What a document reads from a text that ends exactly where its bytes end, so that a sanitizer sees
// every byte read after it.
class reading {
public:
    explicit reading(std::string_view text) : text_(std::make_unique<char[]>(text.size() + 1)) {
        std::memcpy(text_.get(), text.data(), text.size());
        error = document.read(text_.get(), &length);
    }

    json_document document;
    std::size_t length = 0;
    pm_error error;

private:
    std::unique_ptr<char[]> text_;
};

// A document as text again: kinds as letters, so that the expectation shows the whole tree.
void append_tree(const json_document &document, const json_node &node, std::string *out) {
    switch (node.kind) {
    case json_kind::null: *out += "null"; break;
    case json_kind::boolean: *out += node.value ? "true" : "false"; break;
    case json_kind::number: *out += "#" + std::string(node.text); break;
    case json_kind::text: *out += "'" + std::string(node.text) + "'"; break;
    case json_kind::array:
    case json_kind::object: {
        const bool object = node.kind == json_kind::object;
        *out += object ? "{" : "[";
        const json_node *each = document.inside(node);
        for (std::uint32_t i = 0; i < node.count; ++i) {
            *out += i == 0 ? "" : " ";
            if (object) {
                *out += "'" + std::string(each->text) + "'=";
                ++each;
            }
            append_tree(document, *each, out);
            each = document.after(*each);
        }
        *out += object ? "}" : "]";
        EXPECT_EQ(each, document.after(node)) << *out;
    }
    }
}

std::string tree(std::string_view text) {
    const reading read(text);
    if (read.error || read.length == 0) {
        return read.error ? "wrong: " + read.error.text() : "nothing";
    }
    std::string out;
    append_tree(read.document, read.document.root(), &out);
    return out;
}

TEST(JsonDocument, KeepsEveryKindOfValue) {
    EXPECT_EQ(tree(R"({"a":null,"b":true,"c":false,"d":1,"e":"x","f":[],"g":{}})"),
              "{'a'=null 'b'=true 'c'=false 'd'=#1 'e'='x' 'f'=[] 'g'={}}");
    EXPECT_EQ(tree("[[],[1],[1,[2,3]],{\"a\":[{}]}]"), "[[] [#1] [#1 [#2 #3]] {'a'=[{}]}]");
}

TEST(JsonDocument, ARootMayBeAnyValue) {
    EXPECT_EQ(tree("null "), "null");
    EXPECT_EQ(tree("\"x\""), "'x'");
    EXPECT_EQ(tree("12"), "#12");
    EXPECT_EQ(tree("[]"), "[]");
}

TEST(JsonDocument, KeepsNumbersAsTheyAreWritten) {
    EXPECT_EQ(tree("[0,-0,1.50,-2,1e3,1E+2,18446744073709551616,9007199254740993]"),
              "[#0 #-0 #1.50 #-2 #1e3 #1E+2 #18446744073709551616 #9007199254740993]");
}

TEST(JsonDocument, ResolvesEscapes) {
    EXPECT_EQ(tree(R"("\"\\\/\b\f\n\r\t")"), "'\"\\/\b\f\n\r\t'");
    EXPECT_EQ(tree(R"("\u0041\u00f6\u65e5\ud83d\ude00")"), "'A\xC3\xB6\xE6\x97\xA5\xF0\x9F\x98\x80'");
    EXPECT_EQ(tree(R"("a\u0000b")"), "'a\0b'"s);
    EXPECT_EQ(tree(R"({"\u006b":1})"), "{'k'=#1}");
}

TEST(JsonDocument, KeepsRepeatedAndEmptyNames) { EXPECT_EQ(tree(R"({"a":1,"a":2,"":3})"), "{'a'=#1 'a'=#2 ''=#3}"); }

TEST(JsonDocument, StopsBehindOneDocument) {
    const reading read("  {\"a\":1}\n{\"b\":2}");
    ASSERT_FALSE(read.error);
    EXPECT_EQ(read.length, std::strlen("  {\"a\":1}"));
}

TEST(JsonDocument, NothingButWhiteSpaceIsNoDocument) {
    for (const char *text : {"", " ", "\n", " \t\r\n \n"}) {
        const reading read(text);
        EXPECT_FALSE(read.error) << '"' << text << '"';
        EXPECT_EQ(read.length, 0U) << '"' << text << '"';
    }
}

TEST(JsonDocument, ANodeKnowsWhereItsTokenStands) {
    const std::string text = "{\"name\" :\n  [ \"rp0\" , 12 ,\n true\n] }";
    const reading read(text);
    ASSERT_FALSE(read.error);
    const json_node *node = &read.document.root();
    for (const std::string token : {"{", "\"name\"", "[", "\"rp0\"", "12", "true"}) {
        EXPECT_GE(node->offset, text.find(token)) << token;
        EXPECT_LE(node->offset, text.find(token) + token.size()) << token;
        ++node;
    }
}

TEST(JsonDocument, IsUsedAgainForTheNext) {
    json_document document;
    std::size_t length = 0;
    ASSERT_FALSE(document.read("{\"a\":[\"long text\",\"another\"]}", &length));
    ASSERT_TRUE(document.read("{\"b\":", &length));
    ASSERT_FALSE(document.read("[\"x\"]", &length));
    std::string out;
    append_tree(document, document.root(), &out);
    EXPECT_EQ(out, "['x']");
}

TEST(JsonDocument, TextsStayWhereTheyAreHoweverManyFollow) {
    std::string text = "[";
    for (int i = 0; i < 20000; ++i) {
        text += "\"text " + std::to_string(i) + "\",";
    }
    text += "0]";
    const reading read(text);
    ASSERT_FALSE(read.error);
    ASSERT_EQ(read.document.root().count, 20001U);
    EXPECT_EQ((&read.document.root() + 1)->text, "text 0");
    EXPECT_EQ((&read.document.root() + 20000)->text, "text 19999");
}

TEST(JsonDocument, WhatIsNotJsonIsRefusedWhereItStands) {
    struct broken {
        const char *text;
        std::size_t least;  // the first byte that can be called wrong
        std::size_t most;
    };
    static constexpr broken BROKEN[] = {
        {"x", 0, 1},
        {"}", 0, 1},
        {"]", 0, 1},
        {",", 0, 1},
        {":", 0, 1},
        {" \n} ", 2, 3},
        {"{", 1, 1},
        {"{x", 1, 2},
        {"{\"a\"}", 4, 5},
        {"{\"a\":}", 5, 6},
        {"{\"a\":1", 6, 6},
        {"{\"a\":1,}", 7, 8},
        {"{\"a\":1;\"b\":2}", 6, 7},
        {"{\"a\":1 \"b\":2}", 7, 8},
        {"{1:2}", 1, 2},
        {"{'a':1}", 1, 2},
        {"[1,]", 3, 4},
        {"[1 2]", 3, 4},
        {"[1}", 2, 3},
        {"[", 1, 1},
        {"[tru]", 1, 5},
        {"[True]", 1, 2},
        {"[nul", 1, 4},
        {"[01]", 2, 3},
        {"[+1]", 1, 2},
        {"[-]", 2, 3},
        {"[.5]", 1, 2},
        {"[1.]", 3, 4},
        {"[1e]", 3, 4},
        {"[0x1f]", 2, 3},
        {"[NaN]", 1, 2},
        {"[Infinity]", 1, 2},
        {"\"", 1, 1},
        {"\"abc", 4, 4},
        {"\"a\\", 2, 3},
        {"\"\\x41\"", 1, 3},
        {"\"\\u12\"", 1, 6},
        {"\"\\u12G4\"", 1, 7},
        {"\"\\ud83d\"", 1, 8},  // half of a surrogate pair
        {"\"\\ud83dx\"", 1, 8},
        {"\"\\ud83d\\u0041\"", 1, 13},
        {"\"\\ude00\"", 1, 8},  // the other half alone
        {"\"a\nb\"", 2, 3},     // a raw control byte
        {"\"a\tb\"", 2, 3},
        {"// comment\n1", 0, 1},
        {"/* comment */1", 0, 1},
    };
    for (const broken &each : BROKEN) {
        const reading read(each.text);
        if (!read.error) {
            ADD_FAILURE() << each.text << " is no JSON";
            continue;
        }
        EXPECT_NE(read.error.text(), "") << each.text;
        EXPECT_GE(read.length, each.least) << each.text;
        EXPECT_LE(read.length, each.most) << each.text;
    }
}

TEST(JsonDocument, TextsMustBeUtf8) {
    for (const std::string_view bytes : {"\x80", "\xC3(", "\xC0\xAF", "\xE6\x97(", "\xED\xA0\x80", "\xF0\x9F\x98(",
                                         "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"}) {
        const reading read("[\"" + std::string(bytes) + "\"]");
        EXPECT_TRUE(read.error);
        EXPECT_GE(read.length, 2U);
        EXPECT_LE(read.length, 4 + bytes.size());
    }
    EXPECT_EQ(tree("[\"K\xC3\xB6ln \xF0\x9F\x98\x80\"]"), "['K\xC3\xB6ln \xF0\x9F\x98\x80']");
}

TEST(JsonDocument, ASequenceCutAtTheEndIsRefusedWithinTheText) {
    const std::string_view sequence = "\xF0\x9F\x98\x80";
    for (std::size_t length = 1; length < sequence.size(); ++length) {
        const std::string text = "[\"" + std::string(sequence.substr(0, length));
        const reading read(text);
        EXPECT_TRUE(read.error) << length;
        EXPECT_LE(read.length, text.size()) << length << " of 4 bytes";
    }
}

TEST(JsonDocument, AZeroByteEndsTheText) {
    for (const std::string &text : {"{\"a\"\0:1}"s, "[1\0,2]"s, "\"a\0b\""s}) {
        const reading read(text);
        EXPECT_TRUE(read.error);
        EXPECT_EQ(read.length, text.find('\0'));
    }
}

TEST(JsonDocument, DeepNestingTakesNoStack) {
    constexpr std::size_t DEPTH = 100000;
    const reading open(std::string(DEPTH, '['));
    EXPECT_TRUE(open.error);
    EXPECT_EQ(open.length, DEPTH);
    const reading closed(std::string(DEPTH, '[') + std::string(DEPTH, ']'));
    ASSERT_FALSE(closed.error);
    EXPECT_EQ(closed.length, 2 * DEPTH);
    EXPECT_EQ(closed.document.root().next, DEPTH);
    EXPECT_EQ((&closed.document.root() + DEPTH - 1)->count, 0U);
    std::string objects;
    for (std::size_t i = 0; i < DEPTH; ++i) {
        objects += "{\"a\":";
    }
    const reading nested(objects + "1" + std::string(DEPTH, '}'));
    ASSERT_FALSE(nested.error);
    EXPECT_EQ(nested.document.root().next, 2 * DEPTH + 1);
}

TEST(JsonKindName, IsReadyForAMessage) {
    EXPECT_STREQ(json_kind_name(json_kind::null), "null");
    EXPECT_STREQ(json_kind_name(json_kind::boolean), "a boolean");
    EXPECT_STREQ(json_kind_name(json_kind::number), "a number");
    EXPECT_STREQ(json_kind_name(json_kind::text), "text");
    EXPECT_STREQ(json_kind_name(json_kind::object), "an object");
    EXPECT_STREQ(json_kind_name(json_kind::array), "an array");
}

}  // namespace
