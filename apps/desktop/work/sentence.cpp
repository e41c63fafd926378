// SPDX-License-Identifier: MIT
#include "work/sentence.h"

#include <fmt/format.h>

namespace umbrix_desktop {

namespace {

using toolkit::Fault;

/// What helps; "{}" stands for the remedy of the failure.
char const* advice_on(Fault fault)
{
    constexpr char const* kResave = "save it again in a program that opens it, for instance as PNG";
    switch (fault) {
    case Fault::kMissingFile:
        return "check the name";
    case Fault::kUnreadable:
    case Fault::kUnreachable:
        return "check its access rights";
    case Fault::kEmptyFile:
        return "copy or save it again";
    case Fault::kNotWritten:
        return "free some space or choose another folder";
    case Fault::kChangedWhileRead:
        return "open it again when nothing writes it any more";
    case Fault::kDamagedPicture:
    case Fault::kDecoderBrokeDown:
        return kResave;
    case Fault::kInvalidTexels:
        return "set what they stand for: replace invalid";
    case Fault::kHeightsOutsideRange:
        return "set the height range to {}, or to auto for the same";
    case Fault::kDepthNotInFormat:
        return "choose a depth of {}, or another format";
    case Fault::kNoAlphaInFormat:
        return "choose PNG{}";
    case Fault::kNoSuchChannel:
        return "choose another channel";
    case Fault::kSizesDiffer:
        return "bring both to the same size";
    case Fault::kTooSmallForRelief:
        return "take a picture of at least 2 x 2 texels, or switch the occlusion off";
    case Fault::kNoMemory:
    case Fault::kTooManyTexels:
        return "make the picture smaller";
    case Fault::kDecodedTooLong:
        return "it is probably damaged";
    case Fault::kMissingWorker:
        return "install UmbrixLib again";
    default:
        return "{}";
    }
}

} // namespace

std::string sentence_of(toolkit::Failure const& failure, std::string const& subject)
{
    std::string const advice = fmt::format(fmt::runtime(advice_on(failure.fault)), failure.remedy);
    std::string const& about = failure.subject.empty() ? subject : failure.subject;
    return fmt::format("{}{}{}{}{}", about, about.empty() ? "" : ": ", failure.what(),
                       advice.empty() ? "" : "; ", advice);
}

} // namespace umbrix_desktop
