// SPDX-License-Identifier: Apache-2.0
// The line editor with its keys, and the loop around it.
#include "perf-measure/interactive/shell.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <histedit.h>
#include <memory>
#include <string_view>
#include <system_error>

#include "perf-measure/interactive/line_words.h"
#include "perf-measure/phrases/help.h"
#include "perf-measure/terminal/screen.h"

namespace perf_measure {

namespace {

constexpr char PROMPT[] = "perf-measure> ";
constexpr int HISTORY_LINES = 1000;
constexpr std::size_t COLUMN_GAP = 2;     // between the words of a list
constexpr std::size_t MOST_LISTED = 200;  // words after Tab

struct editor_deleter {
    void operator()(EditLine *editor) const { el_end(editor); }
};
struct history_deleter {
    void operator()(History *history) const { history_end(history); }
};

// Where lines are kept from session to session; "" for nowhere.
std::string history_file() {
    const char *const state = std::getenv("XDG_STATE_HOME");
    const char *const home = std::getenv("HOME");
    std::string folder;
    if (state != nullptr && *state != '\0') {
        folder = state;
    } else if (home != nullptr && *home != '\0') {
        folder = std::string(home) + "/.local/state";
    } else {
        return "";
    }
    std::error_code failed;
    std::filesystem::create_directories(folder + "/perf-measure", failed);
    return failed ? "" : folder + "/perf-measure/history";
}

class shell {
public:
    shell(const command_runner &run, const name_lister &names) : run_(run), names_(names) {}

    [[nodiscard]] int loop();

private:
    [[nodiscard]] bool start();
    [[nodiscard]] bool obey(const std::string &line);
    void bind(const char *name, const char *help, unsigned char (*function)(EditLine *, int), const char *key);
    [[nodiscard]] line_words words_before_cursor() const;
    [[nodiscard]] std::vector<candidate> what_fits(const line_words &typed_so_far) const;
    unsigned char complete();
    unsigned char list_what_follows();
    static void print_columns(const std::vector<candidate> &all);
    static shell &of(EditLine *editor);

