// SPDX-License-Identifier: Apache-2.0
// Runs a piece of this program in a child process and reads what it prints.
//
// A show keeps state for the life of its process and ends it when its reader goes away, so that a program that
// shows more than once, or that looks at what is shown, gives each show a process of its own.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace perf_measure {

enum class stream { output, error };

// Gets what the child printed, in order within each stream. False: nothing more is wanted.
using receiver = std::function<bool(stream, std::string_view bytes)>;

inline constexpr int EXIT_BY_SIGNAL = 128;  // and the signal's number

// Runs `body` in a child and returns its exit status; EXIT_BY_SIGNAL and more when a signal ended it, -1 when
// there can be no child. With `with_errors` its standard error is read too, else it is this program's.
[[nodiscard]] int run_in_child(const std::function<int()> &body, const receiver &receive, bool with_errors);

// Writes all bytes to a descriptor; false when that fails.
[[nodiscard]] bool write_fully(int descriptor, std::string_view bytes);

}  // namespace perf_measure
