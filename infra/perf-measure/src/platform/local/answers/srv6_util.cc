// SPDX-License-Identifier: Apache-2.0
// Names of SRv6 SID formats and endpoint behaviours. See platform/srv6_util.h.
#include "platform/srv6_util.h"

#include <iterator>

namespace {

constexpr char UNKNOWN[] = "unknown";

constexpr const char *SID_FORMATS[] = {"base", "f3216", "f3232"};

// RFC 8986, table 6; null where no behaviour has the code.
constexpr const char *BEHAVIOURS[] = {
    nullptr,
    "End",
    "End with PSP",
    "End with USP",
    "End with PSP & USP",
    "End.X",
    "End.X with PSP",
    "End.X with USP",
    "End.X with PSP & USP",
    "End.T",
    "End.T with PSP",
    "End.T with USP",
    "End.T with PSP & USP",
    nullptr,
    "End.B6.Encaps",
    "End.BM",
    "End.DX6",
    "End.DX4",
    "End.DT6",
    "End.DT4",
    "End.DT46",
    "End.DX2",
    "End.DX2V",
    "End.DT2U",
    "End.DT2M",
    nullptr,
    nullptr,
    "End.B6.Encaps.Red",
    "End with USD",
    "End with PSP & USD",
    "End with USP & USD",
    "End with PSP, USP & USD",
    "End.X with USD",
    "End.X with PSP & USD",
    "End.X with USP & USD",
    "End.X with PSP, USP & USD",
    "End.T with USD",
    "End.T with PSP & USD",
    "End.T with USP & USD",
    "End.T with PSP, USP & USD",
};

}  // namespace

const char *srv6_util_sid_fmt_str(std::uint32_t format) {
    return format < std::size(SID_FORMATS) ? SID_FORMATS[format] : UNKNOWN;
}

const char *srv6_util_end_func_str(std::uint32_t behaviour) {
    const char *name = behaviour < std::size(BEHAVIOURS) ? BEHAVIOURS[behaviour] : nullptr;
    return name != nullptr ? name : UNKNOWN;
}
