// SPDX-License-Identifier: Apache-2.0
// SR policies: their candidate paths, segment lists and sessions, one session an atomic path.
#include "perf-store/generator/generator_policies.h"

#include "perf-store/generator/generator_parts.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

namespace {

constexpr std::uint32_t ENDPOINT_IPV4 = 0xAC100000;  // 172.16.0.0
constexpr std::uint64_t ENDPOINT_NETWORK = GEN_ROUTER_NETWORK + 0x2000000;
constexpr std::uint32_t NODE_LABEL = 16000;
constexpr std::uint32_t ADJACENCY_LABEL = 24000;
constexpr std::uint32_t LABELS = 8000;  // of each range
constexpr std::uint16_t SID_BEHAVIOR = 1;
constexpr pm_tectl_srpolicy_origin_e ORIGINS[] = {PM_SRPOLICY_ORIGIN_CONFIGURED, PM_SRPOLICY_ORIGIN_PCE,
                                                  PM_SRPOLICY_ORIGIN_BGP};

pm_segment_parcel label_segment(std::uint32_t label, item_memory *memory) {
    pm_segment_parcel segment{};
    segment.IPAddress = gen_no_address();
    segment.MPLSLabel = memory->keep(label);
    return segment;
}

pm_segment_parcel sid_segment(std::uint32_t node, item_memory *memory) {
    pm_segment_parcel segment{};
    segment.IPAddress = gen_no_address();
    segment.USIDInfo = memory->make<pm_usid_info>();
    segment.USIDInfo->SIDValue = gen_ipv6(GEN_SID_BLOCK + (std::uint64_t{node} << 16U), 0);
    segment.USIDInfo->USIDLength = GEN_SID_LENGTH;
    segment.USIDInfo->SIDBehavior = memory->keep(SID_BEHAVIOR);
    return segment;
}

policy_list make_list(generation *set, random_source *random, const policy_state &policy, std::uint32_t number) {
    policy_list list;
    list.id = number;
    list.name = set->memory.text(gen_text("sl-", policy.name, "-", number));
    const std::uint32_t middle = NODE_LABEL + random->below(LABELS);
    const std::uint32_t end = NODE_LABEL + policy.index % LABELS;
    const std::uint32_t adjacency = ADJACENCY_LABEL + random->below(LABELS);
    if (policy.is_srv6) {
        list.segments = set->memory.array_of({sid_segment(middle, &set->memory), sid_segment(end, &set->memory)});
    } else {
        list.segments = set->memory.array_of({label_segment(middle, &set->memory), label_segment(end, &set->memory),
                                              label_segment(adjacency, &set->memory)});
        list.labels = set->memory.array_of({middle, end, adjacency});
    }
    return list;
}

// Over liveness detection the summary counts sessions by the endpoint's address family.
session_family family_of(const policy_state &policy) {
    if (policy.is_liveness) {
        return policy.is_srv6 ? session_family::ipv6 : session_family::ipv4;
    }
    return policy.is_srv6 ? session_family::srv6 : session_family::mpls;
}

void run_list(generation *set, random_source *random, const session_state &like, policy_list *list) {
    for (session_state &session : list->sessions) {
        session = like;
        session.typical_usec = like.typical_usec + random->below(like.typical_usec / 10);
        set->run(&set->route_processor(), random, &session);
    }
    list->combined = gen_combined(like, list->sessions);
}

policy_candidate make_candidate(generation *set, random_source *random, const policy_state &policy,
                                std::uint32_t number) {
    policy_candidate candidate;
    candidate.instance = number;
    candidate.preference = 300 - 100 * number;
    candidate.discriminator = policy.index + 1;
    candidate.origin = ORIGINS[random->below(std::size(ORIGINS))];
    candidate.local_label = ADJACENCY_LABEL + policy.index % LABELS;
    const std::uint32_t lists = random->between(1, 2);
    for (std::uint32_t i = 1; i <= lists; ++i) {
        candidate.lists.push_back(make_list(set, random, policy, 2 * (number - 1) + i));
    }
    return candidate;
}

// All atomic paths of a candidate path fail together: it is the candidate path that names the reason.
void run_candidate(generation *set, random_source *random, const policy_state &policy, policy_candidate *candidate) {
    session_state like;
    like.kind = policy.is_liveness ? PM_MEASUREMENT_LIVENESS : PM_MEASUREMENT_DELAY;
    like.transport = PM_TRANSPORT_SR_POLICY;
    like.named_profile = policy.index % 2 == 0;
    like.family = family_of(policy);
    like.reason = gen_reason(random, PM_TRANSPORT_SR_POLICY);
    like.typical_usec = random->between(500, 16000);
    std::vector<session_state> combined;
    for (policy_list &list : candidate->lists) {
        run_list(set, random, like, &list);
        combined.push_back(list.combined);
    }
    candidate->combined = gen_combined(like, combined);
}

policy_state make_policy(generation *set, std::uint32_t index) {
    random_source random(set->options.seed, random_subject::policy, index);
    policy_state policy;
    policy.index = index;
    policy.name = set->memory.text(gen_policy_name(index));
    policy.is_liveness = index % 3 == 2;
    policy.is_srv6 = index % 5 == 4;
    policy.color = index + 1;
    policy.endpoint =
        policy.is_srv6 ? gen_address(gen_ipv6(ENDPOINT_NETWORK, index + 1ULL)) : gen_address(ENDPOINT_IPV4 + index + 1);
    if (set->options.interfaces != 0) {
        policy.outgoing_interface = gen_interface_handle(index % set->options.interfaces);
    }
    const std::uint32_t candidates = random.between(1, 2);
    std::size_t lists = 0;
    for (std::uint32_t number = 1; number <= candidates; ++number) {
        policy.candidates.push_back(make_candidate(set, &random, policy, number));
        lists += policy.candidates.back().lists.size();
    }
    policy.sessions.resize(lists * set->options.paths);
    session_state *next = policy.sessions.data();
    for (policy_candidate &candidate : policy.candidates) {
        for (policy_list &list : candidate.lists) {
            list.sessions = {next, set->options.paths};
            next += set->options.paths;
        }
        run_candidate(set, &random, policy, &candidate);
    }
    return policy;
}

void write_session(generation *set, const policy_state &policy, const policy_candidate &candidate,
                   const policy_list &list, const session_state &session) {
    auto *record = set->memory.make<pm_session_parcel>();
    record->MeasurementType = session.kind;
    record->Session.type = PM_TRANSPORT_SR_POLICY;
    pm_session_srpolicy_parcel &own = record->Session.SRPolicySession;
    own.Color = policy.color;
    own.EndPointAddress = policy.endpoint;
    own.PolicyName = policy.name;
    own.Instance = candidate.instance;
    own.Preference = candidate.preference;
    own.Origin = candidate.origin;
    own.Discriminator = candidate.discriminator;
    own.SegmentListName = list.name;
    own.AtomicPath = gen_atomic_path(policy, list, session, &set->memory);
    set->write_session(set->route_processor(), session, *record);
}

void write_sessions(generation *set, const policy_state &policy) {
    for (const policy_candidate &candidate : policy.candidates) {
        for (const policy_list &list : candidate.lists) {
            for (const session_state &session : list.sessions) {
                write_session(set, policy, candidate, list, session);
            }
        }
    }
}

}  // namespace

void gen_policies(generation *set) {
    for (std::uint32_t index = 0; index < set->options.policies && set->lines.good(); ++index) {
        set->memory.reset();
        const policy_state policy = make_policy(set, index);
        ++set->route_processor().policies;
        gen_policy_detail(set, policy);
        gen_policy_counters(set, policy);
        gen_policy_histories(set, policy);
        write_sessions(set, policy);
    }
}

}  // namespace perf_store
