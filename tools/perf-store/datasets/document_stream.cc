// See document_stream.h.
#include "perf-store/datasets/document_stream.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace perf_store {

namespace {

constexpr std::size_t PIECE = 1 << 20;  // bytes read at a time
constexpr std::string_view WHITE_SPACE = " \t\r\n";
constexpr std::size_t TOKEN_LENGTH = 16;  // an error this close to the end may be a token cut in two

}  // namespace

document_stream::document_stream(std::string path) : name_(std::move(path)), buffer_(PIECE + 1) {
    if (name_ == "-") {
        name_ = "<stdin>";
        file_ = STDIN_FILENO;
    } else {
        file_ = ::open(name_.c_str(), O_RDONLY | O_CLOEXEC);
    }
    if (file_ < 0) {
        unreadable(errno);
    }
}

// The file itself is the matter, and no place in it: a message like any other of the program.
void document_stream::unreadable(int failure) { problem_ = "perf-store: " + name_ + ": " + std::strerror(failure); }

document_stream::~document_stream() {
    if (file_ > STDIN_FILENO) {
        ::close(file_);
    }
}

std::uint64_t document_stream::bytes_in_all() const {
    struct stat status {};
    return ::fstat(file_, &status) == 0 && S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

// Reads more of the file behind what is buffered. False on failure.
bool document_stream::read_more() {
    std::memmove(buffer_.data(), buffer_.data() + at_, filled_ - at_);
    filled_ -= at_;
    at_ = 0;
    if (buffer_.size() - 1 - filled_ < PIECE / 2) {
        buffer_.resize(buffer_.size() * 2);
    }
    // A pipe gives little at a time; a long document would be parsed again for each piece of it.
    while (!at_end_ && filled_ < buffer_.size() - 1) {
        const ssize_t got = ::read(file_, buffer_.data() + filled_, buffer_.size() - 1 - filled_);
        if (got < 0 && errno != EINTR) {
            unreadable(errno);
            return false;
        }
        at_end_ = got == 0;
        filled_ += got > 0 ? static_cast<std::size_t>(got) : 0;
        bytes_read_ += got > 0 ? static_cast<std::uint64_t>(got) : 0;
    }
    buffer_[filled_] = '\0';
    return true;
}

void document_stream::pass_document() {
    line_ += static_cast<std::uint64_t>(std::count(buffer_.data() + at_, buffer_.data() + at_ + length_, '\n'));
    at_ += length_;
    length_ = 0;
}

// Looks at what stands behind a document. False when that is no white space.
bool document_stream::pass_separator() {
    if (at_ == filled_ && !at_end_ && !read_more()) {
        return false;
    }
    const char next = buffer_[at_];  // a zero byte at the end, and wherever that is an error by itself
    if (next != '\0' && WHITE_SPACE.find(next) == std::string_view::npos) {
        problem_ = place(0) + "no white space behind an object";
        return false;
    }
    return true;
}

stream_result document_stream::next(json_document *document) {
    if (!problem_.empty()) {
        return stream_result::failure;
    }
    const bool behind_document = length_ > 0;
    pass_document();
    if (behind_document && !pass_separator()) {
        return stream_result::failure;
    }
    for (;;) {
        const char *what = nullptr;
        const std::size_t left = filled_ - at_;
        const bool read = left > 0 && document->read(buffer_.data() + at_, &length_, &what);
        if (read && length_ > 0) {
            return stream_result::document;
        }
        // What is buffered ends in white space or within a document, unless it is no JSON at all.
        const bool may_be_cut = left == 0 || read || length_ + TOKEN_LENGTH >= left;
        if (!at_end_ && may_be_cut) {
            length_ = 0;
            if (!read_more()) {
                return stream_result::failure;
            }
            continue;
        }
        if (left == 0 || (read && std::strlen(buffer_.data() + at_) == left)) {
            return stream_result::end;
        }
        problem_ = read ? place(std::strlen(buffer_.data() + at_)) + "a zero byte" : place(length_) + what;
        return stream_result::failure;
    }
}

std::string document_stream::place(std::size_t offset) const {
    const char *begin = buffer_.data() + at_;
    const auto line = line_ + static_cast<std::uint64_t>(std::count(begin, begin + offset, '\n'));
    return name_ + ":" + std::to_string(line) + ": ";
}

}  // namespace perf_store
