// SPDX-License-Identifier: Apache-2.0
// TLS over a connected, non-blocking socket.
#pragma once

#include <cstddef>
#include <memory>
#include <openssl/ssl.h>
#include <string>

#include "base/pm_error.h"
#include "platform/local/redis_store/redis_url.h"

namespace redis_store {

class tls_session {
public:
    // Prepares a session that will accept only a certificate for `host`, an address or a name, that the URL's ca file,
    // or else the system, trusts. The error has no server's name.
    [[nodiscard]] pm_error prepare(const redis_url &url, const std::string &host, int socket);

    // As SSL_connect, SSL_read and SSL_write: positive, or a result for what().
    [[nodiscard]] int connect();
    [[nodiscard]] int read(char *buffer, std::size_t size);
    [[nodiscard]] int write(const char *bytes, std::size_t size);

    // What a result that is not positive means: SSL_ERROR_WANT_READ and the like.
    [[nodiscard]] int what(int result) const { return SSL_get_error(session_.get(), result); }
    // Why the session failed, for a person.
    [[nodiscard]] std::string reason() const;

private:
    struct deleter {
        void operator()(SSL_CTX *context) const { SSL_CTX_free(context); }
        void operator()(SSL *session) const { SSL_free(session); }
    };
    std::unique_ptr<SSL_CTX, deleter> context_;
    std::unique_ptr<SSL, deleter> session_;
};

}  // namespace redis_store
