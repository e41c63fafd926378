// SPDX-License-Identifier: MIT
#include "toolkit/lists/list_check.h"

#include "toolkit/base/failure.h"

#include <bit>
#include <cstdint>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

// The parts of a list file; all numbers have their lowest byte first.
constexpr float kVersion = 5.2f;
constexpr std::size_t kJobNumbers = 92;
constexpr std::size_t kLayerNumbers = 40;

class ListWalk {
public:
    ListWalk(std::string name, std::string_view bytes) : name_(std::move(name)), rest_(bytes) {}

    void walk()
    {
        if (rest_.size() < 8) {
            throw Failure(Fault::kNoList, name_, "it is too short for a work list");
        }
        check_version(std::bit_cast<float>(number()));
        std::int32_t const jobs = count("jobs", "the list");
        for (std::int32_t job = 1; job <= jobs; ++job) {
            place_ = fmt::format("job {} of {}", job, jobs);
            walk_job();
        }
        if (!rest_.empty()) {
            damaged(fmt::format("{} bytes follow its last job", rest_.size()));
        }
    }

private:
    [[noreturn]] void damaged(std::string const& how) const
    {
        throw Failure(Fault::kDamagedList, name_, "it is damaged: " + how);
    }

    void check_version(float version) const
    {
        if (version == kVersion) {
            return;
        }
        // A list of another version begins with a small number; what does not is something else.
        if (version >= 1.0f && version < 100.0f) {
            throw Failure(Fault::kListVersion, name_,
                          fmt::format("it is of version {:.3g}, and only {} can be read", version, kVersion));
        }
        throw Failure(Fault::kNoList, name_, "it is no work list");
    }

    void walk_job()
    {
        take(kJobNumbers);
        text("source");
        text("pattern");
        std::int32_t const layers = count("layers", place_);
        for (std::int32_t layer = 0; layer < layers; ++layer) {
            text("file of a layer");
            text("name of a layer");
            take(kLayerNumbers);
        }
    }

    std::string_view take(std::size_t size)
    {
        if (size > rest_.size()) {
            damaged("it ends within " + place_);
        }
        std::string_view const taken = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return taken;
    }

    std::uint32_t number()
    {
        std::uint32_t bits = 0;
        unsigned shift = 0;
        for (char const byte : take(4)) {
            bits |= static_cast<std::uint32_t>(static_cast<unsigned char>(byte)) << shift;
            shift += 8;
        }
        return bits;
    }

    std::int32_t count(char const* of_what, std::string const& where)
    {
        auto const found = static_cast<std::int32_t>(number());
        if (found < 0) {
            damaged(fmt::format("the number of {} of {} is {}", of_what, where, found));
        }
        return found;
    }

    void text(char const* what)
    {
        auto const length = static_cast<std::int32_t>(number());
        if (length < 0) {
            damaged(fmt::format("the length of the {} in {} is {}", what, place_, length));
        }
        if (take(static_cast<std::size_t>(length)).find('\0') != std::string_view::npos) {
            damaged(fmt::format("the {} in {} holds a zero byte", what, place_));
        }
    }

    std::string name_;
    std::string_view rest_;
    std::string place_ = "its head";
};

} // namespace

void check_list(fs::path const& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::string const bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    ListWalk(file.string(), bytes).walk();
}

} // namespace umbrixlib::toolkit
