// SPDX-License-Identifier: MIT
// Any bytes as a list file: reading them must do no harm, and what was read must come back from a saved list.
#include "list_walk.h"
#include "memory_file.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <umbrixlib.h>

namespace {

using umbrixlib::test::ListWalk;
using umbrixlib::test::MemoryFile;
using umbrixlib::test::ToldRecords;

void demand(bool holds, char const* what)
{
    if (!holds) {
        std::fprintf(stderr, "broken: %s\n", what);
        std::abort();
    }
}

std::string content_of(MemoryFile const& file)
{
    std::ifstream stream(file.name(), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// The list file that a front end would write after it has loaded @p bytes; empty if they were refused.
std::string resaved(void const* bytes, std::size_t size)
{
    static MemoryFile const file;
    file.set_content(bytes, size);
    umbrix_list list;
    if (!list.load_list(file.name())) {
        demand(list.get_size() == 0, "a refused file leaves an empty list");
        return {};
    }
    for (auto const* each = list.items.head; each != nullptr; each = each->next) {
        demand(each->data.NLayers != nullptr, "each job has a stack");
    }
    demand(list.save_list(file.name()), "a list can be saved");
    return content_of(file);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*words*/)
{
    set_message_handler([](char const*, char const*) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size)
{
    ToldRecords const told = ListWalk(bytes, size).told();
    if (told.jobs + told.layers > 1000) {
        return 0; // records beyond the end cost time and show nothing new
    }
    std::string const once = resaved(bytes, size);
    if (!once.empty()) {
        demand(resaved(once.data(), once.size()) == once, "a saved list comes back as it was");
    }
    return 0;
}
