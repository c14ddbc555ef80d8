// SPDX-License-Identifier: Apache-2.0
// Names by scanning paths, and beginnings of names by stepping over them.
#include "perf-measure/completion/stored_names.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <string>

#include "perf-measure/items/nodes.h"
#include "platform/local/back_ends/readers.h"
#include "platform/opstore.h"

namespace perf_measure {

namespace {

constexpr std::string_view PROFILES = "name-profile/";
constexpr errcode ENOUGH = ERRCODE_RANGE;    // ends a scan
constexpr std::size_t LONGEST_COMMON = 200;  // bytes of a beginning that are looked for
constexpr char LAST_BYTE = '\xFF';           // after every character of a name

// Takes the names of items as they are passed, and wants none of them: nothing is copied but names.
class name_collector final : public store::item_predicate {
public:
    name_collector(std::size_t prefix, std::size_t most, std::vector<std::string> *names)
        : prefix_(prefix), most_(most), names_(names) {}

    [[nodiscard]] errcode match(std::string_view path, std::string_view /*parcel*/, std::string_view /*companion*/,
                                bool *matches) const override {
        if (names_->size() == most_) {
            return ENOUGH;
        }
        names_->emplace_back(path.substr(prefix_));
        *matches = false;
        return ERRCODE_SUCCESS;
    }

private:
    std::size_t prefix_;
    std::size_t most_;
    std::vector<std::string> *names_;
};

// The names of one branch.
class name_scan {
public:
    name_scan(store::reader *reader, const store::branch &from, std::string_view prefix)
        : reader_(reader), from_(from), prefix_(prefix) {}

    // Adds all names that begin with `beginning`; false when there are more than MOST_NAMES.
    [[nodiscard]] bool add_all(std::string_view beginning, std::vector<candidate> *out) {
        std::vector<std::string> names;
        const name_collector collect(prefix_.size(), MOST_NAMES, &names);
        const std::string prefix = prefix_ + std::string(beginning);
        store::list_query query;
        query.prefix = prefix;
        query.which.predicate = &collect;
        store::batch none;
        if (reader_->list(from_, query, nullptr, &none).code() == ENOUGH) {
            return false;
        }
        for (std::string &name : names) {
            out->push_back({std::move(name), ""});
        }
        return true;
    }

    // Adds what they begin with.
    void add_beginnings(std::string beginning, std::vector<candidate> *out) {
        std::vector<std::string> longer = beginnings_after(beginning);
        while (longer.size() == 1 && longer.front().size() > beginning.size() && beginning.size() < LONGEST_COMMON) {
            beginning = longer.front();
            longer = beginnings_after(beginning);
        }
        for (std::string &each : longer) {
            out->push_back({std::move(each), "", false});
        }
    }

private:
    // `beginning` with each character that follows it in a name; itself when that is a name.
    [[nodiscard]] std::vector<std::string> beginnings_after(const std::string &beginning) {
        std::vector<std::string> found;
        const std::string prefix = prefix_ + beginning;
        std::string after;
        for (std::string name; next_name(prefix, after, &name);) {
            found.push_back(name.substr(0, std::min(name.size(), beginning.size() + 1)));
            after = prefix_ + found.back();
            if (name.size() > beginning.size()) {
                after += LAST_BYTE;
            }
        }
        return found;
    }

    [[nodiscard]] bool next_name(std::string_view prefix, std::string_view after, std::string *name) {
        std::vector<std::string> names;
        const name_collector collect(prefix_.size(), 1, &names);
        store::list_query query;
        query.prefix = prefix;
        query.after = after;
        query.which.predicate = &collect;
        store::batch none;
        static_cast<void>(reader_->list(from_, query, nullptr, &none));
        if (names.empty()) {
            return false;
        }
        *name = std::move(names.front());
        return true;
    }

    store::reader *reader_;
    store::branch from_;
    std::string prefix_;
};

// The name of a profile "0x0/0x2/gold", which is encoded.
std::string profile_name(std::string_view path) {
    char *decoded = nullptr;
    std::size_t length = 0;
    const std::string encoded(path.substr(path.rfind('/') + 1));
    const errcode code = opstore_string_decode(encoded.c_str(), &decoded, &length);
    std::string name = code == ERRCODE_SUCCESS && decoded != nullptr ? decoded : "";
    std::free(decoded);
    return name;
}

std::vector<candidate> item_names(const name_source &items, std::string_view beginning) {
    std::vector<candidate> names;
    store::reader *reader = nullptr;
    std::vector<store::branch> branches;
    if (store::shared_reader(&reader) || reader->branches(&branches)) {
        return names;
    }
    const bool are_profiles = items.prefix == PROFILES;  // whose names come after their kind and transport
    for (const store::branch &each : branches) {
        const auto root = std::ranges::find(store::ROOTS, each.data_root, &store::root_name::id);
        if (root == std::end(store::ROOTS) || std::string_view(root->word) != items.root) {
            continue;
        }
        name_scan scan(reader, each, items.prefix);
        if (!scan.add_all(are_profiles ? "" : beginning, &names) && !are_profiles) {
            scan.add_beginnings(std::string(beginning), &names);
        }
    }
    if (are_profiles) {
        for (candidate &each : names) {
            each.word = profile_name(each.word);
        }
        std::erase_if(names,
                      [&](const candidate &each) { return each.word.empty() || !each.word.starts_with(beginning); });
    }
    return names;
}

std::vector<candidate> node_names(std::string_view beginning) {
    std::vector<candidate> names;
    if (!opstore_client_present()) {
        return names;
    }
    for (named_node &each : inventory_nodes()) {
        if (each.name.starts_with(beginning)) {
            names.push_back({std::move(each.name), ""});
        }
    }
    return names;
}

}  // namespace

std::vector<candidate> stored_names(const name_source *items, std::string_view beginning) {
    std::vector<candidate> names;
    if (items == nullptr) {
        names = node_names(beginning);
    } else if (items->root != nullptr) {
        names = item_names(*items, beginning);
    }
    // Several branches may have the same names, and a state that a writer overtook is read twice.
    std::ranges::stable_sort(names, {}, &candidate::word);
    const auto same_word = [](const candidate &one, const candidate &next) { return one.word == next.word; };
    names.erase(std::unique(names.begin(), names.end(), same_word), names.end());
    return names;
}

}  // namespace perf_measure
