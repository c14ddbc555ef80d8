// SPDX-License-Identifier: Apache-2.0
// Guarded bodies: however one ends, faults go afterwards where they went before.
#include "platform/local/lmdb_store/fault_guard.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace {

using namespace fault_guard;

TEST(FaultGuard, AFaultEndsTheInnermostBodyOnly) {
    install();
    errcode inner = ERRCODE_SUCCESS;
    const errcode outer = guarded([&] {
        inner = guarded([]() -> errcode { abandon(); });
        return ERRCODE_NOT_FOUND;
    });
    EXPECT_EQ(inner, OPSTORE_DAMAGED);
    EXPECT_EQ(outer, ERRCODE_NOT_FOUND);
    EXPECT_EQ(landing, nullptr);
}

TEST(FaultGuard, AnExceptionPassesAndTheBodyNoLongerCatchesFaults) {
    EXPECT_THROW(static_cast<void>(guarded([]() -> errcode { throw std::runtime_error("no memory"); })),
                 std::runtime_error);
    EXPECT_EQ(landing, nullptr);
    const errcode outer = guarded([] {
        sigjmp_buf *const own = landing;
        try {
            static_cast<void>(guarded([]() -> errcode { throw std::runtime_error("no memory"); }));
        } catch (const std::runtime_error &) {
        }
        return landing == own ? ERRCODE_SUCCESS : ERRCODE_NOT_FOUND;
    });
    EXPECT_EQ(outer, ERRCODE_SUCCESS);
}

}  // namespace
