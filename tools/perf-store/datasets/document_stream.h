// SPDX-License-Identifier: Apache-2.0
// A data set's file as a stream of JSON documents, separated by white space. Memory holds a part of the
// file, as large as its largest document needs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/pm_error.h"
#include "perf-store/datasets/json_document.h"

namespace perf_store {

class document_stream {
public:
    // Opens a file; "-" is standard input, named "<stdin>" in messages.
    explicit document_stream(std::string path);
    ~document_stream();
    document_stream(const document_stream &) = delete;
    document_stream &operator=(const document_stream &) = delete;

    // Reads the next document; `*found` is false at the end of the file. The error is the whole message,
    // "FILE:LINE: what" or, for a file that cannot be opened or read, "perf-store: FILE: why", and is given
    // again by further calls.
    [[nodiscard]] pm_error next(json_document *document, bool *found);

    // For documents that are read without nodes. rest() is what is buffered after the document read last, terminated;
    // nothing after an error, which next() then gives. take() is told the length of the document at its beginning,
    // white space before it included, which is the document read last from then on. extend() buffers more of the file;
    // false at its end.
    [[nodiscard]] std::string_view rest();
    void take(std::size_t length) { length_ = length; }
    [[nodiscard]] bool extend();

    // The place in the document read last that is `offset` bytes from its start: its line, and "FILE:LINE: ".
    [[nodiscard]] std::uint64_t line_of(std::size_t offset) const;
    [[nodiscard]] std::string place(std::size_t offset) const;

    // Bytes read so far, and in all where that is known (else 0).
    [[nodiscard]] std::uint64_t bytes_read() const { return bytes_read_; }
    [[nodiscard]] std::uint64_t bytes_in_all() const;

private:
    [[nodiscard]] pm_error unreadable(int error_number) const;
    [[nodiscard]] pm_error refused(std::size_t offset, const std::string &wrong) const;
    [[nodiscard]] std::uint64_t column_of(std::size_t offset) const;
    [[nodiscard]] pm_error read_document(json_document *document, bool *found);
    [[nodiscard]] pm_error read_more();
    [[nodiscard]] pm_error pass_document();
    [[nodiscard]] pm_error pass_separator();

    std::string name_;
    pm_error error_;
    int file_descriptor_ = -1;
    bool at_end_ = false;
    std::vector<char> buffer_;  // what is filled is terminated
    std::size_t filled_ = 0;
    std::size_t at_ = 0;        // start of the document read last, white space before it included
    std::size_t length_ = 0;    // of that document; 0 when it has been passed
    std::uint64_t line_ = 1;    // at `at_`
    std::uint64_t column_ = 0;  // there, in bytes
    std::uint64_t bytes_read_ = 0;
};

}  // namespace perf_store
