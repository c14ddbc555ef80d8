// SPDX-License-Identifier: Apache-2.0
// Sessions are grouped into their endpoints and interfaces once, and compared by revision each time.
#include "perf-probed/state/change_tracker.h"

namespace probed {

void change_tracker::forget() {
    known_.clear();
    next_ = known_.end();
    table_revision_ = 0;
}

// The sessions of the table may be other ones than before: those that are gone must not be looked at.
void change_tracker::regroup(const prober &sender, snapshot *out) {
    std::map<key, tracked> before = std::move(known_);
    known_.clear();
    for (const auto &entry : sender.entries()) {
        if (entry == nullptr) {
            continue;
        }
        entity &of = known_[{entry->plan.of_interface(), entry->plan.name()}].of;
        const session_entry *&slot = entry->plan.kind == session_kind::delay      ? of.delay
                                     : entry->plan.kind == session_kind::liveness ? of.liveness
                                     : entry->plan.kind == session_kind::loss     ? of.loss
                                                                                  : of.probe;
        if (slot == nullptr || slot->removed_at) {  // a session that took a removed one's place goes before it
            slot = entry.get();
        }
    }
    for (auto &[name, each] : known_) {
        for (const session_entry *const entry : each.of.all()) {
            if (entry != nullptr) {
                each.sessions.push_back(entry->id());
            }
        }
        const auto old = before.find(name);
        if (old == before.end()) {
            continue;
        }
        if (old->second.sessions == each.sessions) {
            each.revision = old->second.revision;
            each.history_revision = old->second.history_revision;
        } else {
            add_removals(name.first, name.second, old->second.sessions, out);
        }
        before.erase(old);
    }
    for (const auto &[name, gone] : before) {
        add_removals(name.first, name.second, gone.sessions, out);
    }
    table_revision_ = sender.table_revision();
    next_ = known_.begin();
}

bool change_tracker::collect(const prober &sender, const moment &now, snapshot *out) {
    if (table_revision_ != sender.table_revision()) {
        regroup(sender, out);
    } else if (next_ == known_.end()) {
        next_ = known_.begin();
    }
    for (std::size_t count = 0; count < PART && next_ != known_.end(); ++count, ++next_) {
        tracked &each = next_->second;
        if (const std::uint64_t revision = each.of.revision(); revision != each.revision) {
            each.revision = revision;
            add_state_items(each.of, sender.host(), now, out);
        }
        if (const std::uint64_t revision = each.of.history_revision(); revision != each.history_revision) {
            each.history_revision = revision;
            add_history_items(each.of, out);
        }
    }
    return next_ == known_.end();
}

}  // namespace probed
