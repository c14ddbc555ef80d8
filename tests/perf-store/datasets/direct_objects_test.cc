// SPDX-License-Identifier: Apache-2.0
// Objects straight from their text, which must take nothing that the careful parser and reader read otherwise.
#include "perf-store/datasets/direct_objects.h"

#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "perf-store/datasets/json_document.h"
#include "perf-store/datasets/record_reader.h"
#include "schema/pm_descriptors.h"
#include "tests/perf-store/command_line/objects.h"
#include "tests/support/random_record.h"

namespace {

using namespace perf_store;
using namespace std::string_literals;

constexpr char ITEM[] =
    R"({"item":{"root":"main","node":256,"path":"summary","type":"pm_values_parcel","record":{"Average":1}}})";
constexpr char INTERFACE[] = R"({"interface":{"handle":8,"name":"eth0/1/0/4"}})";

enum class kind { none, item, interface };

kind kind_of(const std::string &text) {
    record_memory memory;
    return static_cast<kind>(direct_objects(&memory).read(text).index());
}

// The item with one member's text replaced.
std::string item_with(const std::string &old_text, const std::string &new_text) {
    std::string text = ITEM;
    return text.replace(text.find(old_text), old_text.size(), new_text);
}

// Reads one object by nodes, and tells how what was read directly differs from it.
class careful_comparison {
public:
    explicit careful_comparison(const std::string &text) : text_(text) {}

    // Nothing when there is no difference, or the object is not read directly.
    [[nodiscard]] std::string difference() {
        record_memory memory;
        direct_objects direct(&memory);
        const direct_objects::object object = direct.read(text_);
        if (object.index() == 0) {
            return "";
        }
        was_read_ = true;
        std::size_t length = 0;
        if (const pm_error error = document_.read(text_.c_str(), &length)) {
            return "the careful parser refuses it: " + error.text();
        }
        if (length != direct.length()) {
            return "it ends at byte " + std::to_string(length) + ", not " + std::to_string(direct.length());
        }
        const json_node *const key = document_.inside(document_.root());
        if (document_.root().count != 1) {
            return "it has more than one key";
        }
        members_ = &key[1];
        const auto *const item = std::get_if<direct_item>(&object);
        return item != nullptr ? of_item(key->text, *item)
                               : of_interface(key->text, std::get<direct_interface>(object));
    }
    [[nodiscard]] bool was_read() const { return was_read_; }

private:
    [[nodiscard]] const json_node *member(std::string_view name) const {
        const json_node *found = nullptr;
        const json_node *each = document_.inside(*members_);
        for (std::uint32_t i = 0; i < members_->count; ++i) {
            found = each->text == name ? &each[1] : found;
            each = document_.after(each[1]);
        }
        return found;
    }
    [[nodiscard]] bool is_number(std::string_view name, std::uint32_t value) {
        std::uint64_t careful = 0;
        return !reader_.read_unsigned(*member(name), 0xFFFFFFFF, "N", &careful) && careful == value;
    }
    [[nodiscard]] bool is_text(std::string_view name, std::string_view value) {
        std::string_view careful;
        return !reader_.read_text(*member(name), &careful) && careful == value;
    }

    [[nodiscard]] std::string of_item(std::string_view key, const direct_item &item) {
        const void *record = nullptr;
        if (key != "item" || members_->count != 5) {
            return "it is no item";
        }
        const bool has_root =
            is_text("root", path_grammar::ROOTS[0].word) && item.into.data_root == path_grammar::ROOTS[0].id;
        if (!has_root || !is_number("node", item.into.node) || !is_text("path", item.path) ||
            !is_text("type", item.type->name)) {
            return "its members differ";
        }
        if (const pm_error error = reader_.read(*member("record"), item.type, &record)) {
            return error.text();
        }
        return first_difference(item.type, record, item.record);
    }
    [[nodiscard]] std::string of_interface(std::string_view key, const direct_interface &interface) {
        return key == "interface" && members_->count == 2 && is_number("handle", interface.handle) &&
                       is_text("name", interface.record.Name)
                   ? ""
                   : "its members differ";
    }

