// SPDX-License-Identifier: Apache-2.0
// Takes, prolongs and gives back the lock.
#include "platform/local/redis_store/writer_lock.h"

#include <cstdint>
#include <sys/random.h>
#include <thread>

#include "platform/errcode.h"
#include "platform/local/redis_store/redis_key.h"

namespace redis_store {

namespace {

constexpr std::chrono::milliseconds PAUSE(20);  // before the lock is tried again

constexpr char REFRESH[] =
    "if redis.call('GET', KEYS[1]) ~= ARGV[1] then return 0 end "
    "return redis.call('PEXPIRE', KEYS[1], ARGV[2])";
constexpr char RELEASE[] =
    "if redis.call('GET', KEYS[1]) ~= ARGV[1] then return 0 end "
    "return redis.call('DEL', KEYS[1])";

std::string make_token() {
    std::uint64_t number = 0;
    static_cast<void>(::getrandom(&number, sizeof number, 0));
    return hexadecimal(number, 16);
}

std::string expiry() { return std::to_string(LOCK_EXPIRY.count()); }

}  // namespace

writer_lock::writer_lock(client *server, std::string key)
    : client_(*server), key_(std::move(key)), token_(make_token()) {}

writer_lock::~writer_lock() {
    if (held_) {
        pipeline commands;
        commands.add({"EVAL", RELEASE, "1", key_, token_});
        plain_answer done(1);
        answer *const all[] = {&done};
        static_cast<void>(client_.exchange(commands, all, repetition::allowed));
    }
}

pm_error writer_lock::take() {
    pipeline commands;
    commands.add({"SET", key_, token_, "NX", "PX", expiry()});
    for (;;) {
        plain_answer done(1);
        answer *const all[] = {&done};
        refreshed_ = clock::now();
        if (pm_error error = client_.exchange(commands, all, repetition::forbidden)) {
            return error;
        }
        if (!done.is_nil()) {
            held_ = true;
            return {};
        }
        std::this_thread::sleep_for(PAUSE);
    }
}

pm_error writer_lock::refresh() {
    const clock::time_point now = clock::now();
    pipeline commands;
    commands.add({"EVAL", REFRESH, "1", key_, token_, expiry()});
    plain_answer done(1);
    answer *const all[] = {&done};
    if (pm_error error = client_.exchange(commands, all, repetition::allowed)) {
        return error;
    }
    refreshed_ = now;
    return done.number() == 1 ? pm_error() : lost();
}

pm_error writer_lock::lost() const {
    return {OPSTORE_BUSY, client_.describe("the writer's lock was lost, nothing is changed")};
}

}  // namespace redis_store
