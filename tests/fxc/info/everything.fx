// One of everything that a description tells.
shared float4x4 World : WORLD;
float4 Tint <string UIName = "Tint"; float UIMin = 0;> = {1, 0.5, 0, 1};
int Count = 3;
string Author = "nobody";
texture Picture;
textureCUBE Sky;
sampler2D Reader : register(s2) = sampler_state { Texture = <Picture>; MinFilter = LINEAR; BorderColor = 0xFF102030; };
samplerCUBE SkyReader = sampler_state { Texture = <Sky>; };
struct Light { float3 colour; float weights[2]; };
Light Lights[2] = {{{1, 2, 3}, {4, 5}}, {{6, 7, 8}, {9, 10}}};

float4 Vertex(float4 p : POSITION) : POSITION { return mul(p, World); }
float4 Pixel(float2 uv : TEXCOORD0, uniform float scale) : COLOR { return tex2D(Reader, uv) * scale; }
float4 SkyPixel(float3 n : TEXCOORD0) : COLOR { return texCUBE(SkyReader, n); }
PixelShader Shaders[2] = { compile ps_2_0 Pixel(1), compile ps_2_0 Pixel(2) };

technique Reflecting <int quality = 3;>
{
    pass First { VertexShader = compile vs_1_1 Vertex(); PixelShader = compile ps_2_0 SkyPixel(); }
    pass { VertexShader = asm { vs.1.1 }; }
}

technique Plain
{
    pass <string RenderTarget = "ScreenBuffer1";>
    {
        VertexShader = compile vs_1_1 Vertex();
        PixelShader = (Shaders[Count]);
        CullMode = CW;
        AlphaRef = (Tint.x * 4);
        FogStart = 0.5;
        TextureFactor = float4(1, 0, 0, 1);
        ColorWriteEnable = RED | ALPHA;
        WorldTransform[2] = <World>;
        LightDiffuse[1] = {1, 2, 3, 4};
        Texture[0] = NULL;
        Wrap9 = 1;
    }
}
