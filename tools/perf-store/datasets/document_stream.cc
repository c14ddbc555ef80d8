// SPDX-License-Identifier: Apache-2.0
// Reads the file in large parts and hands them to the parser, which stops after each document.
#include "perf-store/datasets/document_stream.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "perf-store/datasets/foreign_text.h"

namespace perf_store {

namespace {

constexpr std::size_t PART = 1 << 20;  // bytes read at a time
constexpr std::string_view WHITE_SPACE = " \t\r\n";
constexpr std::size_t TOKEN_LENGTH = 16;  // an error this close to the end may be a token cut in two

}  // namespace

document_stream::document_stream(std::string path) : name_(std::move(path)), buffer_(PART + 1) {
    if (name_ == "-") {
        name_ = "<stdin>";
        file_descriptor_ = STDIN_FILENO;
    } else {
        file_descriptor_ = ::open(name_.c_str(), O_RDONLY | O_CLOEXEC);
    }
    if (file_descriptor_ < 0) {
        error_ = unreadable(errno);
    }
}

// The file itself is the matter, and no place in it: a message like any other of the program.
pm_error document_stream::unreadable(int error_number) const {
    return pm_error("perf-store: " + name_ + ": " + std::strerror(error_number));
}

document_stream::~document_stream() {
    if (file_descriptor_ > STDIN_FILENO) {
        ::close(file_descriptor_);
    }
}

std::uint64_t document_stream::bytes_in_all() const {
    struct stat status {};
    const bool known = ::fstat(file_descriptor_, &status) == 0 && S_ISREG(status.st_mode);
    return known ? static_cast<std::uint64_t>(status.st_size) : 0;
}

// Reads more of the file, after what is buffered.
pm_error document_stream::read_more() {
    std::memmove(buffer_.data(), buffer_.data() + at_, filled_ - at_);
    filled_ -= at_;
    at_ = 0;
    if (buffer_.size() - 1 - filled_ < PART / 2) {
        buffer_.resize(buffer_.size() * 2);
    }
    const std::size_t room = buffer_.size() - 1;
    // A pipe gives little at a time; a long document would be parsed again for each part of it.
    while (!at_end_ && filled_ < room) {
        const ssize_t got = ::read(file_descriptor_, buffer_.data() + filled_, room - filled_);
        if (got < 0 && errno != EINTR) {
            return unreadable(errno);
        }
        at_end_ = got == 0;
        filled_ += got > 0 ? static_cast<std::size_t>(got) : 0;
        bytes_read_ += got > 0 ? static_cast<std::uint64_t>(got) : 0;
    }
    buffer_[filled_] = '\0';
    return {};
}

pm_error document_stream::pass_document() {
    if (length_ == 0) {
        return {};
    }
    line_ = line_of(length_);
    column_ = column_of(length_);
    at_ += length_;
    length_ = 0;
    return pass_separator();
}

// Only white space may follow a document.
pm_error document_stream::pass_separator() {
    if (at_ == filled_ && !at_end_) {
        if (pm_error error = read_more()) {
            return error;
        }
    }
    const char next = buffer_[at_];  // a zero byte at the end, and wherever that is an error by itself
    if (next != '\0' && WHITE_SPACE.find(next) == std::string_view::npos) {
        return pm_error(place(0) + "no white space behind an object");
    }
    return {};
}

pm_error document_stream::next(json_document *document, bool *found) {
    *found = false;
    if (!error_) {
        error_ = read_document(document, found);
    }
    return error_;
}

std::string_view document_stream::rest() {
    error_ = error_ ? error_ : pass_document();
    return error_ ? std::string_view("", 0) : std::string_view(buffer_.data() + at_, filled_ - at_);
}

bool document_stream::extend() {
    const std::uint64_t before = bytes_read_;
    error_ = error_ || at_end_ ? error_ : read_more();
    return !error_ && bytes_read_ != before;
}

pm_error document_stream::read_document(json_document *document, bool *found) {
    if (pm_error error = pass_document()) {
        return error;
    }
    for (;;) {
        const std::size_t left = filled_ - at_;
        const pm_error wrong = left > 0 ? document->read(buffer_.data() + at_, &length_) : pm_error();
        if (left > 0 && !wrong && length_ > 0) {
            *found = true;
            return {};
        }
        // What is buffered ends in white space or within a document, unless it is no JSON at all.
        const bool may_be_cut = left == 0 || !wrong || length_ + TOKEN_LENGTH >= left;
        if (at_end_ || !may_be_cut) {
            if (wrong) {
                return refused(length_, wrong.text());
            }
            const std::size_t blank = left > 0 ? std::strlen(buffer_.data() + at_) : 0;
            return blank == left ? pm_error() : refused(blank, "a zero byte");
        }
        length_ = 0;
        if (pm_error error = read_more()) {
            return error;
        }
    }
}

// What is wrong at a place where there is no JSON: its line, its column, and what is there.
pm_error document_stream::refused(std::size_t offset, const std::string &wrong) const {
    const std::string_view text(buffer_.data() + at_, filled_ - at_);
    const bool is_first = bytes_read_ - filled_ + at_ == 0;
    if (const char *const file = is_first ? foreign_file(text) : nullptr) {
        return pm_error(place(0) + file);
    }
    const char *const known = foreign_text(text.substr(offset));
    return pm_error(place(offset) + "column " + std::to_string(column_of(offset) + 1) + ": " +
                    (known != nullptr ? known : wrong));
}

// Bytes between the beginning of its line and a place.
std::uint64_t document_stream::column_of(std::size_t offset) const {
    const char *const begin = buffer_.data() + at_;
    const auto *const feed = static_cast<const char *>(::memrchr(begin, '\n', offset));  // of every line that is read
    return feed == nullptr ? column_ + offset : static_cast<std::uint64_t>(begin + offset - feed) - 1;
}

std::uint64_t document_stream::line_of(std::size_t offset) const {
    const std::string_view passed(buffer_.data() + at_, offset);
    std::uint64_t line = line_;
    // From one to the next, which is the faster the longer the lines are.
    for (std::size_t at = passed.find('\n'); at != std::string_view::npos; at = passed.find('\n', at + 1)) {
        ++line;
    }
    return line;
}

std::string document_stream::place(std::size_t offset) const {
    return name_ + ":" + std::to_string(line_of(offset)) + ": ";
}

}  // namespace perf_store
