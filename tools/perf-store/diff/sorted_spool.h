// SPDX-License-Identifier: Apache-2.0
// Any number of records, put in any order and taken in the order of their keys, in a memory of a fixed size.
//
// What does not fit in the memory goes to a temporary file below TMPDIR (else /tmp) as sorted runs, which are merged
// when the records are taken. The file has no name from the start: however the process ends, it is gone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/pm_error.h"

namespace perf_store {

class sorted_spool {
public:
    static constexpr std::size_t MEMORY = 16 * 1024 * 1024;  // bytes

    // One record may need more than the memory, and then has it.
    explicit sorted_spool(std::size_t memory = MEMORY);
    ~sorted_spool();
    sorted_spool(const sorted_spool &) = delete;
    sorted_spool &operator=(const sorted_spool &) = delete;

    // Of records with the same key the one that was put last is kept. The error names the folder of the temporary file.
    [[nodiscard]] pm_error put(std::string_view key, std::string_view value);

    // Says that all were put. When there is a file, the memory is given back until the records are taken, which takes
    // a quarter of it.
    [[nodiscard]] pm_error finish();

    // Takes the next record, after finish(); `*found` is false after the last one. The key and the value are valid
    // until the next call.
    [[nodiscard]] pm_error next(bool *found);
    [[nodiscard]] std::string_view key() const { return key_; }
    [[nodiscard]] std::string_view value() const { return value_; }

private:
    class run;

    void sort_memory();
    [[nodiscard]] pm_error write_run();
    [[nodiscard]] pm_error open_runs();
    [[nodiscard]] pm_error next_in_memory(bool *found);
    [[nodiscard]] pm_error next_of_runs(bool *found);

    std::size_t memory_;
    std::string records_;                // one after the other, each with its sizes before it
    std::vector<std::uint64_t> places_;  // of the records, in the order in which they were put
    bool ascending_ = true;              // each key is greater than the one before
    int file_ = -1;
    std::uint64_t written_ = 0;        // bytes of the file
    std::vector<std::uint64_t> ends_;  // of the runs in the file
    std::string last_written_;         // the greatest key of the last run

    std::size_t taken_ = 0;                   // of places_
    std::vector<std::unique_ptr<run>> runs_;  // a heap, with the least key in front
    run *current_ = nullptr;                  // the one that key_ and value_ are in
    std::string_view key_;
    std::string_view value_;
};

}  // namespace perf_store
