/* SPDX-License-Identifier: MIT */
#ifndef UMBRIX_H
#define UMBRIX_H

/**
 * @file
 * Normal maps, Umbrix maps and what goes with them, from picture to picture: UmbrixLib for C, and for all
 * languages that can call C.
 *
 * A map is made in three steps: a picture is read or laid over memory, a function makes another one of it,
 * and that is written or lies in memory of the caller's.
 *
 * Pictures have their top row first. Channels are 1 grey, 2 grey and alpha, 3 colours, 4 colours and alpha.
 * Sizes are in texels, strides in bytes, angles in degrees. Texts are UTF-8, names of files the bytes that
 * the system knows them by; both end with 0. What a function gives as `char const*` stays the library's, and
 * its comment says how long it stands.
 *
 * Errors: a function that can fail returns an umbrix_code. The context that it was called with holds the
 * sentence to show: umbrix_last_error(). Nothing is written over, and results stay as they were, but for
 * memory that was given for a result: its contents are undefined after an error.
 *
 * Threads: there is no state beside the objects below. Several threads may call at the same time, each with a
 * context of its own; settings, pictures and stacks that none of the calls changes may be shared. Runs wait
 * for each other, as each takes all processors; the same call gives the same bits on any number of them. In a
 * process that was forked, calls work as long as no call was under way while it was forked.
 *
 * The interface stays: functions and constants keep their meaning, records grow at their end. A caller sets
 * `size` of a record to its sizeof; members behind it have their defaults.
 */

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Version of this interface. It grows when something is added. */
#define UMBRIX_INTERFACE 1

/** UMBRIX_INTERFACE of the library that is loaded. */
int umbrix_interface(void);

/** Version of the library that is loaded, as "1.2.3". Stands as long as the process. */
char const* umbrix_version(void);

/* Errors */

/** How a call came out. */
typedef enum umbrix_code {
    UMBRIX_OK = 0,
    UMBRIX_STOPPED = 1, /**< The progress function said so. */
    UMBRIX_WRONG_ARGUMENT =
        2, /**< The call itself makes no sense: a null pointer, a size that does not fit. */
    UMBRIX_WRONG_SETTING = 3, /**< No such setting or preset, or not a value for it. */
    UMBRIX_NO_FILE = 4,       /**< There is no such file, or it may not be read. */
    UMBRIX_NOT_READABLE = 5,  /**< The file holds no picture that can be taken. */
    UMBRIX_NOT_WRITTEN = 6,   /**< The file could not be written. What was there is still there. */
    UMBRIX_FILE_EXISTS = 7,   /**< The file exists, and is not to be replaced. */
    UMBRIX_WRONG_PICTURE = 8, /**< Nothing can be made of the picture: NaN, heights outside 0..1, the size. */
    UMBRIX_NO_MEMORY = 9,
    UMBRIX_FAILED = 10 /**< Anything else. */
} umbrix_code;

/** What went wrong. */
typedef struct umbrix_error {
    size_t size; /**< sizeof(umbrix_error). */
    umbrix_code code;
    char const* sentence; /**< One sentence without its full stop, "rock.png: it is damaged". */
    char const* remedy;   /**< What helps, "give 0 to 10"; "" where that does not depend on data. */
} umbrix_error;

/* Contexts */

/** One line of calls: where its errors, notes and progress go. Cheap; one thread at a time uses it. */
typedef struct umbrix_context umbrix_context;

/** NULL if there is no memory. */
umbrix_context* umbrix_context_new(void);
/** Of NULL: does nothing. */
void umbrix_context_free(umbrix_context* context);

/** Fills @p error with the outcome of the last call with this context. Texts stand until the next one. */
void umbrix_last_error(umbrix_context const* context, umbrix_error* error);

/** Told at least every 50 ms while a call works, on the calling thread.
 * @param stage What is done, "occlusion".
 * @param share How far that is, 0 to 1.
 * @return 0 to stop the work; anything else to go on. */
