// SPDX-License-Identifier: Apache-2.0
// Decodes what an inspection finds.
#include "perf-store/datasets/store_check.h"

#include <map>
#include <memory>

#include "perf-store/datasets/dataset_dumper.h"
#include "perf-store/datasets/dataset_lines.h"
#include "perf-store/datasets/path_types.h"
#include "perf-store/datasets/store_contents.h"
#include "platform/local/back_ends/readers.h"
#include "platform/local/codec/checksum.h"
#include "platform/local/codec/parcel_codec.h"
#include "platform/local/store/store_url.h"

namespace perf_store {

namespace {

using store::key_space;

// The schemas that the store keeps, for records that an earlier program wrote.
std::map<std::uint64_t, std::string> the_schemas;

bool find_schema(std::uint64_t fingerprint, std::string *schema) {
    const auto found = the_schemas.find(fingerprint);
    if (found != the_schemas.end()) {
        *schema = found->second;
    }
    return found != the_schemas.end();
}

// Keeps the schemas; a first reading, since they come after the items.
class schema_collector final : public store::inspector {
public:
    void record(key_space kind, std::string_view key, std::string_view value) override {
        const std::uint64_t fingerprint = checksum(value.data(), value.size());
        if (kind == key_space::schema && store::schema_key(fingerprint) == key) {
            the_schemas[fingerprint] = value;
        }
    }
    void loss(const std::string &) override {}
};

// Decodes each record and writes its line.
class record_check final : public store::inspector {
public:
    record_check(const loss_report &report, output_file *out, bool keeps_lines, check_result *result)
        : report_(report), out_(*out), keeps_lines_(keeps_lines), result_(*result), dumper_(make_dumper(out)) {}

    void record(key_space kind, std::string_view key, std::string_view value) override {
        if (written_) {  // else nothing more is to be had
            return;
        }
        ++result_.records;
        const std::size_t before = out_.buffer().size();
        if (pm_error error = check(kind, key, value)) {
            out_.buffer().resize(before);
            loss(error.text());
        }
        if (!keeps_lines_) {
            out_.buffer().clear();
        }
        written_ = out_.flush_when_full();
    }
    void loss(const std::string &what) override {
        ++result_.losses;
        report_(what);
    }
    // Why nothing could be written any more.
    [[nodiscard]] const pm_error &written() const { return written_; }

private:
    [[nodiscard]] pm_error check(key_space kind, std::string_view key, std::string_view value) {
        switch (kind) {
        case key_space::platform: return dumper_->platform(value);
        case key_space::node: return dumper_->node(value);
        case key_space::interface: return interface(key, value);
        case key_space::publisher:
        case key_space::item: return of_a_branch(kind, key, value);
        case key_space::schema:
            return store::schema_key(checksum(value.data(), value.size())) == key
                       ? pm_error()
                       : pm_error(OPSTORE_DAMAGED, "a schema is not the one of its fingerprint");
        case key_space::format: break;
        }
        return pm_error(OPSTORE_DAMAGED, "a record of no known kind");
    }

    [[nodiscard]] pm_error interface(std::string_view key, std::string_view value) {
        std::uint32_t handle = 0;
        return store::parse_number_key(key, &handle) ? dumper_->interface(handle, value)
                                                     : pm_error(OPSTORE_DAMAGED, "an interface without a handle");
    }

    [[nodiscard]] pm_error of_a_branch(key_space kind, std::string_view key, std::string_view value) {
        store::branch of{};
        std::string_view path;
        if (!store::parse_branch_key(key, &of, &path)) {
            return pm_error(OPSTORE_DAMAGED, "a record of an unknown root");
        }
        const item_place place{root_name_of(of.data_root), of.node, path};
        if (kind == key_space::publisher) {
            return dumper_->publisher(place, value, {});
        }
        parcel_header header{};
        const std::string_view type = type_at(of.data_root, path);
        const bool known = parcel_read_header(value.data(), value.size(), &header) == ERRCODE_SUCCESS;
        if (known && !type.empty() && header.type != type) {
            return pm_error(PARCEL_OTHER_TYPE, describe_item(place) + ": a " + std::string(header.type) + " where a " +
                                                   std::string(type) + " belongs");
        }
        return dumper_->item(place, value);
    }

    const loss_report &report_;
    output_file &out_;
    bool keeps_lines_;
    check_result &result_;
    std::unique_ptr<store_visitor> dumper_;
    pm_error written_;
};

pm_error inspect_store(store::inspector *to) {
    const pm_error error = store::inspect(to);
    return error ? pm_error(error.code(), store::describe(error)) : error;
}

pm_error check_records(const loss_report &report, output_file *out, bool keeps_lines, check_result *result) {
    schema_collector schemas;
    if (pm_error error = inspect_store(&schemas)) {
        return error;
    }
    parcel_set_schema_source(find_schema);
    record_check check(report, out, keeps_lines, result);
    pm_error error = inspect_store(&check);
    return error ? error : check.written();
}

}  // namespace

pm_error verify_store(const loss_report &report, check_result *result) {
    output_file nothing;
    return check_records(report, &nothing, false, result);
}

pm_error dump_sound_records(const loss_report &report, output_file *out, check_result *result) {
    append_version_line(&out->buffer());
    pm_error error = check_records(report, out, true, result);
    pm_error flushed = out->flush();
    return error ? error : flushed;
}

}  // namespace perf_store
