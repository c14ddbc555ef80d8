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
#include "platform/local/store/store_url.h"
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
    dumper(const dump_filter &filter, store::reader *from, output_file *out)
        : filter_(filter), from_(*from), out_(*out), line_(out->buffer()) {}

    std::string run() {
        line_ += "{\"dataset\":{\"version\":";
        append_number(DATASET_VERSION, &line_);
        line_ += "}}\n";
        std::string problem;
        if (filter_.everything()) {
            problem = dump_platform();
            problem = problem.empty() ? dump_nodes() : problem;
            problem = problem.empty() ? dump_interfaces() : problem;
        }
        problem = problem.empty() ? dump_publishers() : problem;
        return problem.empty() ? dump_items() : problem;
    }

    // Records seen, of whatever kind.
    [[nodiscard]] std::uint64_t records() const { return records_; }

private:
    [[nodiscard]] bool selects(const store::branch &branch) const {
        return (!filter_.root || *filter_.root == branch.data_root) && (!filter_.node || *filter_.node == branch.node);
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

    std::string dump_platform() {
        std::string parcel;
        const pm_error error = from_.platform(&parcel);
        if (error) {
            return error.code() == ERRCODE_NOT_FOUND ? "" : store::describe(error);
        }
        ++records_;
        return with_record("platform", parcel, local_platform_descriptor(), &line_, [&](const decoded &decoded) {
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

    std::string dump_nodes() {
        std::vector<std::string> parcels;
        if (const pm_error error = from_.nodes(&parcels)) {
            return store::describe(error);
        }
        std::string problem;
        for (std::size_t i = 0; problem.empty() && i < parcels.size(); ++i) {
            problem = dump_node(parcels[i]);
        }
        return problem;
    }

    std::string dump_node(std::string_view parcel) {
        ++records_;
        return with_record("node", parcel, local_node_descriptor(), &line_, [&](const decoded &decoded) {
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

    std::string dump_interfaces() {
        std::vector<store::interface_entry> entries;
        std::uint64_t from = 0;
        std::string problem;
        do {
            if (const pm_error error = from_.interfaces(from, &entries)) {
                return store::describe(error);
            }
            for (std::size_t i = 0; problem.empty() && i < entries.size(); ++i) {
                problem = dump_interface(entries[i]);
                from = std::uint64_t{entries[i].handle} + 1;
            }
        } while (problem.empty() && !entries.empty());
        return problem;
    }

    std::string dump_interface(const store::interface_entry &entry) {
        ++records_;
        return with_record("interface", entry.parcel, local_interface_descriptor(), &line_,
                           [&](const decoded &decoded) {
                               const char *name = decoded.as<local_interface>().Name;
                               begin_object("interface");
                               add_number("handle", entry.handle);
                               add_text("name", name != nullptr ? name : "");
                               return end_object();
                           });
    }

    std::string dump_publishers() {
        std::vector<store::publisher_entry> entries;
        if (const pm_error error = from_.publishers(&entries)) {
            return store::describe(error);
        }
        std::string problem;
        for (std::size_t i = 0; problem.empty() && i < entries.size(); ++i) {
            problem = selects(entries[i].served) ? dump_publisher(entries[i]) : "";
        }
        return problem;
    }

    std::string dump_publisher(const store::publisher_entry &entry) {
        ++records_;
        return with_record(
            "publisher", entry.parcel, local_publisher_descriptor(), &line_, [&](const decoded &decoded) {
                const auto state = static_cast<store::publisher_state>(decoded.as<local_publisher>().State);
                const char *word = nullptr;
                for (const state_name &each : PUBLISHER_STATES) {
                    word = each.state == state ? each.word : word;
                }
                if (word == nullptr) {
                    throw std::runtime_error("unknown state");
                }
                begin_object("publisher");
                add_text("root", root_name_of(entry.served.data_root).word);
                add_number("node", entry.served.node);
                add_text("state", word);
                return end_object();
            });
    }

    std::string dump_items() {
        std::vector<store::branch> branches;
        if (const pm_error error = from_.branches(&branches)) {
            return store::describe(error);
        }
        std::string problem;
        for (std::size_t i = 0; problem.empty() && i < branches.size(); ++i) {
            if (selects(branches[i])) {
                problem = for_each_item(
                    &from_, branches[i], filter_.path_prefix,
                    [this](const item_key &item, std::string_view parcel) { return dump_item(item, parcel); });
            }
        }
        return problem;
    }

    std::string dump_item(const item_key &item, std::string_view parcel) {
        ++records_;
        progress_.advance(++items_, 0);
        std::string problem = append_item(item, parcel, json_fields::set, &line_);
        return problem.empty() ? out_.flush_when_full() : problem;
    }

    const dump_filter &filter_;
    store::reader &from_;
    output_file &out_;
    std::string &line_;
    bool first_ = true;
    std::uint64_t items_ = 0;
    std::uint64_t records_ = 0;
    progress progress_{"dumping", 0};
};

}  // namespace

namespace {

store::census count_of(store::reader *from) {
    store::census result;
    static_cast<void>(from->count(&result));  // a failure shows in the dump itself
    return result;
}

// Dumps everything and compares how much that was with what the store says it holds, unless it changed
// meanwhile: a damaged tree can lose items without a sign.
std::string dump_counted(store::reader *from, const dump_filter &filter, output_file *out) {
    const store::census before = count_of(from);
    dumper whole(filter, from, out);
    const std::string problem = whole.run();
    const store::census after = count_of(from);
    const bool lost = before.state == after.state && whole.records() != after.records;
    return problem.empty() && lost ? store::describe(pm_error(OPSTORE_DAMAGED)) : problem;
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
    store::reader *from = nullptr;
    if (std::string problem = open_store(&from); !problem.empty()) {
        return problem;
    }
    std::string problem = filter.everything() ? dump_counted(from, filter, out) : dumper(filter, from, out).run();
    const std::string flushed = out->flush();
    return problem.empty() ? flushed : problem;
}

}  // namespace perf_store
