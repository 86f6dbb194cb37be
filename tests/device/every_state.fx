// Changes a state of every kind that an effect can change.
float4x4 Matrix;
float4 Colour = float4(1, 0.5, 0.25, 1);
texture Picture;
sampler2D Reader = sampler_state { Texture = <Picture>; MinFilter = POINT; };

float4 Place(float4 position : POSITION) : POSITION { return mul(position, Matrix); }
float4 Paint(float2 uv : TEXCOORD0) : COLOR { return tex2D(Reader, uv) * Colour; }

technique All
{
    pass
    {
        FogColor = 0x00112233;
        ColorOp[1] = ADD;
        WorldTransform[1] = <Matrix>;
        LightType[2] = POINT;
        LightEnable[2] = TRUE;
        MaterialPower = 3;
        VertexShader = compile vs_1_1 Place();
        PixelShader = compile ps_2_0 Paint();
    }
}
