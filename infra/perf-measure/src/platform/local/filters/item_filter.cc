// See item_filter.h.
#include "platform/local/filters/item_filter.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>

#include "platform/address.h"
#include "platform/parcel.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"

namespace item_filter {

namespace {

constexpr std::string_view WILDCARD = "________";
constexpr std::string_view FILTER = "-filter/";
constexpr std::string_view ALL_PROFILES = "all-profile";
constexpr std::string_view NAMED_PROFILES = "name-profile";

// Kinds that the last component of some keys names.
constexpr std::uint32_t DELAY_KIND = 0;
constexpr std::uint32_t LIVENESS_KIND = 2;
constexpr std::uint32_t PROBE_KIND = 3;
constexpr std::uint32_t HOST_CPU = 0;
constexpr std::uint32_t HOST_NPU = 1;

// "0x1f"; false for anything else.
bool read_number(std::string_view text, std::uint32_t *number) {
    if (!text.starts_with("0x")) {
        return false;
    }
    const char *end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data() + 2, end, *number, 16);
    return failure == std::errc{} && stop == end;
}

bool is_number(std::string_view component, std::uint32_t value) {
    std::uint32_t number = 0;
    return read_number(component, &number) && number == value;
}

bool is_text(std::string_view component, const char *text) { return text != nullptr && component == text; }

bool is_ipv4(std::string_view component, std::uint32_t value) {
    ip_address address{};
    return hex_string2ip_addr(std::string(component).c_str(), &address) == 0 && address.family == IP_FAMILY_IPV4 &&
           std::memcmp(address.octets, &value, sizeof value) == 0;
}

bool is_address(std::string_view component, const pm_record_address &value) {
    ip_address address{};
    if (value.IPAddressType == PM_RECORD_ADDRESS_IPV4) {
        return is_ipv4(component, value.IPv4);
    }
    return value.IPAddressType == PM_RECORD_ADDRESS_IPV6 &&
           hex_string2ip_addr(std::string(component).c_str(), &address) == 0 && address.family == IP_FAMILY_IPV6 &&
           std::memcmp(address.octets, value.IPv6.octets, sizeof value.IPv6.octets) == 0;
}

template <class Array, class Predicate>
bool any(const Array &array, Predicate predicate) {
    return std::any_of(array.begin(), array.end(), predicate);
}

// SR policies ------------------------------------------------------------------------------------

using text = std::string_view;
using policy = pm_srpolicy_parcel;
using candidate_path = pm_srpolicy_candidate_path_parcel;

template <class Predicate>
bool any_path(const policy &record, Predicate predicate) {
    return any(record.CandidatePaths, predicate);
}

bool has_segment_list(text name, const policy &record) {
    return any_path(record, [&](const candidate_path &path) {
        return any(path.SegmentLists, [&](const auto &list) { return is_text(name, list.SegmentListName); });
    });
}

bool has_kind(text kind, const policy &record) {
    std::uint32_t number = 0;
    if (!read_number(kind, &number)) {
        return false;
    }
    if (number != DELAY_KIND && number != LIVENESS_KIND) {
        return true;
    }
    return any_path(record, [&](const candidate_path &path) {
        return (path.LivenessDetectionEnabled != 0) == (number == LIVENESS_KIND);
    });
}

bool has_host(text host, const policy &record) {
    std::uint32_t number = 0;
    return read_number(host, &number) && any_path(record, [&](const candidate_path &path) {
               return number == (path.NPUOffloadSessionEnabled != 0 ? HOST_NPU : HOST_CPU);
           });
}

bool has_npu(text npu, const policy &record) {
    return any_path(record, [&](const candidate_path &path) {
        return any(path.SegmentLists, [&](const auto &list) {
            return any(list.AtomicPaths, [&](const auto &atomic) {
                return atomic.SessionNPUOffloadInfo != nullptr &&
                       is_number(npu, atomic.SessionNPUOffloadInfo->NpuNumber);
            });
        });
    });
}

using policy_rule = bool (*)(text component, const policy &record);
constexpr policy_rule POLICY_RULES[] = {
    [](text c, const policy &r) { return is_number(c, r.Color); },
    [](text c, const policy &r) { return is_address(c, r.EndPointAddress); },
    [](text c, const policy &r) {
        return any_path(r, [&](const candidate_path &p) { return is_number(c, static_cast<std::uint32_t>(p.Origin)); });
    },
    [](text c, const policy &r) {
        return any_path(r, [&](const candidate_path &p) { return is_number(c, p.Discriminator); });
    },
    [](text c, const policy &r) {
        return any_path(r, [&](const candidate_path &p) { return is_number(c, p.Preference); });
    },
    has_segment_list,
    [](text, const policy &) { return true; },  // the service does not compare this one
    has_kind,
    has_host,
    has_npu,
    [](text c, const policy &r) {
        return any_path(r, [&](const candidate_path &p) { return is_number(c, p.LocalLabel); });
    },
};

// Endpoints --------------------------------------------------------------------------------------

using endpoint = pm_endpoint_common;

// Whether predicate holds for an element of any of the three sections.
template <class Predicate>
bool any_section(const endpoint &record, Predicate predicate) {
    return any(record.EndpointDelay, predicate) || any(record.EndpointLiveness, predicate) ||
           any(record.EndpointProbe, predicate);
}

bool has_endpoint_segment_list(text name, const endpoint &record) {
    const auto named = [&](const auto &list) { return is_text(name, list.SegmentListName); };
    return any(record.EndpointDelay,
               [&](const auto &each) {
                   return any(each.EP_Consolidated_Detail,
                              [&](const auto &group) { return any(group.EP_SegmentLists, named); });
               }) ||
           any(record.EndpointLiveness,
               [&](const auto &each) {
                   return any(each.EP_Consolidated_Liveness,
                              [&](const auto &group) { return any(group.EPLivenessSegmentLists, named); });
               }) ||
           any(record.EndpointProbe, [&](const auto &each) { return any(each.Sessions, named); });
}

bool has_endpoint_kind(text kind, const endpoint &record) {
    std::uint32_t number = 0;
    if (!read_number(kind, &number)) {
        return false;
    }
    switch (number) {
    case DELAY_KIND: return record.EndpointDelay.count != 0;
    case LIVENESS_KIND: return record.EndpointLiveness.count != 0;
    case PROBE_KIND: return record.EndpointProbe.count != 0;
    default: return true;
    }
}

using endpoint_rule = bool (*)(text component, const endpoint &record);
constexpr endpoint_rule ENDPOINT_RULES[] = {
    [](text c, const endpoint &r) {
        return any_section(r, [&](const auto &each) { return is_text(c, each.VRFName); });
    },
    [](text c, const endpoint &r) {
        return any_section(r, [&](const auto &each) { return is_address(c, each.EndPointAddress); });
    },
    has_endpoint_segment_list,
    has_endpoint_kind,
};

// RSVP-TE tunnels --------------------------------------------------------------------------------

using tunnel = pm_rsvpte_parcel;
using tunnel_rule = bool (*)(text component, const tunnel &record);
constexpr tunnel_rule TUNNEL_RULES[] = {
    [](text c, const tunnel &r) {
        return any(r.RSVPTELSPDelaySessions, [&](const auto &each) { return is_number(c, each.LSP_ID); });
    },
    [](text c, const tunnel &r) { return is_ipv4(c, r.TunnelDestinationIPv4Address); },
};

// Places ---------------------------------------------------------------------------------------

constexpr std::size_t PROFILE_COMPONENTS = 3;  // kind, transport and name, as they stand in the path

// Where the items stand that can be filtered. A name may hold anything, so "-filter/" elsewhere in a path
// is a part of it.
struct place_entry {
    std::string_view place;
    family what;
    std::size_t components;  // of its keys
};
constexpr std::size_t POLICY_COMPONENTS = std::size(POLICY_RULES);
constexpr std::size_t ENDPOINT_COMPONENTS = std::size(ENDPOINT_RULES);
constexpr std::size_t TUNNEL_COMPONENTS = std::size(TUNNEL_RULES);
constexpr place_entry PLACES[] = {
    {"srpolicy/detail", family::srpolicy, POLICY_COMPONENTS},
    {"srpolicy/counters", family::srpolicy, POLICY_COMPONENTS},
    {"srpolicy/delay/probe-history", family::srpolicy, POLICY_COMPONENTS},
    {"srpolicy/delay/aggr-history", family::srpolicy, POLICY_COMPONENTS},
    {"srpolicy/delay/adv-history", family::srpolicy, POLICY_COMPONENTS},
    {"srpolicy/liveness/live-history", family::srpolicy, POLICY_COMPONENTS},
    {"endpoint/detail", family::endpoint, ENDPOINT_COMPONENTS},
    {"endpoint/counters", family::endpoint, ENDPOINT_COMPONENTS},
    {"endpoint/delay/probe-history", family::endpoint, ENDPOINT_COMPONENTS},
    {"endpoint/delay/aggr-history", family::endpoint, ENDPOINT_COMPONENTS},
    {"endpoint/delay/adv-history", family::endpoint, ENDPOINT_COMPONENTS},
    {"endpoint/delay/live-history", family::endpoint, ENDPOINT_COMPONENTS},
    {"rsvpte/detail", family::rsvpte, TUNNEL_COMPONENTS},
    {"rsvpte/counters", family::rsvpte, TUNNEL_COMPONENTS},
    {"rsvpte/delay/probe-history", family::rsvpte, TUNNEL_COMPONENTS},
    {"rsvpte/delay/aggr-history", family::rsvpte, TUNNEL_COMPONENTS},
    {"rsvpte/delay/adv-history", family::rsvpte, TUNNEL_COMPONENTS},
    {NAMED_PROFILES, family::profile, PROFILE_COMPONENTS},
};

// The place whose filter a path names; null when it names none.
const place_entry *filtered_place(std::string_view item_path) {
    const auto *found = std::find_if(std::begin(PLACES), std::end(PLACES), [&](const place_entry &each) {
        return item_path.starts_with(each.place) && item_path.substr(each.place.size()).starts_with(FILTER);
    });
    return found != std::end(PLACES) ? found : nullptr;
}

// Splits a key off the front of `rest`, which keeps what follows its '/'. Components may hold a '/'; only
// the last one ends at it.
std::vector<std::string> take_key(std::string_view *rest, std::size_t count) {
    std::vector<std::string> components;
    while (components.size() + 1 < count) {
        const std::size_t comma = rest->find(',');
        if (comma == std::string_view::npos) {
            break;
        }
        components.emplace_back(rest->substr(0, comma));
        rest->remove_prefix(comma + 1);
    }
    const std::size_t end = std::min(rest->find('/'), rest->size());
    components.emplace_back(rest->substr(0, end));
    rest->remove_prefix(std::min(end + 1, rest->size()));
    return components;
}

bool is_wildcard(const std::string &component) { return component == WILDCARD; }

// "0x0/0x2/gold" against the three components of a profile key.
bool matches_profile(std::string_view name, const std::vector<std::string> &components) {
    for (std::size_t i = 0; i < PROFILE_COMPONENTS; ++i) {
        const std::size_t end = i + 1 == PROFILE_COMPONENTS ? name.size() : std::min(name.find('/'), name.size());
        if (!is_wildcard(components[i]) && name.substr(0, end) != components[i]) {
            return false;
        }
        name.remove_prefix(std::min(end + 1, name.size()));
    }
    return true;
}

}  // namespace

