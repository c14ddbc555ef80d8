// SPDX-License-Identifier: Apache-2.0
// A platform for tests of pm_utils: the operations that it calls, with answers that a test sets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>

#include "platform/errcode.h"

// What the fake answers. A test that changes it starts from reset_platform_text_fake().
struct platform_text_fake {
    std::timespec now{};                     // the realtime clock
    errcode node_error = ERRCODE_SUCCESS;    // of nodeid_to_str_external
    const char *interface = "eth0/1/0/4";    // of both interface name operations
    errcode decode_error = ERRCODE_SUCCESS;  // of opstore_string_decode
    bool failed_decode_leaves_text = false;  // whether a failing decode hands out a text
    std::uint32_t flags_seen = 0xFFFFFFFF;   // flags of the last interface name operation
    std::size_t size_seen = 0;               // buffer size of the last operation that took one
};
extern platform_text_fake platform_fake;

// Back to the answers above. Node n has the name "lc<n>"; errcode n has the text "errcode <n>";
// a decoded text is the encoded one between '<' and '>'.
void reset_platform_text_fake();
