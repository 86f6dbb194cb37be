// Heat haze: what is bright and warm bends the picture above it.
//
//     sparkrig --effect campfire --screen-effect shader/HeatHaze.fx
//
// The heat is gathered in a quarter-size buffer: first what is warm, then what rises from there.

#include "Screen.fxh"

float Time : GAMETIME;   // stands still with the effects

float Strength
<
    string UIName = "Strength";
    float UIMin = 0;
    float UIMax = 0.02;
> = 0.006;

texture HeatPicture : SCREENQUARTERBUFFER1;
texture RisingPicture : SCREENQUARTERBUFFER2;
PICTURE_READER(Heat, HeatPicture)
PICTURE_READER(Rising, RisingPicture)

static const int kTaps = 12;
static const float kRise = 0.3;   // of the picture's height

// Red light counts, blue light does not: daylight and ice are cold.
float4 FindHeat(float2 uv : TEXCOORD0) : COLOR
{
    float heat = 0;
    for (int x = 0; x < 2; ++x)
        for (int y = 0; y < 2; ++y)
        {
            float3 colour = tex2D(Screen, uv + (float2(x, y) * 2 - 1) * InvViewPortDim.xy).rgb;
            heat += saturate(2 * (colour.r - 0.6 * colour.b - 0.3));
        }
    return heat / 4;
}

// Heat thins out on its way up and spreads to both sides.
float4 Rise(float2 uv : TEXCOORD0) : COLOR
{
    float heat = 0;
    for (int i = 0; i < kTaps; ++i)
    {
        float way = (i + 0.5) / kTaps;
        float2 below = uv + float2(0, way * kRise);
        float spread = 0.01 + 0.04 * way;
        heat += (1 - way) * (tex2D(Heat, below).r + tex2D(Heat, below - float2(spread, 0)).r
                             + tex2D(Heat, below + float2(spread, 0)).r);
    }
    return saturate(heat / kTaps);
}

// Two waves that climb at different speeds and never meet in the same way.
float4 Bend(float2 uv : TEXCOORD0) : COLOR
{
    float heat = tex2D(Rising, uv).r;
    float2 wave;
    wave.x = sin(70 * uv.y + 9 * Time) + sin(37 * uv.x + 111 * uv.y + 14 * Time);
    wave.y = sin(53 * uv.x + 83 * uv.y + 11 * Time);
    return float4(tex2D(Screen, uv + Strength * sqrt(heat) * wave).rgb, 1);
}

technique HeatHaze
{
    pass Heat < string RenderTarget = "ScreenQuarterBuffer1"; >
    {
        VertexShader = compile vs_2_0 PlaceCorner(4);
        PixelShader = compile ps_3_0 FindHeat();
    }
    pass Rising < string RenderTarget = "ScreenQuarterBuffer2"; >
    {
        VertexShader = compile vs_2_0 PlaceCorner(4);
        PixelShader = compile ps_3_0 Rise();
    }
    pass Picture < string RenderTarget = "Initial"; >
    {
        VertexShader = compile vs_2_0 PlaceCorner(1);
        PixelShader = compile ps_3_0 Bend();
    }
}
