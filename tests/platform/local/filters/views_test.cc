// SPDX-License-Identifier: Apache-2.0
// The filters' views of detail records against the records themselves: the same fields of the same kinds, and
// the same values of any record.
#include <algorithm>
#include <map>
#include <regex>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "platform/local/codec/parcel_codec.h"
#include "platform/local/filters/view_descriptors.h"
#include "platform/local/filters/view_records.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"
#include "tests/support/random_record.h"

namespace {

constexpr std::uint64_t RECORDS = 500;  // of each type

// Schema texts ----------------------------------------------------------------------------------

// A schema text taken apart just enough to compare two: bodies by number, and of each body the fields. An arm of
// a union is a field named "VALUE:NAME".
class schema_text {
public:
    explicit schema_text(const std::string &text) {
        std::size_t at = 0;
        while (at < text.size()) {
            const std::size_t equals = text.find('=', at);
            const std::size_t end = text.find(';', equals);
            const std::string number = text.substr(at, equals - at);
            if (bodies_.empty()) {
                first_ = number;
            }
            bodies_[number] = text.substr(equals + 1, end - equals - 1);
            at = end + 1;
        }
    }

    [[nodiscard]] const std::string &first() const { return first_; }
    [[nodiscard]] const std::string &body(const std::string &number) const { return bodies_.at(number); }

    [[nodiscard]] static std::map<std::string, std::string> fields(const std::string &body) {
        const bool is_union = body.starts_with("?");
        const std::regex form(is_union ? R"((\d+:)\{(\w+)\}([^,]*?)(?=,|\)$))" : R"(()\{(\w+)\}([^{]*))");
        std::map<std::string, std::string> result;
        for (std::sregex_iterator each(body.begin(), body.end(), form), end; each != end; ++each) {
            result[(*each)[1].str() + (*each)[2].str()] = (*each)[3].str();
        }
        return result;
    }

private:
    std::map<std::string, std::string> bodies_;
    std::string first_;
};

// The first field of a view that its record lacks or has of another kind; empty when there is none.
class drift {
public:
    drift(const char *view, const char *record) : view_(view), record_(record) {}

    [[nodiscard]] std::string find() const { return of_body(view_.first(), record_.first()); }

private:
    [[nodiscard]] std::string of_body(const std::string &view, const std::string &record) const {
        const auto wanted = schema_text::fields(view_.body(view));
        const auto given = schema_text::fields(record_.body(record));
        if (wanted.empty()) {  // a scalar
            return view_.body(view) == record_.body(record) ? "" : view;
        }
        for (const auto &[name, type] : wanted) {
            const auto same = given.find(name);
            const std::string where = same == given.end() ? "." : of_type(type, same->second);
            if (!where.empty()) {
                return name + (where == "." ? "" : "." + where);
            }
        }
        return "";
    }

    [[nodiscard]] std::string of_type(std::string view, std::string record) const {
        for (std::string *type : {&view, &record}) {
            *type = type->substr(type->starts_with("P") ? 1 : 0);  // a mark
            *type = type->starts_with("[") ? "e" : *type;          // an enumeration by whatever name
        }
        if (view.starts_with("$") && record.starts_with("$")) {
            return of_body(view, record);
        }
        const std::size_t open = view.find('(');
        if (open != std::string::npos && view.substr(0, open + 1) == record.substr(0, open + 1)) {
            return of_type(view.substr(open + 1, view.size() - open - 2),
                           record.substr(open + 1, record.size() - open - 2));
        }
        return view == record ? "" : ".";
    }

    schema_text view_;
    schema_text record_;
};

TEST(Views, EveryFieldIsInTheRecordWithTheSameKind) {
    ASSERT_EQ(view_descriptors().size(), 3U);
    for (const parcel_descriptor *view : view_descriptors()) {
        const parcel_descriptor *record = pm_find_descriptor(view->name);
        ASSERT_NE(record, nullptr) << view->name;
        EXPECT_EQ(drift(view->schema, record->schema).find(), "") << view->name;
    }
}

TEST(Views, AFieldOfAnotherNameOrKindIsFound) {
    const char *record = "$1={A}D{B}a($2){C}[one_e]e;$2={D}p(s){E}$55;$55=?(<K,k_e>,0:{F}N,1:v);";
    for (const char *same : {"$1={A}D;", "$1={C}[two_e]e{A}PD;", "$9={B}a($8);$8={D}p(s);",
                             "$9={B}a($8);$8={E}$7;$7=?(<K,other_e>,0:{F}N);"}) {
        EXPECT_EQ(drift(same, record).find(), "") << same;
    }
    for (const auto &[other, where] : std::vector<std::pair<const char *, const char *>>{
             {"$1={Z}D;", "Z"},
             {"$1={A}H;", "A"},
             {"$1={C}D;", "C"},
             {"$1={B}p($8);$8={D}p(s);", "B"},
             {"$1={B}a($8);$8={D}a(s);", "B.D"},
             {"$1={B}a($8);$8={E}$7;$7=?(<K,k_e>,2:{F}N);", "B.E.2:F"}}) {
        EXPECT_EQ(drift(other, record).find(), where) << other;
    }
}

// Values ----------------------------------------------------------------------------------------

// What a filter may look at, from a view and from the record alike.
class values {
public:
    template <class Record>
    explicit values(const Record &record) {
        add_all(record);
    }
    [[nodiscard]] const std::string &text() const { return text_; }

private:
    template <class Policy>
    requires requires(const Policy &p) { p.CandidatePaths; }
    void add_all(const Policy &policy) {
        add(policy.Color);
        add_address(policy.EndPointAddress);
        add_each(policy.CandidatePaths, [&](const auto &path) {
            add(path.Preference);
            add(path.Origin);
            add(path.Discriminator);
            add(path.LocalLabel);
            add(path.LivenessDetectionEnabled);
            add(path.NPUOffloadSessionEnabled);
            add_each(path.SegmentLists, [&](const auto &list) {
                add_text(list.SegmentListName);
                add_each(list.AtomicPaths, [&](const auto &atomic) {
                    add(atomic.SessionNPUOffloadInfo != nullptr ? atomic.SessionNPUOffloadInfo->NpuNumber : -1);
                });
            });
        });
    }

