// SPDX-License-Identifier: Apache-2.0
// Decodes what the store holds and writes its lines.
#include "perf-store/datasets/dataset_dumper.h"

#include "perf-store/datasets/dataset_lines.h"
#include "perf-store/datasets/decoded_record.h"
#include "perf-store/datasets/message_text.h"
#include "perf-store/datasets/progress_line.h"
#include "platform/local/codec/parcel_codec.h"
#include "platform/local/store/local_store_descriptors.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

namespace {

// Decodes a record and passes it to `append`; an error of either names the object.
template <class Append>
pm_error with_record(const std::string &what, std::string_view parcel, const parcel_descriptor *type, Append append) {
    const decoded_record record(parcel, type);
    if (record.code() != ERRCODE_SUCCESS) {
        return pm_error(record.code(), what + ": " + errcode_strerror(record.code()));
    }
    const pm_error error = append(record);
    return error ? pm_error(error.code(), what + ": " + error.text()) : error;
}

class dumper : public store_visitor {
public:
    explicit dumper(output_file *out) : out_(*out), lines_(out->buffer()) {}

    pm_error platform(std::string_view parcel) override { return passed_on(append_stored_platform(parcel, &lines_)); }
    pm_error node(std::string_view parcel) override { return passed_on(append_stored_node(parcel, &lines_)); }
    pm_error interface(std::uint32_t handle, std::string_view parcel) override {
        return passed_on(append_stored_interface(handle, parcel, &lines_));
    }
    pm_error publisher(const item_place &branch, std::string_view parcel, store::kept_lease lease) override {
        return passed_on(append_stored_publisher(branch, parcel, lease, &lines_));
    }
    pm_error item(const item_place &item, std::string_view parcel) override {
        progress_.advance(++items_, 0);
        return passed_on(append_stored_item(item, parcel, json_fields::set, &lines_));
    }

private:
    [[nodiscard]] pm_error passed_on(pm_error error) { return error ? error : out_.flush_when_full(); }

    output_file &out_;
    std::string &lines_;
    std::uint64_t items_ = 0;
    progress_line progress_{"dumping", 0};
};

}  // namespace

pm_error append_stored_platform(std::string_view parcel, std::string *out) {
    return with_record("platform", parcel, local_platform_descriptor(), [&](const decoded_record &record) {
        return append_platform_line(record.as<local_platform>(), out);
    });
}

pm_error append_stored_node(std::string_view parcel, std::string *out) {
    return with_record("node", parcel, local_node_descriptor(),
                       [&](const decoded_record &record) { return append_node_line(record.as<local_node>(), out); });
}

pm_error append_stored_interface(std::uint32_t handle, std::string_view parcel, std::string *out) {
    return with_record("interface", parcel, local_interface_descriptor(), [&](const decoded_record &record) {
        return append_interface_line(handle, record.as<local_interface>(), out);
    });
}

pm_error append_stored_publisher(const item_place &branch, std::string_view parcel, store::kept_lease lease,
                                 std::string *out) {
    return with_record("publisher", parcel, local_publisher_descriptor(), [&](const decoded_record &record) {
        const auto state = store::seen_state(record.as<local_publisher>(), lease);
        return append_publisher_line(branch.root.word, branch.node, state, out);
    });
}

pm_error find_stored_type(const std::string &what, std::string_view parcel, const parcel_descriptor **type) {
    parcel_header header{};
    if (const errcode error = parcel_read_header(parcel.data(), parcel.size(), &header); error != ERRCODE_SUCCESS) {
        return pm_error(error, what + ": " + errcode_strerror(error));
    }
    *type = pm_find_descriptor(header.type);
    return *type != nullptr ? pm_error()
                            : pm_error(what + ": unknown record type " + on_one_line(excerpt(header.type)));
}

pm_error append_stored_item(const item_place &item, std::string_view parcel, json_fields fields, std::string *out) {
    const std::string what = describe_item(item);
    const parcel_descriptor *type = nullptr;
    if (pm_error error = find_stored_type(what, parcel, &type)) {
        return error;
    }
    return with_record(what, parcel, type, [&](const decoded_record &record) {
        return append_item_line(item.root.word, item.node, item.path, type, record.data(), fields, out);
    });
}

std::unique_ptr<store_visitor> make_dumper(output_file *out) { return std::make_unique<dumper>(out); }

pm_error dump_store(const item_selection &selection, output_file *out) {
    if (pm_error error = open_store()) {
        return error;
    }
    append_version_line(&out->buffer());
    dumper lines(out);
    pm_error error = visit_store(selection, &lines);
    pm_error flushed = out->flush();
    return error ? error : flushed;
}

}  // namespace perf_store
