// SPDX-License-Identifier: Apache-2.0
// Exchanges, and what is done when a server is not ready or a connection is lost.
#include "platform/local/redis_store/client.h"

#include <hiredis/hiredis.h>
#include <new>
#include <thread>
#include <vector>

#include "platform/errcode.h"

namespace redis_store {

namespace {

constexpr std::chrono::milliseconds PAUSE(50);  // before a server that is not ready is asked again

}  // namespace

void pipeline::add(std::span<const std::string_view> words) {
    std::vector<const char *> texts;
    std::vector<std::size_t> lengths;
    texts.reserve(words.size());
    lengths.reserve(words.size());
    for (const std::string_view word : words) {
        texts.push_back(word.data());
        lengths.push_back(word.size());
    }
    char *command = nullptr;
    const int length = redisFormatCommandArgv(&command, static_cast<int>(texts.size()), texts.data(), lengths.data());
    if (length < 0) {
        throw std::bad_alloc();
    }
    bytes_.append(command, static_cast<std::size_t>(length));
    redisFreeCommand(command);
    ++commands_;
}

void pipeline::append(const pipeline &others) {
    bytes_ += others.bytes_;
    commands_ += others.commands_;
}

void pipeline::clear() {
    bytes_.clear();
    commands_ = 0;
}

std::string client::describe(std::string_view text) const {
    const server_address &server = server_ == server_address() ? url_.servers.front() : server_;
    return server.text() + ": " + std::string(text);
}

pm_error client::refused(const std::string &words) const {
    return {words.starts_with("WRONGTYPE") ? OPSTORE_DAMAGED : OPSTORE_NO_CLIENT, describe(words)};
}

pm_error client::connect() {
    if (connection_.is_open()) {
        return {};
    }
    replies_.reset();
    start_answers_ = 0;
    std::string failures;
    for (const server_address &server : url_.servers) {
        const pm_error error = connection_.open(url_, server);
        if (!error) {
            server_ = server;
            return {};
        }
        failures += (failures.empty() ? "" : "; ") + error.text();
    }
    return {OPSTORE_NO_CLIENT, failures};
}

pm_error client::send(const pipeline &commands) {
    const bool is_new = !connection_.is_open();
    if (pm_error error = connect()) {
        return error;
    }
    pm_error error;
    if (is_new) {
        pipeline start;
        std::string password;
        if (error = read_password(url_, &password); error) {
            connection_.close();
            return {OPSTORE_NO_CLIENT, describe(error.text())};
        }
        if (!password.empty() && url_.user.empty()) {
            start.add({"AUTH", password});
        } else if (!url_.user.empty()) {
            start.add({"AUTH", url_.user, password});
        }
        if (url_.database != 0) {
            start.add({"SELECT", std::to_string(url_.database)});
        }
        start_answers_ = start.commands();
        error = connection_.send(start.bytes() + commands.bytes());
    } else {
        error = connection_.send(commands.bytes());
    }
    if (error) {
        connection_.close();
    }
    return error;
}

pm_error client::next(answer *into) {
    into->begin();
    pm_error error = replies_.next(&connection_, into);
    if (error) {
        connection_.close();
    }
    return error.code() == OPSTORE_DAMAGED ? pm_error(OPSTORE_DAMAGED, describe(error.text())) : error;
}

// Reads the answers to AUTH and SELECT. When either is refused, no later answer is worth reading: those commands ran
// as another user or in another database.
pm_error client::receive_start() {
    for (; start_answers_ > 0; --start_answers_) {
        plain_answer done;
        if (pm_error error = next(&done)) {
            return error;
        }
        if (!done.refusal().empty()) {
            connection_.close();
            return refused(done.refusal());
        }
    }
    return {};
}

pm_error client::receive(std::span<answer *const> answers) {
    if (pm_error error = receive_start()) {
        return error;
    }
    pm_error first;
    for (answer *each : answers) {
        if (pm_error error = next(each)) {
            return error;
        }
        if (!first && !each->refusal().empty()) {
            first = refused(each->refusal());
        }
    }
    ever_answered_ = true;
    return first;
}

pm_error client::exchange(const pipeline &commands, std::span<answer *const> answers, repetition allowed) {
    const clock::time_point deadline = clock::now() + url_.timeout;
    for (;;) {
        pm_error error = send(commands);
        const bool was_sent = !error;
        error = error ? error : receive(answers);
        if (!error || error.code() == OPSTORE_DAMAGED || clock::now() >= deadline) {
            return error;
        }
        const bool was_lost = !connection_.is_open();
        const bool not_ready = error.text().find(": LOADING") != std::string::npos;
        if (!not_ready && (!was_lost || !ever_answered_ || (was_sent && allowed == repetition::forbidden))) {
            return error;
        }
        std::this_thread::sleep_for(PAUSE);
    }
}

}  // namespace redis_store
