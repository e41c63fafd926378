// SPDX-License-Identifier: MIT
#include "toolkit/files/text_file.h"

#include "toolkit/base/failure.h"
#include "toolkit/files/flush_to_disk.h"
#include "toolkit/files/preflight.h"
#include "toolkit/files/stale_temporaries.h"
#include "toolkit/files/temporary.h"

#include <fstream>

namespace umbrixlib::toolkit {

namespace fs = std::filesystem;

void write_text_file(fs::path const& target, std::string_view text, bool overwrite)
{
    fs::path const behind_links = check_output_file(target, overwrite);
    remove_leftovers_beside(target);
    OutputFile output(behind_links, target.extension().string());
    std::ofstream stream(output.temporary(), std::ios::binary);
    stream << text;
    stream.close();
    if (!stream || !flush_to_disk(output.temporary())) {
        throw Failure(Fault::kNotWritten, target.string(), "it could not be written");
    }
    output.move_into_place(overwrite);
}

} // namespace umbrixlib::toolkit
