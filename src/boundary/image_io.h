// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The one way in which image files enter and leave. DevIL is included here and nowhere else in the library;
/// its bound image is process-wide, so everything in here is called from one thread at a time, outside
/// parallel regions. What differs by caller is an argument: the overwrite setting, the pixel format, the way
/// of writing.
///
/// Rows: the first row of a buffer is the bottom row of the picture, for every file format.

#include "boundary/texel_array.h"

#include <cstddef>

namespace umbrixlib::detail {

enum class Overwrite { kAllow, kLeaveAsIs };

/// `ilInit`, overwrite setting if asked for, origin setting: what precedes every load and save.
void prepare_devil(Overwrite overwrite);

/// What a load or save came to, for callers that look at it.
enum class FileOutcome { kGoOn, kMessageShown };

/// `ilLoadImage` into the bound image.
///
/// Contract: the boolean result is compared with DevIL's error codes, which it can never equal. A failed load
/// is expected to be reported; it goes unnoticed, and the image that is bound is used. Front ends rely on
/// checking files themselves. Test: ImageIo.ABooleanResultNeverEqualsAnErrorCode
FileOutcome load_image(char const* file);

/// `ilSaveImage` of the bound image, its result looked at in the same way.
FileOutcome save_image(char const* file);

/// The same two for callers that ignore the result altogether.
void load_image_unseen(char const* file);
void save_image_unseen(char const* file);

/// `ilGenImage`, then `ilBindImage` of what it gave. Nobody deletes the image: it stays bound, takes the next
/// load, and keeps its pixels until `ilShutDown`.
void bind_fresh_image();

/// Text for an error code compared with the result of a load, or null if it has none.
char const* load_message(unsigned code);
/// Text for an error code compared with the result of a save, or null if it has none.
char const* save_message(unsigned code);

struct ImageSize {
    int width;
    int height;
};

/// Width, then height, of the bound image.
ImageSize bound_image_size();
/// Bits per pixel of the bound image divided by 8, truncated.
int bound_image_channels();

/// Bytes of an image on their way in or out.
using ImageBytes = TexelArray<unsigned char>;

/// Zeroed bytes for an image of @p texels texels. DevIL and the loops over channels touch up to four bytes a
/// texel, whatever pixel size a file reports, so that is what a texel gets at least; and DevIL reads one
/// texel of an image of none.
ImageBytes make_image_bytes(std::size_t texels, int channels);

/// How `copy_pixels` asks for the pixels.
enum class PixelFormat {
    kRgb,
    kRgba,
    /// A type constant in the place of a format, as it is handed over for images of one byte a pixel. DevIL
    /// refuses it and writes nothing.
    kOneByte,
};

/// `ilCopyPixels` of the whole bound image; what it returns is not looked at.
void copy_pixels(ImageSize size, PixelFormat format, unsigned char* bytes);

/// `ilSetPixels`: refills the bound image with RGB bytes.
void refill_image(ImageSize size, unsigned char* bytes);

/// `ilTexImage`: new pixels, three or four bytes each, in the bound image. DevIL copies them.
void replace_image(ImageSize size, int channels, unsigned char* bytes);

/// `ilShutDown`.
void shut_down_devil();

} // namespace umbrixlib::detail
