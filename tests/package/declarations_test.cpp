// SPDX-License-Identifier: MIT
// The exact types of all that the three libraries export, written down once more. A declaration that changes,
// if only in what it returns, no longer compiles here. `needed.py` sees to it that no export is missing.
#include "boundary/texture_kernels.h"
#include "umbrixlib.h"

#include <gtest/gtest.h>
#include <type_traits>

namespace {

/// Uses an address, so that the program needs the function from its library.
template <typename Address>
void use(Address address)
{
    [[maybe_unused]] static Address volatile used;
    used = address;
}

/// The overload of a function that has just this type.
template <typename Function>
void is(Function* function)
{
    use(function);
}

/// The same for a member function: `method<R(A...)>(&Class::name)`.
template <typename Function, typename Class>
void method(Function Class::*function)
{
    use(function);
}

/// The two accessors of a field of the work list.
template <typename T>
void accessors(void (umbrix_list::*set)(int, T), T (umbrix_list::*get)(int))
{
    use(set);
    use(get);
}

TEST(Declarations, OfVectorAndScalarMath)
{
    is<float*(float*, float*)>(cross);
    is<float(float*, float*)>(dot);
    is<float(float*)>(length);
    is<float(float, float, float)>(length);
    is<float(float, float, float, float, float, float)>(length);
    is<float(float*, float*)>(length);
    is<void(float*)>(normalize);
    is<float(float)>(rsqrt);
    is<float(float)>(saturate);
    is<float(float, float)>(max_num);
    is<float(float)>(torad);
    is<float3(float3)>(operator++);
    is<float3(float3)>(operator--);
    is<void(int&, int)>(limit_num);
    is<void(float&, float)>(limit_num);
}

TEST(Declarations, OfArraysAndText)
{
    is<float*(float*, int, int, float)>(set_up_array);
    is<int*(int*, int, int, int)>(set_up_array);
    is<bool*(bool*, int, int, bool)>(set_up_array);
    is<float*(int&, int, float)>(fill_array);
    is<int*(int&, int, int)>(fill_array);
    is<bool*(int&, int, bool)>(fill_array);
    is<float*(float*, int&, float)>(add_val);
    is<int*(int*, int&, int)>(add_val);
    is<bool*(bool*, int&, bool)>(add_val);
    is<std::string*(std::string*, int&, std::string)>(add_string);
    is<void(char*, int)>(strclr);
    is<int(char*, char)>(strrpos);
    is<int(int, char const*)>(find_drive);
    is<void(char*)>(umbrix_v0::tolower);
    is<std::string(char*)>(umbrix_v0::toupper);
}

template <typename Pixel>
void tone_operators()
{
    is<void(Pixel*, int, int, float)>(brighten);
    is<void(Pixel*, int, int, float, int, int)>(brighten);
    is<void(Pixel*, int, int, float)>(change_contrast);
    is<void(Pixel*, int, int, float, int, int)>(change_contrast);
    is<void(Pixel*, int, int, int, int)>(limit_color);
    is<void(Pixel*, int, int, int, int, int, int)>(limit_color);
    is<void(Pixel*, float, int, int, int, int)>(posterize);
    is<void(Pixel*, int, int, int)>(smooth);
}

template <typename Pixel>
void gaussians()
{
    is<void(Pixel*, Pixel*, int, int, float, bool)>(blur);
    is<void(float*, Pixel*, Pixel*, int, int, int, int)>(convolveAndTranspose);
    is<void(Pixel*, Pixel*, Pixel*, int, int, float)>(gaussianFilterRGBA);
    using Pass = void(Pixel*, Pixel*, int, int, float, float, float, float, float, float, float, float);
    using Share =
        void(Pixel*, Pixel*, int, int, float, float, float, float, float, float, float, float, int, int);
    is<Pass>(recursiveGaussian_rgba);
    is<Share>(recursiveGaussian_rgba);
    is<Pass>(recursiveGaussianY_rgba);
    is<Share>(recursiveGaussianY_rgba);
}

TEST(Declarations, OfFilters)
{
    tone_operators<float>();
    tone_operators<float3>();
    tone_operators<float4>();
    gaussians<float>();
    gaussians<float3>();
    gaussians<float4>();
    is<int(float*&, float)>(makeKernel);
    is<void(float*, float*, float, int, int)>(blend);
    is<void(float*, float*, float, int, int, int, int)>(blend);
    is<void(float3*, float3*, float, int, int)>(blend);
    is<void(float3*, float3*, float, int, int, int, int)>(blend);
    is<void(float3*, float, int, int)>(blend);
    is<void(float3*, float, int, int, int, int)>(blend);
    is<void(float3*, float3*, float, int, int)>(overlay);
    is<void(float3*, float3*, float, int, int, int, int)>(overlay);
    is<float(float, float)>(multiply);
    is<float(float, float)>(screen);
    is<float3(float3)>(HighFidelity);
    is<void(float*, int, int)>(TileHeight);
}

TEST(Declarations, OfNormals)
{
    is<float3(float, float, float, float)>(GetNormal);
    is<float3(float, float, float, float, float)>(GetNormal);
    is<bool(char const*, char const*, float, float, bool, int, float, bool, bool, std::string*, int*)>(
        HeightToNormal);
    is<bool(float*, float3*, int, int, float, float, float, bool, int, float, bool, float, float, bool,
            std::string*, int*)>(HeightToNormal);
    is<bool(std::string, std::string, float, float, bool, int, float, bool, LinkedList<n_layer>, bool, bool,
            std::string*, std::string*, int*)>(FolderToNormal);
    is<bool(GPU_opt, std::string, std::string, float, float, bool, int, float, bool, LinkedList<n_layer>,
            bool, bool, std::string*, std::string*, int*)>(FolderToNormal_GPU);
}

TEST(Declarations, OfUmbrixMaps)
{
    is<bool(float3, float3&, umbrix_options&)>(normal2umbrix);
    is<bool(float*, float3*, int, int, umbrix_options&, int*)>(height2umbrix);
    is<float(float*, int, int, int, int, int, float, float, float, float3**, int, bool, bool, bool)>(
        trace_rays);
    is<bool(float*, int, int, umbrix_options&)>(PreProcess);
    is<bool(float3*, int, int, umbrix_options&)>(PostProcess);
    is<bool(float4*, int, int, umbrix_options&)>(PostProcess);
    is<bool(std::string, std::string, umbrix_options&, LinkedList<n_layer>*, NLayers*, std::string*, int*)>(
        UmbrixFile);
    is<bool(GPU_opt, std::string, std::string, umbrix_options&, LinkedList<n_layer>*, NLayers*, std::string*,
            int*)>(UmbrixFile_GPU);
    is<bool(std::string, std::string, umbrix_options&, LinkedList<n_layer>*, std::string*, std::string*,
            int*)>(UmbrixFolder);
    is<bool(GPU_opt, std::string, std::string, umbrix_options&, LinkedList<n_layer>*, NLayers*, std::string*,
            std::string*, int*)>(UmbrixFolder_GPU);
}

TEST(Declarations, OfNLayers)
{
    static_assert(std::is_constructible_v<NLayers, LinkedList<n_layer>*>);
    static_assert(!std::is_polymorphic_v<NLayers>);
    LinkedList<n_layer> records;
    NLayers const stack(&records);
    EXPECT_EQ(stack.records, &records);
    NLayers const in_memory(&records, umbrixlib::InMemory{});
    EXPECT_EQ(in_memory.records, &records);

    method<void()>(&NLayers::Clear);
    method<void(char const*)>(&NLayers::AddLayer);
    method<void(char const*)>(&NLayers::AddNormalLayer);
    method<void(int, char const*)>(&NLayers::SetLayerData);
    method<void(int)>(&NLayers::RemoveLayer);
    method<void(int)>(&NLayers::MoveLayerUp);
    method<void(int)>(&NLayers::MoveLayerDown);
    method<int()>(&NLayers::Count);
    method<float3*(int)>(&NLayers::GetLayer);
    method<int(int)>(&NLayers::GetLayerWidth);
    method<int(int)>(&NLayers::GetLayerHeight);
    method<float3*()>(&NLayers::GetResult);
    method<int()>(&NLayers::GetResultSize);
    method<void(int)>(&NLayers::GenerateLayer);
    method<void()>(&NLayers::GenerateLayers);
    method<void()>(&NLayers::BlendHeightMap);
    method<void(float*&)>(&NLayers::BlendHeightMap);
    method<void()>(&NLayers::BlendLayers);
    method<void(float3*)>(&NLayers::BlendLayers);
    method<void(int*, int)>(&NLayers::BlendLayers);
    method<void(unsigned char*)>(&NLayers::BlendLayersToBmp);
    method<void(unsigned char*)>(&NLayers::CopyResultToBmp);
    method<bool(umbrixlib::PictureView const&)>(&NLayers::AddLayer);
    method<bool(umbrixlib::PictureView const&, umbrixlib::NormalCoding)>(&NLayers::AddNormalLayer);
    method<bool(int, umbrixlib::PictureView const&)>(&NLayers::SetLayerData);
    method<bool(char const*)>(&NLayers::SaveResult);
    method<bool(char const*)>(&NLayers::SaveHeight);
}

TEST(Declarations, OfRunsInMemory)
{
    is<umbrixlib::MapResult(umbrixlib::MapRequest const&)>(umbrixlib::make_map);
    is<umbrixlib::NormalsResult(umbrixlib::NormalsRequest const&)>(umbrixlib::make_normals);
    method<int() const>(&umbrixlib::RunControl::permille);
    method<void()>(&umbrixlib::RunControl::stop);
    method<void(char const*)>(&umbrixlib::RunControl::enter);
    is<void*(std::size_t)>(umbrixlib::detail::map_zeros);
    is<void(void*, std::size_t)>(umbrixlib::detail::release_mapped);

    using Bytes = unsigned char*;
    is<void(float4 const*, std::ptrdiff_t, int, Bytes)>(umbrixlib::map_to_bytes);
    is<void(float3 const*, std::ptrdiff_t, Bytes)>(umbrixlib::map_to_bytes);
    is<void(float3 const*, std::ptrdiff_t, Bytes)>(umbrixlib::normals_to_bytes);
    is<void(float const*, std::ptrdiff_t, Bytes)>(umbrixlib::heights_to_bytes);
    is<void(float*, std::ptrdiff_t)>(umbrixlib::stretch_heights);
}

TEST(Declarations, OfLinkedList)
{
    using List = LinkedList<n_layer>;
    method<bool(n_layer)>(&List::Add);
    method<n_layer(int) const>(&List::Get);
    method<n_layer*(int)>(&List::GetRef);
    method<n_layer(int)>(&List::Remove);
    method<n_layer()>(&List::RemoveFirst);
    static_assert(std::is_default_constructible_v<List> && std::is_copy_constructible_v<List>);
    static_assert(std::is_same_v<decltype(std::declval<List&>() = std::declval<List const&>()), List const&>);
}

TEST(Declarations, OfTheWorkList)
{
    umbrix_list list;
    EXPECT_EQ(list.get_size(), 0);

    method<bool(enum calc_type, std::string, std::string, bool, bool, bool, bool, int, float, float, float,
                float, float, float, float, float, float, float, float, int, int, int, int, bool, bool, bool,
                bool, bool, float, float, float, int, bool, Modes)>(&umbrix_list::add_item);
    method<void(int)>(&umbrix_list::remove_item);
    method<int()>(&umbrix_list::get_size);
    method<umbrix_data(int)>(&umbrix_list::get_data);
    method<umbrix_node(int)>(&umbrix_list::get_node);
    method<LinkedList<n_layer>(int)>(&umbrix_list::get_layers);
    method<LinkedList<n_layer>*(int)>(&umbrix_list::get_layers_ptr);
    method<void(int, LinkedList<n_layer>)>(&umbrix_list::set_layers);
    method<NLayers*(int)>(&umbrix_list::get_NLayers);
    method<void(int, NLayers*)>(&umbrix_list::set_NLayers);
    method<bool(std::string)>(&umbrix_list::load_list);
    method<bool(std::string)>(&umbrix_list::save_list);
}

TEST(Declarations, OfTheAccessorsOfTheWorkList)
{
    using List = umbrix_list;
    accessors<enum calc_type>(&List::set_calc_type, &List::get_calc_type);
    accessors<Modes>(&List::set_UmbrixMode, &List::get_UmbrixMode);

    accessors<std::string>(&List::set_filename, &List::get_filename);
    accessors<std::string>(&List::set_search_str, &List::get_search_str);

    accessors<bool>(&List::set_multi_thread, &List::get_multi_thread);
    accessors<bool>(&List::set_quiet, &List::get_quiet);
    accessors<bool>(&List::set_preserve, &List::get_preserve);
    accessors<bool>(&List::set_no_normal, &List::get_no_normal);
    accessors<bool>(&List::set_tile, &List::get_tile);
    accessors<bool>(&List::set_h_tile, &List::get_h_tile);
    accessors<bool>(&List::set_v_tile, &List::get_v_tile);
    accessors<bool>(&List::set_blend_height, &List::get_blend_height);
    accessors<bool>(&List::set_height_map, &List::get_height_map);
    accessors<bool>(&List::set_generate_normal, &List::get_generate_normal);

    accessors<int>(&List::set_rays, &List::get_rays);
    accessors<int>(&List::set_mode, &List::get_mode);

    accessors<float>(&List::set_radius, &List::get_radius);
    accessors<float>(&List::set_b_radius, &List::get_b_radius);
    accessors<float>(&List::set_h_scale, &List::get_h_scale);
    accessors<float>(&List::set_alpha_limit, &List::get_alpha_limit);
    accessors<float>(&List::set_theta_limit, &List::get_theta_limit);
    accessors<float>(&List::set_contrast, &List::get_contrast);
    accessors<float>(&List::set_h_contrast, &List::get_h_contrast);
    accessors<float>(&List::set_brightness, &List::get_brightness);
    accessors<float>(&List::set_h_brightness, &List::get_h_brightness);
    accessors<float>(&List::set_smooth, &List::get_smooth);
    accessors<float>(&List::set_h_smooth, &List::get_h_smooth);
    accessors<float>(&List::set_n_scale, &List::get_n_scale);
    accessors<float>(&List::set_gaussian, &List::get_gaussian);
    accessors<float>(&List::set_L_Detail, &List::get_L_Detail);

    accessors<unsigned char>(&List::set_max, &List::get_max);
    accessors<unsigned char>(&List::set_h_max, &List::get_h_max);
    accessors<unsigned char>(&List::set_min, &List::get_min);
    accessors<unsigned char>(&List::set_h_min, &List::get_h_min);
}

TEST(Declarations, OfTheErrorBox)
{
    is<message_handler(message_handler)>(set_message_handler);
    static_assert(std::is_same_v<message_handler, void (*)(char const*, char const*)>);
}

TEST(Declarations, OfTheTextureKernels)
{
    is<void(float, float*)>(GenerateExp);
    is<void(float, float*, int, int)>(GenerateExp);
    is<void(float*, float*, int, int, float, float*, float*)>(BilateralFilter);
    is<void(float3*, float3*, int, int, float, float*, float*)>(BilateralFilter);
    is<void(float*, float*, int, int, float, float*, float*, int, int)>(BilateralFilter);
    is<void(float*, int, int, float, float)>(ChangeDepth);
    is<void(float*, float3*, int, int)>(Height2Normal);
    is<void(float3*, int, int, float)>(Height2Normal);
    is<void(float3*, float*, int, int, float, float)>(NormalEdges);
    is<void(float3*, int, int, float)>(NormalScale);
    is<void(float, float3*, float3*, float3*, int, int)>(BlendNormal);
    is<void(BlendType, float, float3*, float3*, float3*, int, int)>(Blend);
    is<void(BlendType, float, float3*, float3*, float3*, int, int, int, int)>(Blend);
    is<void(float3*, int, int, Modes, int, int)>(Normal2Umbrix);
    is<void(int, int, ray*&, ray*&, ray*&, int, float, float)>(GenerateRays);
    is<void(float3*, float*, int, int, ray*, ray*, ray*, int, float, float, bool, bool, bool, int*)>(
        Height2DirectionalAO);
}

TEST(Declarations, OfTheGraphicsLibrary)
{
    is<void(int)>(SetDevice);
    is<void(float*, int, int)>(SetDest);
    is<void(float3*, int, int)>(SetDest);
    is<void(float4*, int, int)>(SetDest);
    is<void(float*, int, int)>(SetSrc);
    is<void(float3*, int, int)>(SetSrc);
    is<void(float*, int, int)>(GetDest);
    is<void(float3*, int, int)>(GetDest);
    is<void(float4*, int, int)>(GetDest);
    is<void()>(DeleteDest);
    is<void()>(DeleteSrc);
    is<bool(GPU_opt, float*, int, int, umbrix_options&)>(PreProcess_GPU);
    is<bool(GPU_opt, float4*, int, int, umbrix_options&)>(PostProcess_GPU);
    is<bool(GPU_opt, float*, int, int, float, float, float, float, std::string*, int*)>(HeightToNormal_GPU);
    is<void(GPU_opt, float3*, int, int, int)>(UmbrixNormal_GPU);
    is<void(float*, int, int, int, float, float, float, int, bool, bool, bool, int, int*)>(DirectionalAO_GPU);
    is<int()>(DeviceCount);
    is<char const*(int)>(DeviceName);
    is<char const*()>(ActiveBackend);
    is<char const*()>(LastError);
    is<report_handler(report_handler)>(SetReportHandler);
    static_assert(std::is_same_v<report_handler, void (*)(char const*)>);
}

} // namespace
