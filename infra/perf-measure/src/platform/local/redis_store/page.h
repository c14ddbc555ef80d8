// SPDX-License-Identifier: Apache-2.0
// Pages: the items of a range of a branch, as the server's answer brings them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

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

    // Unsealed; a value that is not its path's is empty.
    [[nodiscard]] store::batch &items() { return items_; }
    // Whether it ended at its bytes.
    [[nodiscard]] bool was_large() const { return large_; }

private:
    std::string key_;  // of an item in the embedded store's form, which seals are of
    std::size_t path_at_ = 0;
    std::string prefix_;
    std::string after_;
    std::string last_;
    std::uint32_t limit_ = 0;
    std::uint32_t seen_ = 0;
    bool large_ = false;
    store::batch items_;
};

}  // namespace redis_store
