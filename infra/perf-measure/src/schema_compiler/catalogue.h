// SPDX-License-Identifier: Apache-2.0
// A record catalogue, read. Its form is explained at the head of schema/catalogue.txt.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/pm_error.h"

// One type of the catalogue.
struct catalogue_entry {
    std::string name;       // of the C structure and its accessor
    std::string wire_name;  // of the record type, in its descriptor and its parcels
    std::uint32_t number = 0;
    std::string body;      // in the schema notation: "{Field}D...", "?(...)" or a scalar
    std::size_t size = 0;  // of the C structure, as the catalogue says; 0 of an inner type
    bool inner = false;
    std::string version_major, version_minor, library;
    std::vector<std::string> uses;  // names of the types that the body refers to
    std::size_t line = 0;
};

// A registration routine and the types that it registers.
struct catalogue_run {
    std::string name;
    std::vector<std::string> types;
};

struct record_catalogue {
    std::vector<catalogue_entry> entries;  // in catalogue order, inner types included
    std::vector<catalogue_run> runs;
    std::string include;  // a header that the generated structures need; may be empty

    // The type of that name; null when there is none.
    [[nodiscard]] const catalogue_entry *find(const std::string &name) const;
};

// Reads a catalogue into the empty `*out`. An error's text names the line.
[[nodiscard]] pm_error read_catalogue(const std::string &path, record_catalogue *out);
