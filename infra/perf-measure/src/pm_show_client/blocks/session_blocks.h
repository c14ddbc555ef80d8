// The blocks that the displays of sessions are made of. Each prints a heading at `indent` and its
// lines two further in, unless it says otherwise. Whether a block is printed at all is the caller's
// decision. The records are the caller's and never null, unless a routine says what null means.
#pragma once

#include <cstdint>

#include "schema/pm_records.h"

// Argument of pm_show_next_advertisement for what has no interval of its own.
inline constexpr std::uint32_t PM_NO_ADVERTISEMENT_INTERVAL = 0xFFFFFFFF;

// Column of the colons in the profile of a session.
inline constexpr int PM_PROFILE_WIDTH = 24;

// A label that marks the absence of one: outside of the 20-bit range of MPLS labels.
inline constexpr std::uint32_t PM_NO_INTERNAL_LABEL = 0x100001;

// The profile that a session runs with; `profile_name` is the session's own, shown while the key is not
// set. Nothing for a null key. The colons stand at `width`.
void pm_show_profile_keys(const pm_profile_key_parcel *key, const char *profile_name, int indent, int width);

// What was advertised last. A reason is shown when it withdraws values, or else with `always_show_reason`.
void pm_show_last_advertisement(const pm_scb_last_advert_parcel *advertisement, int indent, bool always_show_reason);

// When the next check for an advertisement comes, and what has been measured for it. `interval_sec` is the
// length of the advertisement interval in seconds, 0 when there is no periodic advertisement.
void pm_show_next_advertisement(const pm_scb_next_advert_parcel *advertisement, std::uint32_t interval_sec, int indent);

// The same for what `probe` measures: while it does not run, no advertisement is scheduled.
void pm_show_next_advertisement_of_probe(const pm_scb_probe_parcel *probe,
                                         const pm_scb_next_advert_parcel *advertisement, std::uint32_t interval_sec,
                                         int indent);

// Packets and delays of a computation under `title`; `empty_text` when no packet was sent.
void pm_show_probe_results(const pm_scb_probe_results_parcel *results, int indent, const char *title,
                           const char *empty_text);

// The running probe. The lines of what comes next stand at `indent` like the heading.
void pm_show_current_computation(const pm_scb_probe_parcel *probe, int indent);

// The lines of the running probe without a heading: those of the past at `indent`, those of what comes
// next at `schedule_indent`. False when the probe has not started: a line said so.
bool pm_show_probe_lines(const pm_scb_probe_parcel *probe, int indent, int schedule_indent);

// The packets of a probe as a table.
void pm_show_probe_samples(const parcel_array<pm_scb_sample_parcel> *samples, int indent);

// Control codes that a responder sent.
void pm_show_last_error_cc(const pm_scb_control_code *code, int indent);
void pm_show_last_notification_cc(const pm_scb_control_code *code, int indent);

// Both, the notification first, each only when one was received.
void pm_show_control_codes(const pm_scb_control_code *notification, const pm_scb_control_code *error, int indent);

// State of a liveness session, without a heading: the lines stand at `indent`. `needs_ipinip` tells why a
// session to an endpoint may be down.
void pm_show_liveness_state(const pm_liveness_state_info_parcel *state, int indent, bool needs_ipinip);

// Whether an endpoint's liveness session needs IP-in-IP: one without a segment list does. The name is null,
// empty or "None" then.
[[nodiscard]] bool pm_needs_ipinip(const char *segment_list_name);

// A session that only sends probes.
void pm_show_probe_session(const pm_scb_probe_session_parcel *session, int indent);

// Responder address and hop count at `indent`, the colons at `width`; each only when present.
void pm_show_responder(const pm_record_address *address, const std::uint8_t *hops, int indent, int width);
