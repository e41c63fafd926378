// SPDX-License-Identifier: MIT
#include "capi/call_internal.h"
#include "toolkit/base/failure.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <fmt/format.h>
#include <new>
#include <omp.h>
#include <thread>
#include <unistd.h>

using namespace umbrixlib::toolkit;

namespace umbrix_capi {

namespace {

umbrix_code code_of(Fault fault)
{
    switch (fault) {
    case Fault::kMissingFile:
    case Fault::kNotPlainFile:
    case Fault::kUnreadable:
    case Fault::kUnreachable:
        return UMBRIX_NO_FILE;
    case Fault::kEmptyFile:
    case Fault::kChangedWhileRead:
    case Fault::kDamagedPicture:
    case Fault::kNotReadable:
    case Fault::kTooManyTexels:
    case Fault::kSideTooLong:
        return UMBRIX_NOT_READABLE;
    case Fault::kOutputExists:
    case Fault::kOutputAppeared:
        return UMBRIX_FILE_EXISTS;
    case Fault::kMissingFolder:
    case Fault::kFolderNotMade:
    case Fault::kFolderTakesNoFile:
    case Fault::kNameTooLong:
    case Fault::kNameNotTaken:
    case Fault::kNotWritten:
    case Fault::kUnknownFormat:
    case Fault::kNoAlphaInFormat:
    case Fault::kDepthNotInFormat:
    case Fault::kSizeOutsideFormat:
    case Fault::kHeightsOnly:
    case Fault::kNotReadBack:
        return UMBRIX_NOT_WRITTEN;
    case Fault::kWrongValue:
    case Fault::kUnknownKey:
    case Fault::kNoPreset:
    case Fault::kUnknownPreset:
    case Fault::kSettingOutOfRange:
        return UMBRIX_WRONG_SETTING;
    case Fault::kInvalidTexels:
    case Fault::kHeightsOutsideRange:
    case Fault::kNoSuchChannel:
    case Fault::kNoLayers:
    case Fault::kFirstLayerNotHeights:
    case Fault::kSizesDiffer:
    case Fault::kNoMap:
    case Fault::kTooSmallForRelief:
        return UMBRIX_WRONG_PICTURE;
    case Fault::kNoMemory:
    case Fault::kTooManyLayers:
        return UMBRIX_NO_MEMORY;
    default:
        return UMBRIX_FAILED;
    }
}

/// What helps, in words of this interface.
std::string remedy_in_words(Failure const& failure)
{
    switch (failure.fault) {
    case Fault::kHeightsOutsideRange:
        return fmt::format("read them with a height-range of {}, or save them as floats", failure.remedy);
    case Fault::kDepthNotInFormat:
        return fmt::format("give a depth of {}", failure.remedy);
    default:
        return failure.remedy;
    }
}

void tell(umbrix_context& context, umbrix_code code, std::string const& sentence)
{
    context.code = code;
    context.sentence = sentence;
}

void tell_what_is_thrown(umbrix_context& context)
{
    try {
        throw;
    } catch (Failure const& failure) {
        tell(context, code_of(failure.fault),
             failure.subject.empty() ? failure.what()
                                     : fmt::format("{}: {}", failure.subject, failure.what()));
        context.remedy = remedy_in_words(failure);
    } catch (WrongArgument const& wrong) {
        tell(context, UMBRIX_WRONG_ARGUMENT, wrong.what());
    } catch (Stopped const&) {
        tell(context, UMBRIX_STOPPED, "it was stopped");
    } catch (std::bad_alloc const&) {
        tell(context, UMBRIX_NO_MEMORY, "there is not enough memory");
    } catch (std::exception const& exception) {
        tell(context, UMBRIX_FAILED, exception.what());
    } catch (...) {
        tell(context, UMBRIX_FAILED, "it failed");
    }
}

} // namespace

namespace {

pid_t const loading_process = getpid();

} // namespace

TeamAfterFork::TeamAfterFork()
{
    if (getpid() != loading_process) {
        before_ = omp_get_max_threads();
        omp_set_num_threads(1);
    }
}

TeamAfterFork::~TeamAfterFork()
{
    if (before_ > 0) {
        omp_set_num_threads(before_);
    }
}

void require(void const* pointer, char const* name)
{
    if (pointer == nullptr) {
        throw WrongArgument(fmt::format("{} is NULL", name));
    }
}

void CallObserver::begin(Phase phase, std::string const& /*file*/)
{
    constexpr char const* kNames[] = {"reading", "making", "writing", "checking", "opening"};
    stage(kNames[static_cast<int>(phase)], 0);
}

void CallObserver::stage(std::string_view name, int permille)
{
    {
        std::lock_guard const lock(mutex_);
        stage_ = name;
        permille_ = permille;
    }
    if (!beside_) {
        tell_stage();
    }
}

void CallObserver::note(std::string const& file, Note const& note)
{
    if (!note.detail) {
        std::lock_guard const lock(mutex_);
        notes_.emplace_back(file, note.text);
    }
    if (!beside_) {
        tell_notes();
    }
}

void CallObserver::tell_stage()
{
    if (context_.progress == nullptr || stopping()) {
        return;
    }
    std::unique_lock lock(mutex_);
    std::string const name = stage_;
    double const share = permille_ / 1000.0;
    lock.unlock();
    if (context_.progress(context_.progress_user, name.c_str(), share) == 0) {
        stopping_ = true;
    }
}

void CallObserver::tell_notes()
{
    std::unique_lock lock(mutex_);
    auto const notes = std::exchange(notes_, {});
    lock.unlock();
    for (auto const& [file, text] : notes) {
        if (context_.note != nullptr) {
            context_.note(context_.note_user, file.c_str(), text.c_str());
        }
    }
}

void CallObserver::run_beside(std::function<void()> const& body)
{
    constexpr auto kTellEvery = std::chrono::milliseconds(20);
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
    std::exception_ptr error;
    beside_ = true;
    tell_stage();
    std::thread worker([&] {
        try {
            body();
        } catch (...) {
            error = std::current_exception();
        }
        std::lock_guard const lock(mutex);
        done = true;
        finished.notify_one();
    });
    std::unique_lock lock(mutex);
    while (!finished.wait_for(lock, kTellEvery, [&] { return done; })) {
        lock.unlock();
        tell_notes();
        tell_stage();
        lock.lock();
    }
    lock.unlock();
    worker.join();
    beside_ = false;
    tell_notes();
    if (error) {
        std::rethrow_exception(error);
    }
}

umbrix_code keep_error(umbrix_context& context) noexcept
{
    try {
        tell_what_is_thrown(context);
    } catch (...) { // no memory for the sentence
        context.code = UMBRIX_NO_MEMORY;
        context.sentence.clear();
    }
    return context.code;
}

} // namespace umbrix_capi

using namespace umbrix_capi;

int umbrix_interface(void)
{
    return UMBRIX_INTERFACE;
}

char const* umbrix_version(void)
{
    return UMBRIX_VERSION;
}

umbrix_context* umbrix_context_new(void)
{
    return new (std::nothrow) umbrix_context;
}

void umbrix_context_free(umbrix_context* context)
{
    delete context;
}

void umbrix_last_error(umbrix_context const* context, umbrix_error* error)
{
    if (context == nullptr) {
        fill_record(error, {0, UMBRIX_WRONG_ARGUMENT, "context is NULL", ""});
        return;
    }
    fill_record(error, {0, context->code, context->sentence.c_str(), context->remedy.c_str()});
}

void umbrix_on_progress(umbrix_context* context, umbrix_progress progress, void* user)
{
    if (context != nullptr) {
        context->progress = progress;
        context->progress_user = user;
    }
}

void umbrix_on_note(umbrix_context* context, umbrix_note note, void* user)
{
    if (context != nullptr) {
        context->note = note;
        context->note_user = user;
    }
}
