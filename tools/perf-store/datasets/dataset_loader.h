// SPDX-License-Identifier: Apache-2.0
// Data sets into the store.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/pm_error.h"
#include "perf-store/datasets/direct_objects.h"
#include "perf-store/datasets/document_stream.h"
#include "perf-store/datasets/json_document.h"
#include "perf-store/datasets/member_path.h"
#include "perf-store/datasets/object_members.h"
#include "perf-store/datasets/record_memory.h"
#include "perf-store/datasets/record_reader.h"
#include "platform/local/store/local_store_records.h"
#include "platform/local/store/writer.h"

namespace perf_store {

// Puts the objects of data sets into a store's open transaction.
class dataset_loader {
public:
    explicit dataset_loader(store::writer *into) : into_(*into), reader_(&document_, &path_, &memory_) {}

    // Loads a file ("-" is standard input), a set of its own: a node may come once in it. The error is the whole
    // message of what is wrong with the file, "FILE:LINE: MEMBER: what", or the store, "perf-store: what". What was put
    // before it stays in the transaction.
    [[nodiscard]] pm_error load(const std::string &file);

    // How many objects were put into the store by all calls.
    [[nodiscard]] std::uint64_t items() const { return items_; }
    [[nodiscard]] std::uint64_t nodes() const { return nodes_; }

private:
    [[nodiscard]] pm_error load_directly(document_stream *in, bool *loaded);
    [[nodiscard]] pm_error put_directly(const direct_objects::object &object);
    [[nodiscard]] pm_error load_object();
    [[nodiscard]] pm_error load_dataset(const json_node &node);
    [[nodiscard]] pm_error load_platform(const json_node &node);
    [[nodiscard]] pm_error load_node(const json_node &node);
    [[nodiscard]] pm_error load_interface(const json_node &node);
    [[nodiscard]] pm_error load_item(const json_node &node);
    [[nodiscard]] pm_error load_publisher(const json_node &node);

    [[nodiscard]] object_members members_of(const json_node &node, std::initializer_list<const char *> names) {
        return {&document_, &path_, &reader_, node, names};
    }
    [[nodiscard]] pm_error stored(const pm_error &error);
    [[nodiscard]] pm_error read_new_node(const json_node &node, std::uint32_t *id);
    [[nodiscard]] pm_error read_u32(const json_node &node, const char *type, std::uint32_t *value);
    [[nodiscard]] pm_error keep_u32(const json_node &node, std::uint32_t **value);
    [[nodiscard]] pm_error read_partners(const json_node &node, parcel_array<local_partner> *partners);
    [[nodiscard]] pm_error read_location(const json_node &node, local_location **location);
    [[nodiscard]] pm_error read_root(const json_node &node, store::root *root);
    [[nodiscard]] pm_error read_path(const json_node &node, std::string_view *path);
    [[nodiscard]] pm_error read_type(const json_node &node, const parcel_descriptor **type);
    [[nodiscard]] pm_error read_state(const json_node &node, store::publisher_state *state);

    store::writer &into_;
    json_document document_;
    member_path path_;
    record_memory memory_;
    record_reader reader_;
    direct_objects direct_{&memory_};
    const document_stream *stream_ = nullptr;                 // the file that is read
    std::unordered_map<std::uint32_t, std::uint64_t> given_;  // lines of its nodes, by their ids
    bool store_failed_ = false;                               // the error is the store's, not the input's
    const parcel_descriptor *last_type_ = nullptr;            // items of a type often come together
    std::uint64_t items_ = 0;
    std::uint64_t nodes_ = 0;
};

}  // namespace perf_store
