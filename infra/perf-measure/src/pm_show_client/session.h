// One measurement session of any transport.
#pragma once

// Prints a pm_session_parcel.
int pm_show_session(const void *decoded_parcel);