typedef int (*umbrix_progress)(void* user, char const* stage, double share);

/** Sets the progress function; NULL for none. */
void umbrix_on_progress(umbrix_context* context, umbrix_progress progress, void* user);

/** Told what the user ought to know about a picture, on the calling thread.
 * @param about Its name. */
typedef void (*umbrix_note)(void* user, char const* about, char const* text);

/** Sets the function for notes; NULL for none. */
void umbrix_on_note(umbrix_context* context, umbrix_note note, void* user);

/* Settings */

/** The settings of a run, all of them with their defaults at first. */
typedef struct umbrix_settings umbrix_settings;

/** How the value of a setting is written. */
typedef enum umbrix_form {
    UMBRIX_FLAG = 0,   /**< "true" or "false". */
    UMBRIX_WHOLE = 1,  /**< "128". */
    UMBRIX_NUMBER = 2, /**< "0.05". */
    UMBRIX_AUTO = 3,   /**< "0.05" or "auto". */
    UMBRIX_CHOICE = 4, /**< One of `choices`. */
    UMBRIX_TEXT = 5    /**< As `help` says. */
} umbrix_form;

/** The jobs that a setting counts in, one bit each. Other bits are those of jobs that have no function here.
 */
enum {
    UMBRIX_IN_MAP = 1,
    UMBRIX_IN_NORMALS = 2,
    UMBRIX_IN_RELIGHT = 4,
    UMBRIX_IN_FIT = 8,
    UMBRIX_IN_READING_HEIGHTS = 16, /**< All that read heights. */
    UMBRIX_IN_HEIGHTS = 32,
    UMBRIX_IN_CHECK = 128,
    UMBRIX_IN_BENT = 256
};

/** What there is to know of a setting. Texts stand as long as the process. */
typedef struct umbrix_setting {
    size_t size;         /**< sizeof(umbrix_setting). */
    char const* name;    /**< "h-scale". */
    char const* group;   /**< Heading that it stands under. */
    char const* help;    /**< One sentence without its full stop. */
    char const* unit;    /**< " texels, 0 is off", as it follows a range; may be "". */
    char const* initial; /**< Value in new settings. */
    umbrix_form form;
    double minimum;             /**< Of a number. */
    double maximum;             /**< Of a number. */
    char const* const* choices; /**< Ends with NULL; empty without any. */
    unsigned jobs;              /**< Sum of UMBRIX_IN_...; 0 for those of presets alone. */
} umbrix_setting;

/** How many settings there are. */
size_t umbrix_setting_count(void);

/** Fills @p setting with that of the number @p index, in the order of the help.
 * UMBRIX_WRONG_ARGUMENT if there is none. */
umbrix_code umbrix_setting_at(size_t index, umbrix_setting* setting);

/** NULL if there is no memory. */
umbrix_settings* umbrix_settings_new(void);
/** The same settings once more; NULL if there is no memory. */
umbrix_settings* umbrix_settings_copy(umbrix_settings const* settings);
/** Of NULL: does nothing. */
void umbrix_settings_free(umbrix_settings* settings);

/** Sets one: ("relief", "0.05"). Words are joined by '-' or by '_'. */
umbrix_code umbrix_settings_set(umbrix_context* context, umbrix_settings* settings, char const* name,
                                char const* value);

/** Points @p value to the text of one, which stands until the next call with this context. */
umbrix_code umbrix_settings_get(umbrix_context* context, umbrix_settings const* settings, char const* name,
                                char const** value);

/** Replaces all by those of a preset. A @p name with '/' in it or ".toml" at its end is that of a file, any
 * other one that of a shipped preset. */
umbrix_code umbrix_settings_preset(umbrix_context* context, umbrix_settings* settings, char const* name);

/** Name of the shipped preset of that number; NULL behind the last. Stands as long as the process. */
char const* umbrix_preset_at(size_t index);

/* Pictures */

/** A picture with what it tells of itself. */
typedef struct umbrix_picture umbrix_picture;

