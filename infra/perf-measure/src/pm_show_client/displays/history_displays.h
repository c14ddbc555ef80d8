// The histories of interfaces, SR policies, RSVP-TE tunnels and endpoints.
#pragma once

// Each prints the record named after it: pm_intf_history_parcel and so on.
int pm_show_intf_history(const void *decoded_parcel);
int pm_show_srpolicy_history(const void *decoded_parcel);
int pm_show_rsvpte_history(const void *decoded_parcel);
int pm_show_endpoint_history(const void *decoded_parcel);

// The same for an endpoint with liveness detection; without it nothing is printed.
int pm_show_endpoint_live_history(const void *decoded_parcel);
