// SPDX-License-Identifier: Apache-2.0
// A JSON text read into a flat list of nodes, numbers kept as they are written.
//
// Each node knows its place in the input, so that an error can name the line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/pm_error.h"

namespace perf_store {

enum class json_kind : std::uint8_t { null, boolean, number, text, object, array };

// Name of a kind for messages: "a number", "text".
[[nodiscard]] const char *json_kind_name(json_kind kind);

struct json_node {
    json_kind kind{};
    bool value = false;        // of a boolean
    std::uint32_t count = 0;   // members of an object, elements of an array
    std::uint32_t next = 0;    // index of the node after this one and all that it holds
    std::uint32_t offset = 0;  // bytes from the start of the document to the token
    std::string_view text;     // of a text, a number as written
};

// The nodes of one document. An object is followed by its members, each a text node (the name) and the
// value's nodes; an array by its elements. Memory is kept from document to document.
class json_document {
public:
    json_document() = default;
    json_document(const json_document &) = delete;
    json_document &operator=(const json_document &) = delete;

    // Reads one document from the terminated text at `begin` and stops after it. `*length` is the number of
    // bytes read; 0 when there was nothing but white space. The error says what is wrong at byte `*length`.
    [[nodiscard]] pm_error read(const char *begin, std::size_t *length);

    [[nodiscard]] const json_node &root() const { return nodes_.front(); }
    // The first node inside an object or array, and the node after a value.
    [[nodiscard]] const json_node *inside(const json_node &node) const { return &node + 1; }
    [[nodiscard]] const json_node *after(const json_node &node) const { return nodes_.data() + node.next; }

private:
    friend class json_builder;

    std::vector<json_node> nodes_;
    std::vector<char> texts_;  // of the nodes
};

}  // namespace perf_store
