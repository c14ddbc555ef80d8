// A data set's file as a stream of JSON documents, separated by white space. Memory holds a piece of the
// file, as large as its largest document needs.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "perf-store/datasets/json_document.h"

namespace perf_store {

enum class stream_result { document, end, failure };

class document_stream {
public:
    // Opens a file; "-" is standard input, named "<stdin>" in messages.
    explicit document_stream(std::string path);
    ~document_stream();
    document_stream(const document_stream &) = delete;
    document_stream &operator=(const document_stream &) = delete;

    // Reads the next document. On failure problem() is the whole message.
    [[nodiscard]] stream_result next(json_document *document);

    // "FILE:LINE: " of a place in the document read last: `offset` bytes from its start.
    [[nodiscard]] std::string place(std::size_t offset) const;
    [[nodiscard]] const std::string &problem() const { return problem_; }
    // Bytes of the file behind us, and in all where that is known (else 0).
    [[nodiscard]] std::uint64_t bytes_read() const { return bytes_read_; }
    [[nodiscard]] std::uint64_t bytes_in_all() const;

private:
    void unreadable(int failure);
    [[nodiscard]] bool read_more();
    void pass_document();
    [[nodiscard]] bool pass_separator();

    std::string name_;
    std::string problem_;
    int file_ = -1;
    bool at_end_ = false;
    std::vector<char> buffer_;  // terminated
    std::size_t filled_ = 0;
    std::size_t at_ = 0;      // start of the document read last, white space before it included
    std::size_t length_ = 0;  // of that document
    std::uint64_t line_ = 1;  // at `at_`
    std::uint64_t bytes_read_ = 0;
};

}  // namespace perf_store
