// SPDX-License-Identifier: Apache-2.0
// Records into commands that take effect in one step.
#include "platform/local/redis_store/redis_writer.h"

#include <set>
#include <vector>

#include "platform/local/codec/parcel_codec.h"
#include "platform/local/redis_store/cluster_commit.h"
#include "platform/local/redis_store/commit_script.h"
#include "platform/local/redis_store/directory.h"
#include "platform/local/redis_store/router_changes.h"
#include "platform/local/redis_store/server_policy.h"
#include "platform/local/redis_store/staged_items.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"
#include "platform/local/store/record_encoder.h"
#include "platform/local/store/record_key.h"

namespace redis_store {

namespace {

using store::branch;
using store::key_space;

class redis_writer final : public store::writer {
public:
    explicit redis_writer(redis_url url)
        : names_(url.prefix),
          client_(std::move(url), purpose::writing),
          lock_(&client_, names_.lock()),
          directory_(&client_, &names_),
          items_(&client_, &names_, &lock_),
          router_(&names_) {}

    [[nodiscard]] pm_error begin(store::missing_store missing);

    [[nodiscard]] pm_error clear() override;
    [[nodiscard]] pm_error put_platform(const void *local_platform_record) override;
    [[nodiscard]] pm_error put_node(std::uint32_t id, const void *local_node_record) override;
    [[nodiscard]] pm_error put_interface(std::uint32_t handle, const void *local_interface_record) override;
    [[nodiscard]] pm_error put_publisher(const branch &served, store::publisher_state state) override;
    [[nodiscard]] pm_error put_leased_publisher(const branch &served, std::uint32_t lease_msec) override;
    [[nodiscard]] pm_error put_item(const branch &into, std::string_view path, const void *record,
                                    const parcel_descriptor *descriptor) override;
    [[nodiscard]] pm_error has_item(const branch &in, std::string_view path, bool below, bool *found) override;
    [[nodiscard]] pm_error remove_item(const branch &from, std::string_view path, std::uint64_t *removed) override;
    [[nodiscard]] pm_error remove_below(const branch &from, std::string_view path, std::uint64_t *removed) override;
    [[nodiscard]] pm_error commit() override;

private:
    [[nodiscard]] pm_error encode(const std::string &key, const void *record, const parcel_descriptor *descriptor);
    [[nodiscard]] pm_error encode(const std::string &key, const void *record, const parcel_descriptor *descriptor,
                                  std::string *value);
    [[nodiscard]] pm_error put_publisher_record(const branch &served, const local_publisher &record,
                                                std::uint32_t lease_msec);
    [[nodiscard]] pm_error refresh();
    [[nodiscard]] pm_error commit_to_server(const commit_plan &plan);

