// SPDX-License-Identifier: Apache-2.0
// Connecting on a socket that does not block; sending and receiving on one that does, or TLS over one that does not.
#include "platform/local/redis_store/connection.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

#include "platform/errcode.h"
#include "platform/local/redis_store/tls_session.h"

namespace redis_store {
namespace {

constexpr std::string_view LOCALHOST = "localhost";
constexpr char TIMED_OUT[] = "no answer in time";
constexpr std::chrono::milliseconds QUEUE_PAUSE(5);
constexpr std::chrono::microseconds AWAKE(200);  // what a server needs for a page of items, and some more

std::string text_of(int number) { return std::strerror(number); }

using address_list = std::unique_ptr<addrinfo, decltype([](addrinfo *list) { ::freeaddrinfo(list); })>;

}  // namespace

connection::connection() = default;
connection::~connection() { close(); }

void connection::close() {
    tls_.reset();
    if (socket_ >= 0) {
        ::close(socket_);
        socket_ = -1;
    }
}

pm_error connection::error(const std::string &what) const { return {OPSTORE_NO_CLIENT, server_.text() + ": " + what}; }

pm_error connection::open(const redis_url &url, const server_address &server) {
    close();
    server_ = server;
    timeout_ = url.timeout;
    const clock::time_point deadline = clock::now() + timeout_;
    pm_error failed = server.is_local() ? open_local(deadline) : open_network(deadline);
    if (!failed) {
        failed = url.tls ? shake_hands(url, deadline) : begin_blocking();
    }
    if (failed) {
        close();
    }
    return failed;
}

// The system does the waiting from now on: one call for each answer, where a socket that never blocks takes three.
pm_error connection::begin_blocking() {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(timeout_);
    const timeval limit{.tv_sec = seconds.count(), .tv_usec = std::chrono::microseconds(timeout_ - seconds).count()};
    const bool done = ::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit) == 0 &&
                      ::setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit) == 0 &&
                      ::fcntl(socket_, F_SETFL, O_RDWR) == 0;
    return done ? pm_error() : error(text_of(errno));
}

pm_error connection::open_local(clock::time_point deadline) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (server_.socket_path.size() >= sizeof address.sun_path) {
        return error(text_of(ENAMETOOLONG));
    }
    std::memcpy(address.sun_path, server_.socket_path.c_str(), server_.socket_path.size());
    return connect_to(AF_UNIX, &address, sizeof address, deadline);
}

pm_error connection::open_network(clock::time_point deadline) {
    if (server_.host != LOCALHOST) {
        return open_host(server_.host.c_str(), deadline);
    }
    // By definition (RFC 6761): nothing of the system has to know it.
    pm_error failed = open_host("::1", deadline);
    return failed ? open_host("127.0.0.1", deadline) : failed;
}

// Each address of a host in turn. Numeric ones need nothing of the system; for names a statically linked program uses
// the system's files and name servers.
pm_error connection::open_host(const char *host, clock::time_point deadline) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICSERV;
    addrinfo *found = nullptr;
    if (const int code = ::getaddrinfo(host, server_.port.c_str(), &hints, &found); code != 0) {
        return error(code == EAI_SYSTEM ? text_of(errno) : ::gai_strerror(code));
    }
    const address_list addresses(found);
    pm_error failed = error("the host has no address");
    for (const addrinfo *next = found; next != nullptr && failed; next = next->ai_next) {
        close();
        failed = connect_to(next->ai_family, next->ai_addr, next->ai_addrlen, deadline);
    }
    return failed;
}

pm_error connection::connect_to(int family, const void *address, unsigned length, clock::time_point deadline) {
    socket_ = ::socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (socket_ < 0) {
        return error(text_of(errno));
    }
    const int on = 1;
    if (family != AF_UNIX) {  // requests are small and each is waited for
        static_cast<void>(::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on));
    }
    while (::connect(socket_, static_cast<const sockaddr *>(address), length) != 0) {
        if (errno == EINPROGRESS) {
            return wait_for_connection(deadline);
        }
        if (errno != EAGAIN) {
            return error(text_of(errno));
        }
        // A local server whose queue of clients is full; poll would not wait for it.
        if (clock::now() >= deadline) {
            return error(TIMED_OUT);
        }
        std::this_thread::sleep_for(QUEUE_PAUSE);
    }
    return {};
}

