// SPDX-License-Identifier: Apache-2.0
// Memory that is never freed, for the program ends with its display.
#pragma once

#ifdef PM_SANITIZE
#include <sanitizer/lsan_interface.h>

// What is allocated while one lives is kept until the program ends, on purpose: the leak checker passes over it.
using pm_kept_memory = __lsan::ScopedDisabler;
#else
struct [[maybe_unused]] pm_kept_memory {};
#endif
