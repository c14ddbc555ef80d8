// SPDX-License-Identifier: Apache-2.0
// Commits through MULTI and through a script.
#include "platform/local/redis_store/commit_script.h"

#include <algorithm>
#include <set>

#include "platform/errcode.h"

namespace redis_store {

namespace {

constexpr char NOTE_NUMBER[] = "return redis.call('HSET', KEYS[2], ARGV[2], redis.call(ARGV[1], KEYS[1]))";

// Arguments: the token, if the first key is the lock; whether the lock is given back; the number of staged sets, and
// each one's key and members; the number of keys with types, and of each a reading command and the key; then each
// command after the number of its words.
constexpr char COMMIT[] = R"(
local at = 3
local function take()
  at = at + 1
  return ARGV[at - 1]
end
if ARGV[1] ~= '' and redis.call('GET', KEYS[1]) ~= ARGV[1] then return 'lost' end
for i = 1, tonumber(take()) do
  local staged = take()
  if redis.call('ZCARD', staged) ~= tonumber(take()) then return 'lost' end
end
for i = 1, tonumber(take()) do
  local command = take()
  local found = redis.pcall(command, take())
  if type(found) == 'table' and found.err then return found end
end
while at <= #ARGV do
  local words = tonumber(take())
  if ARGV[at] == 'NOTE' then
    redis.call('HSET', ARGV[at + 3], ARGV[at + 4], redis.call(ARGV[at + 1], ARGV[at + 2]))
  else
    redis.call(unpack(ARGV, at, at + words - 1))
  end
  at = at + words
end
if ARGV[2] == 'release' then redis.call('DEL', KEYS[1]) end
return 'done'
)";

enum class lock_use { check_and_release, check, none };

// The keys of a command of a plan.
void add_keys(const std::vector<std::string> &command, std::set<std::string> *keys) {
    if (command[0] == command_list::NOTE) {
        keys->insert({command[2], command[3]});
    } else if (command[0] == "UNLINK" || command[0] == "RENAME") {
        keys->insert(command.begin() + 1, command.end());
    } else {
        keys->insert(command[1]);
    }
}

void add_script(const writer_lock &lock, lock_use use, const change_set &changes, pipeline *to) {
    std::set<std::string> keys;
    for (const std::vector<std::string> &each : changes.commands.commands()) {
        add_keys(each, &keys);
    }
    for (const auto &[command, key] : changes.typed) {
        keys.insert(key);
    }
    std::vector<std::string> numbers;
    numbers.reserve(changes.staged.size() + changes.commands.commands().size() + 3);
    const auto number = [&](std::size_t value) {
        return std::string_view(numbers.emplace_back(std::to_string(value)));
    };
    std::vector<std::string_view> words = {"EVAL", COMMIT, number(keys.size() + (use == lock_use::none ? 0 : 1))};
    if (use != lock_use::none) {
        words.push_back(lock.key());
    }
    words.insert(words.end(), keys.begin(), keys.end());
    words.push_back(use == lock_use::none ? std::string_view() : lock.token());
    words.push_back(use == lock_use::check_and_release ? "release" : "keep");
    words.push_back(number(changes.staged.size()));
    for (const auto &[key, members] : changes.staged) {
        words.insert(words.end(), {key, number(members)});
    }
    words.push_back(number(changes.typed.size()));
    for (const auto &[command, key] : changes.typed) {
        words.insert(words.end(), {command, key});
    }
    for (const std::vector<std::string> &each : changes.commands.commands()) {
        words.push_back(number(each.size()));
        words.insert(words.end(), each.begin(), each.end());
    }
    to->add(words);
}

std::vector<answer *> places_of(std::vector<plain_answer> *answers) {
    std::vector<answer *> places;
    for (plain_answer &each : *answers) {
        places.push_back(&each);
    }
    return places;
}

// Watches the lock and reads the keys that will be written. The MULTI checks the lock again.
pm_error check(client *server, const writer_lock &lock, const change_set &changes) {
    pipeline commands;
    commands.add({"WATCH", lock.key()});
    commands.add({"GET", lock.key()});
    for (const auto &[command, key] : changes.typed) {
        commands.add({command, key});
    }
    std::vector<plain_answer> found(commands.commands(), plain_answer(1));
    if (pm_error error = server->exchange(commands, places_of(&found), repetition::forbidden)) {
        return error;
    }
    return found[1].text() == lock.token() ? pm_error() : lock.lost();
}

}  // namespace

void change_set::append(const change_set &others) {
    staged.insert(staged.end(), others.staged.begin(), others.staged.end());
    typed.insert(typed.end(), others.typed.begin(), others.typed.end());
    commands.append(others.commands);
}

pm_error run_transaction(client *server, writer_lock *lock, const change_set &changes) {
    if (pm_error error = check(server, *lock, changes)) {
        return error;
    }
    pipeline commands;
    commands.add({"MULTI"});
    for (const std::vector<std::string> &each : changes.commands.commands()) {
        if (each[0] == command_list::NOTE) {
            commands.add({"EVAL", NOTE_NUMBER, "2", each[2], each[3], each[1], each[4]});
        } else {
            commands.add(std::vector<std::string_view>(each.begin(), each.end()));
        }
    }
    commands.add({"DEL", lock->key()});
    commands.add({"EXEC"});
    std::vector<plain_answer> queued(commands.commands(), plain_answer(commands.commands()));
    if (pm_error error = server->exchange(commands, places_of(&queued), repetition::forbidden)) {
        return error;
    }
    if (queued.back().is_nil()) {
        return lock->lost();
    }
    lock->forget();
    return {};
}

pm_error run_script(client *server, writer_lock *lock, const change_set &changes) {
    pipeline commands;
    add_script(*lock, lock_use::check_and_release, changes, &commands);
    std::vector<plain_answer> done(1, plain_answer(1));
    if (pm_error error = server->exchange(commands, places_of(&done), repetition::forbidden)) {
        return error;
    }
    if (done[0].text() != "done") {
        return lock->lost();
    }
    lock->forget();
    return {};
}

void script_list::add_locked(const change_set &changes) { add_script(lock_, lock_use::check, changes, &commands_); }

void script_list::add_unlocked(const change_set &changes) { add_script(lock_, lock_use::none, changes, &commands_); }

pm_error script_list::run(client *server) {
    std::vector<plain_answer> done(commands_.commands(), plain_answer(1));
    if (pm_error error = server->exchange(commands_, places_of(&done), repetition::forbidden)) {
        return error;
    }
    const bool all = std::all_of(done.begin(), done.end(), [](const auto &each) { return each.text() == "done"; });
    return all ? pm_error() : lock_.lost();
}

}  // namespace redis_store
