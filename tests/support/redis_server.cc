// SPDX-License-Identifier: Apache-2.0
// Starts, asks and ends the server.
#include "tests/support/redis_server.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/local/codec/parcel_codec.h"
#include "platform/local/redis_store/client.h"
#include "platform/local/redis_store/redis_reader.h"
#include "platform/local/redis_store/redis_writer.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"

namespace {

bool is_free(int port) {
    const int probe = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool bound = ::bind(probe, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    ::close(probe);
    return bound;
}

}  // namespace

int redis_server::free_port() {
    static int next = 10'000 + getpid() % 1'000 * 20;
    do {
        ++next;
    } while (!is_free(next) || !is_free(next + 10'000));
    return next;
}

redis_server::redis_server(std::vector<std::string> options) : options_(std::move(options)) { start(); }

redis_server::~redis_server() { kill_it(); }

void redis_server::start() {
    begin_start();
    for (int tries = 0; tries < 200 && run({"PING"}).find(socket()) == 0; ++tries) {
        ::usleep(20'000);
    }
}

void redis_server::begin_start() {
    std::vector<std::string> words = {REDIS_SERVER,      "--port",       "0",     "--unixsocket",
                                      socket(),          "--appendonly", "no",    "--logfile",
                                      folder() + "/log", "--dir",        folder()};
    words.insert(words.end(), {"--save", ""});
    for (std::size_t i = 0; i + 1 < options_.size(); i += 2) {
        words.push_back("--" + options_[i]);
        words.push_back(options_[i + 1]);
    }
    std::vector<char *> arguments;
    for (std::string &word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    ::unlink(socket().c_str());
    process_ = fork();
    if (process_ == 0) {
        ::close(STDOUT_FILENO);
        execv(arguments[0], arguments.data());
        std::_Exit(127);
    }
}

void redis_server::send_signal(int number) const { ::kill(process_, number); }

void redis_server::kill_it() {
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
        process_ = -1;
    }
}

std::string redis_server::url(const std::string &more) const {
    return "redis+unix://" + socket() + "?timeout=2000" + more;
}

namespace {

std::string texts_of(const redis_store::plain_answer &found) {
    std::string texts;
    for (const auto &each : found.elements()) {
        texts += each.text;
    }
    return texts;
}

}  // namespace

std::string redis_server::run(std::initializer_list<std::string_view> words) const {
    redis_store::redis_url url;
    static_cast<void>(redis_store::parse_url(this->url(), &url));
    redis_store::client client(url, redis_store::purpose::writing);
    redis_store::pipeline commands;
    commands.add(words);
    redis_store::plain_answer found;
    redis_store::answer *const all[] = {&found};
    if (const pm_error error = client.exchange(commands, all, redis_store::repetition::forbidden)) {
        return error.text();
    }
    return texts_of(found);
}

std::string redis_server::run_here(std::initializer_list<std::string_view> words) const {
    redis_store::redis_url url;
    static_cast<void>(redis_store::parse_url(this->url(), &url));
    redis_store::server_link link(&url, url.servers);
    redis_store::pipeline commands;
    commands.add(words);
    redis_store::plain_answer found;
    pm_error error = link.send(commands.bytes());
    error = error ? error : link.receive(&found);
    return error ? error.text() : found.refusal().empty() ? texts_of(found) : found.refusal();
}

std::unique_ptr<store::reader> read_store(const std::string &url) {
    std::unique_ptr<store::reader> opened;
    const pm_error error = redis_store::open_reader(url, &opened);
    EXPECT_FALSE(error) << error.text();
    return opened;
}

std::unique_ptr<store::writer> write_store(const std::string &url) {
    std::unique_ptr<store::writer> opened;
    const pm_error error = redis_store::open_writer(url, store::missing_store::make, &opened);
    EXPECT_FALSE(error) << error.text();
    return opened;
}

pm_error put_named(store::writer *into, std::string_view path, const std::string &name, const store::branch &branch) {
    const local_interface record{name.c_str()};
    return into->put_item(branch, path, &record, local_interface_descriptor());
}

pm_error load_items(const std::string &url, int count, const std::string &name) {
    const auto writer = write_store(url);
    for (int i = 0; i < count; ++i) {
        char path[32];
        std::snprintf(path, sizeof path, "item/%06d", i);
        if (pm_error error = put_named(writer.get(), path, name)) {
            return error;
        }
    }
    return writer->commit();
}

std::string name_at(store::reader *from, std::string_view path) {
    std::string parcel;
    if (const pm_error error = from->get(MAIN_1, path, {}, nullptr, &parcel)) {
        return errcode_strerror(error.code());
    }
    local_interface record{};
    const errcode code =
        parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), &record, local_interface_descriptor());
    std::string name = code == ERRCODE_SUCCESS && record.Name != nullptr ? record.Name : errcode_strerror(code);
    parcel_free_indirections(&record, local_interface_descriptor());
    return name;
}

std::vector<std::string> all_paths(store::reader *from, std::string_view prefix, pm_error *error, int *batches) {
    std::vector<std::string> paths;
    store::batch batch;
    *batches = 0;
    do {
        const std::string after = paths.empty() ? "" : paths.back();
        *error = from->list(MAIN_1, {prefix, after, 200, {}}, nullptr, &batch);
        if (*error) {
            return {};
        }
        ++*batches;
        for (const store::item &each : batch.items()) {
            paths.emplace_back(each.path);
        }
    } while (batch.more());
    return paths;
}
