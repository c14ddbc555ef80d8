// Data sets into the store.
#pragma once

#include <cstdint>
#include <string>

#include "perf-store/datasets/json_document.h"
#include "perf-store/datasets/member_path.h"
#include "perf-store/datasets/record_reader.h"
#include "platform/local/store/writer.h"

namespace perf_store {

// Puts the objects of data sets into a store's open transaction.
class dataset_loader {
public:
    explicit dataset_loader(store::writer *into) : writer_(into), reader_(&document_, &path_, &memory_) {}

    // Loads a file ("-" is standard input). An empty text, or the whole message of what is wrong with
    // the file or the store.
    [[nodiscard]] std::string load(const std::string &file);

    [[nodiscard]] std::uint64_t items() const { return items_; }

private:
    class members;

    void load_object();
    void load_dataset(const json_node &node);
    void load_platform(const json_node &node);
    void load_partners(const json_node &node, void *local_platform_record);
    void load_node(const json_node &node);
    void load_interface(const json_node &node);
    void load_item(const json_node &node);
    void load_publisher(const json_node &node);

    [[nodiscard]] std::uint32_t read_u32(const json_node &node);
    [[nodiscard]] std::uint32_t *keep_u32(const json_node &node);
    [[nodiscard]] const char *keep_text(const json_node &node);
    [[nodiscard]] store::root read_root(const json_node &node);
    [[nodiscard]] std::string_view read_path(const json_node &node);
    void stored(const pm_error &error);

    store::writer *writer_;
    json_document document_;
    member_path path_;
    record_memory memory_;
    record_reader reader_;
    std::uint64_t items_ = 0;
};

}  // namespace perf_store
