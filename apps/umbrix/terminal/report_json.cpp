// SPDX-License-Identifier: MIT
#include "terminal/report_json.h"

#include "terminal/kind_name.h"
#include "toolkit/settings/setting_table.h"

#include <nlohmann/json.hpp>

namespace umbrix_cli {

using nlohmann::json;

json json_of(InfoReport const& report, std::string const& file)
{
    json channels = json::array();
    for (ChannelRange const& channel : report.channels) {
        channels.push_back({{"name", channel.name},
                            {"minimum", channel.minimum},
                            {"maximum", channel.maximum},
                            {"mean", channel.mean},
                            {"levels", channel.levels},
                            {"invalid", channel.invalid}});
    }
    if (report.only_header) {
        return {{"file", file},
                {"width", report.width},
                {"height", report.height},
                {"format", report.format},
                {"only_header", true}};
    }
    json attributes = json::object();
    for (Attribute const& each : report.attributes) {
        attributes[each.key] = each.value;
    }
    return {{"file", file},
            {"only_header", false},
            {"width", report.width},
            {"height", report.height},
            {"attributes", attributes},
            {"format", report.format},
            {"bits_per_channel", report.bits_per_channel},
            {"pixel", report.pixel},
            {"channels", channels},
            {"has_8_bit_steps", report.has_8_bit_steps},
            {"notes", report.notes},
            {"taken_for", name_of(report.taken_for)},
            {"because", report.because}};
}

json json_of(CheckReport const& report, std::string const& file, std::string const& written)
{
    json findings = json::array();
    for (Finding const& each : report.findings) {
        findings.push_back(
            {{"name", each.name},
             {"text", each.text},
             {"texels", each.texels},
             {"strength", each.strength},
             {"first", each.first ? json{{"x", each.first->x}, {"y", each.first->y}} : json(nullptr)},
             {"fix", each.fix.empty() ? json(nullptr) : json(each.fix)}});
    }
    return {{"file", file},
            {"width", report.width},
            {"height", report.height},
            {"kind", name_of(report.taken_for)},
            {"because", report.because.empty() ? json(nullptr) : json(report.because)},
            {"green", report.green ? json(name_of(*report.green)) : json(nullptr)},
            {"green_times", report.green_times},
            {"mode", report.mode ? json(name_of_mode(*report.mode)) : json(nullptr)},
            {"sound", report.findings.empty()},
            {"findings", findings},
            {"mended", report.mended},
            {"wrote", written.empty() ? json(nullptr) : json(written)}};
}

json json_of(FitReport const& report, std::string const& heights, std::string const& normals)
{
    return {{"height_map", heights},
            {"normal_map", normals},
            {"width", report.width},
            {"height", report.height},
            {"relief", report.relief},
            {"n_scale", report.n_scale},
            {"gaussian", report.gaussian},
            {"inverted", report.inverted},
            {"green", name_of(report.green)},
            {"mean_angle_degrees", report.mean_angle_degrees},
            {"other_heights_mean_angle_degrees", report.other_heights_mean_angle_degrees},
            {"other_green_mean_angle_degrees", report.other_green_mean_angle_degrees},
            {"flat_mean_angle_degrees", report.flat_mean_angle_degrees},
            {"beats_flat", report.beats_flat}};
}

json json_of(DevicesReport const& report)
{
    json devices = json::array();
    for (DevicesReport::Device const& device : report.devices) {
        devices.push_back({{"number", device.number},
                           {"name", device.name},
                           {"backend", device.backend},
                           {"default", device.is_default}});
    }
    return {{"devices", devices}, {"last_error", report.last_error}};
}

} // namespace umbrix_cli
