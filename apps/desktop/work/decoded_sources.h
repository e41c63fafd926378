// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/base/stop.h"
#include "toolkit/pictures/decoded_image.h"

#include <map>
#include <memory>
#include <string>

namespace umbrix_desktop {

namespace toolkit = umbrixlib::toolkit;

using Decoded = std::shared_ptr<toolkit::DecodedImage const>;

/// Pictures that worker processes have decoded, by the names of their files. For one thread.
class DecodedSources {
public:
    /// The picture in @p file, decoded at the first call. A Failure if it cannot be read, whatever its
    /// decoder does; Stopped as soon as there is a wish to stop.
    Decoded get(std::string const& file, toolkit::Observer& observer, toolkit::Stop const& stop);

    /// Lets all go but these.
    void keep(std::string const& one, std::string const& other);

    void forget() { pictures_.clear(); }

private:
    std::map<std::string, Decoded> pictures_;
};

} // namespace umbrix_desktop
