// SPDX-License-Identifier: Apache-2.0
// Listing: the database client beside a bare LMDB cursor over the same items, which either only
// steps or also copies each key and value out, one batch after another, as a client must that holds
// nothing of the store while output waits.
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <lmdb.h>
#include <memory>
#include <string>
#include <vector>

#include "bench/sample_records.h"
#include "platform/local/back_ends/writers.h"
#include "platform/local/store/record_key.h"
#include "platform/opstore.h"
#include "schema/pm_descriptors.h"

namespace {

constexpr std::uint32_t ITEMS = 20'000;
constexpr std::uint32_t BATCH = 200;
constexpr char BRANCH[] = "/oper/perf_meas/main/node/1/";

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

// A store of ITEMS interfaces, made once and removed at exit.
class sample_store {
public:
    sample_store() {
        char name[] = "/tmp/perf-bench-XXXXXX";
        require(mkdtemp(name) != nullptr);
        folder_ = name;
        const std::string url = "lmdb:" + folder_;
        setenv("OPSTORE_URL", url.c_str(), 1);
        std::unique_ptr<store::writer> writer;
        require(!store::open_writer(url.c_str(), store::missing_store::make, &writer));
        for (std::uint32_t i = 0; i < ITEMS; ++i) {
            const std::string path = "intf/detail/eth0/1/0/" + std::to_string(i);
            require(!writer->put_item({store::root::main, 1}, path, &sample_interface(), pm_intf_parcel_descriptor()));
        }
        require(!writer->commit());
    }
    ~sample_store() { std::filesystem::remove_all(folder_); }
    sample_store(const sample_store &) = delete;
    sample_store &operator=(const sample_store &) = delete;

    [[nodiscard]] const std::string &folder() const { return folder_; }
    [[nodiscard]] static std::string prefix() { return store::item_key({store::root::main, 1}, "intf/detail/"); }

private:
    std::string folder_;
};

const sample_store &the_store() {
    static const sample_store store;
    return store;
}

// Lists all items as the walker does; returns how many.
std::uint32_t list_all(opstore_handle handle) {
    char key[OPSTORE_KEY_SIZE] = "";
    std::uint32_t flags = 0;
    std::uint32_t total = 0;
    std::uint32_t more = 1;
    while (more != 0) {
        opstore_list *list = nullptr;
        std::uint32_t count = BATCH;
        require(opstore_datalist(handle, "intf/detail/", key, &count, &list, flags) == 0);
        const char *last = "";
        for (std::uint32_t i = 0; i < count; ++i) {
            std::uint32_t type = 0;
            std::uint32_t length = 0;
            std::uint32_t extra = 0;
            const void *data = nullptr;
            require(opstore_datalist_next(list, &last, &type, &data, &length, &extra) == 0);
            benchmark::DoNotOptimize(data);
        }
        if (count < BATCH) {
            require(opstore_datalist_get_more_flag(list, &more) == 0);
        }
        std::strncpy(key, last, sizeof key - 1);
        require(opstore_datalist_free(list) == 0);
        flags = OPSTORE_LIST_AFTER;
        total += count;
        if (count == 0) {
            break;
        }
    }
    return total;
}

void list_client(benchmark::State &state) {
    the_store();
    opstore_handle handle = nullptr;
    require(_opstore_bind(&handle, BRANCH, OPSTORE_BIND_READ) == 0);
    for (auto _ : state) {
        require(list_all(handle) == ITEMS);
    }
    _opstore_unbind(handle);
    state.SetItemsProcessed(state.iterations() * ITEMS);
}

// The store's table, opened a second time and without locks, which this process's client holds.
class bare_table {
public:
    explicit bare_table(const std::string &folder) {
        require(mdb_env_create(&env_) == 0 && mdb_env_open(env_, folder.c_str(), MDB_RDONLY | MDB_NOLOCK, 0) == 0);
    }
    ~bare_table() { mdb_env_close(env_); }
    bare_table(const bare_table &) = delete;
    bare_table &operator=(const bare_table &) = delete;

    // Steps over all items in one transaction; `visit` takes each key and value.
    template <class Visit>
    void step_over_all(Visit visit) {
        MDB_txn *txn = nullptr;
        MDB_dbi table = 0;
        MDB_cursor *cursor = nullptr;
        require(mdb_txn_begin(env_, nullptr, MDB_RDONLY, &txn) == 0 && mdb_dbi_open(txn, nullptr, 0, &table) == 0 &&
                mdb_cursor_open(txn, table, &cursor) == 0);
        std::string prefix = sample_store::prefix();
        const auto view = [](const MDB_val &from) {
            return std::string_view(static_cast<const char *>(from.mv_data), from.mv_size);
        };
        MDB_val key{prefix.size(), prefix.data()};
        MDB_val value{};
        std::uint32_t total = 0;
        int result = mdb_cursor_get(cursor, &key, &value, MDB_SET_RANGE);
        for (; result == 0 && view(key).starts_with(prefix); ++total) {
            visit(view(key), view(value));
            result = mdb_cursor_get(cursor, &key, &value, MDB_NEXT);
        }
        mdb_cursor_close(cursor);
        mdb_txn_abort(txn);
        require(total == ITEMS);
    }

private:
    MDB_env *env_ = nullptr;
};

void list_cursor(benchmark::State &state) {
    bare_table table(the_store().folder());
    for (auto _ : state) {
        table.step_over_all([](std::string_view key, std::string_view value) {
            benchmark::DoNotOptimize(key.data());
            benchmark::DoNotOptimize(value.data());
        });
    }
    state.SetItemsProcessed(state.iterations() * ITEMS);
}

void list_cursor_copying(benchmark::State &state) {
    bare_table table(the_store().folder());
    std::vector<char> copy(256 * 1024);
    for (auto _ : state) {
        std::size_t at = 0;
        std::uint32_t items = 0;
        table.step_over_all([&](std::string_view key, std::string_view value) {
            at = items++ % BATCH == 0 ? 0 : at;
            std::memcpy(copy.data() + at, key.data(), key.size());
            std::memcpy(copy.data() + at + key.size(), value.data(), value.size());
            at += key.size() + value.size();
            benchmark::DoNotOptimize(copy.data());
            benchmark::ClobberMemory();
        });
    }
    state.SetItemsProcessed(state.iterations() * ITEMS);
}

BENCHMARK(list_client)->Name("list/client")->Unit(benchmark::kMicrosecond);
BENCHMARK(list_cursor)->Name("list/bare_cursor")->Unit(benchmark::kMicrosecond);
BENCHMARK(list_cursor_copying)->Name("list/copying_cursor")->Unit(benchmark::kMicrosecond);

}  // namespace
