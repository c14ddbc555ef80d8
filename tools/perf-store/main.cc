// perf-store: puts data sets into the store of the local platform and gets them out.
#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>

#include "commands.h"
#include "dataset_names.h"
#include "value_text.h"

namespace {

using namespace perf_store;

constexpr char DESCRIPTION[] =
    "Puts data sets into the store of perf-show's local platform and gets them out.\n"
    "The environment variable OPSTORE_URL names the store as lmdb:FOLDER.";

// Values of the options.
struct arguments {
    std::vector<std::string> files;
    bool replace = false;
    std::string root;
    std::string node;
    std::string path;
    std::string type;
};

void add_load(CLI::App *app, arguments *given) {
    CLI::App *load = app->add_subcommand("load", "Put data sets into the store, all or nothing");
    load->add_option("FILE", given->files, "Data sets; - is standard input")->required();
    load->add_flag("--replace", given->replace, "Empty the store first");
    load->footer("Example: perf-store load --replace chassis.ndjson");
}

void add_dump(CLI::App *app, arguments *given) {
    CLI::App *dump = app->add_subcommand("dump", "Write the store, or a part of it, as a data set");
    dump->add_option("--root", given->root, "Items of one root only: main, resp, rx or chkpt")
        ->check(CLI::IsMember({"main", "resp", "rx", "chkpt"}));
    dump->add_option("--node", given->node, "Items of one node only, by its id")->check([](const std::string &text) {
        std::uint64_t value = 0;
        bool negative = false;
        const bool good = read_integer(text, &value, &negative) == number_result::ok && !negative && value <= 0xFFFFFFFF;
        return good ? std::string() : text + " is not a node id";
    });
    dump->add_option("--path", given->path, "Items whose path begins so only");
    dump->footer("Example: perf-store dump --root main --node 0x100 --path srpolicy/ > policies.ndjson");
}

void add_schema(CLI::App *app, arguments *given) {
    CLI::App *schema = app->add_subcommand("schema", "Print a record type's schema, size and field offsets");
    schema->add_option("TYPE", given->type, "A record type, as perf-store types lists them")->required();
    schema->footer("Example: perf-store schema pm_summary_parcel");
}

dump_filter filter_of(const arguments &given) {
    dump_filter filter;
    if (!given.root.empty()) {
        filter.root = find_word(store::ROOTS, given.root)->id;
    }
    if (!given.node.empty()) {
        std::uint64_t value = 0;
        bool negative = false;
        static_cast<void>(read_integer(given.node, &value, &negative));
        filter.node = static_cast<std::uint32_t>(value);
    }
    filter.path_prefix = given.path;
    return filter;
}

int run(int argc, char **argv) {
    CLI::App app(DESCRIPTION, "perf-store");
    arguments given;
    app.set_version_flag("--version", std::string("perf-store ") + PERF_STORE_VERSION);
    app.require_subcommand(1);
    add_load(&app, &given);
    add_dump(&app, &given);
    app.add_subcommand("stat", "Items and bytes of each root and node")->footer("Example: perf-store stat");
    app.add_subcommand("types", "List the record types: name, version, size")->footer("Example: perf-store types");
    add_schema(&app, &given);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &asked) {  // --help or --version
        return app.exit(asked);
    } catch (const CLI::ParseError &wrong) {
        app.exit(wrong);
        return EXIT_USAGE;
    }
    if (app.got_subcommand("load")) {
        return run_load(given.files, given.replace);
    }
    if (app.got_subcommand("dump")) {
        return run_dump(filter_of(given));
    }
    if (app.got_subcommand("stat")) {
        return run_stat();
    }
    return app.got_subcommand("types") ? run_types() : run_schema(given.type);
}

}  // namespace

int main(int argc, char **argv) {
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const int status = run(argc, argv);
        return std::fflush(stdout) == 0 || errno == EPIPE ? status : report("standard output cannot be written");
    } catch (const std::exception &problem) {
        return report(problem.what());
    }
}
