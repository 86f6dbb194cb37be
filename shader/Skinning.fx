// Skinned meshes that have no effect of their own. Only the vertex stage: the blending mode's fixed texture stages run
// on the colour and the texture coordinate that come out.

float4x4 Bones[256] : WORLDMATRIXARRAY;   // from the mesh to the world, each through its bone
int Influences : NUMBLENDWEIGHTS;         // of a vertex, 2 to 4; the last weight is what the others leave of 1
float4x4 ViewProjection : VIEWPROJECTION;
float4x4 TextureMatrix : TextureMatrix;

float4 Diffuse : DiffuseMaterial;
float4 Ambient : AmbientMaterial;
float4 Emissive : EmissiveMaterial;
float4 AmbientLight : AmbientColor;
int DirectionalLights : NumDirectionalLights;
float4 LightDirection[2] : DirectionalLightDirection;
float4 DirectionalColour[2] : DirectionalLightDiffCol;
int OmniLights : NumOmniLights;
float4 LightPosition[6] : OmniLightPosition;
float4 OmniColour[6] : OmniLightDiffCol;
float4 OmniAmbient[6] : OmniLightAmbiCol;
float4 Attenuation[6] : OmniLightAttenuation;

struct Skinned
{
    float4 position : POSITION;
    float4 weights : BLENDWEIGHT;
    float4 bones : BLENDINDICES;
    float3 normal : NORMAL;
    float2 uv : TEXCOORD0;
};

struct Output
{
    float4 position : POSITION;
    float4 colour : COLOR0;
    float2 uv : TEXCOORD0;
};

float3 Light(float3 place, float3 normal)
{
    float3 ambient = AmbientLight.rgb;
    float3 diffuse = 0;
    for (int i = 0; i < DirectionalLights; ++i)
        diffuse += DirectionalColour[i].rgb * saturate(dot(normal, -normalize(LightDirection[i].xyz)));
    for (int j = 0; j < OmniLights; ++j)
    {
        float3 way = LightPosition[j].xyz - place;
        float distance = length(way);
        float fade = 1 / max(dot(Attenuation[j].xyz, float3(1, distance, distance * distance)), 0.0001);
        diffuse += fade * OmniColour[j].rgb * saturate(dot(normal, way / distance));
        ambient += fade * OmniAmbient[j].rgb;
    }
    return Emissive.rgb + ambient * Ambient.rgb + diffuse * Diffuse.rgb;
}

Output Skin(Skinned input)
{
    float4 place = 0;
    float3 normal = 0;
    float rest = 1;
    for (int i = 0; i < Influences; ++i)
    {
        float weight = i < Influences - 1 ? input.weights[i] : rest;
        float4x4 bone = Bones[(int)input.bones[i]];
        place += weight * mul(input.position, bone);
        normal += weight * mul(input.normal, (float3x3)bone);
        rest -= weight;
    }
    Output output;
    output.position = mul(float4(place.xyz, 1), ViewProjection);
    output.colour = float4(saturate(Light(place.xyz, normalize(normal))), Diffuse.a);
    output.uv = mul(float4(input.uv, 1, 0), TextureMatrix).xy;
    return output;
}

technique Skinning
{
    pass Mesh
    {
        VertexShader = compile vs_3_0 Skin();
        PixelShader = NULL;
    }
}
