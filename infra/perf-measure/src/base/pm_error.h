// SPDX-License-Identifier: Apache-2.0
// The error type inside the program. At the platform's own boundary an errcode takes its place.
//
//     if (pm_error error = store.commit()) {
//         return error;
//     }
#pragma once

#include <cstdint>
#include <string>
#include <utility>

// Success, or what failed: a code for those who decide by it and a text for a person, complete and without
// a newline. Either may be all that there is.
class [[nodiscard]] pm_error {
public:
    static constexpr std::uint32_t NO_CODE = 0xFFFFFFFF;  // a failure that no code names

    pm_error() = default;  // success
    explicit pm_error(std::string text) : code_(NO_CODE), text_(std::move(text)) {}
    // Success when `code` is 0.
    explicit pm_error(std::uint32_t code) : code_(code) {}
    pm_error(std::uint32_t code, std::string text) : code_(code), text_(std::move(text)) {}

    // Whether something failed.
    explicit operator bool() const { return code_ != 0; }

    [[nodiscard]] std::uint32_t code() const { return code_; }  // 0: success
    [[nodiscard]] const std::string &text() const { return text_; }

private:
    std::uint32_t code_ = 0;
    std::string text_;
};
