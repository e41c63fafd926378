// SPDX-License-Identifier: MIT
#include "work/decoded_sources.h"

#include "toolkit/base/failure.h"
#include "toolkit/files/preflight.h"
#include "toolkit/tasks/decode/decoded_samples.h"
#include "toolkit/workers/run_one.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace umbrix_desktop {

namespace {

namespace fs = std::filesystem;

constexpr double kMostTexels = 268435456; // 2^28, 16384 x 16384, as for the command line

/// An empty file of this user alone, gone with the object.
class PrivateFile {
public:
    PrivateFile()
    {
        std::error_code error;
        fs::path const folder = fs::temp_directory_path(error);
        name_ = (folder / "umbrix-XXXXXX").string();
        int const descriptor = error ? -1 : mkstemp(name_.data());
        if (descriptor < 0) {
            throw toolkit::Failure(toolkit::Fault::kFolderTakesNoFile, folder.string(),
                                   std::string("it takes no new file: ") + std::strerror(errno));
        }
        close(descriptor);
    }
    ~PrivateFile() { unlink(name_.c_str()); }
    PrivateFile(PrivateFile const&) = delete;
    PrivateFile& operator=(PrivateFile const&) = delete;

    std::string const& name() const { return name_; }

private:
    std::string name_;
};

} // namespace

Decoded DecodedSources::get(std::string const& file, toolkit::Observer& observer, toolkit::Stop const& stop)
{
    if (auto const known = pictures_.find(file); known != pictures_.end()) {
        return known->second;
    }
    toolkit::check_input(file);
    PrivateFile const samples;
    toolkit::DecodeJob const job{{file, {samples.name(), file}, kMostTexels}};
    auto const report = toolkit::run_one(job, observer, stop);
    auto const picture = std::make_shared<toolkit::DecodedImage const>(toolkit::decoded_samples(job, report));
    pictures_[file] = picture;
    return picture;
}

void DecodedSources::keep(std::string const& one, std::string const& other)
{
    std::erase_if(pictures_, [&](auto const& each) { return each.first != one && each.first != other; });
}

} // namespace umbrix_desktop
