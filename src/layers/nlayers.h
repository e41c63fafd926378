// SPDX-License-Identifier: MIT
#pragma once

#include "common/export.h"
#include "common/vector_types.h"
#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "foundation/picture_view.h"

inline namespace umbrix_v0 {

/// Size of a layer, in texels.
struct layer_size {
    int height = 0; ///< Rows.
    int width = 0;  ///< Columns.
};

/// Ordered stack of height and normal layers, from which one normal map and one height map are blended.
///
/// Kinds of layer. A height layer has heights in 0..1, the size of the first layer, and normals once they are
/// generated. A normal layer has normals in -1..1 and a size of its own, and no heights. A blank layer has
/// neither and the size 0, 0. Buffers are row-major without padding; row 0 is the bottom row of the picture.
///
/// Records. Record i of the caller's list describes layer i. It is in the list before the layer is added,
/// the list outlives every call, and whoever removes or moves a layer does the same to its record: the stack
/// writes the field `regenerate` and nothing else.
///
/// Arguments. A file name is not null. Arrays have the room that is stated.
///
/// Ownership. The stack owns every buffer in its lists and both results; all are arrays, released with the
/// array form of delete. The fields are public for front ends that look on.
///
/// Errors. None are reported. What has no defined outcome is left out and touches no memory outside a buffer:
/// a layer without the buffer, the room or the record that a step needs, an index that is no layer's, or,
/// where the first layer of a blend is concerned, the whole call. What nothing fills is zero.
///
/// Threads. One thread at a time. Parallel loops run inside the calls, and their number of threads shows in
/// no result, with the one exception that `SaveHeight` names. No two calls that load or save files may
/// overlap, in any objects: DevIL's bound image is process-wide.
class UMBRIX_API NLayers {
public:
    /// An empty stack over the caller's records. Prepares DevIL.
    explicit NLayers(LinkedList<n_layer>* layers);
    /// The same for layers from pictures in memory alone: DevIL is left alone, and normals may be made of
    /// heights that do not repeat.
    NLayers(LinkedList<n_layer>* layers, umbrixlib::InMemory memory);
    /// As `Clear`. Leaves the records and DevIL alone.
    ~NLayers();
    NLayers(NLayers const&) = delete;
    NLayers& operator=(NLayers const&) = delete;

    /// Takes all layers and both results away. The records stay.
    void Clear();

    /// Appends the height layer in @p file; "" appends a blank layer and reads nothing. The height is the
    /// mean of the three colours. The first layer fixes the size: a smaller image repeats to the right and
    /// upwards, a larger one is cut off there; nothing is scaled.
    ///
    /// Contract: a file that cannot be read is not reported; the layer is made of the image that DevIL has
    /// bound. A failure is expected. Front ends check files first. Test:
    /// NLayersStack.AFailedLoadTakesTheBoundImage
    ///
    /// Contract: an image of one byte a texel gives heights of 0; its greys are expected. Test:
    /// NLayersStack.AnImageOfOneByteATexelHasNoHeights
    void AddLayer(char const* file);
    /// Appends the normal layer in @p file at the image's own size, or a blank layer for "". An unreadable
    /// file is handled as by `AddLayer`; an image of one byte a texel gives zero vectors.
    void AddNormalLayer(char const* file);
    /// Loads a new image into layer @p index and marks its normals as stale; a normal layer or a blank one
    /// becomes a height layer. An index below 0 or equal to `Count` appends, as `AddLayer` does; one above
    /// does nothing. In a stack whose first layer has the size 0, 0 the image's size becomes that of the
    /// first layer and of this one, which gets new buffers. Otherwise its buffers are kept if they have the
    /// room. What is replaced stays valid until `Clear`.
    void SetLayerData(int index, char const* file);

    /// Appends a height layer from a picture in memory, of any sample type. Nothing is narrowed: heights are
    /// the mean of the colours, of bytes truncated to a whole one as those of a file. False, and nothing is
    /// done, if the picture cannot be read.
    bool AddLayer(umbrixlib::PictureView const& picture);
    /// Appends a normal layer from a picture in memory, likewise.
    bool AddNormalLayer(umbrixlib::PictureView const& picture,
                        umbrixlib::NormalCoding coding = umbrixlib::NormalCoding::kColours);
    /// Replaces the picture of layer @p index by one in memory, likewise; false also if there is no such
    /// layer.
    bool SetLayerData(int index, umbrixlib::PictureView const& picture);

    /// Takes layer @p index away. An index that is no layer's does nothing, here and in the next two.
    void RemoveLayer(int index);
    /// Exchanges layer @p index with the one before it.
    void MoveLayerUp(int index);
    /// Exchanges layer @p index with the one after it.
    void MoveLayerDown(int index);

    int Count();                   ///< Number of layers.
    float3* GetLayer(int index);   ///< Normals, the stack's; null if blank or out of range.
    int GetLayerWidth(int index);  ///< 0 out of range.
    int GetLayerHeight(int index); ///< 0 out of range.
    float3* GetResult();           ///< The blended normals, the stack's; null before the first blend.
    int GetResultSize();           ///< Texels of the first layer; 0 for an empty stack.

    /// Makes the normals of layer @p index from its heights, with the parameters of its record, if the record
    /// says `regenerate`, and clears that field. The heights stay as they are.
    void GenerateLayer(int index);
    /// The same for every layer.
    void GenerateLayers();

    /// Blends the height layers into @p height. Each is filtered by itself as `HeightToNormal` does it
    /// (bilateral filter, times `n_scale`, blur, `ChangeDepth`) and folded into the result by the blend mode
    /// and the opacity of the record before its own. Opacities are limited to 0..100 in modes 0 and 1 alone,
    /// heights nowhere.
    ///
    /// @param height The caller's array, made with array new, of as many floats as the first layer has
    ///               texels. The filter of the first layer releases it and puts another in its place, which
    ///               is then the caller's.
    void BlendHeightMap(float*& height);
    /// Blends into `height_result`, which is made anew.
    ///
    /// Contract: one would expect what the other form does, and from the second layer on it differs. The
    /// bilateral filter's result takes the place of all that was blended so far, and the unfiltered layer
    /// joins it; whether a layer is blurred is asked of the first record; overlay takes the opacity of the
    /// layer that joins. Test: NLayersHeights.TheFormWithoutAnArgumentHasRulesOfItsOwn
    void BlendHeightMap();

    /// Generates all layers, then blends their normals from the first to the last into `result`, which is
    /// made anew, and scales the slopes by `normal_scale` of the first record. A layer of another size than
    /// the first is left out. How a layer joins is said by the record before its own: mode 0 cross-fades
    /// slopes, 1 overlays the vectors as colours, 2 multiplies the relief (heights needed), any other adds
    /// slopes.
    ///
    /// Contract: mode 0 divides the layers' own normals by their z and makes them unit vectors again, so one
    /// that points down turns round; layers that stay as they are would be expected. `GetLayer` shows it.
    /// Test: NLayersNormals.ModeZeroRewritesTheLayersNormals
    void BlendLayers();
    /// The same into the caller's array of as many vectors as the first layer has texels.
    ///
    /// Contract: mode 0 cross-fades into `result` and not into @p destination, whose slopes stay; the blend
    /// is expected in @p destination. Without a `result` of that size, left by `BlendLayers()`, a layer with
    /// mode 0 is left out. Test: NLayersNormals.ModeZeroOfTheOtherFormsGoesToTheResult
    void BlendLayers(float3* destination);
    /// Blends layers @p order[0] to @p order[order_count - 1] into `result`, which is made anew, at the size
    /// of the first of them. Layers may be left out or repeated. The record before a layer's is that of the
    /// layer before it in @p order. Slopes are not scaled.
    ///
    /// @param order       Indices of layers, at least one, whatever @p order_count is: the first is always
    ///                    read, except from an empty stack. Null does nothing.
    /// @param order_count How many there are; 0 or less copies layer @p order[0] into `result`, as 1 does.
    void BlendLayers(int* order, int order_count);
    /// Blends as `BlendLayers(float3*)` does and writes the picture into @p bitmap, four bytes a texel: blue
    /// (z), green (y), red (x), and one that is left alone. Rows come in reverse order, without padding.
    /// Bytes are (v + 1) / 2 * 255, truncated; what exceeds 1 wraps around.
    void BlendLayersToBmp(unsigned char* bitmap);
    /// Writes `result` into @p bitmap in the same way.
    void CopyResultToBmp(unsigned char* bitmap);

    /// Saves `result` as three bytes a texel in the format that the extension names. A name with ".vtf"
    /// anywhere in it gets its rows in reverse order.
    ///
    /// @return False without a `result`, or if that has not the room for the size; then nothing is written.
    ///         Else true, also if the file could not be written.
    ///
    /// Contract: the size is that of the last layer; that of the first, which `result` has, is expected. A
    /// stack that ends with a smaller layer saves the first texels. Test:
    /// NLayersSave.TheSizeIsThatOfTheLastLayer
    ///
    /// Contract: reversed rows start with a row of zeros and leave source row 0 out; all rows are expected.
    /// Test: NLayersSave.AVtfNameReversesTheRowsAndLosesOne
    bool SaveResult(char const* file);
    /// Blends the heights afresh and saves them as a grey picture from 0 (lowest) to 255 (highest). A flat
    /// map comes out black. Row order as in `SaveResult`.
    ///
    /// @return False without a `result`, though it is not used. Else true, also if the file could not be
    ///         written.
    ///
    /// Contract: with a ".vtf" name all threads step one column counter, so texels are skipped and written
    /// twice; a whole picture is expected, and only a team of one thread gives it. Test:
    /// NLayersSave.OneThreadSavesAWholeVtfHeightMap
    bool SaveHeight(char const* file);

    LinkedList<float3*> normals;    ///< Of each layer, or null.
    LinkedList<float*> heights;     ///< Of each layer, or null.
    LinkedList<layer_size> sizes;   ///< Of each layer.
    LinkedList<n_layer>* records;   ///< The caller's.
    float3* result = nullptr;       ///< Blended normals, or null.
    float* height_result = nullptr; ///< Blended heights, or null.

private:
    struct LayerBuffers {
        float3* normals;
        float* heights;
    };

    void make_result(layer_size size);
    float3* result_for(layer_size size) const;
    void resize_layer(int index, layer_size size, bool new_normals, bool new_heights);

    umbrixlib::Borders borders_;        ///< Of the heights that normals are made of.
    LinkedList<LayerBuffers> replaced_; ///< Taken out of the lists, and perhaps still looked at.
    float3* made_result_ = nullptr; ///< The `result` that this stack made last. Others are the front end's.
    long long made_result_texels_ = 0; ///< Its room.
};

} // namespace umbrix_v0
