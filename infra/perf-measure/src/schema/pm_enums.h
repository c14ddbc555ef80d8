// SPDX-License-Identifier: Apache-2.0
// The enumerations of record fields, by the names that the record catalogue uses.
//
// They are unscoped with a fixed type, so that a record may carry any 32-bit value: a reader must
// expect values that have no enumerator. The words for the values are in pm_utils.
#pragma once

#include <cstdint>

// Kind of address in a record. Not the numbering of pm_utils/unshown_address.h, where IPv4 is 2.
enum pm_addr_type_e : std::int32_t {
    PM_RECORD_ADDRESS_IPV4 = 0,
    PM_RECORD_ADDRESS_IPV6 = 1,
    PM_RECORD_ADDRESS_NONE = 2,
};

enum pm_transport_type_e : std::int32_t {
    PM_TRANSPORT_INTERFACE = 0,
    PM_TRANSPORT_RSVP_TE = 1,
    PM_TRANSPORT_SR_POLICY = 2,
    PM_TRANSPORT_ENDPOINT = 3,
    PM_TRANSPORT_GENERIC = 4,
};

enum pm_measurement_type_e : std::int32_t {
    PM_MEASUREMENT_DELAY = 0,
    PM_MEASUREMENT_LOSS = 1,
    PM_MEASUREMENT_LIVENESS = 2,
    PM_MEASUREMENT_PROBE = 3,
};

enum pm_delay_mode_e : std::int32_t {
    PM_DELAY_MODE_ONE_WAY = 0,
    PM_DELAY_MODE_TWO_WAY = 1,
    PM_DELAY_MODE_LOOPBACK = 2,
    PM_DELAY_MODE_NOT_SET = 3,
};

enum pm_probe_type_e : std::int32_t {
    PM_PROBE_NOT_SET = 0,
    PM_PROBE_PATH_TRACING = 1,
    PM_PROBE_PATH_ASSURANCE = 2,
};

// Protocol of the probe packets.
enum pm_payload_type_e : std::int32_t {
    PM_PAYLOAD_PM = 0,  // RFC 6374
    PM_PAYLOAD_TWAMP_LIGHT = 1,
};

// Encapsulation of the probe packets. Every value but PM_ENCAP_UDP reads as MPLS.
enum pm_encap_mode_e : std::int32_t {
    PM_ENCAP_MPLS = 0,
    PM_ENCAP_UDP = 1,
};

// What a history holds: delay (DM) or loss (LM), per probe, packet, aggregation or advertisement.
enum pm_history_type_e : std::int32_t {
    PM_HISTORY_DM_PROBE = 0,
    PM_HISTORY_DM_PACKET = 1,
    PM_HISTORY_DM_AGGREGATION = 2,
    PM_HISTORY_DM_ADVERTISEMENT = 3,
    PM_HISTORY_LIVENESS = 4,
    PM_HISTORY_LM_PROBE = 5,
    PM_HISTORY_LM_PACKET = 6,
    PM_HISTORY_LM_AGGREGATION = 7,
    PM_HISTORY_LM_ADVERTISEMENT = 8,
};

// How the packet rate is shared out among the sessions.
enum pm_rl_pps_pool_type_e : std::int32_t {
    PM_PPS_POOL_SINGLE = 0,
    PM_PPS_POOL_MULTIPLE = 1,
};

// Who created a candidate path. The values are decades, as protocol preferences are.
enum pm_tectl_srpolicy_origin_e : std::int32_t {
    PM_SRPOLICY_ORIGIN_PCE = 10,
    PM_SRPOLICY_ORIGIN_BGP = 20,
    PM_SRPOLICY_ORIGIN_CONFIGURED = 30,
};

// SRv6 SID format; the platform owns the values and their names (platform/srv6_util.h).
enum MgmtSRv6_SIDFmtType : std::int32_t {};

// State of a session that is offloaded to a network processor.
enum pm_npu_session_running_state_e : std::int32_t {
    PM_NPU_SESSION_NONE = 0,
    PM_NPU_SESSION_CREATED = 1,
    PM_NPU_SESSION_PENDING_CREATION = 2,
    PM_NPU_SESSION_PENDING_UPDATE = 3,
    PM_NPU_SESSION_PENDING_DELETE = 4,
};

// Where a distributed session runs. Every value but PM_DR_SESSION_CPU is a network processor.
enum pm_dr_session_type_e : std::int32_t {
    PM_DR_SESSION_CPU = 0,  // the route processor
    PM_DR_SESSION_NPU = 1,
};

// Why the distribution of a session waits for another try.
enum pm_dr_retry_reason_e : std::int32_t {
    PM_DR_RETRY_PROFILE_NOT_CONFIGURED = 0,
    PM_DR_RETRY_NO_NPU_CAPACITY = 1,
    PM_DR_RETRY_LABEL_ALLOCATION_FAILED = 2,
};

