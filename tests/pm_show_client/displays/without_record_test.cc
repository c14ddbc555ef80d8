// SPDX-License-Identifier: Apache-2.0
// Displays that are called without a record, as an empty listing does. The others say so themselves or abort.
#include <gtest/gtest.h>

#include "pm_show_client/displays/pm_show_allowed_queriers.h"
#include "pm_show_client/displays/pm_show_allowed_responders.h"
#include "pm_show_client/displays/pm_show_batch_counters.h"
#include "pm_show_client/displays/pm_show_endpoint.h"
#include "pm_show_client/displays/pm_show_endpoint_counters.h"
#include "pm_show_client/displays/pm_show_endpoint_history.h"
#include "pm_show_client/displays/pm_show_endpoint_live_history.h"
#include "pm_show_client/displays/pm_show_intf.h"
#include "pm_show_client/displays/pm_show_intf_counters.h"
#include "pm_show_client/displays/pm_show_intf_history.h"
#include "pm_show_client/displays/pm_show_name_profile.h"
#include "pm_show_client/displays/pm_show_proc_fsm.h"
#include "pm_show_client/displays/pm_show_profile.h"
#include "pm_show_client/displays/pm_show_resp_intf.h"
#include "pm_show_client/displays/pm_show_resp_intf_counters.h"
#include "pm_show_client/displays/pm_show_resp_summary.h"
#include "pm_show_client/displays/pm_show_rsvpte.h"
#include "pm_show_client/displays/pm_show_rsvpte_counters.h"
#include "pm_show_client/displays/pm_show_rsvpte_history.h"
#include "pm_show_client/displays/pm_show_rx_summary.h"
#include "pm_show_client/displays/pm_show_session.h"
#include "pm_show_client/displays/pm_show_srpolicy.h"
#include "pm_show_client/displays/pm_show_srpolicy_counters.h"
#include "pm_show_client/displays/pm_show_srpolicy_history.h"
#include "pm_show_client/displays/pm_show_summary.h"
#include "pm_show_client/pm_show_display.h"
#include "tests/support/captured.h"

namespace {

class WithoutARecord : public testing::TestWithParam<pm_show_display> {};

TEST_P(WithoutARecord, PrintsNothing) {
    int result = 0;
    EXPECT_EQ(captured([&] { result = GetParam()(nullptr); }), "");
    EXPECT_EQ(result, PM_SHOW_NO_RECORD);
}

INSTANTIATE_TEST_SUITE_P(Displays, WithoutARecord,
                         testing::Values(pm_show_allowed_queriers, pm_show_allowed_responders, pm_show_batch_counters,
                                         pm_show_endpoint, pm_show_endpoint_counters, pm_show_endpoint_history,
                                         pm_show_endpoint_live_history, pm_show_intf, pm_show_intf_counters,
                                         pm_show_intf_history, pm_show_name_profile, pm_show_proc_fsm, pm_show_profile,
                                         pm_show_resp_intf, pm_show_resp_intf_counters, pm_show_resp_summary,
                                         pm_show_rsvpte, pm_show_rsvpte_counters, pm_show_rsvpte_history,
                                         pm_show_rx_summary, pm_show_session, pm_show_srpolicy,
                                         pm_show_srpolicy_counters, pm_show_srpolicy_history, pm_show_summary));

}  // namespace
