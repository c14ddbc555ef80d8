// SPDX-License-Identifier: Apache-2.0
// A file as a stream of JSON documents.
#include "perf-store/datasets/document_stream.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace {

using namespace perf_store;
using namespace std::string_literals;

constexpr std::size_t PIECE = 1 << 20;  // bytes that the stream reads at a time

// "document", "end", or the error.
std::string result_of(document_stream *in, json_document *document) {
    bool found = false;
    const pm_error error = in->next(document, &found);
    return error ? error.text() : found ? "document" : "end";
}

// Files in a folder of their own.
class DocumentStream : public testing::Test {
protected:
    void SetUp() override { ASSERT_NE(own_.path(), ""); }

    [[nodiscard]] std::string name() const { return own_.path() + "/set.ndjson"; }
    [[nodiscard]] std::string write(const std::string &content) const {
        std::ofstream(name(), std::ios::binary) << content;
        return name();
    }

    // The documents of a file, an array of one number or text as that, anything else as "?"; at its
    // end what went wrong, without the folder.
    [[nodiscard]] std::vector<std::string> documents(const std::string &content) const {
        document_stream in(write(content));
        std::vector<std::string> found;
        json_document document;
        for (;;) {
            bool is_there = false;
            if (const pm_error error = in.next(&document, &is_there)) {
                found.push_back("failure " + shortened(error.text()));
            }
            if (!is_there) {
                return found;
            }
            found.push_back(document.root().count == 1 ? std::string(document.inside(document.root())->text) : "?");
        }
    }

    // The line that the error of a file names; 0 for none.
    [[nodiscard]] unsigned long failing_line(const std::string &content) const {
        const std::vector<std::string> found = documents(content);
        const std::string last = found.empty() ? "" : found.back();
        const std::string before = "failure set.ndjson:";
        return last.starts_with(before) ? std::stoul(last.substr(before.size())) : 0;
    }

private:
    [[nodiscard]] std::string shortened(const std::string &error) const {
        return error.starts_with(own_.path() + "/") ? error.substr(own_.path().size() + 1) : error;
    }

    temporary_folder own_;
};

using texts = std::vector<std::string>;

TEST_F(DocumentStream, GivesOneDocumentALine) { EXPECT_EQ(documents("[1]\n[2]\n[3]\n"), (texts{"1", "2", "3"})); }

TEST_F(DocumentStream, TheLastLineNeedsNoEnd) { EXPECT_EQ(documents("[1]\n[2]"), (texts{"1", "2"})); }

TEST_F(DocumentStream, GivesSeveralDocumentsOfALine) {
    EXPECT_EQ(documents("[1] [2]\t[3]\r\n[4]"), (texts{"1", "2", "3", "4"}));
}

TEST_F(DocumentStream, DocumentsMayTakeSeveralLines) {
    EXPECT_EQ(documents("[\n  1\n]\n\n[\n\n2]\n[3\n]"), (texts{"1", "2", "3"}));
}

TEST_F(DocumentStream, DocumentsStandApart) {
    EXPECT_EQ(documents("[1]\n[2][3]"), (texts{"1", "2", "failure set.ndjson:2: no white space behind an object"}));
    EXPECT_EQ(documents("{}x"), (texts{"?", "failure set.ndjson:1: no white space behind an object"}));
    // Where one piece ends with the first and the next begins with the second.
    for (std::size_t before = PIECE - 4; before < PIECE; ++before) {
        const texts found = documents(std::string(before, '\n') + "[1][2]");
        ASSERT_EQ(found.size(), 2U) << before;
        EXPECT_EQ(found[1], "failure set.ndjson:" + std::to_string(before + 1) + ": no white space behind an object");
    }
}

TEST_F(DocumentStream, AnEmptyFileHasNoDocument) { EXPECT_EQ(documents(""), texts{}); }

TEST_F(DocumentStream, WhiteSpaceAloneIsNoDocument) {
    EXPECT_EQ(documents(" \n\t\r\n  \n"), texts{});
    EXPECT_EQ(documents(std::string(3 * PIECE, '\n')), texts{});
}

