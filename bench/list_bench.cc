// Listing: the database client beside a bare LMDB cursor over the same items, which either only
// steps or also copies each key and value out, a batch behind each other, as a client must that holds
// nothing of the store while output waits.
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/sample_records.h"
#include "platform/local/lmdb_store/store.h"
#include "platform/local/lmdb_store/store_writer.h"
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
        store::writer writer;
        require(writer.begin(url.c_str()).empty());
        for (std::uint32_t i = 0; i < ITEMS; ++i) {
            const std::string path = "intf/detail/eth0/1/0/" + std::to_string(i);
            require(
                writer.put_item(store::root::main, 1, path, &sample_interface(), pm_intf_parcel_descriptor()).empty());
        }
        require(writer.commit().empty());
    }
    ~sample_store() { std::filesystem::remove_all(folder_); }
    sample_store(const sample_store &) = delete;
    sample_store &operator=(const sample_store &) = delete;

    [[nodiscard]] const std::string &folder() const { return folder_; }
    [[nodiscard]] static std::string prefix() {
        return branch_key(store::key_space::item, store::root::main, 1) + "intf/detail/";
    }

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

// Steps over all items in one transaction; `visit` takes each key and value.
template <class Visit>
void step_over_all(Visit visit) {
    store::environment *store = nullptr;
    require(store::environment::shared(&store) == 0);
    const std::string prefix = sample_store::prefix();
    std::uint32_t total = 0;
    require(store->read([&](const store::view &view) {
        return view.scan(prefix, "", [&](std::string_view key, std::string_view value) {
            visit(key, value);
            ++total;
            return true;
        });
    }) == 0);
    require(total == ITEMS);
}

void list_cursor(benchmark::State &state) {
    the_store();
    for (auto _ : state) {
        step_over_all([](std::string_view key, std::string_view value) {
            benchmark::DoNotOptimize(key.data());
            benchmark::DoNotOptimize(value.data());
        });
    }
    state.SetItemsProcessed(state.iterations() * ITEMS);
}

void list_cursor_copying(benchmark::State &state) {
    the_store();
    std::vector<char> copy(256 * 1024);
    for (auto _ : state) {
        std::size_t at = 0;
        std::uint32_t items = 0;
        step_over_all([&](std::string_view key, std::string_view value) {
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
