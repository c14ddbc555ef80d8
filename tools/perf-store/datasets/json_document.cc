// SPDX-License-Identifier: Apache-2.0
// RapidJSON parses; its events build the nodes.
#include "perf-store/datasets/json_document.h"

#include <cstring>
#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include "perf-store/datasets/value_text.h"

namespace perf_store {

namespace {

constexpr unsigned PARSE_FLAGS = rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseValidateEncodingFlag |
                                 rapidjson::kParseIterativeFlag | rapidjson::kParseStopWhenDoneFlag;

}  // namespace

// A terminated text as RapidJSON's input. It never passes the terminator, even where the parser expects
// the rest of a character.
class text_stream {
public:
    using Ch = char;

    explicit text_stream(const char *text) : begin_(text), at_(text) {}

    [[nodiscard]] char Peek() const { return *at_; }
    char Take() { return *at_ != '\0' ? *at_++ : '\0'; }
    [[nodiscard]] std::size_t Tell() const { return static_cast<std::size_t>(at_ - begin_); }
    // For parsing in place, which is not what we do.
    char *PutBegin() { return nullptr; }
    void Put(char) {}
    void Flush() {}
    std::size_t PutEnd(char *) { return 0; }

private:
    const char *begin_;
    const char *at_;
};

const char *json_kind_name(json_kind kind) {
    static constexpr const char *NAMES[] = {"null", "a boolean", "a number", "text", "an object", "an array"};
    return NAMES[static_cast<std::size_t>(kind)];
}

// Takes RapidJSON's events.
class json_builder {
public:
    json_builder(json_document *document, const text_stream &stream) : out_(*document), stream_(stream) {
        out_.nodes_.clear();
        out_.texts_.clear();
    }

    bool Null() { return leaf(json_kind::null); }
    bool Bool(bool value) {
        leaf(json_kind::boolean);
        out_.nodes_.back().value = value;
        return true;
    }
    bool RawNumber(const char *text, rapidjson::SizeType length, bool /*copy*/) {
        return keep(json_kind::number, text, length);
    }
    bool String(const char *text, rapidjson::SizeType length, bool /*copy*/) {
        return keep(json_kind::text, text, length);
    }
    bool Key(const char *text, rapidjson::SizeType length, bool /*copy*/) {
        return keep(json_kind::text, text, length);
    }
    bool StartObject() { return open(json_kind::object); }
    bool StartArray() { return open(json_kind::array); }
    bool EndObject(rapidjson::SizeType members) { return close(members); }
    bool EndArray(rapidjson::SizeType elements) { return close(elements); }
    // Numbers come as raw text; the reader still needs these.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(std::int64_t) { return false; }
    bool Uint64(std::uint64_t) { return false; }
    bool Double(double) { return false; }

    // Texts may have moved while they were collected: gives the nodes their final place.
    void settle() {
        std::size_t at = 0;
        for (json_node &node : out_.nodes_) {
            if (node.kind == json_kind::text || node.kind == json_kind::number) {
                node.text = {out_.texts_.data() + at, node.count};
                at += node.count;
                node.count = 0;
            }
        }
    }

private:
    bool leaf(json_kind kind) {
        json_node node;
        node.kind = kind;
        node.offset = static_cast<std::uint32_t>(stream_.Tell());
        out_.nodes_.push_back(node);
        out_.nodes_.back().next = static_cast<std::uint32_t>(out_.nodes_.size());
        return true;
    }
    // False for a text that is not UTF-8 once its escapes are resolved: half of a surrogate pair.
    bool keep(json_kind kind, const char *text, rapidjson::SizeType length) {
        if (kind == json_kind::text && !is_utf8({text, length})) {
            return false;
        }
        leaf(kind);
        out_.nodes_.back().count = length;  // until settle()
        out_.texts_.insert(out_.texts_.end(), text, text + length);
        return true;
    }
    bool open(json_kind kind) {
        open_.push_back(static_cast<std::uint32_t>(out_.nodes_.size()));
        return leaf(kind);
    }
    bool close(rapidjson::SizeType count) {
        json_node &node = out_.nodes_[open_.back()];
        open_.pop_back();
        node.count = count;
        node.next = static_cast<std::uint32_t>(out_.nodes_.size());
        return true;
    }

    json_document &out_;
    const text_stream &stream_;
    std::vector<std::uint32_t> open_;
};

pm_error json_document::read(const char *begin, std::size_t *length) {
    text_stream stream(begin);
    rapidjson::Reader reader;
    json_builder builder(this, stream);
    const rapidjson::ParseResult result = reader.Parse<PARSE_FLAGS>(stream, builder);
    if (!result.IsError()) {
        builder.settle();
        *length = stream.Tell();
        return {};
    }
    // The parser calls a document empty also when it begins with stray punctuation.
    const bool empty = result.Code() == rapidjson::kParseErrorDocumentEmpty;
    const std::size_t start = std::strspn(begin, " \t\r\n");
    if (empty && begin[start] == '\0') {
        *length = 0;
        return {};
    }
    *length = empty ? start : result.Offset();
    const bool refused = result.Code() == rapidjson::kParseErrorTermination;  // by keep()
    return pm_error(rapidjson::GetParseError_En(empty     ? rapidjson::kParseErrorValueInvalid
                                                : refused ? rapidjson::kParseErrorStringInvalidEncoding
                                                          : result.Code()));
}

}  // namespace perf_store
