// SPDX-License-Identifier: Apache-2.0
// The lock of the one writer at work: a key with the writer's token and an expiry, which the writer refreshes; so a
// killed writer keeps the others waiting for a while only.
#pragma once

#include <chrono>
#include <string>

#include "platform/local/redis_store/client.h"

namespace redis_store {

inline constexpr std::chrono::milliseconds LOCK_EXPIRY(20'000);

class writer_lock {
public:
    writer_lock(client *server, std::string key);
    // Gives the lock back.
    ~writer_lock();
    writer_lock(const writer_lock &) = delete;
    writer_lock &operator=(const writer_lock &) = delete;

    // Waits until no other writer has it.
    [[nodiscard]] pm_error take();
    // Whether a quarter of its time is over.
    [[nodiscard]] bool is_due() const { return clock::now() - refreshed_ >= LOCK_EXPIRY / 4; }
    // Prolongs it. An error when it was lost meanwhile.
    [[nodiscard]] pm_error refresh();
    // It was given back together with the changes.
    void forget() { held_ = false; }

    [[nodiscard]] const std::string &key() const { return key_; }
    [[nodiscard]] const std::string &token() const { return token_; }  // letters and digits
    [[nodiscard]] pm_error lost() const;

private:
    using clock = std::chrono::steady_clock;

    client &client_;
    std::string key_;
    std::string token_;
    bool held_ = false;
    clock::time_point refreshed_;
};

}  // namespace redis_store
