// SPDX-License-Identifier: MIT
#include "boundary/platform.h"

#include <cstdlib>
#include <direct.h>
#include <io.h>
#include <time.h>
#include <windows.h>

namespace umbrixlib::detail::platform {

static_assert(RAND_MAX == kRandomMax, "the ray formulas divide by the range of rand");

void show_message(char const* text, char const* title)
{
    MessageBoxA(nullptr, text, title, MB_OK);
}

int random()
{
    return std::rand();
}

void seed_random(unsigned seed)
{
    std::srand(seed);
}

std::int64_t seconds_since_epoch()
{
    return _time64(nullptr);
}

void prefer_large_pages(void* /*memory*/, std::size_t /*bytes*/) {}

void* map_zeros(std::size_t /*bytes*/)
{
    return nullptr;
}

void unmap_zeros(void* /*memory*/, std::size_t /*bytes*/) {}

bool change_directory(char const* folder)
{
    return _chdir(folder) == 0;
}

std::optional<FolderIdentity> identify_folder(char const* folder)
{
    HANDLE const handle = CreateFileA(folder, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return std::nullopt;
    }
    BY_HANDLE_FILE_INFORMATION found;
    bool const told = GetFileInformationByHandle(handle, &found) != 0;
    CloseHandle(handle);
    if (!told) {
        return std::nullopt;
    }
    return FolderIdentity{found.dwVolumeSerialNumber,
                          std::uint64_t{found.nFileIndexHigh} << 32 | found.nFileIndexLow};
}

std::vector<FolderEntry> list_current_directory(char const* pattern)
{
    std::vector<FolderEntry> found;
    _finddata64i32_t entry;
    std::intptr_t const walk = _findfirst64i32(pattern, &entry);
    if (walk == -1) {
        return found;
    }
    do {
        bool const is_folder = (entry.attrib & _A_SUBDIR) != 0;
        found.push_back({entry.name, is_folder, is_folder ? identify_folder(entry.name) : std::nullopt});
    } while (_findnext64i32(walk, &entry) == 0);
    _findclose(walk);
    return found;
}

} // namespace umbrixlib::detail::platform
