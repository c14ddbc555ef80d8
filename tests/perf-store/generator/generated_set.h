// A data set that run_gen wrote, read back into records.
#pragma once

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "perf-store/datasets/json_document.h"
#include "perf-store/datasets/member_path.h"
#include "perf-store/datasets/record_reader.h"
#include "perf-store/datasets/record_shape.h"
#include "perf-store/generator/gen.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"

// What run_gen writes to standard output; its exit status in `*status`.
inline std::string generate(const perf_store::gen_options &options, int *status = nullptr) {
    std::fflush(stdout);
    std::FILE *const file = std::tmpfile();
    const int saved = ::dup(STDOUT_FILENO);
    if (file == nullptr || saved < 0 || ::dup2(::fileno(file), STDOUT_FILENO) < 0) {
        throw std::runtime_error("standard output cannot be caught");
    }
    const int result = perf_store::run_gen(options);
    ::dup2(saved, STDOUT_FILENO);
    ::close(saved);
    if (status != nullptr) {
        *status = result;
    }
    std::string text(static_cast<std::size_t>(::lseek(::fileno(file), 0, SEEK_END)), '\0');
    std::rewind(file);
    text.resize(std::fread(text.data(), 1, text.size(), file));
    std::fclose(file);
    return text;
}

struct generated_item {
    std::uint32_t node = 0;
    std::string path;
    std::string type;
    const void *record = nullptr;
};

class generated_set {
public:
    // Reads every line; throws for one that is not as a data set must be.
    explicit generated_set(const perf_store::gen_options &options) : text_(generate(options)) {
        std::size_t at = 0;
        while (at < text_.size()) {
            const std::size_t end = text_.find('\n', at);
            text_.at(end) = '\0';
            read_line(text_.data() + at);
            at = end + 1;
        }
    }

    [[nodiscard]] const std::vector<std::string> &kinds() const { return kinds_; }  // "dataset", "node", ...
    [[nodiscard]] const std::vector<std::uint32_t> &nodes() const { return nodes_; }
    [[nodiscard]] const std::vector<generated_item> &items() const { return items_; }

    [[nodiscard]] std::size_t count(std::string_view prefix) const {
        std::size_t found = 0;
        for (const generated_item &item : items_) {
            found += item.path.starts_with(prefix) ? 1 : 0;
        }
        return found;
    }

    // Calls visit(item, record) for each item of a path prefix; its type is Record.
    template <class Record, class Visit>
    void each(std::string_view prefix, Visit visit) const {
        for (const generated_item &item : items_) {
            if (item.path.starts_with(prefix)) {
                visit(item, *static_cast<const Record *>(item.record));
            }
        }
    }

    [[nodiscard]] const pm_summary_parcel &summary(std::uint32_t node) const {
        for (const generated_item &item : items_) {
            if (item.node == node && item.path == "summary") {
                return *static_cast<const pm_summary_parcel *>(item.record);
            }
        }
        throw std::runtime_error("no summary");
    }

private:
    using json_node = perf_store::json_node;

    void read_line(const char *line) {
        std::size_t length = 0;
        const char *problem = nullptr;
        if (!document_.read(line, &length, &problem) || length == 0) {
            throw std::runtime_error(problem != nullptr ? problem : "an empty line");
        }
        const json_node *kind = document_.inside(document_.root());
        kinds_.emplace_back(kind->text);
        if (kinds_.back() == "item") {
            read_item(*document_.behind(*kind));
        } else if (kinds_.back() == "node") {
            const json_node *id = document_.inside(*document_.behind(*kind));
            nodes_.push_back(static_cast<std::uint32_t>(reader_.read_unsigned(*document_.behind(*id), ~0U, "N")));
        }
    }

    void read_item(const json_node &object) {
        generated_item item;
        const json_node *name = document_.inside(object);
        for (std::uint32_t i = 0; i < object.count; ++i) {
            const json_node *value = document_.behind(*name);
            if (name->text == "node") {
                item.node = static_cast<std::uint32_t>(reader_.read_unsigned(*value, ~0U, "N"));
            } else if (name->text == "path") {
                item.path = value->text;
            } else if (name->text == "type") {
                item.type = value->text;
            } else if (name->text == "record") {
                item.record = reader_.read(*value, perf_store::shape_of(type_named(item.type)).record());
            }
            name = document_.behind(*value);
        }
        items_.push_back(item);
    }

    static const parcel_descriptor *type_named(const std::string &name) {
        const parcel_descriptor *type = pm_find_descriptor(name);
        return type != nullptr ? type : throw std::runtime_error("unknown type " + name);
    }

    std::string text_;
    perf_store::json_document document_;
    perf_store::member_path path_;
    perf_store::record_memory memory_;
    perf_store::record_reader reader_{&document_, &path_, &memory_};
    std::vector<std::string> kinds_;
    std::vector<std::uint32_t> nodes_;
    std::vector<generated_item> items_;
};
