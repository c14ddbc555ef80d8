// SPDX-License-Identifier: Apache-2.0
// The store of the tests of derived paths.
#include "tests/platform/local/filters/derived_store.h"

#include <arpa/inet.h>
#include <deque>

#include "platform/local/back_ends/writers.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"

namespace derived_test {

namespace {

using store::root;

// What the records point to; the filling process ends before it would be freed.
template <class T>
parcel_array<T> array(const std::vector<T> &elements) {
    static std::deque<std::vector<T>> kept;
    std::vector<T> &mine = kept.emplace_back(elements);
    return {static_cast<std::uint32_t>(mine.size()), mine.data()};
}

pm_record_address ipv4(const char *text) {
    pm_record_address result{};
    result.IPAddressType = PM_RECORD_ADDRESS_IPV4;
    inet_pton(AF_INET, text, &result.IPv4);
    return result;
}

pm_record_address ipv6(const char *text) {
    pm_record_address result{};
    result.IPAddressType = PM_RECORD_ADDRESS_IPV6;
    inet_pton(AF_INET6, text, &result.IPv6);
    return result;
}

pm_record_address no_address() {
    pm_record_address result{};
    result.IPAddressType = PM_RECORD_ADDRESS_NONE;
    return result;
}

class filler {
public:
    explicit filler(const char *url) : good_(!store::open_writer(url, store::missing_store::make, &writer_)) {}

