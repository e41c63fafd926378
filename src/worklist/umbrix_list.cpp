// SPDX-License-Identifier: MIT
// The list as a store: its jobs, their fields, and who releases what.
#include "worklist/umbrix_list.h"

#include <utility>

inline namespace umbrix_v0 {

namespace {

unsigned char low_byte(int value)
{
    return static_cast<unsigned char>(static_cast<unsigned>(value) & 0xffU);
}

/// The value of a field of a job that does not exist.
template <typename T>
T nothing()
{
    return T{};
}

} // namespace

umbrix_list::~umbrix_list()
{
    remove_all();
}

void umbrix_list::remove_all()
{
    while (items.count != 0) {
        remove_item(0);
    }
}

/// The job at @p index in place, or null.
umbrix_node* umbrix_list::item_at(int index)
{
    return index < 0 ? nullptr : items.GetRef(index);
}

bool umbrix_list::add_item(enum calc_type calc_type, std::string filename, std::string search_str,
                           bool multi_thread, bool quiet, bool preserve, bool no_normal, int rays,
                           float radius, float b_radius, float h_scale, float alpha_limit, float theta_limit,
                           float contrast, float h_contrast, float brightness, float h_brightness,
                           float smooth, float h_smooth, int max, int h_max, int min, int h_min, bool tile,
                           bool h_tile, bool v_tile, bool height_map, bool generate_normal, float n_scale,
                           float gaussian, float L_Detail, int mode, bool blend_height, Modes UmbrixMode)
{
    umbrix_node item;
    item.calc_type = calc_type;
    item.multi_thread = multi_thread;
    item.quiet = quiet;
    item.preserve = preserve;
    item.no_normal = no_normal;
    item.rays = rays;
    item.radius = radius;
    item.h_scale = h_scale;
    item.alpha_limit = alpha_limit;
    item.theta_limit = theta_limit;
    item.contrast = contrast;
    item.h_contrast = h_contrast;
    item.brightness = brightness;
    item.h_brightness = h_brightness;
    item.smooth = smooth;
    item.h_smooth = h_smooth;
    item.b_radius = b_radius;
    item.max = low_byte(max);
    item.h_max = low_byte(h_max);
    item.min = low_byte(min);
    item.h_min = low_byte(h_min);
    item.tile = tile;
    item.h_tile = h_tile;
    item.v_tile = v_tile;
    item.blend_height = blend_height;
    item.UmbrixMode = UmbrixMode;
    item.height_map = height_map;
    item.generate_normal = generate_normal;
    item.n_scale = n_scale;
    item.gaussian = gaussian;
    item.L_Detail = L_Detail;
    item.mode = mode;
    item.filename = std::move(filename);
    item.search_str = std::move(search_str);
    return items.Add(item);
}

void umbrix_list::remove_item(int index)
{
    delete get_NLayers(index);
    items.Remove(index);
}

int umbrix_list::get_size()
{
    return items.count;
}

umbrix_data umbrix_list::get_data(int index)
{
    umbrix_data const* const data = item_at(index);
    return data == nullptr ? umbrix_data{} : *data;
}

umbrix_node umbrix_list::get_node(int index)
{
    umbrix_node const* const item = item_at(index);
    return item == nullptr ? umbrix_node{} : *item;
}

LinkedList<n_layer> umbrix_list::get_layers(int index)
{
    LinkedList<n_layer> const* const layers = get_layers_ptr(index);
    return layers == nullptr ? LinkedList<n_layer>{} : *layers;
}

LinkedList<n_layer>* umbrix_list::get_layers_ptr(int index)
{
    umbrix_node* const item = item_at(index);
    return item == nullptr ? nullptr : &item->layers;
}

void umbrix_list::set_layers(int index, LinkedList<n_layer> layers)
{
    if (LinkedList<n_layer>* const own = get_layers_ptr(index)) {
        *own = layers;
    }
}

NLayers* umbrix_list::get_NLayers(int index)
{
    umbrix_node const* const item = item_at(index);
    return item == nullptr ? nullptr : item->NLayers;
}

void umbrix_list::set_NLayers(int index, NLayers* layers)
{
    if (umbrix_node* const item = item_at(index)) {
        item->NLayers = layers;
    }
}

#define UMBRIX_ACCESSORS(type, name, offset)                                                                 \
    void umbrix_list::set_##name(int index, type value)                                                      \
    {                                                                                                        \
        if (umbrix_node* const item = item_at(index)) {                                                      \
            item->name = std::move(value);                                                                   \
        }                                                                                                    \
    }                                                                                                        \
    type umbrix_list::get_##name(int index)                                                                  \
    {                                                                                                        \
        umbrix_node const* const item = item_at(index);                                                      \
        return item == nullptr ? nothing<type>() : item->name;                                               \
    }
#define UMBRIX_NO_ACCESSORS(type, name, offset)
UMBRIX_ACCESSORS(std::string, filename, 0)
UMBRIX_ACCESSORS(std::string, search_str, 0)
UMBRIX_DATA_FIELDS(UMBRIX_ACCESSORS, UMBRIX_NO_ACCESSORS)
#undef UMBRIX_ACCESSORS
#undef UMBRIX_NO_ACCESSORS

} // namespace umbrix_v0
