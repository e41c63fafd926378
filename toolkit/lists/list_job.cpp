// SPDX-License-Identifier: MIT
#include "toolkit/lists/list_job.h"

#include <bit>
#include <nlohmann/json.hpp>
#include <type_traits>

namespace umbrixlib::toolkit {

namespace {

/// Floats by their bits: no value is lost on the way, not a number included.
template <typename T>
nlohmann::json packed(T value)
{
    if constexpr (std::is_same_v<T, float>) {
        return std::bit_cast<std::uint32_t>(value);
    } else {
        return static_cast<std::int64_t>(value);
    }
}

template <typename T>
void unpack(nlohmann::json const& from, T& value)
{
    if constexpr (std::is_same_v<T, float>) {
        value = std::bit_cast<float>(from.get<std::uint32_t>());
    } else {
        value = static_cast<T>(from.get<std::int64_t>());
    }
}

#define UMBRIX_PACK(type, name, offset) fields[#name] = packed(record.name);
#define UMBRIX_UNPACK(type, name, offset) unpack(fields.at(#name), record.name);

nlohmann::json pack_layer(n_layer const& record)
{
    nlohmann::json fields{{"filename", record.filename}, {"name", record.name}};
    UMBRIX_LAYER_FIELDS(UMBRIX_PACK)
    return fields;
}

n_layer unpack_layer(nlohmann::json const& fields)
{
    n_layer record;
    fields.at("filename").get_to(record.filename);
    fields.at("name").get_to(record.name);
    UMBRIX_LAYER_FIELDS(UMBRIX_UNPACK)
    return record;
}

} // namespace

std::vector<std::uint8_t> pack_list_job(umbrix_node const& record)
{
    nlohmann::json fields{{"filename", record.filename}, {"layers", nlohmann::json::array()}};
    UMBRIX_DATA_FIELDS(UMBRIX_PACK, UMBRIX_PACK)
    for (auto const* each = record.layers.head; each != nullptr; each = each->next) {
        fields["layers"].push_back(pack_layer(each->data));
    }
    return nlohmann::json::to_cbor(fields);
}

umbrix_node unpack_list_job(std::vector<std::uint8_t> const& bytes)
{
    nlohmann::json const fields = nlohmann::json::from_cbor(bytes);
    umbrix_node record;
    fields.at("filename").get_to(record.filename);
    UMBRIX_DATA_FIELDS(UMBRIX_UNPACK, UMBRIX_UNPACK)
    for (nlohmann::json const& layer : fields.at("layers")) {
        record.layers.Add(unpack_layer(layer));
    }
    return record;
}

std::vector<n_layer> layers_of(umbrix_node const& job)
{
    std::vector<n_layer> layers;
    for (auto const* each = job.layers.head; each != nullptr; each = each->next) {
        layers.push_back(each->data);
    }
    return layers;
}

umbrix_node node_of(umbrix_data const& data, std::vector<n_layer> const& layers)
{
    umbrix_node node;
    static_cast<umbrix_data&>(node) = data;
    for (n_layer const& layer : layers) {
        node.layers.Add(layer);
    }
    return node;
}

#undef UMBRIX_PACK
#undef UMBRIX_UNPACK

} // namespace umbrixlib::toolkit
