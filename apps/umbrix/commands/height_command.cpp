// SPDX-License-Identifier: MIT
#include "commands/height_command.h"

#include "options/normal_y_option.h"
#include "options/saving_options.h"
#include "options/setting_options.h"
#include "terminal/kind_name.h"
#include "terminal/say.h"

#include <fmt/format.h>

namespace umbrix_cli {

namespace {

/// What no normal map tells of its heights.
std::string unseen_in(HeightReport const& report)
{
    std::string stripes;
    if (report.stripes_x_unseen && report.stripes_y_unseen) {
        stripes = ", stripes and a chessboard of single texels";
    } else if (report.stripes_x_unseen || report.stripes_y_unseen) {
        stripes = fmt::format(", {} stripes of single texels", report.stripes_x_unseen ? "upright" : "level");
    }
    return fmt::format("the normals do not tell, and the heights are without: the mean{}", stripes);
}

} // namespace

void HeightCommand::declare(CLI::App& command)
{
    common_.declare_output(command, "INPUT_Height beside the input");
    common_.declare_input(command, "Normal map; its alpha is not looked at");
    command.get_option("--depth")->description("Samples of what is written: 8 or 16 bits, half or float "
                                               "[8, 16, half, float; default 16 where the format has it]");
    declare_normal_y(command, normal_y_, "Where green points in the normal map")->group("Relief");
    declare_options(command, settings_, kForHeight);
    declare_profile(command, profile_);
    range_ = command.get_option("--height-range");
    range_->group("Relief");
    range_->description(
        "What heights become 0 and 1 in the file, beyond which they are cut; it tells them, and `normal` "
        "and `map` obey; auto: the lowest and the highest. Without, whole numbers hold 0 to 1 alone "
        "[auto, none or two numbers, the lower one first: 0,4; default none]");
}

void HeightCommand::run(Interrupts const& interrupts)
{
    follow_profile(profile_, ProfileMap::kHeights, common_, settings_);
    common_.saving = with_depth(common_.saving, settings_.save_depth);
    HeightJob job;
    job.settings = settings_;
    job.normal_y = normal_y_;
    if (range_->count() > 0) { // a preset's is that of heights read
        job.range = settings_.height_range;
    }
    Made<HeightJob> const made = make_picture_file("umbrix height", common_, job, "_Height", interrupts);
    HeightReport const& report = made.report;
    say("wrote {}: height map, {} x {}, from normals in {}, green {}, n-scale {:.4g}, heights {:.4g} to "
        "{:.4g}{}, {:.1f} s",
        made.output.string(), report.width, report.height, report.reading, name_of(report.green),
        static_cast<double>(report.n_scale), report.low, report.high,
        report.range ? fmt::format(", 0 and 1 are {:.6g} and {:.6g}", report.range->low, report.range->high)
                     : "",
        made.seconds);
    say("{}", unseen_in(report));
}

} // namespace umbrix_cli