selection select(std::string_view item_path) {
    selection result;
    result.path = item_path;
    if (item_path.substr(0, item_path.find('/')) == ALL_PROFILES) {
        result.path = std::string(NAMED_PROFILES) + std::string(item_path.substr(ALL_PROFILES.size()));
        return result;
    }
    const place_entry *filtered = filtered_place(item_path);
    if (filtered == nullptr) {
        return result;
    }
    std::string_view rest = item_path.substr(filtered->place.size() + FILTER.size());
    result.what = filtered->what;
    result.components = take_key(&rest, filtered->components);
    result.incomplete = result.components.size() < filtered->components;
    result.prefix = std::string(filtered->place) + "/";
    result.path = result.prefix;
    if (filtered->what == family::profile) {
        result.first_match = !rest.empty();
    } else {
        result.path += rest;
    }
    return result;
}

store::companion_paths companions_of(const selection &wanted) {
    std::string_view details;
    switch (wanted.what) {
    case family::everything:
    case family::profile: return {};
    case family::srpolicy: details = "srpolicy/detail/"; break;
    case family::endpoint: details = "endpoint/detail/"; break;
    case family::rsvpte: details = "rsvpte/detail/"; break;
    }
    const bool all = std::all_of(wanted.components.begin(), wanted.components.end(), is_wildcard);
    return wanted.incomplete || all || wanted.prefix == details ? store::companion_paths{}
                                                                : store::companion_paths{wanted.prefix, details};
}

