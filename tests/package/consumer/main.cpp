// SPDX-License-Identifier: MIT
// A user's program: the names of the standard library around the header, and ours called without a qualifier.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <math.h>

using namespace std;

#include <umbrixlib.h>

int main()
{
    float3 v = {3.0f, 4.0f, 0.0f};
    bool const math = length(&v.x) == 5.0f && saturate(2.0f) == 1.0f && rsqrt(4.0f) == 0.5f;

    LinkedList<n_layer> layers;
    umbrix_options options = {};
    options.calc_type = calc_type_light_occlusion;
    bool const records = layers.count == 0 && options.calc_type == calc_type_light_occlusion;

    float4 pixel = {0.5f, 0.5f, 0.5f, 1.0f};
    brighten(&pixel, 1, 1, 0.25f);
    bool const filters = pixel.x == 0.75f;

    float weight = 0.0f;
    GenerateExp(0.0f, &weight); // libvelloric
    bool const kernels = weight == 1.0f;

    bool const devices = DeviceCount() >= 0; // libcoralith

    bool const standard = fabs(-1.5f) == 1.5f && ceil(0.5f) == 1.0f && max(1, 2) == 2 && tolower('A') == 'a';
    return math && records && filters && kernels && devices && standard ? 0 : 1;
}
