// SPDX-License-Identifier: MIT
#include "boundary/message_box.h"
#include "worklist/list_file_blocks_internal.h"
#include "worklist/umbrix_list.h"

#include <algorithm>
#include <fstream>

namespace umbrixlib::detail {

namespace {

/// Reads a file part by part. A part that the end of the file cuts off leaves its variable as it is, and so
/// do all parts behind it.
class ListReader {
public:
    explicit ListReader(std::istream& stream) : stream_(stream)
    {
        stream.seekg(0, std::ios::end);
        left_ = stream.tellg();
        stream.seekg(0);
    }

    template <std::size_t Size>
    bool read(std::array<unsigned char, Size>& block)
    {
        return read(reinterpret_cast<char*>(block.data()), Size);
    }

    bool read(std::uint32_t& bits)
    {
        NumberBlock block{};
        bool const there = read(block);
        bits = there ? from_block(block) : bits;
        return there;
    }

    /// A length that is negative or beyond the end makes the file end at it.
    ///
    /// Contract: a text that the end of the file cuts in the middle is left out whole, so a job keeps its
    /// default; the characters that are there would be expected. Test:
    /// UmbrixListDamage.ATextCutInTheMiddleIsLeftOut
    void read(std::string& text)
    {
        std::uint32_t length = 0;
        if (!read(length) || !has(static_cast<std::int32_t>(length))) {
            return;
        }
        std::string characters(length, '\0');
        if (read(characters.data(), static_cast<std::int32_t>(length))) {
            text.assign(characters, 0, characters.find('\0'));
        }
    }

    /// How many records to make, each of which takes @p least_bytes at least.
    ///
    /// Contract: the number is taken at its word, also where the file ends before: what is missing holds
    /// default values. As many records as are there would be expected. Test:
    /// UmbrixListDamage.ACountBeyondTheFileIsTakenAtItsWord
    ///
    /// The word of a hostile file is limited: it gets `kMostBeyondTheFile` records or as many as the rest of
    /// the file could hold. 100,000 jobs take 40 megabytes, the largest number would take 700 gigabytes.
    int count(std::size_t least_bytes)
    {
        constexpr std::streamoff kMostBeyondTheFile = 100'000;
        std::uint32_t number = 0;
        read(number);
        std::streamoff const most =
            std::max(kMostBeyondTheFile, left_ / static_cast<std::streamoff>(least_bytes));
        return static_cast<int>(std::clamp<std::streamoff>(static_cast<std::int32_t>(number), 0, most));
    }

private:
    bool has(std::streamoff size)
    {
        if (size < 0 || size > left_) {
            left_ = kEnded;
        }
        return left_ != kEnded;
    }

    bool read(char* to, std::streamoff size)
    {
        if (!has(size) || !stream_.read(to, size)) {
            left_ = kEnded;
            return false;
        }
        left_ -= size;
        return true;
    }

    static constexpr std::streamoff kEnded = -1;

    std::istream& stream_;
    std::streamoff left_; ///< Bytes not read yet, or kEnded.
};

/// What a job holds where its file ends early.
void add_default_job(umbrix_list& list)
{
    list.add_item(calc_type_light, "NONE", "NONE.tga", false, false, false, false, 300, 1.0f, 10.0f, 1.0f,
                  120.0f, 120.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 255, 255, 0, 0, true, true, true, false,
                  false, 1.0f, 0.0f, 1.0f, 0, false, Modes_Projection);
}

n_layer read_layer(ListReader& reader)
{
    n_layer layer;
    reader.read(layer.filename);
    reader.read(layer.name);
    LayerBlock block;
    if (reader.read(block)) {
        from_block(block, layer);
    }
    return layer;
}

void read_job(ListReader& reader, umbrix_node& job)
{
    DataBlock block;
    if (reader.read(block)) {
        from_block(block, job);
    }
    reader.read(job.filename);
    reader.read(job.search_str);
    int const layers = reader.count(kLeastLayerBytes);
    for (int i = 0; i < layers; ++i) {
        job.layers.Add(read_layer(reader));
    }
    job.NLayers = new NLayers(&job.layers);
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

bool umbrix_list::load_list(std::string file)
{
    remove_all();
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        return false;
    }
    ListReader reader(stream);
    std::uint32_t version = 0;
    reader.read(version);
    if (std::bit_cast<float>(version) != kListVersion) {
        show_error_box("Incorrect File Version.");
        return false;
    }
    int const jobs = reader.count(kLeastJobBytes);
    for (int i = 0; i < jobs; ++i) {
        add_default_job(*this);
    }
    for (auto* each = items.head; each != nullptr; each = each->next) {
        read_job(reader, each->data);
    }
    return true;
}

} // namespace umbrix_v0
