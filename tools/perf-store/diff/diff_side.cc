// SPDX-License-Identifier: Apache-2.0
// Takes the objects of a data set as its loader puts them into a store, and those of a store as its visit gives them.
#include "perf-store/diff/diff_side.h"

#include <algorithm>

#include "perf-store/datasets/dataset_dumper.h"
#include "perf-store/datasets/dataset_lines.h"
#include "perf-store/datasets/dataset_loader.h"
#include "perf-store/datasets/decoded_record.h"
#include "perf-store/datasets/progress_line.h"
#include "perf-store/datasets/store_contents.h"
#include "perf-store/diff/counters.h"
#include "perf-store/diff/object_key.h"
#include "platform/local/back_ends/readers.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/writer.h"

namespace perf_store {

namespace {

class side_filler {
public:
    side_filler(bool with_time_stamps, diff_side *side) : with_time_stamps_(with_time_stamps), side_(*side) {}

    [[nodiscard]] pm_error put_line(const std::string &key) { return side_.objects.put(key, without_end(line_)); }
    // Where the line of an object is to be made.
    [[nodiscard]] std::string *new_line() {
        line_.clear();
        return &line_;
    }
    void put_in_inventory(std::uint32_t node) { side_.inventory.push_back(node); }
    [[nodiscard]] pm_error put_item(const store::branch &branch, std::string_view path, std::string_view parcel) {
        return side_.objects.put(object_key(object_kind::item, branch, path), parcel);
    }
    [[nodiscard]] bool wants_time_stamps() const { return with_time_stamps_; }
    void note_time(std::uint32_t node, const void *record, const parcel_descriptor *type) {
        std::uint64_t &newest = side_.newest[node];
        newest = std::max(newest, newest_time_stamp(record, type));
    }

private:
    static std::string_view without_end(std::string_view line) { return line.substr(0, line.size() - 1); }

    bool with_time_stamps_;
    diff_side &side_;
    std::string line_;
};

// Where a data set is loaded into. What a store would make of it comes out: publishers that run because they have
// items, too.
class set_taker : public store::writer {
public:
    explicit set_taker(side_filler *into) : into_(*into) {}

    pm_error put_platform(const void *record) override {
        return put(object_key(object_kind::platform),
                   append_platform_line(*static_cast<const local_platform *>(record), into_.new_line()));
    }
    pm_error put_node(std::uint32_t id, const void *record) override {
        into_.put_in_inventory(id);
        return put(object_key(object_kind::node, id),
                   append_node_line(*static_cast<const local_node *>(record), into_.new_line()));
    }
    pm_error put_interface(std::uint32_t handle, const void *record) override {
        return put(object_key(object_kind::interface, handle),
                   append_interface_line(handle, *static_cast<const local_interface *>(record), into_.new_line()));
    }
    pm_error put_publisher(const store::branch &served, store::publisher_state state) override {
        publishers_[served] = state;
        return {};
    }
    pm_error put_item(const store::branch &into, std::string_view path, const void *record,
                      const parcel_descriptor *type) override {
        parcel_.clear();
        if (const errcode error = parcel_encode(record, type, &parcel_); error != ERRCODE_SUCCESS) {
            return pm_error(error, error == ERRCODE_RANGE ? store::TOO_DEEP : errcode_strerror(error));
        }
        if (into_.wants_time_stamps()) {
            into_.note_time(into.node, record, type);
        }
        publishers_.try_emplace(into, store::publisher_state::running);
        return into_.put_item(into, path, {reinterpret_cast<const char *>(parcel_.data()), parcel_.size()});
    }

    // Puts the publishers, whose states are known at the end.
    pm_error commit() override {
        for (const auto &[served, state] : publishers_) {
            const pm_error made =
                append_publisher_line(root_name_of(served.data_root).word, served.node, state, into_.new_line());
            if (pm_error error = put(object_key(object_kind::publisher, served), made)) {
                return error;
            }
        }
        return {};
    }

