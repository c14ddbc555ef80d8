// SPDX-License-Identifier: Apache-2.0
// hiredis' reader with functions that hand each element on instead of making an object of it.
#include "platform/local/redis_store/reply.h"

#include <cstring>
#include <hiredis/read.h>
#include <new>

#include "platform/errcode.h"

namespace redis_store {
namespace {

constexpr std::size_t RECEIVE_BYTES = 64 * 1024;
constexpr std::size_t MAX_HEADER_BYTES = 64 * 1024;  // a status, an error or a length, with the end of its line

// What the reader keeps for an element; it only tells it from null, which means that the element is refused.
void *kept(bool is_kept) {
    static char object;
    return is_kept ? &object : nullptr;
}

reply_sink *sink_of(const redisReadTask *task) { return static_cast<reply_sink *>(task->privdata); }

int depth_of(const redisReadTask *task) {
    int depth = 1;
    for (const redisReadTask *parent = task->parent; parent != nullptr; parent = parent->parent) {
        ++depth;
    }
    return depth;
}

void *take_text(const redisReadTask *task, char *bytes, std::size_t length) {
    const std::string_view text(bytes, length);
    switch (task->type) {
    case REDIS_REPLY_STATUS: return kept(sink_of(task)->status(text));
    case REDIS_REPLY_ERROR: return kept(sink_of(task)->error(text));
    default: return kept(length <= MAX_ELEMENT_BYTES && sink_of(task)->text(text));
    }
}
void *take_array(const redisReadTask *task, int elements) {
    return kept(depth_of(task) <= MAX_REPLY_DEPTH && sink_of(task)->array(static_cast<std::size_t>(elements)));
}
void *take_integer(const redisReadTask *task, long long value) { return kept(sink_of(task)->integer(value)); }
void *take_nil(const redisReadTask *task) { return kept(sink_of(task)->nil()); }
void free_nothing(void *) {}

redisReplyObjectFunctions functions = {take_text, take_array, take_integer, take_nil, free_nothing};

}  // namespace

void reply_stream::reader_deleter::operator()(redisReader *reader) const { redisReaderFree(reader); }

reply_stream::reply_stream() : received_(RECEIVE_BYTES) { reset(); }
reply_stream::~reply_stream() = default;

void reply_stream::reset() {
    reader_.reset(redisReaderCreateWithFunctions(&functions));
    if (reader_ == nullptr) {
        throw std::bad_alloc();
    }
    reader_->maxbuf = 0;  // its buffer is kept from one reply to the next
}

// Whether what is buffered of an incomplete reply can still become an element within the bounds. The reader itself
// waits for any length that the server announces.
bool reply_stream::is_bounded() const {
    const std::size_t waiting = reader_->len - reader_->pos;
    if (waiting <= MAX_HEADER_BYTES) {
        return true;
    }
    const char *const begin = reader_->buf + reader_->pos;
    return *begin == '$' && std::memchr(begin, '\n', 32) != nullptr && waiting <= MAX_ELEMENT_BYTES + MAX_HEADER_BYTES;
}

pm_error reply_stream::next(connection *from, reply_sink *sink) {
    reader_->privdata = sink;
    for (;;) {
        void *reply = nullptr;
        if (redisReaderGetReply(reader_.get(), &reply) != 0) {
            // "Out of memory" is what the reader makes of an element that was refused.
            return {OPSTORE_DAMAGED, reader_->err == REDIS_ERR_OOM ? "an answer that the command cannot have"
                                                                   : std::string("no answer: ") + reader_->errstr};
        }
        if (reply != nullptr) {
            return {};
        }
        if (!is_bounded()) {
            return {OPSTORE_DAMAGED, "an answer that is too long"};
        }
        std::size_t length = 0;
        if (pm_error error = from->receive(received_.data(), received_.size(), &length)) {
            return error;
        }
        if (redisReaderFeed(reader_.get(), received_.data(), length) != 0) {
            return {ERRCODE_NO_MEMORY, "no memory for an answer"};
        }
    }
}

}  // namespace redis_store
