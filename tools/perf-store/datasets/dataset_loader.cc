// SPDX-License-Identifier: Apache-2.0
// Reads the objects of a data set, one kind after the other, and puts each into the store.
#include "perf-store/datasets/dataset_loader.h"

#include "perf-store/datasets/dataset_names.h"
#include "perf-store/datasets/message_text.h"
#include "perf-store/datasets/nearest_type.h"
#include "perf-store/datasets/nearest_word.h"
#include "perf-store/datasets/progress_line.h"
#include "platform/inventory.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

namespace {

constexpr char NODE_NUMBER[] = "N";  // types of numbers in messages
constexpr char NUMBER[] = "U";
constexpr std::uint64_t MAX_U32 = 0xFFFFFFFF;

}  // namespace

pm_error dataset_loader::load(const std::string &file) {
    document_stream in(file);
    stream_ = &in;
    given_.clear();
    progress_line progress("loading", in.bytes_in_all());
    for (;;) {
        bool found = false;
        if (const pm_error failed = load_directly(&in, &found)) {
            return pm_error("perf-store: " + failed.text());
        }
        if (found) {
            progress.advance(items_, in.bytes_read());
            continue;
        }
        pm_error unreadable = in.next(&document_, &found);
        if (unreadable || !found) {
            return unreadable;
        }
        path_.clear();
        if (const pm_error error = load_object()) {
            return pm_error((store_failed_ ? "perf-store: " : in.place(path_.error_offset())) + error.text());
        }
        progress.advance(items_, in.bytes_read());
    }
}

// Loads what comes next, if that can be done without a look at its JSON as a whole. The error is the store's.
pm_error dataset_loader::load_directly(document_stream *in, bool *loaded) {
    direct_objects::object object;
    do {
        memory_.reset();
        object = direct_.read(in->rest());
    } while (object.index() == 0 && direct_.was_cut() && in->extend());
    if (object.index() == 0) {
        return {};
    }
    const pm_error failed = put_directly(object);
    *loaded = failed.code() != ERRCODE_RANGE;  // a record that is nested too deeply is refused with its place
    if (*loaded) {
        in->take(direct_.length());
    }
    return *loaded ? failed : pm_error();
}

pm_error dataset_loader::put_directly(const direct_objects::object &object) {
    if (const auto *const interface = std::get_if<direct_interface>(&object)) {
        return into_.put_interface(interface->handle, &interface->record);
    }
    const auto &item = std::get<direct_item>(object);
    pm_error failed = into_.put_item(item.into, item.path, item.record, item.type);
    items_ += failed ? 0 : 1;
    return failed;
}

pm_error dataset_loader::stored(const pm_error &error) {
    store_failed_ = static_cast<bool>(error);
    return error;
}

pm_error dataset_loader::load_object() {
    struct object_kind {
        const char *word;
        pm_error (dataset_loader::*load)(const json_node &);
    };
    static constexpr object_kind KINDS[] = {
        {"dataset", &dataset_loader::load_dataset}, {"platform", &dataset_loader::load_platform},
        {"node", &dataset_loader::load_node},       {"interface", &dataset_loader::load_interface},
        {"item", &dataset_loader::load_item},       {"publisher", &dataset_loader::load_publisher},
    };
    const json_node &root = document_.root();
    if (pm_error error = reader_.require(root, json_kind::object)) {
        return error;
    }
    if (root.count != 1) {
        return reader_.refuse(root, "an object of a data set has exactly one key");
    }
    const json_node *key = document_.inside(root);
    path_.enter(key->text);
    const object_kind *kind = find_word(KINDS, key->text);
    return kind == nullptr ? reader_.refuse(*key, "unknown object" +
                                                      did_you_mean(key->text, KINDS,
                                                                   [](const object_kind &each) { return each.word; }))
                           : (this->*kind->load)(key[1]);
}

pm_error dataset_loader::load_dataset(const json_node &node) {
    object_members members = members_of(node, {"version"});
    members.required("version", [&](const json_node &value) {
        std::uint32_t version = DATASET_VERSION;
        pm_error error = read_u32(value, NUMBER, &version);
        return error || version == DATASET_VERSION
                   ? error
                   : reader_.refuse(value, "version " + std::to_string(version) + " is not known; this is version " +
                                               std::to_string(DATASET_VERSION));
    });
    return members.error();
}

