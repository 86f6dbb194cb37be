#include "screen.fxh"

float4 P(float2 uv : TEXCOORD0) : COLOR { return float4(1 - tex2D(CopyReader, uv).rgb, 1); }
technique { PASS(P, ) }
