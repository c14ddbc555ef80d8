// SPDX-License-Identifier: Apache-2.0
// What the tests of the walker share: a request whose display prints each record as "[text]" and
// answers as the test says.
#pragma once

#include "tests/front/front_test.h"

inline constexpr parcel_descriptor test_descriptor{1, "test_parcel", 1, 0, "test", nullptr, "", ""};

class ShowTest : public FrontTest {
protected:
    using calls = std::vector<std::string>;

    void SetUp() override {
        FrontTest::SetUp();
        results.clear();
        headers.clear();
    }

    static int display(const void *decoded_parcel) {
        headers.push_back(pm_show_header_pending);
        pm_show_header_pending = false;
        if (decoded_parcel == nullptr) {
            pm_print<"[no record]">();
            return PM_SHOW_NO_RECORD;
        }
        const char *const text = static_cast<const fake_record *>(decoded_parcel)->text;
        pm_print<"[%s]">(text);
        const auto found = results.find(text);
        return found != results.end() ? found->second : PM_SHOW_PRINTED;
    }

    static pm_show_request list_request() {
        return {"/oper/perf_meas/main/", "intf/detail/", "", display, &test_descriptor, sizeof(fake_record), 200, 0};
    }
    static pm_show_request single_request() {
        return {"/oper/perf_meas/main/", "summary", "", display, &test_descriptor, sizeof(fake_record), 0, 1};
    }

    // An item of a batch.
    static fake_item item(const std::string &key, const std::string &data) { return {key, data}; }

    // A batch of `count` items with the keys k<first>, k<first + 1> and so on, and data to match.
    static fake_batch batch_of(int first, int count, std::uint32_t more = 0) {
        fake_batch batch;
        for (int number = first; number < first + count; ++number) {
            batch.items.push_back(item("k" + std::to_string(number), "d" + std::to_string(number)));
        }
        batch.more = more;
        return batch;
    }

    // The lines before a node's items.
    static std::string header(const std::string &name) {
        return "\n" + std::string(pm_show_separator) + name + "\n" + pm_show_separator;
    }

    // The logged calls that begin with `word`.
    static calls calls_of(const std::string &word) {
        calls found;
        for (const std::string &call : fake.calls) {
            if (call.compare(0, word.size(), word) == 0) {
                found.push_back(call);
            }
        }
        return found;
    }

    static inline std::map<std::string, int> results;  // of the display, by the record's text
    static inline std::vector<bool> headers;           // whether each display call found the header pending
};
