// A glow around what is bright, of two widths: blurred through the quarter-size buffers and added to the picture.
//
//     sparkrig --effect "magic heal" --screen-effect shader/Glow.fx
//
// Bright light goes to the first buffer; a row and a column of taps make it soft, and once more, further apart, wide.

#include "Screen.fxh"

float Threshold < string UIName = "Threshold"; float UIMin = 0; float UIMax = 1; > = 0.4;
float Strength < string UIName = "Strength"; float UIMin = 0; float UIMax = 3; > = 1.2;

texture FirstPicture : SCREENQUARTERBUFFER1;
texture SecondPicture : SCREENQUARTERBUFFER2;
texture ThirdPicture : SCREENQUARTERBUFFER3;
PICTURE_READER(First, FirstPicture)
PICTURE_READER(Second, SecondPicture)
PICTURE_READER(Third, ThirdPicture)

// The five taps of a Gaussian of nine pixels: between two pixels a tap reads both.
static const float kOffsets[3] = { 0, 1.3846154, 3.2307692 };
static const float kWeights[3] = { 0.2270270, 0.3162162, 0.0702703 };

// The mean of the four times four pixels that the quarter pixel covers, less the threshold, in its own colour.
float4 KeepBright(float2 uv : TEXCOORD0) : COLOR
{
    float3 colour = 0;
    for (int x = -1; x <= 1; x += 2)
        for (int y = -1; y <= 1; y += 2) colour += tex2D(Screen, uv + float2(x, y) * InvViewPortDim.xy).rgb / 4;
    float light = max(max(colour.r, colour.g), max(colour.b, 0.001));
    return float4(colour * max(light - Threshold, 0) / light, 1);
}

// `step` in pixels of the quarter-size buffer.
float4 Blur(float2 uv, sampler2D picture, float2 step)
{
    float2 offset = step * 4 * InvViewPortDim.xy;
    float3 sum = tex2D(picture, uv).rgb * kWeights[0];
    for (int i = 1; i < 3; ++i)
    {
        sum += tex2D(picture, uv + offset * kOffsets[i]).rgb * kWeights[i];
        sum += tex2D(picture, uv - offset * kOffsets[i]).rgb * kWeights[i];
    }
    return float4(sum, 1);
}

float4 BlurFirst(float2 uv : TEXCOORD0, uniform float2 step) : COLOR { return Blur(uv, First, step); }
float4 BlurSecond(float2 uv : TEXCOORD0, uniform float2 step) : COLOR { return Blur(uv, Second, step); }
float4 BlurThird(float2 uv : TEXCOORD0, uniform float2 step) : COLOR { return Blur(uv, Third, step); }

// Light is added to what is dark and never passes white.
float4 AddGlow(float2 uv : TEXCOORD0) : COLOR
{
    float3 picture = tex2D(Screen, uv).rgb;
    float3 glow = saturate(Strength * (tex2D(First, uv).rgb + tex2D(Third, uv).rgb));
    return float4(1 - (1 - picture) * (1 - glow), 1);
}

#define PASS(name, target, pixel, function) \
    pass name < string RenderTarget = target; > \
    { VertexShader = compile vs_2_0 PlaceCorner(pixel); PixelShader = compile ps_2_0 function; }

technique Glow
{
    PASS(Bright,     "ScreenQuarterBuffer1", 4, KeepBright())
    PASS(Row,        "ScreenQuarterBuffer2", 4, BlurFirst(float2(1, 0)))
    PASS(Column,     "ScreenQuarterBuffer1", 4, BlurSecond(float2(0, 1)))
    PASS(WideRow,    "ScreenQuarterBuffer2", 4, BlurFirst(float2(3, 0)))
    PASS(WideColumn, "ScreenQuarterBuffer3", 4, BlurSecond(float2(0, 3)))
    PASS(WiderRow,    "ScreenQuarterBuffer2", 4, BlurThird(float2(5, 0)))
    PASS(WiderColumn, "ScreenQuarterBuffer3", 4, BlurSecond(float2(0, 5)))
    PASS(Picture,    "Initial", 1, AddGlow())
}
