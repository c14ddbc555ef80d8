// SPDX-License-Identifier: Apache-2.0
// Walks two JSON objects by the names of their members.
#include "perf-store/diff/line_differences.h"

#include <algorithm>
#include <stdexcept>

#include "perf-store/datasets/value_text.h"

namespace perf_store {

namespace {

const json_document &read(const std::string &line, json_document *document) {
    std::size_t length = 0;
    if (const pm_error error = document->read(line.c_str(), &length)) {
        throw std::logic_error("a line of a data set: " + error.text());
    }
    return *document;
}

// The value of a member; null when there is none.
const json_node *find_member(const json_document &in, const json_node *object, std::string_view name) {
    const json_node *member = in.inside(*object);
    for (std::uint32_t i = 0; i < object->count; ++i) {
        if (member->text == name) {
            return member + 1;
        }
        member = in.after(member[1]);
    }
    return nullptr;
}

void append(const json_document &in, const json_node *node, std::string *out);

void append_inside(const json_document &in, const json_node *node, std::string *out) {
    const bool is_object = node->kind == json_kind::object;
    *out += is_object ? '{' : '[';
    const json_node *each = in.inside(*node);
    for (std::uint32_t i = 0; i < node->count; ++i) {
        *out += i == 0 ? "" : ",";
        if (is_object) {
            append(in, each++, out);
            *out += ':';
        }
        append(in, each, out);
        each = in.after(*each);
    }
    *out += is_object ? '}' : ']';
}

void append(const json_document &in, const json_node *node, std::string *out) {
    if (node == nullptr) {
        *out += "null";
        return;
    }
    switch (node->kind) {
    case json_kind::null: *out += "null"; break;
    case json_kind::boolean: *out += node->value ? "true" : "false"; break;
    case json_kind::number: *out += node->text; break;
    case json_kind::text: static_cast<void>(append_json_text(node->text, out)); break;  // it was read as UTF-8
    case json_kind::object:
    case json_kind::array: append_inside(in, node, out); break;
    }
}

std::string text_of(const json_document &in, const json_node *node) {
    std::string text;
    append(in, node, &text);
    return text;
}

}  // namespace

void line_comparison::compare(std::string_view from, std::string_view to) {
    from_line_ = from;
    to_line_ = to;
    // {"node": {...}}: the members of the one that is inside.
    compare_members(read(from_line_, &from_).inside(from_.root()) + 1, read(to_line_, &to_).inside(to_.root()) + 1);
}

// Members as the first has them, then those that only the second has.
void line_comparison::compare_members(const json_node *from, const json_node *to) {
    const json_node *member = from_.inside(*from);
    for (std::uint32_t i = 0; i < from->count; ++i) {
        compare_at(member->text, member + 1, find_member(to_, to, member->text));
        member = from_.after(member[1]);
    }
    member = to_.inside(*to);
    for (std::uint32_t i = 0; i < to->count; ++i) {
        if (find_member(from_, from, member->text) == nullptr) {
            compare_at(member->text, nullptr, member + 1);
        }
        member = to_.after(member[1]);
    }
}

// Arrays here have a fixed number of elements.
void line_comparison::compare_elements(const json_node *from, const json_node *to) {
    const json_node *from_element = from_.inside(*from);
    const json_node *to_element = to_.inside(*to);
    for (std::uint32_t i = 0; i < std::min(from->count, to->count); ++i) {
        compare_at(i, from_element, to_element);
        from_element = from_.after(*from_element);
        to_element = to_.after(*to_element);
    }
}

void line_comparison::compare_nodes(const json_node *from, const json_node *to) {
    const bool same_kind = from != nullptr && to != nullptr && from->kind == to->kind;
    if (same_kind && from->kind == json_kind::object) {
        compare_members(from, to);
    } else if (same_kind && from->kind == json_kind::array) {
        compare_elements(from, to);
    } else if (text_of(from_, from) != text_of(to_, to)) {
        out_.changed(path_, text_of(from_, from), text_of(to_, to));
    }
}

}  // namespace perf_store
