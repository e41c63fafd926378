// SPDX-License-Identifier: MIT
#include "toolkit/tasks/job.h"
#include "toolkit/tasks/prepared_input.h"

#include <nlohmann/json.hpp>

namespace umbrixlib::toolkit {

nlohmann::json run_info_task(Job const& job)
{
    DecodedImage const image = decode_input(job);
    KindGuess const guess = guess_kind(in_8_bits(image.to_picture(false)), job.input);
    nlohmann::json channels = nlohmann::json::array();
    for (ChannelRange const& range : image.ranges()) {
        channels.push_back({{"name", range.name},
                            {"minimum", range.minimum},
                            {"maximum", range.maximum},
                            {"mean", range.mean}});
    }
    return {{"width", image.width()},
            {"height", image.height()},
            {"bits_per_channel", image.bits_per_channel()},
            {"pixel", image.description()},
            {"channels", channels},
            {"taken_for", guess.kind == Kind::kHeightMap ? "height map" : "normal map"},
            {"because", guess.reason}};
}

} // namespace umbrixlib::toolkit
