// SPDX-License-Identifier: Apache-2.0
// The schema compiler: what it makes of a catalogue, and what it refuses.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <unistd.h>

#include "schema_compiler/compiled_catalogue.h"
#include "schema_compiler/writers.h"

namespace {

constexpr char GROUP[] = "group 1.0 lib_test\n";

// A catalogue of these lines, read and compiled.
class compiled {
public:
    explicit compiled(const std::string &text) {
        std::string path = (std::filesystem::temp_directory_path() / "catalogue-XXXXXX").string();
        const int file = mkstemp(path.data());
        EXPECT_GE(file, 0);
        EXPECT_EQ(write(file, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(file);
        error_ = read_catalogue(path, &catalogue_);
        if (!error_) {
            error_ = compile_catalogue(catalogue_, &all_);
        }
        std::remove(path.c_str());
    }

    [[nodiscard]] const std::string &error() const { return error_.text(); }
    [[nodiscard]] const parcel_notation::data_type &type(const std::string &name) const { return all_.at(name).top(); }
    [[nodiscard]] std::string records() const {
        std::ostringstream out;
        write_records(out, catalogue_, all_);
        return out.str();
    }
    [[nodiscard]] std::string descriptors() const {
        std::ostringstream out;
        write_descriptors(out, catalogue_, all_, "test", "test/test_descriptors.h");
        return out.str();
    }

private:
    record_catalogue catalogue_;
    compiled_types all_;
    pm_error error_;
};

std::string error_of(const std::string &line) { return compiled(GROUP + line + "\n").error(); }

TEST(Catalogue, LaysFieldsOutAsTheCompilerDoes) {
    const compiled catalogue(std::string(GROUP) +
                             "$1 inside (12): Mac 6x%m; Port I; Flag C\n"
                             "$2 outside (56): First C; Inside inside; Text s; Sid 16x%s; Last I\n");
    ASSERT_EQ(catalogue.error(), "line 2: inside: the catalogue says 12 bytes, the fields take 10");
    const compiled right(std::string(GROUP) +
                         "$1 inside (10): Mac 6x%m; Port I; Flag C\n"
                         "$2 outside (48): First C; Inside inside; Text s; Sid 16x%s; Last I\n");
    ASSERT_EQ(right.error(), "");
    const auto &fields = right.type("outside").fields;
    EXPECT_EQ(fields[1].offset, 2U);
    EXPECT_EQ(fields[2].offset, 16U);
    EXPECT_EQ(fields[3].offset, 24U);
    EXPECT_EQ(fields[4].offset, 40U);
}

TEST(Catalogue, AUnionIsAsLargeAsItsLargestArm) {
    const compiled catalogue(std::string("inner $9 choice: ?(<Kind,kind_e>,0:{Small}C,4:{Wide}3A(H),?:v)\n") + GROUP +
                             "$1 holder (40): Choice $9; Last C\n");
    ASSERT_EQ(catalogue.error(), "");
    const auto &choice = catalogue.type("choice");
    EXPECT_EQ(choice.size, 32U);
    EXPECT_EQ(choice.fields[0].offset, 8U);
    EXPECT_EQ(choice.fields[1].offset, 8U);
    EXPECT_EQ(catalogue.type("holder").fields[1].offset, 32U);
}

TEST(Catalogue, AStructureMayHaveAnotherNameThanItsRecordType) {
    const compiled catalogue(std::string(GROUP) + "$7 view_of_example = pm_example_parcel (8): Count PD; State b\n");
    ASSERT_EQ(catalogue.error(), "");
    EXPECT_NE(
        catalogue.records().find("struct view_of_example {\n    std::uint32_t Count;\n    std::uint32_t State;\n};"),
        std::string::npos);
    const std::string descriptors = catalogue.descriptors();
    EXPECT_NE(descriptors.find("*view_of_example_descriptor() {"), std::string::npos);
    EXPECT_NE(descriptors.find("1, \"pm_example_parcel\", 1, 0, \"lib_test\", view_of_example_layout,\n"
                               "    \"$7={Count}PD{State}b;\",\n    \"$7=PDb;\"};"),
              std::string::npos);
    EXPECT_EQ(descriptors.find("pm_example_parcel_"), std::string::npos);  // no symbol of that name
}

TEST(Catalogue, AReferenceKeepsItsNumberInBothSchemas) {
    const compiled catalogue(std::string("inner $54 address: 16x%s\n") + GROUP +
                             "$1 holder (40): One p($54); Many a($54); Own holder_part\n"
                             "$2 holder_part (16): Address $54\n");
    ASSERT_EQ(catalogue.error(), "");
    EXPECT_NE(catalogue.descriptors().find("\"$1={One}p($54){Many}a($54){Own}$2;$2={Address}$54;$54=16x%s;\",\n"
                                           "    \"$1=p($54.)a($54.)$2.;$2=$54.;$54=16x%s;\""),
              std::string::npos);
    EXPECT_NE(catalogue.records().find("    address *One;\n    parcel_array<address> Many;\n    holder_part Own;\n"),
              std::string::npos);
}

TEST(Catalogue, MistakesAreRefusedWithTheirLine) {
    EXPECT_EQ(error_of("$1 one: Count D"), "line 2: a record type needs its size");
    EXPECT_EQ(error_of("$1 one (x): Count D"), "line 2: a record type needs its size");
    EXPECT_EQ(error_of("$1 one (4: Count D"), "line 2: a record type needs its size");
    EXPECT_EQ(error_of("$x one (4): Count D"), "line 2: a type needs a number and a name");
    EXPECT_EQ(error_of("one (4): Count D"), "line 2: not a type");
    EXPECT_EQ(error_of("$1 one (4): Count D; Other"), "line 2: not a field:  Other");
    EXPECT_EQ(error_of("$1 one (4): Count D more"), "line 2: not a field: Count D more");
    EXPECT_EQ(error_of("$1 one (4): Count $3"), "line 2: no inner type $3");
    EXPECT_EQ(error_of("$1 one (4): Count D\n$2 one (4): Count D"), "line 3: a second type one");
    EXPECT_EQ(error_of("run nothing"), "line 2: no type follows run nothing");
    EXPECT_EQ(error_of("group 7 lib"), "line 2: a group needs MAJOR.MINOR and a library");
    EXPECT_EQ(error_of("$1 one (4): Count Q"), "line 2: one: unknown type at byte 10");
    EXPECT_EQ(error_of("$1 one (4): State [kind_e"), "line 2: one: expected a name at byte 11");
    EXPECT_EQ(error_of("$1 one (8): Self one; Count D"), "line 2: one: $1 holds itself by value");
    EXPECT_EQ(error_of("$1 one (8): Wide 65536A(65536A(H)); Last D"), "line 2: one: 65536A(65536A(H)) is too large");
}

TEST(Catalogue, AFileThatIsNotThereIsAnError) {
    record_catalogue catalogue;
    const pm_error error = read_catalogue("/nonexistent/catalogue.txt", &catalogue);
    EXPECT_EQ(error.text(), "cannot be read");
}

}  // namespace