    std::string text_;
    json_document document_;
    member_path path_;
    record_memory memory_;
    record_reader reader_{&document_, &path_, &memory_};
    const json_node *members_ = nullptr;
    bool was_read_ = false;
};

std::string difference(const std::string &text) { return careful_comparison(text).difference(); }

std::vector<std::string> generated_lines() {
    std::ifstream in(PM_GENERATED_SET, std::ios::binary);
    return perf_store_test::lines_of({std::istreambuf_iterator<char>(in), {}});
}

TEST(DirectObjects, ReadsAnItem) {
    record_memory memory;
    direct_objects direct(&memory);
    const std::string text = "\n"s + ITEM + "\n{";
    const direct_objects::object object = direct.read(text);
    ASSERT_TRUE(std::holds_alternative<direct_item>(object));
    const auto &item = std::get<direct_item>(object);
    EXPECT_EQ(item.into, (store::branch{path_grammar::ROOTS[0].id, 256}));
    EXPECT_EQ(item.path, "summary");
    EXPECT_EQ(item.type, pm_values_parcel_descriptor());
    EXPECT_EQ(static_cast<const std::uint32_t *>(item.record)[0], 1U);
    EXPECT_EQ(direct.length(), text.size() - 2);
    EXPECT_FALSE(direct.was_cut());
}

TEST(DirectObjects, ReadsTheNameOfAnInterface) {
    record_memory memory;
    direct_objects direct(&memory);
    const direct_objects::object object = direct.read(INTERFACE);
    ASSERT_TRUE(std::holds_alternative<direct_interface>(object));
    EXPECT_EQ(std::get<direct_interface>(object).handle, 8U);
    EXPECT_STREQ(std::get<direct_interface>(object).record.Name, "eth0/1/0/4");
    EXPECT_EQ(direct.length(), sizeof INTERFACE - 1);
}

TEST(DirectObjects, WhiteSpaceMayBeAnywhereBetweenTokens) {
    const std::string spread = " {\n\"interface\" : {\t\"handle\" : \"0x8\" ,\r\n \"name\" : \"eth0/1/0/4\" } } ";
    EXPECT_EQ(kind_of(spread), kind::interface);
    EXPECT_EQ(difference(spread), "");
}

TEST(DirectObjects, AreAllThatAGeneratedSetHasManyOf) {
    std::size_t read = 0;
    for (const std::string &line : generated_lines()) {
        const bool of_many = line.starts_with("{\"item\"") || line.starts_with("{\"interface\"");
        EXPECT_EQ(kind_of(line) != kind::none, of_many) << line;
        EXPECT_EQ(difference(line), "") << line;
        read += of_many ? 1 : 0;
    }
    EXPECT_GT(read, 30U);
}

TEST(DirectObjects, PathsAreOfOneToFourHundredBytes) {
    EXPECT_EQ(kind_of(item_with("summary", std::string(400, 'p'))), kind::item);
    EXPECT_EQ(kind_of(item_with("summary", std::string(401, 'p'))), kind::none);
    EXPECT_EQ(kind_of(item_with("summary", "p")), kind::item);
    EXPECT_EQ(kind_of(item_with("summary", "")), kind::none);
    EXPECT_EQ(kind_of(item_with("summary", "/summary")), kind::none);
}

TEST(DirectObjects, NumbersHave32Bits) {
    EXPECT_EQ(kind_of(item_with("256", "4294967295")), kind::item);
    EXPECT_EQ(kind_of(item_with("256", "4294967296")), kind::none);
    EXPECT_EQ(kind_of(item_with("256", "-1")), kind::none);
    EXPECT_EQ(kind_of(R"({"interface":{"handle":4294967296,"name":"x"}})"), kind::none);
}

TEST(DirectObjects, TheRestIsLeftToTheCarefulReader) {
    for (const std::string &text : {""s,
                                    " "s,
                                    "{}"s,
                                    "[]"s,
                                    "x"s,
                                    R"({"node":{"id":16,"name":"rp0"}})"s,
                                    R"({"items":{}})"s,
                                    R"({"interface":{}})"s,
                                    R"({"interface":{"name":"x","handle":8}})"s,
                                    R"({"interface":{"handle":8}})"s,
                                    R"({"interface":{"handle":8,"name":null}})"s,
                                    R"({"interface":{"handle":8,"name":"a\tb"}})"s,
                                    R"({"interface":{"handle":8,"name":"x","x":1}})"s,
                                    R"({"interface":{"handle":8,"name":"x"},"x":1})"s,
                                    R"({"interface":{"handle":8,"name":"x"})"s,
                                    R"("interface":{"handle":8,"name":"x"}})"s,
                                    item_with("main", "mian"),
                                    item_with("\"main\"", "1"),
                                    item_with("pm_values_parcel", "pm_value_parcel"),
                                    item_with("\"pm_values_parcel\"", "null"),
                                    item_with("\"summary\"", "1"),
                                    item_with("root", "node"),
                                    item_with(R"("type":"pm_values_parcel",)", ""),
                                    item_with(R"("record":)", R"("x":1,"record":)"),
                                    item_with(R"({"Average":1})", "{"),
                                    item_with(R"({"Average":1})", "[]"),
                                    item_with("}}}", "},\"x\":1}}"),
                                    item_with("}}}", "}},\"x\":1}"),
                                    item_with("}}}", "}}]"),
                                    item_with("}}}", "}}")}) {
        EXPECT_EQ(kind_of(text), kind::none) << text;
    }
}

TEST(DirectObjects, AreWhole) {
    for (const std::string text : {ITEM, INTERFACE}) {
        for (std::size_t length = 0; length < text.size(); ++length) {
            EXPECT_EQ(kind_of(text.substr(0, length)), kind::none) << length;
        }
    }
}

TEST(DirectObjects, OnesThatAreCutAreKnown) {
    record_memory memory;
    direct_objects direct(&memory);
    for (const std::string cut :
         {"", " \n", "{", "{\"item\"", R"({"item":{"root":"ma)", R"({"interface":{"handle":8)"}) {
        EXPECT_EQ(direct.read(cut).index(), 0U) << cut;
        EXPECT_TRUE(direct.was_cut()) << cut;
    }
    for (const std::string wrong : {"x", R"({"node":{"id":16}})", R"({"interface":[]})", "{\"item\":\"a\tb\"}"}) {
        EXPECT_EQ(direct.read(wrong).index(), 0U) << wrong;
        EXPECT_FALSE(direct.was_cut()) << wrong;
    }
}

std::string utf8(std::uint32_t point) {
    const auto byte = [](std::uint32_t value) { return static_cast<char>(value); };
    if (point < 0x80) {
        return {byte(point)};
    }
    if (point < 0x800) {
        return {byte(0xC0 | point >> 6), byte(0x80 | (point & 0x3F))};
    }
    if (point < 0x10000) {
        return {byte(0xE0 | point >> 12), byte(0x80 | (point >> 6 & 0x3F)), byte(0x80 | (point & 0x3F))};
    }
    return {byte(0xF0 | point >> 18), byte(0x80 | (point >> 12 & 0x3F)), byte(0x80 | (point >> 6 & 0x3F)),
            byte(0x80 | (point & 0x3F))};
}

// Every character, halves of surrogate pairs among them, and some beyond the last.
TEST(DirectObjects, NamesAreUtf8) {
    std::size_t read = 0;
    for (std::uint32_t point = 0; point < 0x110400; point += point < 0x11000 ? 1 : 97) {
        const std::string text = R"({"interface":{"handle":8,"name":")" + utf8(point) + "\"}}";
        const bool is_character =
            point >= ' ' && point != '"' && point != '\\' && point < 0x110000 && (point < 0xD800 || point > 0xDFFF);
        ASSERT_EQ(kind_of(text) == kind::interface, is_character) << point;
        ASSERT_EQ(difference(text), "") << point;
        read += is_character ? 1 : 0;
    }
    EXPECT_GT(read, 60000U);
}

// Lines with one to three bytes changed, removed or added: most are no JSON, many are.
TEST(DirectObjects, ReadNothingThatTheCarefulReaderReadsOtherwise) {
    std::vector<std::string> lines = generated_lines();
    std::erase_if(lines, [](const std::string &line) { return line.size() > 1500 || kind_of(line) == kind::none; });
    lines.insert(lines.end(), {ITEM, INTERFACE, "{\"interface\" : { \"handle\" : 1 , \"name\" : \"K\xC3\xB6ln\" } }"});
    ASSERT_GT(lines.size(), 10U);
    const std::string bytes = "{}[]:,\"\\ \t\n0123456789-+.eEtrufalsn\x01\x7F\x80\xC3\xFF"s + '\0';
    std::mt19937 random(1);
    const auto below = [&](std::size_t end) { return random() % end; };
    std::size_t taken = 0;
    for (int i = 0; i < 100000; ++i) {
        std::string text = lines[below(lines.size())];
        for (std::size_t change = below(3) + 1; change > 0; --change) {
            const std::size_t at = below(text.size());
            switch (below(3)) {
            case 0: text[at] = bytes[below(bytes.size())]; break;
            case 1: text.erase(at, 1); break;
            default: text.insert(at, 1, bytes[below(bytes.size())]); break;
            }
        }
        careful_comparison comparison(text);
        ASSERT_EQ(comparison.difference(), "") << text;
        taken += comparison.was_read() ? 1 : 0;
    }
    EXPECT_GT(taken, 5000U);  // enough that both have read
}

}  // namespace
