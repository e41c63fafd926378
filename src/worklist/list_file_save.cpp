// SPDX-License-Identifier: MIT
#include "worklist/list_file_blocks_internal.h"
#include "worklist/umbrix_list.h"

#include <fstream>

namespace umbrixlib::detail {

namespace {

template <std::size_t Size>
void write(std::ostream& stream, std::array<unsigned char, Size> const& block)
{
    stream.write(reinterpret_cast<char const*>(block.data()), Size);
}

void write(std::ostream& stream, std::string const& text)
{
    write(stream, to_block(static_cast<std::uint32_t>(text.size())));
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
}

void write(std::ostream& stream, n_layer const& layer)
{
    write(stream, layer.filename);
    write(stream, layer.name);
    write(stream, to_block(layer));
}

void write(std::ostream& stream, umbrix_node const& item)
{
    umbrix_data const& data = item;
    write(stream, to_block(data));
    write(stream, item.filename);
    write(stream, item.search_str);
    write(stream, to_block(static_cast<std::uint32_t>(item.layers.count)));
    for (auto const* each = item.layers.head; each != nullptr; each = each->next) {
        write(stream, each->data);
    }
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

bool umbrix_list::save_list(std::string file)
{
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    if (!stream) {
        return false;
    }
    write(stream, to_block(std::bit_cast<std::uint32_t>(kListVersion)));
    write(stream, to_block(static_cast<std::uint32_t>(items.count)));
    for (auto const* each = items.head; each != nullptr; each = each->next) {
        write(stream, each->data);
    }
    return true;
}

} // namespace umbrix_v0
