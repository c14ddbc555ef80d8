// SPDX-License-Identifier: Apache-2.0
// The service's life as others see it: starting, running, killed, ended; configurations read again; stores that fail.
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/perf-probed/support/live.h"
#include "tests/support/redis_server.h"

namespace {

// `port` is one that no other test uses, as tests may run side by side.
std::string self(int port, const std::string &more = "") {
    const std::string number = std::to_string(port);
    return "node: {name: h, id: 1}\nreflector: {listen: [{address: 127.0.0.1, port: " + number +
           "}]}\nprofiles:\n  - {name: p, kind: delay, computation-interval: 1 s, tx-interval: 100 ms, "
           "response-timeout: "
           "200 ms}\nendpoints:\n  - {name: a, address: 127.0.0.1, port: " +
           number + ", delay: p}\n" + more;
}

TEST(life, is_published_within_seconds_and_stopped_at_the_end) {
    live_service service(self(18701));
    EXPECT_TRUE(within(5, [&] { return service.shows("-c 26", "Endpoint name: a"); }));
    EXPECT_EQ(service.process().end(), 0);
    const command_result after = service.show("-c 26");
    EXPECT_NE(after.out.find("PM process is not running"), std::string::npos) << after.out;
    EXPECT_EQ(after.out.find("Endpoint name"), std::string::npos);
    EXPECT_NE(run_command("perf-store dump", service.store())
                  .out.find(R"({"publisher":{"root":"main","node":1,"state":"stopped"}})"),
              std::string::npos);
}

// Whether a dump says so of each branch that the service serves.
bool dumps(const live_service &service, const std::string &state) {
    std::string expected = "{\"dataset\":{\"version\":1}}\n";
    for (const char *const root : {"main", "resp", "rx"}) {
        expected += std::string(R"({"publisher":{"root":")") + root + R"(","node":1,"state":")" + state + "\"}}\n";
    }
    return service.run(PERF_STORE " dump --path none").out == expected;
}

// A service that nobody could tell its end is shown, and dumped, as stopped once its lease has run out.
void expect_lease_to_end(live_service &service) {
    ASSERT_TRUE(within(5, [&] { return service.shows("-c 26", "Endpoint name: a"); })) << service.log();
    EXPECT_TRUE(dumps(service, "running")) << service.run(PERF_STORE " dump --path none").out;
    service.process().end(SIGKILL);
    EXPECT_TRUE(service.shows("-c 26", "Endpoint name: a"));
    EXPECT_TRUE(within(7, [&] { return !service.shows("-c 26", "Endpoint name: a"); }));
    EXPECT_TRUE(service.shows("-c 26", "PM process is not running"));
    EXPECT_TRUE(dumps(service, "stopped")) << service.run(PERF_STORE " dump --path none").out;
    service.start();
    EXPECT_TRUE(within(5, [&] { return service.shows("-c 26", "Endpoint name: a"); }));
    EXPECT_TRUE(dumps(service, "running")) << service.run(PERF_STORE " dump --path none").out;
}

TEST(life, is_shown_as_not_running_seconds_after_it_was_killed) {
    live_service service(self(18702));
    expect_lease_to_end(service);
}

TEST(life, is_shown_as_not_running_by_a_server_seconds_after_it_was_killed) {
    const redis_server server;
    live_service service(self(18711), "", server.url());
    expect_lease_to_end(service);
}

TEST(life, is_not_shown_while_it_is_suspended_and_makes_up_for_nothing) {
    live_service service(self(18703));
    ASSERT_TRUE(within(5, [&] { return service.shows("-c 26", "Endpoint name: a"); }));
    service.process().signal(SIGSTOP);
    EXPECT_TRUE(within(8, [&] { return !service.shows("-c 26", "Endpoint name: a"); }));
    service.process().signal(SIGCONT);
    EXPECT_TRUE(within(3, [&] { return service.shows("-c 26", "Endpoint name: a"); }));
    pause(0.5);
    service.process().signal(SIGUSR2);
    EXPECT_TRUE(within(3, [&] { return service.log().find(" 0 late, 0 duplicate,") != std::string::npos; }))
        << service.log();
}

TEST(life, a_configuration_that_is_read_again_keeps_what_did_not_change) {
    live_service service(self(18704, "  - {name: b, address: 127.0.0.1, port: 18704, liveness: true}\n"));
    ASSERT_TRUE(within(5, [&] { return service.shows("-c 6", "Endpoint name               : b"); }));
    ASSERT_TRUE(within(5, [&] { return service.shows("-c 4 -t 29 -i a", "10/10"); }));
    service.configure(self(18704, "  - {name: c, address: 127.0.0.1, port: 18704, delay: p}\n"));
    service.process().signal(SIGHUP);
    ASSERT_TRUE(within(5, [&] { return service.shows("-c 26", "Endpoint name: c"); })) << service.log();
    EXPECT_TRUE(service.shows("-c 6 -s 1", "Endpoint name               : a"));
    EXPECT_TRUE(service.shows("-c 4 -t 29 -i a", "10/10"));
    // What is gone is shown as deleted for a moment, and then no more.
    EXPECT_TRUE(within(9, [&] { return !service.shows("-c 26", "Endpoint name: b"); }));
    service.configure("nonsense: 1\n");
    service.process().signal(SIGHUP);
    EXPECT_TRUE(within(3, [&] {
        return service.log().find("config.yaml:1: nonsense: is no key that is known here") != std::string::npos;
    }));
    EXPECT_TRUE(service.shows("-c 26", "Endpoint name: c"));
}

// A reflector and a sender whose key files are two.
TEST(life, the_key_of_a_port_that_stays_open_is_read_again) {
    const temporary_folder folder;
    const std::string near_key = folder.path() + "/near";
    const std::string far_key = folder.path() + "/far";
    write_file(near_key, "one\n");
    write_file(far_key, "one\n");
    live_service service(
        "node: {name: h, id: 1}\nreflector: {listen: [{address: 127.0.0.1, port: 18712, key-file: " + far_key +
        "}]}\nprofiles:\n  - {name: l, kind: liveness, tx-interval: 100 ms}\n"
        "endpoints:\n  - {name: a, address: 127.0.0.1, port: 18712, liveness: l, key-file: " +
        near_key + "}\n");
    ASSERT_TRUE(within(6, [&] { return service.shows("-c 26", "Session State: Up"); })) << service.log();
    write_file(far_key, "another\n");
    service.process().signal(SIGHUP);
    EXPECT_TRUE(within(6, [&] { return service.shows("-c 26", "Session State: Down"); })) << service.log();
    write_file(near_key, "another\n");
    service.process().signal(SIGHUP);
    EXPECT_TRUE(within(6, [&] { return service.shows("-c 26", "Session State: Up"); })) << service.log();
    const std::string history = service.show("-c 27 -t 29").out;  // one session all the while
    EXPECT_NE(history.find(" DOWN\n"), std::string::npos) << history;
}

TEST(life, a_port_that_cannot_be_opened_leaves_the_configuration_as_it_was) {
    live_service other("reflector: {listen: [{address: 127.0.0.1, port: 18713}]}\nnode: {name: o, id: 1}\n");
    live_service service(self(18714));
    ASSERT_TRUE(within(5, [&] { return service.shows("-c 10", "Total interfaces                              : 1"); }));
    ASSERT_TRUE(within(5, [&] { return other.shows("-c 9", "Total interfaces with PM sessions"); }));
    service.configure(self(18713));
    service.process().signal(SIGHUP);
    EXPECT_TRUE(within(5, [&] {
        return service.log().find(
                   "cannot receive at 127.0.0.1 port 18713: Address already in use; the configuration "
                   "stays as it was") != std::string::npos;
    })) << service.log();
    EXPECT_TRUE(within(5, [&] {
        return service.shows("-c 36",
                             "Opened IPv4 port                                        "
                             ": 18714");
    })) << service.show("-c 36").out;
    EXPECT_TRUE(within(5, [&] { return service.shows("-c 4 -t 29 -i a", "10/10"); }));
}

TEST(life, cleared_advertisements_say_so) {
    live_service service(self(18705));
    ASSERT_TRUE(within(6, [&] { return service.shows("-c 20 -t 29", "         FIRST"); }));
    service.process().signal(SIGUSR1);
    EXPECT_TRUE(within(3, [&] { return service.shows("-c 20 -t 29", "         0    EXEC-CLEAR"); }))
        << service.show("-c 20 -t 29").out;
}

bool went_on_measuring(live_service &service) {
    service.process().signal(SIGUSR2);
    return within(3, [&] { return service.log().find("session 1 of endpoint a: ") != std::string::npos; });
}

// Syslog's priority, here that of a notice, begins a line for the journal only.
TEST(life, lines_have_priorities_where_the_journal_reads_them) {
    for (const auto &[prefix, beginning] : {std::pair{"env -u JOURNAL_STREAM", "perf-probed: session 1 of "},
                                            std::pair{"env JOURNAL_STREAM=8:1", "<5>perf-probed: session 1 of "}}) {
        live_service service(self(18712), prefix);
        ASSERT_TRUE(within(5, [&] { return service.shows("-c 26", "Endpoint name: a"); }));
        EXPECT_TRUE(went_on_measuring(service));
        EXPECT_TRUE(service.log().starts_with(beginning)) << service.log();
    }
}

TEST(life, a_store_that_is_gone_is_made_again) {
    live_service service(self(18706));
    ASSERT_TRUE(within(5, [&] { return service.shows("-c 26", "Endpoint name: a"); }));
    std::filesystem::remove_all(service.store());
    EXPECT_TRUE(within(8, [&] { return service.shows("-c 26", "Endpoint name: a"); }));
    EXPECT_TRUE(went_on_measuring(service));
}

TEST(life, a_store_that_somebody_emptied_is_filled_again) {
    live_service service(self(18710));
    ASSERT_TRUE(within(5, [&] { return service.shows("-c 26", "Endpoint name: a"); }));
    write_file(service.store() + "-set", "{\"node\": {\"id\": 9, \"name\": \"x\"}}\n");
    ASSERT_EQ(run_command("perf-store load --replace " + service.store() + "-set", service.store()).status, 0);
    EXPECT_TRUE(within(8, [&] { return service.shows("-c 26", "Endpoint name: a"); }));
}

TEST(life, a_damaged_store_is_told_and_published_again_once_it_is_whole) {
    live_service service(self(18707));
    ASSERT_TRUE(within(5, [&] { return service.shows("-c 26", "Endpoint name: a"); }));
    write_file(service.store() + "/data.mdb", std::string(20000, 'x'));
    EXPECT_TRUE(within(8, [&] { return service.log().find("the store cannot be written") != std::string::npos; }));
    std::filesystem::remove_all(service.store());
    EXPECT_TRUE(within(8, [&] { return service.shows("-c 26", "Endpoint name: a"); }));
    EXPECT_TRUE(went_on_measuring(service));
}

TEST(life, a_store_on_a_full_disk_is_told_and_published_again_once_there_is_room) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can mount a small file system";
    }
    const temporary_folder folder;
    ASSERT_EQ(system(("mount -t tmpfs -o size=64k none " + folder.path()).c_str()), 0);
    {
        live_service service(self(18708) + "store: lmdb:" + folder.path() + "/s\n");
        EXPECT_TRUE(within(8, [&] { return service.log().find("the store cannot be written") != std::string::npos; }));
        EXPECT_EQ(system(("mount -o remount,size=64m " + folder.path()).c_str()), 0);
        EXPECT_TRUE(within(8, [&] {
            return run_command("perf-show -c 26", folder.path() + "/s").out.find("Endpoint name: a") !=
                   std::string::npos;
        })) << service.log();
        EXPECT_TRUE(went_on_measuring(service));
    }
    EXPECT_EQ(system(("umount " + folder.path()).c_str()), 0);
}

