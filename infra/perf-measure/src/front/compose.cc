// SPDX-License-Identifier: Apache-2.0
// Composes item paths: walks the components of a filter key and takes each from the options.
#include "front/compose.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "base/pm_output.h"
#include "front/heap_block.h"
#include "paths/filter_keys.h"
#include "platform/opstore.h"
#include "pm_show_client/pm_show_options.h"

void pm_snprintf(char *buffer, std::size_t size, const char *format, ...) {
    if (buffer == nullptr || size == 0) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(buffer, size, format, arguments);
    va_end(arguments);
    buffer[size - 1] = '\0';
}

namespace {

using options = pm_show_options_record;
using path_grammar::component;
using path_grammar::place;
using path_grammar::property;

constexpr std::uint32_t GENERIC_PROFILE_TYPE = 4;
constexpr char FLAG_TEXT[] = "TRUE";

std::string hexadecimal(std::uint32_t value) {
    char text[path_grammar::LONGEST_NUMBER + 1];
    pm_snprintf(text, sizeof text, "0x%x", value);
    return text;
}

// What the components of a key are taken from.
struct key_values {
    const options &given;
    const char *profile_name;  // encoded; null when none was given
};

// The text of a component; none: it is the wildcard.
using component_text = std::optional<std::string>;

template <bool options::*Set>
bool is_set(const options &o) {
    return o.*Set;
}

template <bool options::*Set, std::uint32_t options::*Value>
component_text number(const key_values &values) {
    return values.given.*Set ? component_text(hexadecimal(values.given.*Value)) : std::nullopt;
}

template <bool options::*Set, const char *options::*Value>
component_text text(const key_values &values) {
    return values.given.*Set ? component_text(values.given.*Value) : std::nullopt;
}

// Asked for even without -e: whether an address that was never given has a text is the platform's
// to say.
component_text address(const key_values &values) {
    char digits[path_grammar::LONGEST_ADDRESS + 1];
    if (ip_addr2hex_string2(&values.given.address, digits, sizeof digits) != 0) {
        return std::nullopt;  // a failed conversion may have written something
    }
    return digits;
}

component_text true_flag(const key_values &values) {
    return values.given.true_flag ? component_text(FLAG_TEXT) : std::nullopt;
}

bool has_profile_kind(const options &o) {
    return o.loss_kind || o.delay_kind || o.liveness_kind;  // the probe kind stays a wildcard
}

component_text profile_kind(const key_values &values) {
    return has_profile_kind(values.given) ? component_text(hexadecimal(values.given.profile_kind)) : std::nullopt;
}

bool has_profile_name(const options &o) { return o.profile_name != nullptr; }

component_text profile_name(const key_values &values) {
    return values.profile_name != nullptr ? component_text(values.profile_name) : std::nullopt;
}

// How each component comes from the options.
struct source {
    property what;
    bool (*is_given)(const options &);  // makes the path a filtered one
    component_text (*text)(const key_values &);
};

constexpr source SOURCES[] = {
    {property::color, is_set<&options::f_set>, number<&options::f_set, &options::f_value>},
    {property::address, is_set<&options::address_set>, address},
    {property::origin, is_set<&options::o_set>, number<&options::o_set, &options::o_value>},
    {property::discriminator, is_set<&options::g_set>, number<&options::g_set, &options::g_value>},
    {property::preference, is_set<&options::m_set>, number<&options::m_set, &options::m_value>},
    {property::segment_list, is_set<&options::n_set>, text<&options::n_set, &options::n_text>},
    {property::true_flag, is_set<&options::true_flag>, true_flag},
    {property::kind, is_set<&options::h_set>, number<&options::h_set, &options::h_value>},
    {property::host, is_set<&options::jr_set>, number<&options::jr_set, &options::jr_value>},
    {property::npu_number, is_set<&options::u_set>, number<&options::u_set, &options::u_value>},
    {property::local_label, is_set<&options::k_set>, number<&options::k_set, &options::k_value>},
    {property::vrf, is_set<&options::V_set>, text<&options::V_set, &options::V_text>},
    {property::lsp_id, is_set<&options::a_set>, number<&options::a_set, &options::a_value>},
    {property::profile_kind, has_profile_kind, profile_kind},
    {property::profile_transport, is_set<&options::profile_type_set>,
     number<&options::profile_type_set, &options::profile_type>},
    {property::profile_name, has_profile_name, profile_name},
};

constexpr const source &source_of(property wanted) { return SOURCES[static_cast<std::size_t>(wanted)]; }

constexpr bool sources_are_in_order() {
    std::size_t at = 0;
    return std::ranges::all_of(SOURCES,
                               [&at](const source &each) { return static_cast<std::size_t>(each.what) == at++; });
}
static_assert(sources_are_in_order());

bool any_is_given(const path_grammar::filter_key &filter) {
    return std::ranges::any_of(filter.components,
                               [](const component &each) { return source_of(each.what).is_given(pm_show_options); });
}

std::string compose_key(const path_grammar::filter_key &filter, const char *encoded_profile_name) {
    const key_values values{pm_show_options, encoded_profile_name};
    std::string key;
    for (const component &each : filter.components) {
        if (&each != filter.components.data()) {
            key += path_grammar::COMPONENT_SEPARATOR;
        }
        const component_text given = source_of(each.what).text(values);
        key += given.has_value() ? given->substr(0, each.longest) : std::string(path_grammar::WILDCARD);
    }
    return key;
}

const char *name_or_nothing() { return pm_show_options.name != nullptr ? pm_show_options.name : ""; }

void put_path(pm_show_path &out, const std::string &path) { pm_snprintf(out, sizeof out, "%s", path.c_str()); }

}  // namespace

