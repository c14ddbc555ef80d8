// SPDX-License-Identifier: Apache-2.0
// Commits through MULTI and through a script.
#include "platform/local/redis_store/commit_script.h"

#include <memory>

#include "platform/errcode.h"

namespace redis_store {

namespace {

// Arguments: the token, the number of staged sets and each one's key and members, then each command after the number
// of its words.
constexpr char COMMIT[] = R"(
if redis.call('GET', KEYS[1]) ~= ARGV[1] then return 'lost' end
local at = 3
for i = 1, tonumber(ARGV[2]) do
  if redis.call('ZCARD', ARGV[at]) ~= tonumber(ARGV[at + 1]) then return 'lost' end
  at = at + 2
end
while at <= #ARGV do
  local words = tonumber(ARGV[at])
  redis.call(unpack(ARGV, at + 1, at + words))
  at = at + 1 + words
end
redis.call('DEL', KEYS[1])
return 'done'
)";

// Watches the lock and reads the keys that will be written. The MULTI, or the script, checks the lock again.
pm_error check(client *server, const writer_lock &lock, const pipeline &typed) {
    pipeline commands;
    commands.add({"WATCH", lock.key()});
    commands.add({"GET", lock.key()});
    std::vector<plain_answer> found(typed.commands() + 2, plain_answer(2));
    std::vector<answer *> all;
    for (plain_answer &each : found) {
        all.push_back(&each);
    }
    commands.append(typed);
    if (pm_error error = server->exchange(commands, all, repetition::forbidden)) {
        return error;
    }
    return found[1].text() == lock.token() ? pm_error() : lock.lost();
}

}  // namespace

pm_error run_transaction(client *server, writer_lock *lock, const pipeline &typed, const command_list &changes) {
    if (pm_error error = check(server, *lock, typed)) {
        return error;
    }
    pipeline commands;
    commands.add({"MULTI"});
    for (const std::vector<std::string> &each : changes.commands()) {
        commands.add(std::vector<std::string_view>(each.begin(), each.end()));
    }
    commands.add({"DEL", lock->key()});
    commands.add({"EXEC"});
    std::vector<plain_answer> queued(commands.commands(), plain_answer(commands.commands()));
    std::vector<answer *> all;
    for (plain_answer &each : queued) {
        all.push_back(&each);
    }
    if (pm_error error = server->exchange(commands, all, repetition::forbidden)) {
        return error;
    }
    if (queued.back().is_nil()) {
        return lock->lost();
    }
    lock->forget();
    return {};
}

pm_error run_script(client *server, writer_lock *lock, const pipeline &typed, const std::vector<expected_set> &staged,
                    const command_list &changes) {
    if (pm_error error = check(server, *lock, typed)) {
        return error;
    }
    std::vector<std::string> numbers;
    numbers.reserve(staged.size() + changes.commands().size() + 1);
    std::vector<std::string_view> words = {"EVAL", COMMIT, "1", lock->key(), lock->token()};
    words.push_back(numbers.emplace_back(std::to_string(staged.size())));
    for (const auto &[key, members] : staged) {
        words.push_back(key);
        words.push_back(numbers.emplace_back(std::to_string(members)));
    }
    for (const std::vector<std::string> &each : changes.commands()) {
        words.push_back(numbers.emplace_back(std::to_string(each.size())));
        words.insert(words.end(), each.begin(), each.end());
    }
    pipeline commands;
    commands.add({"UNWATCH"});
    commands.add(words);
    plain_answer unwatched(1);
    plain_answer done(1);
    answer *const all[] = {&unwatched, &done};
    if (pm_error error = server->exchange(commands, all, repetition::forbidden)) {
        return error;
    }
    if (done.text() != "done") {
        return lock->lost();
    }
    lock->forget();
    return {};
}

}  // namespace redis_store
