// SPDX-License-Identifier: Apache-2.0
// Reads what servers say of themselves.
#include "platform/local/redis_store/server_policy.h"

namespace redis_store {

namespace {

// The value of a line "name:value" of INFO; `missing` when there is none.
std::string value_in(const std::string &info, const std::string &name, const std::string &missing) {
    const std::size_t at = info.find(name + ':');
    if (at == std::string::npos) {
        return missing;
    }
    const std::size_t begin = at + name.size() + 1;
    return info.substr(begin, info.find('\r', begin) - begin);
}

}  // namespace

pm_error check_policy(client *servers, const std::vector<std::string> &tags, bool *is_cluster) {
    *is_cluster = false;
    pipeline questions;
    for (const std::string &tag : tags) {
        questions.add_for(tag, {"INFO", "memory"});
        questions.add_for(tag, {"INFO", "cluster"});
    }
    std::vector<plain_answer> infos(questions.commands(), plain_answer(1));
    std::vector<answer *> all;
    for (plain_answer &each : infos) {
        all.push_back(&each);
    }
    if (pm_error error = servers->exchange(questions, all, repetition::allowed)) {
        for (const plain_answer &each : infos) {
            if (each.refusal().starts_with("NOPERM")) {
                return {};
            }
        }
        return error;
    }
    for (std::size_t i = 0; i < infos.size(); i += 2) {
        const std::string policy = value_in(infos[i].text(), "maxmemory_policy", "noeviction");
        if (policy != "noeviction") {
            return pm_error(servers->describe("the server may evict keys (maxmemory-policy " + policy + ")"));
        }
        *is_cluster = *is_cluster || value_in(infos[i + 1].text(), "cluster_enabled", "0") == "1";
    }
    return {};
}

}  // namespace redis_store