    template <class Endpoint>
    requires requires(const Endpoint &e) { e.EndpointDelay; }
    void add_all(const Endpoint &endpoint) {
        const auto add_name = [&](const auto &list) { add_text(list.SegmentListName); };
        const auto add_section = [&](const auto &each) {
            add_text(each.VRFName);
            add_address(each.EndPointAddress);
        };
        add_each(endpoint.EndpointDelay, [&](const auto &each) {
            add_section(each);
            add_each(each.EP_Consolidated_Detail,
                     [&](const auto &group) { add_each(group.EP_SegmentLists, add_name); });
        });
        add_each(endpoint.EndpointLiveness, [&](const auto &each) {
            add_section(each);
            add_each(each.EP_Consolidated_Liveness,
                     [&](const auto &group) { add_each(group.EPLivenessSegmentLists, add_name); });
        });
        add_each(endpoint.EndpointProbe, [&](const auto &each) {
            add_section(each);
            add_each(each.Sessions, add_name);
        });
    }

    template <class Tunnel>
    requires requires(const Tunnel &t) { t.RSVPTELSPDelaySessions; }
    void add_all(const Tunnel &tunnel) {
        add(tunnel.TunnelDestinationIPv4Address);
        add_each(tunnel.RSVPTELSPDelaySessions, [&](const auto &each) { add(each.LSP_ID); });
    }

    template <class Number>
    void add(Number number) {
        text_ += std::to_string(static_cast<std::int64_t>(static_cast<std::uint32_t>(number))) + " ";
    }
    void add_text(const char *text) { text_ += text != nullptr ? "\"" + std::string(text) + "\" " : "- "; }
    template <class Address>
    void add_address(const Address &address) {
        const auto kind = static_cast<std::uint32_t>(address.IPAddressType);
        add(kind);
        if (kind == 0) {
            add(address.IPv4);
        } else if (kind == 1) {
            for (const std::uint8_t octet : address.IPv6.octets) {
                add(octet);
            }
        }
    }
    template <class Array, class Add>
    void add_each(const Array &array, Add add_one) {
        text_ += std::to_string(array.count) + "[";
        for (const auto &each : array) {
            add_one(each);
        }
        text_ += "] ";
    }

    std::string text_;
};

// Knows the schema texts of the records, as a store does.
bool find_schema(std::uint64_t fingerprint, std::string *schema) {
    for (const parcel_descriptor *each : pm_descriptors()) {
        if (parcel_fingerprint(each) == fingerprint) {
            *schema = each->schema;
            return true;
        }
    }
    return false;
}

template <class Record, class View>
void expect_same_values(const parcel_descriptor *record_type, const parcel_descriptor *view_type) {
    parcel_set_schema_source(find_schema);
    std::vector<std::string> different;
    for (std::uint64_t seed = 0; seed < RECORDS; ++seed) {
        const random_record written(record_type, seed);
        std::vector<std::uint8_t> parcel;
        ASSERT_EQ(parcel_encode(written.data(), record_type, &parcel), ERRCODE_SUCCESS);
        Record record;
        View view;
        const auto length = static_cast<std::uint32_t>(parcel.size());
        ASSERT_EQ(parcel_decode(parcel.data(), length, &record, record_type), ERRCODE_SUCCESS) << seed;
        ASSERT_EQ(parcel_decode(parcel.data(), length, &view, view_type), ERRCODE_SUCCESS) << seed;
        EXPECT_EQ(values(view).text(), values(record).text()) << seed;
        different.push_back(values(record).text());
        parcel_free_indirections(&record, record_type);
        parcel_free_indirections(&view, view_type);
    }
    std::sort(different.begin(), different.end());
    different.erase(std::unique(different.begin(), different.end()), different.end());
    EXPECT_GT(different.size(), RECORDS / 2);  // the records say something
}

TEST(Views, APolicyReadsTheSame) {
    expect_same_values<pm_srpolicy_parcel, filter_srpolicy>(pm_srpolicy_parcel_descriptor(),
                                                            filter_srpolicy_descriptor());
}

TEST(Views, AnEndpointReadsTheSame) {
    expect_same_values<pm_endpoint_common, filter_endpoint>(pm_endpoint_common_descriptor(),
                                                            filter_endpoint_descriptor());
}

TEST(Views, ATunnelReadsTheSame) {
    expect_same_values<pm_rsvpte_parcel, filter_rsvpte>(pm_rsvpte_parcel_descriptor(), filter_rsvpte_descriptor());
}

}  // namespace