pm_error dataset_loader::load_platform(const json_node &node) {
    local_platform record{};
    object_members members =
        members_of(node, {"my_node", "router_type", "rp_plus_datapath", "active_rp", "process_group_partners"});
    members.optional("my_node", [&](const json_node &value) { return keep_u32(value, &record.MyNode); });
    members.optional("router_type",
                     [&](const json_node &value) { return read_u32(value, NUMBER, &record.RouterType); });
    members.optional("rp_plus_datapath", [&](const json_node &value) {
        bool forwards = false;
        pm_error error = reader_.read_boolean(value, &forwards);
        record.RpPlusDatapath = forwards ? 1 : 0;
        return error;
    });
    members.optional("active_rp", [&](const json_node &value) { return keep_u32(value, &record.ActiveRp); });
    members.optional("process_group_partners",
                     [&](const json_node &value) { return read_partners(value, &record.Partners); });
    return members.error() ? members.error() : stored(into_.put_platform(&record));
}

pm_error dataset_loader::load_node(const json_node &node) {
    local_node record{};
    record.SwState = INVD_SW_STATE_UP;
    object_members members = members_of(node, {"id", "name", "sw_state", "location", "processor"});
    members.required("id", [&](const json_node &value) { return read_new_node(value, &record.Id); });
    record.Processor = record.Id;
    members.required("name", [&](const json_node &value) { return reader_.keep_text(value, &record.Name); });
    members.optional("sw_state", [&](const json_node &value) { return read_u32(value, NUMBER, &record.SwState); });
    members.optional("processor",
                     [&](const json_node &value) { return read_u32(value, NODE_NUMBER, &record.Processor); });
    members.optional("location", [&](const json_node &value) { return read_location(value, &record.Location); });
    ++nodes_;
    return members.error() ? members.error() : stored(into_.put_node(record.Id, &record));
}

pm_error dataset_loader::load_interface(const json_node &node) {
    local_interface record{};
    std::uint32_t handle = 0;
    object_members members = members_of(node, {"handle", "name"});
    members.required("handle", [&](const json_node &value) { return read_u32(value, NUMBER, &handle); });
    members.required("name", [&](const json_node &value) { return reader_.keep_text(value, &record.Name); });
    return members.error() ? members.error() : stored(into_.put_interface(handle, &record));
}

pm_error dataset_loader::load_item(const json_node &node) {
    store::root root{};
    std::uint32_t node_id = 0;
    std::string_view path;
    const parcel_descriptor *type = nullptr;
    object_members members = members_of(node, {"root", "node", "path", "type", "record"});
    members.required("root", [&](const json_node &value) { return read_root(value, &root); });
    members.required("node", [&](const json_node &value) { return read_u32(value, NODE_NUMBER, &node_id); });
    members.required("path", [&](const json_node &value) { return read_path(value, &path); });
    members.required("type", [&](const json_node &value) { return read_type(value, &type); });
    members.required("record", [&](const json_node &value) {
        if (pm_error error = reader_.require(value, json_kind::object)) {
            return error;
        }
        const void *record = nullptr;
        if (pm_error error = reader_.read(value, type, &record)) {
            return error;
        }
        const pm_error refused = into_.put_item({root, node_id}, path, record, type);
        return refused.code() == ERRCODE_RANGE ? reader_.refuse(value, store::TOO_DEEP) : stored(refused);
    });
    ++items_;
    return members.error();
}

pm_error dataset_loader::load_publisher(const json_node &node) {
    store::root root{};
    std::uint32_t node_id = 0;
    store::publisher_state state{};
    object_members members = members_of(node, {"root", "node", "state"});
    members.required("root", [&](const json_node &value) { return read_root(value, &root); });
    members.required("node", [&](const json_node &value) { return read_u32(value, NODE_NUMBER, &node_id); });
    members.required("state", [&](const json_node &value) { return read_state(value, &state); });
    return members.error() ? members.error() : stored(into_.put_publisher({root, node_id}, state));
}

