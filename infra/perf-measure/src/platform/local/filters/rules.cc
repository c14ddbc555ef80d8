// SPDX-License-Identifier: Apache-2.0
// The tables of what each component of a filter key compares, one for each family.
#include "platform/local/filters/rules.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>

#include "paths/filter_keys.h"

namespace item_filter {

namespace {

using path_grammar::property;
using wanted = wanted_component;

// Kinds of measurement that the last component of some keys names, and of session hosts.
constexpr std::uint32_t DELAY_KIND = 0;
constexpr std::uint32_t LIVENESS_KIND = 2;
constexpr std::uint32_t PROBE_KIND = 3;
constexpr std::uint32_t HOST_CPU = 0;
constexpr std::uint32_t HOST_NPU = 1;

// The discriminator of an address.
constexpr std::uint32_t IPV4_ADDRESS = 0;
constexpr std::uint32_t IPV6_ADDRESS = 1;

bool is_address(const wanted &asked, const filter_address &value) {
    switch (value.IPAddressType) {
    case IPV4_ADDRESS: return asked.is_ipv4(value.IPv4);
    case IPV6_ADDRESS: return asked.is_ipv6(value.IPv6.octets);
    default: return false;
    }
}

template <class Array, class Predicate>
bool any(const Array &array, Predicate predicate) {
    return std::any_of(array.begin(), array.end(), predicate);
}

// What one component compares.
template <class View>
struct rule {
    property what;
    bool (*holds)(const wanted &asked, const View &record);
};

// Whether a table has one rule for each component of a key, in its order.
template <class View, std::size_t Count>
constexpr bool fits(const rule<View> (&rules)[Count], std::span<const path_grammar::component> components) {
    return std::ranges::equal(rules, components, {}, &rule<View>::what, &path_grammar::component::what);
}

template <class View, std::size_t Count>
bool has_all(const std::vector<wanted> &key, const View &record, const rule<View> (&rules)[Count]) {
    return std::ranges::equal(key, rules, [&record](const wanted &asked, const rule<View> &each) {
        return asked.any || each.holds(asked, record);
    });
}

// SR policies ------------------------------------------------------------------------------------

using candidate_path = filter_candidate_path;

// Whether a number of any candidate path is the one that is asked for.
template <std::uint32_t candidate_path::*Number>
bool in_any_path(const wanted &asked, const filter_srpolicy &record) {
    return any(record.CandidatePaths, [&](const candidate_path &path) { return asked.is(path.*Number); });
}

bool has_segment_list(const wanted &asked, const filter_srpolicy &record) {
    return any(record.CandidatePaths, [&](const candidate_path &path) {
        return any(path.SegmentLists, [&](const auto &list) { return asked.is(list.SegmentListName); });
    });
}

bool has_kind(const wanted &asked, const filter_srpolicy &record) {
    if (!asked.is(DELAY_KIND) && !asked.is(LIVENESS_KIND)) {
        return asked.number.has_value();
    }
    return any(record.CandidatePaths, [&](const candidate_path &path) {
        return (path.LivenessDetectionEnabled != 0) == asked.is(LIVENESS_KIND);
    });
}

bool has_host(const wanted &asked, const filter_srpolicy &record) {
    return any(record.CandidatePaths, [&](const candidate_path &path) {
        return asked.is(path.NPUOffloadSessionEnabled != 0 ? HOST_NPU : HOST_CPU);
    });
}

bool has_npu(const wanted &asked, const filter_srpolicy &record) {
    return any(record.CandidatePaths, [&](const candidate_path &path) {
        return any(path.SegmentLists, [&](const auto &list) {
            return any(list.AtomicPaths, [&](const auto &atomic) {
                return atomic.SessionNPUOffloadInfo != nullptr && asked.is(atomic.SessionNPUOffloadInfo->NpuNumber);
            });
        });
    });
}

constexpr rule<filter_srpolicy> SRPOLICY_RULES[] = {
    {property::color, [](const wanted &asked, const filter_srpolicy &record) { return asked.is(record.Color); }},
    {property::address,
     [](const wanted &asked, const filter_srpolicy &record) { return is_address(asked, record.EndPointAddress); }},
    {property::origin, in_any_path<&candidate_path::Origin>},
    {property::discriminator, in_any_path<&candidate_path::Discriminator>},
    {property::preference, in_any_path<&candidate_path::Preference>},
    {property::segment_list, has_segment_list},
    {property::true_flag, [](const wanted &, const filter_srpolicy &) { return true; }},
    {property::kind, has_kind},
    {property::host, has_host},
    {property::npu_number, has_npu},
    {property::local_label, in_any_path<&candidate_path::LocalLabel>},
};
static_assert(fits(SRPOLICY_RULES, path_grammar::SRPOLICY_COMPONENTS));

// Endpoints --------------------------------------------------------------------------------------

// Whether the predicate holds for an element of any of the three sections.
template <class Predicate>
bool in_any_section(const filter_endpoint &record, Predicate predicate) {
    return any(record.EndpointDelay, predicate) || any(record.EndpointLiveness, predicate) ||
           any(record.EndpointProbe, predicate);
}

bool has_vrf(const wanted &asked, const filter_endpoint &record) {
    return in_any_section(record, [&](const auto &each) { return asked.is(each.VRFName); });
}

bool has_endpoint_address(const wanted &asked, const filter_endpoint &record) {
    return in_any_section(record, [&](const auto &each) { return is_address(asked, each.EndPointAddress); });
}

bool has_endpoint_segment_list(const wanted &asked, const filter_endpoint &record) {
    const auto named = [&](const filter_list_name &list) { return asked.is(list.SegmentListName); };
    const auto in_delay = [&](const filter_delay_group &group) { return any(group.EP_SegmentLists, named); };
    const auto in_liveness = [&](const filter_liveness_group &group) {
        return any(group.EPLivenessSegmentLists, named);
    };
    return any(record.EndpointDelay, [&](const auto &each) { return any(each.EP_Consolidated_Detail, in_delay); }) ||
           any(record.EndpointLiveness,
               [&](const auto &each) { return any(each.EP_Consolidated_Liveness, in_liveness); }) ||
           any(record.EndpointProbe, [&](const auto &each) { return any(each.Sessions, named); });
}

bool has_endpoint_kind(const wanted &asked, const filter_endpoint &record) {
    if (!asked.number.has_value()) {
        return false;
    }
    switch (*asked.number) {
    case DELAY_KIND: return record.EndpointDelay.count != 0;
    case LIVENESS_KIND: return record.EndpointLiveness.count != 0;
    case PROBE_KIND: return record.EndpointProbe.count != 0;
    default: return true;
    }
}

constexpr rule<filter_endpoint> ENDPOINT_RULES[] = {
    {property::vrf, has_vrf},
    {property::address, has_endpoint_address},
    {property::segment_list, has_endpoint_segment_list},
    {property::kind, has_endpoint_kind},
};
static_assert(fits(ENDPOINT_RULES, path_grammar::ENDPOINT_COMPONENTS));

// RSVP-TE tunnels --------------------------------------------------------------------------------

bool has_lsp(const wanted &asked, const filter_rsvpte &record) {
    return any(record.RSVPTELSPDelaySessions, [&](const auto &each) { return asked.is(each.LSP_ID); });
}

constexpr rule<filter_rsvpte> RSVPTE_RULES[] = {
    {property::lsp_id, has_lsp},
    {property::address, [](const wanted &asked,
                           const filter_rsvpte &record) { return asked.is_ipv4(record.TunnelDestinationIPv4Address); }},
};
static_assert(fits(RSVPTE_RULES, path_grammar::RSVPTE_COMPONENTS));

}  // namespace

bool has_all(const std::vector<wanted_component> &key, const filter_srpolicy &record) {
    return has_all(key, record, SRPOLICY_RULES);
}

bool has_all(const std::vector<wanted_component> &key, const filter_endpoint &record) {
    return has_all(key, record, ENDPOINT_RULES);
}

bool has_all(const std::vector<wanted_component> &key, const filter_rsvpte &record) {
    return has_all(key, record, RSVPTE_RULES);
}

}  // namespace item_filter
