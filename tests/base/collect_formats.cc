// SPDX-License-Identifier: Apache-2.0
// Collects the formats of the program: every format literal that is a template argument in the
// given sources, one call of check<"...">() for each, without repeats. Run at build time, so
// that no format can be added without being compared with the C library.
//
//   collect_formats SOURCE...  > formats.inc
#include <cctype>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <string>

namespace {

// The literal, quotes included, that begins at the quote at `at`; `*end` is just after it.
std::string literal_at(const std::string &text, std::size_t at, std::size_t *end) {
    std::size_t i = at + 1;
    while (i < text.size() && text[i] != '"') {
        i += text[i] == '\\' ? 2 : 1;
    }
    *end = i + 1;
    return text.substr(at, i + 1 - at);
}

void collect(const std::string &text, std::set<std::string> *formats) {
    for (std::size_t at = text.find("<\""); at != std::string::npos; at = text.find("<\"", at + 1)) {
        const bool after_name =
            at > 0 && (std::isalnum(static_cast<unsigned char>(text[at - 1])) != 0 || text[at - 1] == '_');
        std::size_t end = 0;
        const std::string literal = literal_at(text, at + 1, &end);
        if (after_name && end < text.size() && (text[end] == '>' || text[end] == ',')) {
            formats->insert(literal);
        }
    }
}

// The calls of printing routines that name no format where it can be seen; there must be none.
bool hides_a_format(const std::string &text) {
    for (const char *call :
         {"pm_print<", "pm_print_indented<", "pm_print_cut<", "pm_print_error<", "pm_format_text<", "pm_format<"}) {
        for (std::size_t at = text.find(call); at != std::string::npos; at = text.find(call, at + 1)) {
            const std::size_t argument = at + std::string(call).size();
            if (text[argument] != '"' && text.compare(argument, 6, "Format") != 0) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

int main(int argc, char **argv) {
    std::set<std::string> formats;
    for (int i = 1; i < argc; ++i) {
        std::ifstream in(argv[i]);
        if (!in) {
            std::cerr << "collect_formats: cannot read " << argv[i] << "\n";
            return 1;
        }
        const std::string text(std::istreambuf_iterator<char>(in), {});
        if (hides_a_format(text)) {
            std::cerr << "collect_formats: " << argv[i] << ": a format must follow the '<'\n";
            return 1;
        }
        collect(text, &formats);
    }
    for (const std::string &format : formats) {
        std::cout << "check<" << format << ">();\n";
    }
    std::cout << "constexpr std::size_t FORMATS = " << formats.size() << ";\n";
    return formats.empty() ? 1 : 0;
}
