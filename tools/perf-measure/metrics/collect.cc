// SPDX-License-Identifier: Apache-2.0
// The places that each command of metrics reads.
#include "perf-measure/metrics/collect.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "front/walker.h"
#include "perf-measure/items/item_reader.h"
#include "perf-measure/items/nodes.h"
#include "perf-measure/json/record_cuts.h"
#include "perf-measure/metrics/item_samples.h"
#include "perf-measure/metrics/series_labels.h"
#include "platform/inventory.h"
#include "platform/opstore.h"
#include "pm_show_client/pm_show_options.h"
#include "schema/pm_descriptors.h"

namespace perf_measure {

namespace {

using path_grammar::place;

template <class Record>
void add_as(const void *record, const std::string &labels, metric_store *metrics) {
    add_item(*static_cast<const Record *>(record), labels, metrics);
}

// What is read of one family: its details, by the options of their show, and its counters in a place of their own.
struct family_reading {
    std::uint32_t command;  // of perf-show
    std::string_view family;
    place detail;
    void (*add_detail)(const void *record, const std::string &labels, metric_store *metrics);
    place counters;  // the same as `detail` where the details have the counters
    const parcel_descriptor *(*counters_type)() = nullptr;
    std::uint32_t counters_size = 0;
    void (*add_counters)(const void *record, const std::string &labels, metric_store *metrics) = nullptr;
};
constexpr family_reading FAMILIES[] = {
    {1, INTERFACES, place::intf_detail, add_as<pm_intf_parcel>, place::intf_detail},
    {17, SR_POLICIES, place::srpolicy_detail, add_as<pm_srpolicy_parcel>, place::srpolicy_counters,
     pm_srpolicy_counters_parcel_descriptor, sizeof(pm_srpolicy_counters_parcel), add_as<pm_srpolicy_counters_parcel>},
    {15, TUNNELS, place::rsvpte_detail, add_as<pm_rsvpte_parcel>, place::rsvpte_counters,
     pm_rsvpte_counters_parcel_descriptor, sizeof(pm_rsvpte_counters_parcel), add_as<pm_rsvpte_counters_parcel>},
    {26, ENDPOINTS, place::endpoint_detail, add_as<pm_endpoint_common>, place::endpoint_counters,
     pm_endpoint_counters_parcel_descriptor, sizeof(pm_endpoint_counters_parcel), add_as<pm_endpoint_counters_parcel>},
};

// The publishers of a node, each with the item by which its state is found out.
struct publisher {
    const char *name;
    std::uint32_t command;
    void (*add)(const void *record, const std::string &labels, metric_store *metrics);  // null: not made into metrics
};
constexpr publisher PUBLISHERS[] = {
    {"main", 9, add_as<pm_summary_parcel>},
    {"responder", 10, add_as<pm_resp_summary_parcel>},
    {"receiver", 11, nullptr},
};

struct state_name {
    errcode code;
    const char *name;
};
constexpr state_name STATES[] = {
    {ERRCODE_SUCCESS, "running"},
    {OPSTORE_STOPPED, "stopped"},
    {OPSTORE_UNREACHABLE, "unreachable"},
    {OPSTORE_STARTING, "starting"},
    {OPSTORE_NOT_PUBLISHED, "not_published"},
};

bool is_state(errcode code) { return std::ranges::find(STATES, code, &state_name::code) != std::end(STATES); }

class collector {
public:
    explicit collector(metric_store *metrics) : metrics_(metrics) {}
    ~collector() { pm_show_options = asked_; }
    collector(const collector &) = delete;
    collector &operator=(const collector &) = delete;

    pm_error collect() {
        std::vector<std::uint32_t> nodes;
        if (!pm_show_visit_nodes([&](std::uint32_t node) { nodes.push_back(node); })) {
            return pm_error("the inventory of nodes cannot be read");
        }
        for (const std::uint32_t node : nodes) {
            if (pm_error error = collect_node(node)) {
                return error;
            }
        }
        if (asked_.name != nullptr && !found_) {
            return pm_error(errcode_strerror(ERRCODE_NOT_FOUND));
        }
        if (asked_.node_id == PM_SHOW_ALL_NODES) {
            add_nodes_down(nodes);
        }
        return metrics_->error();
    }

private:
    // Without a command everything is wanted.
    [[nodiscard]] bool is_wanted(std::uint32_t command) const {
        return asked_.command_type == 0 || asked_.command_type == command;
    }