/** What a sample is. */
typedef enum umbrix_samples {
    UMBRIX_UINT8 = 0,  /**< k stands for k / 255. */
    UMBRIX_UINT16 = 1, /**< k stands for k / 65535; the processor's byte order. */
    UMBRIX_HALF = 2,   /**< IEEE 754 binary16; the processor's byte order. */
    UMBRIX_FLOAT = 3
} umbrix_samples;

/** What the samples mean. Normals are encoded as 0 to 1 in whole numbers, and are -1 to 1 in floats. */
typedef enum umbrix_kind {
    UMBRIX_UNKNOWN = 0, /**< Functions find out, or take it for what they need. */
    UMBRIX_HEIGHTS = 1,
    UMBRIX_NORMALS = 2,
    UMBRIX_LIGHT = 3 /**< An Umbrix map, light, occlusion or a lit picture. */
} umbrix_kind;

/** How texels lie in memory. The first is the upper left one; strides may be negative. */
typedef struct umbrix_layout {
    size_t size;  /**< sizeof(umbrix_layout). */
    int width;    /**< 1 to 65535. */
    int height;   /**< 1 to 65535. */
    int channels; /**< 1 to 4. */
    umbrix_samples samples;
    umbrix_kind kind;
    ptrdiff_t row_stride;     /**< From a row to the one below. 0: rows are packed. */
    ptrdiff_t texel_stride;   /**< From a texel to the one on its right. 0: texels are packed. */
    ptrdiff_t channel_stride; /**< From a channel to the next. 0: channels are packed. */
} umbrix_layout;

/** A picture without texels, to be the result of a call. */
umbrix_code umbrix_picture_new(umbrix_context* context, umbrix_picture** picture);

/** A picture over memory of the caller's, which is read only, and stands until the picture is freed. */
umbrix_code umbrix_picture_wrap(umbrix_context* context, void const* texels, umbrix_layout const* layout,
                                umbrix_picture** picture);

/** The same over memory that is to take the result of a call. */
umbrix_code umbrix_picture_wrap_result(umbrix_context* context, void* texels, umbrix_layout const* layout,
                                       umbrix_picture** picture);

/** Reads a file. Its decoder runs in this process.
 * Formats: PNG, TIFF, OpenEXR, JPEG, WebP, TGA, PSD, DDS, HDR, PFM, BMP and more.
 * @param max_texels A larger picture is refused; 0 for 268,435,456 (16384 x 16384). */
umbrix_code umbrix_picture_read(umbrix_context* context, char const* file, double max_texels,
                                umbrix_picture** picture);

/** Of NULL: does nothing. Memory of the caller's stays. */
void umbrix_picture_free(umbrix_picture* picture);

/** Fills @p layout: of a picture over the caller's memory its own, of another one packed. A picture without
 * texels has sizes of 0. */
umbrix_code umbrix_picture_layout(umbrix_picture const* picture, umbrix_layout* layout);

/** Copies the texels to memory of the caller's, in the picture's own samples or in UMBRIX_FLOAT, where whole
 * numbers become 0 to 1. The width, height and channels of @p layout are those of the picture; its kind is
 * not looked at. */
umbrix_code umbrix_picture_copy(umbrix_context* context, umbrix_picture const* picture, void* texels,
                                umbrix_layout const* layout);

/** What messages call it: its file, or "picture" at first. Stands until the name changes. */
char const* umbrix_picture_name(umbrix_picture const* picture);
/** The name may tell what is in it: rock_height.png. */
umbrix_code umbrix_picture_set_name(umbrix_context* context, umbrix_picture* picture, char const* name);

/** Format of the file that it was read from, "PNG"; "" for others. Stands as long as the picture. */
char const* umbrix_picture_format(umbrix_picture const* picture);

/** What it tells of how it was made, a line each: "mode: projection". "" if it tells nothing. Stands until
 * that changes. Files keep it where their format can. */
