// Where in a document an error stands: "item.record.CandidatePaths[2].Preference".
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "perf-store/datasets/value_text.h"

namespace perf_store {

// What is wrong with a document, and at which byte of it.
class input_error : public std::runtime_error {
public:
    input_error(const std::string &what, std::size_t offset) : std::runtime_error(what), offset_(offset) {}
    [[nodiscard]] std::size_t offset() const { return offset_; }

private:
    std::size_t offset_;
};

// The members that are being read, outermost first.
class member_path {
public:
    void enter(std::string_view name) { steps_.push_back({name, 0, false}); }
    void enter(std::uint32_t index) { steps_.push_back({{}, index, true}); }
    void leave() { steps_.pop_back(); }
    void clear() { steps_.clear(); }

    // Throws an input_error that names the path, on one line whatever the names hold.
    [[noreturn]] void fail(const std::string &what, std::size_t offset) const {
        throw input_error(on_one_line(text() + what), offset);
    }

private:
    struct step {
        std::string_view name;
        std::uint32_t index;
        bool is_element;  // of an array
    };

    // Of a path deeper than any that is meant, the middle is left out.
    [[nodiscard]] std::string text() const {
        constexpr std::size_t SHOWN_AT_EACH_END = 16;
        std::string result;
        for (std::size_t i = 0; i < steps_.size(); ++i) {
            if (i == SHOWN_AT_EACH_END && steps_.size() > 2 * SHOWN_AT_EACH_END) {
                i = steps_.size() - SHOWN_AT_EACH_END;
                result += "...";
            }
            if (steps_[i].is_element) {
                result += "[" + std::to_string(steps_[i].index) + "]";
            } else {
                result += (result.empty() ? "" : ".") + excerpt(steps_[i].name);
            }
        }
        return result.empty() ? result : result + ": ";
    }

    std::vector<step> steps_;
};

}  // namespace perf_store
