// SPDX-License-Identifier: Apache-2.0
// Writes the seed corpus of the parcel fuzz target: for a spread of record types a whole parcel, its
// fields alone, and its fields with the schema that they were written with and with changes of it.
//
//   make_corpus DIRECTORY
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "fuzz/parcel_decode_fuzz.h"
#include "platform/local/codec/parcel_codec.h"
#include "schema/pm_descriptors.h"
#include "tests/support/random_record.h"

namespace {

constexpr std::size_t SPREAD = 9;       // every ninth type
constexpr std::size_t MAX_SEED = 3000;  // bytes

void write(const std::string &path, parcel_fuzz_mode mode, std::size_t type, const std::vector<std::uint8_t> &rest) {
    if (rest.size() > MAX_SEED) {
        return;
    }
    std::ofstream out(path, std::ios::binary);
    out.put(static_cast<char>(mode)).put(static_cast<char>(type)).put(static_cast<char>(type >> 8));
    out.write(reinterpret_cast<const char *>(rest.data()), static_cast<std::streamsize>(rest.size()));
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fputs("usage: make_corpus DIRECTORY\n", stderr);
        return 1;
    }
    for (std::size_t type = 0; type < pm_descriptors().size(); type += SPREAD) {
        const parcel_descriptor *descriptor = pm_descriptors()[type];
        const random_record record(descriptor, type);
        std::vector<std::uint8_t> parcel;
        parcel_header header{};
        if (parcel_encode(record.data(), descriptor, &parcel) != ERRCODE_SUCCESS ||
            parcel_read_header(parcel.data(), parcel.size(), &header) != ERRCODE_SUCCESS) {
            return 1;
        }
        const std::string base = std::string(argv[1]) + "/" + descriptor->name;
        const std::vector<std::uint8_t> fields(parcel.begin() + static_cast<std::ptrdiff_t>(header.size), parcel.end());
        std::vector<std::uint8_t> with_schema = {static_cast<std::uint8_t>(std::strlen(descriptor->schema)),
                                                 static_cast<std::uint8_t>(std::strlen(descriptor->schema) >> 8)};
        with_schema.insert(with_schema.end(), descriptor->schema, descriptor->schema + std::strlen(descriptor->schema));
        with_schema.insert(with_schema.end(), fields.begin(), fields.end());
        write(base + ".parcel", parcel_fuzz_mode::whole_parcel, type, parcel);
        write(base + ".fields", parcel_fuzz_mode::fields, type, fields);
        write(base + ".schema", parcel_fuzz_mode::other_schema, type, with_schema);
        std::vector<std::uint8_t> edited = {1, static_cast<std::uint8_t>(type), 1, 0};  // another edit for each
        edited.insert(edited.end(), fields.begin(), fields.end());
        write(base + ".edited", parcel_fuzz_mode::edited_schema, type, edited);
    }
    return 0;
}
