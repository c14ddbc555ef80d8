// SPDX-License-Identifier: Apache-2.0
// The URL of a networked store, taken apart.
//
//     redis://HOST[:PORT][,HOST[:PORT]...][/DB][?OPTIONS]     over TCP
//     rediss://...                                            the same over TLS
//     redis+unix:///PATH/TO/SOCKET[?OPTIONS]                  over a socket of this machine
//
// Options: db=N, prefix=TEXT (of every key, "ps1"), user=NAME, password-file=FILE, timeout=MILLISECONDS (of connecting
// and of each answer, 5000); and for TLS ca=FILE, cert=FILE and key=FILE. A byte of a path or of an option may be
// written %XX; an IPv6 address stands in brackets. A password never stands in the URL, which other users of the
// machine can see: it is the content of password-file, or else of the variable OPSTORE_PASSWORD.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "base/pm_error.h"

namespace redis_store {

// Where a server listens: a host and a port, or the path of a socket.
struct server_address {
    std::string host;  // without brackets; empty for a socket of this machine
    std::string port;
    std::string socket_path;

    [[nodiscard]] bool is_local() const { return !socket_path.empty(); }
    // "192.0.2.1:6379", "[2001:db8::1]:6379" or the path.
    [[nodiscard]] std::string text() const;

    bool operator==(const server_address &) const = default;
};

struct redis_url {
    std::vector<server_address> servers;  // tried in turn; at least one
    bool tls = false;
    int database = 0;
    std::string prefix = "ps1";
    std::string user;           // empty: the server's default user
    std::string password_file;  // empty: none
    std::string ca_file;        // empty: the certificates that the system trusts
    std::string certificate_file;
    std::string key_file;
    std::chrono::milliseconds timeout{5000};
};

inline constexpr char DEFAULT_PORT[] = "6379";
inline constexpr char PASSWORD_VARIABLE[] = "OPSTORE_PASSWORD";

// Takes a URL apart. Its error says what is wrong and repeats nothing of a password that stands in it.
[[nodiscard]] pm_error parse_url(std::string_view url, redis_url *out);

// The password that goes with a URL; empty when there is none. The error names the file that cannot be read.
[[nodiscard]] pm_error read_password(const redis_url &url, std::string *password);

}  // namespace redis_store
