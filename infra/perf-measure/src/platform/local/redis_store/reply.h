// SPDX-License-Identifier: Apache-2.0
// Replies of a server, read element by element into whatever the caller keeps.
//
// The wire form is RESP2 (https://redis.io/docs/reference/protocol-spec). The elements go to a reply_sink while they
// arrive, so that no tree of objects is built; a sink may keep them where they were received, so that nothing is copied
// either. The server is not trusted: what it may claim is bounded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/pm_error.h"
#include "platform/local/redis_store/byte_source.h"
#include "platform/local/store/batch.h"

namespace redis_store {

inline constexpr std::size_t MAX_REPLY_DEPTH = 2;                   // arrays within arrays
inline constexpr std::size_t MAX_ELEMENT_BYTES = 64 * 1024 * 1024;  // of one text
inline constexpr std::size_t MAX_LINE_BYTES = 16 * 1024;            // of a status, an error or a length

// Takes the elements of one reply, in order. A function that returns false refuses the reply: it is not one that the
// command can have.
class reply_sink {
public:
    // An array of that many elements begins; they follow. A null array is nil().
    [[nodiscard]] virtual bool array(std::size_t elements) = 0;
    // The bytes are valid during the call only, unless the sink keeps them.
    [[nodiscard]] virtual bool text(std::string_view bytes) = 0;
    [[nodiscard]] virtual bool integer(std::int64_t value) = 0;
    [[nodiscard]] virtual bool nil() = 0;
    // A simple text such as "OK" or "QUEUED".
    [[nodiscard]] virtual bool status(std::string_view word) = 0;
    // What the server says went wrong, its first word a kind such as ERR, MOVED or NOAUTH.
    [[nodiscard]] virtual bool error(std::string_view words) = 0;

    // Whether the text that comes next stays where it is until the end of the reply. Asked before text().
    [[nodiscard]] virtual bool keeps_texts() const { return false; }
    // The texts that were kept are now as far from `to` as they were from `from`, which is valid until the end of the
    // call.
    virtual void moved(const char * /*from*/, const char * /*to*/) {}
    // The reply has ended. A sink that kept texts takes the block that they are in, and leaves another in its place.
    virtual void take(store::block * /*received*/) {}

protected:
    ~reply_sink() = default;
};

class reply_stream {
public:
    // Reads one whole reply. Its error is the source's, or OPSTORE_DAMAGED for bytes that are no reply, exceed a
    // bound or are refused by the sink; the source is then useless.
    [[nodiscard]] pm_error next(byte_source *from, reply_sink *sink);

    // Forgets what was read ahead; for a new source.
    void reset();

private:
    [[nodiscard]] pm_error read_element(byte_source *from, reply_sink *sink, std::size_t *elements);
    [[nodiscard]] pm_error read_line(byte_source *from, reply_sink *sink, std::string_view *line);
    [[nodiscard]] pm_error read_text(byte_source *from, reply_sink *sink, std::size_t length);
    [[nodiscard]] pm_error receive_more(byte_source *from, reply_sink *sink, std::size_t wanted);
    void make_room(reply_sink *sink, std::size_t wanted);
    void hand_over(reply_sink *sink);

    store::block received_;
    std::size_t next_ = 0;  // of the bytes in it, the first that was not read
    std::size_t end_ = 0;   // and after the last one
    std::size_t kept_ = 0;  // as many stay where they are: the sink keeps texts among them
};

}  // namespace redis_store
