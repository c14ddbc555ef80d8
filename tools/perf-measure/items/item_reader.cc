// SPDX-License-Identifier: Apache-2.0
// Reading items over the database's client.
#include "perf-measure/items/item_reader.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "front/compose.h"
#include "front/dispatch.h"
#include "front/generic_show.h"
#include "front/heap_block.h"
#include "front/walker.h"
#include "platform/inventory.h"
#include "platform/local/filters/item_filter.h"
#include "platform/opstore.h"

namespace perf_measure {

namespace {

// "main" of "/oper/perf_meas/main/".
std::string_view root_word(std::string_view root) {
    root.remove_suffix(1);
    return root.substr(root.rfind('/') + 1);
}

// A bound branch.
class branch {
public:
    ~branch() { _opstore_unbind(handle_); }
    branch() = default;
    branch(const branch &) = delete;
    branch &operator=(const branch &) = delete;

    [[nodiscard]] errcode bind(const char *root, std::uint32_t node) {
        pm_show_path path;
        pm_snprintf(path, sizeof path, "%snode/%x/", root, node);
        return _opstore_bind(&handle_, path, OPSTORE_BIND_READ);
    }
    [[nodiscard]] opstore_handle handle() const { return handle_; }

private:
    opstore_handle handle_ = nullptr;
};

// A batch of a listing, freed as it should be.
struct batch_deleter {
    void operator()(opstore_list *batch) const { static_cast<void>(opstore_datalist_free(batch)); }
};
using batch_block = std::unique_ptr<opstore_list, batch_deleter>;

class reader {
public:
    reader(const pm_show_request &request, const item_visit &visit)
        : request_(request),
          visit_(visit),
          root_(root_word(request.base_path)),
          record_(std::calloc(1, request.decoded_size)) {}

    // Reads one node; its failure, or success. False in `more()` afterwards: the visitor has enough.
    [[nodiscard]] errcode read_node(std::uint32_t node) {
        if (record_ == nullptr) {
            return ERRCODE_NO_MEMORY;
        }
        branch bound;
        const errcode code = bound.bind(request_.base_path, node);
        if (code != ERRCODE_SUCCESS) {
            return code;
        }
        node_ = node;
        return request_.single_item != 0 ? read_single(bound) : read_listing(bound);
    }

    [[nodiscard]] bool more() const { return more_; }

private:
    [[nodiscard]] errcode visit(std::string_view path, const void *data, std::uint32_t length) {
        const errcode code = parcel_decode(data, length, record_.get(), request_.parcel_desc);
        if (code != ERRCODE_SUCCESS) {
            return code;
        }
        more_ = visit_({node_, root_, path, request_.parcel_desc, record_.get()});
        parcel_free_indirections(record_.get(), request_.parcel_desc);
        return ERRCODE_SUCCESS;
    }

    [[nodiscard]] errcode read_single(const branch &bound) {
        std::uint32_t type = 0;
        std::uint32_t length = 0;
        void *fetched = nullptr;
        const item_filter::selection selection = item_filter::select(request_.item_path);
        if (selection.first_match) {  // its path is known by listing only
            return read_first(bound, selection.path);
        }
        const errcode code = opstore_item_get(bound.handle(), request_.item_path, &type, &fetched, &length, 0);
        const pm_heap_block<void> data(fetched);
        return code == ERRCODE_SUCCESS ? visit(selection.path, data.get(), length) : code;
    }

    [[nodiscard]] errcode read_listing(const branch &bound) {
        std::string prefix = item_filter::select(request_.item_path).path;
        prefix += prefix.ends_with('/') ? "" : "/";
        char key[OPSTORE_KEY_SIZE] = "";
        std::uint32_t flags = 0;
        for (bool is_last = false; !is_last && more_;) {
            if (const errcode code = read_batch(bound, prefix, key, flags, request_.batch_size, &is_last);
                code != ERRCODE_SUCCESS) {
                return code;
            }
            flags = OPSTORE_LIST_AFTER;
        }
        return ERRCODE_SUCCESS;
    }

