// SPDX-License-Identifier: Apache-2.0
// The members of each checkpoint message by name.
#include "perf-measure/json/chkpt_message.h"

#include <cstdint>

#include "chkpt/chkpt.h"
#include "perf-measure/json/chkpt_memory.h"
#include "perf-measure/json/json_text.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"

namespace perf_measure {

namespace {

void append(std::uint64_t value, std::string *out) { append_json_number(value, out); }
void append(std::uint32_t value, std::string *out) { append_json_number(value, out); }
void append(bool value, std::string *out) { *out += value ? "true" : "false"; }
void append(const char *text, std::string *out) { append_json_any_text(text != nullptr ? text : "", out); }
void append(const ChkptAdvertisement &message, std::string *out);
void append(const ChkptControlCode &message, std::string *out);
void append(const ChkptDistributionValues &message, std::string *out);
void append(const ChkptDistributionGroup &message, std::string *out);
void append(const ChkptDistributionEntry &message, std::string *out);
void append(const ChkptSessionIdPair &message, std::string *out);
void append(const ChkptSegmentListInfo &message, std::string *out);

template <class Element>
void append(const chkpt_array<Element> &array, std::string *out) {
    *out += '[';
    for (const Element &element : array) {
        *out += &element == array.begin() ? "" : ",";
        append(element, out);
    }
    *out += ']';
}

// An object of the members that were seen.
template <class Record>
class object {
public:
    object(const Record &record, std::string *out) : record_(record), out_(out) { *out_ += '{'; }
    ~object() { *out_ += '}'; }
    object(const object &) = delete;
    object &operator=(const object &) = delete;

    template <class Member>
    object &member(unsigned number, const char *name, const Member &value) {
        if (chkpt_has(record_, number)) {
            *out_ += std::string(first_ ? "\"" : ",\"") + name + "\":";
            append(value, out_);
            first_ = false;
        }
        return *this;
    }

private:
    const Record &record_;
    std::string *out_;
    bool first_ = true;
};

void append(const ChkptAdvertisement &message, std::string *out) {
    object(message, out)
        .member(1, "time_msec", message.time_msec)
        .member(2, "reason", message.reason)
        .member(3, "in_flight", message.in_flight)
        .member(4, "average_usec", message.average_usec)
        .member(5, "minimum_usec", message.minimum_usec)
        .member(6, "maximum_usec", message.maximum_usec)
        .member(7, "variance_usec", message.variance_usec)
        .member(8, "loss_percent", message.loss_percent)
        .member(9, "a_flag", message.a_flag);
}

void append(const ChkptControlCode &message, std::string *out) {
    object(message, out).member(1, "code", message.code).member(2, "time_msec", message.time_msec);
}

void append(const ChkptScb &message, std::string *out) {
    object(message, out)
        .member(1, "interface_name", static_cast<const char *>(message.interface_name))
        .member(2, "advertisement_kind", message.advertisement_kind)
        .member(3, "last_advertisement", message.last_advertisement)
        .member(4, "last_error", message.last_error)
        .member(5, "last_notification", message.last_notification);
}

void append(const ChkptDistributionValues &message, std::string *out) {
    object(message, out)
        .member(1, "value_1", message.value_1)
        .member(2, "value_2", message.value_2)
        .member(3, "value_3", message.value_3)
        .member(4, "value_4", message.value_4);
}

void append(const ChkptDistributionGroup &message, std::string *out) {
    object(message, out)
        .member(1, "value_1", message.value_1)
        .member(2, "value_2", message.value_2)
        .member(3, "values", message.values);
}

void append(const ChkptDistributionEntry &message, std::string *out) {
    object(message, out)
        .member(1, "value_1", message.value_1)
        .member(2, "groups", message.groups)
        .member(3, "value_3", message.value_3);
}

void append(const ChkptDistribution &message, std::string *out) {
    object(message, out)
        .member(1, "linecards", message.linecards)
        .member(2, "value_2", message.value_2)
        .member(3, "value_3", message.value_3)
        .member(4, "entries", message.entries);
}

void append(const ChkptSessionIdPair &message, std::string *out) {
    object(message, out)
        .member(1, "session_id", message.session_id)
        .member(2, "segment_list", static_cast<const char *>(message.segment_list));
}

void append(const ChkptSegmentListInfo &message, std::string *out) {
    object(message, out)
        .member(1, "segment_list", static_cast<const char *>(message.segment_list))
        .member(2, "is_up", message.is_up)
        .member(3, "value_3", message.value_3);
}

void append(const ChkptDrSession &message, std::string *out) {
    object(message, out)
        .member(1, "policy_name", static_cast<const char *>(message.policy_name))
        .member(2, "lsp_id", message.lsp_id)
        .member(3, "is_up", message.is_up)
        .member(4, "session_ids", message.session_ids)
        .member(5, "node_id", message.node_id)
        .member(6, "npu_id", message.npu_id)
        .member(7, "host_type", message.host_type)
        .member(8, "value_8", message.value_8)
        .member(9, "segment_lists", message.segment_lists);
}

template <class Parcel, class Message>
void append_blob(const void *record,
                 std::int32_t decode(Message *, const std::uint8_t *, std::uint32_t, ChkptAllocFn, void *),
                 std::string *out) {
    const parcel_array<std::uint8_t> &blob = static_cast<const Parcel *>(record)->buf;
    if (blob.elements == nullptr || blob.count == 0) {
        return;
    }
    chkpt_memory memory;
    Message message;
    const std::int32_t status = decode(&message, blob.elements, blob.count, chkpt_memory::allocate, &memory);
    *out += ",\"message\":";
    append(message, out);
    *out += status == CHKPT_DECODED ? "" : ",\"damaged\":true";
}

}  // namespace

void append_chkpt_message(const item &read, std::string *out) {
    if (read.type == pm_chkpt_scb_parcel_descriptor()) {
        append_blob<pm_chkpt_scb_parcel>(read.record, ChkptScb_decode, out);
    } else if (read.type == pm_chkpt_dr_info_descriptor()) {
        append_blob<pm_chkpt_dr_info>(read.record, ChkptDistribution_decode, out);
    } else if (read.type == pm_chkpt_dr_db_sess_info_descriptor()) {
        append_blob<pm_chkpt_dr_db_sess_info>(read.record, ChkptDrSession_decode, out);
    }
}

}  // namespace perf_measure
