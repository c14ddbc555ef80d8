// SPDX-License-Identifier: Apache-2.0
// Takes replies apart in the memory in which they are received.
#include "platform/local/redis_store/reply.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <utility>

#include "platform/errcode.h"

namespace redis_store {
namespace {

constexpr std::size_t LEAST_ROOM = 16 * 1024;  // to receive into
constexpr std::size_t BLOCK_STEP = 64 * 1024;  // blocks are of as many, or of some of them
constexpr std::string_view LINE_END = "\r\n";

pm_error damaged(const char *what) { return {OPSTORE_DAMAGED, what}; }
pm_error refused() { return damaged("an answer that the command cannot have"); }

// The whole line as a number.
bool parse_number(std::string_view line, std::int64_t *number) {
    const auto [end, code] = std::from_chars(line.data(), line.data() + line.size(), *number);
    return code == std::errc{} && end == line.data() + line.size();
}

}  // namespace

void reply_stream::reset() {
    next_ = 0;
    end_ = 0;
    kept_ = 0;
}

// Makes room for `wanted` bytes after those that are there. What was read and is not kept makes place for others.
void reply_stream::make_room(reply_sink *sink, std::size_t wanted) {
    if (received_.capacity - end_ >= wanted) {
        return;
    }
    char *const bytes = received_.bytes.get();
    if (next_ > kept_) {
        std::memmove(bytes + kept_, bytes + next_, end_ - next_);
        end_ -= next_ - kept_;
        next_ = kept_;
    }
    if (received_.capacity - end_ >= wanted) {
        return;
    }
    store::block larger((end_ + wanted + BLOCK_STEP - 1) / BLOCK_STEP * BLOCK_STEP);
    if (end_ > 0) {
        std::memcpy(larger.bytes.get(), bytes, end_);
    }
    if (kept_ > 0) {
        sink->moved(bytes, larger.bytes.get());
    }
    received_ = std::move(larger);
}

pm_error reply_stream::receive_more(byte_source *from, reply_sink *sink, std::size_t wanted) {
    make_room(sink, std::max(wanted, LEAST_ROOM));
    std::size_t length = 0;
    pm_error error = from->receive(received_.bytes.get() + end_, received_.capacity - end_, &length);
    end_ += length;
    return error;
}

// The next line, without its end.
pm_error reply_stream::read_line(byte_source *from, reply_sink *sink, std::string_view *line) {
    for (std::size_t searched = 0;;) {
        const std::string_view unread(received_.bytes.get() + next_, end_ - next_);
        const std::size_t end = unread.find('\n', searched);
        if (end != std::string_view::npos) {
            *line = unread.substr(0, end == 0 ? 0 : end - 1);
            next_ += end + 1;
            return unread.substr(line->size(), 2) == LINE_END ? pm_error() : damaged("no answer: a line has no end");
        }
        if (unread.size() > MAX_LINE_BYTES) {
            return damaged("an answer that is too long");
        }
        searched = unread.size();
        if (pm_error error = receive_more(from, sink, 0)) {
            return error;
        }
    }
}

pm_error reply_stream::read_text(byte_source *from, reply_sink *sink, std::size_t length) {
    const std::size_t whole = length + LINE_END.size();
    while (end_ - next_ < whole) {
        if (pm_error error = receive_more(from, sink, whole - (end_ - next_))) {
            return error;
        }
    }
    const std::string_view text(received_.bytes.get() + next_, length);
    if (std::string_view(text.data() + length, LINE_END.size()) != LINE_END) {
        return damaged("no answer: a text is longer than was said");
    }
    next_ += whole;
    kept_ = sink->keeps_texts() ? next_ : kept_;
    return sink->text(text) ? pm_error() : refused();
}

// An element, or the beginning of an array of `*elements`.
pm_error reply_stream::read_element(byte_source *from, reply_sink *sink, std::size_t *elements) {
    std::string_view line;
    if (pm_error error = read_line(from, sink, &line)) {
        return error;
    }
    const char kind = line.empty() ? '\0' : line.front();
    line.remove_prefix(line.empty() ? 0 : 1);
    if (kind == '+' || kind == '-') {
        return (kind == '+' ? sink->status(line) : sink->error(line)) ? pm_error() : refused();
    }
    std::int64_t number = 0;
    if ((kind != ':' && kind != '$' && kind != '*') || !parse_number(line, &number)) {
        return damaged("no answer: it begins with neither a kind nor a number");
    }
    if (kind == ':') {
        return sink->integer(number) ? pm_error() : refused();
    }
    if (number == -1) {
        return sink->nil() ? pm_error() : refused();
    }
    if (number < 0 || (kind == '$' && static_cast<std::size_t>(number) > MAX_ELEMENT_BYTES)) {
        return damaged("no answer: a length is out of bounds");
    }
    if (kind == '$') {
        return read_text(from, sink, static_cast<std::size_t>(number));
    }
    *elements = static_cast<std::size_t>(number);
    return sink->array(*elements) ? pm_error() : refused();
}

// What was received after the reply goes to the block that the sink leaves.
void reply_stream::hand_over(reply_sink *sink) {
    const char *const rest = received_.bytes.get() + next_;
    const std::size_t length = end_ - next_;
    sink->take(&received_);
    reset();
    if (length > 0) {
        make_room(sink, length);
        std::memcpy(received_.bytes.get(), rest, length);
        end_ = length;
    }
}

pm_error reply_stream::next(byte_source *from, reply_sink *sink) {
    std::array<std::size_t, MAX_REPLY_DEPTH> missing{};  // elements of the arrays that are read
    std::size_t depth = 0;
    do {
        std::size_t elements = 0;
        if (pm_error error = read_element(from, sink, &elements)) {
            return error;
        }
        if (elements > 0) {
            if (depth == MAX_REPLY_DEPTH) {
                return refused();
            }
            missing[depth++] = elements;
            continue;
        }
        while (depth > 0 && --missing[depth - 1] == 0) {
            --depth;
        }
    } while (depth > 0);
    if (kept_ > 0) {
        hand_over(sink);
    }
    return {};
}

}  // namespace redis_store
