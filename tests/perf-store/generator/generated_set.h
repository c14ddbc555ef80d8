// SPDX-License-Identifier: Apache-2.0
// A synthetic data set, read back into records.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "perf-store/datasets/json_document.h"
#include "perf-store/datasets/member_path.h"
#include "perf-store/datasets/record_reader.h"
#include "perf-store/generator/generate.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"

// The data set of some options.
inline std::string generate(const perf_store::gen_options &options) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(std::tmpfile(), &std::fclose);
    if (file == nullptr) {
        throw std::runtime_error("no temporary file");
    }
    perf_store::output_file out(::fileno(file.get()), "a temporary file");
    if (const pm_error error = perf_store::generate(options, &out)) {
        throw std::runtime_error(error.text());
    }
    std::string text(static_cast<std::size_t>(::lseek(::fileno(file.get()), 0, SEEK_END)), '\0');
    std::rewind(file.get());
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
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
        require(document_.read(line, &length));
        if (length == 0) {
            throw std::runtime_error("an empty line");
        }
        const json_node *kind = document_.inside(document_.root());
        kinds_.emplace_back(kind->text);
        if (kinds_.back() == "item") {
            read_item(*document_.after(*kind));
        } else if (kinds_.back() == "node") {
            const json_node *id = document_.inside(*document_.after(*kind));
            nodes_.push_back(number(*document_.after(*id)));
        }
    }

    void read_item(const json_node &object) {
        generated_item item;
        const json_node *name = document_.inside(object);
        for (std::uint32_t i = 0; i < object.count; ++i) {
            const json_node *value = document_.after(*name);
            if (name->text == "node") {
                item.node = number(*value);
            } else if (name->text == "path") {
                item.path = value->text;
            } else if (name->text == "type") {
                item.type = value->text;
            } else if (name->text == "record") {
                require(reader_.read(*value, type_named(item.type), &item.record));
            }
            name = document_.after(*value);
        }
        items_.push_back(item);
    }

    static void require(const pm_error &error) {
        if (error) {
            throw std::runtime_error(error.text());
        }
    }

    std::uint32_t number(const json_node &value) {
        std::uint64_t result = 0;
        require(reader_.read_unsigned(value, ~0U, "N", &result));
        return static_cast<std::uint32_t>(result);
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
