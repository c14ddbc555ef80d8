// SPDX-License-Identifier: Apache-2.0
// The parts of records that show a session, made from its state; each is the same wherever it appears.
#pragma once

#include "perf-store/generator/generator_record.h"
#include "perf-store/generator/generator_session.h"

namespace perf_store {

[[nodiscard]] const char *gen_profile_name(const session_state &session);
[[nodiscard]] pm_profile_key_parcel gen_profile_key(const session_state &session);

[[nodiscard]] pm_scb_probe_parcel gen_current_probe(const session_state &session);
[[nodiscard]] pm_scb_probe_results_parcel gen_current_results(const session_state &session);
[[nodiscard]] pm_scb_probe_results_parcel gen_last_results(const session_state &session);
// The packets of the current probe.
[[nodiscard]] parcel_array<pm_scb_sample_parcel> gen_samples(const session_state &session, item_memory *memory);
[[nodiscard]] pm_scb_last_advert_parcel gen_last_advertisement(const session_state &session);
[[nodiscard]] pm_scb_next_advert_parcel gen_next_advertisement(const session_state &session);
[[nodiscard]] pm_liveness_state_info_parcel gen_liveness(const session_state &session);

[[nodiscard]] pm_delay_counters_info_parcel gen_delay_counters(const session_state &session);
[[nodiscard]] pm_srpolicy_liveness_counters_info_parcel gen_srpolicy_liveness_counters(const session_state &session);
[[nodiscard]] pm_endpoint_liveness_counters_info_parcel gen_endpoint_liveness_counters(const session_state &session);

// The control block of an interface or endpoint session.
[[nodiscard]] pm_scb_parcel gen_control_block(const session_state &session, item_memory *memory);

// Trace ids of sessions, and their periodic advertisement interval.
[[nodiscard]] std::uint32_t gen_trace_id(const session_state &session);
[[nodiscard]] std::uint32_t gen_advertisement_interval(const session_state &session);

// The delay or liveness history of a session, oldest sample first; empty for one that does not run.
[[nodiscard]] pm_history_info gen_history(pm_history_type_e type, const session_state &session, item_memory *memory);

}  // namespace perf_store
