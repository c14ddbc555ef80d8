// SPDX-License-Identifier: Apache-2.0
// Answers out of one read transaction each.
#include "platform/local/lmdb_store/lmdb_reader.h"

#include "platform/local/lmdb_store/environment.h"
#include "platform/local/store/lease.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"
#include "platform/local/store/record_key.h"
#include "platform/local/store/seal.h"
#include "platform/parcel.h"

namespace lmdb_store {

namespace {

using store::branch;
using store::key_space;
using store::known_state;
using store::summed_key;

constexpr std::size_t INTERFACES_AT_ONCE = 1000;

// The first text after `text` in byte order.
std::string just_after(std::string text) {
    text.push_back('\0');
    return text;
}

// Copies without owning anything meanwhile: the bytes come from the map.
void copy(std::string_view from, std::string *to) {
    to->resize(from.size());
    from.copy(to->data(), from.size());
}

errcode read_publisher(const table_state &state, std::string_view key, known_state *known) {
    std::string_view parcel;
    local_publisher record{};
    known->reset();
    errcode code = state.get_parcel(key, &parcel);
    if (code == ERRCODE_NOT_FOUND) {
        return ERRCODE_SUCCESS;
    }
    if (code == ERRCODE_SUCCESS) {
        code = parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), &record,
                             local_publisher_descriptor());
    }
    if (code != ERRCODE_SUCCESS) {
        return code;
    }
    *known = store::seen_state(record, {});
    parcel_free_indirections(&record, local_publisher_descriptor());
    return ERRCODE_SUCCESS;
}

// A selection applied to the items of one branch. Holds what it needs before the store is touched.
class chooser {
public:
    chooser(const branch &from, const store::selection &which, known_state *known)
        : which_(which),
          known_(known),
          publisher_key_(branch_key(key_space::publisher, from)),
          companion_key_(item_key(from, which.companion.companions)),
          companion_prefix_(companion_key_.size()) {
        companion_key_.reserve(companion_prefix_ + store::MAX_PATH_LENGTH);
    }

    // Reads the publisher's state, if it is asked for.
    [[nodiscard]] errcode begin(const table_state &state) {
        return known_ != nullptr ? read_publisher(state, publisher_key_, known_) : ERRCODE_SUCCESS;
    }
    // Whether the state that begin() has read leaves anything to be answered.
    [[nodiscard]] bool wants_items() const {
        return !which_.only_running || *known_ == store::publisher_state::running;
    }
    [[nodiscard]] errcode match(const table_state &state, std::string_view path, std::string_view parcel,
                                bool *matches) {
        *matches = true;
        if (which_.predicate == nullptr) {
            return ERRCODE_SUCCESS;
        }
        std::string_view other;
        const errcode code = companion(state, path, &other);
        return code == ERRCODE_SUCCESS ? which_.predicate->match(path, parcel, other, matches) : code;
    }

private:
    // An item without a companion has an empty one.
    [[nodiscard]] errcode companion(const table_state &state, std::string_view path, std::string_view *parcel) {
        const store::companion_paths &paths = which_.companion;
        if (paths.companions.empty() || !path.starts_with(paths.items)) {
            return ERRCODE_SUCCESS;
        }
        companion_key_.resize(companion_prefix_);
        companion_key_ += path.substr(paths.items.size());
        const errcode code = state.get_parcel(companion_key_, parcel);
        return code == ERRCODE_NOT_FOUND ? ERRCODE_SUCCESS : code;
    }

    const store::selection &which_;
    known_state *known_;
    std::string publisher_key_;
    std::string companion_key_;
    std::size_t companion_prefix_;
};

class lmdb_reader final : public store::reader {
public:
    [[nodiscard]] pm_error open(const std::string &folder) { return environment_.open(folder); }

