// SPDX-License-Identifier: Apache-2.0
// Compiles a record catalogue into C++: the structs with their size and offset assertions, the
// descriptors with their layout tables, the accessors and the registration routines.
//
//   schema_compiler CATALOGUE OUTPUT-DIRECTORY PREFIX INCLUDE-DIRECTORY
//
// writes PREFIX_records.h, PREFIX_descriptors.h and PREFIX_descriptors.cc. It runs at build time
// only. The form of a catalogue is explained at the head of schema/catalogue.txt.
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "schema_compiler/compiled_catalogue.h"
#include "schema_compiler/writers.h"

namespace {

template <class Write>
pm_error write_file(const std::string &path, const Write &write) {
    std::ofstream out(path);
    write(out);
    out.close();
    return out ? pm_error() : pm_error(path + " cannot be written");
}

pm_error write_files(const record_catalogue &catalogue, const compiled_types &all, const std::string &directory,
                     const std::string &prefix, const std::string &include_directory) {
    const std::string base = directory + "/" + prefix;
    const std::string header = include_directory + "/" + prefix + "_descriptors.h";
    if (pm_error error =
            write_file(base + "_records.h", [&](std::ostream &out) { write_records(out, catalogue, all); })) {
        return error;
    }
    if (pm_error error = write_file(base + "_descriptors.h",
                                    [&](std::ostream &out) { write_descriptor_header(out, catalogue, prefix); })) {
        return error;
    }
    errcode code = ERRCODE_SUCCESS;
    pm_error error = write_file(base + "_descriptors.cc", [&](std::ostream &out) {
        write_descriptors(out, catalogue, all, prefix, header);
        code = write_plans(out, catalogue, all);
    });
    return code != ERRCODE_SUCCESS ? pm_error(code, "a record type is beyond what a plan may be") : error;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 5) {
        std::cerr << "usage: schema_compiler CATALOGUE OUTPUT-DIRECTORY PREFIX INCLUDE-DIRECTORY\n";
        return EXIT_FAILURE;
    }
    record_catalogue catalogue;
    compiled_types all;
    pm_error error = read_catalogue(argv[1], &catalogue);
    if (!error) {
        error = compile_catalogue(catalogue, &all);
    }
    if (!error) {
        error = write_files(catalogue, all, argv[2], argv[3], argv[4]);
    }
    if (error) {
        std::cerr << "schema_compiler: " << argv[1] << ": " << error.text() << "\n";
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
