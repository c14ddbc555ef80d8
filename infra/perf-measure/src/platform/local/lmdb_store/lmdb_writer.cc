// SPDX-License-Identifier: Apache-2.0
// Records into keys and values of one transaction.
#include "platform/local/lmdb_store/lmdb_writer.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "platform/local/codec/parcel_codec.h"
#include "platform/local/lmdb_store/data_file.h"
#include "platform/local/lmdb_store/lmdb_reader.h"
#include "platform/local/lmdb_store/transaction.h"
#include "platform/local/store/lease.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"
#include "platform/local/store/record_encoder.h"
#include "platform/local/store/record_key.h"
#include "platform/local/store/seal.h"

namespace lmdb_store {

namespace {

using store::branch;
using store::key_space;

// A node and its place in the inventory's order.
struct node_position {
    std::uint32_t id;
    std::uint32_t position;
};

class lmdb_writer final : public store::writer {
public:
    [[nodiscard]] pm_error begin(const std::string &folder, old_store old) {
        folder_ = folder;
        return transaction_.begin(folder, old);
    }

    [[nodiscard]] pm_error clear() override;
    [[nodiscard]] pm_error put_platform(const void *local_platform_record) override;
    [[nodiscard]] pm_error put_node(std::uint32_t id, const void *local_node_record) override;
    [[nodiscard]] pm_error put_interface(std::uint32_t handle, const void *local_interface_record) override;
    [[nodiscard]] pm_error put_publisher(const branch &served, store::publisher_state state) override;
    [[nodiscard]] pm_error put_leased_publisher(const branch &served, std::uint32_t lease_msec) override;
    [[nodiscard]] pm_error put_item(const branch &into, std::string_view path, const void *record,
                                    const parcel_descriptor *descriptor) override;
    [[nodiscard]] pm_error has_item(const branch &in, std::string_view path, bool below, bool *found) override;
    [[nodiscard]] pm_error remove_item(const branch &from, std::string_view path, std::uint64_t *removed) override {
        return transaction_.remove(item_key(from, path), removed);
    }
    [[nodiscard]] pm_error remove_below(const branch &from, std::string_view path, std::uint64_t *removed) override {
        return transaction_.remove_all(item_key(from, store::prefix_below(path)), removed);
    }
    [[nodiscard]] pm_error commit() override { return transaction_.commit(); }

private:
    [[nodiscard]] pm_error put_record(std::string_view key, const void *record, const parcel_descriptor *descriptor);
    [[nodiscard]] pm_error read_inventory();
    [[nodiscard]] pm_error add_known_node(std::string_view parcel, std::uint32_t position);
    [[nodiscard]] pm_error ensure_publisher(const branch &served);

    std::string folder_;
    transaction transaction_;
    store::record_encoder encoder_;
    bool inventory_known_ = false;
    std::vector<node_position> nodes_;
    std::set<branch> known_branches_;  // that have a publisher
};

pm_error lmdb_writer::put_record(std::string_view key, const void *record, const parcel_descriptor *descriptor) {
    if (pm_error error = encoder_.encode(key, record, descriptor)) {
        return error;
    }
    if (encoder_.is_new_type(descriptor)) {
        const std::string schema = store::schema_key(parcel_fingerprint(descriptor));
        if (pm_error error = transaction_.put(schema, descriptor->schema)) {
            return error;
        }
    }
    return transaction_.put(key, encoder_.value());
}

pm_error lmdb_writer::clear() {
    nodes_.clear();
    inventory_known_ = true;  // and empty, whatever was there
    encoder_.forget_types();
    known_branches_.clear();
    return transaction_.clear();
}

pm_error lmdb_writer::put_platform(const void *local_platform_record) {
    return put_record(store::key(key_space::platform), local_platform_record, local_platform_descriptor());
}

pm_error lmdb_writer::add_known_node(std::string_view parcel, std::uint32_t position) {
    local_node node{};
    const errcode code =
        parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), &node, local_node_descriptor());
    if (code != ERRCODE_SUCCESS) {
        return pm_error(code, folder_ + ": the inventory cannot be read: " + errcode_strerror(code));
    }
    nodes_.push_back({node.Id, position});
    parcel_free_indirections(&node, local_node_descriptor());
    return {};
}

