// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// What the library asks of the operating system. One side for Windows, one for POSIX.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace umbrixlib::detail::platform {

/// Largest value of `random`: the ray formulas divide by it.
inline constexpr int kRandomMax = 32767;

/// A message with a title and an OK button; on POSIX one line on standard error.
void show_message(char const* text, char const* title);

/// Next value of a 15-bit generator, 0 to `kRandomMax`. May be called from many threads: on POSIX they share
/// one sequence in no fixed order, on Windows each has its own.
int random();
/// Starts that generator anew, on Windows that of the calling thread.
void seed_random(unsigned seed);

/// Seconds since 1970.
std::int64_t seconds_since_epoch();

/// Asks for large pages behind @p memory, of which nothing has been written to yet: on small ones the first
/// write to a large array mostly waits for the system. A wish; nothing happens where there are none.
void prefer_large_pages(void* memory, std::size_t bytes);

/// @p bytes zeros straight from the system, on large pages where it has them. No page is there before the
/// first access to it. Null if there is no such memory.
void* map_zeros(std::size_t bytes);
/// Gives back what `map_zeros` has given for as many @p bytes.
void unmap_zeros(void* memory, std::size_t bytes);

/// Stands between the names of a path.
#if defined(_WIN32)
inline constexpr char kSeparator = '\\';
#else
inline constexpr char kSeparator = '/';
#endif

/// Makes @p folder the current directory of the process. False if that fails.
bool change_directory(char const* folder);

/// What tells one folder from all others, whatever names lead to it.
struct FolderIdentity {
    std::uint64_t volume;
    std::uint64_t number;

    bool operator==(FolderIdentity const&) const = default;
};

/// The identity of @p folder; none if it is not a folder or the system does not tell.
std::optional<FolderIdentity> identify_folder(char const* folder);

struct FolderEntry {
    std::string name;
    bool is_folder;
    std::optional<FolderIdentity> identity = std::nullopt; ///< Of a folder.
};

/// The entries of the current directory whose names match @p pattern, "." and ".." included where they match,
/// on POSIX in the order of the names, on Windows as the file system gives them. `*` stands for any
/// characters and `?` for one; letter case is ignored, and
/// "*.*" matches every entry, also one without a dot. The list is complete when this returns: what is created
/// later does not show up in it.
std::vector<FolderEntry> list_current_directory(char const* pattern);

} // namespace umbrixlib::detail::platform
