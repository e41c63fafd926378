// SPDX-License-Identifier: MIT
#include "umbrix/folder_batch_internal.h"

#include "boundary/folder_walk_internal.h"
#include "boundary/output_name_internal.h"

#include <atomic>

namespace umbrixlib::detail {

namespace {

/// Another thread sets the flag while it is read here.
bool is_set(bool* flag)
{
    return flag != nullptr && std::atomic_ref(*flag).load(std::memory_order_relaxed);
}

} // namespace

bool FolderBatch::run(std::function<void(std::string const& subfolder)> const& descend,
                      std::function<void(std::string const& name)> const& convert) const
{
    FolderVisitor visitor;
    visitor.stopped = [this] { return is_set(options.cancel); };
    visitor.subfolder = [&](std::string const& name, std::string const& subfolder) {
        *status = "Processing";
        *current = polled_folder(name);
        descend(subfolder);
    };
    visitor.file = convert;
    return walk_folder(path, search, options.recurse, visitor);
}

FolderBatch::File FolderBatch::begin(std::string const& name) const
{
    *current = name;
    File file{joined(path, name), output_name(path, name, "_Umbrix", TagSearch::kFileName)};
    *progress = 0;
    return file;
}

} // namespace umbrixlib::detail
