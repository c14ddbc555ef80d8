// Sessions are gathered into their endpoints and interfaces, and compared by revision.
#include "perf-probed/state/change_tracker.h"

namespace probed {

void change_tracker::collect(const prober &sender, const moment &now, snapshot *out) {
    std::map<key, entity> entities;
    for (const auto &entry : sender.entries()) {
        if (entry == nullptr) {
            continue;
        }
        entity &of = entities[{entry->plan.of_interface(), entry->plan.name()}];
        const session_entry **const slot = entry->plan.kind == session_kind::delay      ? &of.delay
                                           : entry->plan.kind == session_kind::liveness ? &of.liveness
                                                                                        : &of.probe;
        if (*slot == nullptr || (*slot)->removed_at) {  // a session that took a removed one's place goes before it
            *slot = entry.get();
        }
    }
    for (auto &[name, each] : known_) {
        each.seen = false;
    }
    for (const auto &[name, of] : entities) {
        published &before = known_[name];
        before.seen = true;
        std::vector<std::uint32_t> sessions;
        for (const session_entry *const each : {of.delay, of.liveness, of.probe}) {
            if (each != nullptr) {
                sessions.push_back(each->id());
            }
        }
        if (sessions != before.sessions) {
            add_removals(name.first, name.second, before.sessions, out);
            before = {0, 0, sessions, true};
        }
        if (const std::uint64_t revision = of.revision(); revision != before.revision) {
            before.revision = revision;
            add_state_items(of, sender.host(), now, out);
        }
        if (const std::uint64_t revision = of.history_revision(); revision != before.history_revision) {
            before.history_revision = revision;
            add_history_items(of, out);
        }
    }
    for (auto each = known_.begin(); each != known_.end();) {
        if (!each->second.seen) {
            add_removals(each->first.first, each->first.second, each->second.sessions, out);
            each = known_.erase(each);
        } else {
            ++each;
        }
    }
}

}  // namespace probed
