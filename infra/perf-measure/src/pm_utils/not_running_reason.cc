// SPDX-License-Identifier: Apache-2.0
#include "pm_utils/not_running_reason.h"

#include "pm_utils/name_table.h"

namespace {

constexpr char UNKNOWN[] = "Unknown";

// The sentence comes first, the words for a table second.
constexpr pm_long_and_short_name NOT_RUNNING_REASONS[] = {
    {PM_NOT_RUNNING_NONE, "None", "None"},
    {PM_NOT_RUNNING_PLATFORM_UNSUPPORTED, "Platform not supported", "Platform not supported"},
    {PM_NOT_RUNNING_NOT_ON_ACTIVE, "Session only ran on V1-active", "Not on V1-active"},
    {PM_NOT_RUNNING_CONTROL_CODE_ERROR, "Control code error", "Control code error"},
    {PM_NOT_RUNNING_INTERFACE_ADMIN_DOWN, "Interface admin down", "Interface admin down"},
    {PM_NOT_RUNNING_NO_MPLS_CAPS, "Interface is not MPLS capable", "Interface not MPLS capable"},
    {PM_NOT_RUNNING_NO_INTERFACE, "Interface not present or preconfigured", "Interface not present"},
    {PM_NOT_RUNNING_NO_IP_ADDRESS, "IP address is not configured", "Missing IP address"},
    {PM_NOT_RUNNING_NO_NEXT_HOP, "Next-hop address is required to be configured under the PM interface",
     "Missing Next-hop address"},
    {PM_NOT_RUNNING_NEXT_HOP_TYPE, "Wrong next-hop address type under the PM interface", "Wrong next-hop address type"},
    {PM_NOT_RUNNING_NO_PORT, "Missing protocol querier-dst-port configuration", "Missing port configure"},
    {PM_NOT_RUNNING_DST_PORT_FAILED, "Protocol querier-dst-port failed to open", "Port failed to open"},
    {PM_NOT_RUNNING_PM_MPLS_UNSUPPORTED, "Does not support PM-MPLS protocol (RFC6374)",
     "Does not support PM-MPLS protocol (RFC6374)"},
    {PM_NOT_RUNNING_UNKNOWN, UNKNOWN, UNKNOWN},
    {PM_NOT_RUNNING_CLIENT_NOT_READY, "The client process is not ready", "Client process not ready"},
    {PM_NOT_RUNNING_NO_REVERSE_PATH, "Missing reverse path for loopback measurement mode", "Missing reverse path"},
    {PM_NOT_RUNNING_REVERSE_PATH_SID_LIMIT, "Reverse path exceed SID limit", "Rev_path exceed SID limit"},
    {PM_NOT_RUNNING_PROCESS_NOT_RUNNING, "Process is not in run state", "Process not running"},
    {PM_NOT_RUNNING_SUSPENDED, "Measurement has been suspended by exec command", "Suspended by exec command"},
    {PM_NOT_RUNNING_NO_PROFILE, "Profile is not configured", "Profile is not configured"},
    {PM_NOT_RUNNING_NO_SOURCE_ADDRESS, "Missing source address configuration", "Missing source address"},
    {PM_NOT_RUNNING_INTERFACE_TYPE_UNSUPPORTED, "Interface type not supported", "Interface type not supported"},
    {PM_NOT_RUNNING_VRF_UNSUPPORTED, "Non-default VRF is not supported", "Non-default VRF is not supported"},
    {PM_NOT_RUNNING_INTERFACE_DOWN, "Interface down", "Interface down"},
    {PM_NOT_RUNNING_NO_VRF, "Unable to resolve (non-existing) vrf", "Invalid non-existing vrf"},
    {PM_NOT_RUNNING_INVALID_SOURCE_ADDRESS, "invalid source address (cannot be same as endpoint destination)",
     "Invalid source address"},
    {PM_NOT_RUNNING_NO_SEGMENT_LIST, "Invalid or empty Segment list", "Invalid/Empty SL"},
    {PM_NOT_RUNNING_SEGMENT_LIST_DAMPENING, "Segment list changed - Dampening enabled", "SL dampening enabled"},
    {PM_NOT_RUNNING_IPV4_DOWN, "IPv4 protocol is down", "IPv4 protocol is down"},
    {PM_NOT_RUNNING_IPV6_DOWN, "IPv6 protocol is down", "IPv6 protocol is down"},
    {PM_NOT_RUNNING_IPV4_IPV6_DOWN, "Both IPv4 and IPv6 protocol down", "Both IPv4 and IPv6 protocol down"},
    {PM_NOT_RUNNING_NO_NEXT_HOP_MAC, "Missing next hop MAC address", "Missing next hop MAC address"},
    {PM_NOT_RUNNING_LOOPBACK_UNSUPPORTED, "Loopback mode unsupported for IP Endpoint without segment list",
     "Loopback mode unsupported"},
    {PM_NOT_RUNNING_SRC_PORT_FAILED, "Protocol querier-src-port failed to open", "Src port failed to open"},
    {PM_NOT_RUNNING_INVALID_REVERSE_PATH, "Invalid reverse path segment list for loopback mode",
     "Invalid reverse path"},
    {PM_NOT_RUNNING_SOURCE_FAMILY_MISMATCH,
     "Source address incompatible with Endpoint address family or Segment-list type", "Source address family mismatch"},
    {PM_NOT_RUNNING_SWFWD_NOT_READY, "SWFWD not ready", "SWFWD not ready"},
};

}  // namespace

const char *pm_not_running_reason_short_str(pm_probe_running_error_reason reason) {
    return pm_name_of(NOT_RUNNING_REASONS, reason, UNKNOWN, &pm_long_and_short_name::short_text);
}

const char *pm_not_running_reason_str(pm_probe_running_error_reason reason) {
    return pm_name_of(NOT_RUNNING_REASONS, reason, UNKNOWN);
}
