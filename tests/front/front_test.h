// SPDX-License-Identifier: Apache-2.0
// What the tests of the front end share: a fresh process state for each test, a command line as one
// text, and captured output.
#pragma once

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/pm_output.h"
#include "front/options.h"
#include "front/walker.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_headers.h"
#include "pm_show_client/pm_show_options.h"
#include "tests/fakes/platform_fake.h"
#include "tests/fakes/platform_text_fake.h"

class FrontTest : public testing::Test {
protected:
    struct printed {
        std::string out;
        std::string err;
    };

    void SetUp() override {
        reset_platform_fake();
        reset_platform_text_fake();
        free_texts();
        pm_show_options = {};
        pm_show_opstore_handle = nullptr;
        pm_show_opstore_present = 0;
        pm_show_header_pending = false;
    }
    void TearDown() override { free_texts(); }

    // Parses a command line whose arguments are separated by single blanks.
    void given(const std::string &arguments) {
        free_texts();
        std::vector<std::string> words{"perf-show"};
        std::istringstream stream(arguments);
        for (std::string word; std::getline(stream, word, ' ');) {
            words.push_back(word);
        }
        std::vector<char *> argv;
        for (std::string &word : words) {
            argv.push_back(word.data());
        }
        argv.push_back(nullptr);
        pm_show_parse_options(static_cast<int>(words.size()), argv.data());
    }

    // What `routine` writes on both streams.
    template <class Routine>
    static printed capture(Routine routine) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        routine();
        pm_output_flush();
        return {testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
    }

private:
    // The program never frees its options; a test process parses many times.
    static void free_texts() {
        for (const char **text :
             {&pm_show_options.name, &pm_show_options.n_text, &pm_show_options.profile_name, &pm_show_options.V_text}) {
            std::free(const_cast<char *>(*text));
            *text = nullptr;
        }
    }
};
