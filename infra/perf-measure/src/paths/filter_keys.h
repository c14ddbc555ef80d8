// SPDX-License-Identifier: Apache-2.0
// Filter keys: what a filtered path asks for, component by component.
//
//   srpolicy/detail-filter/0xa,0a000001,________,...,________/NAME
//
// A filtered path has "-filter/" where the plain path has its last '/', then a key, a '/' and, when it asks for
// one item, the item's name. A key is a list of components in the order of its table, separated by commas; the
// wildcard is a component that was not given, and matches everything. front/compose.cc says how a component is
// taken from the options, platform/local/filters what it is compared with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace path_grammar {

inline constexpr std::string_view WILDCARD = "________";
inline constexpr std::string_view FILTER_MARK = "-filter/";
inline constexpr char COMPONENT_SEPARATOR = ',';
inline constexpr char KEY_END = '/';

// What a component says of the records that are asked for.
enum class property : std::uint8_t {
    color,
    address,  // of the endpoint, or of the tunnel's destination
    origin,
    discriminator,
    preference,
    segment_list,  // its name
    true_flag,     // written by -O, compared with nothing
    kind,          // of measurement
    host,          // of sessions: CPU or NPU
    npu_number,
    local_label,
    vrf,  // its name
    lsp_id,
    profile_kind,
    profile_transport,
    profile_name,  // encoded
};

struct component {
    property what;
    std::size_t longest;  // bytes; a longer text is cut
};

inline constexpr std::size_t LONGEST_NUMBER = 15;  // written as "0x%x", which never gets there
inline constexpr std::size_t LONGEST_TEXT = 63;
inline constexpr std::size_t LONGEST_ADDRESS = 255;  // 8 or 32 hexadecimal digits, or what the platform writes
inline constexpr std::size_t LONGEST_PROFILE_NAME = 255;

// The kinds of items that have a key. All but profiles are compared by their detail records.
enum class family : std::uint8_t { srpolicy, endpoint, rsvpte, profile };

struct filter_key {
    family what;
    std::span<const component> components;
};

inline constexpr component SRPOLICY_COMPONENTS[] = {
    {property::color, LONGEST_NUMBER},       {property::address, LONGEST_ADDRESS},
    {property::origin, LONGEST_NUMBER},      {property::discriminator, LONGEST_NUMBER},
    {property::preference, LONGEST_NUMBER},  {property::segment_list, LONGEST_TEXT},
    {property::true_flag, LONGEST_TEXT},     {property::kind, LONGEST_NUMBER},
    {property::host, LONGEST_NUMBER},        {property::npu_number, LONGEST_NUMBER},
    {property::local_label, LONGEST_NUMBER},
};
inline constexpr component ENDPOINT_COMPONENTS[] = {
    {property::vrf, LONGEST_TEXT},
    {property::address, LONGEST_ADDRESS},
    {property::segment_list, LONGEST_TEXT},
    {property::kind, LONGEST_NUMBER},
};
inline constexpr component RSVPTE_COMPONENTS[] = {
    // here the address comes last
    {property::lsp_id, LONGEST_NUMBER},
    {property::address, LONGEST_ADDRESS},
};
inline constexpr component PROFILE_COMPONENTS[] = {
    {property::profile_kind, LONGEST_NUMBER},
    {property::profile_transport, LONGEST_NUMBER},
    {property::profile_name, LONGEST_PROFILE_NAME},
};

inline constexpr filter_key SRPOLICY_KEY{family::srpolicy, SRPOLICY_COMPONENTS};
inline constexpr filter_key ENDPOINT_KEY{family::endpoint, ENDPOINT_COMPONENTS};
inline constexpr filter_key RSVPTE_KEY{family::rsvpte, RSVPTE_COMPONENTS};
inline constexpr filter_key PROFILE_KEY{family::profile, PROFILE_COMPONENTS};

}  // namespace path_grammar
