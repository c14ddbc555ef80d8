// SPDX-License-Identifier: Apache-2.0
// Objects of data sets, and the lines of what commands print.
#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace perf_store_test {

// The data set of an empty store.
inline constexpr char EMPTY[] = "{\"dataset\":{\"version\":1}}\n";

inline std::vector<std::string> lines_of(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

// The words of a line, one blank between two.
inline std::string squeezed(const std::string &line) {
    std::istringstream in(line);
    std::string result;
    for (std::string word; in >> word;) {
        result += (result.empty() ? "" : " ") + word;
    }
    return result;
}

// An item whose record has `average` for its average, if it is not 0, and nothing else.
inline std::string item(const std::string &root, const std::string &node, const std::string &path, int average) {
    return R"({"item":{"root":")" + root + R"(","node":)" + node + R"(,"path":")" + path +
           R"(","type":"pm_values_parcel","record":{)" +
           (average != 0 ? R"("Average":)" + std::to_string(average) : "") + "}}}\n";
}

inline std::string publisher(const std::string &root, const std::string &node, const std::string &state) {
    return R"({"publisher":{"root":")" + root + R"(","node":)" + node + R"(,"state":")" + state + "\"}}\n";
}

inline std::string node(const std::string &id, const std::string &name) {
    return R"({"node":{"id":)" + id + R"(,"name":")" + name + R"(","sw_state":6,"location":[0,0,0],"processor":)" + id +
           "}}\n";
}

}  // namespace perf_store_test