TEST_F(DocumentStream, WhiteSpaceBeforeAndAfterIsPassed) {
    EXPECT_EQ(documents("\n\n  [1]  \n\n"), texts{"1"});
    EXPECT_EQ(documents(std::string(2 * PIECE, ' ') + "[1]" + std::string(2 * PIECE, ' ') + "[2]"), (texts{"1", "2"}));
}

TEST_F(DocumentStream, AMissingFileIsAnErrorWithItsReason) {
    document_stream in(name());
    json_document document;
    EXPECT_EQ(result_of(&in, &document), "perf-store: " + name() + ": No such file or directory");
    EXPECT_EQ(result_of(&in, &document), "perf-store: " + name() + ": No such file or directory");
}

TEST_F(DocumentStream, AFolderIsAnErrorWithItsReason) {
    const std::string folder = std::filesystem::path(name()).parent_path();
    document_stream in(folder);
    json_document document;
    EXPECT_EQ(result_of(&in, &document), "perf-store: " + folder + ": Is a directory");
}

TEST_F(DocumentStream, TheDocumentsBeforeAnErrorAreGiven) {
    const texts found = documents("[1]\n[2]\n[x]\n[4]\n");
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0], "1");
    EXPECT_EQ(found[1], "2");
    EXPECT_TRUE(found[2].starts_with("failure set.ndjson:3: ")) << found[2];
}

TEST_F(DocumentStream, AnErrorNamesTheLineOfItsByte) {
    EXPECT_EQ(failing_line("x"), 1U);
    EXPECT_EQ(failing_line("[1]\n\n\nx\n"), 4U);
    EXPECT_EQ(failing_line("[1] x\n"), 1U);
    EXPECT_EQ(failing_line("[1]\r\n[2]\r\n[x]\r\n"), 3U);
    EXPECT_EQ(failing_line("[\n1,\n2,\nx,\n3]\n"), 4U);
    EXPECT_EQ(failing_line("{\n\"a\": 1,\n\"b\": [\n1,\n]}\n"), 5U);
    EXPECT_EQ(failing_line("[1]\n[\"a\nb\"]\n"), 2U);  // a text may not hold a raw line feed
    EXPECT_EQ(failing_line("[1]\n[\"\xC3(\"]\n"), 2U);
    EXPECT_EQ(failing_line("[1]\n[tru]\n[2]\n"), 2U);
}

TEST_F(DocumentStream, PunctuationThatBeginsADocumentIsAnError) {
    for (const std::string wrong : {"}", "]", ",", ":"}) {
        EXPECT_EQ(failing_line("[1]\n" + wrong + "\n[2]\n"), 2U) << wrong;
        EXPECT_EQ(failing_line(wrong), 1U) << wrong;
    }
}

TEST_F(DocumentStream, ADocumentCutByTheEndOfTheFileIsAnError) {
    for (const char *cut :
         {"[", "[1", "[1,", "{\"a", "{\"a\"", "{\"a\":", "[\"\\", "[\"\\u12", "[tru", "[-", "[1.", "[\"\xE6\x97"}) {
        EXPECT_EQ(failing_line("[1]\n"s + cut), 2U) << cut;
    }
}

TEST_F(DocumentStream, LinesAreCountedAcrossPieces) {
    std::string content;
    unsigned long lines = 0;
    while (content.size() < 3 * PIECE) {
        content += "[\n1\n]\n\n";
        lines += 4;
    }
    EXPECT_EQ(failing_line(content + "[x]"), lines + 1);
}

TEST_F(DocumentStream, ADocumentLongerThanAPieceIsWhole) {
    const std::string text(3 * PIECE + 17, 'x');
    EXPECT_EQ(documents("[1]\n[\"" + text + "\"]\n[2]\n"), (texts{"1", text, "2"}));
}

TEST_F(DocumentStream, ALongDocumentOfManyLinesKeepsTheCount) {
    std::string content = "[\n";
    for (int i = 0; i < 400000; ++i) {
        content += "1234,\n";
    }
    EXPECT_EQ(failing_line(content + "x]\n"), 400002U);
    EXPECT_EQ(failing_line(content + "1]\n[x]\n"), 400003U);
}

