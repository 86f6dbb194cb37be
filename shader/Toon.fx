// Drawn like a cartoon: light in three steps, and a black line around it.

float4x4 World : WORLD;
float4x4 WorldInverseTranspose : WORLDINVERSETRANSPOSE;
float4x4 ViewProjection : VIEWPROJECTION;
float4 ViewPosition : VIEWPOSITION;
float4x4 TextureMatrix : TextureMatrix;
float4 Diffuse : DiffuseMaterial;
float Opacity : Opacity;
float4 Light[2] : DirectionalLightDirection;
int Lights : NumDirectionalLights;

texture DiffusePicture : DIFFUSEMAP;
sampler2D Picture = sampler_state
{ Texture = <DiffusePicture>; MinFilter = LINEAR; MagFilter = LINEAR; MipFilter = LINEAR; AddressU = WRAP; AddressV = WRAP; };

// Numbered parameters can be given with a material.
float LineWidth : fParam1 < string UIName = "Line width"; float UIMin = 0; float UIMax = 0.02; > = 0.006;
float Steps : fParam2 < string UIName = "Steps of light"; float UIMin = 1; float UIMax = 8; > = 3;
float4 LineColour : vParam1 < string UIName = "Line colour"; > = { 0.05, 0.03, 0.08, 1 };

// Where there is no lamp, from the upper left behind the camera.
static const float3 kNoLamp = { -0.4, -0.6, -0.7 };

struct Vertex
{
    float4 position : POSITION;
    float3 normal : NORMAL;
    float2 uv : TEXCOORD0;
};

struct Lit
{
    float4 position : POSITION;
    float2 uv : TEXCOORD0;
    float3 normal : TEXCOORD1;
};

float3 WorldNormal(float3 normal) { return normalize(mul(normal, (float3x3)WorldInverseTranspose)); }

// Moved outwards by a part of its distance, so that the line is as wide far away as near.
float4 PlaceLine(Vertex input) : POSITION
{
    float4 place = mul(input.position, World);
    float distance = length(place.xyz - ViewPosition.xyz);
    place.xyz += WorldNormal(input.normal) * distance * LineWidth;
    return mul(place, ViewProjection);
}

Lit PlaceMesh(Vertex input)
{
    Lit output;
    output.position = mul(mul(input.position, World), ViewProjection);
    output.uv = mul(float4(input.uv, 1, 0), TextureMatrix).xy;
    output.normal = WorldNormal(input.normal);
    return output;
}

float4 DrawLine() : COLOR { return float4(LineColour.rgb, Opacity); }

float4 Paint(Lit input) : COLOR
{
    float3 towards = -normalize(Lights > 0 ? Light[0].xyz : kNoLamp);
    float light = 0.5 + 0.5 * dot(normalize(input.normal), towards);
    float step = (floor(light * Steps * 0.999) + 0.5) / Steps;
    float3 picture = tex2D(Picture, input.uv).rgb;
    if (!any(picture)) picture = 1;   // a mesh without picture reads black
    return float4(Diffuse.rgb * picture * (0.25 + step), Opacity);
}

technique Toon
{
    // The backs of the inflated mesh; its fronts would cover the mesh itself.
    pass Line
    {
        CullMode = CCW;
        VertexShader = compile vs_2_0 PlaceLine();
        PixelShader = compile ps_2_0 DrawLine();
    }
    pass Mesh
    {
        CullMode = CW;
        VertexShader = compile vs_2_0 PlaceMesh();
        PixelShader = compile ps_2_0 Paint();
    }
}