char const* umbrix_picture_attributes(umbrix_picture const* picture);
/** Takes what umbrix_picture_attributes() gave; every other text clears it. */
umbrix_code umbrix_picture_set_attributes(umbrix_context* context, umbrix_picture* picture,
                                          char const* attributes);

/** Samples of a file. */
typedef enum umbrix_depth {
    UMBRIX_DEPTH_USUAL =
        0, /**< What the format holds as a rule: 8 bits, of heights that come of normals 16. */
    UMBRIX_DEPTH_8 = 1,
    UMBRIX_DEPTH_16 = 2,
    UMBRIX_DEPTH_HALF = 3,
    UMBRIX_DEPTH_FLOAT = 4
} umbrix_depth;

/** How a sample becomes a byte. */
typedef enum umbrix_rounding {
    UMBRIX_TRUNCATE = 0, /**< The part behind the point is cut off, as in all files of this library. */
    UMBRIX_NEAREST = 1,
    UMBRIX_DITHER = 2 /**< Noise hides the steps. The same picture has the same noise. */
} umbrix_rounding;

/** How long the encoder looks for a smaller file. */
typedef enum umbrix_compression {
    UMBRIX_COMPRESSION_DEFAULT = 0,
    UMBRIX_COMPRESSION_FAST = 1,
    UMBRIX_COMPRESSION_SMALL = 2
} umbrix_compression;

/** How a picture is written. */
typedef struct umbrix_saving {
    size_t size; /**< sizeof(umbrix_saving). */
    umbrix_depth depth;
    umbrix_rounding rounding;
    umbrix_compression compression;
    int overwrite; /**< Not 0: a file of that name is replaced. */
} umbrix_saving;

/** Writes a picture; the extension of @p file names the format. The file takes its name in one step, when it
 * has been read back: until then, and after an error, the former one stays.
 * @param saving NULL: all as 0. */
umbrix_code umbrix_picture_write(umbrix_context* context, umbrix_picture const* picture, char const* file,
                                 umbrix_saving const* saving);

/* Names */

/** Whether a file is called like a picture that can be read. */
int umbrix_is_picture_name(char const* file);

/** What a picture is by the ending of its name: UMBRIX_HEIGHTS, UMBRIX_NORMALS, UMBRIX_UNKNOWN where it does
 * not tell, or -1 for something that no map is made of, as rock_albedo.png. */
int umbrix_kind_of_name(char const* file);

/** Points @p name to where the result of a file goes by itself: "brick_H.tga" with "_Umbrix" to
 * "brick_Umbrix.tga". It stands until the next call with this context.
 * @param extension Of the result, with the dot; NULL: that of the file where it loses nothing, else ".png".
 */
umbrix_code umbrix_result_name(umbrix_context* context, char const* file, char const* suffix,
                               char const* extension, char const** name);

/* Maps
 *
 * `settings` may be NULL for the defaults. A result is a picture without texels, which takes what is made, or
 * one over the caller's memory, which has to have its width, height and channels, and UMBRIX_FLOAT. It tells
 * how it was made. */

/** Heights as the other functions take them: the channel, range and sign of the settings, or what the picture
 * tells of its range. One channel, 0 to 1. */
umbrix_code umbrix_read_heights(umbrix_context* context, umbrix_picture const* source,
                                umbrix_settings const* settings, umbrix_picture* result);

/** Normals of a normal map as vectors with green up, -1 to 1, as the other functions take them. Three
 * channels. */
umbrix_code umbrix_read_normals(umbrix_context* context, umbrix_picture const* source,
                                umbrix_settings const* settings, umbrix_picture* result);

/** A tangent-space normal map of heights: three channels, unit vectors. Green as "normal-y" has it. */
umbrix_code umbrix_make_normals(umbrix_context* context, umbrix_picture const* heights,
                                umbrix_settings const* settings, umbrix_picture* result);

/** The Umbrix map of heights or of normals: three channels, or four if the source has an alpha or
 * "height-in-alpha" is set. */
umbrix_code umbrix_make_map(umbrix_context* context, umbrix_picture const* source,
                            umbrix_settings const* settings, umbrix_picture* result);

