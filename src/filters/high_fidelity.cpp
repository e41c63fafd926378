// SPDX-License-Identifier: MIT
#include "filters/high_fidelity.h"

#include "common/rounding.h"
#include "foundation/vector_math.h"

namespace umbrixlib::detail {

namespace {

/// Light from one direction, given its dot product.
double light(double cosine)
{
    return wide(saturate(narrow(cosine)));
}

/// Half the light from @p along, minus half that from @p against, around mid-grey.
float channel(double along, double against)
{
    float const lit = narrow(light(along) * 0.5 + 0.5);
    return narrow(wide(lit) - light(against) * 0.5);
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

float3 HighFidelity(float3 vector)
{
    using namespace umbrixlib::detail;
    double const x = wide(vector.x);
    double const y = wide(vector.y);
    double const z = wide(vector.z);
    // Contract: the dot products keep their zero terms. One would expect them dropped; through them an
    // infinite component turns the channels of the other axes into NaN.
    // Test: HighFidelity.AnInfiniteComponentTurnsTheOtherChannelsIntoNaN
    float const red = channel(x + y * 0.0 + z * 0.0, y * 0.0 - x * 1.0 + z * 0.0);
    float const green = channel(y + x * 0.0 + z * 0.0, x * 0.0 - y * 1.0 + z * 0.0);
    float const blue = narrow(light(x * 0.0 + y * 0.0 + z) * 0.5 + 0.5);
    return {red, green, blue};
}

} // namespace umbrix_v0