template <class Record, class Rules>
bool matcher::matches_detail(std::string_view parcel, const parcel_descriptor *descriptor, const Rules &rules) const {
    Record record;
    if (parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), &record, descriptor) !=
        ERRCODE_SUCCESS) {
        return true;
    }
    bool all = true;
    for (std::size_t i = 0; i < std::size(rules) && all; ++i) {
        const std::string &component = selection_.components[i];
        all = is_wildcard(component) || rules[i](component, record);
    }
    parcel_free_indirections(&record, descriptor);
    return all;
}

errcode matcher::match(std::string_view path, std::string_view parcel, std::string_view companion,
                       bool *matches) const {
    *matches = !selection_.incomplete;
    if (!*matches || selection_.what == family::everything) {
        return ERRCODE_SUCCESS;
    }
    if (selection_.what == family::profile) {
        *matches = matches_profile(path.substr(selection_.prefix.size()), selection_.components);
        return ERRCODE_SUCCESS;
    }
    if (std::all_of(selection_.components.begin(), selection_.components.end(), is_wildcard)) {
        return ERRCODE_SUCCESS;
    }
    if (!companions_of(selection_).companions.empty()) {  // counters or a history of the record
        parcel = companion;
        if (parcel.empty()) {
            *matches = false;
            return ERRCODE_SUCCESS;
        }
    }
    switch (selection_.what) {
    case family::srpolicy:
        *matches = matches_detail<policy>(parcel, pm_srpolicy_parcel_descriptor(), POLICY_RULES);
        break;
    case family::endpoint:
        *matches = matches_detail<endpoint>(parcel, pm_endpoint_common_descriptor(), ENDPOINT_RULES);
        break;
    case family::rsvpte: *matches = matches_detail<tunnel>(parcel, pm_rsvpte_parcel_descriptor(), TUNNEL_RULES); break;
    default: *matches = false;
    }
    return ERRCODE_SUCCESS;
}

}  // namespace item_filter
