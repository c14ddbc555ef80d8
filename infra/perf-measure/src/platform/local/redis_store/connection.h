// SPDX-License-Identifier: Apache-2.0
// A byte stream to one server: a socket, or TLS over one, with a deadline for everything that waits.
//
// Errors have the code OPSTORE_NO_CLIENT and a text that names the server. After an error the connection is useless.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "base/pm_error.h"
#include "platform/local/redis_store/byte_source.h"
#include "platform/local/redis_store/redis_url.h"

namespace redis_store {

class tls_session;

class connection final : public byte_source {
public:
    connection();
    ~connection();
    connection(const connection &) = delete;
    connection &operator=(const connection &) = delete;

    // Connects to a server, and for a URL with TLS shakes hands and verifies the server's certificate and name. Each
    // address of the host is tried; all that is done within the URL's timeout. An open connection is closed first.
    [[nodiscard]] pm_error open(const redis_url &url, const server_address &server);
    void close();
    [[nodiscard]] bool is_open() const { return socket_ >= 0; }

    // Sends all bytes. The timeout begins again whenever some went out.
    [[nodiscard]] pm_error send(std::string_view bytes);

    // Waits at most the timeout.
    [[nodiscard]] pm_error receive(char *buffer, std::size_t size, std::size_t *length) override;

private:
    using clock = std::chrono::steady_clock;

    [[nodiscard]] pm_error open_local(clock::time_point deadline);
    [[nodiscard]] pm_error open_network(clock::time_point deadline);
    [[nodiscard]] pm_error open_host(const char *host, clock::time_point deadline);
    [[nodiscard]] pm_error connect_to(int family, const void *address, unsigned length, clock::time_point deadline);
    [[nodiscard]] pm_error wait_for_connection(clock::time_point deadline);
    [[nodiscard]] pm_error begin_blocking();
    [[nodiscard]] pm_error blocking_failure(int number) const;
    [[nodiscard]] pm_error shake_hands(const redis_url &url, clock::time_point deadline);
    [[nodiscard]] long receive_from_socket(char *buffer, std::size_t size) const;
    // Waits until the socket can do what `events` (of poll) says.
    [[nodiscard]] pm_error wait(short events, clock::time_point deadline);
    // Waits for what TLS wants after `result`, or says what failed.
    [[nodiscard]] pm_error wait_for_tls(int result, clock::time_point deadline, const char *what);
    [[nodiscard]] pm_error error(const std::string &what) const;

    server_address server_;
    std::chrono::milliseconds timeout_{0};
    int socket_ = -1;
    std::unique_ptr<tls_session> tls_;  // null without TLS
};

}  // namespace redis_store
