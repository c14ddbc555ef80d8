// SPDX-License-Identifier: Apache-2.0
// Typed values of one mapping.
#include "perf-probed/config/section.h"

#include <algorithm>
#include <charconv>

namespace probed {
namespace {

struct time_unit {
    std::string_view name;
    std::uint64_t nsec;
};
constexpr time_unit UNITS[] = {
    {"h", 3'600'000'000'000}, {"min", 60'000'000'000}, {"s", 1'000'000'000},
    {"ms", 1'000'000},        {"us", 1'000},           {"ns", 1},
};

std::string place(const std::string &file, const YAML::Mark &at, const std::string &key) {
    return file + ":" + std::to_string(at.line + 1) + ": " + (key.empty() ? "" : key + ": ");
}

}  // namespace

void config_messages::error(const YAML::Mark &at, const std::string &key, const std::string &what) {
    const auto after = std::ranges::upper_bound(error_lines_, at.line);
    report.errors.insert(report.errors.begin() + (after - error_lines_.begin()), place(file, at, key) + what);
    error_lines_.insert(after, at.line);
}

void config_messages::warning(const YAML::Mark &at, const std::string &key, const std::string &what) {
    report.warnings.push_back(place(file, at, key) + what);
}

bool parse_number(std::string_view text, std::uint64_t *out) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = hexadecimal ? text.substr(2) : text;
    const auto [end, failure] =
        std::from_chars(digits.data(), digits.data() + digits.size(), *out, hexadecimal ? 16 : 10);
    return failure == std::errc() && end == digits.data() + digits.size();
}

bool parse_time(std::string_view text, std::uint64_t *nsec) {
    const std::size_t end = text.find_first_not_of("0123456789");
    std::uint64_t number = 0;
    if (end == std::string_view::npos || !parse_number(text.substr(0, end), &number)) {
        return false;
    }
    const std::size_t name = text.find_first_not_of(' ', end);
    for (const time_unit &unit : UNITS) {
        if (name != std::string_view::npos && text.substr(name) == unit.name) {
            return !__builtin_mul_overflow(number, unit.nsec, nsec);
        }
    }
    return false;
}

std::string time_text(std::uint64_t nsec) {
    for (const time_unit &unit : UNITS) {
        if (nsec % unit.nsec == 0) {
            return std::to_string(nsec / unit.nsec) + " " + std::string(unit.name);
        }
    }
    return {};
}

section::section(const YAML::Node &node, std::string path, config_messages *messages)
    : node_(node), path_(std::move(path)), messages_(messages) {
    std::set<std::string> seen;
    for (const auto &entry : node_) {
        if (!seen.insert(entry.first.Scalar()).second) {
            messages_->error(entry.first.Mark(), full(entry.first.Scalar()), "is given twice");
        }
    }
}

section::~section() {
    for (const auto &entry : node_) {
        if (!known_.contains(entry.first.Scalar())) {
            messages_->error(entry.first.Mark(), full(entry.first.Scalar()), "is no key that is known here");
        }
    }
}

std::string section::full(const std::string &key) const { return path_.empty() ? key : path_ + "." + key; }

bool section::has(const char *key) const { return static_cast<bool>(node_[key]); }

YAML::Node section::take(const char *key) {
    known_.insert(key);
    const YAML::Node &whole = node_;
    return whole[key];
}

void section::error(const char *key, const YAML::Node &at, const std::string &what) {
    messages_->error(at.Mark(), full(key), what);
}

void section::error(const char *key, const std::string &what) { error(key, has(key) ? take(key) : node_, what); }

void section::warning(const char *key, const std::string &what) {
    messages_->warning((has(key) ? take(key) : node_).Mark(), full(key), what);
}

void section::require(const char *key) {
    if (!has(key)) {
        error(key, node_, "is missing");
    }
}

YAML::Node section::scalar(const char *key) {
    YAML::Node value = take(key);
    if (value && !value.IsScalar()) {
        error(key, value, "is not a single value");
        return YAML::Node(YAML::NodeType::Undefined);
    }
    return value;
}

void section::read(const char *key, bool *out) {
    if (const YAML::Node value = scalar(key); value && !YAML::convert<bool>::decode(value, *out)) {
        error(key, value, "'" + value.Scalar() + "' is neither true nor false");
    }
}

void section::read(const char *key, std::string *out) {
    if (const YAML::Node value = scalar(key)) {
        *out = value.Scalar();
        if (out->empty() || out->find_first_of(std::string_view("\0\n", 2)) != std::string::npos) {
            error(key, value, "is not one line of text");
        }
    }
}

void section::read(const char *key, ip_address *out) {
    if (const YAML::Node value = scalar(key); value && !parse_address(value.Scalar(), out)) {
        error(key, value, "'" + value.Scalar() + "' is no IPv4 or IPv6 address");
    }
}

void section::read(const char *key, std::vector<ip_prefix> *out) {
    const YAML::Node list = take(key);
    if (!list) {
        return;
    }
    if (!list.IsSequence()) {
        error(key, list, "is not a list");
        return;
    }
    for (const YAML::Node &each : list) {
        ip_prefix prefix;
        if (each.IsScalar() && parse_prefix(each.Scalar(), &prefix)) {
            out->push_back(prefix);
        } else {
            error(key, each, "'" + (each.IsScalar() ? each.Scalar() : "...") + "' is no address or prefix");
        }
    }
}

bool section::number_of(const char *key, std::uint64_t least, std::uint64_t most, std::uint64_t *out) {
    const YAML::Node value = scalar(key);
    if (!value) {
        return false;
    }
    if (!parse_number(value.Scalar(), out) || *out < least || *out > most) {
        error(key, value,
              "'" + value.Scalar() + "' is not a number from " + std::to_string(least) + " to " + std::to_string(most));
        return false;
    }
    return true;
}

bool section::time_of(const char *key, std::uint64_t unit_nsec, std::uint64_t least, std::uint64_t most,
                      std::uint64_t *out) {
    const YAML::Node value = scalar(key);
    if (!value) {
        return false;
    }
    std::uint64_t nsec = 0;
    if (!parse_time(value.Scalar(), &nsec)) {
        error(key, value, "'" + value.Scalar() + "' is no time such as 500 us, 20 ms, 3 s, 2 min or 1 h");
        return false;
    }
    if (nsec % unit_nsec != 0 || nsec / unit_nsec < least || nsec / unit_nsec > most) {
        error(key, value,
              "'" + value.Scalar() + "' is not from " + time_text(least * unit_nsec) + " to " +
                  time_text(most * unit_nsec) + " in steps of " + time_text(unit_nsec));
        return false;
    }
    *out = nsec / unit_nsec;
    return true;
}

void section::read_section(const char *key, const std::function<void(section &)> &body) {
    const YAML::Node value = take(key);
    if (!value) {
        return;
    }
    if (!value.IsMap()) {
        error(key, value, "is not a mapping");
        return;
    }
    section inside(value, full(key), messages_);
    body(inside);
}

void section::read_list(const char *key, const std::function<void(section &)> &body) {
    const YAML::Node list = take(key);
    if (!list) {
        return;
    }
    if (!list.IsSequence()) {
        error(key, list, "is not a list");
        return;
    }
    std::size_t index = 0;
    for (const YAML::Node &each : list) {
        const std::string path = full(key) + "[" + std::to_string(index++) + "]";
        if (!each.IsMap()) {
            messages_->error(each.Mark(), path, "is not a mapping");
            continue;
        }
        section inside(each, path, messages_);
        body(inside);
    }
}

void section::read_measured(const char *key, measured *out) {
    const YAML::Node value = take(key);
    if (!value) {
        return;
    }
    if (value.IsMap()) {
        out->emplace();
        section inside(value, full(key), messages_);
        inside.read("profile", &**out);
        return;
    }
    if (!value.IsScalar()) {
        error(key, value, "is neither true, false nor a profile's name");
        return;
    }
    bool on = false;
    if (!YAML::convert<bool>::decode(value, on)) {
        *out = value.Scalar();
    } else if (on) {
        out->emplace();
    } else {
        out->reset();
    }
}

}  // namespace probed