    key_names names_;
    client client_;
    writer_lock lock_;
    directory directory_;
    staged_items items_;
    store::record_encoder encoder_;
    router_changes router_;
    bool is_cluster_ = false;
    std::set<branch> served_;  // that have a publisher
};

pm_error redis_writer::begin(store::missing_store missing) {
    if (pm_error error = check_policy(&client_, {STATE_TAG}, &is_cluster_)) {
        return error;
    }
    if (pm_error error = lock_.take()) {
        return error;
    }
    const bool replaces = missing == store::missing_store::replace;
    pm_error unread = directory_.read();
    if (replaces && unread.code() == OPSTORE_DAMAGED) {  // or of another format: all of it goes
        unread = directory_.find_branches();
    }
    if (unread) {
        return unread;
    }
    if (!directory_.is_store() && missing == store::missing_store::refuse) {
        return {OPSTORE_NO_CLIENT, directory_.missing()};
    }
    for (const known_branch &each : directory_.branches()) {
        served_.insert(each.named);
        items_.add_known(each.named);
    }
    return replaces ? clear() : router_.read_inventory(directory_, client_);
}

// Makes the value of the encoder.
pm_error redis_writer::encode(const std::string &key, const void *record, const parcel_descriptor *descriptor) {
    if (pm_error error = encoder_.encode(key, record, descriptor)) {
        return error;
    }
    if (encoder_.is_new_type(descriptor)) {
        router_.put_schema(parcel_fingerprint(descriptor), descriptor->schema);
    }
    return refresh();
}

pm_error redis_writer::encode(const std::string &key, const void *record, const parcel_descriptor *descriptor,
                              std::string *value) {
    pm_error error = encode(key, record, descriptor);
    *value = encoder_.value();
    return error;
}

// Keeps what would expire: the lock, and what is staged.
pm_error redis_writer::refresh() {
    if (!lock_.is_due()) {
        return {};
    }
    if (pm_error error = items_.settle()) {
        return error;
    }
    pm_error error = lock_.refresh();
    return error ? error : items_.prolong();
}

pm_error redis_writer::clear() {
    router_.clear();
    served_.clear();
    encoder_.forget_types();
    return items_.clear();
}

pm_error redis_writer::put_platform(const void *local_platform_record) {
    return encode(store::key(key_space::platform), local_platform_record, local_platform_descriptor(),
                  router_.platform());
}

pm_error redis_writer::put_node(std::uint32_t id, const void *local_node_record) {
    const std::uint32_t position = router_.position_of(id);
    return encode(store::key(key_space::node, position), local_node_record, local_node_descriptor(),
                  router_.node(position));
}

pm_error redis_writer::put_interface(std::uint32_t handle, const void *local_interface_record) {
    return encode(store::key(key_space::interface, handle), local_interface_record, local_interface_descriptor(),
                  router_.interface(handle));
}

pm_error redis_writer::put_publisher_record(const branch &served, const local_publisher &record,
                                            std::uint32_t lease_msec) {
    served_.insert(served);
    std::string sealed;
    pm_error error = encode(branch_key(key_space::publisher, served), &record, local_publisher_descriptor(), &sealed);
    router_.put_publisher(served, std::move(sealed), lease_msec);
    return error;
}

pm_error redis_writer::put_publisher(const branch &served, store::publisher_state state) {
    return put_publisher_record(served, {static_cast<std::uint32_t>(state), nullptr}, 0);
}

// The server's own expiry ends the lease; the record tells that there is one.
pm_error redis_writer::put_leased_publisher(const branch &served, std::uint32_t lease_msec) {
    local_lease lease{"", lease_msec};
    return put_publisher_record(served, {static_cast<std::uint32_t>(store::publisher_state::running), &lease},
                                lease_msec);
}

pm_error redis_writer::put_item(const branch &into, std::string_view path, const void *record,
                                const parcel_descriptor *descriptor) {
    if (path.find('\0') != std::string_view::npos) {
        return pm_error(ERRCODE_INVALID_ARGUMENT, client_.describe("a path with a zero byte"));
    }
    if (!served_.contains(into)) {
        if (pm_error error = put_publisher(into, store::publisher_state::running)) {
            return error;
        }
    }
    pm_error error = encode(item_key(into, path), record, descriptor);
    return error ? error : items_.put(into, path, encoder_.value());
}

pm_error redis_writer::has_item(const branch &in, std::string_view path, bool below, bool *found) {
    std::uint64_t number = 0;
    pm_error error = items_.count(in, path, &number);
    if (!error && number == 0 && below) {
        error = items_.count_below(in, store::prefix_below(path), &number);
    }
    *found = number > 0;
    return error;
}

pm_error redis_writer::remove_item(const branch &from, std::string_view path, std::uint64_t *removed) {
    pm_error error = refresh();
    return error ? error : items_.remove(from, path, removed);
}

pm_error redis_writer::remove_below(const branch &from, std::string_view path, std::uint64_t *removed) {
    pm_error error = refresh();
    return error ? error : items_.remove_below(from, store::prefix_below(path), removed);
}

// One step for everything: the directory's entries are noted after the branches have changed.
pm_error redis_writer::commit_to_server(const commit_plan &plan) {
    change_set all = plan.state;
    for (const auto &[named, each] : plan.branches) {
        all.append(each.changes);
        if (each.is_listed) {
            all.commands.add_note("ZCARD", names_.of(named, branch_part::items), names_.of(state_part::branches),
                                  branch_name(named));
        }
    }
    return all.staged.empty() ? run_transaction(&client_, &lock_, all) : run_script(&client_, &lock_, all);
}

pm_error redis_writer::commit() {
    commit_plan plan;
    router_.add_to(&plan, directory_, lock_.token());
    if (pm_error error = items_.finish(&plan)) {
        return error;
    }
    pm_error error = is_cluster_ || client_.was_redirected() ? commit_to_cluster(&client_, names_, &lock_, plan)
                                                             : commit_to_server(plan);
    if (!error) {
        items_.forget();
    }
    return error;
}

}  // namespace

pm_error open_writer(const std::string &url, store::missing_store missing, std::unique_ptr<store::writer> *out) {
    redis_url parsed;
    if (pm_error error = parse_url(url, &parsed)) {
        return {OPSTORE_NO_CLIENT, "the store's URL: " + error.text()};
    }
    auto opened = std::make_unique<redis_writer>(std::move(parsed));
    if (pm_error error = opened->begin(missing)) {
        return error;
    }
    *out = std::move(opened);
    return {};
}

}  // namespace redis_store
