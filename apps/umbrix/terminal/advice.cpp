// SPDX-License-Identifier: MIT
#include "terminal/advice.h"

#include <fmt/format.h>
#include <iterator>

namespace umbrix_cli {

namespace {

constexpr char const* kResave = "save it again in a program that opens it, for instance as PNG";
constexpr char const* kMoreSpace = "free some space or choose another folder";

/// In the order of the faults.
constexpr Advice kAdvice[] = {
    {Fault::kMissingFile, "check the name"},
    {Fault::kNotPlainFile, "{}"},
    {Fault::kUnreadable, "check its access rights"},
    {Fault::kUnreachable, "check the name and its access rights"},
    {Fault::kEmptyFile, "copy or save it again"},

    {Fault::kMissingFolder, "create it, or choose another"},
    {Fault::kFolderNotMade, "choose another with --keep-tree"},
    {Fault::kFolderTakesNoFile, "choose another folder"},
    {Fault::kOutputExists, "add --overwrite to replace it, or give another name"},
    {Fault::kOutputAppeared, "add --overwrite to replace it"},
    {Fault::kNameTooLong, "give a shorter one"},
    {Fault::kNameNotTaken, "check the folder"},
    {Fault::kNotWritten, kMoreSpace},

    {Fault::kChangedWhileRead, "try again when nothing writes it any more"},
    {Fault::kDamagedPicture, kResave},
    {Fault::kNotReadable, "{}"},
    {Fault::kTooManyTexels, "allow more with --max-texels"},
    {Fault::kSideTooLong, "cut it into parts"},
    {Fault::kUnknownFormat, "{}", kWrongUsage},
    {Fault::kOutputIsInput, "give another name", kWrongUsage},
    {Fault::kNoAlphaInFormat, "give a name ending in .png{}", kWrongUsage},
    {Fault::kDepthNotInFormat, "give --depth {}, or a name of another format"},
    {Fault::kSizeOutsideFormat, "give a name ending in .png"},
    {Fault::kHeightsOnly, "give a name ending in .png"},
    {Fault::kInvalidTexels, "give what they stand for with --replace-invalid"},
    {Fault::kHeightsOutsideRange, "give --height-range {}, or --height-range auto for the same"},
    {Fault::kNoSuchChannel, "name another channel"},
    {Fault::kNotInTextureFormat, "give --format {}, or tell with --kind what it is"},
    {Fault::kNotReadBack, "check the disk and the limits on memory, or choose another folder or format"},

    {Fault::kWrongValue, "{}"},
    {Fault::kUnknownKey, "{}"},
    {Fault::kNoStackFile, "umbrix stack --new writes an example"},
    {Fault::kNoLayers, "begin each layer with [[layer]]; umbrix stack --new writes an example"},
    {Fault::kFirstLayerNotHeights, "put a height layer below, or give this one's heights"},
    {Fault::kNoPreset, "`umbrix preset save` writes a preset with every key"},
    {Fault::kUnknownPreset, "{}", kWrongUsage, "--preset"},
    {Fault::kPresetName, "give one that does, so that it is found", kWrongUsage},
    {Fault::kNoProfile, "`umbrix profile save` writes a profile with every key"},
    {Fault::kUnknownProfile, "{}", kWrongUsage, "--profile"},
    {Fault::kSettingOutOfRange, "{} with umbrix list set"},

    {Fault::kNoList, "name another file"},
    {Fault::kListVersion, "save it again with the program that it comes from"},
    {Fault::kDamagedList, "restore it from a copy, or import it again from an export"},
    {Fault::kListChanged, "check that nothing else writes it"},
    {Fault::kNoExportedList, "umbrix list export writes such a file"},
    {Fault::kNoSuchJob, "umbrix list show tells their numbers"},
    {Fault::kLogNotWritable, "the list's folder has to take it"},
    {Fault::kLogIncomplete, "free some space"},

    {Fault::kNoDevice, "leave it out", kWrongUsage, "--gpu"},
    {Fault::kNoSuchDevice, "umbrix devices lists them", kWrongUsage, "--gpu"},
    {Fault::kSizesDiffer, "bring both to the same size"},
    {Fault::kNoMap, "name an Umbrix map, or take it all the same with --force"},
    {Fault::kTooSmallForRelief, "give at least 2 x 2, or --no-occlusion"},
    {Fault::kTooFewThreads, "raise the limit on processes (ulimit -u)"},
    {Fault::kNotWorkedOn, "try another picture"},
    {Fault::kNoFolderWalk, "leave it out", kWrongUsage, "--plain"},
    {Fault::kNotForFolderWalk, "leave --plain out, or the file with --include"},

    {Fault::kNoMemory, "make the picture smaller"},
    {Fault::kTooManyLayers, "make the pictures smaller, or blend some of the layers first"},
    {Fault::kNoThread, "raise the limits on memory and processes (ulimit -v, ulimit -u)"},
    {Fault::kDecodedTooLong, "it is probably damaged; --timeout allows more"},
    {Fault::kWorkerSilent, "try it by itself; --timeout allows more"},
    {Fault::kDeviceBrokeDown, "update it, or leave --gpu out; -v shows more"},
    {Fault::kDecoderBrokeDown, "the file is damaged; save it again in a program that opens it"},
    {Fault::kRunBrokeDown, "a picture that is too large for the memory can be the reason; -v shows more"},
    {Fault::kWritingBrokeDown, "choose another format"},
    {Fault::kWorkerUnheard, "try again"},
    {Fault::kNoWorker, "check the limits on processes and memory"},
    {Fault::kNoSandbox, "check that the system allows filters of system calls (seccomp)"},
    {Fault::kTooManyFiles, "raise the limit on open files (ulimit -n)"},
    {Fault::kMissingWorker, "install UmbrixLib again; in a build folder build the target umbrix_worker"},

    {Fault::kSameTarget, "take one of them, for instance with --include '*_H.*'", kWrongUsage},
    {Fault::kTargetIsSource, "give another --suffix, or another folder with --keep-tree", kWrongUsage},
    {Fault::kOnlyOutputsFound, "take them as inputs with --include-outputs"},
    {Fault::kOnlyOthersFound, "take them with --include '*{}*'"},
    {Fault::kNothingFound, "check the name, or give another --include"},
    {Fault::kNothingFoundAtTop, "check the name, give another --include, or look deeper with --recurse"},

    {Fault::kUnexpected, "try it by itself"},
};

constexpr bool in_the_order_of_the_faults()
{
    for (std::size_t i = 0; i < std::size(kAdvice); ++i) {
        if (static_cast<std::size_t>(kAdvice[i].fault) != i || kAdvice[i].text.empty()) {
            return false;
        }
    }
    return std::size(kAdvice) == kFaults;
}
static_assert(in_the_order_of_the_faults());

/// What is shown of a note; "{}" stands for its text.
std::string_view words_for(NoteKind kind)
{
    switch (kind) {
    case NoteKind::kDeviceIsCpu:
        return "{}, so --gpu saves no time";
    case NoteKind::kGraphicsHeights:
        return "{}; --match-cpu gives the relief of a run without --gpu";
    case NoteKind::kNormalsLeftOut:
        return "--map-from-layers leaves the normals of this layer out of the map";
    case NoteKind::kHeightsNarrowed:
        return "{}; --depth 16 keeps them, where the format has it";
    case NoteKind::kLeaningNormals:
        return "{}; --no-tile, --no-h-tile or --no-v-tile keeps it";
    case NoteKind::kPlain:
        break;
    }
    return "{}";
}

} // namespace

Advice const& advice_on(Fault fault)
{
    // A worker gone wild can tell any number.
    auto const index = static_cast<std::size_t>(fault);
    return kAdvice[index < kFaults ? index : static_cast<std::size_t>(Fault::kUnexpected)];
}

Complaint complaint_about(Failure const& failure)
{
    Advice const& advice = advice_on(failure.fault);
    return {advice.subject.empty() ? failure.subject : std::string(advice.subject), failure.what(),
            fmt::format(fmt::runtime(advice.text), failure.remedy), advice.code};
}

std::string text_of(Note const& note)
{
    return fmt::format(fmt::runtime(words_for(note.kind)), note.text);
}

} // namespace umbrix_cli
