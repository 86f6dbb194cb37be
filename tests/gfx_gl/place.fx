float4x4 World : WORLD;
float4 Place(float4 p : POSITION) : POSITION { return mul(p, World); }
float4 Plain() : COLOR { return float4(0.2, 0.4, 0.6, 1); }
technique { pass < string RenderTarget = "ScreenBuffer1"; > {
    VertexShader = compile vs_2_0 Place(); PixelShader = compile ps_2_0 Plain(); } }