    void put(std::uint32_t node, const std::string &path, const void *record, const parcel_descriptor *type) {
        good_ = good_ && !writer_->put_item({root::main, node}, path, record, type);
    }
    void publisher(std::uint32_t node, store::publisher_state state) {
        good_ = good_ && !writer_->put_publisher({root::main, node}, state);
    }
    bool commit() { return good_ && !writer_->commit(); }

private:
    std::unique_ptr<store::writer> writer_;
    bool good_;
};

// SR policies ------------------------------------------------------------------------------------

// A segment list; an atomic path for each NPU, -1 for one that is not offloaded.
pm_srpolicy_segment_list_parcel segment_list(const char *name, const std::vector<int> &npus) {
    std::vector<pm_srpolicy_atomic_path_parcel> paths;
    for (const int npu : npus) {
        pm_srpolicy_atomic_path_parcel path{};
        if (npu >= 0) {
            pm_session_npu_offload_info_parcel info{};
            info.NpuNumber = static_cast<std::uint8_t>(npu);
            path.SessionNPUOffloadInfo = array<pm_session_npu_offload_info_parcel>({info}).elements;
        }
        paths.push_back(path);
    }
    pm_srpolicy_segment_list_parcel list{};
    list.SegmentListName = name;
    list.ReversePathSegmentListName = "sl-reverse";
    list.AtomicPaths = array(paths);
    return list;
}

struct path_values {
    std::int32_t origin;
    std::uint32_t discriminator;
    std::uint32_t preference;
    std::uint32_t label;
    bool liveness;
    bool offloaded;
    std::vector<pm_srpolicy_segment_list_parcel> lists;
};

pm_srpolicy_candidate_path_parcel candidate_path(const path_values &values) {
    pm_srpolicy_candidate_path_parcel path{};
    path.Origin = static_cast<pm_tectl_srpolicy_origin_e>(values.origin);
    path.Discriminator = values.discriminator;
    path.Preference = values.preference;
    path.LocalLabel = values.label;
    path.LivenessDetectionEnabled = values.liveness ? 1 : 0;
    path.NPUOffloadSessionEnabled = values.offloaded ? 1 : 0;
    path.SegmentLists = array(values.lists);
    return path;
}

pm_srpolicy_parcel policy(const char *name, std::uint32_t color, const pm_record_address &address,
                          const std::vector<path_values> &paths) {
    std::vector<pm_srpolicy_candidate_path_parcel> records;
    for (const path_values &each : paths) {
        records.push_back(candidate_path(each));
    }
    pm_srpolicy_parcel record{};
    record.PolicyName = name;
    record.Color = color;
    record.EndPointAddress = address;
    record.SRv6EncapsulationSourceAddress = no_address();
    record.CandidatePaths = array(records);
    return record;
}

void put_detail(filler *store, std::uint32_t node, const pm_srpolicy_parcel &record) {
    store->put(node, std::string("srpolicy/detail/") + record.PolicyName, &record, pm_srpolicy_parcel_descriptor());
}

// Counters and histories of a policy; what they say of themselves matches no key of the tests.
void put_companions(filler *store, std::uint32_t node, const char *name) {
    pm_srpolicy_counters_parcel counters{};
    counters.PolicyName = name;
    store->put(node, std::string("srpolicy/counters/") + name, &counters, pm_srpolicy_counters_parcel_descriptor());
    pm_srpolicy_history_parcel history{};
    history.PolicyName = name;
    history.Color = 99;
    history.EndPointAddress = ipv4("192.0.2.99");
    for (const char *kind :
         {"delay/probe-history/", "delay/aggr-history/", "delay/adv-history/", "liveness/live-history/"}) {
        store->put(node, std::string("srpolicy/") + kind + name, &history, pm_srpolicy_history_parcel_descriptor());
    }
}

void put_policies(filler *store) {
    put_detail(store, NODE,
               policy("a", 10, ipv4("10.0.0.1"),
                      {{10, 100, 200, 24000, false, false, {segment_list("sl-a1", {-1}), segment_list("sl-a2", {3})}},
                       {30, 101, 50, 24001, true, false, {segment_list("sl-a3", {})}}}));
    put_detail(
        store, NODE,
        policy("b", 20, ipv6("2001:db8::1"), {{20, 7, 100, 30000, true, true, {segment_list("sl-b", {0, -1, 5})}}}));
    put_detail(store, NODE, policy("c", 10, no_address(), {}));
    put_detail(store, NODE,
               policy("d", 0xFFFFFFFF, ipv4("10.0.0.2"),
                      {{10, 0, 0xFFFFFFFF, 0xFFFFF, false, true, {segment_list(nullptr, {255})}}}));
    for (const char *name : {"a", "b", "c", "d", "orphan"}) {
        put_companions(store, NODE, name);
    }
    put_detail(store, OTHER_NODE, policy("a", 99, ipv4("10.0.0.9"), {}));
    put_companions(store, OTHER_NODE, "b");
}

void put_many_policies(filler *store) {
    for (unsigned i = 0; i < MANY; ++i) {
        const std::string name = long_name(i);
        put_detail(store, LARGE_NODE,
                   policy(name.c_str(), i % EVERY == 0 ? MANY_COLOR : MANY_COLOR + 1, no_address(), {}));
        pm_srpolicy_counters_parcel counters{};
        store->put(LARGE_NODE, "srpolicy/counters/" + name, &counters, pm_srpolicy_counters_parcel_descriptor());
    }
}

// Endpoints --------------------------------------------------------------------------------------

pm_endpoint_detail delay_section(const char *vrf, const pm_record_address &address, const names &lists) {
    std::vector<pm_endpoint_detail_segment_list_parcel> records;
    for (const std::string &each : lists) {
        pm_endpoint_detail_segment_list_parcel list{};
        list.SegmentListName = each.c_str();
        records.push_back(list);
    }
    pm_endpoint_consolidated_detail_parcel group{};
    group.EP_SegmentLists = array(records);
    pm_endpoint_detail section{};
    section.VRFName = vrf;
    section.EndPointAddress = address;
    section.EndPointSessionSourceAddress = ipv4("192.0.2.1");
    section.EP_Consolidated_Detail = array<pm_endpoint_consolidated_detail_parcel>({{}, group});
    return section;
}

pm_endpoint_liveness liveness_section(const char *vrf, const pm_record_address &address, const char *name) {
    pm_endpoint_liveness_segment_list_parcel list{};
    list.SegmentListName = name;
    pm_endpoint_consolidated_liveness_parcel group{};
    group.EPLivenessSegmentLists = array<pm_endpoint_liveness_segment_list_parcel>({list});
    pm_endpoint_liveness section{};
    section.VRFName = vrf;
    section.EndPointAddress = address;
    section.EndPointSessionSourceAddress = ipv4("192.0.2.1");
    section.EP_Consolidated_Liveness = array<pm_endpoint_consolidated_liveness_parcel>({group});
    return section;
}

pm_endpoint_probe probe_section(const char *vrf, const pm_record_address &address, const char *name) {
    pm_endpoint_probe_session_parcel session{};
    session.SegmentListName = name;
    pm_endpoint_probe section{};
    section.VRFName = vrf;
    section.EndPointAddress = address;
    section.EndPointSessionSourceAddress = ipv4("192.0.2.1");
    section.Sessions = array<pm_endpoint_probe_session_parcel>({session});
    return section;
}

void put_endpoints(filler *store) {
    static const names x_lists{"sl-x1", "sl-x2"};
    static const names w_lists{"sl-w"};
    pm_endpoint_common v{};
    pm_endpoint_common w{};
    w.EndpointDelay = array<pm_endpoint_detail>({delay_section(nullptr, no_address(), w_lists)});
    w.EndpointLiveness = array<pm_endpoint_liveness>({liveness_section("green", ipv4("10.1.0.4"), nullptr)});
    w.EndpointProbe = array<pm_endpoint_probe>({probe_section("red", ipv4("10.1.0.5"), nullptr)});
    pm_endpoint_common x{};
    x.EndpointDelay = array<pm_endpoint_detail>({delay_section("red", ipv4("10.1.0.1"), x_lists)});
    pm_endpoint_common y{};
    y.EndpointLiveness = array<pm_endpoint_liveness>({liveness_section("blue", ipv6("2001:db8::2"), "sl-y")});
    pm_endpoint_common z{};
    z.EndpointProbe = array<pm_endpoint_probe>({probe_section("red", ipv4("10.1.0.3"), "sl-z")});
    const std::pair<const char *, pm_endpoint_common *> endpoints[] = {
        {"v", &v}, {"w", &w}, {"x", &x}, {"y", &y}, {"z", &z}};
    for (const auto &[name, record] : endpoints) {
        record->EndpointName = name;
        store->put(NODE, std::string("endpoint/detail/") + name, record, pm_endpoint_common_descriptor());
    }
    for (const char *name : {"orphan", "v", "w", "x", "y", "z"}) {
        pm_endpoint_counters_parcel counters{};
        counters.EndpointName = name;
        store->put(NODE, std::string("endpoint/counters/") + name, &counters, pm_endpoint_counters_parcel_descriptor());
        pm_endpoint_history_parcel history{};
        history.EndpointName = name;
        history.VRFName = "purple";
        history.EndPointAddress = ipv4("192.0.2.99");
        history.EndPointSessionSourceAddress = no_address();
        for (const char *kind : {"probe", "aggr", "adv", "live"}) {
            store->put(NODE, std::string("endpoint/delay/") + kind + "-history/" + name, &history,
                       pm_endpoint_history_parcel_descriptor());
        }
    }
}

// Tunnels and profiles ---------------------------------------------------------------------------

void put_tunnel(filler *store, const char *name, const char *destination, const std::vector<std::uint32_t> &lsp_ids) {
    std::vector<pm_rsvpte_lsp_delay_parcel> sessions;
    for (const std::uint32_t id : lsp_ids) {
        pm_rsvpte_lsp_delay_parcel session{};
        session.LSP_ID = id;
        session.SessionId = 9;
        session.LSPSourceIPv4Address = ipv4("192.0.2.1").IPv4;
        sessions.push_back(session);
    }
    pm_rsvpte_parcel record{};
    record.TunnelName = name;
    record.TunnelDestinationIPv4Address = ipv4(destination).IPv4;
    record.RSVPTELSPDelaySessions = array(sessions);
    store->put(NODE, std::string("rsvpte/detail/") + name, &record, pm_rsvpte_parcel_descriptor());
}

void put_tunnels(filler *store) {
    put_tunnel(store, "t1", "10.2.0.1", {5, 6});
    put_tunnel(store, "t2", "10.2.0.2", {6});
    put_tunnel(store, "t3", "10.2.0.1", {});
    for (const char *name : {"orphan", "t1", "t2", "t3"}) {
        pm_rsvpte_counters_parcel counters{};
        counters.TunnelName = name;
        store->put(NODE, std::string("rsvpte/counters/") + name, &counters, pm_rsvpte_counters_parcel_descriptor());
        pm_rsvpte_history_parcel history{};
        history.TunnelName = name;
        for (const char *kind : {"probe", "aggr", "adv"}) {
            store->put(NODE, std::string("rsvpte/delay/") + kind + "-history/" + name, &history,
                       pm_rsvpte_history_parcel_descriptor());
        }
    }
}

void put_profiles(filler *store) {
    for (const char *path :
         {"0x0/0x1/gold", "0x0/0x2/gold", "0x0/0x2/silver", "0x1/0x2/gold", "0x2/0x1/live%20one", "0x3/0x2/probe"}) {
        pm_name_profile_parcel record{};
        record.Name = path;
        store->put(NODE, std::string("name-profile/") + path, &record, pm_name_profile_parcel_descriptor());
    }
    const pm_profile_parcel global{};
    store->put(NODE, "profile", &global, pm_profile_parcel_descriptor());
}

void put_odd_names(filler *store) {
    for (const char *name : {"a-filter", "a-filter/b", "detail-filter/c"}) {
        put_detail(store, ODD_NODE, policy(name, 10, no_address(), {}));
    }
    const pm_srpolicy_parcel elsewhere = policy("d", 10, no_address(), {});
    store->put(ODD_NODE, "srpolicy/other/d", &elsewhere, pm_srpolicy_parcel_descriptor());
    const pm_name_profile_parcel profile{};
    store->put(ODD_NODE, "name-profile/0x0/0x2", &profile, pm_name_profile_parcel_descriptor());
}

// A policy as an older engine wrote it, with fewer fields and in another order.
struct older_policy {
    const char *PolicyName;
    std::uint32_t Color;
};
constexpr std::uint64_t OLDER_OFFSETS[] = {0, 8};
constexpr parcel_layout OLDER_LAYOUT[] = {{0, sizeof(older_policy), OLDER_OFFSETS}};
constexpr parcel_descriptor OLDER_POLICY{
    1, "pm_srpolicy_parcel", 18, 0, "test", OLDER_LAYOUT, "$1={PolicyName}s{Color}D;", "$1=sD;"};

void put_foreign_details(filler *store) {
    const older_policy older{"older", 10};
    store->put(FOREIGN_NODE, "srpolicy/detail/older", &older, &OLDER_POLICY);
    const pm_srpolicy_counters_parcel counters{};
    store->put(FOREIGN_NODE, "srpolicy/detail/other-type", &counters, pm_srpolicy_counters_parcel_descriptor());
    put_detail(store, FOREIGN_NODE, policy("recent", 10, no_address(), {}));
}

}  // namespace

std::string long_name(unsigned number) {
    char digits[8];
    std::snprintf(digits, sizeof digits, "%05u", number);
    return std::string(200, 'n') + digits;
}

bool fill_store(const char *url) {
    filler store(url);
    put_policies(&store);
    put_many_policies(&store);
    put_endpoints(&store);
    put_tunnels(&store);
    put_profiles(&store);
    put_odd_names(&store);
    put_foreign_details(&store);
    for (const std::uint32_t node : {STOPPED_NODE, UNREACHABLE_NODE, STARTING_NODE}) {
        put_detail(&store, node, policy("a", 10, no_address(), {}));
    }
    store.publisher(STOPPED_NODE, store::publisher_state::stopped);
    store.publisher(UNREACHABLE_NODE, store::publisher_state::unreachable);
    store.publisher(STARTING_NODE, store::publisher_state::starting);
    store.publisher(EMPTY_NODE, store::publisher_state::running);
    return store.commit();
}

}  // namespace derived_test