    const command_runner &run_;
    const name_lister &names_;
    std::unique_ptr<EditLine, editor_deleter> editor_;
    std::unique_ptr<History, history_deleter> history_;
    std::string history_file_;
    int status_ = 0;
};

shell &shell::of(EditLine *editor) {
    void *data = nullptr;
    el_get(editor, EL_CLIENTDATA, &data);
    return *static_cast<shell *>(data);
}

line_words shell::words_before_cursor() const {
    const LineInfo *const line = el_line(editor_.get());
    return split_line({line->buffer, static_cast<std::size_t>(line->cursor - line->buffer)});
}

std::vector<candidate> shell::what_fits(const line_words &typed_so_far) const {
    std::vector<candidate> fitting = candidates(typed_so_far.words, typed_so_far.last, names_);
    for (const char *const word : {"exit", "quit"}) {
        if (typed_so_far.words.empty() && begins_with(word, typed_so_far.last)) {
            fitting.push_back({word, "leave"});
        }
    }
    return fitting;
}

void shell::print_columns(const std::vector<candidate> &all) {
    std::size_t width = 0;
    for (const candidate &each : all) {
        width = std::max(width, each.word.size() + COLUMN_GAP);
    }
    const std::size_t columns = std::max<std::size_t>(size_of_terminal(STDOUT_FILENO).columns / width, 1);
    std::size_t column = 0;
    for (std::size_t i = 0; i < all.size() && i < MOST_LISTED; ++i) {
        column = column % columns + 1;
        std::printf("%-*s%s", static_cast<int>(width), all[i].word.c_str(), column == columns ? "\n" : "");
    }
    std::fputs(column == columns ? "" : "\n", stdout);
    if (all.size() > MOST_LISTED) {
        std::printf("... and %zu more\n", all.size() - MOST_LISTED);
    }
}

// Tab: what is common to all words that fit is typed, and a blank after the only one; else they are listed.
unsigned char shell::complete() {
    const line_words so_far = words_before_cursor();
    const std::vector<candidate> fitting = what_fits(so_far);
    if (fitting.empty()) {
        return CC_REFRESH_BEEP;
    }
    const std::string common = common_beginning(fitting);
    std::string insertion;
    if (common.size() > so_far.last.size()) {
        insertion = common.substr(so_far.last.size());
        insertion = so_far.quote == '\0' ? typed(insertion) : insertion;
    }
    if (fitting.size() == 1 && fitting.front().is_whole) {
        insertion += so_far.quote != '\0' ? std::string(1, so_far.quote) : "";
        insertion += ' ';
    }
    if (!insertion.empty()) {
        return el_insertstr(editor_.get(), insertion.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
    }
    std::fputs("\n", stdout);
    print_columns(fitting);
    return CC_REDISPLAY;
}

// '?': lists what may follow, with its help. Within quotes it is a character like others.
unsigned char shell::list_what_follows() {
    const line_words so_far = words_before_cursor();
    if (so_far.quote != '\0') {
        return el_insertstr(editor_.get(), "?") == 0 ? CC_REFRESH : CC_ERROR;
    }
    std::vector<std::string> words = so_far.words;
    words.push_back(so_far.last + '?');
    std::fputs("\n", stdout);
    std::fflush(stdout);
    static_cast<void>(run_(words));
    return CC_REDISPLAY;
}

void shell::bind(const char *name, const char *help, unsigned char (*function)(EditLine *, int), const char *key) {
    el_set(editor_.get(), EL_ADDFN, name, help, function);
    el_set(editor_.get(), EL_BIND, key, name, nullptr);
}

bool shell::start() {
    std::setlocale(LC_CTYPE, "");  // so that the editor knows characters
    editor_.reset(el_init("perf-measure", stdin, stdout, stderr));
    history_.reset(history_init());
    if (editor_ == nullptr || history_ == nullptr) {
        return false;
    }
    EditLine *const editor = editor_.get();
    el_set(editor, EL_CLIENTDATA, this);
    el_set(
        editor, EL_PROMPT, +[](EditLine *) { return const_cast<char *>(PROMPT); });
    el_set(editor, EL_EDITOR, "emacs");
    HistEvent event;
    history(history_.get(), &event, H_SETSIZE, HISTORY_LINES);
    history(history_.get(), &event, H_SETUNIQUE, 1);
    history_file_ = history_file();
    if (!history_file_.empty()) {
        history(history_.get(), &event, H_LOAD, history_file_.c_str());
    }
    el_set(editor, EL_HIST, history, history_.get());
    bind(
        "pm-complete", "complete a word", [](EditLine *e, int) { return of(e).complete(); }, "\t");
    bind(
        "pm-help", "list what may follow", [](EditLine *e, int) { return of(e).list_what_follows(); }, "?");
    bind(
        "pm-cancel", "drop the line",
        [](EditLine *e, int) -> unsigned char {
            std::fputs("^C\n", stdout);
            const LineInfo *const line = el_line(e);
            el_cursor(e, static_cast<int>(line->lastchar - line->cursor));
            el_deletestr(e, static_cast<int>(line->lastchar - line->buffer));
            return CC_REDISPLAY;
        },
        "^C");
    el_set(editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
    el_set(editor, EL_SETTY, "-d", "-isig", nullptr);  // Ctrl-C is a key while a line is typed
    return true;
}

// False for a line that ends the shell.
bool shell::obey(const std::string &line) {
    line_words given = split_line(line);
    if (given.quote != '\0') {
        std::fprintf(stderr, "perf-measure: a %c is missing\n", given.quote);
        return true;
    }
    if (given.in_word) {
        given.words.push_back(given.last);
    }
    if (given.words.empty()) {
        return true;
    }
    HistEvent event;
    history(history_.get(), &event, H_ENTER, line.c_str());
    if (given.words.size() == 1 && (given.words.front() == "exit" || given.words.front() == "quit")) {
        return false;
    }
    status_ = run_(given.words);
    return true;
}

int shell::loop() {
    if (!start()) {
        std::fputs("perf-measure: the terminal cannot be used\n", stderr);
        return 1;
    }
    int length = 0;
    for (;;) {
        // Keys that come as soon as the prompt is there, Ctrl-D above all, are the editor's already.
        el_set(editor_.get(), EL_PREP_TERM, 1);
        const char *const text = el_gets(editor_.get(), &length);
        if (text == nullptr) {
            break;
        }
        std::string line(text, static_cast<std::size_t>(std::max(length, 0)));
        while (line.ends_with('\n') || line.ends_with('\r')) {
            line.pop_back();
        }
        if (!obey(line)) {
            break;
        }
    }
    HistEvent event;
    if (!history_file_.empty()) {
        history(history_.get(), &event, H_SAVE, history_file_.c_str());
    }
    return status_;
}

}  // namespace

int run_shell(const command_runner &run, const name_lister &names) { return shell(run, names).loop(); }

}  // namespace perf_measure
