// See dataset_loader.h.
#include "perf-store/datasets/dataset_loader.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "perf-store/command_line/progress.h"
#include "perf-store/datasets/dataset_names.h"
#include "perf-store/datasets/document_stream.h"
#include "perf-store/datasets/record_shape.h"
#include "perf-store/datasets/value_text.h"
#include "platform/inventory.h"
#include "platform/local/store/local_store_records.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

namespace {

constexpr char NODE_NUMBER[] = "N";
constexpr char NUMBER[] = "U";
constexpr std::size_t MAX_MEMBERS = 8;  // of an object beside records

// A failure of the store, not of the input.
class store_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace

// The members of an object whose names are fixed. Reading it refuses unknown and repeated names.
class dataset_loader::members {
public:
    members(dataset_loader *loader, const json_node &node, std::initializer_list<const char *> names)
        : loader_(loader), node_(node), count_(names.size()) {
        std::copy(names.begin(), names.end(), names_.begin());
        loader->reader_.require(node, json_kind::object);
        const json_node *member = loader->document_.inside(node);
        for (std::uint32_t i = 0; i < node.count; ++i) {
            const json_node *&place = values_[index_of(*member)];
            if (place != nullptr) {
                fail_at(*member, "given twice");
            }
            place = member + 1;
            member = loader->document_.behind(*place);
        }
    }

    // Calls read(value) when the member is there, with the path naming it.
    template <class Read>
    void optional(const char *name, Read read) const {
        if (const json_node *value = find(name); value != nullptr) {
            loader_->path_.enter(std::string_view(name));
            read(*value);
            loader_->path_.leave();
        }
    }

    template <class Read>
    void required(const char *name, Read read) const {
        if (find(name) == nullptr) {
            loader_->path_.enter(std::string_view(name));
            loader_->reader_.fail(node_, "is missing");
        }
        optional(name, read);
    }

private:
    [[nodiscard]] std::size_t index_of(const json_node &member) const {
        for (std::size_t i = 0; i < count_; ++i) {
            if (member.text == names_[i]) {
                return i;
            }
        }
        fail_at(member, "unknown member");
    }

    [[nodiscard]] const json_node *find(const char *name) const {
        for (std::size_t i = 0; i < count_; ++i) {
            if (std::strcmp(name, names_[i]) == 0) {
                return values_[i];
            }
        }
        return nullptr;
    }

    [[noreturn]] void fail_at(const json_node &member, const char *what) const {
        loader_->path_.enter(member.text);
        loader_->reader_.fail(member, what);
    }