// The id of a node that this set has not given yet.
pm_error dataset_loader::read_new_node(const json_node &node, std::uint32_t *id) {
    if (pm_error error = read_u32(node, NODE_NUMBER, id)) {
        return error;
    }
    const auto [known, is_new] = given_.emplace(*id, stream_->line_of(node.offset));
    return is_new ? pm_error()
                  : reader_.refuse(node, "node " + excerpt(node.text) + " was already given in line " +
                                             std::to_string(known->second));
}

pm_error dataset_loader::read_u32(const json_node &node, const char *type, std::uint32_t *value) {
    std::uint64_t number = 0;
    pm_error error = reader_.read_unsigned(node, MAX_U32, type, &number);
    *value = static_cast<std::uint32_t>(number);
    return error;
}

// A node id that a record points to, as it does to optional fields.
pm_error dataset_loader::keep_u32(const json_node &node, std::uint32_t **value) {
    *value = reinterpret_cast<std::uint32_t *>(memory_.allocate(sizeof(std::uint32_t)));
    return read_u32(node, NODE_NUMBER, *value);
}

pm_error dataset_loader::read_partners(const json_node &node, parcel_array<local_partner> *partners) {
    object_members members = members_of(node, {CENTRAL_SERVICES});
    members.optional(CENTRAL_SERVICES, [&](const json_node &value) {
        auto *partner = reinterpret_cast<local_partner *>(memory_.allocate(sizeof(local_partner)));
        partner->Group = CENTRAL_SERVICES;
        *partners = {1, partner};
        return read_u32(value, NODE_NUMBER, &partner->Node);
    });
    return members.error();
}

pm_error dataset_loader::read_location(const json_node &node, local_location **location) {
    if (pm_error error = reader_.require(node, json_kind::array)) {
        return error;
    }
    auto *kept = reinterpret_cast<local_location *>(memory_.allocate(sizeof(local_location)));
    if (node.count != kept->Numbers.size()) {
        return reader_.refuse(node, "a location has three numbers");
    }
    const json_node *each = document_.inside(node);
    for (std::uint32_t i = 0; i < node.count; ++i) {
        path_.enter(i);
        if (pm_error error = read_u32(*each, NUMBER, &kept->Numbers[i])) {
            return error;
        }
        path_.leave();
        each = document_.after(*each);
    }
    *location = kept;
    return {};
}

pm_error dataset_loader::read_root(const json_node &node, store::root *root) {
    std::string_view word;
    if (pm_error error = reader_.read_text(node, &word)) {
        return error;
    }
    const store::root_name *known = find_word(store::ROOTS, word);
    if (known == nullptr) {
        return reader_.refuse(node, "unknown root " + excerpt(word));
    }
    *root = known->id;
    return {};
}

pm_error dataset_loader::read_path(const json_node &node, std::string_view *path) {
    if (pm_error error = reader_.read_text(node, path)) {
        return error;
    }
    if (path->empty()) {
        return reader_.refuse(node, "an empty path");
    }
    if (path->front() == '/') {
        return reader_.refuse(node, "a path begins below its branch, without '/'");
    }
    if (path->size() > store::MAX_PATH_LENGTH) {
        return reader_.refuse(node, std::to_string(path->size()) + " bytes are too long for a path; the longest has " +
                                        std::to_string(store::MAX_PATH_LENGTH));
    }
    return {};
}

pm_error dataset_loader::read_type(const json_node &node, const parcel_descriptor **type) {
    std::string_view name;
    if (pm_error error = reader_.read_text(node, &name)) {
        return error;
    }
    if (last_type_ == nullptr || name != last_type_->name) {
        last_type_ = pm_find_descriptor(name);
    }
    *type = last_type_;
    return *type == nullptr ? reader_.refuse(node, "unknown record type " + excerpt(name) + nearest_type(name))
                            : pm_error();
}

pm_error dataset_loader::read_state(const json_node &node, store::publisher_state *state) {
    std::string_view word;
    if (pm_error error = reader_.read_text(node, &word)) {
        return error;
    }
    const state_name *known = find_word(PUBLISHER_STATES, word);
    if (known == nullptr) {
        return reader_.refuse(node, "unknown state " + excerpt(word));
    }
    *state = known->state;
    return {};
}

}  // namespace perf_store