// A piece's end goes through every byte of each kind of token, and of the documents around it.
TEST_F(DocumentStream, ATokenCutByAPiecesEndIsWhole) {
    struct token {
        const char *text;
        const char *value;
    };
    static constexpr token TOKENS[] = {
        {"\"two words\"", "two words"},
        {"\"K\xC3\xB6ln\"", "K\xC3\xB6ln"},
        {"\"\xE6\x97\xA5\"", "\xE6\x97\xA5"},
        {"\"\xF0\x9F\x98\x80\"", "\xF0\x9F\x98\x80"},
        {"\"\\n\\u00f6\"", "\n\xC3\xB6"},
        {"\"\\ud83d\\ude00\"", "\xF0\x9F\x98\x80"},
        {"12345678901234567890", "12345678901234567890"},
        {"-1.25e+10", "-1.25e+10"},
        {"true", ""},
        {"null", ""},
    };
    for (const token &each : TOKENS) {
        const std::string document = "[" + std::string(each.text) + "]";
        for (std::size_t before = 0; before <= document.size() + 1; ++before) {
            const std::string content = "[1]" + std::string(PIECE - 3 - before, ' ') + document + " [2]\n";
            ASSERT_EQ(documents(content), (texts{"1", each.value, "2"})) << each.text << " cut at " << before;
        }
    }
}

// As above with the wrong token: the error is the same wherever the piece ends.
TEST_F(DocumentStream, AnErrorAtAPiecesEndIsNotTakenForACutToken) {
    for (const std::string wrong : {"[tru]", "[1,]", "{\"a\" 1}", "[\"\\ud83d\"]", "[\"\xC3(\"]", "[1.x]", "}"}) {
        for (std::size_t before = 0; before <= wrong.size() + 1; ++before) {
            const std::string content = "[1]\n" + std::string(PIECE - 4 - before, ' ') + wrong + "\n[2]\n";
            ASSERT_EQ(failing_line(content), 2U) << wrong << " cut at " << before;
        }
    }
}

TEST_F(DocumentStream, AZeroByteIsAnErrorOfItsLine) {
    EXPECT_EQ(failing_line("\0"s), 1U);
    EXPECT_EQ(failing_line("[1]\0"s), 1U);
    EXPECT_EQ(failing_line("[1]\n[\"a\0b\"]\n"s), 2U);
    EXPECT_EQ(failing_line("[1]\n[2\0]\n[3]\n"s), 2U);
    EXPECT_EQ(failing_line("[1]\n\0\n[2]\n"s), 2U);
    EXPECT_EQ(failing_line("[1]\n\n \0[2]\n"s), 3U);
    EXPECT_EQ(failing_line("[1]\n" + std::string(2 * PIECE, ' ') + "\0"s), 2U);
}

TEST_F(DocumentStream, DeepNestingIsADocumentOrAnError) {
    constexpr std::size_t DEPTH = 100000;
    EXPECT_EQ(failing_line("[1]\n" + std::string(DEPTH, '[')), 2U);
    EXPECT_EQ(documents("[1]\n" + std::string(DEPTH, '[') + std::string(DEPTH, ']')), (texts{"1", ""}));
}

TEST_F(DocumentStream, APlaceIsALineOfTheDocumentReadLast) {
    document_stream in(write("[1]\n{\n\"a\": 1\n}\n"));
    json_document document;
    ASSERT_EQ(result_of(&in, &document), "document");
    EXPECT_EQ(in.place(0), name() + ":1: ");
    ASSERT_EQ(result_of(&in, &document), "document");
    EXPECT_EQ(in.place(document.root().offset), name() + ":2: ");
    EXPECT_EQ(in.place(document.inside(document.root())->offset), name() + ":3: ");
}

