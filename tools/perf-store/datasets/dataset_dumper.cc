// See dataset_dumper.h.
#include "perf-store/datasets/dataset_dumper.h"

#include <cstring>
#include <stdexcept>
#include <vector>

#include "perf-store/command_line/progress.h"
#include "perf-store/datasets/dataset_names.h"
#include "perf-store/datasets/record_shape.h"
#include "perf-store/datasets/record_writer.h"
#include "perf-store/datasets/store_reader.h"
#include "perf-store/datasets/value_text.h"
#include "platform/local/codec/parcel_codec.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

namespace {

// A decoded parcel, freed at its end.
class decoded {
public:
    decoded(std::string_view parcel, const parcel_descriptor *descriptor)
        : descriptor_(descriptor),
          bytes_(descriptor->layout[0].size / sizeof(std::uint64_t) + 1),
          code_(parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), bytes_.data(), descriptor)) {}
    ~decoded() { parcel_free_indirections(bytes_.data(), descriptor_); }
    decoded(const decoded &) = delete;
    decoded &operator=(const decoded &) = delete;

    [[nodiscard]] errcode code() const { return code_; }
    [[nodiscard]] const void *data() const { return bytes_.data(); }
    template <class Record>
    [[nodiscard]] const Record &as() const {
        return *static_cast<const Record *>(data());
    }

private:
    const parcel_descriptor *descriptor_;
    std::vector<std::uint64_t> bytes_;
    errcode code_;
};

// Decodes a record and passes it to `use`, which appends its line to `out`; a failure names the object and
// leaves no part of the line.
template <class Use>
std::string with_record(const std::string &what, std::string_view parcel, const parcel_descriptor *descriptor,
                        std::string *out, Use use) {
    const decoded record(parcel, descriptor);
    if (record.code() != ERRCODE_SUCCESS) {
        return what + ": " + errcode_strerror(record.code());
    }
    const std::size_t begin = out->size();
    try {
        return use(record);
    } catch (const std::runtime_error &problem) {
        out->resize(begin);
        return what + ": " + problem.what();
    }
}

class dumper {
public:
    dumper(const dump_filter &filter, output_file *out) : filter_(filter), out_(*out), line_(out->buffer()) {}

    std::string run() {
        line_ += "{\"dataset\":{\"version\":";
        append_number(DATASET_VERSION, &line_);
        line_ += "}}\n";
        std::string problem;
        if (filter_.everything()) {
            problem =
                each(store::key_space::platform, [this](auto key, auto value) { return dump_platform(key, value); });
            and_then(&problem, store::key_space::node, [this](auto key, auto value) { return dump_node(key, value); });
            and_then(&problem, store::key_space::interface,
                     [this](auto key, auto value) { return dump_interface(key, value); });
        }
        dump_branches(&problem, store::key_space::publisher,
                      [this](auto key, auto value) { return dump_publisher(key, value); });
        dump_branches(&problem, store::key_space::item, [this](auto key, auto value) { return dump_item(key, value); });
        return problem;
    }

    // Keys seen, of whatever kind.
    [[nodiscard]] std::size_t keys() const { return keys_; }

private:
    template <class Dump>
    std::string for_each(std::string_view prefix, Dump dump) {
        return for_each_key(prefix, [&](std::string_view key, std::string_view parcel) {
            ++keys_;
            return dump(key, parcel);
        });
    }

    template <class Dump>
    std::string each(store::key_space space, Dump dump) {
        return for_each(store::key(space), dump);
    }

    template <class Dump>
    void and_then(std::string *problem, store::key_space space, Dump dump) {
        if (problem->empty()) {
            *problem = each(space, dump);
        }
    }

    // The keys of all selected branches, by root and node.
    template <class Dump>
    void dump_branches(std::string *problem, store::key_space space, Dump dump) {
        for (const store::root_name &root : store::ROOTS) {
            if (!problem->empty() || (filter_.root && *filter_.root != root.id)) {
                continue;
            }
            std::string prefix = store::key(space) + static_cast<char>(root.id);
            if (filter_.node) {
                prefix = store::branch_key(space, root.id, *filter_.node);
                if (space == store::key_space::item) {
                    prefix += filter_.path_prefix;
                }
            }
            *problem = for_each(prefix, dump);
        }
    }

    void begin_object(const char *name) {
        line_ += "{\"";
        line_ += name;
        line_ += "\":{";
        first_ = true;
    }
    void begin_member(const char *name) {
        line_ += first_ ? "\"" : ",\"";
        line_ += name;
        line_ += "\":";
        first_ = false;
    }
    void add_number(const char *name, std::uint32_t value) {
        begin_member(name);
        append_number(value, &line_);
    }
    void add_text(const char *name, std::string_view text) {
        begin_member(name);
        if (!append_json_text(text, &line_)) {
            throw std::runtime_error("a text is not UTF-8");
        }
    }
    std::string end_object() {
        line_ += "}}\n";
        return out_.flush_when_full();
    }

    std::string dump_platform(std::string_view /*key*/, std::string_view value) {
        return with_record("platform", value, local_platform_descriptor(), &line_, [&](const decoded &decoded) {
            const auto &record = decoded.as<local_platform>();
            begin_object("platform");
            if (record.MyNode != nullptr) {
                add_number("my_node", *record.MyNode);
            }
            add_number("router_type", record.RouterType);
            begin_member("rp_plus_datapath");
            line_ += record.RpPlusDatapath != 0 ? "true" : "false";
            if (record.ActiveRp != nullptr) {
                add_number("active_rp", *record.ActiveRp);
            }
            if (record.Partners.count != 0) {
                begin_member("process_group_partners");
                line_ += '{';
                first_ = true;
                for (const local_partner &partner : record.Partners) {
                    if (partner.Group == nullptr || std::strcmp(partner.Group, CENTRAL_SERVICES) != 0) {
                        throw std::runtime_error("unknown process group");
                    }
                    add_number(CENTRAL_SERVICES, partner.Node);
                }
                line_ += '}';
            }
            return end_object();
        });
    }

