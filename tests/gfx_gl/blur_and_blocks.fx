// Half of every fourth pixel goes to the quarter buffer, each pixel blurred with its neighbours to the full one.
#include "screen.fxh"

float4 Half(float2 uv : TEXCOORD0) : COLOR { return tex2D(CopyReader, uv) * 0.5; }
float4 Blur(float2 uv : TEXCOORD0) : COLOR {
    float2 step = float2(Inverse.x, 0);
    return (tex2D(CopyReader, uv - step) + tex2D(CopyReader, uv + step)) / 2;
}
float4 Sum(float2 uv : TEXCOORD0) : COLOR {
    return float4(tex2D(QuarterReader, uv).rgb + tex2D(FullReader, uv).rgb / 4, 1);
}
technique {
    PASS(Half, string RenderTarget = "ScreenQuarterBuffer3";)
    PASS(Blur, string RenderTarget = "ScreenBuffer2";)
    PASS(Sum, string RenderTarget = "Initial";)
}
