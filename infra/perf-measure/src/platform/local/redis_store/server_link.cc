// SPDX-License-Identifier: Apache-2.0
// Connects, and says who it is.
#include "platform/local/redis_store/server_link.h"

#include <algorithm>

#include "platform/errcode.h"
#include "platform/local/redis_store/pipeline.h"

namespace redis_store {

void server_link::add_server(const server_address &server) {
    if (std::find(servers_.begin(), servers_.end(), server) == servers_.end()) {
        servers_.push_back(server);
    }
}

pm_error server_link::refused(const std::string &words) const {
    return {words.starts_with("WRONGTYPE") ? OPSTORE_DAMAGED : OPSTORE_NO_CLIENT, describe(words)};
}

void server_link::let_replica_read(bool allowed) {
    if (lets_replica_read_ != allowed) {
        lets_replica_read_ = allowed;
        close();
    }
}

pm_error server_link::connect() {
    replies_.reset();
    start_answers_ = 0;
    std::string failures;
    for (const server_address &server : servers_) {
        const pm_error error = connection_.open(url_, server);
        if (!error) {
            server_ = server;
            return {};
        }
        failures += (failures.empty() ? "" : "; ") + error.text();
    }
    return {OPSTORE_NO_CLIENT, failures};
}

pm_error server_link::start_commands(std::string *bytes) {
    pipeline start;
    std::string password;
    if (pm_error error = read_password(url_, &password)) {
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
    if (lets_replica_read_) {
        start.add({"READONLY"});
    }
    start_answers_ = start.commands();
    *bytes = start.bytes();
    return {};
}

pm_error server_link::send(std::string_view bytes) {
    pm_error error;
    if (connection_.is_open()) {
        error = connection_.send(bytes);
    } else if (error = connect(); !error) {
        std::string start;
        error = start_commands(&start);
        error = error ? error : connection_.send(start.append(bytes));
    }
    if (error) {
        close();
    }
    return error;
}

pm_error server_link::next(answer *into) {
    into->begin();
    pm_error error = replies_.next(&connection_, into);
    if (error) {
        close();
    }
    return error.code() == OPSTORE_DAMAGED ? pm_error(OPSTORE_DAMAGED, describe(error.text())) : error;
}

// When one of the commands at the start is refused, no later answer is worth reading: those commands ran as another
// user or in another database.
pm_error server_link::receive_start() {
    for (; start_answers_ > 0; --start_answers_) {
        plain_answer done;
        if (pm_error error = next(&done)) {
            return error;
        }
        if (!done.refusal().empty()) {
            close();
            return refused(done.refusal());
        }
    }
    return {};
}

pm_error server_link::receive(answer *into) {
    if (pm_error error = receive_start()) {
        return error;
    }
    pm_error error = next(into);
    ever_answered_ = ever_answered_ || !error;
    return error;
}

}  // namespace redis_store
