// SPDX-License-Identifier: Apache-2.0
// Fills the Protocol Buffers mirror of a record (see schema_to_proto.cc) from the record.
#pragma once

#include <google/protobuf/message.h>

#include "platform/parcel.h"

void fill_mirror(const parcel_descriptor *descriptor, const void *record, google::protobuf::Message *message);
