// SPDX-License-Identifier: Apache-2.0
// Reads the input as answers to the commands of pages, in pieces and whole.
#include "fuzz/redis_reply_fuzz.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

#include "platform/local/redis_store/page.h"
#include "platform/local/redis_store/redirection.h"
#include "platform/local/redis_store/reply.h"

namespace {

constexpr std::size_t PIECES = 4;
constexpr std::uint32_t ITEMS_AT_ONCE = 5;
constexpr int PAGES = 4;
constexpr store::branch BRANCH{store::root::main, 0x100};  // of the sealed records in the corpus

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

class bytes_in_pieces final : public redis_store::byte_source {
public:
    bytes_in_pieces(std::span<const std::uint8_t> bytes, std::span<const std::uint8_t> pieces)
        : bytes_(bytes), pieces_(pieces) {}

    [[nodiscard]] pm_error receive(char *buffer, std::size_t size, std::size_t *length) override {
        if (bytes_.empty()) {
            return pm_error("the end");
        }
        const std::size_t piece = pieces_.empty() ? bytes_.size() : std::size_t{1} + pieces_[next_++ % pieces_.size()];
        *length = std::min({piece, size, bytes_.size()});
        require(*length > 0);
        std::memcpy(buffer, bytes_.data(), *length);
        bytes_ = bytes_.subspan(*length);
        return {};
    }

private:
    std::span<const std::uint8_t> bytes_;
    std::span<const std::uint8_t> pieces_;
    std::size_t next_ = 0;
};

// What a page promises: ascending paths, each with a zero byte after it, no more than were asked for.
void describe_page(redis_store::page *page, std::string *account) {
    const store::batch &items = page->items();
    require(items.items().size() <= ITEMS_AT_ONCE);
    require(items.more() == page->has_more());
    std::string_view last;
    for (const store::item &each : items.items()) {
        require(last.empty() || each.path > last);
        require(each.path.data()[each.path.size()] == '\0');
        last = each.path;
        account->append(each.path).append(1, '\0').append(each.parcel).append(1, '\n');
    }
    account->append(items.more() ? "more\n" : "all\n");
}

void describe_answer(const redis_store::plain_answer &answer, std::string *account) {
    for (const auto &each : answer.elements()) {
        account->append(each.is_nil ? "nil" : each.text).append(1, '\n');
    }
    const redis_store::redirection where = redis_store::parse_redirection(answer.refusal(), {});
    account->append(answer.refusal()).append(where.server.text()).append(1, '\n');
}

// Everything that was read, and what ended it.
std::string read_all(bytes_in_pieces *from) {
    redis_store::reply_stream replies;
    redis_store::page page;
    std::string account;
    for (int i = 0; i < PAGES; ++i) {
        redis_store::plain_answer publisher(1);
        publisher.begin();
        if (pm_error error = replies.next(from, &publisher)) {
            return account + error.text();
        }
        describe_answer(publisher, &account);
        page.expect(BRANCH, "", "", ITEMS_AT_ONCE);
        if (pm_error error = replies.next(from, &page)) {
            return account + error.text();
        }
        describe_page(&page, &account);
    }
    return account;
}

}  // namespace

void redis_reply_fuzz_one(const std::uint8_t *data, std::size_t size) {
    if (size < PIECES) {
        return;
    }
    const std::span<const std::uint8_t> all(data, size);
    bytes_in_pieces pieces(all.subspan(PIECES), all.first(PIECES));
    bytes_in_pieces whole(all.subspan(PIECES), {});
    require(read_all(&pieces) == read_all(&whole));
}
