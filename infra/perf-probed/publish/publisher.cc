// SPDX-License-Identifier: Apache-2.0
// The publishing thread and its transactions.
#include "perf-probed/publish/publisher.h"

#include <ctime>

#include "perf-probed/packet/time_stamp.h"
#include "platform/local/back_ends/writers.h"
#include "platform/local/store/local_store_records.h"
#include "platform/local/store/writer.h"

namespace probed {
namespace {

using store::branch;

constexpr std::uint32_t NODE_IS_UP = 6;

constexpr char WRITTEN_ONCE[] = "profile";  // an item that only complete snapshots have

// The roots that this program serves; it has no checkpoints.
constexpr store::root SERVED[] = {store::root::main, store::root::responder, store::root::receive};

std::int64_t thread_time() {
    std::timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return time.tv_sec * NSEC_PER_SEC + time.tv_nsec;
}

pm_error put_node(store::writer *writer, std::uint32_t node, const std::string &name) {
    std::uint32_t mine = node;
    local_platform platform{};
    platform.MyNode = &mine;
    if (pm_error error = writer->put_platform(&platform)) {
        return error;
    }
    local_node record{};
    record.Id = node;
    record.Name = name.c_str();
    record.SwState = NODE_IS_UP;
    record.Processor = node;
    return writer->put_node(node, &record);
}

pm_error put_items(store::writer *writer, const snapshot &what) {
    std::uint64_t removed = 0;
    for (const store::root root : SERVED) {
        if (!what.is_everything) {
            break;
        }
        if (pm_error error = writer->remove_below({root, what.node}, "", &removed)) {
            return error;
        }
    }
    for (const removed_item &each : what.removed) {
        if (pm_error error = writer->remove_item({each.root, what.node}, each.path, &removed)) {
            return error;
        }
    }
    for (const published_item &each : what.items) {
        if (pm_error error = writer->put_item({each.root, what.node}, each.path, each.record, each.descriptor)) {
            return error;
        }
    }
    return {};
}

// A snapshot of changes needs the rest to be there: somebody may have emptied the store or put another in its place.
pm_error check_rest(store::writer *writer, const snapshot &what) {
    bool found = what.is_everything;
    if (!found) {
        if (pm_error error = writer->has_item({store::root::main, what.node}, WRITTEN_ONCE, false, &found)) {
            return error;
        }
    }
    return found ? pm_error() : pm_error("what was published is not there any more");
}

// Sets the state of all branches, in a transaction.
pm_error put_states(const std::string &url, std::uint32_t node, const std::string *name, store::publisher_state state) {
    std::unique_ptr<store::writer> writer;
    if (pm_error error = store::open_writer(url.c_str(), store::missing_store::make, &writer)) {
        return error;
    }
    if (name != nullptr) {
        if (pm_error error = put_node(writer.get(), node, *name)) {
            return error;
        }
    }
    for (const store::root root : SERVED) {
        if (pm_error error = writer->put_publisher({root, node}, state)) {
            return error;
        }
    }
    return writer->commit();
}

}  // namespace

publisher::publisher(std::string url) : url_(std::move(url)), thread_([this] { work(); }) {}

publisher::~publisher() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

pm_error publisher::announce(std::uint32_t node, const std::string &node_name) {
    return put_states(url_, node, &node_name, store::publisher_state::starting);
}

pm_error publisher::retire(std::uint32_t node) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return waiting_ == nullptr && !writing_; });
    return put_states(url_, node, nullptr, store::publisher_state::stopped);
}

bool publisher::idle() const {
    const std::lock_guard lock(mutex_);
    return waiting_ == nullptr && !writing_;
}

bool publisher::needs_everything() const {
    const std::lock_guard lock(mutex_);
    return needs_everything_;
}

publishing_report publisher::report() const {
    const std::lock_guard lock(mutex_);
    return report_;
}

void publisher::publish(std::unique_ptr<snapshot> what) {
    {
        const std::lock_guard lock(mutex_);
        waiting_ = std::move(what);
        needs_everything_ = false;
    }
    changed_.notify_all();
}

void publisher::work() {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return waiting_ != nullptr || ending_; });
        if (waiting_ == nullptr) {
            return;
        }
        const std::unique_ptr<snapshot> what = std::move(waiting_);
        writing_ = true;
        lock.unlock();
        const std::int64_t before = thread_time();
        const pm_error error = write(*what);
        const std::int64_t cost = thread_time() - before;
        lock.lock();
        writing_ = false;
        report_.last_cost_nsec = cost;
        report_.error = error.text();
        if (error) {
            ++report_.failures;
            needs_everything_ = true;
        } else {
            ++report_.transactions;
            report_.items += what->items.size();
            report_.ever_succeeded = true;
        }
        changed_.notify_all();
    }
}

pm_error publisher::write(const snapshot &what) {
    std::unique_ptr<store::writer> writer;
    if (pm_error error = store::open_writer(url_.c_str(), store::missing_store::make, &writer)) {
        return error;
    }
    if (pm_error error = check_rest(writer.get(), what)) {
        return error;
    }
    if (!what.node_name.empty()) {
        if (pm_error error = put_node(writer.get(), what.node, what.node_name)) {
            return error;
        }
    }
    for (const named_interface &each : what.interfaces) {
        const local_interface record{each.name.c_str()};
        if (pm_error error = writer->put_interface(each.handle, &record)) {
            return error;
        }
    }
    if (pm_error error = put_items(writer.get(), what)) {
        return error;
    }
    for (const store::root root : SERVED) {
        if (pm_error error = writer->put_leased_publisher({root, what.node}, LEASE_MSEC)) {
            return error;
        }
    }
    return writer->commit();
}

}  // namespace probed