    // The first item of a listing that matches.
    [[nodiscard]] errcode read_first(const branch &bound, const std::string &listed) {
        const std::string_view whole = request_.item_path;
        const std::string key_path(whole.substr(0, whole.rfind('/')));
        char key[OPSTORE_KEY_SIZE] = "";
        bool is_last = false;
        const std::string path = item_filter::select(key_path).path;
        const errcode code = read_batch(bound, path.empty() ? listed : path, key, 0, 1, &is_last, key_path.c_str());
        return code == ERRCODE_SUCCESS && key[0] == '\0' ? ERRCODE_NOT_FOUND : code;
    }

    // Reads a batch and leaves its last key in `key`; `*is_last` when no other follows.
    [[nodiscard]] errcode read_batch(const branch &bound, const std::string &prefix, char (&key)[OPSTORE_KEY_SIZE],
                                     std::uint32_t flags, std::uint32_t wanted, bool *is_last,
                                     const char *item_path = nullptr) {
        std::uint32_t count = wanted;
        opstore_list *listed = nullptr;
        errcode code = opstore_datalist(bound.handle(), item_path != nullptr ? item_path : request_.item_path, key,
                                        &count, &listed, flags);
        if (code != ERRCODE_SUCCESS) {
            return code;
        }
        const batch_block batch(listed);
        std::uint32_t more = 0;
        code = opstore_datalist_get_more_flag(batch.get(), &more);
        *is_last = more == 0 || count == 0;
        const char *name = nullptr;
        std::string path;
        for (std::uint32_t i = 0; code == ERRCODE_SUCCESS && i < count && more_; ++i) {
            std::uint32_t type = 0;
            std::uint32_t length = 0;
            std::uint32_t extra = 0;
            const void *data = nullptr;
            code = opstore_datalist_next(batch.get(), &name, &type, &data, &length, &extra);
            if (code == ERRCODE_SUCCESS) {
                path.assign(prefix).append(name);
                code = visit(path, data, length);
            }
        }
        if (name != nullptr) {
            const std::size_t kept = std::min(std::strlen(name), sizeof key - 1);
            std::memcpy(key, name, kept);
            key[kept] = '\0';
        }
        return code;
    }

    const pm_show_request &request_;
    const item_visit &visit_;
    std::string_view root_;
    pm_heap_block<void> record_;
    std::uint32_t node_ = NODEID_NONE;
    bool more_ = true;
};

// The request that pm_show_options make; false, with a failure, when there is none.
bool build_request(pm_show_request *request, pm_show_path &item_path, std::vector<node_failure> *failures) {
    const bool is_ready = pm_show_build_request(request, item_path) == pm_show_build::ready;
    if (!is_ready) {
        failures->push_back({NODEID_NONE, ERRCODE_INVALID_ARGUMENT, {}});
    }
    return is_ready;
}

void read_request(const pm_show_request &request, const item_visit &visit, std::vector<node_failure> *failures) {
    reader read(request, visit);
    const bool is_known = pm_show_visit_nodes([&](std::uint32_t node) {
        if (read.more()) {
            if (const errcode code = read.read_node(node); code != ERRCODE_SUCCESS) {
                failures->push_back({node, code, {}});
            }
        }
    });
    if (!is_known) {
        failures->push_back({NODEID_NONE, ERRCODE_NOT_FOUND, {}});
    }
}

}  // namespace

void read_items(const item_visit &visit, std::vector<node_failure> *failures) {
    pm_show_request request{};
    pm_show_path item_path;
    if (build_request(&request, item_path, failures)) {
        read_request(request, visit, failures);
    }
}

void read_companions(const companion_items &which, const item_visit &visit, std::vector<node_failure> *failures) {
    pm_show_request request{};
    pm_show_path item_path;
    if (!build_request(&request, item_path, failures)) {
        return;
    }
    // Both paths end in '/', after which a filter's path has its own mark.
    std::string path = request.item_path;
    path.replace(0, path_of(which.asked).size() - 1, path_of(which.read), 0, path_of(which.read).size() - 1);
    request.item_path = path.c_str();
    request.parcel_desc = which.type;
    request.decoded_size = which.size;
    read_request(request, visit, failures);
}

}  // namespace perf_measure
