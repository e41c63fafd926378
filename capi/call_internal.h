// SPDX-License-Identifier: MIT
#pragma once

#include "capi/objects_internal.h"
#include "toolkit/base/observer.h"
#include "toolkit/base/stop.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace umbrix_capi {

using umbrixlib::SampleType;

/// A call that makes no sense. The sentence tells what is wrong with it.
struct WrongArgument : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Throws a WrongArgument unless @p pointer, the argument of that name, is there.
void require(void const* pointer, char const* name);

/// Hands what is told on to the functions of a context.
class CallObserver : public umbrixlib::toolkit::Observer {
public:
    explicit CallObserver(umbrix_context& context) : context_(context) {}

    void begin(umbrixlib::toolkit::Phase phase, std::string const& file) override;
    void stage(std::string_view name, int permille) override;
    void note(std::string const& file, umbrixlib::toolkit::Note const& note) override;
    bool stopping() const override { return stopping_.load(std::memory_order_relaxed); }

    /// Throws Stopped if the context's function asked for it.
    void check() const
    {
        if (stopping()) {
            throw umbrixlib::toolkit::Stopped();
        }
    }

    /// Does @p body on a thread of its own. What it tells is kept, and handed on by the calling thread before
    /// and every 20 ms, whatever the body is at.
    void run_beside(std::function<void()> const& body);

private:
    void tell_stage();
    void tell_notes();

    umbrix_context& context_;
    std::atomic<bool> stopping_ = false;
    bool beside_ = false; ///< What is told comes from another thread than the caller's.
    std::mutex mutex_;    ///< Of the rest.
    std::string stage_ = "starting";
    int permille_ = 0;
    std::vector<std::pair<std::string, std::string>> notes_;
};

/// In a process that was forked, keeps the calling thread from waiting for its OpenMP team, whose threads
/// stayed behind. Runs on large pictures have threads, and teams, of their own.
class TeamAfterFork {
public:
    TeamAfterFork();
    ~TeamAfterFork();
    TeamAfterFork(TeamAfterFork const&) = delete;
    TeamAfterFork& operator=(TeamAfterFork const&) = delete;

private:
    int before_ = 0; ///< Threads of a team; 0: as they are.
};

/// Tells @p context what is being thrown, and returns its code. No exception leaves it.
umbrix_code keep_error(umbrix_context& context) noexcept;

/// Does @p body, which is given a CallObserver, and turns what it throws into a code and a sentence.
template <typename Body>
umbrix_code call(umbrix_context* context, Body const& body) noexcept
{
    if (context == nullptr) {
        return UMBRIX_WRONG_ARGUMENT;
    }
    context->code = UMBRIX_OK;
    context->sentence.clear();
    context->remedy.clear();
    try {
        TeamAfterFork const team;
        CallObserver observer(*context);
        body(observer);
        observer.check();
    } catch (...) {
        return keep_error(*context);
    }
    return UMBRIX_OK;
}

/// What a caller put into an enumeration, which may be none of its constants.
template <typename Enumeration>
int value_in(Enumeration const& member)
{
    static_assert(sizeof member == sizeof(int));
    int value = 0;
    std::memcpy(&value, &member, sizeof value);
    return value;
}

/// Whether there is so little of a picture that a thread would take longer to start than the work.
inline bool is_small(umbrix_picture const* picture)
{
    constexpr int kFewTexels = 64 * 64; // as the library has them for a run without a team
    return picture != nullptr && picture->layout.width <= kFewTexels &&
           picture->layout.height <= kFewTexels &&
           picture->layout.width * picture->layout.height <= kFewTexels;
}

/// The same as call() for a body that takes its time with @p source; null: with something that is not small.
template <typename Body>
umbrix_code work(umbrix_context* context, umbrix_picture const* source, Body const& body) noexcept
{
    return call(context, [&](CallObserver& observer) {
        if (is_small(source)) {
            body(observer);
        } else {
            observer.run_beside([&] { body(observer); });
        }
    });
}

/// A record as this library knows it, from one that may end earlier; what it lacks is 0.
/// @param least Bytes that every version has.
template <typename Record>
Record record_of(Record const* given, std::size_t least, char const* name)
{
    require(given, name);
    if (given->size < least) {
        throw WrongArgument(std::string(name) + ": its size is not set");
    }
    Record record{};
    std::memcpy(&record, given, std::min(given->size, sizeof record));
    return record;
}

/// Fills the part of @p to that its caller knows. False if there is none.
template <typename Record>
bool fill_record(Record* to, Record const& record)
{
    if (to == nullptr || to->size < sizeof(std::size_t)) {
        return false;
    }
    std::size_t const size = to->size;
    std::memcpy(to, &record, std::min(size, sizeof record));
    to->size = size;
    return true;
}

/// The settings of a call: its own, or the defaults.
inline umbrixlib::toolkit::Settings settings_of(umbrix_settings const* settings)
{
    return settings != nullptr ? settings->values : umbrixlib::toolkit::kDefaults;
}

} // namespace umbrix_capi
