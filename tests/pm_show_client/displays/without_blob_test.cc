// SPDX-License-Identifier: Apache-2.0
// Displays of checkpoints without a record or a blob; tests/golden has the whole reports.
#include <gtest/gtest.h>

#include "pm_show_client/displays/pm_show_chkpt_dr.h"
#include "pm_show_client/displays/pm_show_chkpt_dr_session.h"
#include "pm_show_client/displays/pm_show_chkpt_scb.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"
#include "tests/support/captured.h"

namespace {

// What a display printed and returned.
struct shown {
    std::string text;
    int result;
};

shown show(pm_show_display display, const void *record) {
    int result = -1;
    std::string text = captured([&] { result = display(record); });
    return {std::move(text), result};
}

void expect_shown(pm_show_display display, const void *record, const std::string &text, int result) {
    const shown what = show(display, record);
    EXPECT_EQ(what.text, text);
    EXPECT_EQ(what.result, result);
}

TEST(Checkpoints, SayThatThereIsNoRecord) {
    expect_shown(pm_show_chkpt_scb, nullptr, "No session\n", PM_SHOW_NO_RECORD);
    expect_shown(pm_show_chkpt_dr, nullptr, "No session distribution record available\n", PM_SHOW_NO_RECORD);
    expect_shown(pm_show_chkpt_dr_session, nullptr, "No distributed session checkpoint record available\n",
                 PM_SHOW_NO_RECORD);
}

// Only the first of the three counts an item without a blob as printed.
template <class Parcel>
void expect_no_blob(pm_show_display display, const std::string &text, int result) {
    std::uint8_t byte = 0;
    Parcel parcel{};
    expect_shown(display, &parcel, text, result);
    parcel.buf = {0, &byte};
    expect_shown(display, &parcel, text, result);
    parcel.buf = {1, nullptr};
    expect_shown(display, &parcel, text, result);
}

TEST(Checkpoints, SayThatThereIsNoBlob) {
    expect_no_blob<pm_chkpt_scb_parcel>(pm_show_chkpt_scb, "No session\n", PM_SHOW_PRINTED);
    expect_no_blob<pm_chkpt_dr_info>(pm_show_chkpt_dr, "No session distribution record available\n", PM_SHOW_NO_RECORD);
    expect_no_blob<pm_chkpt_dr_db_sess_info>(pm_show_chkpt_dr_session,
                                             "No distributed session checkpoint record available\n", PM_SHOW_NO_RECORD);
}

}  // namespace
