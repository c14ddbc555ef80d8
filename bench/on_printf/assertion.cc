// The end of a program whose output goes through printf when an assertion fails.
#include <cstdlib>

#include "base/pm_assert.h"
#include "base/pm_output.h"

void pm_assertion_failed(const char *expression, const char *source, int line, const char *function) {
    pm_print_error<"Assertion failed: %s, %s:%d, %s\n">(expression, source, line, function);
    std::abort();
}