    // A loader has no use for these.
    pm_error clear() override { return unused(); }
    pm_error put_leased_publisher(const store::branch &, std::uint32_t) override { return unused(); }
    pm_error has_item(const store::branch &, std::string_view, bool, bool *) override { return unused(); }
    pm_error remove_item(const store::branch &, std::string_view, std::uint64_t *) override { return unused(); }
    pm_error remove_below(const store::branch &, std::string_view, std::uint64_t *) override { return unused(); }

private:
    static pm_error unused() {
        return pm_error(ERRCODE_INVALID_ARGUMENT, "a data set that is compared is not changed");
    }
    [[nodiscard]] pm_error put(const std::string &key, const pm_error &made) {
        return made ? made : into_.put_line(key);
    }

    side_filler &into_;
    std::vector<std::uint8_t> parcel_;
    std::map<store::branch, store::publisher_state> publishers_;
};

// Takes a store's objects. One that a dump would refuse is refused with the dump's words.
class store_taker : public store_visitor {
public:
    explicit store_taker(side_filler *into) : into_(*into) {}

    pm_error platform(std::string_view parcel) override {
        return put(object_key(object_kind::platform), append_stored_platform(parcel, into_.new_line()));
    }
    pm_error node(std::string_view parcel) override {
        if (pm_error error = append_stored_node(parcel, into_.new_line())) {
            return error;
        }
        const std::uint32_t id = decoded_record(parcel, local_node_descriptor()).as<local_node>().Id;
        into_.put_in_inventory(id);
        return into_.put_line(object_key(object_kind::node, id));
    }
    pm_error interface(std::uint32_t handle, std::string_view parcel) override {
        return put(object_key(object_kind::interface, handle),
                   append_stored_interface(handle, parcel, into_.new_line()));
    }
    pm_error publisher(const item_place &branch, std::string_view parcel, store::kept_lease lease) override {
        return put(object_key(object_kind::publisher, {branch.root.id, branch.node}),
                   append_stored_publisher(branch, parcel, lease, into_.new_line()));
    }
    pm_error item(const item_place &item, std::string_view parcel) override {
        progress_.advance(++items_, 0);
        const std::string what = describe_item(item);
        const parcel_descriptor *type = nullptr;
        if (pm_error error = find_stored_type(what, parcel, &type)) {
            return error;
        }
        if (into_.wants_time_stamps()) {
            const decoded_record record(parcel, type);
            if (record.code() != ERRCODE_SUCCESS) {
                return pm_error(record.code(), what + ": " + errcode_strerror(record.code()));
            }
            into_.note_time(item.node, record.data(), type);
        }
        return into_.put_item({item.root.id, item.node}, item.path, parcel);
    }

private:
    [[nodiscard]] pm_error put(const std::string &key, const pm_error &made) {
        return made ? made : into_.put_line(key);
    }

    side_filler &into_;
    std::uint64_t items_ = 0;
    progress_line progress_{"reading", 0};
};

pm_error of_the_program(const pm_error &error) { return error ? pm_error("perf-store: " + error.text()) : pm_error(); }

pm_error read_objects(const diff_source &source, side_filler *filler) {
    if (source.configured || store::is_store_url(source.name)) {
        store_taker from_store(filler);
        return of_the_program(source.configured ? visit_store({}, &from_store)
                                                : visit_store_at(source.name, &from_store));
    }
    set_taker from_set(filler);
    dataset_loader loader(&from_set);
    if (pm_error error = loader.load(source.name)) {
        return error;
    }
    return of_the_program(from_set.commit());
}

}  // namespace

pm_error read_side(const diff_source &source, bool with_time_stamps, diff_side *side) {
    side_filler filler(with_time_stamps, side);
    if (pm_error error = read_objects(source, &filler)) {
        return error;
    }
    return of_the_program(side->objects.finish());
}

}  // namespace perf_store
