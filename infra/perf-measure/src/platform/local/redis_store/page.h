// SPDX-License-Identifier: Apache-2.0
// Pages: the items of a range of a branch, where the server's answer brought them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/local/redis_store/answer.h"
#include "platform/local/store/batch.h"
#include "platform/local/store/branch.h"

namespace redis_store {

inline constexpr std::uint32_t PAGE_ITEMS = 200;       // that are asked for at most; fewer and more cost more time
inline constexpr std::size_t PAGE_BYTES = 512 * 1024;  // a page that exceeds them ends early, and the next is halved

// The answer to a ZRANGE of members. Refuses members that do not ascend, lie outside of the range or are no items.
class page final : public answer {
public:
    // What comes next: items of a branch whose paths begin with `prefix` and come after `after`, at most `limit` and
    // one more, which tells that there are more.
    void expect(const store::branch &from, std::string_view prefix, std::string_view after, std::uint32_t limit);

    void begin() override;
    [[nodiscard]] bool array(std::size_t elements) override;
    [[nodiscard]] bool text(std::string_view member) override;
    [[nodiscard]] bool integer(std::int64_t) override { return false; }
    [[nodiscard]] bool nil() override { return false; }
    [[nodiscard]] bool status(std::string_view) override { return false; }
    [[nodiscard]] bool keeps_texts() const override { return !large_ && members_.size() < limit_; }
    void moved(const char *from, const char *to) override;
    void take(store::block *received) override;

    // Whether others follow, and the last path, known before the items are unsealed.
    [[nodiscard]] bool has_more() const { return seen_ > members_.size(); }
    [[nodiscard]] std::string_view last_path() const { return members_.back().path; }
    // Unsealed, at the first call; a value that is not its path's is empty.
    [[nodiscard]] store::batch &items();
    // Whether it ended at its bytes.
    [[nodiscard]] bool was_large() const { return large_; }

private:
    struct member {
        std::string_view path;
        std::string_view sealed;
    };

    std::string key_;  // of an item in the embedded store's form, which seals are of
    std::size_t path_at_ = 0;
    std::string prefix_;
    std::string after_;
    std::uint32_t limit_ = 0;

    std::vector<member> members_;
    std::size_t bytes_ = 0;
    std::size_t seen_ = 0;
    std::string last_dropped_;  // path, once members are dropped
    bool large_ = false;
    bool unsealed_ = false;
    store::batch items_;
};

}  // namespace redis_store