TEST(life, a_read_only_store_is_told_and_published_again_once_it_may_be_written) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can mount a read-only file system";
    }
    const temporary_folder folder;
    ASSERT_EQ(system(("mount -t tmpfs -o ro,size=64m none " + folder.path()).c_str()), 0);
    {
        live_service service(self(18709) + "store: lmdb:" + folder.path() + "/s\n");
        EXPECT_TRUE(within(8, [&] { return service.log().find("the store cannot be written") != std::string::npos; }));
        EXPECT_EQ(system(("mount -o remount,rw " + folder.path()).c_str()), 0);
        EXPECT_TRUE(within(8, [&] {
            return run_command("perf-show -c 26", folder.path() + "/s").out.find("Endpoint name: a") !=
                   std::string::npos;
        })) << service.log();
    }
    EXPECT_EQ(system(("umount " + folder.path()).c_str()), 0);
}

// What a server is told so that it cannot be written, and so that it can again.
struct server_failure {
    const char *name;
    std::initializer_list<std::string_view> begin, end;
};

void expect_survival(live_service &service, const std::function<void()> &begin, const std::function<void()> &end) {
    ASSERT_TRUE(within(5, [&] { return service.shows("-c 26", "Endpoint name: a"); })) << service.log();
    begin();
    EXPECT_TRUE(within(10, [&] { return service.log().find("the store cannot be written") != std::string::npos; }))
        << service.log();
    EXPECT_TRUE(went_on_measuring(service));
    end();
    EXPECT_TRUE(within(10, [&] { return service.log().find("the store is written again") != std::string::npos; }))
        << service.log();
    EXPECT_TRUE(within(5, [&] { return service.shows("-c 26", "Endpoint name: a"); })) << service.log();
}

