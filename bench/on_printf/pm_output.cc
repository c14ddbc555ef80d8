// SPDX-License-Identifier: Apache-2.0
// Standard output, standard error and assertions of a program whose output goes through printf.
#include "base/pm_output.h"

#include <cstdlib>

#include "base/pm_assert.h"

void pm_output_flush() { std::fflush(stdout); }

void pm_output_error(const char *message, std::size_t length) {
    pm_output_flush();
    std::fwrite(message, 1, length, stderr);
}

void pm_assertion_failed(const char *expression, const char *source, int line, const char *function) {
    pm_print_error<"Assertion failed: %s, %s:%d, %s\n">(expression, source, line, function);
    std::abort();
}
