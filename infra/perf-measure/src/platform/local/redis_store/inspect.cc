// SPDX-License-Identifier: Apache-2.0
// Reads keys one after the other, in the order of the embedded store's.
#include "platform/local/redis_store/inspect.h"

#include <algorithm>
#include <charconv>

#include "platform/local/redis_store/directory.h"
#include "platform/local/redis_store/page.h"
#include "platform/local/store/record_key.h"
#include "platform/local/store/seal.h"

namespace redis_store {

namespace {

using store::key_space;

class inspection {
public:
    inspection(redis_url url, store::inspector *to)
        : names_(url.prefix), client_(std::move(url), purpose::reading), directory_(&client_, &names_), to_(*to) {}

    [[nodiscard]] pm_error run() {
        if (pm_error error = begin()) {
            return error;
        }
        if (pm_error error = hash(state_part::interfaces, key_space::interface)) {
            return error;
        }
        for (const known_branch &each : branches_) {
            if (pm_error error = items(each)) {
                return error;
            }
        }
        router();
        if (pm_error error = hash(state_part::schemas, key_space::schema)) {
            return error;
        }
        for (const known_branch &each : branches_) {
            if (pm_error error = publisher(each.named)) {
                return error;
            }
        }
        return {};
    }

private:
    [[nodiscard]] pm_error begin() {
        if (pm_error error = survive(directory_.read())) {
            return error;
        }
        if (!directory_.is_store()) {
            return {OPSTORE_NO_CLIENT, directory_.missing()};
        }
        branches_ = directory_.branches();
        std::sort(branches_.begin(), branches_.end(), [](const known_branch &one, const known_branch &other) {
            return branch_name(one.named) < branch_name(other.named);
        });
        return {};
    }

    // Damage is a loss; the server's refusal, or its absence, ends the inspection.
    [[nodiscard]] pm_error survive(pm_error error) {
        if (error.code() != OPSTORE_DAMAGED) {
            return error;
        }
        to_.loss(error.text());
        return {};
    }

    [[nodiscard]] pm_error ask(std::initializer_list<std::string_view> words, plain_answer *found) {
        pipeline question;
        question.add(words);
        answer *const all[] = {found};
        pm_error error = survive(client_.exchange(question, all, repetition::allowed));
        if (!found->refusal().empty()) {
            found->begin();  // nothing of it is an answer
        }
        return error;
    }

    void compare(const std::string &what, std::uint64_t found, std::uint64_t noted) {
        if (found != noted && directory_.is_current()) {
            to_.loss(what + ": there are " + std::to_string(found) + " of " + std::to_string(noted));
        }
    }

    // A hash whose fields are numbers in hexadecimal digits.
    [[nodiscard]] pm_error hash(state_part part, key_space kind) {
        plain_answer fields;
        if (pm_error error = ask({"HKEYS", names_.of(part)}, &fields)) {
            return error;
        }
        std::vector<std::string> names;
        for (const plain_answer::element &each : fields.elements()) {
            names.push_back(each.text);
        }
        std::sort(names.begin(), names.end());
        for (const std::string &each : names) {
            plain_answer value(1);
            if (pm_error error = ask({"HGET", names_.of(part), each}, &value)) {
                return error;
            }
            std::uint64_t number = 0;
            static_cast<void>(std::from_chars(each.data(), each.data() + each.size(), number, 16));
            if (kind == key_space::schema) {
                to_.record(kind, store::schema_key(number), value.text());
            } else {
                const std::string key = store::key(kind, static_cast<std::uint32_t>(number));
                to_.record(kind, key, store::unseal(key, value.text()));
            }
        }
        if (kind == key_space::interface) {
            compare("interfaces", names.size(), directory_.noted_interfaces());
        }
        return {};
    }

    void router() {
        for (std::uint32_t i = 0; i < directory_.nodes().size(); ++i) {
            const std::string key = store::key(key_space::node, i);
            to_.record(key_space::node, key, store::unseal(key, directory_.nodes()[i]));
        }
        compare("nodes", directory_.nodes().size(), directory_.noted_nodes());
        if (directory_.platform()) {
            const std::string key = store::key(key_space::platform);
            to_.record(key_space::platform, key, store::unseal(key, *directory_.platform()));
        }
    }

    [[nodiscard]] pm_error publisher(const store::branch &served) {
        plain_answer found(1);
        if (pm_error error = ask({"GET", names_.of(served, branch_part::publisher)}, &found)) {
            return error;
        }
        const std::string key = branch_key(key_space::publisher, served);
        if (found.elements().empty() || found.is_nil()) {
            to_.loss("the publisher of branch " + branch_name(served) + " is missing");
        } else {
            to_.record(key_space::publisher, key, store::unseal(key, found.text()));
        }
        return {};
    }

    [[nodiscard]] pm_error items(const known_branch &of) {
        const std::string key = names_.of(of.named, branch_part::items);
        std::uint64_t seen = 0;
        std::string from = "-";
        std::string last_path;
        for (bool more = true; more;) {
            plain_answer members(PAGE_ITEMS);
            if (pm_error error =
                    ask({"ZRANGE", key, from, "+", "BYLEX", "LIMIT", "0", std::to_string(PAGE_ITEMS)}, &members)) {
                return error;
            }
            for (const plain_answer::element &each : members.elements()) {
                take_member(of.named, each.text, seen == 0, &last_path);
                ++seen;
            }
            more = members.elements().size() == PAGE_ITEMS;
            from = more ? "(" + members.elements().back().text : from;
        }
        compare("branch " + branch_name(of.named), seen, of.items.value_or(seen));
        return {};
    }

    void take_member(const store::branch &in, const std::string &member, bool is_first, std::string *last_path) {
        const std::size_t end = member.find('\0');
        if (end == std::string::npos || end > store::MAX_PATH_LENGTH) {
            to_.loss("branch " + branch_name(in) + ": a member is no item");
            return;
        }
        const std::string path = member.substr(0, end);
        if (!is_first && path <= *last_path) {
            to_.loss("branch " + branch_name(in) + ": " + path + " is there twice or out of its order");
        }
        *last_path = path;
        const std::string key = item_key(in, path);
        to_.record(key_space::item, key, store::unseal(key, std::string_view(member).substr(end + 1)));
    }

    key_names names_;
    client client_;
    directory directory_;
    std::vector<known_branch> branches_;
    store::inspector &to_;
};

}  // namespace

pm_error inspect(const std::string &url, store::inspector *to) {
    redis_url parsed;
    if (pm_error error = parse_url(url, &parsed)) {
        return {OPSTORE_NO_CLIENT, "the store's URL: " + error.text()};
    }
    return inspection(std::move(parsed), to).run();
}

}  // namespace redis_store
