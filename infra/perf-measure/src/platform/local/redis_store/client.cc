// SPDX-License-Identifier: Apache-2.0
// Exchanges, and what is done when a server is not ready, is the wrong one, or a connection is lost.
#include "platform/local/redis_store/client.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "platform/errcode.h"

namespace redis_store {

namespace {

constexpr std::chrono::milliseconds PAUSE(50);  // before a server that is not ready is asked again
constexpr int MAX_REDIRECTIONS = 16;            // of one exchange
constexpr char ASKING[] = "*1\r\n$6\r\nASKING\r\n";

}  // namespace

client::client(redis_url url, purpose what) : url_(std::move(url)), purpose_(what) {
    links_.emplace_back(&url_, url_.servers);
    last_ = &home();
}

void client::close() {
    for (server_link &each : links_) {
        each.close();
    }
}

server_link &client::link_of(const std::string &tag) {
    const auto found = owners_.find(tag);
    return found != owners_.end() ? *found->second : home();
}

server_link &client::link_to(const server_address &server) {
    for (server_link &each : links_) {
        if (each.server() == server) {
            return each;
        }
    }
    home().add_server(server);
    return links_.emplace_back(&url_, std::vector{server});
}

bool client::leave_replicas() {
    const bool asked = std::any_of(links_.begin(), links_.end(), [](auto &each) { return each.lets_replica_read(); });
    purpose_ = purpose::writing;
    for (server_link &each : links_) {
        each.let_replica_read(false);
    }
    return asked;
}

pm_error client::send(const pipeline &commands) {
    ahead_ = &link_of(commands.tag_of(0));
    return ahead_->send(commands.bytes());
}

pm_error client::receive(std::span<answer *const> answers) {
    pm_error first;
    for (answer *each : answers) {
        if (pm_error error = ahead_->receive(each)) {
            return error;
        }
        if (!first && !each->refusal().empty()) {
            first = ahead_->refused(each->refusal());
        }
    }
    return first;
}

// Sends those commands of a round that are for one server.
pm_error client::send_to(server_link *to, const pipeline &commands, const std::vector<waiting> &round) {
    const bool is_whole =
        round.size() == commands.commands() &&
        std::all_of(round.begin(), round.end(), [&](const waiting &each) { return each.to == to && !each.asking; });
    if (is_whole) {
        return to->send(commands.bytes());
    }
    std::string bytes;
    for (const waiting &each : round) {
        if (each.to == to) {
            bytes += each.asking ? ASKING : "";
            bytes += commands.bytes_of(each.command);
        }
    }
    return to->send(bytes);
}

// Sends a round of commands to their servers.
void client::send_round(const pipeline &commands, std::vector<waiting> *round) {
    std::map<const server_link *, pm_error> failures;
    for (const waiting &first : *round) {
        const auto [failure, is_new] = failures.try_emplace(first.to);
        if (!is_new) {
            continue;
        }
        failure->second = send_to(first.to, commands, *round);
    }
    for (waiting &each : *round) {
        each.lost = failures[each.to];
        each.sent = !each.lost;
        each.to_replica = each.to->lets_replica_read();
    }
}

// Reads what comes. A server that fails does not keep the others' answers from being read.
void client::receive_round(std::span<answer *const> answers, std::vector<waiting> *round) {
    std::map<const server_link *, pm_error> failures;
    for (waiting &each : *round) {
        pm_error &failure = failures.try_emplace(each.to, each.lost).first->second;
        plain_answer ignored;
        if (!failure && each.asking) {
            failure = each.to->receive(&ignored);
        }
        if (!failure) {
            failure = each.to->receive(answers[each.command]);
        }
        each.lost = failure;
        last_ = each.to;
    }
}

// A command whose answer did not come is sent again if that can do no harm, and if the server was there before or was
// named by another one.
pm_error client::judge_lost(const waiting &each, const std::string &tag, repetition allowed, next_round *next) {
    const bool was_there = each.to != &home() || each.to->ever_answered();
    if (each.lost.code() == OPSTORE_DAMAGED || !was_there || (each.sent && allowed == repetition::forbidden)) {
        return each.lost;
    }
    owners_.erase(tag);
    next->left.push_back({each.command, &home()});
    next->reason = each.lost;
    next->lost = true;
    next->pause = true;
    return {};
}

void client::redirect(const waiting &each, const std::string &tag, const redirection &where, next_round *next) {
    server_link *to = &link_of(tag);
    if (where.what == redirection::kind::wait) {
        next->pause = true;
    } else if (where.what == redirection::kind::moved && purpose_ == purpose::reading && !each.to_replica) {
        each.to->let_replica_read(true);  // it may be a replica of the one that it names
        to = each.to;
        next->redirected = true;
    } else {
        to = &link_to(where.server);
        next->redirected = true;
    }
    if (where.what == redirection::kind::moved) {
        owners_[tag] = to;
    }
    next->left.push_back({each.command, to, where.what == redirection::kind::ask});
}

// Decides about each command of a round: an error ends the exchange.
pm_error client::judge(const pipeline &commands, std::span<answer *const> answers, repetition allowed,
                       const std::vector<waiting> &round, next_round *next) {
    pm_error first;
    for (const waiting &each : round) {
        const std::string &tag = commands.tag_of(each.command);
        if (each.lost) {
            if (pm_error error = judge_lost(each, tag, allowed, next)) {
                return error;
            }
            continue;
        }
        const std::string &refusal = answers[each.command]->refusal();
        if (refusal.empty()) {
            continue;
        }
        const redirection where = parse_redirection(refusal, each.to->server());
        pm_error refused = each.to->refused(refusal);
        if (where.what != redirection::kind::none) {
            redirect(each, tag, where, next);
            next->reason = std::move(refused);
        } else if (!first) {
            first = std::move(refused);
        }
    }
    return first;
}

void client::begin(const pipeline &commands) {
    begun_.clear();
    for (std::size_t i = 0; i < commands.commands(); ++i) {
        begun_.push_back({i, &link_of(commands.tag_of(i))});
    }
    send_round(commands, &begun_);
}

pm_error client::finish(const pipeline &commands, std::span<answer *const> answers, repetition allowed) {
    const clock::time_point deadline = clock::now() + url_.timeout;
    std::vector<waiting> round = std::move(begun_);
    pm_error unreachable;  // why a server cannot be asked that another one names again and again
    for (int redirections = 0; !round.empty();) {
        receive_round(answers, &round);
        next_round next;
        if (pm_error error = judge(commands, answers, allowed, round, &next)) {
            return error;
        }
        redirections += next.redirected ? 1 : 0;
        if (next.lost) {
            unreachable = next.reason;
        } else if (!next.redirected) {
            unreachable = {};
        }
        if (!next.left.empty() && (clock::now() >= deadline || redirections > MAX_REDIRECTIONS)) {
            return unreachable ? unreachable : next.reason;
        }
        if (next.pause) {
            std::this_thread::sleep_for(PAUSE);
        }
        round = std::move(next.left);
        send_round(commands, &round);
    }
    return {};
}

}  // namespace redis_store
