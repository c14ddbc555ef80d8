// SPDX-License-Identifier: Apache-2.0
// The lists of built plans, which static initialisers put together in any order.
#include "platform/local/codec/built_plans.h"

namespace parcel_plan {

namespace {

constinit const built_plans *first = nullptr;

}  // namespace

bool add_built_plans(built_plans *list) {
    list->next = first;
    first = list;
    return true;
}

const record_plan *find_built_plan(const parcel_descriptor *descriptor, const std::uint64_t *fingerprint) {
    for (const built_plans *list = first; list != nullptr; list = list->next) {
        for (const record_plan &each : list->plans) {
            if (is_plan_for(each, descriptor, fingerprint)) {
                return &each;
            }
        }
    }
    return nullptr;
}

}  // namespace parcel_plan
