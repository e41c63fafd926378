// SPDX-License-Identifier: MIT
#include "boundary/platform.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstdio>
#include <ctime>
#include <dirent.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace umbrixlib::detail::platform {

namespace {

std::atomic<std::uint32_t> random_state = 1;

/// Of most machines. Where it is another, pages are small, and nothing else changes.
constexpr std::size_t kLargePage = std::size_t{2} << 20;

/// @p bytes rounded up to whole large pages.
constexpr std::size_t up_to_large_page(std::size_t bytes)
{
    return (bytes + kLargePage - 1) / kLargePage * kLargePage;
}

std::string on_one_line(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

bool same_letter(char a, char b)
{
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

/// Matches with one remembered star, so the time is at most the product of the two lengths.
bool matches(std::string_view name, std::string_view pattern)
{
    if (pattern == "*.*") {
        return true;
    }
    std::size_t at_name = 0;
    std::size_t at_pattern = 0;
    std::size_t after_star = std::string_view::npos;
    std::size_t star_name = 0;
    while (at_name < name.size()) {
        if (at_pattern < pattern.size() && pattern[at_pattern] == '*') {
            after_star = ++at_pattern;
            star_name = at_name;
        } else if (at_pattern < pattern.size() &&
                   (pattern[at_pattern] == '?' || same_letter(pattern[at_pattern], name[at_name]))) {
            ++at_pattern;
            ++at_name;
        } else if (after_star != std::string_view::npos) {
            at_pattern = after_star;
            at_name = ++star_name;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', at_pattern) == std::string_view::npos;
}

} // namespace

void show_message(char const* text, char const* title)
{
    std::fprintf(stderr, "%s: %s\n", title, on_one_line(text).c_str());
}

/// Bits 16 to 30 of the linear congruence x * 214013 + 2531011. The C library's own generator has 31 bits
/// here.
int random()
{
    std::uint32_t state = random_state.load(std::memory_order_relaxed);
    std::uint32_t next;
    do {
        next = state * 214013U + 2531011U;
    } while (!random_state.compare_exchange_weak(state, next, std::memory_order_relaxed));
    return static_cast<int>((next >> 16) & static_cast<std::uint32_t>(kRandomMax));
}

void seed_random(unsigned seed)
{
    random_state.store(seed, std::memory_order_relaxed);
}

std::int64_t seconds_since_epoch()
{
    return std::time(nullptr);
}

void prefer_large_pages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes)
{
#if defined(MADV_HUGEPAGE)
    auto const begin = reinterpret_cast<std::uintptr_t>(memory);
    std::uintptr_t const first = up_to_large_page(begin);
    std::uintptr_t const end = (begin + bytes) / kLargePage * kLargePage;
    if (first < end) {
        ::madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
    }
#endif
}

void* map_zeros(std::size_t bytes)
{
    // More than is asked for, so that there is a place in it where a large page begins; the rest goes back.
    std::size_t const size = up_to_large_page(bytes);
    std::size_t const room = size + kLargePage;
    void* const mapped = ::mmap(nullptr, room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) {
        return nullptr;
    }
    auto const begin = reinterpret_cast<std::uintptr_t>(mapped);
    std::uintptr_t const first = up_to_large_page(begin);
    if (first > begin) {
        ::munmap(mapped, first - begin);
    }
    ::munmap(reinterpret_cast<void*>(first + size), begin + room - (first + size));
    prefer_large_pages(reinterpret_cast<void*>(first), size);
    return reinterpret_cast<void*>(first);
}

void unmap_zeros(void* memory, std::size_t bytes)
{
    ::munmap(memory, up_to_large_page(bytes));
}

bool change_directory(char const* folder)
{
    return ::chdir(folder) == 0;
}

std::optional<FolderIdentity> identify_folder(char const* folder)
{
    struct stat status {};
    if (::stat(folder, &status) != 0 || !S_ISDIR(status.st_mode)) {
        return std::nullopt;
    }
    return FolderIdentity{status.st_dev, status.st_ino};
}

std::vector<FolderEntry> list_current_directory(char const* pattern)
{
    std::vector<FolderEntry> found;
    DIR* const folder = ::opendir(".");
    if (folder == nullptr) {
        return found;
    }
    while (dirent const* const entry = ::readdir(folder)) {
        if (matches(entry->d_name, pattern)) {
            auto const identity = identify_folder(entry->d_name);
            found.push_back({entry->d_name, identity.has_value(), identity});
        }
    }
    ::closedir(folder);
    std::sort(found.begin(), found.end(),
              [](FolderEntry const& a, FolderEntry const& b) { return a.name < b.name; });
    return found;
}

} // namespace umbrixlib::detail::platform
