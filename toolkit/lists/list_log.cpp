// SPDX-License-Identifier: MIT
#include "toolkit/lists/list_log.h"

#include "toolkit/base/failure.h"
#include "toolkit/base/json_text.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

constexpr char const* kDone = "done";

fs::path log_of(fs::path const& list, Shard const& shard)
{
    std::string const part = shard.count == 1 ? "" : fmt::format(".{}of{}", shard.number, shard.count);
    return list.string() + part + ".log";
}

/// The logs of all shards of all runs.
std::vector<fs::path> logs_of(fs::path const& list)
{
    std::vector<fs::path> logs;
    fs::path const folder = list.has_parent_path() ? list.parent_path() : fs::path(".");
    std::string const start = list.filename().string() + ".";
    std::error_code error;
    for (auto const& entry : fs::directory_iterator(folder, error)) {
        std::string const name = entry.path().filename().string();
        if (name.starts_with(start) && name.ends_with(".log")) {
            logs.push_back(entry.path());
        }
    }
    // Later runs have the last word, whatever their shards were.
    std::sort(logs.begin(), logs.end(), [](fs::path const& a, fs::path const& b) {
        std::error_code ignored;
        return fs::last_write_time(a, ignored) < fs::last_write_time(b, ignored);
    });
    return logs;
}

/// The name by which a target is found again.
std::string key_of(fs::path const& target)
{
    std::error_code error;
    return fs::weakly_canonical(fs::absolute(target), error).string();
}

/// A digest as logs have it, or 0. Those of earlier versions are numbers.
std::uint64_t digest_in(nlohmann::json const& value)
{
    if (!value.is_string()) {
        return value.is_number_unsigned() ? value.get<std::uint64_t>() : 0;
    }
    auto const& text = value.get_ref<std::string const&>();
    std::uint64_t digest = 0;
    auto const [stop, error] = std::from_chars(text.data(), text.data() + text.size(), digest);
    return error == std::errc() && stop == text.data() + text.size() ? digest : 0;
}

void read_log(fs::path const& file, std::map<std::string, std::uint64_t>& makers)
{
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        // A line that a killed run did not finish says nothing.
        nlohmann::json const entry = from_json_text(line);
        bool const whole = entry.is_object() && entry.contains("target") && entry.contains("digest") &&
                           entry.contains("state") && entry["target"].is_string() && entry["state"] == kDone;
        std::uint64_t const digest = whole ? digest_in(entry["digest"]) : 0;
        if (digest != 0) {
            makers[entry["target"].get<std::string>()] = digest;
        }
    }
}

/// Whether a killed run left a part of a line at the end.
bool ends_within_line(int descriptor)
{
    struct stat status {};
    char last = '\n';
    return fstat(descriptor, &status) == 0 && status.st_size > 0 &&
           pread(descriptor, &last, 1, status.st_size - 1) == 1 && last != '\n';
}

} // namespace

ListLog::ListLog(fs::path const& list, Shard const& shard) : file_(log_of(list, shard))
{
    for (fs::path const& log : logs_of(list)) {
        read_log(log, makers_);
    }
}

void ListLog::open_for_adding()
{
    descriptor_ = open(file_.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (descriptor_ < 0) {
        throw Failure(Fault::kLogNotWritable, file_.string(),
                      fmt::format("the log cannot be written: {}", std::strerror(errno)));
    }
}

ListLog::~ListLog()
{
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

std::uint64_t ListLog::maker_of(fs::path const& target) const
{
    auto const found = makers_.find(key_of(target));
    return found == makers_.end() ? 0 : found->second;
}

void ListLog::add(fs::path const& target, std::uint64_t digest, std::string const& state,
                  std::string const& reason)
{
    nlohmann::ordered_json entry{
        {"target", key_of(target)}, {"digest", fmt::format("{}", digest)}, {"state", state}};
    if (!reason.empty()) {
        entry["reason"] = reason;
    }
    std::string const line =
        fmt::format("{}{}\n", ends_within_line(descriptor_) ? "\n" : "", to_json_text(entry));
    if (write(descriptor_, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        throw Failure(Fault::kLogIncomplete, file_.string(), "the log did not take all of it");
    }
}

std::uint64_t digest_of(std::vector<std::uint8_t> const& job, std::vector<fs::path> const& files)
{
    std::uint64_t hash = 14695981039346656037U; // FNV-1a
    auto const take = [&hash](std::uint64_t byte) { hash = (hash ^ byte) * 1099511628211U; };
    auto const take_number = [&take](std::uint64_t number) {
        for (unsigned shift = 0; shift < 64; shift += 8) {
            take(number >> shift & 255U);
        }
    };
    for (std::uint8_t const byte : job) {
        take(byte);
    }
    for (fs::path const& file : files) {
        struct stat status {};
        if (stat(file.c_str(), &status) == 0) {
            take_number(static_cast<std::uint64_t>(status.st_size));
            take_number(static_cast<std::uint64_t>(status.st_mtim.tv_sec));
            take_number(static_cast<std::uint64_t>(status.st_mtim.tv_nsec));
        }
    }
    return std::max<std::uint64_t>(hash, 1);
}

} // namespace umbrixlib::toolkit
