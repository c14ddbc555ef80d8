// SPDX-License-Identifier: Apache-2.0
// Records into commands that take effect in one step.
#include "platform/local/redis_store/redis_writer.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "platform/local/codec/parcel_codec.h"
#include "platform/local/redis_store/directory.h"
#include "platform/local/redis_store/staged_items.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"
#include "platform/local/store/record_encoder.h"
#include "platform/local/store/record_key.h"
#include "platform/local/store/seal.h"

namespace redis_store {

namespace {

using store::branch;
using store::key_space;

constexpr std::size_t FIELDS_AT_ONCE = 100;

struct sealed_publisher {
    std::string value;
    std::uint32_t lease_msec;  // 0: none
};

class redis_writer final : public store::writer {
public:
    explicit redis_writer(redis_url url)
        : names_(url.prefix),
          client_(std::move(url)),
          lock_(&client_, names_.lock()),
          directory_(&client_, &names_),
          items_(&client_, &names_, &lock_) {}

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
    [[nodiscard]] pm_error encode(const std::string &key, const void *record, const parcel_descriptor *descriptor,
                                  std::string *value);
    [[nodiscard]] pm_error check_policy();
    [[nodiscard]] pm_error read_inventory();
    [[nodiscard]] pm_error refresh();
    void add_cleared(command_list *changes) const;
    void add_state(command_list *changes) const;
    void add_hash(state_part part, const std::map<std::string, std::string> &fields, command_list *changes) const;

    key_names names_;
    client client_;
    writer_lock lock_;
    directory directory_;
    staged_items items_;
    store::record_encoder encoder_;
    bool cleared_ = false;
    std::optional<std::string> platform_;
    std::vector<std::uint32_t> node_ids_;         // by position
    std::map<std::uint32_t, std::string> nodes_;  // to put, by position
    std::map<std::string, std::string> interfaces_;
    std::map<std::string, std::string> schemas_;
    std::map<branch, sealed_publisher> publishers_;
    std::set<branch> served_;  // that have a publisher
};

// The server must not throw keys away to make room for others.
pm_error redis_writer::check_policy() {
    pipeline question;
    question.add({"INFO", "memory"});
    plain_answer info(1);
    answer *const all[] = {&info};
    const pm_error error = client_.exchange(question, all, repetition::allowed);
    if (error) {
        return info.refusal().starts_with("NOPERM") ? pm_error() : error;  // a user who may not ask
    }
    constexpr std::string_view POLICY = "maxmemory_policy:";
    const std::size_t at = info.text().find(POLICY);
    const std::string policy =
        at == std::string::npos
            ? "noeviction"
            : info.text().substr(at + POLICY.size(), info.text().find('\r', at) - at - POLICY.size());
    return policy == "noeviction"
               ? pm_error()
               : pm_error(client_.describe("the server may evict keys (maxmemory-policy " + policy + ")"));
}

pm_error redis_writer::begin(store::missing_store missing) {
    if (pm_error error = check_policy()) {
        return error;
    }
    if (pm_error error = lock_.take()) {
        return error;
    }
    if (pm_error error = directory_.read()) {
        return error;
    }
    if (!directory_.is_store() && missing == store::missing_store::refuse) {
        return pm_error(OPSTORE_NO_CLIENT);
    }
    for (const known_branch &each : directory_.branches()) {
        served_.insert(each.named);
        items_.add_known(each.named);
    }
    return missing == store::missing_store::replace ? clear() : read_inventory();
}

pm_error redis_writer::read_inventory() {
    for (const std::string &each : directory_.nodes()) {
        const auto position = static_cast<std::uint32_t>(node_ids_.size());
        const std::string_view parcel = store::unseal(store::key(key_space::node, position), each);
        local_node node{};
        const errcode code =
            parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), &node, local_node_descriptor());
        if (code != ERRCODE_SUCCESS) {
            return {code, client_.describe(std::string("the inventory cannot be read: ") + errcode_strerror(code))};
        }
        node_ids_.push_back(node.Id);
        parcel_free_indirections(&node, local_node_descriptor());
    }
    return {};
}

pm_error redis_writer::encode(const std::string &key, const void *record, const parcel_descriptor *descriptor,
                              std::string *value) {
    if (pm_error error = encoder_.encode(key, record, descriptor)) {
        return error;
    }
    if (encoder_.is_new_type(descriptor)) {
        schemas_[hexadecimal(parcel_fingerprint(descriptor), 16)] = descriptor->schema;
    }
    *value = encoder_.value();
    return refresh();
}

// Keeps what would expire: the lock, and what is staged.
pm_error redis_writer::refresh() {
    if (!lock_.is_due()) {
        return {};
    }
    pm_error error = lock_.refresh();
    return error ? error : items_.prolong();
}

pm_error redis_writer::clear() {
    cleared_ = true;
    platform_.reset();
    node_ids_.clear();
    nodes_.clear();
    interfaces_.clear();
    schemas_.clear();
    publishers_.clear();
    served_.clear();
    encoder_.forget_types();
    return items_.clear();
}