    [[nodiscard]] pm_error list(const branch &from, const store::list_query &asked, known_state *state,
                                store::batch *out) override;
    [[nodiscard]] pm_error get(const branch &from, std::string_view path, const store::selection &which,
                               known_state *state, std::string *parcel) override;
    [[nodiscard]] pm_error platform(std::string *parcel) override;
    [[nodiscard]] pm_error nodes(std::vector<std::string> *parcels) override;
    [[nodiscard]] pm_error interface(std::uint32_t handle, std::string *parcel) override;
    [[nodiscard]] pm_error schema(std::uint64_t fingerprint, std::string *text) override;
    [[nodiscard]] pm_error branches(std::vector<branch> *out) override;
    [[nodiscard]] pm_error publishers(std::vector<store::publisher_entry> *out) override;
    [[nodiscard]] pm_error interfaces(std::uint64_t from, std::vector<store::interface_entry> *out) override;
    [[nodiscard]] pm_error count(store::census *out) override;

private:
    [[nodiscard]] pm_error get_parcel(const std::string &key, std::string *parcel);

    environment environment_;
};

pm_error lmdb_reader::list(const branch &from, const store::list_query &asked, known_state *state, store::batch *out) {
    const std::size_t path_at = branch_key(key_space::item, from).size();
    const std::string prefix = item_key(from, asked.prefix);
    const std::string first = asked.after.empty() ? prefix : just_after(item_key(from, asked.after));
    chooser wanted(from, asked.which, state);
    return environment_.read([&](const table_state &table) {
        out->clear(asked.max_items);
        errcode refused = wanted.begin(table);
        if (refused != ERRCODE_SUCCESS || !wanted.wants_items()) {
            return refused;
        }
        const auto visit = [&](const summed_key &key, std::string_view value) {
            const std::string_view path = key.text.substr(path_at);
            const std::string_view parcel = store::unseal(key, value);
            bool matches = false;
            refused = wanted.match(table, path, parcel, &matches);
            return refused == ERRCODE_SUCCESS && (!matches || out->add_place(path, parcel));
        };
        const errcode code = table.scan(prefix, first, visit, [out] { out->copy_last(); });
        out->copy_last();
        return code != ERRCODE_SUCCESS ? code : refused;
    });
}

pm_error lmdb_reader::get(const branch &from, std::string_view path, const store::selection &which, known_state *state,
                          std::string *parcel) {
    const std::string key = item_key(from, path);
    chooser wanted(from, which, state);
    return environment_.read([&](const table_state &table) {
        parcel->clear();
        std::string_view found;
        errcode code = wanted.begin(table);
        if (code != ERRCODE_SUCCESS || !wanted.wants_items()) {
            return code;
        }
        bool matches = false;
        code = table.get_parcel(key, &found);
        code = code == ERRCODE_SUCCESS ? wanted.match(table, path, found, &matches) : code;
        if (code == ERRCODE_SUCCESS && matches) {
            copy(found, parcel);
        }
        return code == ERRCODE_SUCCESS && !matches ? ERRCODE_NOT_FOUND : code;
    });
}

pm_error lmdb_reader::get_parcel(const std::string &key, std::string *parcel) {
    return environment_.read([&](const table_state &table) {
        std::string_view found;
        const errcode code = table.get_parcel(key, &found);
        copy(found, parcel);
        return code;
    });
}

pm_error lmdb_reader::platform(std::string *parcel) { return get_parcel(store::key(key_space::platform), parcel); }

pm_error lmdb_reader::interface(std::uint32_t handle, std::string *parcel) {
    return get_parcel(store::key(key_space::interface, handle), parcel);
}

pm_error lmdb_reader::nodes(std::vector<std::string> *parcels) {
    const std::string prefix = store::key(key_space::node);
    return environment_.read([&](const table_state &table) {
        parcels->clear();
        return table.scan(prefix, [&](const summed_key &key, std::string_view value) {
            copy(store::unseal(key, value), &parcels->emplace_back());
            return true;
        });
    });
}

