// SPDX-License-Identifier: Apache-2.0
// Replies of a server, read element by element into whatever the caller keeps.
//
// The wire form is RESP2 (https://redis.io/docs/reference/protocol-spec). hiredis' reader takes it apart; its elements
// go to a reply_sink while they arrive, so that no tree of objects is built. The server is not trusted: what it may
// claim is bounded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "base/pm_error.h"
#include "platform/local/redis_store/connection.h"

struct redisReader;

namespace redis_store {

inline constexpr int MAX_REPLY_DEPTH = 2;                           // arrays within arrays
inline constexpr std::size_t MAX_ELEMENT_BYTES = 64 * 1024 * 1024;  // of one text

// Takes the elements of one reply, in order. A function that returns false refuses the reply: it is not one that the
// command can have.
class reply_sink {
public:
    // An array of that many elements begins; they follow. A null array is nil().
    [[nodiscard]] virtual bool array(std::size_t elements) = 0;
    // The bytes are valid during the call only.
    [[nodiscard]] virtual bool text(std::string_view bytes) = 0;
    [[nodiscard]] virtual bool integer(std::int64_t value) = 0;
    [[nodiscard]] virtual bool nil() = 0;
    // A simple text such as "OK" or "QUEUED".
    [[nodiscard]] virtual bool status(std::string_view word) = 0;
    // What the server says went wrong, its first word a kind such as ERR, MOVED or NOAUTH.
    [[nodiscard]] virtual bool error(std::string_view words) = 0;

protected:
    ~reply_sink() = default;
};

class reply_stream {
public:
    reply_stream();
    ~reply_stream();
    reply_stream(const reply_stream &) = delete;
    reply_stream &operator=(const reply_stream &) = delete;

    // Reads one whole reply. Its error is the connection's, or OPSTORE_DAMAGED for bytes that are no reply, exceed a
    // bound or are refused by the sink; the connection is then useless.
    [[nodiscard]] pm_error next(connection *from, reply_sink *sink);

    // Forgets what was read ahead; for a new connection.
    void reset();

private:
    struct reader_deleter {
        void operator()(redisReader *reader) const;
    };

    [[nodiscard]] bool is_bounded() const;

    std::unique_ptr<redisReader, reader_deleter> reader_;
    std::vector<char> received_;
};

}  // namespace redis_store
