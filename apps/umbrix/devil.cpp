// SPDX-License-Identifier: MIT
#include "devil.h"

#include <IL/il.h>

namespace umbrix_cli {

void start_devil()
{
    ilInit();
    ilEnable(IL_FILE_OVERWRITE);
    ilEnable(IL_ORIGIN_SET);
    ilOriginFunc(IL_ORIGIN_LOWER_LEFT);
}

void stop_devil()
{
    ilShutDown();
}

} // namespace umbrix_cli
