// SPDX-License-Identifier: Apache-2.0
#include "perf-measure/exporter/accepted_form.h"

#include <gtest/gtest.h>

namespace {

using exporter::wants_openmetrics;

TEST(AcceptedForm, IsOpenmetricsForWhoNamesIt) {
    EXPECT_TRUE(wants_openmetrics("application/openmetrics-text"));
    EXPECT_TRUE(wants_openmetrics("APPLICATION/OpenMetrics-Text; version=1.0.0"));
    // What Prometheus sends.
    EXPECT_TRUE(
        wants_openmetrics("application/openmetrics-text;version=1.0.0,application/openmetrics-text;version=0.0.1;"
                          "q=0.75,text/plain;version=0.0.4;q=0.5,*/*;q=0.1"));
    EXPECT_TRUE(wants_openmetrics("text/plain;q=0.5 , application/openmetrics-text;q=0.5"));
}

TEST(AcceptedForm, IsPlainForOthers) {
    EXPECT_FALSE(wants_openmetrics(""));
    EXPECT_FALSE(wants_openmetrics("*/*"));
    EXPECT_FALSE(wants_openmetrics("text/html,application/xhtml+xml,application/xml;q=0.9,*/*;q=0.8"));
    EXPECT_FALSE(wants_openmetrics("application/openmetrics-text;q=0"));
    EXPECT_FALSE(wants_openmetrics("application/openmetrics-text;q=0.5,text/plain"));
    EXPECT_FALSE(wants_openmetrics("application/openmetrics-textual"));
    EXPECT_FALSE(wants_openmetrics(",;,;q=,application/openmetrics-text;q=x"));
}

}  // namespace
