// SPDX-License-Identifier: Apache-2.0
// Reads a record catalogue: its lines, then the bodies of its types, which refer to each other by name.
#include "schema_compiler/catalogue.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <fstream>
#include <sstream>
#include <string_view>

namespace {

bool is_digit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }
bool is_name_character(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

// Where the characters of a kind that begin at `at` end.
std::size_t end_of(const std::string &text, std::size_t at, bool (*of_kind)(char)) {
    const auto begin = text.begin() + static_cast<std::ptrdiff_t>(at);
    return static_cast<std::size_t>(std::find_if_not(begin, text.end(), of_kind) - text.begin());
}

// Reads a whole text as a number; false when it is none.
template <class Number>
bool read_number(std::string_view text, Number *value) {
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, *value);
    return error == std::errc{} && stop == end;
}

class catalogue_reader {
public:
    explicit catalogue_reader(record_catalogue *out) : out_(out) {}

    pm_error read(const std::string &path) {
        std::ifstream in(path);
        if (!in) {
            return pm_error("cannot be read");
        }
        std::string line;
        while (!error_ && std::getline(in, line)) {
            ++line_;
            read_line(line);
        }
        for (const catalogue_run &each : out_->runs) {
            if (each.types.empty()) {
                fail("no type follows run " + each.name);
            }
        }
        for (catalogue_entry &each : out_->entries) {
            line_ = each.line;
            each.body = in_notation(&each);
        }
        return error_;
    }

private:
    // The first error stays.
    void fail(const std::string &what) {
        if (!error_) {
            error_ = pm_error("line " + std::to_string(line_) + ": " + what);
        }
    }

    void read_line(const std::string &line) {
        std::istringstream words(line);
        std::string first;
        words >> first;
        if (first.empty() || first[0] == '#') {
            return;
        }
        if (first == "include") {
            words >> out_->include;
        } else if (first == "group") {
            read_group(&words);
        } else if (first == "run") {
            out_->runs.emplace_back();
            words >> out_->runs.back().name;
        } else {
            read_type(line, first == "inner");
        }
    }

    void read_group(std::istream *words) {
        std::string version;
        *words >> version >> library_;
        const std::size_t point = version.find('.');
        if (point == std::string::npos || library_.empty()) {
            fail("a group needs MAJOR.MINOR and a library");
            return;
        }
        major_ = version.substr(0, point);
        minor_ = version.substr(point + 1);
    }

    // "$N name (size): body" or "$N struct = name (size): body"; an inner type has no size.
    void read_type(const std::string &line, bool inner) {
        const std::size_t dollar = line.find('$');
        const std::size_t colon = line.find(": ");
        if (dollar == std::string::npos || colon == std::string::npos || colon < dollar) {
            fail("not a type");
            return;
        }
        std::istringstream head(line.substr(dollar + 1, colon - dollar - 1));
        catalogue_entry type;
        std::string number;
        std::string size;
        head >> number >> type.name >> size;
        type.wire_name = type.name;
        if (size == "=") {
            size.clear();
            head >> type.wire_name >> size;
        }
        type.inner = inner;
        type.body = line.substr(colon + 2);
        type.version_major = major_;
        type.version_minor = minor_;
        type.library = library_;
        type.line = line_;
        if (!read_number(number, &type.number) || type.name.empty()) {
            fail("a type needs a number and a name");
        } else if (out_->find(type.name) != nullptr) {
            fail("a second type " + type.name);
        } else if (!inner && (size.size() < 3 || size.front() != '(' || size.back() != ')' ||
                              !read_number(std::string_view(size).substr(1, size.size() - 2), &type.size))) {
            fail("a record type needs its size");
        }
        if (!inner && !out_->runs.empty()) {
            out_->runs.back().types.push_back(type.name);
        }
        out_->entries.push_back(std::move(type));
    }

    // The body with type names replaced by numbers and "Name type; ..." by "{Name}type...".
    std::string in_notation(catalogue_entry *type) {
        if (type->body.starts_with("?(") || type->body.find(' ') == std::string::npos) {
            return with_numbers(type->body, type);
        }
        std::string text;
        std::istringstream fields(type->body);
        std::string field;
        while (std::getline(fields, field, ';')) {
            std::istringstream words(field);
            std::string name;
            std::string notation;
            std::string extra;
            if (!(words >> name >> notation) || words >> extra) {
                fail("not a field: " + field);
            }
            text += "{" + name + "}" + with_numbers(notation, type);
        }
        return text;
    }

    // Replaces the names of types by their numbers, outside {...}, [...] and <...>, and notes them as used.
    std::string with_numbers(const std::string &text, catalogue_entry *type) {
        std::string out;
        std::size_t at = 0;
        while (at < text.size()) {
            const std::size_t begin = at;
            const catalogue_entry *used = nullptr;
            if (const std::size_t bracket = std::string_view("{[<").find(text[at]); bracket != std::string::npos) {
                at = std::min(text.find("}]>"[bracket], at), text.size() - 1) + 1;
            } else if (text[at] == '$') {
                at = end_of(text, at + 1, is_digit);
                used = inner_of(text.substr(begin + 1, at - begin - 1));
            } else if (const std::size_t end = end_of(text, at, is_name_character);
                       (used = out_->find(text.substr(at, end - at))) != nullptr) {
                at = end;
            } else {
                ++at;
            }
            if (used != nullptr) {
                type->uses.push_back(used->name);
            }
            out += used != nullptr ? "$" + std::to_string(used->number) : text.substr(begin, at - begin);
        }
        return out;
    }

    // The inner type of a number, or null and an error.
    const catalogue_entry *inner_of(const std::string &number) {
        for (const catalogue_entry &each : out_->entries) {
            if (each.inner && std::to_string(each.number) == number) {
                return &each;
            }
        }
        fail("no inner type $" + number);
        return nullptr;
    }

    record_catalogue *out_;
    std::size_t line_ = 0;
    std::string major_, minor_, library_;  // of the group
    pm_error error_;
};

}  // namespace

const catalogue_entry *record_catalogue::find(const std::string &name) const {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const catalogue_entry &each) { return each.name == name; });
    return found != entries.end() ? &*found : nullptr;
}

pm_error read_catalogue(const std::string &path, record_catalogue *out) { return catalogue_reader(out).read(path); }