pm_error lmdb_writer::read_inventory() {
    if (inventory_known_) {
        return {};
    }
    inventory_known_ = true;
    struct entry {
        std::uint32_t position;
        std::string parcel;
    };
    std::vector<entry> entries;
    bool sound = true;
    pm_error error = transaction_.scan(store::key(key_space::node), [&](std::string_view key, std::string_view value) {
        entry &next = entries.emplace_back();
        sound = sound && store::parse_number_key(key, &next.position);
        next.parcel = store::unseal(key, value);
        return true;
    });
    if (!error && !sound) {
        error = pm_error(OPSTORE_DAMAGED, folder_ + ": " + errcode_strerror(OPSTORE_DAMAGED));
    }
    for (std::size_t i = 0; !error && i < entries.size(); ++i) {
        error = add_known_node(entries[i].parcel, entries[i].position);
    }
    return error;
}

pm_error lmdb_writer::put_node(std::uint32_t id, const void *local_node_record) {
    if (pm_error error = read_inventory()) {
        return error;
    }
    auto place = std::find_if(nodes_.begin(), nodes_.end(), [&](const node_position &each) { return each.id == id; });
    if (place == nodes_.end()) {
        nodes_.push_back({id, nodes_.empty() ? 0 : nodes_.back().position + 1});
        place = nodes_.end() - 1;
    }
    return put_record(store::key(key_space::node, place->position), local_node_record, local_node_descriptor());
}

pm_error lmdb_writer::put_interface(std::uint32_t handle, const void *local_interface_record) {
    return put_record(store::key(key_space::interface, handle), local_interface_record, local_interface_descriptor());
}

pm_error lmdb_writer::put_publisher(const branch &served, store::publisher_state state) {
    known_branches_.insert(served);
    const local_publisher record{static_cast<std::uint32_t>(state), nullptr};
    return put_record(branch_key(key_space::publisher, served), &record, local_publisher_descriptor());
}

pm_error lmdb_writer::put_leased_publisher(const branch &served, std::uint32_t lease_msec) {
    known_branches_.insert(served);
    const std::string boot(store::this_boot());
    local_lease lease{boot.c_str(), store::msec_since_boot() + lease_msec};
    const local_publisher record{static_cast<std::uint32_t>(store::publisher_state::running), &lease};
    return put_record(branch_key(key_space::publisher, served), &record, local_publisher_descriptor());
}

pm_error lmdb_writer::ensure_publisher(const branch &served) {
    if (!known_branches_.insert(served).second) {
        return {};
    }
    std::string_view known;
    if (pm_error error = transaction_.get(branch_key(key_space::publisher, served), &known)) {
        return error;
    }
    return known.empty() ? put_publisher(served, store::publisher_state::running) : pm_error();
}

pm_error lmdb_writer::put_item(const branch &into, std::string_view path, const void *record,
                               const parcel_descriptor *descriptor) {
    if (pm_error error = ensure_publisher(into)) {
        return error;
    }
    return put_record(item_key(into, path), record, descriptor);
}

pm_error lmdb_writer::has_item(const branch &in, std::string_view path, bool below, bool *found) {
    std::string_view value;
    pm_error error = transaction_.get(item_key(in, path), &value);
    *found = !value.empty();
    if (error || *found || !below) {
        return error;
    }
    return transaction_.scan(item_key(in, store::prefix_below(path)), [&](std::string_view, std::string_view) {
        *found = true;
        return false;
    });
}

}  // namespace

pm_error open_writer(const std::string &folder, store::missing_store missing, std::unique_ptr<store::writer> *out) {
    extent ignored;
    if (missing == store::missing_store::refuse && read_extent(folder, &ignored).code() == OPSTORE_NO_CLIENT) {
        return pm_error(OPSTORE_NO_CLIENT, check_access(folder).denial.text());
    }
    auto opened = std::make_unique<lmdb_writer>();
    pm_error error = opened->begin(folder, old_store::keep);
    if (missing == store::missing_store::replace) {
        error = error ? std::move(error) : opened->clear();
        if (error.code() == OPSTORE_DAMAGED && has_note(folder)) {  // it is ours, and nothing can be done in it
            opened = std::make_unique<lmdb_writer>();
            error = opened->begin(folder, old_store::leave_aside);
        }
    }
    if (error) {
        return error;
    }
    *out = std::move(opened);
    return {};
}

}  // namespace lmdb_store
