// SPDX-License-Identifier: Apache-2.0
// JSON nodes to records and to single values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/pm_error.h"
#include "perf-store/datasets/json_document.h"
#include "perf-store/datasets/member_path.h"
#include "perf-store/datasets/record_memory.h"
#include "perf-store/datasets/record_shape.h"

namespace perf_store {

// Reads values of one document. Each routine fails when the node is not as its type wants it; the error
// begins with the path, which the caller has entered as far as the node. What is read is then in any state.
class record_reader {
public:
    record_reader(const json_document *document, member_path *path, record_memory *memory)
        : document_(document), path_(path), memory_(memory) {}

    // The record that a JSON object describes. It lives until the memory is reset.
    [[nodiscard]] pm_error read(const json_node &node, const parcel_descriptor *type, const void **record);

    // Single values, for the objects of a data set beside the records. `type` is for messages.
    [[nodiscard]] pm_error read_unsigned(const json_node &node, std::uint64_t largest, std::string_view type,
                                         std::uint64_t *value);
    [[nodiscard]] pm_error read_boolean(const json_node &node, bool *value);
    // A view into the document.
    [[nodiscard]] pm_error read_text(const json_node &node, std::string_view *text);
    // A terminated copy in the memory.
    [[nodiscard]] pm_error keep_text(const json_node &node, const char **text);

    [[nodiscard]] pm_error require(const json_node &node, json_kind kind) const;
    [[nodiscard]] pm_error refuse(const json_node &node, const std::string &what) const {
        return path_->refuse(what, node.offset);
    }

private:
    [[nodiscard]] pm_error read_record(const json_node &node, const record_shape &shape, std::uint8_t *to);
    [[nodiscard]] pm_error read_union(const json_node &node, const record_shape &shape, std::uint8_t *to);
    [[nodiscard]] pm_error read_discriminator(const json_node &node, const record_shape &shape, std::uint8_t *to);
    [[nodiscard]] pm_error read_address(const json_node &node, const record_shape &shape, std::uint8_t *to);
    [[nodiscard]] pm_error read_value(const json_node &node, const value_shape &shape, std::uint8_t *to);
    [[nodiscard]] pm_error read_optional(const json_node &node, const value_shape &shape, std::uint8_t *to);
    [[nodiscard]] pm_error read_array(const json_node &node, const value_shape &shape, std::uint8_t *to);
    [[nodiscard]] pm_error read_fixed_array(const json_node &node, const value_shape &shape, std::uint8_t *to);
    [[nodiscard]] pm_error read_opaque(const json_node &node, std::uint8_t *to);
    [[nodiscard]] pm_error read_elements(const json_node &node, const value_shape &element, std::uint8_t *to);
    [[nodiscard]] pm_error read_enumeration(const json_node &node, const value_shape &shape, std::uint8_t *to);
    [[nodiscard]] pm_error read_octets(const json_node &node, const value_shape &shape, std::uint8_t *to);
    [[nodiscard]] pm_error read_integer(const json_node &node, std::string_view type, std::uint64_t *value,
                                        bool *negative) const;
    [[nodiscard]] pm_error out_of_range(const json_node &node, std::string_view type) const;

    const json_document *document_;
    member_path *path_;
    record_memory *memory_;
    std::uint32_t depth_ = 0;  // of records within one another
};

}  // namespace perf_store
