// Storage of the request. See pm_show_options.h.
#include "pm_show_client/pm_show_options.h"

pm_show_options_record pm_show_options;
std::uint64_t pm_show_now_msec = 0;
bool pm_show_header_pending = false;
