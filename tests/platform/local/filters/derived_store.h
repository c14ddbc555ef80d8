// SPDX-License-Identifier: Apache-2.0
// What the tests of derived paths share: the store that they read, and reading it.
//
// A process opens one store only, once, so every store is filled and every listing made in a child.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/opstore.h"
#include "tests/support/child_process.h"
#include "tests/support/command.h"

namespace derived_test {

using names = std::vector<std::string>;

inline constexpr std::uint32_t BATCH = 200;
inline constexpr std::uint32_t NODE = 1;        // of the policies, endpoints, tunnels and profiles
inline constexpr std::uint32_t OTHER_NODE = 2;  // a detail record without counters, counters without one
inline constexpr std::uint32_t LARGE_NODE = 3;  // MANY policies with long names
inline constexpr std::uint32_t STOPPED_NODE = 4;
inline constexpr std::uint32_t UNREACHABLE_NODE = 5;
inline constexpr std::uint32_t STARTING_NODE = 6;
inline constexpr std::uint32_t EMPTY_NODE = 7;     // a running publisher without items
inline constexpr std::uint32_t UNKNOWN_NODE = 8;   // no publisher ever
inline constexpr std::uint32_t ODD_NODE = 9;       // names that look like parts of derived paths
inline constexpr std::uint32_t FOREIGN_NODE = 10;  // details of an older schema, and of another type

inline constexpr unsigned MANY = 1000;
inline constexpr unsigned EVERY = 4;  // every fourth of MANY has MANY_COLOR
inline constexpr std::uint32_t MANY_COLOR = 7;
std::string long_name(unsigned number);  // longer than a caller keeps

// Fills the store that the URL names, in a process of its own.
bool fill_store(const char *url);

// `count` wildcards, and some of them replaced: key(4, {{2, "red"}}) is the key of four components
// whose second one is "red".
inline std::string key(std::size_t count, const std::vector<std::pair<std::size_t, std::string>> &given) {
    names components(count, "________");
    for (const auto &[position, text] : given) {
        components.at(position - 1) = text;
    }
    std::string result;
    for (const std::string &each : components) {
        result += (result.empty() ? "" : ",") + each;
    }
    return result;
}
inline constexpr std::size_t POLICY = 11;
inline constexpr std::size_t ENDPOINT = 4;
inline constexpr std::size_t TUNNEL = 2;

// What reading gave.
struct answer {
    errcode code = 0;
    names found;                         // keys of a listing
    std::vector<std::uint32_t> batches;  // their numbers of items
};

class DerivedStore : public testing::Test {
protected:
    static void SetUpTestSuite() {
        folder_ = new temporary_folder;
        const std::string url = "lmdb:" + folder_->path();
        setenv("OPSTORE_URL", url.c_str(), 1);
        ASSERT_TRUE(in_child([&] { return fill_store(url.c_str()); }));
    }
    static void TearDownTestSuite() {
        delete folder_;
        folder_ = nullptr;
    }

    [[nodiscard]] static const std::string &store_folder() { return folder_->path(); }

    // Runs `read` in a child; the lines that it writes.
    static names lines_of_child(const std::function<std::string()> &read) {
        const temporary_folder result;
        EXPECT_TRUE(in_child([&] {
            write_file(result.path() + "/lines", read());
            return true;
        }));
        std::istringstream in(read_file(result.path() + "/lines"));
        names lines;
        for (std::string line; std::getline(in, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    // Lists as the walker does.
    static answer list(const std::string &path, std::uint32_t node = NODE) {
        const names lines = lines_of_child([&] { return list_here(path, node); });
        answer result;
        for (const std::string &line : lines) {
            const std::string text = line.substr(1);
            switch (line[0]) {
            case 'c': result.code = static_cast<errcode>(std::stoul(text)); break;
            case 'b': result.batches.push_back(static_cast<std::uint32_t>(std::stoul(text))); break;
            default: result.found.push_back(text);
            }
        }
        EXPECT_FALSE(lines.empty()) << path;
        return result;
    }

    // The keys of a listing that must succeed.
    static names listed(const std::string &path, std::uint32_t node = NODE) {
        const answer result = list(path, node);
        EXPECT_EQ(result.code, ERRCODE_SUCCESS) << path;
        return result.found;
    }

    static errcode get(const std::string &path, std::uint32_t node = NODE, std::string *data = nullptr) {
        const names lines = lines_of_child([&] {
            void *found = nullptr;
            std::uint32_t type = 0;
            std::uint32_t length = 0;
            const errcode code = opstore_item_get(bind(node), path.c_str(), &type, &found, &length, 0);
            std::string result = std::to_string(code) + "\n";
            for (std::uint32_t i = 0; code == ERRCODE_SUCCESS && i < length; ++i) {
                result += "0123456789abcdef"[static_cast<const unsigned char *>(found)[i] / 16];
                result += "0123456789abcdef"[static_cast<const unsigned char *>(found)[i] % 16];
            }
            return result;
        });
        if (lines.empty()) {
            ADD_FAILURE() << "no answer for " << path;
            return ~0U;
        }
        if (data != nullptr) {
            *data = lines.size() > 1 ? lines[1] : "";
        }
        return static_cast<errcode>(std::stoul(lines[0]));
    }

private:
    static opstore_handle bind(std::uint32_t node) {
        char path[64];
        std::snprintf(path, sizeof path, "/oper/perf_meas/main/node/%x/", node);
        opstore_handle handle = nullptr;
        if (_opstore_bind(&handle, path, OPSTORE_BIND_READ) != ERRCODE_SUCCESS) {
            std::_Exit(1);
        }
        return handle;
    }

    // One line each: 'c' and the code, 'b' and a batch's size, 'k' and a key.
    static std::string list_here(const std::string &path, std::uint32_t node) {
        opstore_handle handle = bind(node);
        std::string lines;
        char last[OPSTORE_KEY_SIZE] = "";
        std::uint32_t flags = 0;
        std::uint32_t more = 1;
        unsigned requests = 0;
        errcode code = ERRCODE_SUCCESS;
        while (more != 0 && code == ERRCODE_SUCCESS && ++requests < MANY) {
            opstore_list *batch = nullptr;
            std::uint32_t count = BATCH;
            code = opstore_datalist(handle, path.c_str(), last, &count, &batch, flags);
            if (code != ERRCODE_SUCCESS || count == 0) {
                break;
            }
            for (std::uint32_t i = 0; i < count && code == ERRCODE_SUCCESS; ++i) {
                const char *each = nullptr;
                const void *data = nullptr;
                std::uint32_t type = 0;
                std::uint32_t length = 0;
                std::uint32_t extra = 0;
                code = opstore_datalist_next(batch, &each, &type, &data, &length, &extra);
                lines += "k" + std::string(each) + "\n";
                std::strncpy(last, each, sizeof last - 1);
            }
            if (count < BATCH && code == ERRCODE_SUCCESS) {
                code = opstore_datalist_get_more_flag(batch, &more);
            }
            static_cast<void>(opstore_datalist_free(batch));
            lines += "b" + std::to_string(count) + "\n";
            flags = OPSTORE_LIST_AFTER;
        }
        return "c" + std::to_string(code) + "\n" + lines;
    }

    static inline temporary_folder *folder_ = nullptr;
};

}  // namespace derived_test