    std::string dump_node(std::string_view /*key*/, std::string_view value) {
        return with_record("node", value, local_node_descriptor(), &line_, [&](const decoded &decoded) {
            const auto &record = decoded.as<local_node>();
            begin_object("node");
            add_number("id", record.Id);
            add_text("name", record.Name != nullptr ? record.Name : "");
            add_number("sw_state", record.SwState);
            if (record.Location != nullptr) {
                begin_member("location");
                for (std::size_t i = 0; i < record.Location->Numbers.size(); ++i) {
                    line_ += i == 0 ? '[' : ',';
                    append_number(record.Location->Numbers[i], &line_);
                }
                line_ += ']';
            }
            add_number("processor", record.Processor);
            return end_object();
        });
    }

    std::string dump_interface(std::string_view key, std::string_view value) {
        return with_record("interface", value, local_interface_descriptor(), &line_, [&](const decoded &decoded) {
            const char *name = decoded.as<local_interface>().Name;
            begin_object("interface");
            add_number("handle", parse_number(key.substr(1)));
            add_text("name", name != nullptr ? name : "");
            return end_object();
        });
    }

    std::string dump_publisher(std::string_view key, std::string_view value) {
        const item_key branch = parse_item_key(key);
        return with_record("publisher", value, local_publisher_descriptor(), &line_, [&](const decoded &decoded) {
            const auto state = static_cast<store::publisher_state>(decoded.as<local_publisher>().State);
            const char *word = nullptr;
            for (const state_name &each : PUBLISHER_STATES) {
                word = each.state == state ? each.word : word;
            }
            if (word == nullptr) {
                throw std::runtime_error("unknown state");
            }
            begin_object("publisher");
            add_text("root", branch.root.word);
            add_number("node", branch.node);
            add_text("state", word);
            return end_object();
        });
    }

    std::string dump_item(std::string_view key, std::string_view value) {
        const item_key item = parse_item_key(key);
        if (!item.path.starts_with(filter_.path_prefix)) {
            return "";
        }
        progress_.advance(++items_, 0);
        std::string problem = append_item(item, value, json_fields::set, &line_);
        return problem.empty() ? out_.flush_when_full() : problem;
    }

    const dump_filter &filter_;
    output_file &out_;
    std::string &line_;
    bool first_ = true;
    std::uint64_t items_ = 0;
    std::size_t keys_ = 0;
    progress progress_{"dumping", 0};
};

}  // namespace

namespace {

// How many keys the store holds, and in which state.
struct store_extent {
    std::size_t entries = 0;
    std::size_t transaction = 0;
};

store_extent extent_of(store::environment *store) {
    store_extent extent;
    static_cast<void>(store->read([&](const store::view &state) {  // a failure shows in the dump itself
        extent = {state.entries(), state.transaction()};
        return ERRCODE_SUCCESS;
    }));
    return extent;
}

std::size_t keys_in(store::key_space space, std::string *problem) {
    std::size_t keys = 0;
    if (problem->empty()) {
        *problem = for_each_key(store::key(space), [&](std::string_view, std::string_view) {
            ++keys;
            return std::string();
        });
    }
    return keys;
}

// Dumps everything and compares how much that was with what the store says it holds, unless it changed
// meanwhile: a damaged tree can lose items without a sign.
std::string dump_counted(store::environment *store, const dump_filter &filter, output_file *out) {
    const store_extent before = extent_of(store);
    dumper whole(filter, out);
    std::string problem = whole.run();
    const std::size_t keys =
        whole.keys() + keys_in(store::key_space::format, &problem) + keys_in(store::key_space::schema, &problem);
    const store_extent after = extent_of(store);
    const bool lost = before.transaction == after.transaction && keys != after.entries;
    return problem.empty() && lost ? describe_store(OPSTORE_DAMAGED) : problem;
}

}  // namespace

std::string append_item(const item_key &item, std::string_view parcel, json_fields fields, std::string *out) {
    const std::string what = describe_item(item);
    parcel_header header{};
    if (const errcode failure = parcel_read_header(parcel.data(), parcel.size(), &header); failure != ERRCODE_SUCCESS) {
        return what + ": " + errcode_strerror(failure);
    }
    const parcel_descriptor *type = pm_find_descriptor(header.type);
    if (type == nullptr) {
        return what + ": unknown record type " + on_one_line(excerpt(header.type));
    }
    return with_record(what, parcel, type, out, [&](const decoded &record) {
        *out += "{\"item\":{\"root\":\"";
        *out += item.root.word;
        *out += "\",\"node\":";
        append_number(item.node, out);
        *out += ",\"path\":";
        if (!append_json_text(item.path, out)) {
            throw std::runtime_error("its path is not UTF-8");
        }
        *out += ",\"type\":\"";
        *out += type->name;
        *out += "\",\"record\":";
        append_record(record.data(), shape_of(type).record(), fields, out);
        *out += "}}\n";
        return std::string();
    });
}

std::string dump_store(const dump_filter &filter, output_file *out) {
    store::environment *store = nullptr;
    if (const errcode failure = store::environment::shared(&store); failure != ERRCODE_SUCCESS) {
        return describe_store(failure);
    }
    std::string problem = filter.everything() ? dump_counted(store, filter, out) : dumper(filter, out).run();
    const std::string flushed = out->flush();
    return problem.empty() ? flushed : problem;
}

}  // namespace perf_store
