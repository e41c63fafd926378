// SPDX-License-Identifier: MIT
// The light on an Umbrix map, as "umbrix relight" makes it. For Unity: UmbrixLight() in shaders, and a Custom Function
// node of the name UmbrixLight in Shader Graph.
#ifndef UMBRIX_UNITY_INCLUDED
#define UMBRIX_UNITY_INCLUDED

// map: red, green and blue of the map, sampled as linear data.
// light: towards the light, in tangent space, as for a normal map.
// mode: --mode of the map: 0 projection, 1 unit, 2 flat, 3 squared.
// exposure: brightness of flat ground that nothing hides. ambient: what light from all around adds to it.
float UmbrixLight(float3 map, float3 light, int mode, float exposure, float ambient)
{
    // What each channel of the map has on flat ground that nothing hides.
    float3 ground = mode == 1 ? float3(0.42640143, 0.57735027, 0.57735027)
        : mode == 2 ? float3(1.0, 1.0, 1.0)
        : mode == 3 ? float3(0.18181818, 0.33333333, 0.33333333)
        : float3(0.57735027, 0.57735027, 0.57735027);

    // A light lower than 6 degrees counts as one at 6 degrees.
    float3 towards = normalize(light);
    float plane = max(length(towards.xy), 0.000001);
    float cosine = towards.z < 0.10452846 ? 0.99452190 : plane;
    float sine = max(towards.z, 0.10452846);

    // The light's part along the plane over its height, 1.25 sine^0.3 times as long as it is: nearest to traced shadows. In
    // mode 3 a low slope changes its channels twice as much.
    float reach = mode == 3 ? 0.625 : 1.25;
    float2 slope = towards.xy / plane * (reach * cosine * pow(sine, -0.7));

    // The share of each channel in the light of flat ground, together 1. Those that face away may be below 0.
    float left = 0.375 - 0.17677670 * slope.x;
    float across = 0.40824829 * slope.y;
    float3 shares = float3(0.25 + 0.35355339 * slope.x, left - across, left + across);

    float direct = max(dot(map / ground, shares), 0.0);
    float all_around = dot(map, float3(1.0, 1.0, 1.0)) / dot(ground, float3(1.0, 1.0, 1.0));
    return max(exposure * direct + ambient * all_around, 0.0);
}

void UmbrixLight_float(float3 Map, float3 Light, float Mode, float Exposure, float Ambient, out float Out)
{
    Out = UmbrixLight(Map, Light, int(Mode + 0.5), Exposure, Ambient);
}

void UmbrixLight_half(half3 Map, half3 Light, half Mode, half Exposure, half Ambient, out half Out)
{
    Out = half(UmbrixLight(float3(Map), float3(Light), int(float(Mode) + 0.5), float(Exposure), float(Ambient)));
}

#endif
