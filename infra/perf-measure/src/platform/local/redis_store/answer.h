// SPDX-License-Identifier: Apache-2.0
// Replies as those who send commands take them: one that keeps whatever comes, for replies of bounded size.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/local/redis_store/reply.h"

namespace redis_store {

// The answer to one command. It can be asked for several times, each time from the beginning.
class answer : public reply_sink {
public:
    virtual void begin() { refusal_.clear(); }
    // What the server said in place of an answer, or within one; empty when nothing went wrong.
    [[nodiscard]] const std::string &refusal() const { return refusal_; }

    // Keeps the first refusal, without characters that a terminal would obey.
    [[nodiscard]] bool error(std::string_view words) override;

protected:
    ~answer() = default;

private:
    std::string refusal_;
};

// An answer as it came. The texts of an array within an array are elements like the others.
class plain_answer final : public answer {
public:
    // Refuses an array of more elements.
    explicit plain_answer(std::size_t max_elements = 1'000'000) : max_elements_(max_elements) {}

    void begin() override;
    [[nodiscard]] bool array(std::size_t elements) override;
    [[nodiscard]] bool text(std::string_view bytes) override;
    [[nodiscard]] bool integer(std::int64_t value) override;
    [[nodiscard]] bool nil() override;
    [[nodiscard]] bool status(std::string_view word) override { return text(word); }

    [[nodiscard]] bool is_array() const { return is_array_; }
    // Whether the answer is nothing: no such key, or a transaction that was not executed.
    [[nodiscard]] bool is_nil() const { return !is_array_ && elements_.size() == 1 && elements_[0].is_nil; }

    struct element {
        std::string text;  // or a number in decimal digits
        bool is_nil = false;
    };
    [[nodiscard]] const std::vector<element> &elements() const { return elements_; }
    // The only text; empty when there is none.
    [[nodiscard]] const std::string &text() const;
    // The only number; 0 when it is none.
    [[nodiscard]] std::uint64_t number() const;

private:
    [[nodiscard]] bool add(std::string_view bytes, bool is_nil);

    std::size_t max_elements_;
    bool is_array_ = false;
    std::vector<element> elements_;
};

}  // namespace redis_store
