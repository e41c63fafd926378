// SPDX-License-Identifier: MIT
#include "commands/relief/curvature_command.h"

#include "options/kind_option.h"
#include "options/normal_y_option.h"
#include "options/saving_options.h"
#include "options/setting_options.h"
#include "terminal/complaint.h"
#include "terminal/height_words.h"
#include "terminal/kind_name.h"
#include "terminal/say.h"

#include <fmt/format.h>

namespace umbrix_cli {

void CurvatureCommand::declare(CLI::App& command)
{
    common_.declare_output(command, "INPUT_Curvature beside the input");
    common_.declare_input(command, "Height map or normal map; an alpha is not looked at");
    declare_kind(command, kind_);
    declare_normal_y(command, normal_y_, "Where green points in a normal map")->group("Input");
    declare_options(command, settings_, kForCurvature | kForHeights);
}

void CurvatureCommand::run(Interrupts const& interrupts)
{
    check_normal_y_usage(normal_y_, kind_);
    common_.saving = with_depth(common_.saving, settings_.save_depth);
    CurvatureJob job;
    job.settings = settings_;
    job.kind = kind_ ? kind_ : settings_.kind;
    job.normal_y = normal_y_;
    Made<CurvatureJob> const made =
        make_picture_file("umbrix curvature", common_, job, "_Curvature", interrupts);
    CurvatureReport const& report = made.report;
    std::string line = fmt::format("wrote {}: curvature map, {} x {}, from a {}", made.output.string(),
                                   report.width, report.height, name_of(report.kind));
    if (report.guessed) {
        line += fmt::format(" (guessed: {})", report.reason);
    }
    line +=
        report.kind == Kind::kNormalMap
            ? fmt::format(", normals in {}, green {}", report.reading, name_of(report.green))
            : fmt::format("{}, n-scale {:.4g}", told(report.heights), static_cast<double>(report.n_scale));
    say("{}, curvature-radius {:.4g}, {:.1f} s", line, report.radius, made.seconds);
}

} // namespace umbrix_cli
