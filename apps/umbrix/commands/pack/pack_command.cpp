// SPDX-License-Identifier: MIT
#include "commands/pack/pack_command.h"

#include "commands/pack/pack_source.h"
#include "terminal/complaint.h"
#include "terminal/say.h"
#include "toolkit/base/text.h"
#include "toolkit/files/preflight.h"
#include "toolkit/pictures/naming.h"
#include "toolkit/pictures/output_check.h"
#include "toolkit/pictures/output_format.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <iterator>
#include <optional>
#include <string_view>

namespace umbrix_cli {

namespace {

constexpr std::string_view kPlaces = "rgba";
constexpr std::size_t kColours = 3;

/// "R, G, B or A", and the maps that the profile has a place for.
std::string known_places(ProfileOption const& option)
{
    std::vector<std::string> maps;
    if (option) {
        std::ranges::copy_if(option.profile->channels, std::back_inserter(maps),
                             [](std::string const& map) { return !map.empty(); });
    }
    return maps.empty() ? "R, G, B or A" : fmt::format("R, G, B, A, or {}", fmt::join(maps, ", "));
}

/// Where that goes which a word names: a channel, or the place that the profile has for a map.
ChannelPlace place_of(PackSource const& source, ProfileOption const& option)
{
    std::string const name = lower_case(source.place);
    std::size_t const channel = name.size() == 1 ? kPlaces.find(name) : std::string_view::npos;
    if (channel != std::string_view::npos) {
        return {channel, false};
    }
    std::optional<ChannelPlace> const place =
        option ? umbrixlib::toolkit::place_of(*option.profile, name) : std::nullopt;
    if (!place) {
        throw UsageError(source.word,
                         option ? fmt::format("{} has no place for '{}'", option.name, source.place)
                                : fmt::format("there is no channel '{}'", source.place),
                         fmt::format("give {}{}", known_places(option),
                                     option ? "" : ", or name a --profile that knows it"));
    }
    return *place;
}

PackedChannel inverted(PackedChannel channel)
{
    channel.invert = !channel.invert && !channel.file.empty();
    channel.value = channel.file.empty() ? 1.0 - channel.value : 0.0;
    return channel;
}

/// "R from rough.png, G from ao.png, B 0".
std::string in_words(std::vector<PackedChannel> const& channels)
{
    std::string text;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        PackedChannel const& channel = channels[i];
        text += fmt::format("{}{} {}", i == 0 ? "" : ", ", "RGBA"[i],
                            channel.file.empty() ? fmt::format("{:.6g}", channel.value)
                                                 : fmt::format("from {}", channel.file));
    }
    return text;
}

} // namespace

void PackCommand::declare(CLI::App& command)
{
    common_.declare_output(command, "");
    common_.saving.rounding = Rounding::kNearest;
    command
        .add_option(
            "SOURCES", words_,
            "What goes into the channels: R=FILE, and G, B and A in the same way. Of a grey picture its "
            "grey is taken, of a coloured one the mean of its colours; R:g=FILE takes its green, and r, "
            "b, a and luma are like it. R:invert=FILE and R:g,invert=FILE make black of white. A number "
            "from 0 to 1 fills a channel: A=1; a file of that name is ./1. Colours that are not given are "
            "0, and without A there is no alpha. With --profile, maps stand for channels: roughness=FILE")
        ->required()
        ->type_name("");
    common_.declare_limits(command);
    declare_profile(command, profile_);
    command.get_option("--output")
        ->required(false)
        ->description(
            "File to write; its extension names the format [with --profile, default the name of the "
            "first file with the profile's ending]");
    command.get_option("--depth")->description(
        "Samples of what is written: 8 or 16 bits, half or float [8, 16, half, float; default that of the "
        "deepest source, or else the nearest that the format has]");
    command.get_option("--round")->description(
        "How 8 bits are made of what is not: to the nearest, or cut [cut, nearest; default nearest]");
}

PackJob PackCommand::job_of_words() const
{
    PackJob job;
    std::vector<std::string> taken(kPlaces.size());
    job.channels.resize(kColours);
    for (std::string const& word : words_) {
        PackSource const source = parse_pack_source(word);
        auto const [place, invert] = place_of(source, profile_);
        if (!taken[place].empty()) {
            throw UsageError(word, fmt::format("{} gives the same channel", taken[place]), "leave one out");
        }
        taken[place] = word;
        job.channels.resize(std::max(job.channels.size(), place + 1));
        job.channels[place] = invert ? inverted(source.channel) : source.channel;
    }
    for (std::size_t i = 0; profile_ && i < taken.size(); ++i) {
        std::string const& map = profile_.profile->channels[i];
        if (taken[i].empty() && !map.empty()) {
            job.channels.resize(std::max(job.channels.size(), i + 1));
            job.channels[i].value = neutral_value(map);
        }
    }
    std::vector<std::string> const files = distinct_inputs(job);
    if (files.empty()) {
        throw UsageError("SOURCES", "no file is among them, and so there is no size",
                         "name one: R=rough.png");
    }
    job.files.input = files.front();
    return job;
}

void PackCommand::name_output(PackJob const& job)
{
    if (common_.output.empty() && !profile_) {
        throw UsageError("--output", "no file to write is named", "name one, or a --profile that does");
    }
    if (common_.output.empty()) {
        std::string const& suffix = profile_.file(ProfileMap::kPacked).suffix;
        common_.output = packed_output(job.files.input, suffix, profile_.profile->format).string();
    }
    follow_profile(profile_, ProfileMap::kPacked, common_);
}

/// Everything that can be checked without a look into the pictures.
void PackCommand::check_files(PackJob const& job) const
{
    for (std::string const& file : distinct_inputs(job)) {
        check_input(file);
        check_output(common_.output, file, common_.overwrite);
    }
    OutputFormat const& format = *output_format(common_.output);
    if (job.channels.size() > kColours && !format.alpha) {
        throw no_alpha(format, common_.output, profile_ ? ", or leave --profile out" : ", or leave A out");
    }
}

void PackCommand::run(Interrupts const& interrupts)
{
    PackJob const job = job_of_words();
    name_output(job);
    check_files(job);
    common_.input = job.files.input;
    Made<PackJob> const made = make_picture_file("umbrix pack", common_, job, "", interrupts);
    say("wrote {}: {} x {}, {}, {}, {:.1f} s", made.output.string(), made.report.width, made.report.height,
        made.report.to, in_words(job.channels), made.seconds);
}

} // namespace umbrix_cli
