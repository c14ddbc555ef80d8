// SPDX-License-Identifier: Apache-2.0
// The error type inside the program. At the platform's own boundary an errcode takes its place.
//
//     if (pm_error error = store.commit()) {
//         return error;
//     }
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

// Success, or what failed: a code for those who decide by it and a text for a person, complete and without
// a newline. Either may be all that there is.
//
// As large as a pointer, and nothing to build or destroy for success: a load returns one for each value that it reads.
class [[nodiscard]] pm_error {
public:
    static constexpr std::uint32_t NO_CODE = 0xFFFFFFFF;  // a failure that no code names

    pm_error() = default;  // success
    explicit pm_error(std::string text) : pm_error(NO_CODE, std::move(text)) {}
    // Success when `code` is 0.
    explicit pm_error(std::uint32_t code) : pm_error(code, std::string()) {}
    pm_error(std::uint32_t code, std::string text)
        : failure_(code != 0 ? new failure{code, std::move(text)} : nullptr) {}

    pm_error(pm_error &&) = default;
    pm_error &operator=(pm_error &&) = default;
    pm_error(const pm_error &other) { *this = other; }
    pm_error &operator=(const pm_error &other) {
        if (this != &other) {
            failure_.reset(other.failure_ ? new failure(*other.failure_) : nullptr);
        }
        return *this;
    }
    ~pm_error() = default;

    // Whether something failed.
    explicit operator bool() const { return failure_ != nullptr; }

    [[nodiscard]] std::uint32_t code() const { return failure_ ? failure_->code : 0; }  // 0: success
    [[nodiscard]] const std::string &text() const { return failure_ ? failure_->text : no_text(); }

private:
    struct failure {
        std::uint32_t code;
        std::string text;
    };
    static const std::string &no_text() {
        static const std::string empty;
        return empty;
    }

    std::unique_ptr<failure> failure_;
};
