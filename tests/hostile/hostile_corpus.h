// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The damaged pictures as files, for the tool.

#include "batch_folder.h"
#include "damaged_pictures.h"
#include "test_share.h"

namespace umbrixlib::test {

struct DamagedFile {
    std::string name;
    std::string format;
    std::size_t variant; ///< 0: unharmed.
};

class HostileCorpus : public BatchTest {
protected:
    /// Writes every @p step-th damaged picture of each format into @p place, a folder that is there, and
    /// gives their paths.
    std::vector<DamagedFile> write_corpus(std::size_t step, std::string const& place = "") const
    {
        std::vector<DamagedFile> files;
        for (DamagedPicture const& picture : damaged_pictures(step)) {
            std::string const name = place + picture.name();
            write(name, picture.bytes);
            files.push_back({name, picture.format, picture.variant});
        }
        return files;
    }
};

} // namespace umbrixlib::test
