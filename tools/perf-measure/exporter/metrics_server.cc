// SPDX-License-Identifier: Apache-2.0
// Requests to scrapes, and signals to the end.
#include "perf-measure/exporter/metrics_server.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <httplib.h>
#include <memory>
#include <semaphore>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include "perf-measure/exporter/accepted_form.h"
#include "perf-measure/exporter/scrape.h"

namespace exporter {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t THREADS = 128;  // connections at a time; others wait
constexpr int WAITING = 512;          // connections that nobody has taken yet
constexpr int READERS = 4;            // of the store at a time; a scrape counts until its text begins
constexpr auto READ_LIMIT = 30s;      // for reading the store, and for the wait for one's turn
constexpr auto RESPONSE_LIMIT = 60s;  // for a whole response
constexpr auto END_LIMIT = 3s;        // for connections that are open at the end
constexpr time_t NETWORK_LIMIT_SEC = 10;
constexpr std::size_t MOST_REQUESTS = 1000;  // on one connection

constexpr char OPENMETRICS[] = "application/openmetrics-text; version=1.0.0; charset=utf-8";
constexpr char PLAIN[] = "text/plain; version=0.0.4; charset=utf-8";
constexpr char ERROR_TEXT[] = "text/plain; charset=utf-8";
constexpr int UNAVAILABLE = 503;

void refuse(const std::string &problem, httplib::Response *response) {
    response->status = UNAVAILABLE;
    response->set_content(problem, ERROR_TEXT);
}

class responder {
public:
    explicit responder(const service &what) : what_(what) {}

    void respond(const httplib::Request &request, httplib::Response *response) {
        const bool openmetrics = wants_openmetrics(request.get_header_value("Accept"));
        response->set_header("Vary", "Accept");
        if (!turns_.try_acquire_for(READ_LIMIT)) {
            return refuse("too many scrapes at a time\n", response);
        }
        const auto run = std::make_shared<scrape>();
        const bool is_started = run->start(what_.program, arguments(openmetrics), READ_LIMIT);
        turns_.release();
        if (!is_started) {
            return refuse(run->problem(), response);
        }
        const auto until = std::chrono::steady_clock::now() + RESPONSE_LIMIT;
        response->set_chunked_content_provider(
            openmetrics ? OPENMETRICS : PLAIN, [run, until](std::size_t /*offset*/, httplib::DataSink &sink) {
                const std::string_view part = run->next();
                if (!part.empty()) {
                    return sink.write(part.data(), part.size()) && std::chrono::steady_clock::now() < until;
                }
                if (!run->finish()) {
                    return false;  // without the last chunk, the client knows that the text is not whole
                }
                sink.done();
                return true;
            });
    }

private:
    [[nodiscard]] std::vector<std::string> arguments(bool openmetrics) const {
        std::vector<std::string> all{"perf-measure", "--format", openmetrics ? "openmetrics" : "prometheus", "--"};
        all.insert(all.end(), what_.words.begin(), what_.words.end());
        return all;
    }

    const service &what_;
    std::counting_semaphore<READERS> turns_{READERS};
};

void set_up(httplib::Server *server, responder *answering, int *listening) {
    server->new_task_queue = [] { return new httplib::ThreadPool(THREADS); };
    server->set_socket_options([listening](socket_t socket) {  // another service on the same port is an error
        const int yes = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        *listening = socket;
    });
    server->set_read_timeout(NETWORK_LIMIT_SEC);
    server->set_write_timeout(NETWORK_LIMIT_SEC);
    server->set_keep_alive_max_count(MOST_REQUESTS);
    server->Get("/metrics", [answering](const httplib::Request &request, httplib::Response &response) {
        answering->respond(request, &response);
    });
    server->set_error_handler([](const httplib::Request &request, httplib::Response &response) {
        if (response.status == 404 && request.path == "/metrics") {
            response.status = 405;
            response.set_header("Allow", "GET, HEAD");
            response.set_content("only GET and HEAD are answered\n", ERROR_TEXT);
        } else if (response.status == 404) {
            response.set_content("there is nothing here but /metrics\n", ERROR_TEXT);
        }
    });
}

// "127.0.0.1:9464" and "[::1]:9464".
std::string place_text(const std::string &address, int port) {
    const bool is_ipv6 = address.find(':') != std::string::npos;
    return (is_ipv6 ? '[' + address + ']' : address) + ':' + std::to_string(port);
}

// Waits for the end in a thread of its own, which ends the process when connections keep it from ending.
void end_at_signal(httplib::Server *server, sigset_t signals) {
    std::thread([server, signals] {
        int which = 0;
        ::sigwait(&signals, &which);
        server->stop();
        std::this_thread::sleep_for(END_LIMIT);
        std::_Exit(0);
    }).detach();
}

}  // namespace

int serve_metrics(const service &what) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    responder answering(what);
    httplib::Server server;
    int listening = -1;
    set_up(&server, &answering, &listening);
    errno = 0;
    const int port = what.port == 0                                 ? server.bind_to_any_port(what.address)
                     : server.bind_to_port(what.address, what.port) ? what.port
                                                                    : -1;
    if (port < 0) {
        std::fprintf(stderr, "perf-measure: cannot listen on %s: %s\n", place_text(what.address, what.port).c_str(),
                     errno != 0 ? std::strerror(errno) : "the address cannot be used");
        return 1;
    }
    static_cast<void>(::listen(listening, WAITING));  // the library's own queue has five places
    end_at_signal(&server, signals);
    std::fprintf(stderr, "perf-measure: metrics at http://%s/metrics\n", place_text(what.address, port).c_str());
    const bool ended_well = server.listen_after_bind();
    std::fflush(stderr);
    std::_Exit(ended_well ? 0 : 1);  // the thread of the signals may yet be there
}

}  // namespace exporter
