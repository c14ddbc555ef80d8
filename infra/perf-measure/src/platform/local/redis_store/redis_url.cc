// SPDX-License-Identifier: Apache-2.0
// Takes the URL of a networked store apart, from its scheme to its options.
#include "platform/local/redis_store/redis_url.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

#include "base/pm_hex_digit.h"

namespace redis_store {
namespace {

constexpr std::size_t MAX_PASSWORD_LENGTH = 4096;
constexpr std::string_view PREFIX_ALPHABET = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-:";

// The text with its %XX replaced; none when one of them is cut short, no number or a zero byte.
std::optional<std::string> decode(std::string_view text) {
    std::string decoded;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            decoded += text[at];
            continue;
        }
        const int high = at + 1 < text.size() ? pm_hex_digit(text[at + 1]) : -1;
        const int low = at + 2 < text.size() ? pm_hex_digit(text[at + 2]) : -1;
        if (high < 0 || low < 0 || (high == 0 && low == 0)) {
            return std::nullopt;
        }
        decoded += static_cast<char>(high * 16 + low);
        at += 2;
    }
    return decoded;
}

std::optional<int> number_of(std::string_view text, int most) {
    int number = 0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = code == std::errc{} && end == text.data() + text.size();
    return whole && number >= 0 && number <= most ? std::optional(number) : std::nullopt;
}

// The part of `text` before `mark`, which is taken off together with the mark; all of it when there is none.
std::string_view take_until(std::string_view *text, char mark) {
    const std::size_t end = text->find(mark);
    const std::string_view part = text->substr(0, end);
    text->remove_prefix(end == std::string_view::npos ? text->size() : end + 1);
    return part;
}

pm_error set_database(redis_url *url, std::string_view text) {
    const std::optional<int> number = number_of(text, 65535);
    if (!number) {
        return pm_error("the database is not a number from 0 to 65535");
    }
    url->database = *number;
    return {};
}

pm_error set_timeout(redis_url *url, std::string_view text) {
    const std::optional<int> number = number_of(text, 3'600'000);
    if (!number || *number == 0) {
        return pm_error("the timeout is not a number of milliseconds from 1 to 3600000");
    }
    url->timeout = std::chrono::milliseconds(*number);
    return {};
}

// The prefix is a part of keys whose braces choose the slot of a cluster: it must have none of its own.
pm_error set_prefix(redis_url *url, std::string_view text) {
    if (text.empty() || text.find_first_not_of(PREFIX_ALPHABET) != std::string_view::npos) {
        return pm_error("the prefix is not made of letters, digits, '.', '_', '-' and ':'");
    }
    url->prefix = text;
    return {};
}

// Options that are kept as they are.
struct text_option {
    std::string_view name;
    std::string redis_url::*member;
    bool only_tls;
};
constexpr text_option TEXT_OPTIONS[] = {
    {"user", &redis_url::user, false},   {"password-file", &redis_url::password_file, false},
    {"ca", &redis_url::ca_file, true},   {"cert", &redis_url::certificate_file, true},
    {"key", &redis_url::key_file, true},
};

pm_error set_option(redis_url *url, std::string_view name, std::string_view text) {
    if (name == "db") {
        return set_database(url, text);
    }
    if (name == "prefix") {
        return set_prefix(url, text);
    }
    if (name == "timeout") {
        return set_timeout(url, text);
    }
    for (const text_option &option : TEXT_OPTIONS) {
        if (option.name == name && option.only_tls && !url->tls) {
            return pm_error("the option " + std::string(name) + " needs rediss://");
        }
        if (option.name == name) {
            url->*option.member = text;
            return {};
        }
    }
    return pm_error("unknown option " + std::string(name));
}