    dataset_loader *loader_;
    const json_node &node_;
    std::size_t count_;
    std::array<const char *, MAX_MEMBERS> names_{};
    std::array<const json_node *, MAX_MEMBERS> values_{};
};

std::string dataset_loader::load(const std::string &file) {
    document_stream in(file);
    progress progress("loading", in.problem().empty() ? in.bytes_in_all() : 0);
    for (;;) {
        switch (in.next(&document_)) {
        case stream_result::end: return "";
        case stream_result::failure: return in.problem();
        case stream_result::document: break;
        }
        path_.clear();
        memory_.reset();
        try {
            load_object();
        } catch (const input_error &error) {
            return in.place(error.offset()) + error.what();
        } catch (const store_error &error) {
            return std::string("perf-store: ") + error.what();
        }
        progress.advance(items_, in.bytes_read());
    }
}

void dataset_loader::stored(const pm_error &error) {
    if (error) {
        throw store_error(error.text());
    }
}

void dataset_loader::load_object() {
    struct object {
        const char *word;
        void (dataset_loader::*load)(const json_node &);
    };
    static constexpr object OBJECTS[] = {
        {"dataset", &dataset_loader::load_dataset}, {"platform", &dataset_loader::load_platform},
        {"node", &dataset_loader::load_node},       {"interface", &dataset_loader::load_interface},
        {"item", &dataset_loader::load_item},       {"publisher", &dataset_loader::load_publisher},
    };
    const json_node &root = document_.root();
    reader_.require(root, json_kind::object);
    if (root.count != 1) {
        reader_.fail(root, "an object of a data set has exactly one key");
    }
    const json_node *key = document_.inside(root);
    path_.enter(key->text);
    const object *known = find_word(OBJECTS, key->text);
    if (known == nullptr) {
        reader_.fail(*key, "unknown object");
    }
    (this->*known->load)(key[1]);
}

std::uint32_t dataset_loader::read_u32(const json_node &node) {
    return static_cast<std::uint32_t>(reader_.read_unsigned(node, 0xFFFFFFFF, NUMBER));
}

std::uint32_t *dataset_loader::keep_u32(const json_node &node) {
    auto *kept = reinterpret_cast<std::uint32_t *>(memory_.allocate(sizeof(std::uint32_t)));
    *kept = static_cast<std::uint32_t>(reader_.read_unsigned(node, 0xFFFFFFFF, NODE_NUMBER));
    return kept;
}

const char *dataset_loader::keep_text(const json_node &node) {
    const std::string_view text = reader_.read_text(node);
    std::uint8_t *kept = memory_.allocate(text.size() + 1);
    std::memcpy(kept, text.data(), text.size());
    return reinterpret_cast<const char *>(kept);
}

store::root dataset_loader::read_root(const json_node &node) {
    const store::root_name *known = find_word(store::ROOTS, reader_.read_text(node));
    if (known == nullptr) {
        reader_.fail(node, "unknown root " + excerpt(node.text));
    }
    return known->id;
}

std::string_view dataset_loader::read_path(const json_node &node) {
    const std::string_view path = reader_.read_text(node);
    if (path.empty()) {
        reader_.fail(node, "an empty path");
    }
    if (path.front() == '/') {
        reader_.fail(node, "a path begins below its branch, without '/'");
    }
    if (path.size() > store::MAX_PATH_LENGTH) {
        reader_.fail(node, std::to_string(path.size()) + " bytes are too long for a path; the longest has " +
                               std::to_string(store::MAX_PATH_LENGTH));
    }
    return path;
}

void dataset_loader::load_dataset(const json_node &node) {
    members(this, node, {"version"}).required("version", [&](const json_node &value) {
        if (const std::uint32_t version = read_u32(value); version != DATASET_VERSION) {
            reader_.fail(value, "version " + std::to_string(version) + " is not known; this is version " +
                                    std::to_string(DATASET_VERSION));
        }
    });
}

void dataset_loader::load_platform(const json_node &node) {
    local_platform record{};
    const members all(this, node,
                      {"my_node", "router_type", "rp_plus_datapath", "active_rp", "process_group_partners"});
    all.optional("my_node", [&](const json_node &value) { record.MyNode = keep_u32(value); });
    all.optional("router_type", [&](const json_node &value) { record.RouterType = read_u32(value); });
    all.optional("rp_plus_datapath",
                 [&](const json_node &value) { record.RpPlusDatapath = reader_.read_boolean(value) ? 1 : 0; });
    all.optional("active_rp", [&](const json_node &value) { record.ActiveRp = keep_u32(value); });
    all.optional("process_group_partners", [&](const json_node &value) { load_partners(value, &record); });
    stored(writer_->put_platform(&record));
}

void dataset_loader::load_partners(const json_node &node, void *local_platform_record) {
    auto *record = static_cast<local_platform *>(local_platform_record);
    members(this, node, {CENTRAL_SERVICES}).optional(CENTRAL_SERVICES, [&](const json_node &value) {
        auto *partner = reinterpret_cast<local_partner *>(memory_.allocate(sizeof(local_partner)));
        partner->Group = CENTRAL_SERVICES;
        partner->Node = *keep_u32(value);
        record->Partners = {1, partner};
    });
}

void dataset_loader::load_node(const json_node &node) {
    local_node record{};
    local_location location{};
    record.SwState = INVD_SW_STATE_UP;
    const members all(this, node, {"id", "name", "sw_state", "location", "processor"});
    all.required("id", [&](const json_node &value) { record.Id = record.Processor = *keep_u32(value); });
    all.required("name", [&](const json_node &value) { record.Name = keep_text(value); });
    all.optional("sw_state", [&](const json_node &value) { record.SwState = read_u32(value); });
    all.optional("processor", [&](const json_node &value) { record.Processor = *keep_u32(value); });
    all.optional("location", [&](const json_node &value) {
        reader_.require(value, json_kind::array);
        if (value.count != location.Numbers.size()) {
            reader_.fail(value, "a location has three numbers");
        }
        const json_node *each = document_.inside(value);
        for (std::uint32_t i = 0; i < value.count; ++i) {
            path_.enter(i);
            location.Numbers[i] = read_u32(*each);
            path_.leave();
            each = document_.behind(*each);
        }
        record.Location = &location;
    });
    stored(writer_->put_node(record.Id, &record));
}

void dataset_loader::load_interface(const json_node &node) {
    local_interface record{};
    std::uint32_t handle = 0;
    const members all(this, node, {"handle", "name"});
    all.required("handle", [&](const json_node &value) { handle = read_u32(value); });
    all.required("name", [&](const json_node &value) { record.Name = keep_text(value); });
    stored(writer_->put_interface(handle, &record));
}

void dataset_loader::load_item(const json_node &node) {
    store::root root{};
    std::uint32_t node_id = 0;
    std::string_view path;
    const parcel_descriptor *type = nullptr;
    const members all(this, node, {"root", "node", "path", "type", "record"});
    all.required("root", [&](const json_node &value) { root = read_root(value); });
    all.required("node", [&](const json_node &value) { node_id = *keep_u32(value); });
    all.required("path", [&](const json_node &value) { path = read_path(value); });
    all.required("type", [&](const json_node &value) {
        type = pm_find_descriptor(reader_.read_text(value));
        if (type == nullptr) {
            reader_.fail(value, "unknown record type " + excerpt(value.text));
        }
    });
    all.required("record", [&](const json_node &value) {
        reader_.require(value, json_kind::object);
        const void *record = reader_.read(value, shape_of(type).record());
        const pm_error error = writer_->put_item({root, node_id}, path, record, type);
        if (error.code() == ERRCODE_RANGE) {
            reader_.fail(value, store::TOO_DEEP);
        }
        stored(error);
    });
    ++items_;
}

void dataset_loader::load_publisher(const json_node &node) {
    store::root root{};
    std::uint32_t node_id = 0;
    const state_name *state = nullptr;
    const members all(this, node, {"root", "node", "state"});
    all.required("root", [&](const json_node &value) { root = read_root(value); });
    all.required("node", [&](const json_node &value) { node_id = *keep_u32(value); });
    all.required("state", [&](const json_node &value) {
        state = find_word(PUBLISHER_STATES, reader_.read_text(value));
        if (state == nullptr) {
            reader_.fail(value, "unknown state " + excerpt(value.text));
        }
    });
    stored(writer_->put_publisher({root, node_id}, state->state));
}

}  // namespace perf_store