TEST(life, a_server_that_is_full_or_read_only_is_told_and_published_to_again) {
    const server_failure FAILURES[] = {
        {"full", {"CONFIG", "SET", "maxmemory", "1"}, {"CONFIG", "SET", "maxmemory", "0"}},
        {"read-only", {"REPLICAOF", "127.0.0.1", "1"}, {"REPLICAOF", "NO", "ONE"}},
    };
    for (const server_failure &each : FAILURES) {
        SCOPED_TRACE(each.name);
        const redis_server server({"replica-serve-stale-data", "yes"});
        live_service service(self(18715), "", server.url());
        expect_survival(
            service, [&] { server.run(each.begin); }, [&] { server.run(each.end); });
    }
}

TEST(life, a_server_that_is_gone_is_published_to_again_once_it_is_back) {
    redis_server server;
    live_service service(self(18716), "", server.url());
    expect_survival(
        service, [&] { server.kill_it(); }, [&] { server.start(); });
}

TEST(life, a_wrong_configuration_does_not_start) {
    const temporary_folder folder;
    write_file(folder.path() + "/c.yaml", "a: 1\nb: 2\n");
    const command_result checked = run_command("perf-probed --check " + folder.path() + "/c.yaml", folder.path());
    EXPECT_EQ(checked.status, 1);
    EXPECT_EQ(checked.err, "perf-probed: " + folder.path() +
                               "/c.yaml:1: a: is no key that is known here\nperf-probed: " + folder.path() +
                               "/c.yaml:2: b: is no key that is known here\n");
    EXPECT_EQ(run_command("perf-probed --nonsense", folder.path()).status, 2);
    EXPECT_EQ(run_command("perf-probed --check '" PM_PROBED_EXAMPLE "'", folder.path()).status, 0);
}

}  // namespace
