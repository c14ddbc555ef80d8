// SPDX-License-Identifier: Apache-2.0
// Reads the pages of a store's table one by one, without LMDB, which ends at the first that is damaged.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/local/lmdb_store/data_file.h"

namespace lmdb_store {

class page_walk {
public:
    // Called with each record's key and its value as it is kept, link included; and with what is wrong, in words.
    using record_visit = std::function<void(std::string_view key, std::string_view kept)>;
    using loss_visit = std::function<void(const std::string &what)>;

    // The file belongs to the caller. It must not change meanwhile.
    page_walk(int file, const table_root &root) : file_(file), root_(root), seen_(root.pages) {}

    // Reads every page that the tree reaches, in the order of the keys.
    void run(const record_visit &record, const loss_visit &loss);

private:
    static constexpr int MAX_DEPTH = 32;

    void walk(std::uint64_t number, int depth);
    void walk_branch(std::uint64_t number, const std::string &page, int depth);
    void walk_leaf(std::uint64_t number, const std::string &page);
    [[nodiscard]] bool take_page(std::uint64_t number, std::uint16_t kinds, std::string *page);
    [[nodiscard]] bool read_large_value(std::uint64_t number, std::size_t size, std::string *value);
    void lose(std::uint64_t number, const char *what);

    int file_;
    const table_root &root_;
    std::vector<bool> seen_;
    const record_visit *record_ = nullptr;
    const loss_visit *loss_ = nullptr;
};

}  // namespace lmdb_store
