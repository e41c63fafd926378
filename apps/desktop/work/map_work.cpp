// SPDX-License-Identifier: MIT
#include "work/map_work.h"
