// SPDX-License-Identifier: Apache-2.0
// What a display printed, for tests.
#pragma once

#include <gtest/gtest.h>
#include <string>

#include "base/pm_output.h"

// Runs `print` and returns what it wrote to standard output.
template <class Print>
std::string captured(Print print) {
    testing::internal::CaptureStdout();
    print();
    pm_output_flush();
    return testing::internal::GetCapturedStdout();
}
