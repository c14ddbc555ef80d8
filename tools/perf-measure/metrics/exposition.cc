// SPDX-License-Identifier: Apache-2.0
// The lines of each metric, all samples of one together.
#include "perf-measure/metrics/exposition.h"

#include <string>
#include <string_view>

namespace perf_measure {

namespace {

constexpr std::string_view type_name(metric_type type, exposition_form form) {
    switch (type) {
    case metric_type::counter: return "counter";
    case metric_type::stateset: return form == exposition_form::openmetrics ? "stateset" : "gauge";
    case metric_type::gauge: break;
    }
    return "gauge";
}

// The name of the samples, which in the older form is that of the metric too.
std::string sample_name(const metric &each) {
    return std::string(each.name) + (each.type == metric_type::counter ? "_total" : "");
}

void append_line(std::string_view what, std::string_view name, std::string_view text, std::string *out) {
    *out += "# ";
    *out += what;
    *out += ' ';
    *out += name;
    *out += ' ';
    *out += text;
    *out += '\n';
}

void append_description(const metric &each, exposition_form form, std::string *out) {
    const bool is_openmetrics = form == exposition_form::openmetrics;
    const std::string name = is_openmetrics ? each.name : sample_name(each);
    append_line("TYPE", name, type_name(each.type, form), out);
    if (is_openmetrics && *each.unit != '\0') {
        append_line("UNIT", name, each.unit, out);
    }
    append_line("HELP", name, each.help, out);
}

// A metric without a sample is left out, its description too.
pm_error write_metric(const metric &each, const sample_spool &samples, std::size_t slot, exposition_form form,
                      perf_store::output_file *out) {
    const std::string begin = sample_name(each) + '{';
    bool is_described = false;
    return samples.visit(slot, [&](std::string_view labels, std::string_view value) {
        std::string &buffer = out->buffer();
        if (!is_described) {
            append_description(each, form, &buffer);
            is_described = true;
        }
        buffer += begin;
        buffer += labels;
        buffer += "} ";
        buffer += value;
        buffer += '\n';
        return out->flush_when_full();
    });
}

}  // namespace

pm_error write_exposition(const metric_store &metrics, exposition_form form, perf_store::output_file *out) {
    for (std::size_t i = 0; i < METRIC_GROUPS; ++i) {
        const auto group = static_cast<metric_group>(i);
        std::size_t slot = 0;
        for (const metric &each : metrics_of(group)) {
            if (pm_error error = write_metric(each, metrics.of(group), slot++, form, out)) {
                return error;
            }
        }
    }
    if (form == exposition_form::openmetrics) {
        out->buffer() += "# EOF\n";
    }
    return out->flush();
}

}  // namespace perf_measure
