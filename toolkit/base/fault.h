// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace umbrixlib::toolkit {

/// What can go wrong, one value for each kind of it. A front end turns a value into advice in its own words.
/// Where the comment names a remedy, that of the Failure has the part of the advice that depends on data.
enum class Fault {
    // Files that are read.
    kMissingFile,  ///< There is no file of that name, or none that can be asked for.
    kNotPlainFile, ///< A folder, a pipe or the like stands where a file should. The remedy says what to name.
    kUnreadable,   ///< A file or a folder may not be read.
    kUnreachable,  ///< A place cannot be looked at.
    kEmptyFile,    ///< A file has no bytes.

    // Files that are written.
    kMissingFolder,     ///< The folder of an output does not exist.
    kFolderNotMade,     ///< The folder of an output does not exist and cannot be made.
    kFolderTakesNoFile, ///< The folder of an output takes no new file.
    kOutputExists,      ///< An output exists, and is not to be replaced.
    kOutputAppeared,    ///< The same, but it has come to be since the work began.
    kNameTooLong,       ///< The folder of an output takes no name so long.
    kNameNotTaken,      ///< A finished file cannot take its name.
    kNotWritten,        ///< Not all of a file could be written.

    // Pictures.
    kChangedWhileRead,    ///< A picture was written to while it was read.
    kDamagedPicture,      ///< A picture is damaged, or of no known format.
    kNotReadable,         ///< A sound picture that no reader takes. The remedy says what to save instead.
    kTooManyTexels,       ///< A picture is larger than it is allowed to be.
    kSideTooLong,         ///< A picture is wider or higher than can be worked on.
    kUnknownFormat,       ///< The name of an output tells no format. The remedy lists those that do.
    kOutputIsInput,       ///< An output would replace the input.
    kNoAlphaInFormat,     ///< The format of an output holds no alpha, and one is wanted. The remedy
                          ///< goes on: ", or leave it out".
    kDepthNotInFormat,    ///< The format of an output has no samples of the depth. The remedy names those it
                          ///< has.
    kSizeOutsideFormat,   ///< The format of an output does not take pictures of this size.
    kHeightsOnly,         ///< The format of an output holds heights alone, and this is another picture.
    kInvalidTexels,       ///< Texels are NaN or infinite.
    kHeightsOutsideRange, ///< Heights lie outside 0..1. The remedy names their range.
    kNoSuchChannel,       ///< A picture has not got the channel that is asked for.
    kNotInTextureFormat,  ///< The format of a texture does not hold such a picture. The remedy is one that
                          ///< does.
    kNotReadBack,         ///< A picture that was written does not read back as it should.

    // Settings and the files that describe them.
    kWrongValue,           ///< The value of a key is not a right one. The remedy says which are.
    kUnknownKey,           ///< There is no such key. The remedy names those that there are.
    kNoStackFile,          ///< A file is not written as a stack file is.
    kNoLayers,             ///< A stack file has no layers.
    kFirstLayerNotHeights, ///< The first layer of a stack is a normal map.
    kNoPreset,             ///< A file is not written as a preset is.
    kUnknownPreset,        ///< No preset that is shipped has this name. The remedy names some.
    kPresetName,           ///< The name of a preset's or profile's file does not end as it should.
    kNoProfile,            ///< A file is not written as a profile is.
    kUnknownProfile,       ///< No profile that is shipped has this name. The remedy names some.
    kSettingOutOfRange,    ///< A setting of a job is out of its range. The remedy names the range.

    // Work lists.
    kNoList,         ///< A file is not a work list.
    kListVersion,    ///< A work list is of a version that cannot be read.
    kDamagedList,    ///< A work list is damaged.
    kListChanged,    ///< A work list was a whole one, and is not any more.
    kNoExportedList, ///< A file is not written as an exported list is.
    kNoSuchJob,      ///< A list has no job of that number.
    kLogNotWritable, ///< The log of a list cannot be written.
    kLogIncomplete,  ///< The log of a list did not take all of an entry.

    // Tasks.
    kNoDevice,          ///< There is no graphics device at all.
    kNoSuchDevice,      ///< There is no graphics device of that number.
    kSizesDiffer,       ///< Two pictures that belong together differ in size.
    kNoMap,             ///< A picture that should be an Umbrix map tells that it is something else.
    kTooSmallForRelief, ///< A picture is too small to have a relief.
    kTooFewThreads,     ///< OpenMP gives fewer threads than it should.
    kNotWorkedOn,       ///< The library could not work on a picture.
    kNoFolderWalk,      ///< This build has not got the library's own walk of folders.
    kNotForFolderWalk,  ///< The library's own walk makes no sound map of such a picture.

    // Worker processes.
    kNoMemory,         ///< There is not enough memory to work on a picture.
    kTooManyLayers,    ///< The layers of a stack take more memory than there is.
    kNoThread,         ///< A thread could not be started.
    kDecodedTooLong,   ///< Decoding took longer than it may.
    kWorkerSilent,     ///< The worker was stopped, or told nothing for longer than its work takes.
    kDeviceBrokeDown,  ///< The worker ended while it opened a graphics device.
    kDecoderBrokeDown, ///< The worker ended while it decoded.
    kRunBrokeDown,     ///< The worker ended while it made the result.
    kWritingBrokeDown, ///< The worker ended while it wrote the result.
    kWorkerUnheard,    ///< A worker cannot be listened to.
    kNoWorker,         ///< No worker can be started.
    kNoSandbox,        ///< A worker cannot give up its rights.
    kTooManyFiles,     ///< A job names more files than a process may have open.
    kMissingWorker,    ///< The worker's program is not where it belongs.

    // Batches.
    kSameTarget,        ///< Two inputs lead to the same output.
    kTargetIsSource,    ///< The output of one input would replace another one.
    kOnlyOutputsFound,  ///< All that is found are outputs of earlier runs.
    kOnlyOthersFound,   ///< All that is found is left alone for its names. The remedy is an ending of them.
    kNothingFound,      ///< No picture is found, and subfolders were looked into.
    kNothingFoundAtTop, ///< No picture is found, and subfolders were not looked into.

    kUnexpected ///< Anything else, worded by whoever threw it. The last value.
};

inline constexpr std::size_t kFaults = static_cast<std::size_t>(Fault::kUnexpected) + 1;

} // namespace umbrixlib::toolkit