TEST_F(DocumentStream, SaysHowFarItIs) {
    const std::string content = "[1]\n" + std::string(2 * PIECE, ' ') + "[2]\n";
    document_stream in(write(content));
    json_document document;
    EXPECT_EQ(in.bytes_in_all(), content.size());
    EXPECT_EQ(in.bytes_read(), 0U);
    ASSERT_EQ(result_of(&in, &document), "document");
    EXPECT_GT(in.bytes_read(), 0U);
    EXPECT_LT(in.bytes_read(), content.size());
    ASSERT_EQ(result_of(&in, &document), "document");
    ASSERT_EQ(result_of(&in, &document), "end");
    EXPECT_EQ(in.bytes_read(), content.size());
}

// What is read without the stream's parser.
TEST_F(DocumentStream, GivesWhatIsNextToWhoReadsItHimself) {
    document_stream in(write("[1]\n[2]\n[3]\n"));
    json_document document;
    EXPECT_EQ(in.rest(), "");
    ASSERT_TRUE(in.extend());
    EXPECT_EQ(in.rest(), "[1]\n[2]\n[3]\n");
    in.take(3);
    EXPECT_EQ(in.rest(), "\n[2]\n[3]\n");
    EXPECT_EQ(in.rest().data()[in.rest().size()], '\0');
    EXPECT_EQ(in.line_of(1), 2U);
    ASSERT_EQ(result_of(&in, &document), "document");
    EXPECT_EQ(document.inside(document.root())->text, "2");
    EXPECT_EQ(in.rest(), "\n[3]\n");
    in.take(4);
    EXPECT_EQ(in.place(1), name() + ":3: ");
    EXPECT_EQ(in.rest(), "\n");
    EXPECT_FALSE(in.extend());
    EXPECT_EQ(result_of(&in, &document), "end");
}

TEST_F(DocumentStream, WhatIsTakenIsFollowedByWhiteSpaceToo) {
    document_stream in(write("[1][2]\n"));
    json_document document;
    ASSERT_TRUE(in.extend());
    in.take(3);
    EXPECT_EQ(in.rest(), "");
    EXPECT_FALSE(in.extend());
    EXPECT_EQ(result_of(&in, &document), name() + ":1: no white space behind an object");
}

TEST_F(DocumentStream, TheRestOfAFileThatCannotBeReadIsNothing) {
    document_stream in(name());
    json_document document;
    EXPECT_EQ(in.rest(), "");
    EXPECT_FALSE(in.extend());
    EXPECT_EQ(result_of(&in, &document), "perf-store: " + name() + ": No such file or directory");
}

TEST_F(DocumentStream, BuffersAsMuchAsIsNeeded) {
    const std::string content = "[1]\n[\"" + std::string(5 * PIECE, 'x') + "\"]\n";
    document_stream in(write(content));
    ASSERT_TRUE(in.extend());
    in.take(3);
    while (in.rest().size() < content.size() - 3) {
        ASSERT_TRUE(in.extend());
    }
    EXPECT_EQ(in.rest(), content.substr(3));
    EXPECT_EQ(in.line_of(1), 2U);
}

// Gives the program another standard input while it lives.
class input_from {
public:
    explicit input_from(int file) : kept_(::dup(STDIN_FILENO)) { ::dup2(file, STDIN_FILENO); }
    ~input_from() {
        ::dup2(kept_, STDIN_FILENO);
        ::close(kept_);
    }
    input_from(const input_from &) = delete;
    input_from &operator=(const input_from &) = delete;

private:
    int kept_;
};

TEST_F(DocumentStream, ADashIsStandardInput) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const std::string content = "[1]\n[x]\n";
    ASSERT_EQ(::write(ends[1], content.data(), content.size()), static_cast<ssize_t>(content.size()));
    ::close(ends[1]);
    const input_from input(ends[0]);
    ::close(ends[0]);
    json_document document;
    {
        document_stream in("-");
        EXPECT_EQ(in.bytes_in_all(), 0U);
        ASSERT_EQ(result_of(&in, &document), "document");
        EXPECT_EQ(in.place(0), "<stdin>:1: ");
        const std::string error = result_of(&in, &document);
        EXPECT_TRUE(error.starts_with("<stdin>:2: ")) << error;
    }
    char byte = 0;
    EXPECT_EQ(::read(STDIN_FILENO, &byte, 1), 0) << "standard input stays open";
}

}  // namespace
