// SPDX-License-Identifier: Apache-2.0
// Puts the cluster together, and moves slots in it.
#include "tests/support/redis_cluster.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/local/redis_store/redis_key.h"

namespace {

// Asks until the answer has a text in it.
void wait_for(const redis_server &server, std::initializer_list<std::string_view> question, const std::string &text) {
    for (int tries = 0; tries < 500 && server.run(question).find(text) == std::string::npos; ++tries) {
        ::usleep(20'000);
    }
    EXPECT_NE(server.run(question).find(text), std::string::npos) << text;
}

}  // namespace

redis_cluster::redis_cluster(std::string certificate) : certificate_(std::move(certificate)) {
    std::string command = REDIS_CLI;
    command += certificate_.empty() ? "" : " --tls --cacert " + certificate_ + ".pem";
    command += " --cluster create --cluster-yes";
    for (int i = 0; i < MASTERS; ++i) {
        add_server();
        command += " " + address(i);
    }
    EXPECT_EQ(std::system((command + " >/dev/null").c_str()), 0);
    for (const auto &each : servers_) {
        wait_for(*each, {"CLUSTER", "INFO"}, "cluster_state:ok");
    }
}

void redis_cluster::add_server() {
    ports_.push_back(std::to_string(redis_server::free_port()));
    std::vector<std::string> options = {
        "bind", "127.0.0.1", "cluster-enabled", "yes", "cluster-node-timeout", "60000", "repl-diskless-sync-delay",
        "0"};
    if (certificate_.empty()) {
        options.insert(options.end(), {"port", ports_.back()});
    } else {
        options.insert(options.end(), {"tls-port", ports_.back(), "tls-cluster", "yes", "tls-replication", "yes",
                                       "tls-cert-file", certificate_ + ".pem", "tls-key-file", certificate_ + ".key",
                                       "tls-ca-cert-file", certificate_ + ".pem", "tls-auth-clients", "no"});
    }
    servers_.push_back(std::make_unique<redis_server>(std::move(options)));
}

std::string redis_cluster::address(int server) const { return "127.0.0.1:" + ports_[static_cast<std::size_t>(server)]; }

std::string redis_cluster::url(int server) const {
    return certificate_.empty() ? "redis://" + address(server) + "?timeout=2000"
                                : "rediss://" + address(server) + "?timeout=2000&ca=" + certificate_ + ".pem";
}

std::string redis_cluster::id_of(int server) const { return this->server(server).run({"CLUSTER", "MYID"}); }

int redis_cluster::owner_of(const std::string &key) const {
    const std::string slot = server(0).run({"CLUSTER", "KEYSLOT", key});
    for (int i = 0; i < MASTERS; ++i) {
        // A server answers about a slot that it has without naming another.
        if (server(i).run_here({"EXISTS", key}).find("MOVED") == std::string::npos) {
            return i;
        }
    }
    ADD_FAILURE() << "no server has slot " << slot;
    return 0;
}

store::branch redis_cluster::branch_at(int master) const {
    store::branch found{store::root::main, 1};
    while (owner_of(items_key(found)) != master) {
        ++found.node;
    }
    return found;
}

std::string redis_cluster::items_key(const store::branch &of) {
    return redis_store::key_names("ps1").of(of, redis_store::branch_part::items);
}

void redis_cluster::begin_move(const std::string &key, int to) {
    const int from = owner_of(key);
    const std::string slot = server(0).run({"CLUSTER", "KEYSLOT", key});
    EXPECT_EQ(server(to).run({"CLUSTER", "SETSLOT", slot, "IMPORTING", id_of(from)}), "OK");
    EXPECT_EQ(server(from).run({"CLUSTER", "SETSLOT", slot, "MIGRATING", id_of(to)}), "OK");
}

void redis_cluster::move_key(const std::string &key, int to) {
    const std::string &port = ports_[static_cast<std::size_t>(to)];
    EXPECT_EQ(server(owner_of(key)).run_here({"MIGRATE", "127.0.0.1", port, key, "0", "5000"}), "OK");
}

void redis_cluster::end_move(const std::string &key, int to) {
    const int from = owner_of(key);
    const std::string slot = server(0).run({"CLUSTER", "KEYSLOT", key});
    for (std::string left; !(left = server(from).run({"CLUSTER", "GETKEYSINSLOT", slot, "1"})).empty();) {
        move_key(left, to);
    }
    for (const int each : {to, from, MASTERS - to - from}) {
        EXPECT_EQ(server(each).run({"CLUSTER", "SETSLOT", slot, "NODE", id_of(to)}), "OK");
    }
}

void redis_cluster::add_replica_of(int master) {
    add_server();
    const std::string &port = ports_[static_cast<std::size_t>(master)];
    EXPECT_EQ(server(REPLICA).run({"CLUSTER", "MEET", "127.0.0.1", port}), "OK");
    wait_for(server(REPLICA), {"CLUSTER", "NODES"}, id_of(master));
    wait_for(server(REPLICA), {"CLUSTER", "INFO"}, "cluster_state:ok");
    EXPECT_EQ(server(REPLICA).run({"CLUSTER", "REPLICATE", id_of(master)}), "OK");
    wait_for(server(REPLICA), {"INFO", "replication"}, "master_link_status:up");
    wait_for(server(master), {"CLUSTER", "NODES"}, "slave " + id_of(master));
}
