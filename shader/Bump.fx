// Knobs all over a mesh, lit by the first lamp in the space of the mesh's own picture. With a normal map the rest is the
// same: `bent` is then tex2D(NormalMap, uv).xyz * 2 - 1.

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

float Steepness : fParam1 < string UIName = "Steepness of the knobs"; float UIMin = 0; float UIMax = 2; > = 0.7;
float Knobs : fParam2 < string UIName = "Knobs along the picture"; float UIMin = 1; float UIMax = 32; > = 6;
float Shine : fParam3 < string UIName = "Shine"; float UIMin = 0; float UIMax = 1; > = 0.5;

// From the upper left behind the camera.
static const float3 kNoLamp = { -0.4, -0.6, -0.7 };

struct Vertex
{
    float4 position : POSITION;
    float3 normal : NORMAL;
    float3 tangent : TANGENT;     // where u grows; computed for meshes whose effect asks for it
    float3 binormal : BINORMAL;   // where v grows
    float2 uv : TEXCOORD0;
};

struct Bumped
{
    float4 position : POSITION;
    float2 uv : TEXCOORD0;
    float3 towards : TEXCOORD1;   // the lamp and the eye, as the picture lies on the mesh
    float3 eye : TEXCOORD2;
};

Bumped PlaceMesh(Vertex input)
{
    float4 place = mul(input.position, World);
    float3 normal = normalize(mul(input.normal, (float3x3)WorldInverseTranspose));
    float3x3 frame = float3x3(normalize(mul(input.tangent, (float3x3)World)),
                              normalize(mul(input.binormal, (float3x3)World)), normal);
    Bumped output;
    output.position = mul(place, ViewProjection);
    output.uv = mul(float4(input.uv, 1, 0), TextureMatrix).xy;
    output.towards = mul(frame, -normalize(Lights > 0 ? Light[0].xyz : kNoLamp));
    output.eye = mul(frame, normalize(ViewPosition.xyz - place.xyz));
    return output;
}

// The slope of the height cos(x) * cos(y), along u and v.
float3 Bent(float2 uv)
{
    float2 s, c;
    sincos(uv * Knobs * 6.2832, s, c);
    return normalize(float3(Steepness * s * c.yx, 1));
}

float4 Paint(Bumped input) : COLOR
{
    float3 bent = Bent(input.uv);
    float3 towards = normalize(input.towards);
    float light = saturate(dot(bent, towards));
    float shine = Shine * pow(saturate(dot(bent, normalize(towards + normalize(input.eye)))), 24);
    return float4(Diffuse.rgb * tex2D(Picture, input.uv).rgb * (0.3 + light) + shine * light, Opacity);
}

technique Bump
{
    pass Mesh
    {
        CullMode = CW;
        VertexShader = compile vs_2_0 PlaceMesh();
        PixelShader = compile ps_2_0 Paint();
    }
}
