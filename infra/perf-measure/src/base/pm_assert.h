// SPDX-License-Identifier: Apache-2.0
// Assertions on what a caller promised. Always on.
#pragma once

// Writes out what was printed so far, reports expression, source, line and function on standard
// error, and aborts.
[[noreturn]] void pm_assertion_failed(const char *expression, const char *source, int line, const char *function);

// A macro because the line must be the caller's; `source` is the module and `function` the routine
// that the report names.
#define PM_ASSERT(condition, expression, source, function) \
    ((condition) ? static_cast<void>(0) : pm_assertion_failed(expression, source, __LINE__, function))
