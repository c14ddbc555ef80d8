// SPDX-License-Identifier: Apache-2.0
// One mapping of the YAML file while it is read: typed values by key, with errors that name file, line and key.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>
#include <yaml-cpp/yaml.h>

#include "perf-probed/config/config.h"

namespace probed {

// Where errors go; they are kept in the order of their lines.
struct config_messages {
    explicit config_messages(std::string name) : file(std::move(name)) {}

    std::string file;
    config_report report;

    void error(const YAML::Mark &at, const std::string &key, const std::string &what);
    void warning(const YAML::Mark &at, const std::string &key, const std::string &what);

private:
    std::vector<int> error_lines_;
};

template <class T>
struct named_value {
    std::string_view name;
    T value;
};

// Each reader leaves its target alone when the key is absent. A key that no reader asked for is an error.
class section {
public:
    // `path` is put before the keys in messages: "endpoints[2]".
    section(const YAML::Node &node, std::string path, config_messages *messages);
    ~section();
    section(const section &) = delete;
    section &operator=(const section &) = delete;

    void read(const char *key, bool *out);
    void read(const char *key, std::string *out);
    void read(const char *key, ip_address *out);
    void read(const char *key, std::vector<ip_prefix> *out);

    // Decimal or hexadecimal, from `least` to `most`.
    template <class T>
    void read_number(const char *key, std::uint64_t least, std::uint64_t most, T *out) {
        std::uint64_t number = 0;
        if (number_of(key, least, most, &number)) {
            *out = static_cast<T>(number);
        }
    }
    // A number with a unit (us, ms, s, min, h), kept in units of `unit_nsec` nanoseconds and a whole number of them.
    template <class T>
    void read_time(const char *key, std::uint64_t unit_nsec, std::uint64_t least, std::uint64_t most, T *out) {
        std::uint64_t number = 0;
        if (time_of(key, unit_nsec, least, most, &number)) {
            *out = static_cast<T>(number);
        }
    }
    template <class T>
    void read_choice(const char *key, std::span<const named_value<T>> choices, T *out) {
        const YAML::Node value = scalar(key);
        if (!value) {
            return;
        }
        std::string names;
        for (const named_value<T> &choice : choices) {
            if (value.Scalar() == choice.name) {
                *out = choice.value;
                return;
            }
            names += (names.empty() ? "" : ", ") + std::string(choice.name);
        }
        error(key, value, "'" + value.Scalar() + "' is none of: " + names);
    }

    // Reads a mapping under a key; `body` is not called when it is absent.
    void read_section(const char *key, const std::function<void(section &)> &body);
    // Reads each mapping of a list under a key.
    void read_list(const char *key, const std::function<void(section &)> &body);
    // `key: true`, `key: PROFILE` or `key: {profile: PROFILE}`; false or absent: not measured.
    void read_measured(const char *key, measured *out);

    [[nodiscard]] bool has(const char *key) const;
    void require(const char *key);
    void error(const char *key, const std::string &what);
    void warning(const char *key, const std::string &what);

private:
    [[nodiscard]] YAML::Node take(const char *key);
    [[nodiscard]] YAML::Node scalar(const char *key);
    [[nodiscard]] bool number_of(const char *key, std::uint64_t least, std::uint64_t most, std::uint64_t *out);
    [[nodiscard]] bool time_of(const char *key, std::uint64_t unit_nsec, std::uint64_t least, std::uint64_t most,
                               std::uint64_t *out);
    void error(const char *key, const YAML::Node &at, const std::string &what);
    [[nodiscard]] std::string full(const std::string &key) const;

    YAML::Node node_;
    std::string path_;
    config_messages *messages_;
    std::set<std::string> known_;
};

// "12", "0x1f"; the whole text.
[[nodiscard]] bool parse_number(std::string_view text, std::uint64_t *out);
// "30 s", "500us": nanoseconds.
[[nodiscard]] bool parse_time(std::string_view text, std::uint64_t *nsec);
// Nanoseconds as the largest unit of which they are a whole number: "30 s".
[[nodiscard]] std::string time_text(std::uint64_t nsec);

}  // namespace probed
