// SPDX-License-Identifier: MIT
#include "files/folder_batch_internal.h"

#include "files/output_name_internal.h"

#include <atomic>

namespace umbrixlib::detail {

namespace {

/// Another thread sets the flag while it is read here.
bool is_set(bool* flag)
{
    return flag != nullptr && std::atomic_ref(*flag).load(std::memory_order_relaxed);
}

} // namespace

bool FolderBatch::run(std::string const& folder, Convert const& convert, FolderPath const* above) const
{
    FolderVisitor visitor;
    visitor.stopped = [this] { return is_set(options.cancel); };
    visitor.subfolder = [&](std::string const& name, std::string const& subfolder, FolderPath const& here) {
        *status = "Processing";
        *current = polled_folder(name);
        run(subfolder, convert, &here);
    };
    visitor.file = [&](std::string const& name) { convert(folder, name); };
    return walk_folder(folder, search, options.recurse, visitor, above);
}

FolderBatch::File FolderBatch::begin(std::string const& folder, std::string const& name) const
{
    *current = name;
    File file{joined(folder, name), output_name(folder, name, "_Umbrix", TagSearch::kFileName)};
    *progress = 0;
    return file;
}

} // namespace umbrixlib::detail
