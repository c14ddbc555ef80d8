// SPDX-License-Identifier: Apache-2.0
// Item paths below a node's branch, composed from pm_show_options.
//
// A plain path is a place's path and the name (-i), or the place's path alone, which lists everything. A
// filtered path has a key before the name; paths/filter_keys.h states its form. Components and paths that
// are too long are cut silently.
#pragma once

#include <cstddef>

#include "paths/item_paths.h"
#include "platform/errcode.h"

inline constexpr std::size_t PM_SHOW_PATH_SIZE = 512;  // of an item path, terminator included
using pm_show_path = char[PM_SHOW_PATH_SIZE];

// Formats as vsnprintf does and always writes a terminating zero into the last byte of the buffer.
// A null buffer, or one of size 0, makes it do nothing.
[[gnu::format(printf, 3, 4)]] void pm_snprintf(char *buffer, std::size_t size, const char *format, ...);

// The place's path and the name.
void pm_show_compose_plain(pm_show_path &out, path_grammar::place at);

// The place's path and the session id in hex; the path alone for session id 0.
void pm_show_compose_session(pm_show_path &out, path_grammar::place at);

// The filtered path when any option that is part of the place's key was given, else the plain one.
void pm_show_compose_filtered(pm_show_path &out, path_grammar::place at);

// The path of named profiles (-P): the generic one for profile type 4, else a filtered one.
// `*single` says whether the path names one profile rather than a listing. Fails when the profile's
// name cannot be encoded, which is reported on standard error.
[[nodiscard]] errcode pm_show_compose_named_profile(pm_show_path &out, bool *single);