void pm_show_compose_plain(pm_show_path &out, place at) { put_path(out, std::string(path_of(at)) + name_or_nothing()); }

void pm_show_compose_session(pm_show_path &out, place at) {
    if (pm_show_options.session_id != 0) {
        pm_snprintf(out, sizeof out, "%s%x", path_of(at).data(), pm_show_options.session_id);
    } else {
        put_path(out, std::string(path_of(at)));
    }
}

void pm_show_compose_filtered(pm_show_path &out, place at) {
    const path_grammar::place_row &row = row_of(at);
    if (row.filter == nullptr || !any_is_given(*row.filter)) {
        pm_show_compose_plain(out, at);
        return;
    }
    put_path(out, filter_prefix(row) + compose_key(*row.filter, nullptr) + path_grammar::KEY_END + name_or_nothing());
}

namespace {

// Encodes the profile's name as a path component, null when none was given; reports a failure in the name of
// `routine`.
errcode encode_profile_name(const char *routine, pm_heap_block<char> *encoded) {
    if (pm_show_options.profile_name == nullptr) {
        return ERRCODE_SUCCESS;
    }
    char *name = nullptr;
    std::size_t length = 0;
    const errcode code = opstore_string_encode(pm_show_options.profile_name, &name, &length);
    encoded->reset(name);
    if (code != ERRCODE_SUCCESS) {
        pm_print_error<"%s: Error encoding name name %s: %s (0x%x)">(routine, pm_show_options.profile_name,
                                                                     errcode_strerror(code), code);
    }
    return code;
}

errcode compose_generic_profile(pm_show_path &out, bool *single) {
    constexpr char ROUTINE[] = "pm_show_compose_generic_named_profile_opstore_path";  // its name in messages
    pm_heap_block<char> encoded;
    *single = pm_show_options.profile_name != nullptr;
    if (const errcode error = encode_profile_name(ROUTINE, &encoded); error != ERRCODE_SUCCESS) {
        return error;
    }
    pm_snprintf(out, sizeof out, "%s0x%x/0x%x/%s", path_of(place::name_profile).data(), pm_show_options.profile_kind,
                GENERIC_PROFILE_TYPE, encoded != nullptr ? encoded.get() : "");
    return ERRCODE_SUCCESS;
}

}  // namespace

errcode pm_show_compose_named_profile(pm_show_path &out, bool *single) {
    constexpr char ROUTINE[] = "pm_show_compose_name_profile_filter";  // its name in messages
    const options &o = pm_show_options;
    if (o.profile_type_set && o.profile_type == GENERIC_PROFILE_TYPE) {
        return compose_generic_profile(out, single);
    }
    pm_heap_block<char> encoded;
    if (const errcode error = encode_profile_name(ROUTINE, &encoded); error != ERRCODE_SUCCESS) {
        return error;
    }
    const path_grammar::place_row &profiles = path_grammar::row_of(place::name_profile);
    const std::string key = compose_key(*profiles.filter, encoded.get());
    const bool any_kind = o.delay_kind || o.loss_kind || o.liveness_kind || o.probe_kind;
    *single = any_kind && o.profile_type_set && o.profile_name != nullptr;
    const std::string item = *single ? path_grammar::KEY_END + key : "";  // the doubled key is kept as it is
    put_path(out, filter_prefix(profiles) + key + item);
    return ERRCODE_SUCCESS;
}
