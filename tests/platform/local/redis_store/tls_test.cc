// SPDX-License-Identifier: Apache-2.0
// Connections over TLS: the server must show a certificate that is trusted and made for its name.
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/local/redis_store/redis_reader.h"
#include "tests/support/command.h"
#include "tests/support/redis_cluster.h"
#include "tests/support/redis_server.h"

namespace {

// A certificate that signs itself, FOLDER/NAME.pem with its key FOLDER/NAME.key.
std::string make_certificate(const temporary_folder &folder, const std::string &name, const std::string &subject) {
    const std::string base = folder.path() + "/" + name;
    const std::string command =
        "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 "
        "-subj /CN=" +
        name + " -addext subjectAltName=" + subject + " -keyout " + base + ".key -out " + base + ".pem 2>/dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0);
    return base;
}

// Options of a server that has a certificate for its own and as the authority; `of_clients`: yes when it wants theirs.
std::vector<std::string> tls_options(const std::string &port, const std::string &certificate, const char *of_clients) {
    return {"bind",
            "127.0.0.1",
            "tls-port",
            port,
            "tls-cert-file",
            certificate + ".pem",
            "tls-key-file",
            certificate + ".key",
            "tls-ca-cert-file",
            certificate + ".pem",
            "tls-auth-clients",
            of_clients};
}

TEST(Tls, TakesTheRightCertificateOnly) {
    const temporary_folder folder;
    const std::string right = make_certificate(folder, "right", "IP:127.0.0.1");
    const std::string other = make_certificate(folder, "other", "IP:127.0.0.1");
    const std::string port = std::to_string(redis_server::free_port());
    const redis_server server(tls_options(port, right, "no"));
    ASSERT_FALSE(load_items(server.url(), 300, "sealed"));
    const std::string url = "rediss://127.0.0.1:" + port + "?timeout=2000";
    const auto reader = read_store(url + "&ca=" + right + ".pem");
    EXPECT_EQ(name_at(reader.get(), "item/000299"), "sealed");
    std::unique_ptr<store::reader> refused;
    EXPECT_EQ(redis_store::open_reader(url + "&ca=" + other + ".pem", &refused).text(),
              "127.0.0.1:" + port + ": TLS handshake: self-signed certificate");
    EXPECT_EQ(
        redis_store::open_reader("rediss://localhost:" + port + "?timeout=2000&ca=" + right + ".pem", &refused).text(),
        "localhost:" + port + ": TLS handshake: hostname mismatch");
}

TEST(Tls, AShowReadsThroughIt) {
    const temporary_folder folder;
    const std::string own = make_certificate(folder, "own", "IP:127.0.0.1");
    const std::string port = std::to_string(redis_server::free_port());
    const redis_server server(tls_options(port, own, "no"));
    const std::string url = "rediss://127.0.0.1:" + port + "?timeout=2000&ca=" + own + ".pem";
    const command_result shown =
        run_command("cd '" + folder.path() + "'; export OPSTORE_URL='" + server.url() +
                        "'; perf-store load \"$EXAMPLE\" && perf-show -c 9 >plain; export OPSTORE_URL='" + url +
                        "'; perf-show -c 9 >sealed && cmp plain sealed && grep -q 'Total SR Policies.*: 4' sealed",
                    folder.path());
    EXPECT_EQ(shown.status, 0) << shown.out << shown.err;
}

TEST(Tls, ShowsTheClientsCertificateToAServerThatWantsOne) {
    const temporary_folder folder;
    const std::string own = make_certificate(folder, "own", "IP:127.0.0.1");
    const std::string port = std::to_string(redis_server::free_port());
    const redis_server server(tls_options(port, own, "yes"));
    ASSERT_FALSE(load_items(server.url(), 1, "sealed"));
    const std::string url = "rediss://127.0.0.1:" + port + "?timeout=2000&ca=" + own + ".pem";
    EXPECT_EQ(name_at(read_store(url + "&cert=" + own + ".pem&key=" + own + ".key").get(), "item/000000"), "sealed");
    std::unique_ptr<store::reader> refused;
    EXPECT_EQ(redis_store::open_reader(url, &refused).code(), OPSTORE_NO_CLIENT);
    EXPECT_EQ(redis_store::open_reader(url + "&cert=/none.pem&key=/none.key", &refused)
                  .text()
                  .find("127.0.0.1:" + port + ": cannot use the certificate in /none.pem: "),
              0U);
}

TEST(Tls, HoldsForTheServersThatOneOfAClusterNames) {
    const temporary_folder folder;
    const std::string right = make_certificate(folder, "right", "IP:127.0.0.1");
    const std::string other = make_certificate(folder, "other", "IP:127.0.0.1");
    const redis_cluster cluster(right);
    const store::branch branch = cluster.branch_at(1);
    const auto writer = write_store(cluster.url(0));
    ASSERT_FALSE(put_named(writer.get(), "item/000000", "sealed", branch));
    ASSERT_FALSE(writer->commit());
    EXPECT_EQ(cluster.server(1).run_here({"ZCARD", redis_cluster::items_key(branch)}), "1");
    std::string parcel;
    EXPECT_FALSE(read_store(cluster.url(2))->get(branch, "item/000000", {}, nullptr, &parcel));
    EXPECT_FALSE(parcel.empty());
    ASSERT_EQ(cluster.server(1).run({"CONFIG", "SET", "tls-cert-file", other + ".pem", "tls-key-file", other + ".key"}),
              "OK");
    EXPECT_EQ(read_store(cluster.url(2))->get(branch, "item/000000", {}, nullptr, &parcel).text(),
              cluster.address(1) + ": TLS handshake: self-signed certificate");
}

}  // namespace
