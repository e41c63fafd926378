// SPDX-License-Identifier: MIT
// What each channel of the map has on flat ground that nothing hides.
vec3 ground = mode == 1 ? vec3(0.42640143, 0.57735027, 0.57735027)
    : mode == 2 ? vec3(1.0, 1.0, 1.0)
    : mode == 3 ? vec3(0.18181818, 0.33333333, 0.33333333)
    : vec3(0.57735027, 0.57735027, 0.57735027);

// A light lower than 6 degrees counts as one at 6 degrees.
vec3 towards = normalize(light);
float plane = max(length(towards.xy), 0.000001);
float cosine = towards.z < 0.10452846 ? 0.99452190 : plane;
float sine = max(towards.z, 0.10452846);

// The light's part along the plane over its height, 1.25 sine^0.3 times as long as it is: nearest to traced shadows. In
// mode 3 a low slope changes its channels twice as much.
float reach = mode == 3 ? 0.625 : 1.25;
vec2 slope = towards.xy / plane * (reach * cosine * pow(sine, -0.7));

// The share of each channel in the light of flat ground, together 1. Those that face away may be below 0.
float left = 0.375 - 0.17677670 * slope.x;
float across = 0.40824829 * slope.y;
vec3 shares = vec3(0.25 + 0.35355339 * slope.x, left - across, left + across);

float direct = max(dot(map / ground, shares), 0.0);
float all_around = dot(map, vec3(1.0, 1.0, 1.0)) / dot(ground, vec3(1.0, 1.0, 1.0));
return max(exposure * direct + ambient * all_around, 0.0);
