// Item paths below a node's branch, composed from pm_show_options.
//
// A plain path is a prefix and the name (-i), or the prefix alone, which lists everything. A
// filtered path is a prefix, a key, '/' and the name; the key is a comma-separated list of
// components in a fixed order, and a component that was not given is the wildcard "________".
// Components and paths that do not fit their buffers are cut silently.
#pragma once

#include <cstddef>

#include "platform/errcode.h"

inline constexpr std::size_t PM_SHOW_PATH_SIZE = 512;  // of an item path, terminator included
using pm_show_path = char[PM_SHOW_PATH_SIZE];

// Formats as vsnprintf does and always writes a terminating zero into the last byte of the buffer.
// A null buffer, or one of size 0, makes it do nothing.
[[gnu::format(printf, 3, 4)]] void pm_snprintf(char *buffer, std::size_t size, const char *format, ...);

// The prefix and the name.
void pm_show_compose_plain(pm_show_path &out, const char *prefix);

// The prefix and the session id in hex; the prefix alone for session id 0.
void pm_show_compose_session(pm_show_path &out, const char *prefix);

// The filtered path when any option that is part of the key was given, else the plain one.
void pm_show_compose_srpolicy(pm_show_path &out, const char *plain_prefix, const char *filter_prefix);
void pm_show_compose_endpoint(pm_show_path &out, const char *plain_prefix, const char *filter_prefix);
void pm_show_compose_rsvpte(pm_show_path &out, const char *plain_prefix, const char *filter_prefix);

// The path of named profiles (-P): the generic one for profile type 4, else a filtered one.
// `*single` says whether the path names one profile rather than a listing. Fails when the profile's
// name cannot be encoded, which is reported on standard error.
[[nodiscard]] errcode pm_show_compose_named_profile(pm_show_path &out, bool *single);
