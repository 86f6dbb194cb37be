// What effects read that show what was drawn.
float4 Inverse : InvViewPortDim;
texture Copy : SCREENCOPY; texture Quarter : SCREENQUARTERBUFFER3; texture Full : ScreenBuffer2;
#define READER(name, picture) sampler name = sampler_state { Texture = <picture>; \
    MinFilter = POINT; MagFilter = POINT; AddressU = CLAMP; AddressV = CLAMP; };
READER(CopyReader, Copy) READER(QuarterReader, Quarter) READER(FullReader, Full)
struct Out { float4 p : POSITION; float2 uv : TEXCOORD0; };
Out V(float4 p : POSITION, float2 uv : TEXCOORD0) { Out o; o.p = p; o.uv = uv + Inverse.xy * 0.5; return o; }
#define PASS(function, annotations) \
    pass < annotations > { VertexShader = compile vs_2_0 V(); PixelShader = compile ps_2_0 function(); }