pm_error set_options(redis_url *url, std::string_view options) {
    while (!options.empty()) {
        std::string_view option = take_until(&options, '&');
        const std::string_view name = take_until(&option, '=');
        if (name == "password") {
            return pm_error(std::string("a password does not belong into the URL: use password-file= or ") +
                            PASSWORD_VARIABLE);
        }
        const std::optional<std::string> text = decode(option);
        if (!text) {
            return pm_error("the option " + std::string(name) + " is not well formed");
        }
        if (pm_error error = set_option(url, name, *text)) {
            return error;
        }
    }
    if (url->certificate_file.empty() != url->key_file.empty()) {
        return pm_error("the options cert and key need each other");
    }
    return {};
}

pm_error parse_server(std::string_view text, server_address *server) {
    std::string_view port;
    if (text.starts_with('[')) {
        const std::size_t end = text.find(']');
        if (end == std::string_view::npos) {
            return pm_error("an address has no closing bracket");
        }
        server->host = text.substr(1, end - 1);
        port = text.substr(end + 1);
    } else {
        const std::size_t colon = text.find(':');
        server->host = text.substr(0, colon);
        port = colon == std::string_view::npos ? "" : text.substr(colon);
    }
    if (server->host.empty()) {
        return pm_error("a host is missing");
    }
    if (port.empty()) {
        server->port = DEFAULT_PORT;
        return {};
    }
    const std::optional<int> number = port.front() == ':' ? number_of(port.substr(1), 65535) : std::nullopt;
    if (!number || *number == 0) {
        return pm_error("the port of " + server->host + " is not a number from 1 to 65535");
    }
    server->port = std::to_string(*number);
    return {};
}

pm_error parse_servers(std::string_view text, redis_url *url) {
    do {
        if (pm_error error = parse_server(take_until(&text, ','), &url->servers.emplace_back())) {
            return error;
        }
    } while (!text.empty());
    return {};
}

pm_error parse_network(std::string_view place, redis_url *url) {
    const std::string_view servers = take_until(&place, '/');
    if (servers.find('@') != std::string_view::npos) {
        return pm_error(std::string("a user or password does not belong before the host: use user=, and "
                                    "password-file= or ") +
                        PASSWORD_VARIABLE);
    }
    if (pm_error error = parse_servers(servers, url)) {
        return error;
    }
    return place.empty() ? pm_error() : set_database(url, place);
}

pm_error parse_socket(std::string_view place, redis_url *url) {
    const std::optional<std::string> path = decode(place);
    if (!path || !path->starts_with('/')) {
        return pm_error("the socket is not an absolute path");
    }
    url->servers.push_back({.host = {}, .port = {}, .socket_path = *path});
    return {};
}

}  // namespace

std::string server_address::text() const {
    if (is_local()) {
        return socket_path;
    }
    return host.find(':') == std::string::npos ? host + ":" + port : "[" + host + "]:" + port;
}

pm_error parse_url(std::string_view url, redis_url *out) {
    *out = {};
    std::string_view place = url;
    bool local = false;
    if (place.starts_with("redis+unix://")) {
        local = true;
    } else if (place.starts_with("rediss://")) {
        out->tls = true;
    } else if (!place.starts_with("redis://")) {
        return pm_error("the URL does not begin with redis://, rediss:// or redis+unix://");
    }
    place.remove_prefix(place.find("://") + 3);
    const std::string_view before_options = take_until(&place, '?');
    if (pm_error error = local ? parse_socket(before_options, out) : parse_network(before_options, out)) {
        return error;
    }
    return set_options(out, place);
}

pm_error read_password(const redis_url &url, std::string *password) {
    password->clear();
    if (url.password_file.empty()) {
        const char *const variable = std::getenv(PASSWORD_VARIABLE);
        password->assign(variable != nullptr ? variable : "");
        return {};
    }
    const std::unique_ptr<std::FILE, decltype([](std::FILE *file) { std::fclose(file); })> file(
        std::fopen(url.password_file.c_str(), "re"));
    if (file == nullptr) {
        return pm_error("the password file " + url.password_file + " cannot be read");
    }
    password->resize(MAX_PASSWORD_LENGTH);
    password->resize(std::fread(password->data(), 1, password->size(), file.get()));
    password->erase(std::min(password->find('\n'), password->size()));  // the first line
    return {};
}

}  // namespace redis_store
