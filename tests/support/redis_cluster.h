// SPDX-License-Identifier: Apache-2.0
// A private Redis Cluster of three masters on ports of this machine, which ends with the object.
#pragma once

#include <array>
#include <memory>
#include <string>

#include "tests/support/redis_server.h"

class redis_cluster {
public:
    // With a certificate, the servers talk TLS only, each with FOLDER/NAME.pem and FOLDER/NAME.key.
    explicit redis_cluster(std::string certificate = "");

    // A URL that names one server: a master's, or the replica's.
    [[nodiscard]] std::string url(int server = 0) const;
    [[nodiscard]] redis_server &server(int number) const { return *servers_[static_cast<std::size_t>(number)]; }
    [[nodiscard]] std::string address(int server) const;

    // The number of the master that has a key's slot.
    [[nodiscard]] int owner_of(const std::string &key) const;
    // A branch of the root "main" whose keys are at a master.
    [[nodiscard]] store::branch branch_at(int master) const;
    // "ps1:{m00000001}:i"
    [[nodiscard]] static std::string items_key(const store::branch &of);

    // The three steps of moving a slot: from now on its keys may be at either master; one key; all the others.
    void begin_move(const std::string &key, int to);
    void move_key(const std::string &key, int to);
    void end_move(const std::string &key, int to);

    // Adds a server that copies a master, and waits for the copy; its number is REPLICA.
    void add_replica_of(int master);

    static constexpr int MASTERS = 3;
    static constexpr int REPLICA = 3;

private:
    void add_server();
    [[nodiscard]] std::string id_of(int server) const;

    std::string certificate_;
    std::vector<std::string> ports_;
    std::vector<std::unique_ptr<redis_server>> servers_;
};
