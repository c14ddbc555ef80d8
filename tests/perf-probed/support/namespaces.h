// SPDX-License-Identifier: Apache-2.0
// Two network namespaces joined by a pair of interfaces, removed at the end. Needs root and iproute2.
//
//   NAME-a: interface "a", 198.18.N.1/24 and 2001:db8:N::1     NAME-b: interface "b", the same with 2
#pragma once

#include <cstdlib>
#include <string>
#include <unistd.h>

class joined_namespaces {
public:
    explicit joined_namespaces(int number)
        : name_("ppt" + std::to_string(getpid()) + "-" + std::to_string(number)), number_(std::to_string(number)) {
        run("ip netns add " + name("a"));
        run("ip netns add " + name("b"));
        join();
    }
    // Makes the pair of interfaces, with its addresses and up.
    void join() {
        run("ip link add name a netns " + name("a") + " type veth peer name b netns " + name("b"));
        for (const char *const end : {"a", "b"}) {
            const std::string in = "ip -n " + name(end) + " ";
            run(in + "link set dev lo up");
            run(in + "addr add 198.18." + number_ + "." + host(end) + "/24 dev " + end);
            run(in + "addr add 2001:db8:" + number_ + "::" + host(end) + "/64 dev " + end + " nodad");
            run(in + std::string("link set dev ") + end + " up");
        }
    }
    ~joined_namespaces() {
        static_cast<void>(std::system(("ip netns del " + name("a") + "; ip netns del " + name("b")).c_str()));
    }
    joined_namespaces(const joined_namespaces &) = delete;
    joined_namespaces &operator=(const joined_namespaces &) = delete;

    [[nodiscard]] bool made() const { return made_; }
    [[nodiscard]] std::string name(const char *end) const { return name_ + end; }
    [[nodiscard]] std::string in(const char *end) const { return "ip netns exec " + name(end) + " "; }
    [[nodiscard]] std::string ipv4(const char *end) const { return "198.18." + number_ + "." + host(end); }
    [[nodiscard]] std::string ipv6(const char *end) const { return "2001:db8:" + number_ + "::" + host(end); }
    // Runs a command in a namespace.
    bool run_in(const char *end, const std::string &command) { return std::system((in(end) + command).c_str()) == 0; }

private:
    static std::string host(const std::string &end) { return end == "a" ? "1" : "2"; }
    void run(const std::string &command) { made_ = std::system(command.c_str()) == 0 && made_; }

    std::string name_;
    std::string number_;
    bool made_ = true;
};
