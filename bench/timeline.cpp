// SPDX-License-Identifier: MIT
#include "timeline.h"

#include "boundary/texture_kernels.h"
#include "filters/recursive_gaussian.h"
#include "measure/clocks.h"
#include "umbrix/grading.h"

#include <IL/il.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <mutex>

namespace umbrixlib::bench {

namespace {

std::mutex calls_mutex;
std::vector<Call> noted;

class Noted {
public:
    Noted(char const* name, Place place) : name_(name), place_(place), begin_(wall_seconds()) {}
    Noted(Noted const&) = delete;
    Noted& operator=(Noted const&) = delete;
    ~Noted()
    {
        double const end = wall_seconds();
        std::scoped_lock const lock(calls_mutex);
        noted.push_back({name_, place_, begin_, end});
    }

private:
    char const* name_;
    Place place_;
    double begin_;
};

/// The function of the same name that would have been called without this program's.
template <typename Function>
Function* next_after(Function* own)
{
    Dl_info found{};
    void* next = nullptr;
    if (dladdr(reinterpret_cast<void*>(own), &found) != 0 && found.dli_sname != nullptr) {
        next = dlsym(RTLD_NEXT, found.dli_sname);
    }
    if (next == nullptr) {
        std::fputs("a function that is to be timed is in no library\n", stderr);
        std::exit(1);
    }
    return reinterpret_cast<Function*>(next);
}

/// Calls the library's function of the name and the kind of @p own.
template <typename Result, typename... Parameters, typename... Arguments>
Result timed(char const* name, Place place, Result (*own)(Parameters...), Arguments&&... arguments)
{
    auto* const next = next_after(own);
    Noted const call(name, place);
    return next(arguments...);
}

} // namespace

void forget_calls()
{
    std::scoped_lock const lock(calls_mutex);
    noted.clear();
}

std::vector<Call> calls()
{
    std::scoped_lock const lock(calls_mutex);
    std::vector<Call> sorted = noted;
    std::sort(sorted.begin(), sorted.end(), [](Call const& a, Call const& b) { return a.begin < b.begin; });
    return sorted;
}

} // namespace umbrixlib::bench

using umbrixlib::bench::Place;
using umbrixlib::bench::timed;

void GenerateRays(int height, int width, ray*& rays_a, ray*& rays_b, ray*& rays_c, int rays,
                  float theta_limit, float alpha_limit)
{
    timed("GenerateRays", Place::kKernel, &GenerateRays, height, width, rays_a, rays_b, rays_c, rays,
          theta_limit, alpha_limit);
}

void Height2DirectionalAO(float3* occlusion, float* heights, int height, int width, ray* rays_a, ray* rays_b,
                          ray* rays_c, int rays, float h_scale, float radius, bool tile, bool h_tile,
                          bool v_tile, int* progress)
{
    timed("Height2DirectionalAO", Place::kKernel, &Height2DirectionalAO, occlusion, heights, height, width,
          rays_a, rays_b, rays_c, rays, h_scale, radius, tile, h_tile, v_tile, progress);
}

void Height2Normal(float* heights, float3* normals, int height, int width)
{
    using Form = void (*)(float*, float3*, int, int);
    timed("Height2Normal", Place::kKernel, static_cast<Form>(&Height2Normal), heights, normals, height,
          width);
}

void Normal2Umbrix(float3* image, int height, int width, Modes mode, int thread, int threads)
{
    timed("Normal2Umbrix", Place::kOther, &Normal2Umbrix, image, height, width, mode, thread, threads);
}

inline namespace umbrix_v0 {

bool PreProcess(float* heights, int rows, int cols, umbrix_options& options)
{
    return timed("PreProcess", Place::kKernel, &PreProcess, heights, rows, cols, options);
}

bool PostProcess(float4* map, int rows, int cols, umbrix_options& options)
{
    using Form = bool (*)(float4*, int, int, umbrix_options&);
    return timed("PostProcess", Place::kKernel, static_cast<Form>(&PostProcess), map, rows, cols, options);
}

} // namespace umbrix_v0

extern "C" {

ILboolean ILAPIENTRY ilLoadImage(ILconst_string file)
{
    return timed("ilLoadImage", Place::kDecoderOrEncoder, &ilLoadImage, file);
}

ILboolean ILAPIENTRY ilSaveImage(ILconst_string file)
{
    return timed("ilSaveImage", Place::kDecoderOrEncoder, &ilSaveImage, file);
}

ILuint ILAPIENTRY ilCopyPixels(ILuint x, ILuint y, ILuint z, ILuint width, ILuint height, ILuint depth,
                               ILenum format, ILenum type, void* data)
{
    return timed("ilCopyPixels", Place::kOther, &ilCopyPixels, x, y, z, width, height, depth, format, type,
                 data);
}

ILboolean ILAPIENTRY ilTexImage(ILuint width, ILuint height, ILuint depth, ILubyte channels, ILenum format,
                                ILenum type, void* data)
{
    return timed("ilTexImage", Place::kOther, &ilTexImage, width, height, depth, channels, format, type,
                 data);
}

void ILAPIENTRY ilInit()
{
    timed("ilInit", Place::kOther, &ilInit);
}

void ILAPIENTRY ilShutDown()
{
    timed("ilShutDown", Place::kOther, &ilShutDown);
}
}
