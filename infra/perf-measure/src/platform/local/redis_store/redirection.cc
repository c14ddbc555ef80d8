// SPDX-License-Identifier: Apache-2.0
// Reads "MOVED 3999 192.0.2.1:6379" and the like.
#include "platform/local/redis_store/redirection.h"

#include <charconv>

namespace redis_store {

namespace {

bool parse_server(std::string_view text, const server_address &from, server_address *server) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos) {
        return false;
    }
    const std::string_view host = text.substr(0, colon);
    const std::string_view port = text.substr(colon + 1);
    std::uint16_t number = 0;
    const auto [end, code] = std::from_chars(port.data(), port.data() + port.size(), number);
    server->host = host.empty() || host == "?" ? from.host : host;
    server->port = port;
    return code == std::errc{} && end == port.data() + port.size() && number != 0 && !server->host.empty();
}

}  // namespace

redirection parse_redirection(std::string_view refusal, const server_address &from) {
    for (const std::string_view word : {"LOADING", "TRYAGAIN", "CLUSTERDOWN"}) {
        if (refusal.starts_with(word)) {
            return {redirection::kind::wait, {}};
        }
    }
    const bool moved = refusal.starts_with("MOVED ");
    redirection found{moved ? redirection::kind::moved : redirection::kind::ask, {}};
    if (!moved && !refusal.starts_with("ASK ")) {
        return {};
    }
    const std::string_view place = refusal.substr(refusal.rfind(' ') + 1);
    return parse_server(place, from, &found.server) ? found : redirection();
}

}  // namespace redis_store