pm_error redis_writer::put_platform(const void *local_platform_record) {
    return encode(store::key(key_space::platform), local_platform_record, local_platform_descriptor(),
                  &platform_.emplace());
}

pm_error redis_writer::put_node(std::uint32_t id, const void *local_node_record) {
    const auto place =
        static_cast<std::uint32_t>(std::find(node_ids_.begin(), node_ids_.end(), id) - node_ids_.begin());
    if (place == node_ids_.size()) {
        node_ids_.push_back(id);
    }
    return encode(store::key(key_space::node, place), local_node_record, local_node_descriptor(), &nodes_[place]);
}

pm_error redis_writer::put_interface(std::uint32_t handle, const void *local_interface_record) {
    return encode(store::key(key_space::interface, handle), local_interface_record, local_interface_descriptor(),
                  &interfaces_[hexadecimal(handle, 8)]);
}

pm_error redis_writer::put_publisher(const branch &served, store::publisher_state state) {
    served_.insert(served);
    const local_publisher record{static_cast<std::uint32_t>(state), nullptr};
    sealed_publisher &put = publishers_[served];
    put.lease_msec = 0;
    return encode(branch_key(key_space::publisher, served), &record, local_publisher_descriptor(), &put.value);
}

// The server's own expiry ends the lease; the record tells that there is one.
pm_error redis_writer::put_leased_publisher(const branch &served, std::uint32_t lease_msec) {
    served_.insert(served);
    local_lease lease{"", lease_msec};
    const local_publisher record{static_cast<std::uint32_t>(store::publisher_state::running), &lease};
    sealed_publisher &put = publishers_[served];
    put.lease_msec = lease_msec;
    return encode(branch_key(key_space::publisher, served), &record, local_publisher_descriptor(), &put.value);
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
    std::string value;
    pm_error error = encode(item_key(into, path), record, descriptor, &value);
    return error ? error : items_.put(into, path, value);
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

void redis_writer::add_cleared(command_list *changes) const {
    for (const known_branch &each : directory_.branches()) {
        changes->add({"UNLINK", names_.of(each.named, branch_part::items),
                      names_.of(each.named, branch_part::publisher), names_.of(each.named, branch_part::lease)});
    }
    for (const state_part part :
         {state_part::marks, state_part::nodes, state_part::branches, state_part::interfaces, state_part::schemas}) {
        changes->add({"UNLINK", names_.of(part)});
    }
}

void redis_writer::add_hash(state_part part, const std::map<std::string, std::string> &fields,
                            command_list *changes) const {
    std::vector<std::string> words;
    for (const auto &[field, value] : fields) {
        if (words.empty()) {
            words = {"HSET", names_.of(part)};
        }
        words.insert(words.end(), {field, value});
        if (words.size() >= 2 * FIELDS_AT_ONCE) {
            changes->add(std::move(words));
            words.clear();
        }
    }
    if (!words.empty()) {
        changes->add(std::move(words));
    }
}

void redis_writer::add_state(command_list *changes) const {
    std::map<std::string, std::string> marks = {{"F", STORE_FORMAT}, {"V", std::to_string(directory_.version() + 1)}};
    if (platform_) {
        marks["P"] = *platform_;
    }
    add_hash(state_part::marks, marks, changes);
    add_hash(state_part::interfaces, interfaces_, changes);
    add_hash(state_part::schemas, schemas_, changes);
    std::uint32_t length = cleared_ ? 0 : static_cast<std::uint32_t>(directory_.nodes().size());
    for (const auto &[position, value] : nodes_) {
        if (position < length) {
            changes->add({"LSET", names_.of(state_part::nodes), std::to_string(position), value});
        } else {
            changes->add({"RPUSH", names_.of(state_part::nodes), value});
            ++length;
        }
    }
    for (const auto &[served, record] : publishers_) {
        const std::string lease = names_.of(served, branch_part::lease);
        changes->add({"SET", names_.of(served, branch_part::publisher), record.value});
        if (record.lease_msec > 0) {
            changes->add({"SET", lease, lock_.token(), "PX", std::to_string(record.lease_msec)});
        } else {
            changes->add({"DEL", lease});
        }
        changes->add({"HSETNX", names_.of(state_part::branches), branch_name(served), NO_ITEMS});
    }
}

pm_error redis_writer::commit() {
    std::vector<expected_set> staged;
    command_list changes;
    pipeline typed;
    if (cleared_) {
        add_cleared(&changes);
    }
    typed.add({"HLEN", names_.of(state_part::interfaces)});
    typed.add({"HLEN", names_.of(state_part::schemas)});
    if (pm_error error = items_.finish(&staged, &changes, &typed)) {
        return error;
    }
    add_state(&changes);
    pm_error error = staged.empty() ? run_transaction(&client_, &lock_, typed, changes)
                                    : run_script(&client_, &lock_, typed, staged, changes);
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
