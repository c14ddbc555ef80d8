// SPDX-License-Identifier: Apache-2.0
#include "perf-measure/command_line/metrics_service.h"

#include <arpa/inet.h>
#include <filesystem>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "perf-measure/phrases/values.h"

namespace perf_measure {

namespace {

constexpr char SERVER[] = "metrics-server";
constexpr std::uint32_t LARGEST_PORT = 65535;

// The service's program: beside this one in a build, in its own folder where it is installed.
std::string find_server(const std::filesystem::path &program) {
    const std::filesystem::path folder = program.parent_path();
    for (const std::filesystem::path &place : {folder / SERVER, folder.parent_path() / PERF_MEASURE_LIBEXEC / SERVER}) {
        if (::access(place.c_str(), X_OK) == 0) {
            return place;
        }
    }
    return {};
}

bool is_address(const std::string &text) {
    in6_addr binary{};
    return ::inet_pton(AF_INET, text.c_str(), &binary) == 1 || ::inet_pton(AF_INET6, text.c_str(), &binary) == 1;
}

}  // namespace

bool read_place(std::string_view text, std::string *address, std::uint32_t *port) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos) {
        return false;
    }
    std::string_view host = text.substr(0, colon);
    const bool has_brackets = host.size() > 1 && host.front() == '[' && host.back() == ']';
    if (has_brackets) {
        host = host.substr(1, host.size() - 2);
    }
    const bool is_ipv6 = host.find(':') != std::string_view::npos;
    *address = host;
    return is_ipv6 == has_brackets && is_address(*address) &&
           read_number(text.substr(colon + 1), 0, LARGEST_PORT, port);
}

int serve_metrics(const invocation &given) {
    std::string address;
    std::uint32_t port = 0;
    if (!read_place(given.listen, &address, &port)) {
        return report_usage("--listen wants a numeric address and a port: 127.0.0.1:9464 or [::1]:9464");
    }
    std::error_code unknown;
    std::string program = std::filesystem::read_symlink("/proc/self/exe", unknown);
    std::string server = find_server(program);
    if (unknown || server.empty()) {
        return report_failure("the program metrics-server is not where this one was installed");
    }
    std::vector<std::string> texts{server, address, std::to_string(port), program};
    texts.insert(texts.end(), given.words.begin(), given.words.end());
    std::vector<char *> arguments;
    for (std::string &each : texts) {
        arguments.push_back(each.data());
    }
    arguments.push_back(nullptr);
    ::execv(server.c_str(), arguments.data());
    return report_failure("cannot run " + server);
}

}  // namespace perf_measure