/** The same with the light alone, whatever "light" and "occlusion" are. */
umbrix_code umbrix_make_light(umbrix_context* context, umbrix_picture const* source,
                              umbrix_settings const* settings, umbrix_picture* result);

/** The same with the open shares of the three directions alone. */
umbrix_code umbrix_make_occlusion(umbrix_context* context, umbrix_picture const* source,
                                  umbrix_settings const* settings, umbrix_picture* result);

/** What is to know of heights that were made of normals. */
typedef struct umbrix_height_range {
    size_t size; /**< sizeof(umbrix_height_range). */
    double low;  /**< The lowest height. The middle of both is 0.5. */
    double high;
} umbrix_height_range;

/** Heights of which umbrix_make_normals() makes these normals with the same settings: one channel, which may
 * leave 0 to 1 and tells that. @param range May be NULL. */
umbrix_code umbrix_make_heights(umbrix_context* context, umbrix_picture const* normals,
                                umbrix_settings const* settings, umbrix_picture* result,
                                umbrix_height_range* range);

/** Bent normals of heights, three channels, and the open share of the sky, one channel. Either may be NULL.
 */
umbrix_code umbrix_make_bent(umbrix_context* context, umbrix_picture const* heights,
                             umbrix_settings const* settings, umbrix_picture* bent,
                             umbrix_picture* occlusion);

/* Light */

/** How much each channel of a map counts in a light. */
typedef enum umbrix_weights { UMBRIX_FITTED = 0, UMBRIX_EXACT = 1, UMBRIX_CLAMPED = 2 } umbrix_weights;

/** The light of a relit picture. */
typedef struct umbrix_light {
    size_t size;      /**< sizeof(umbrix_light). */
    double azimuth;   /**< 0 is the right edge of the picture, 90 its top. */
    double elevation; /**< 0 to 90, straight above. */
    double exposure;  /**< Brightness of flat ground, 0.01 to 10; usual is 0.7. */
    double ambient;   /**< What light from all around adds to that, 0 to 10. */
    umbrix_weights weights;
    int force; /**< Not 0: take a picture that tells that it is no map. */
} umbrix_light;

/** A map in a light: one channel or, with an albedo, three, of linear light.
 * @param albedo   Colours of the surface, of the map's size, coded as sRGB in whole numbers; may be NULL.
 * @param settings Their "mode" counts where the map does not tell its own. */
umbrix_code umbrix_relight(umbrix_context* context, umbrix_picture const* map, umbrix_light const* light,
                           umbrix_picture const* albedo, umbrix_settings const* settings,
                           umbrix_picture* result);

/* Measures */

/** The relief that fits a height map to a normal map. */
typedef struct umbrix_fit {
    size_t size;       /**< sizeof(umbrix_fit). */
    double relief;     /**< In image widths. */
    double n_scale;    /**< Strength of the normals. */
    double gaussian;   /**< Sigma of the blur, in texels. */
    int inverted;      /**< Dark heights are high. */
    int green_down;    /**< In the normal map. */
    double angle;      /**< Mean angle that remains. */
    double flat_angle; /**< Of flat ground. */
    int beats_flat;    /**< The relief fits: it is nearer than flat ground by a tenth. */
} umbrix_fit;

/** Finds the relief at which the normals of @p heights come nearest to @p normals, of the same size.
 * @param find_blur Not 0: the sigma of a blur is found, too. */
umbrix_code umbrix_find_relief(umbrix_context* context, umbrix_picture const* heights,
                               umbrix_picture const* normals, umbrix_settings const* settings, int find_blur,
                               umbrix_fit* fit);

/** What is not sound about a picture. */
typedef struct umbrix_findings umbrix_findings;