    pm_error collect_node(std::uint32_t node) {
        metrics_->begin_item();
        node_name_ = name_of_node(node);
        labels_ = node_labels(node_name_);
        errcode service = ERRCODE_SUCCESS;
        for (const publisher &each : PUBLISHERS) {
            errcode state = ERRCODE_SUCCESS;
            if (pm_error error = collect_publisher(each, node, &state)) {
                return error;
            }
            service = &each == std::begin(PUBLISHERS) ? state : service;
        }
        for (const family_reading &each : FAMILIES) {
            if (service == ERRCODE_SUCCESS && is_wanted(each.command)) {
                if (pm_error error = collect_family(each, node, &service)) {
                    return error;
                }
            }
        }
        if (service != OPSTORE_NOT_PUBLISHED) {
            metrics_->add(metric_group::node, labels_, metric_value::of_flag(service == ERRCODE_SUCCESS));
        }
        return metrics_->error();
    }

    // The state that a reading came to: that of the publisher, or a failure of the store, which is the result.
    pm_error outcome(const std::vector<node_failure> &failures, std::uint32_t node, errcode *state) const {
        for (const node_failure &each : failures) {
            if (is_state(each.code)) {
                *state = each.code;
            } else if (each.code != ERRCODE_NOT_FOUND) {
                return pm_error(each.code, describe({node, each.code, each.text}));
            }
        }
        return metrics_->error();
    }

    pm_error collect_publisher(const publisher &each, std::uint32_t node, errcode *state) {
        pm_show_options = {};
        pm_show_options.command_type = each.command;
        pm_show_options.node_id = node;
        const bool adds = each.add != nullptr && is_wanted(PUBLISHERS[0].command);
        std::vector<node_failure> failures;
        read_items(
            [&](const item &read) {
                if (adds) {
                    each.add(read.record, labels_, metrics_);
                }
                return true;
            },
            &failures);
        if (pm_error error = outcome(failures, node, state)) {
            return error;
        }
        for (const state_name &possible : STATES) {
            std::string labels = labels_;
            append_label("publisher", each.name, &labels);
            append_label("perf_publisher_state", possible.name, &labels);
            metrics_->add(metric_group::publisher, labels, metric_value::of_flag(possible.code == *state));
        }
        return {};
    }

    pm_error collect_family(const family_reading &family, std::uint32_t node, errcode *state) {
        pm_show_options = asked_;
        pm_show_options.command_type = family.command;
        pm_show_options.node_id = node;
        std::vector<node_failure> failures;
        read_items(visit_of(family.family, family.detail, family.add_detail), &failures);
        if (pm_error error = outcome(failures, node, state); error || *state != ERRCODE_SUCCESS) {
            return error;
        }
        if (family.add_counters == nullptr) {
            return {};
        }
        failures.clear();
        read_companions({family.detail, family.counters, family.counters_type(), family.counters_size},
                        visit_of(family.family, family.counters, family.add_counters), &failures);
        return outcome(failures, node, state);
    }

    item_visit visit_of(std::string_view family, place at,
                        void (*add)(const void *record, const std::string &labels, metric_store *metrics)) {
        return [this, family, at, add](const item &read) {
            const record_cuts cuts(read);
            metrics_->begin_item();
            found_ = true;
            add(read.record, item_labels(node_name_, family, read.path.substr(path_of(at).size())), metrics_);
            return !metrics_->error();
        };
    }

    // The nodes of the inventory whose software is not up, which no show reads.
    void add_nodes_down(const std::vector<std::uint32_t> &read) {
        for (const named_node &each : inventory_nodes()) {
            if (!each.is_up && std::ranges::find(read, each.id) == read.end()) {
                metrics_->begin_item();
                metrics_->add(metric_group::node, node_labels(each.name), metric_value::of_flag(false));
            }
        }
    }

    const pm_show_options_record asked_ = pm_show_options;
    metric_store *metrics_;
    std::string node_name_;
    std::string labels_;  // of the node
    bool found_ = false;  // an item of a family
};

}  // namespace

pm_error collect_metrics(metric_store *metrics) { return collector(metrics).collect(); }

}  // namespace perf_measure
