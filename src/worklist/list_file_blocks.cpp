// SPDX-License-Identifier: MIT
#include "worklist/list_file_blocks_internal.h"

#include <algorithm>

namespace umbrixlib::detail {

namespace {

template <typename T, std::size_t Size>
void put(std::array<unsigned char, Size>& block, std::size_t offset, T value)
{
    if constexpr (sizeof(T) == 1) {
        block[offset] = static_cast<unsigned char>(value);
    } else {
        NumberBlock const number = to_block(std::bit_cast<std::uint32_t>(value));
        std::copy(number.begin(), number.end(), block.begin() + static_cast<std::ptrdiff_t>(offset));
    }
}

template <std::size_t Size, typename T>
void get(std::array<unsigned char, Size> const& block, std::size_t offset, T& value)
{
    if constexpr (std::is_same_v<T, bool>) {
        value = block[offset] != 0;
    } else if constexpr (sizeof(T) == 1) {
        value = block[offset];
    } else {
        NumberBlock number;
        std::copy_n(block.begin() + static_cast<std::ptrdiff_t>(offset), number.size(), number.begin());
        value = std::bit_cast<T>(from_block(number));
    }
}

} // namespace

// Each field lies in its block at its own width.
#define UMBRIX_FITS(type, name, offset)                                                                      \
    static_assert((sizeof(type) == 1 || (sizeof(type) == 4 && (offset) % 4 == 0)) &&                         \
                  (offset) + sizeof(type) <= kBlockSize);
namespace data_block {
constexpr std::size_t kBlockSize = sizeof(DataBlock);
UMBRIX_DATA_FIELDS(UMBRIX_FITS, UMBRIX_FITS)
} // namespace data_block
namespace layer_block {
constexpr std::size_t kBlockSize = sizeof(LayerBlock);
UMBRIX_LAYER_FIELDS(UMBRIX_FITS)
} // namespace layer_block
#undef UMBRIX_FITS

#define UMBRIX_PUT(type, name, offset) put(block, offset, record.name);
#define UMBRIX_GET(type, name, offset) get(block, offset, record.name);

DataBlock to_block(umbrix_data const& record)
{
    DataBlock block{};
    UMBRIX_DATA_FIELDS(UMBRIX_PUT, UMBRIX_PUT)
    return block;
}

LayerBlock to_block(n_layer const& record)
{
    LayerBlock block{};
    UMBRIX_LAYER_FIELDS(UMBRIX_PUT)
    return block;
}

void from_block(DataBlock const& block, umbrix_data& record)
{
    UMBRIX_DATA_FIELDS(UMBRIX_GET, UMBRIX_GET)
}

void from_block(LayerBlock const& block, n_layer& record)
{
    UMBRIX_LAYER_FIELDS(UMBRIX_GET)
}

#undef UMBRIX_PUT
#undef UMBRIX_GET

} // namespace umbrixlib::detail
