// Path composition. See compose.h.
#include "front/compose.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>

#include "base/pm_output.h"
#include "front/heap_block.h"
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

// Buffers of key components, terminators included.
constexpr std::size_t NUMBER_SIZE = 16;
constexpr std::size_t WIDE_NUMBER_SIZE = 64;
constexpr std::size_t TEXT_SIZE = 64;
constexpr std::size_t ADDRESS_SIZE = 256;
constexpr std::size_t PROFILE_NAME_SIZE = 256;

constexpr std::uint32_t GENERIC_PROFILE_TYPE = 4;
constexpr char name_profile_prefix[] = "name-profile/";
constexpr char name_profile_filter_prefix[] = "name-profile-filter/";

const char *name_or_nothing() { return pm_show_options.name != nullptr ? pm_show_options.name : ""; }

// One component of a key in a buffer of its own: the wildcard until it is given.
template <std::size_t Size>
struct component {
    char text[Size];

    component() { pm_snprintf(text, Size, "________"); }

    static component of_number(bool given, std::uint32_t value) {
        component result;
        if (given) {
            pm_snprintf(result.text, Size, "0x%x", value);
        }
        return result;
    }
    static component of_text(bool given, const char *value) {
        component result;
        if (given) {
            pm_snprintf(result.text, Size, "%s", value);
        }
        return result;
    }
};

using number_component = component<NUMBER_SIZE>;
using wide_number_component = component<WIDE_NUMBER_SIZE>;
using text_component = component<TEXT_SIZE>;

// Asked for even without -e: whether an address that was never given has a text is the platform's
// to say.
component<ADDRESS_SIZE> address_component() {
    component<ADDRESS_SIZE> address;
    if (ip_addr2hex_string2(&pm_show_options.address, address.text, ADDRESS_SIZE) != 0) {
        return {};  // a failed conversion may have written something
    }
    return address;
}

void join(pm_show_path &out, const char *prefix, const char *rest) {
    pm_snprintf(out, sizeof out, "%s%s", prefix, rest);
}

void compose_filtered(pm_show_path &out, const char *filter_prefix, const char *key, const char *item) {
    pm_snprintf(out, sizeof out, "%s%s/%s", filter_prefix, key, item);
}

}  // namespace

void pm_show_compose_plain(pm_show_path &out, const char *prefix) { join(out, prefix, name_or_nothing()); }

void pm_show_compose_session(pm_show_path &out, const char *prefix) {
    if (pm_show_options.session_id != 0) {
        pm_snprintf(out, sizeof out, "%s%x", prefix, pm_show_options.session_id);
    } else {
        join(out, prefix, "");
    }
}

void pm_show_compose_srpolicy(pm_show_path &out, const char *plain_prefix, const char *filter_prefix) {
    const pm_show_options_record &o = pm_show_options;
    if (!(o.address_set || o.f_set || o.g_set || o.o_set || o.m_set || o.n_set || o.true_flag || o.h_set || o.jr_set ||
          o.u_set || o.k_set)) {
        pm_show_compose_plain(out, plain_prefix);
        return;
    }
    pm_show_path key;
    pm_snprintf(
        key, sizeof key, "%s,%s,%s,%s,%s,%s,%s,%s,%s,%s,%s", number_component::of_number(o.f_set, o.f_value).text,
        address_component().text, number_component::of_number(o.o_set, o.o_value).text,
        number_component::of_number(o.g_set, o.g_value).text, wide_number_component::of_number(o.m_set, o.m_value).text,
        text_component::of_text(o.n_set, o.n_text).text, number_component::of_text(o.true_flag, "TRUE").text,
        number_component::of_number(o.h_set, o.h_value).text, number_component::of_number(o.jr_set, o.jr_value).text,
        number_component::of_number(o.u_set, o.u_value).text, number_component::of_number(o.k_set, o.k_value).text);
    compose_filtered(out, filter_prefix, key, name_or_nothing());
}

