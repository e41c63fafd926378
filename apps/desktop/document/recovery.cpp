// SPDX-License-Identifier: MIT
#include "document/recovery.h"

#include "toolkit/base/failure.h"
#include "toolkit/files/stale_temporaries.h"
#include "toolkit/files/text_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>
#include <utility>

namespace umbrix_desktop {

namespace {

namespace fs = std::filesystem;
using toolkit::Failure;
using toolkit::Fault;
using toolkit::TemporaryLock;

constexpr std::string_view kPrefix = "unsaved-";
constexpr std::string_view kCopy = ".toml";
constexpr std::string_view kLock = ".lock";

fs::path lock_of(fs::path const& copy)
{
    return fs::path(copy).replace_extension(kLock);
}

/// Whether the process that made @p copy is gone.
bool is_left(fs::path const& copy)
{
    int const descriptor = open(lock_of(copy).c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    if (descriptor < 0) {
        return errno == ENOENT;
    }
    return TemporaryLock(descriptor).hold_if_free(lock_of(copy));
}

/// Whether @p file is what a process left that had nothing unsaved.
bool is_lone_lock(fs::path const& file)
{
    std::error_code error;
    return file.filename().string().starts_with(kPrefix) && file.extension() == kLock &&
           !fs::exists(fs::path(file).replace_extension(kCopy), error) && is_left(file);
}

LeftDocument left_document(fs::path const& file)
{
    LeftDocument left{file, std::nullopt, ""};
    try {
        left.project = read_project(file);
    } catch (Failure const& failure) {
        left.failure = fmt::format("{}: {}", failure.subject, failure.what());
    }
    return left;
}

} // namespace

RecoveryCopy::RecoveryCopy(fs::path folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    while (!lock_) {
        std::string name = (folder / fmt::format("{}XXXXXX{}", kPrefix, kLock)).string();
        int const descriptor = mkostemps(name.data(), static_cast<int>(kLock.size()), O_CLOEXEC);
        if (descriptor < 0) {
            throw Failure(Fault::kFolderTakesNoFile, folder.string(),
                          fmt::format("it takes no new file: {}", std::strerror(errno)));
        }
        auto lock = std::make_unique<TemporaryLock>(descriptor);
        if (lock->hold(name)) {
            lock_ = std::move(lock);
            lock_file_ = name;
        }
    }
    file_ = fs::path(lock_file_).replace_extension(kCopy);
}

RecoveryCopy::~RecoveryCopy()
{
    remove();
    unlink(lock_file_.c_str());
}

void RecoveryCopy::write(Project const& project)
{
    toolkit::write_text_file(file_, project_text(project), true);
}

void RecoveryCopy::remove()
{
    unlink(file_.c_str());
}

std::vector<LeftDocument> left_documents(fs::path const& folder)
{
    std::vector<std::pair<fs::file_time_type, fs::path>> files;
    std::error_code error;
    for (fs::directory_iterator each(folder, error), end; !error && each != end; each.increment(error)) {
        fs::path const file = each->path();
        bool const is_copy = file.filename().string().starts_with(kPrefix) && file.extension() == kCopy;
        if (is_copy && is_left(file)) {
            std::error_code gone;
            files.emplace_back(fs::last_write_time(file, gone), file);
        } else if (is_lone_lock(file)) {
            unlink(file.c_str());
        }
    }
    std::ranges::sort(files, std::greater());
    std::vector<LeftDocument> left;
    for (auto const& [time, file] : files) {
        left.push_back(left_document(file));
    }
    toolkit::remove_stale_outputs(folder);
    return left;
}

void remove_left(fs::path const& file)
{
    unlink(file.c_str());
    unlink(lock_of(file).c_str());
}

} // namespace umbrix_desktop
