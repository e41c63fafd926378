// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The blends of a layer stack, written out plainly: one loop a step, every rounding a cast. Kernels are
/// called through the library border, so that the same code serves the real ones and their stand-ins.

#include "boundary/texture_kernels.h"
#include "filters/recursive_gaussian.h"
#include "foundation/n_layer.h"
#include "layers/nlayers.h"
#include "normals/height_to_normal.h"

#include <cmath>
#include <vector>

namespace umbrixlib::test {

struct ReferenceLayer {
    layer_size size;
    bool has_heights = false;
    bool has_normals = false;
    std::vector<float> heights;
    std::vector<float3> normals;

    std::size_t texels() const
    {
        return static_cast<std::size_t>(size.height) * static_cast<std::size_t>(size.width);
    }
};

struct ReferenceStack {
    std::vector<ReferenceLayer> layers;
    std::vector<n_layer> records;
    std::vector<float3> result; ///< Empty stands for none.
};

enum class HeightForm { kReference, kNoArgument };

inline std::vector<float> reference_heights(ReferenceStack const& stack, HeightForm form)
{
    auto const& layers = stack.layers;
    auto const& records = stack.records;
    bool const own_form = form == HeightForm::kNoArgument;
    int const H = layers[0].size.height;
    int const W = layers[0].size.width;
    std::size_t const n = layers[0].texels();
    std::vector<float> scratch(n);
    std::vector<float> accumulator(layers[0].heights.begin(),
                                   layers[0].heights.begin() + static_cast<std::ptrdiff_t>(n));

    auto const chain = [&](std::vector<float>& b, std::vector<float>& replaced, n_layer const& r, bool blur) {
        std::vector<float> filtered(n);
        std::vector<float> spatial(static_cast<std::size_t>(std::max(0.0f, std::ceil(r.L_Detail))) + 1);
        float range[256] = {};
        GenerateExp(r.L_Detail, spatial.data());
        GenerateExp(128.0f, range);
        if (r.L_Detail > 1.0f) {
            std::vector<float> source = b;
            BilateralFilter(source.data(), filtered.data(), H, W, r.L_Detail, spatial.data(), range);
            replaced = filtered;
        }
        for (std::size_t k = 0; k < n; ++k) {
            b[k] = float(double(b[k]) * double(r.n_scale));
        }
        if (blur) {
            gaussianFilterRGBA(b.data(), b.data(), scratch.data(), W, H, r.gaussian);
        }
        if (r.depth != 0.0f) {
            ChangeDepth(b.data(), H, W, r.depth, r.n_scale);
        }
    };

    auto const blend = [&](std::vector<float> const& second, float percent) {
        if (percent > 100.0f) {
            percent = 100.0f;
        } else if (percent < 0.0f) {
            percent = 0.0f;
        }
        float const t = float(double(percent) / 100.0);
        for (std::size_t k = 0; k < n; ++k) {
            accumulator[k] =
                float(double(second[k]) * double(t) + double(accumulator[k]) * (1.0 - double(t)));
        }
    };

    chain(accumulator, accumulator, records[0], records[0].gaussian > 0.0f);
    for (std::size_t i = 1; i < layers.size(); ++i) {
        if (!layers[i].has_heights) {
            continue;
        }
        std::vector<float> work(layers[i].heights.begin(),
                                layers[i].heights.begin() + static_cast<std::ptrdiff_t>(n));
        chain(work, own_form ? accumulator : work, records[i],
              (own_form ? records[0] : records[i]).gaussian > 0.0f);
        n_layer const& before = records[i - 1];
        float const t = float(double(before.opacity) / 100.0);
        if (before.blend_mode == 0) {
            blend(work, before.opacity);
        } else if (before.blend_mode == 1) {
            std::vector<float> s(n);
            for (std::size_t k = 0; k < n; ++k) {
                double const l = double(work[k]);
                double const r = double(accumulator[k]);
                float const screened = float(1.0 - (1.0 - l) * (1.0 - r));
                float const multiplied = float(l * r);
                s[k] = float(double(screened) * r + double(multiplied) * (1.0 - r));
            }
            blend(s, own_form ? records[i].opacity : before.opacity);
        } else if (before.blend_mode == 2) {
            for (std::size_t k = 0; k < n; ++k) {
                double const l = double(work[k]);
                double const r = double(accumulator[k]);
                accumulator[k] = float((l * r) * double(t) + r * (1.0 - double(t)));
            }
        } else {
            for (std::size_t k = 0; k < n; ++k) {
                double const l = double(work[k]);
                double const r = double(accumulator[k]);
                accumulator[k] = float((l + r) * double(t) + r * (1.0 - double(t)));
            }
        }
    }
    return accumulator;
}

enum class NormalForm { kResult, kDestination, kBitmap, kOrder };

inline float3 reference_unit(float3 v)
{
    float const d = float(double(v.y) * double(v.y) + double(v.x) * double(v.x) + double(v.z) * double(v.z));
    float const root = float(std::sqrt(double(d)));
    float const s = float(1.0 / double(root));
    return {float(double(v.x) * double(s)), float(double(v.y) * double(s)), float(double(v.z) * double(s))};
}

inline void reference_generate(ReferenceStack& stack)
{
    for (std::size_t i = 0; i < stack.layers.size(); ++i) {
        ReferenceLayer& layer = stack.layers[i];
        n_layer& r = stack.records[i];
        if (r.regenerate && layer.has_heights) {
            std::string text;
            int progress = 0;
            HeightToNormal(layer.heights.data(), layer.normals.data(), layer.size.height, layer.size.width,
                           r.n_scale, r.gaussian, r.depth, false, 1, r.L_Detail, r.spare_flag, r.edge_a,
                           r.edge_b, true, &text, &progress);
        }
        r.regenerate = false;
    }
}

/// Runs a blend on @p stack, whose layers and result it changes as the library does, and gives what is
/// blended.
inline std::vector<float3> reference_normals(ReferenceStack& stack, NormalForm form,
                                             std::vector<int> sequence = {})
{
    auto const& records = stack.records;
    if (form != NormalForm::kOrder) {
        for (std::size_t i = 0; i < stack.layers.size(); ++i) {
            sequence.push_back(int(i));
        }
    }
    auto const at = [&](int i) -> ReferenceLayer& { return stack.layers[std::size_t(i)]; };
    layer_size const size = at(sequence[0]).size;
    std::size_t const n = at(sequence[0]).texels();
    reference_generate(stack);
    std::vector<float3> acc(at(sequence[0]).normals.begin(),
                            at(sequence[0]).normals.begin() + std::ptrdiff_t(n));
    bool const into_result = form == NormalForm::kResult || form == NormalForm::kOrder;
    auto const slope = [](float3 v) {
        return float3{float(double(v.x) / double(v.z)), float(double(v.y) / double(v.z)), 1.0f};
    };
    auto const saturated = [](float c) { return c > 1.0f ? 1.0f : (0.0f > c ? 0.0f : c); };
    for (std::size_t j = 1; j < sequence.size(); ++j) {
        ReferenceLayer& layer = at(sequence[j]);
        if (layer.size.height != size.height || layer.size.width != size.width || !layer.has_normals) {
            continue;
        }
        n_layer const& h = records[std::size_t(sequence[j - 1])];
        float const p = h.opacity;
        float const t = float(double(p) / 100.0);
        if (h.blend_mode == 0) {
            if (!into_result && stack.result.size() < n) {
                continue; // no room for the cross-fade
            }
            for (std::size_t k = 0; k < n; ++k) {
                acc[k] = slope(acc[k]);
                layer.normals[k] = slope(layer.normals[k]);
            }
            if (form == NormalForm::kResult) {
                BlendNormal(p, layer.normals.data(), acc.data(), acc.data(), size.height, size.width);
            } else if (form == NormalForm::kOrder) {
                BlendNormal(p, acc.data(), layer.normals.data(), acc.data(), size.height, size.width);
            } else {
                BlendNormal(p, acc.data(), layer.normals.data(), stack.result.data(), size.height,
                            size.width);
            }
            for (std::size_t k = 0; k < n; ++k) {
                acc[k] = reference_unit(acc[k]);
                layer.normals[k] = reference_unit(layer.normals[k]);
            }
        } else if (h.blend_mode == 1) {
            std::vector<float3> a(n);
            std::vector<float3> b(n);
            auto const colour = [&](float c) { return saturated(float((double(c) + 1.0) * 0.5)); };
            for (std::size_t k = 0; k < n; ++k) {
                a[k] = {colour(acc[k].x), colour(acc[k].y), colour(acc[k].z)};
                float3 const l = layer.normals[k];
                b[k] = {colour(l.x), colour(l.y), colour(l.z)};
            }
            Blend(BlendType_Overlay, p, a.data(), b.data(), a.data(), size.height, size.width);
            auto const component = [&](float c) { return float(double(saturated(c)) * 2.0 - 1.0); };
            for (std::size_t k = 0; k < n; ++k) {
                acc[k] = reference_unit({component(a[k].x), component(a[k].y), component(a[k].z)});
            }
        } else if (h.blend_mode == 2) {
            ReferenceLayer const& base = at(form == NormalForm::kOrder ? sequence.back() : 0);
            if (!layer.has_heights || !base.has_heights || base.texels() < n) {
                continue;
            }
            for (std::size_t k = 0; k < n; ++k) {
                float3 a = slope(acc[k]);
                float3 const l = layer.normals[k];
                double const hb = double(base.heights[k]);
                double const hl = double(layer.heights[k]);
                a.x = float(((double(l.x) / double(l.z)) * hb + hl * double(a.x)) * double(t) +
                            double(a.x) * (1.0 - double(t)));
                a.y = float(((double(l.y) / double(l.z)) * hb + hl * double(a.y)) * double(t) +
                            double(a.y) * (1.0 - double(t)));
                acc[k] = reference_unit(a);
            }
        } else {
            for (std::size_t k = 0; k < n; ++k) {
                float3 a = slope(acc[k]);
                float3 const l = layer.normals[k];
                a.x = float((double(l.x) / double(l.z) + double(a.x)) * double(t) +
                            double(a.x) * (1.0 - double(t)));
                a.y = float((double(l.y) / double(l.z) + double(a.y)) * double(t) +
                            double(a.y) * (1.0 - double(t)));
                acc[k] = reference_unit(a);
            }
        }
    }
    if (form != NormalForm::kOrder) {
        NormalScale(acc.data(), size.height, size.width, records[0].normal_scale);
    }
    if (into_result) {
        stack.result = acc;
    }
    return acc;
}

} // namespace umbrixlib::test
