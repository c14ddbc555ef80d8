// SPDX-License-Identifier: Apache-2.0
// Writes lines of differences.
#include "perf-store/diff/differences.h"

namespace perf_store {

void differences::object(const char *what) {
    any_ = true;
    out_.buffer().append(object_).append(": ").append(what).append("\n");
}

void differences::begin_line(const member_path &member) {
    any_ = true;
    out_.buffer().append(object_).append(" ").append(member.text()).append(": ");
}

void differences::changed(const member_path &member, std::string_view from, std::string_view to,
                          std::string_view note) {
    begin_line(member);
    out_.buffer().append(from).append(" -> ").append(to);
    if (!note.empty()) {
        out_.buffer().append(", ").append(note);
    }
    out_.buffer().append("\n");
}

void differences::element(const member_path &member, const char *what, std::string_view value) {
    begin_line(member);
    out_.buffer().append(what).append(" ").append(value).append("\n");
}

}  // namespace perf_store
