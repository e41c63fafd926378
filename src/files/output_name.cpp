// SPDX-License-Identifier: MIT
#include "files/output_name_internal.h"

#include "files/folder_walk_internal.h"
#include "foundation/text.h"

#include <algorithm>
#include <iterator>

namespace umbrixlib::detail {

namespace {

constexpr char const* kTags[] = {"_N.", "_NORMAL.", "_H.", "_HEIGHT."};

bool has_tag(std::string text)
{
    toupper(text.data());
    return std::any_of(std::begin(kTags), std::end(kTags),
                       [&](char const* tag) { return text.find(tag) != std::string::npos; });
}

void erase_tag(std::string& path)
{
    std::size_t const underscore = path.rfind('_');
    std::size_t const dot = path.rfind('.');
    if (underscore < dot) {
        path.erase(underscore, dot - underscore);
    }
}

} // namespace

std::string output_name(std::string const& folder, std::string const& name, char const* suffix,
                        TagSearch search)
{
    std::string output = joined(folder, name);
    if (has_tag(search == TagSearch::kWholePath ? output : name)) {
        erase_tag(output);
    }
    output.insert(output.rfind('.'), suffix);
    return output;
}

} // namespace umbrixlib::detail
