// SPDX-License-Identifier: Apache-2.0
// What the servers of a Redis Cluster say to a command that another one has to answer, or that has to wait.
#pragma once

#include <string>
#include <string_view>

#include "platform/local/redis_store/redis_url.h"

namespace redis_store {

struct redirection {
    enum class kind {
        none,   // a refusal of another sort
        moved,  // the key's slot is at `server`
        ask,    // this key is at `server` already, while its slot moves there
        wait,   // the server is loading, keys of one slot are at two servers, or the cluster is being put together
    };
    kind what = kind::none;
    server_address server;
};

// `from` is the server that said so: it may leave its own host out.
[[nodiscard]] redirection parse_redirection(std::string_view refusal, const server_address &from);

}  // namespace redis_store