// Why values were advertised, or withdrawn.
enum pm_advert_reason_e : std::int32_t {
    PM_ADVERT_REASON_NONE = 0,
    PM_ADVERT_REASON_PERIODIC_AVERAGE = 1,
    PM_ADVERT_REASON_PERIODIC_MINIMUM = 2,
    PM_ADVERT_REASON_PERIODIC_MAXIMUM = 3,
    PM_ADVERT_REASON_PERIODIC_VARIANCE = 4,
    PM_ADVERT_REASON_ACCELERATED_AVERAGE = 5,
    PM_ADVERT_REASON_ACCELERATED_MINIMUM = 6,
    PM_ADVERT_REASON_ACCELERATED_MAXIMUM = 7,
    PM_ADVERT_REASON_UPPER_BOUND_AVERAGE = 8,
    PM_ADVERT_REASON_UPPER_BOUND_MINIMUM = 9,
    PM_ADVERT_REASON_UPPER_BOUND_MAXIMUM = 10,
    PM_ADVERT_REASON_ANOMALY_DYNAMIC = 11,
    PM_ADVERT_REASON_ANOMALY_STATIC = 12,
    PM_ADVERT_REASON_ENABLED = 13,
    PM_ADVERT_REASON_DISABLED = 14,
    PM_ADVERT_REASON_SESSION_DELETED = 15,
    PM_ADVERT_REASON_EXEC_CLEAR = 16,
    PM_ADVERT_REASON_DELAY_CONFIG = 17,
    PM_ADVERT_REASON_DELAY_UNCONFIG = 18,
    PM_ADVERT_REASON_CONTROL_CODE_ERROR = 19,
    PM_ADVERT_REASON_FIRST = 20,
    PM_ADVERT_REASON_LINK_DOWN = 21,
    PM_ADVERT_REASON_NEW_CHILD_SESSION = 22,
    PM_ADVERT_REASON_SESSION_ERROR = 23,
    PM_ADVERT_REASON_DYNAMIC_DELAY = 24,
    PM_ADVERT_REASON_PATH_TRACING_CONFIG = 25,
    PM_ADVERT_REASON_PATH_TRACING_UNCONFIG = 26,
    PM_ADVERT_REASON_PATH_TRACING_READY = 27,
};

// Why a probe is not running; zero when it runs.
enum pm_probe_running_error_reason : std::int32_t {
    PM_NOT_RUNNING_NONE = 0,
    PM_NOT_RUNNING_PLATFORM_UNSUPPORTED = 1,
    PM_NOT_RUNNING_NOT_ON_ACTIVE = 2,
    PM_NOT_RUNNING_CONTROL_CODE_ERROR = 3,
    PM_NOT_RUNNING_INTERFACE_ADMIN_DOWN = 4,
    PM_NOT_RUNNING_NO_MPLS_CAPS = 5,
    PM_NOT_RUNNING_NO_INTERFACE = 6,
    PM_NOT_RUNNING_NO_IP_ADDRESS = 7,
    PM_NOT_RUNNING_NO_NEXT_HOP = 8,
    PM_NOT_RUNNING_NEXT_HOP_TYPE = 9,
    PM_NOT_RUNNING_NO_PORT = 10,
    PM_NOT_RUNNING_DST_PORT_FAILED = 11,
    PM_NOT_RUNNING_PM_MPLS_UNSUPPORTED = 12,
    PM_NOT_RUNNING_UNKNOWN = 13,
    PM_NOT_RUNNING_CLIENT_NOT_READY = 14,
    PM_NOT_RUNNING_NO_REVERSE_PATH = 15,
    PM_NOT_RUNNING_REVERSE_PATH_SID_LIMIT = 16,
    PM_NOT_RUNNING_PROCESS_NOT_RUNNING = 17,
    PM_NOT_RUNNING_SUSPENDED = 18,
    PM_NOT_RUNNING_NO_PROFILE = 19,
    PM_NOT_RUNNING_NO_SOURCE_ADDRESS = 20,
    PM_NOT_RUNNING_INTERFACE_TYPE_UNSUPPORTED = 21,
    PM_NOT_RUNNING_VRF_UNSUPPORTED = 22,
    PM_NOT_RUNNING_INTERFACE_DOWN = 23,
    PM_NOT_RUNNING_NO_VRF = 24,
    PM_NOT_RUNNING_INVALID_SOURCE_ADDRESS = 25,
    PM_NOT_RUNNING_NO_SEGMENT_LIST = 26,
    PM_NOT_RUNNING_SEGMENT_LIST_DAMPENING = 27,
    PM_NOT_RUNNING_IPV4_DOWN = 28,
    PM_NOT_RUNNING_IPV6_DOWN = 29,
    PM_NOT_RUNNING_IPV4_IPV6_DOWN = 30,
    PM_NOT_RUNNING_NO_NEXT_HOP_MAC = 31,
    PM_NOT_RUNNING_LOOPBACK_UNSUPPORTED = 32,
    PM_NOT_RUNNING_SRC_PORT_FAILED = 33,
    PM_NOT_RUNNING_INVALID_REVERSE_PATH = 34,
    PM_NOT_RUNNING_SOURCE_FAMILY_MISMATCH = 35,
    PM_NOT_RUNNING_SWFWD_NOT_READY = 36,
};
