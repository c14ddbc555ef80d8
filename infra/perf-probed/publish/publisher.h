// SPDX-License-Identifier: Apache-2.0
// Writes snapshots into the store, in a thread of its own: one transaction for each, so that no measurement waits for
// a disk or a server.
//
// A store that is damaged, full, read-only or gone costs nothing but the snapshots meanwhile: the next one that is
// handed in must then hold everything (needs_everything), and is written once the store is back.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "base/pm_error.h"
#include "perf-probed/state/snapshot.h"

namespace probed {

struct publishing_report {
    std::uint64_t transactions = 0;
    std::uint64_t items = 0;
    std::uint64_t failures = 0;
    std::int64_t last_cost_nsec = 0;  // of the processor, for the last transaction
    std::string error;                // of the last transaction; empty: it succeeded
    bool ever_succeeded = false;
};

class publisher {
public:
    // `url` names the store. Nothing is written yet.
    explicit publisher(std::string url);
    // Waits for the transaction under way.
    ~publisher();
    publisher(const publisher &) = delete;
    publisher &operator=(const publisher &) = delete;

    // Says that the process is starting, for a node's branches; in this thread. A failure is no reason to give up.
    [[nodiscard]] pm_error announce(std::uint32_t node, const std::string &node_name);
    // Says that it ended; in this thread, after the thread's work is done.
    [[nodiscard]] pm_error retire(std::uint32_t node);

    // Whether a snapshot may be handed in: none is being written.
    [[nodiscard]] bool idle() const;
    // Hands in a snapshot. Only while idle.
    void publish(std::unique_ptr<snapshot> what);
    // Whether the store may lack what was handed in before, so that the next snapshot has to have everything.
    [[nodiscard]] bool needs_everything() const;

    [[nodiscard]] publishing_report report() const;
    [[nodiscard]] const std::string &url() const { return url_; }

    // How long a store takes our word that we live.
    static constexpr std::uint32_t LEASE_MSEC = 5000;

private:
    void work();
    [[nodiscard]] pm_error write(const snapshot &what);

    std::string url_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::unique_ptr<snapshot> waiting_;
    bool writing_ = false;
    bool ending_ = false;
    bool needs_everything_ = true;
    publishing_report report_;
    std::thread thread_;
};

}  // namespace probed