/** One of them. Texts stand as long as the findings. */
typedef struct umbrix_finding {
    size_t size;      /**< sizeof(umbrix_finding). */
    char const* name; /**< "normal-length". */
    char const* text; /**< A sentence with figures, without its full stop. */
    char const* fix;  /**< What an exact fix does; "" where there is none. */
    double texels;    /**< That it is about; 0 where it is about the picture as a whole. */
    double strength;  /**< How bad it is; what the number is depends on the name. */
    int x;            /**< The first of the texels, counted from the upper left one; -1 if there is none. */
    int y;
} umbrix_finding;

/** Looks for what is not sound about a normal map, a height map or an Umbrix map; "h-tile" and "v-tile" say
 * where it should repeat. @param green 1: green should be up; -1: down; 0: anywhere.
 * @param mended NULL, or takes a copy of normals without what an exact fix mends; without texels if there is
 * nothing to mend. */
umbrix_code umbrix_check(umbrix_context* context, umbrix_picture const* picture,
                         umbrix_settings const* settings, int green, umbrix_findings** findings,
                         umbrix_picture* mended);

/** What the picture was taken for. */
umbrix_kind umbrix_findings_kind(umbrix_findings const* findings);
/** How many there are. */
size_t umbrix_findings_count(umbrix_findings const* findings);
/** Fills @p finding. UMBRIX_WRONG_ARGUMENT if there is none of that number. */
umbrix_code umbrix_findings_at(umbrix_findings const* findings, size_t index, umbrix_finding* finding);
/** Of NULL: does nothing. */
void umbrix_findings_free(umbrix_findings* findings);

/* Layers */

/** Layers of heights and normals, from the lowest to the uppermost. */
typedef struct umbrix_stack umbrix_stack;

/** How a layer joins what lies below it. */
typedef enum umbrix_blend {
    UMBRIX_BLEND = 0,
    UMBRIX_OVERLAY = 1,
    UMBRIX_MULTIPLY = 2,
    UMBRIX_ADD = 3
} umbrix_blend;

/** A layer. Start from umbrix_layer_default(). */
typedef struct umbrix_layer {
    size_t size; /**< sizeof(umbrix_layer). */
    int normals; /**< Not 0: the picture is a normal map. The first layer is heights. */
    umbrix_blend blend;
    double opacity;  /**< Strength of that, per cent. */
    double n_scale;  /**< Strength of its normals; NaN: what fits the relief of the settings. */
    double detail;   /**< 0 to 100. */
    double gaussian; /**< Sigma of a blur, 0 to 1000 texels. */
    double depth;    /**< -100 to 100. */
    double convex;   /**< Strength of convex edges. */
    double concave;  /**< Strength of concave edges. */
} umbrix_layer;

/** Fills @p layer, whose size is set: heights that are blended in at 100 %. */
void umbrix_layer_default(umbrix_layer* layer);

/** An empty stack. */
umbrix_code umbrix_stack_new(umbrix_context* context, umbrix_stack** stack);
/** Of NULL: does nothing. */
void umbrix_stack_free(umbrix_stack* stack);
/** Adds an uppermost layer. The picture is copied. */
umbrix_code umbrix_stack_add(umbrix_context* context, umbrix_stack* stack, umbrix_picture const* picture,
                             umbrix_layer const* layer);
/** Strength of the normals of the whole stack, 1 at first. */
umbrix_code umbrix_stack_set_normal_scale(umbrix_context* context, umbrix_stack* stack, double scale);

/** Blends the layers to the size of the lowest: normals of three channels, heights of one, stretched
 * to 0 to 1, and the Umbrix map of both, of four channels. Heights of another size repeat or are cut off,
 * normals of another size are left out. Each result may be NULL.
 *
 * Where all layers have 8 bits, the map is made of normals and heights in 8 bits, as that of a file in 8 bits
 * is; with "save-depth" of more, or deeper layers, nothing is narrowed. */
umbrix_code umbrix_stack_make(umbrix_context* context, umbrix_stack const* stack,
                              umbrix_settings const* settings, umbrix_picture* normals,
                              umbrix_picture* heights, umbrix_picture* map);

#ifdef __cplusplus
}
#endif

#endif /* UMBRIX_H */
