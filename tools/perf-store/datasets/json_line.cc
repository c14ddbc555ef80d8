// SPDX-License-Identifier: Apache-2.0
// The fast parser: simdjson finds the tokens of a line, and a walk over them builds the nodes.
#include <algorithm>
#include <cstring>
#include <limits>
#include <simdjson.h>

#include "perf-store/datasets/json_document.h"

namespace perf_store {

namespace {

namespace ondemand = simdjson::ondemand;

constexpr std::size_t MAX_DEPTH = 64;  // of values within one another

static_assert(simdjson::SIMDJSON_PADDING <= json_document::PADDING);

// A token without the white space after it, which is mostly none.
std::string_view trimmed(std::string_view token) {
    const auto is_white = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (is_white(token.back())) {  // it begins with something else
        token.remove_suffix(1);
    }
    return token;
}

// Whether a token is an integer of up to 64 bits, as all numbers of records are.
bool is_integer(std::string_view text) {
    text.remove_prefix(text.starts_with('-') ? 1 : 0);
    const bool has_digits = !text.empty() && text.size() <= std::numeric_limits<std::uint64_t>::digits10 + 1 &&
                            std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    return has_digits && (text[0] != '0' || text.size() == 1);
}

}  // namespace

// Keeps the parser's memory from line to line.
class line_reader {
public:
    explicit line_reader(std::vector<json_node> *nodes) : nodes_(*nodes) {}

    [[nodiscard]] bool read(std::string_view line) {
        nodes_.clear();
        begin_ = line.data();
        ondemand::document document;
        ondemand::object root;
        const simdjson::padded_string_view padded(line.data(), line.size(), line.size() + json_document::PADDING);
        return parser_.iterate(padded).get(document) == simdjson::SUCCESS &&
               document.get_object().get(root) == simdjson::SUCCESS && object(begin_, root, 1) &&
               document.current_location().error() == simdjson::OUT_OF_BOUNDS;  // nothing follows
    }

private:
    [[nodiscard]] bool value(ondemand::value from, std::size_t depth, char closing);
    [[nodiscard]] bool object(const char *at, ondemand::object from, std::size_t depth);
    [[nodiscard]] bool array(const char *at, ondemand::array from, std::size_t depth);
    [[nodiscard]] bool scalar(std::string_view token);

    std::size_t add(json_kind kind, const char *at, std::string_view text) {
        json_node &node = nodes_.emplace_back();
        node.kind = kind;
        node.offset = static_cast<std::uint32_t>(at - begin_);
        node.next = static_cast<std::uint32_t>(nodes_.size());
        node.text = text;
        return nodes_.size() - 1;
    }
    void close(std::size_t opened, std::uint32_t count) {
        nodes_[opened].count = count;
        nodes_[opened].next = static_cast<std::uint32_t>(nodes_.size());
    }

    ondemand::parser parser_;
    std::vector<json_node> &nodes_;
    const char *begin_ = nullptr;
};

// A value within an object or array that ends with `closing`.
bool line_reader::value(ondemand::value from, std::size_t depth, char closing) {
    std::string_view token = from.raw_json_token();
    if (token.front() == '{') {
        ondemand::object members;
        return from.get_object().get(members) == simdjson::SUCCESS && object(token.data(), members, depth + 1);
    }
    if (token.front() == '[') {
        ondemand::array elements;
        return from.get_array().get(elements) == simdjson::SUCCESS && array(token.data(), elements, depth + 1);
    }
    // The walk steps over a token that is not asked for its value, and over more if that does not end the value.
    const char next = token.data()[token.size()];
    return (next == ',' || next == closing) && scalar(trimmed(token));
}

// A token without the white space after it.
bool line_reader::scalar(std::string_view token) {
    switch (token.front()) {
    case '"':
        add(json_kind::text, token.data(), token.substr(1, token.size() - 2));
        return token.size() > 1 && token.ends_with('"');
    case 'n': add(json_kind::null, token.data(), {}); return token == "null";
    case 't':
    case 'f': {
        const bool yes = token == "true";
        nodes_[add(json_kind::boolean, token.data(), {})].value = yes;
        return yes || token == "false";
    }
    default: add(json_kind::number, token.data(), token); return is_integer(token);
    }
}

bool line_reader::object(const char *at, ondemand::object from, std::size_t depth) {
    if (depth > MAX_DEPTH) {
        return false;
    }
    const std::size_t opened = add(json_kind::object, at, {});
    std::uint32_t count = 0;
    for (auto member : from) {
        ondemand::field field;
        if (std::move(member).get(field) != simdjson::SUCCESS) {
            return false;
        }
        const char *const name = field.key().raw();
        add(json_kind::text, name, {name, static_cast<std::size_t>(std::strchr(name, '"') - name)});
        if (!value(field.value(), depth, '}')) {
            return false;
        }
        ++count;
    }
    close(opened, count);
    return true;
}

bool line_reader::array(const char *at, ondemand::array from, std::size_t depth) {
    if (depth > MAX_DEPTH) {
        return false;
    }
    const std::size_t opened = add(json_kind::array, at, {});
    std::uint32_t count = 0;
    for (auto element : from) {
        ondemand::value each;
        if (std::move(element).get(each) != simdjson::SUCCESS || !value(each, depth, ']')) {
            return false;
        }
        ++count;
    }
    close(opened, count);
    return true;
}

json_document::json_document() : line_reader_(std::make_unique<line_reader>(&nodes_)) {}

json_document::~json_document() = default;

bool json_document::read_line(std::string_view line) {
    return std::memchr(line.data(), '\\', line.size()) == nullptr && line_reader_->read(line);
}

}  // namespace perf_store