void pm_show_compose_endpoint(pm_show_path &out, const char *plain_prefix, const char *filter_prefix) {
    const pm_show_options_record &o = pm_show_options;
    if (!(o.V_set || o.address_set || o.n_set || o.h_set)) {
        pm_show_compose_plain(out, plain_prefix);
        return;
    }
    pm_show_path key;
    pm_snprintf(key, sizeof key, "%s,%s,%s,%s", text_component::of_text(o.V_set, o.V_text).text,
                address_component().text, text_component::of_text(o.n_set, o.n_text).text,
                number_component::of_number(o.h_set, o.h_value).text);
    compose_filtered(out, filter_prefix, key, name_or_nothing());
}

void pm_show_compose_rsvpte(pm_show_path &out, const char *plain_prefix, const char *filter_prefix) {
    const pm_show_options_record &o = pm_show_options;
    if (!(o.address_set || o.a_set)) {
        pm_show_compose_plain(out, plain_prefix);
        return;
    }
    pm_show_path key;
    pm_snprintf(key, sizeof key, "%s,%s",  // here the address comes last
                wide_number_component::of_number(o.a_set, o.a_value).text, address_component().text);
    compose_filtered(out, filter_prefix, key, name_or_nothing());
}

namespace {

// Encodes the profile's name as a path component; reports a failure in the name of `routine`.
errcode encode_profile_name(const char *routine, pm_heap_block<char> *encoded) {
    char *text = nullptr;
    std::size_t length = 0;
    const errcode code = opstore_string_encode(pm_show_options.profile_name, &text, &length);
    encoded->reset(text);
    if (code != ERRCODE_SUCCESS) {
        pm_print_error<"%s: Error encoding name name %s: %s (0x%x)">(routine, pm_show_options.profile_name,
                                                                     errcode_strerror(code), code);
    }
    return code;
}

errcode pm_show_compose_generic_named_profile_opstore_path(pm_show_path &out, bool *single) {
    pm_heap_block<char> encoded;
    *single = pm_show_options.profile_name != nullptr;
    if (*single) {
        const errcode code = encode_profile_name(__func__, &encoded);
        if (code != ERRCODE_SUCCESS) {
            return code;
        }
    }
    pm_snprintf(out, sizeof out, "%s0x%x/0x%x/%s", name_profile_prefix, pm_show_options.profile_kind,
                GENERIC_PROFILE_TYPE, encoded != nullptr ? encoded.get() : "");
    return ERRCODE_SUCCESS;
}

// The key of named profiles: kind, type, name.
errcode pm_show_compose_name_profile_filter(pm_show_path &key) {
    const pm_show_options_record &o = pm_show_options;
    pm_heap_block<char> encoded;
    if (o.profile_name != nullptr) {
        const errcode code = encode_profile_name(__func__, &encoded);
        if (code != ERRCODE_SUCCESS) {
            return code;
        }
    }
    const bool kind_given = o.loss_kind || o.delay_kind || o.liveness_kind;  // the probe kind stays a wildcard
    pm_snprintf(key, sizeof key, "%s,%s,%s", number_component::of_number(kind_given, o.profile_kind).text,
                number_component::of_number(o.profile_type_set, o.profile_type).text,
                component<PROFILE_NAME_SIZE>::of_text(encoded != nullptr, encoded.get()).text);
    return ERRCODE_SUCCESS;
}

}  // namespace

errcode pm_show_compose_named_profile(pm_show_path &out, bool *single) {
    const pm_show_options_record &o = pm_show_options;
    if (o.profile_type_set && o.profile_type == GENERIC_PROFILE_TYPE) {
        return pm_show_compose_generic_named_profile_opstore_path(out, single);
    }
    pm_show_path key;
    const errcode code = pm_show_compose_name_profile_filter(key);
    if (code != ERRCODE_SUCCESS) {
        return code;
    }
    const bool any_kind = o.delay_kind || o.loss_kind || o.liveness_kind || o.probe_kind;
    *single = any_kind && o.profile_type_set && o.profile_name != nullptr;
    if (*single) {  // the doubled key is kept as it is
        compose_filtered(out, name_profile_filter_prefix, key, key);
    } else {
        join(out, name_profile_filter_prefix, key);
    }
    return ERRCODE_SUCCESS;
}
