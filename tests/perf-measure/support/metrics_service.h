// SPDX-License-Identifier: Apache-2.0
// The service of metrics on a free port, and a client that sends what it is told to.
#pragma once

#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "tests/support/command.h"

// Folders of tests and examples for a shell, whatever is in their paths.
#define PM_METRICS_QUOTED "'" PM_METRICS "'"
#define PM_EXAMPLES_QUOTED "'" PM_EXAMPLES "'"

class metrics_service {
public:
    // Serves the metrics of a store; `url` names it as OPSTORE_URL does.
    explicit metrics_service(const std::string &url, const std::string &address = "127.0.0.1",
                             const std::vector<std::string> &words = {"metrics"}) {
        const std::string errors = folder_.path() + "/errors";
        const std::string place = (address == "::1" ? "[::1]" : address) + ":0";
        process_ = fork();
        if (process_ == 0) {
            setenv("OPSTORE_URL", url.c_str(), 1);
            setenv("TZ", "UTC", 1);
            dup2(open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
            std::vector<std::string> all{"perf-measure", "--listen", place};
            all.insert(all.end(), words.begin(), words.end());
            std::vector<char *> arguments;
            for (std::string &each : all) {
                arguments.push_back(each.data());
            }
            arguments.push_back(nullptr);
            execv(PERF_MEASURE, arguments.data());
            std::_Exit(127);
        }
        for (int tries = 0; tries < 1000 && said_.find('\n') == std::string::npos; ++tries) {
            usleep(10'000);
            said_ = read_file(errors);
        }
        const std::size_t end = said_.find("/metrics\n");
        port_ = end == std::string::npos ? 0 : std::atoi(said_.substr(said_.rfind(':', end) + 1).c_str());
    }
    ~metrics_service() {
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            static_cast<void>(wait());
        }
    }
    metrics_service(const metrics_service &) = delete;
    metrics_service &operator=(const metrics_service &) = delete;

    [[nodiscard]] int port() const { return port_; }  // 0 when it does not serve
    [[nodiscard]] const std::string &said() const { return said_; }

    // Sends a signal and waits for the end; the exit status, or -1.
    [[nodiscard]] int end_by(int signal) {
        ::kill(process_, signal);
        return wait();
    }

private:
    int wait() {
        int status = -1;
        waitpid(process_, &status, 0);
        process_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    temporary_folder folder_;
    pid_t process_ = -1;
    int port_ = 0;
    std::string said_;
};

// A connection to a port of this host; -1 when there is none.
inline int connect_to(int port, bool ipv6 = false) {
    const int client = socket(ipv6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in6 six{};
    six.sin6_family = AF_INET6;
    six.sin6_port = htons(static_cast<std::uint16_t>(port));
    six.sin6_addr = in6addr_loopback;
    sockaddr_in four{};
    four.sin_family = AF_INET;
    four.sin_port = six.sin6_port;
    four.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const void *const address = ipv6 ? static_cast<const void *>(&six) : &four;
    if (connect(client, static_cast<const sockaddr *>(address),
                static_cast<socklen_t>(ipv6 ? sizeof six : sizeof four)) != 0) {
        close(client);
        return -1;
    }
    return client;
}

// Everything that comes until the other side ends the connection.
inline std::string read_all(int client) {
    std::string text;
    char bytes[16384];
    for (ssize_t got = 0; (got = read(client, bytes, sizeof bytes)) > 0;) {
        text.append(bytes, static_cast<std::size_t>(got));
    }
    return text;
}

inline std::string request_text(const std::string &first_line, const std::string &headers = "") {
    return first_line + " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n" + headers + "\r\n";
}

// The whole response to a request.
inline std::string ask(int port, const std::string &request, bool ipv6 = false) {
    const int client = connect_to(port, ipv6);
    if (client < 0) {
        return "no connection";
    }
    const bool is_sent = write(client, request.data(), request.size()) == static_cast<ssize_t>(request.size());
    const std::string response = is_sent ? read_all(client) : "not sent";
    close(client);
    return response;
}

inline std::string status_of(const std::string &response) { return response.substr(0, response.find("\r\n")); }

// The body of a response, its chunks put together; "(cut)" at the end of one whose last chunk is missing.
inline std::string body_of(const std::string &response) {
    const std::size_t begin = response.find("\r\n\r\n");
    if (begin == std::string::npos) {
        return "no body";
    }
    const std::string rest = response.substr(begin + 4);
    if (response.substr(0, begin).find("Transfer-Encoding: chunked") == std::string::npos) {
        return rest;
    }
    std::string body;
    for (std::size_t at = 0; at < rest.size();) {
        const std::size_t size = std::strtoul(rest.c_str() + at, nullptr, 16);
        const std::size_t data = rest.find("\r\n", at) + 2;
        if (size == 0) {
            return body;
        }
        body += rest.substr(data, size);
        at = data + size + 2;
    }
    return body + "(cut)";
}