pm_error connection::wait_for_connection(clock::time_point deadline) {
    if (pm_error failed = wait(POLLOUT, deadline)) {
        return failed;
    }
    int result = 0;
    socklen_t size = sizeof result;
    if (::getsockopt(socket_, SOL_SOCKET, SO_ERROR, &result, &size) != 0) {
        result = errno;
    }
    return result == 0 ? pm_error() : error(text_of(result));
}

pm_error connection::shake_hands(const redis_url &url, clock::time_point deadline) {
    tls_ = std::make_unique<tls_session>();
    if (pm_error failed = tls_->prepare(url, server_.host, socket_)) {
        return error(failed.text());
    }
    for (int result = tls_->connect(); result <= 0; result = tls_->connect()) {
        if (pm_error failed = wait_for_tls(result, deadline, "TLS handshake")) {
            return failed;
        }
    }
    return {};
}

pm_error connection::wait(short events, clock::time_point deadline) {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - clock::now()).count();
        pollfd waited{.fd = socket_, .events = events, .revents = 0};
        const int ready = ::poll(&waited, 1, static_cast<int>(std::clamp<long>(left, 0, INT_MAX)));
        if (ready > 0) {
            return {};
        }
        if (ready == 0) {
            return error(TIMED_OUT);
        }
        if (errno != EINTR) {
            return error(text_of(errno));
        }
    }
}

pm_error connection::wait_for_tls(int result, clock::time_point deadline, const char *what) {
    const int system_error = errno;
    switch (tls_->what(result)) {
    case SSL_ERROR_WANT_READ: return wait(POLLIN, deadline);
    case SSL_ERROR_WANT_WRITE: return wait(POLLOUT, deadline);
    case SSL_ERROR_ZERO_RETURN: return error("the server closed the connection");
    case SSL_ERROR_SYSCALL:
        return error(system_error != 0 ? text_of(system_error) : "the server closed the connection");
    default: return error(std::string(what) + ": " + tls_->reason());
    }
}

// Why a call failed that may be repeated: success for that.
pm_error connection::blocking_failure(int number) const {
    if (number == EINTR) {
        return {};
    }
    return error(number == EAGAIN ? TIMED_OUT : text_of(number));
}

pm_error connection::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const clock::time_point deadline = clock::now() + timeout_;
        const long sent = tls_ != nullptr ? tls_->write(bytes.data(), bytes.size())
                                          : ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
            continue;
        }
        if (pm_error failed =
                tls_ != nullptr ? wait_for_tls(static_cast<int>(sent), deadline, "TLS") : blocking_failure(errno)) {
            return failed;
        }
    }
    return {};
}

// Waits awake for a moment: a server of this machine answers sooner than this program could be woken.
long connection::receive_from_socket(char *buffer, std::size_t size) const {
    if (server_.is_local()) {
        const clock::time_point end = clock::now() + AWAKE;
        do {
            const long received = ::recv(socket_, buffer, size, MSG_DONTWAIT);
            if (received >= 0 || errno != EAGAIN) {
                return received;
            }
            ::sched_yield();  // the server may need this processor
        } while (clock::now() < end);
    }
    return ::recv(socket_, buffer, size, 0);
}

pm_error connection::receive(char *buffer, std::size_t size, std::size_t *length) {
    const clock::time_point deadline = clock::now() + timeout_;
    for (;;) {
        const long received = tls_ != nullptr ? tls_->read(buffer, size) : receive_from_socket(buffer, size);
        if (received > 0) {
            *length = static_cast<std::size_t>(received);
            return {};
        }
        pm_error failed;
        if (tls_ != nullptr) {
            failed = wait_for_tls(static_cast<int>(received), deadline, "TLS");
        } else {
            failed = received == 0 ? error("the server closed the connection") : blocking_failure(errno);
        }
        if (failed) {
            return failed;
        }
    }
}

}  // namespace redis_store