pm_error lmdb_reader::schema(std::uint64_t fingerprint, std::string *text) {
    const std::string key = store::schema_key(fingerprint);
    return environment_.read([&](const table_state &table) {
        std::string_view found;
        const errcode code = table.get(key, &found);
        copy(found, text);
        return code;
    });
}

// Adds the branches of a root by a step to each node's first item.
errcode add_branches(const table_state &table, store::root data_root, std::vector<branch> *out) {
    const std::string prefix = root_key(key_space::item, data_root);
    std::string from = prefix;
    bool sound = true;
    bool found = true;
    while (found && sound) {
        found = false;
        const errcode code = table.scan(prefix, from, [&](std::string_view key, std::string_view) {
            std::string_view path;
            found = true;
            sound = parse_branch_key(key, &out->emplace_back(), &path);
            return false;
        });
        if (code != ERRCODE_SUCCESS) {
            return code;
        }
        if (!found || out->back().node == UINT32_MAX) {
            break;
        }
        from = branch_key(key_space::item, {data_root, out->back().node + 1});
    }
    return sound ? ERRCODE_SUCCESS : OPSTORE_DAMAGED;
}

pm_error lmdb_reader::branches(std::vector<branch> *out) {
    return environment_.read([&](const table_state &table) {
        out->clear();
        errcode code = ERRCODE_SUCCESS;
        for (const store::root_name &root : store::ROOTS) {
            code = code == ERRCODE_SUCCESS ? add_branches(table, root.id, out) : code;
        }
        return code;
    });
}

pm_error lmdb_reader::publishers(std::vector<store::publisher_entry> *out) {
    return environment_.read([&](const table_state &table) {
        out->clear();
        errcode code = ERRCODE_SUCCESS;
        bool sound = true;
        for (const store::root_name &root : store::ROOTS) {
            if (code != ERRCODE_SUCCESS || !sound) {
                break;
            }
            code =
                table.scan(root_key(key_space::publisher, root.id), [&](const summed_key &key, std::string_view value) {
                    std::string_view path;
                    store::publisher_entry &entry = out->emplace_back();
                    sound = parse_branch_key(key, &entry.served, &path) && path.empty();
                    copy(store::unseal(key, value), &entry.parcel);
                    return sound;
                });
        }
        return sound ? code : OPSTORE_DAMAGED;
    });
}

pm_error lmdb_reader::interfaces(std::uint64_t from, std::vector<store::interface_entry> *out) {
    out->clear();
    if (from > UINT32_MAX) {
        return {};
    }
    const std::string prefix = store::key(key_space::interface);
    const std::string first = store::key(key_space::interface, static_cast<std::uint32_t>(from));
    return environment_.read([&](const table_state &table) {
        out->clear();
        bool sound = true;
        const errcode code = table.scan(prefix, first, [&](const summed_key &key, std::string_view value) {
            store::interface_entry &entry = out->emplace_back();
            sound = store::parse_number_key(key, &entry.handle);
            copy(store::unseal(key, value), &entry.parcel);
            return sound && out->size() < INTERFACES_AT_ONCE;
        });
        return sound ? code : OPSTORE_DAMAGED;
    });
}

pm_error lmdb_reader::count(store::census *out) {
    const std::string schemas = store::key(key_space::schema);
    return environment_.read([&](const table_state &table) {
        std::uint64_t others = 2;  // the format's record, and the end
        const errcode code = table.scan(schemas, [&](std::string_view, std::string_view) {
            ++others;
            return true;
        });
        *out = {table.entries() - others, table.transaction()};
        return code;
    });
}

}  // namespace

pm_error open_reader(const std::string &folder, std::unique_ptr<store::reader> *out) {
    auto opened = std::make_unique<lmdb_reader>();
    if (pm_error error = opened->open(folder)) {
        return error.code() == OPSTORE_NO_CLIENT ? pm_error(error.code(), check_access(folder).denial.text()) : error;
    }
    *out = std::move(opened);
    return {};
}

}  // namespace lmdb_store
