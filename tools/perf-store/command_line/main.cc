// SPDX-License-Identifier: Apache-2.0
// perf-store: puts data sets into the store of the local platform and gets them out.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <exception>

#include "perf-store/command_line/commands.h"
#include "perf-store/datasets/dataset_names.h"
#include "perf-store/datasets/message_text.h"
#include "perf-store/datasets/nearest_word.h"
#include "perf-store/datasets/value_text.h"

namespace {

using namespace perf_store;

constexpr char DESCRIPTION[] =
    "Puts data sets into the store of perf-show's local platform and gets them out.\n"
    "The environment variable OPSTORE_URL names the store: lmdb:FOLDER, or on a server redis://HOST,\n"
    "rediss://HOST or redis+unix:///SOCKET.";

constexpr std::size_t LONGEST_REASON = 300;  // bytes of what the parser says

// Values of the options.
struct arguments {
    load_options load;
    std::string root;
    std::string node;
    bool damaged = false;
    std::string path;
    std::string type;
    std::string item;
    std::vector<std::string> items;
    bool recursive = false;
    gen_options synthetic;
    diff_options diff;
};

// A node id in any C notation.
std::string check_node(const std::string &text) {
    std::uint64_t value = 0;
    bool negative = false;
    const bool good = parse_integer(text, &value, &negative) == number_result::ok && !negative && value <= 0xFFFFFFFF;
    return good ? std::string() : on_one_line(excerpt(text)) + " is not a node id";
}

// The options that name a branch.
void add_branch(CLI::App *command, arguments *given, bool required) {
    command->add_option("--root", given->root, "Data root: main, resp, rx or chkpt")
        ->check(CLI::IsMember({"main", "resp", "rx", "chkpt"}))
        ->required(required);
    command->add_option("--node", given->node, "Node, by its id")->check(check_node)->required(required);
}

void add_load(CLI::App *app, arguments *given) {
    CLI::App *load = app->add_subcommand("load", "Put data sets into the store, all or nothing");
    load->add_option("FILE", given->load.files, "Data sets; - is standard input")->required();
    CLI::Option *replace = load->add_flag("--replace", given->load.replace, "Empty the store first");
    load->add_flag("--empty", given->load.empty, "Let it be replaced by sets without any item or node")->needs(replace);
    load->footer("Example: perf-store load --replace chassis.ndjson");
}

void add_dump(CLI::App *app, arguments *given) {
    CLI::App *dump = app->add_subcommand("dump", "Write the store, or a part of it, as a data set");
    add_branch(dump, given, false);
    dump->add_option("--path", given->path, "Items whose path begins so only");
    dump->add_flag("--damaged", given->damaged, "What is sound of a damaged store, and what is lost")
        ->excludes("--root")
        ->excludes("--node")
        ->excludes("--path");
    dump->footer("Example: perf-store dump --root main --node 0x100 --path srpolicy/ > policies.ndjson");
}

void add_diff(CLI::App *app, arguments *given) {
    diff_options &set = given->diff;
    CLI::App *diff = app->add_subcommand("diff", "Compare two data sets, or a data set and the store");
    diff->add_option("OLD", set.from, "A data set (- is standard input) or a store's URL")->required();
    diff->add_option("NEW", set.to, "Another; the store of OPSTORE_URL unless given");
    diff->add_option("--ignore", set.ignored, "Pass over a member, by its name or the end of its path; repeatable")
        ->type_name("MEMBER")
        ->allow_extra_args(false);
    CLI::Option *counters = diff->add_flag("--counters", set.counters, "Say how much counters grew, and how fast");
    diff->add_option("--interval", set.interval_seconds, "Seconds between the two, for the rates")
        ->check(CLI::PositiveNumber)
        ->needs(counters);
    diff->footer("Example: perf-store diff --ignore Timestamp before.ndjson after.ndjson");
}

void add_item_commands(CLI::App *app, arguments *given) {
    CLI::App *ls = app->add_subcommand("ls", "List items: root, node, record type, path");
    add_branch(ls, given, false);
    ls->add_option("PREFIX", given->path, "Items whose path begins so only");
    ls->footer("Example: perf-store ls --root main intf/");
    CLI::App *get = app->add_subcommand("get", "Print one item as JSON");
    add_branch(get, given, true);
    get->add_option("PATH", given->item, "Its path below the branch")->required();
    get->footer("Example: perf-store get --root main --node 0x100 summary");
    CLI::App *rm = app->add_subcommand("rm", "Remove items, all or none");
    add_branch(rm, given, true);
    rm->add_option("PATH", given->items, "Their paths below the branch")->required();
    rm->add_flag("-r,--recursive", given->recursive, "Remove what is below the paths too");
    rm->footer("Example: perf-store rm --root main --node 0x100 srpolicy/detail/policy-c10");
}

void add_gen(CLI::App *app, arguments *given) {
    gen_options &set = given->synthetic;
    const CLI::Range objects(std::uint32_t{0}, GEN_MAX_OBJECTS);
    CLI::App *gen = app->add_subcommand("gen", "Write a synthetic data set, the same for the same options");
    gen->add_option("--nodes", set.nodes, "Route processors and line cards")
        ->check(CLI::Range(GEN_MIN_NODES, GEN_MAX_NODES));
    gen->add_option("--interfaces", set.interfaces, "Interfaces")->check(objects);
    gen->add_option("--policies", set.policies, "SR policies")->check(objects);
    gen->add_option("--paths", set.paths, "Atomic paths of each segment list")
        ->check(CLI::Range(std::uint32_t{0}, GEN_MAX_PATHS));
    gen->add_option("--endpoints", set.endpoints, "IP endpoints")->check(objects);
    gen->add_option("--tunnels", set.tunnels, "RSVP-TE tunnels")->check(objects);
    gen->add_option("--seed", set.seed, "Another seed gives another set");
    gen->footer("Example: perf-store gen --policies 10000 | perf-store load --replace -");
}

void add_schema(CLI::App *app, arguments *given) {
    CLI::App *schema = app->add_subcommand("schema", "Print a record type's schema, size and field offsets");
    schema->add_option("TYPE", given->type, "A record type, as perf-store types lists them")->required();
    schema->footer("Example: perf-store schema pm_summary_parcel");
}

std::uint32_t node_of(const arguments &given) {
    std::uint64_t value = 0;
    bool negative = false;
    static_cast<void>(parse_integer(given.node, &value, &negative));  // checked by check_node
    return static_cast<std::uint32_t>(value);
}

item_selection selection_of(const arguments &given) {
    item_selection selection;
    if (!given.root.empty()) {
        selection.root = find_word(store::ROOTS, given.root)->id;
    }
    if (!given.node.empty()) {
        selection.node = node_of(given);
    }
    selection.path_prefix = given.path;
    return selection;
}

int report_usage(const std::string &wrong) {
    static_cast<void>(report(pm_error(on_one_line(wrong) + " (perf-store --help tells more)")));
    return EXIT_USAGE;
}

// A first word that is no command, which the parser does not name. Empty when there is none.
std::string unknown_command(const CLI::App &app, int argc, char **argv) {
    const std::string_view given = argc > 1 ? argv[1] : "-";
    const std::vector<const CLI::App *> known = app.get_subcommands([](const CLI::App *) { return true; });
    const auto name_of = [](const CLI::App *each) -> std::string_view { return each->get_name(); };
    if (given.starts_with('-') || std::ranges::find(known, given, name_of) != known.end()) {
        return {};
    }
    return "unknown command " + excerpt(given) + did_you_mean(given, known, name_of);
}

int run(int argc, char **argv) {
    CLI::App app(DESCRIPTION, "perf-store");
    arguments given;
    app.set_version_flag("--version", std::string("perf-store ") + PERF_STORE_VERSION);
    app.require_subcommand(1);
    add_load(&app, &given);
    add_dump(&app, &given);
    add_diff(&app, &given);
    add_item_commands(&app, &given);
    add_gen(&app, &given);
    app.add_subcommand("stat", "Items and bytes of each root and node")->footer("Example: perf-store stat");
    app.add_subcommand("verify", "Read everything and say what is wrong")->footer("Example: perf-store verify");
    app.add_subcommand("types", "List the record types: name, version, size")->footer("Example: perf-store types");
    add_schema(&app, &given);
    if (const std::string wrong = unknown_command(app, argc, argv); !wrong.empty()) {
        return report_usage(wrong);
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &asked) {  // --help or --version
        return app.exit(asked);
    } catch (const CLI::ParseError &error) {
        return report_usage(excerpt(error.what(), LONGEST_REASON));
    }
    if (app.got_subcommand("load")) {
        return run_load(given.load);
    }
    if (app.got_subcommand("dump")) {
        return given.damaged ? run_dump_damaged() : run_dump(selection_of(given));
    }
    if (app.got_subcommand("diff")) {
        return run_diff(given.diff);
    }
    if (app.got_subcommand("ls")) {
        return run_ls(selection_of(given));
    }
    if (app.got_subcommand("get")) {
        return run_get({*find_word(store::ROOTS, given.root), node_of(given), given.item});
    }
    if (app.got_subcommand("rm")) {
        return run_rm(*find_word(store::ROOTS, given.root), node_of(given), given.items, given.recursive);
    }
    if (app.got_subcommand("gen")) {
        return run_gen(given.synthetic);
    }
    if (app.got_subcommand("verify")) {
        return run_verify();
    }
    if (app.got_subcommand("stat")) {
        return run_stat();
    }
    return app.got_subcommand("types") ? run_types() : run_schema(given.type);
}

}  // namespace

int main(int argc, char **argv) {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);  // a file at its limit is a failed write
    try {
        const int status = run(argc, argv);
        const bool written = std::fflush(stdout) == 0 || errno == EPIPE;
        return written ? status : report(pm_error("standard output cannot be written"));
    } catch (const std::exception &error) {
        return report(pm_error(error.what()));
    }
}
