// JSON to records.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "perf-store/datasets/json_document.h"
#include "perf-store/datasets/member_path.h"
#include "perf-store/datasets/record_shape.h"

namespace perf_store {

// Memory for one record and all that hangs off it, used again for the next.
class record_memory {
public:
    // Zeroed and aligned for any field.
    [[nodiscard]] std::uint8_t *allocate(std::size_t size);
    void reset();

private:
    struct block {
        std::unique_ptr<std::uint64_t[]> bytes;
        std::size_t size;
    };
    std::vector<block> blocks_;
    std::size_t current_ = 0;
    std::size_t used_ = 0;
};

// Reads values of data sets. Everything that is not as the type wants it throws an input_error.
class record_reader {
public:
    record_reader(const json_document *document, member_path *path, record_memory *memory)
        : document_(document), path_(path), memory_(memory) {}

    // The record that a JSON object describes. It lives until the memory is reset.
    [[nodiscard]] void *read(const json_node &node, const record_shape &shape);

    // Single values, for the objects of a data set beside the records. `type` is for messages.
    [[nodiscard]] std::uint64_t read_unsigned(const json_node &node, std::uint64_t largest, std::string_view type);
    [[nodiscard]] bool read_boolean(const json_node &node);
    [[nodiscard]] std::string_view read_text(const json_node &node);
    void require(const json_node &node, json_kind kind);
    [[noreturn]] void fail(const json_node &node, const std::string &what) const { path_->fail(what, node.offset); }

private:
    void read_record(const json_node &node, const record_shape &shape, std::uint8_t *to);
    void read_union(const json_node &node, const record_shape &shape, std::uint8_t *to);
    void read_address(const json_node &node, const record_shape &shape, std::uint8_t *to);
    void read_value(const json_node &node, const value_shape &shape, std::uint8_t *to);
    void read_array(const json_node &node, const value_shape &shape, std::uint8_t *to);
    void read_opaque(const json_node &node, std::uint8_t *to);
    void read_elements(const json_node &node, const value_shape &element, std::uint8_t *to);
    void read_enumeration(const json_node &node, const value_shape &shape, std::uint8_t *to);
    void read_octets(const json_node &node, const value_shape &shape, std::uint8_t *to);
    [[nodiscard]] const char *keep_text(const json_node &node);
    [[nodiscard]] std::uint64_t integer(const json_node &node, std::string_view type, bool *negative);
    [[noreturn]] void out_of_range(const json_node &node, std::string_view type) const;

    const json_document *document_;
    member_path *path_;
    record_memory *memory_;
    std::uint32_t depth_ = 0;  // of records within one another
};

}  // namespace perf_store
