// SPDX-License-Identifier: Apache-2.0
// Everything that perf-show has can be said in words.
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "front/command_table.h"
#include "perf-measure/phrases/numbers.h"
#include "perf-measure/phrases/phrase_table.h"

namespace {

using namespace perf_measure;

// All options of perf-show in the table, with the arguments that the table itself gives them.
std::set<std::string> all_letters() {
    std::set<std::string> letters;
    const auto add = [&letters](const char *text) {
        std::istringstream words(text);
        for (std::string word; words >> word;) {
            if (word.starts_with('-')) {
                letters.insert(word);
            }
        }
    };
    for (const phrase &each : phrases()) {
        add(each.letters);
    }
    for (unsigned i = 0; i < static_cast<unsigned>(option_id::count); ++i) {
        const option &each = option_of(static_cast<option_id>(i));
        add(each.letters);
        for (const choice &value : each.choices) {
            add(value.letters);
        }
    }
    return letters;
}

TEST(Reach, EveryCommandTypeAndSubtypeHasWords) {
    std::size_t commands = 0;
    for (const pm_show_command &row : pm_show_commands()) {
        std::vector<std::string> numbers = {"-c", std::to_string(row.type)};
        switch (row.variant) {
        case pm_show_variant::only:
        case pm_show_variant::all_profiles: break;
        case pm_show_variant::named_profile: numbers.emplace_back("-P"); break;
        case pm_show_variant::global_profile: numbers.emplace_back("-S"); break;
        default: numbers.emplace_back("-t"); numbers.push_back(std::to_string(static_cast<std::uint32_t>(row.variant)));
        }
        ++commands;
        EXPECT_NE(words_of(numbers), "") << row.type << ' ' << static_cast<std::uint32_t>(row.variant);
    }
    EXPECT_EQ(commands, 45U);  // 27 types of one row, 15 subtypes, 3 forms of profiles
}

TEST(Reach, EveryOptionLetterHasWords) {
    std::string letters;
    for (const std::string &each : all_letters()) {
        letters += each.substr(1);
    }
    EXPECT_EQ(letters, "ADLMNOPQSTVWabcdefghijklmnoprstuv");
}

TEST(Reach, EveryProfileFormHasWords) {
    EXPECT_EQ(words_of({"-c", "23"}), "show profiles");
    EXPECT_EQ(words_of({"-c", "23", "-P"}), "show profiles named");
    EXPECT_EQ(words_of({"-c", "23", "-S"}), "show profiles defaults");
    EXPECT_EQ(words_of({"-c", "23", "-P", "-T", "4", "-D", "0", "-Q", "metro"}),
              "show profiles named name metro kind delay transport generic");
    EXPECT_EQ(words_of({"-c", "23", "-S", "-M", "3", "-T", "3"}),
              "show profiles defaults kind probe transport endpoint");
}

TEST(Reach, NumbersThatNoPhraseHasGiveNoWords) {
    EXPECT_EQ(words_of({"-c", "38"}), "");
    EXPECT_EQ(words_of({"-c", "9", "-f", "1"}), "");
    EXPECT_EQ(words_of({}), "");
}

}  // namespace
