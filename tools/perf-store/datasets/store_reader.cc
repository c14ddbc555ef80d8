// See store_reader.h.
#include "perf-store/datasets/store_reader.h"

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "perf-store/datasets/value_text.h"
#include "platform/local/lmdb_store/store_access.h"

namespace perf_store {

namespace {

constexpr std::size_t BATCH_BYTES = 1 << 20;

struct entry {
    std::size_t key_length;
    std::size_t value_length;
};

// Keys and values of one batch, one behind the other.
struct batch {
    std::vector<char> bytes;
    std::vector<entry> entries;
};

errcode read_batch(store::environment *store, std::string_view prefix, std::string_view after, batch *out) {
    return store->read([&](const store::view &state) {
        out->bytes.clear();
        out->entries.clear();
        return state.scan(prefix, after, [&](std::string_view key, std::string_view value) {
            if (out->bytes.size() >= BATCH_BYTES) {
                return false;
            }
            const std::size_t at = out->bytes.size();
            out->bytes.resize(at + key.size() + value.size());
            std::memcpy(out->bytes.data() + at, key.data(), key.size());
            std::memcpy(out->bytes.data() + at + key.size(), value.data(), value.size());
            out->entries.push_back({key.size(), value.size()});
            return true;
        });
    });
}

}  // namespace

std::string describe_store(errcode code) {
    const char *folder = store::folder_of(store::configured_url());
    const std::string denied =
        code == OPSTORE_NO_CLIENT && folder != nullptr ? store::check_access(folder).problem : "";
    return denied.empty() ? std::string(store::configured_url()) + ": " + errcode_strerror(code) : denied;
}

std::string for_each_key(std::string_view prefix,
                         const std::function<std::string(std::string_view, std::string_view)> &visit) {
    store::environment *store = nullptr;
    if (const errcode failure = store::environment::shared(&store); failure != ERRCODE_SUCCESS) {
        return describe_store(failure);
    }
    batch batch;
    std::string last;
    do {
        if (const errcode failure = read_batch(store, prefix, last, &batch); failure != ERRCODE_SUCCESS) {
            return describe_store(failure);
        }
        const char *at = batch.bytes.data();
        for (const entry &each : batch.entries) {
            const std::string_view key(at, each.key_length);
            if (key <= std::string_view(last)) {  // a damaged tree could go round in circles
                return describe_store(OPSTORE_DAMAGED);
            }
            last = key;
            const std::string_view value(at + each.key_length, each.value_length);
            if (std::string stop = visit(key, store::unseal(key, value)); !stop.empty()) {
                return stop;
            }
            at += each.key_length + each.value_length;
        }
    } while (!batch.entries.empty());
    return "";
}

std::uint32_t parse_number(std::string_view text) {
    std::uint32_t number = 0;
    for (const char byte : text.substr(0, sizeof number)) {
        number = number << 8 | static_cast<std::uint8_t>(byte);
    }
    return number;
}

std::string describe_item(const item_key &item) {
    char node[16];
    std::snprintf(node, sizeof node, " %#x ", item.node);
    return item.root.word + std::string(node) + on_one_line(excerpt(item.path, store::MAX_PATH_LENGTH));
}

item_key parse_item_key(std::string_view key) {
    constexpr std::size_t ROOT_AT = 1;
    constexpr std::size_t NODE_AT = 2;
    constexpr std::size_t PATH_AT = NODE_AT + sizeof(std::uint32_t);
    for (const store::root_name &each : store::ROOTS) {
        if (key.size() >= PATH_AT && key[ROOT_AT] == static_cast<char>(each.id)) {
            return {each, parse_number(key.substr(NODE_AT)), key.substr(PATH_AT)};
        }
    }
    throw std::runtime_error(describe_store(OPSTORE_DAMAGED));
}

}  // namespace perf_store
