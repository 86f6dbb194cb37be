// Camera-facing quads of the particle renderer. Only the vertex stage: the blending mode's fixed texture stages run on
// the colour and the texture coordinate that come out.
//
// A corner goes to (the particle's position or, for quads that hang in front of the camera, the origin) +
// BillboardMatrix applied to the corner, turned by the particle's angle and scaled by half its size: corners lie at
// -1 and 1, so the size is the length of the quad's edge.

float4x4 ViewProjection : VIEWPROJECTION;

// The directions of the quad's axes in the world; its translation does not count.
float4x4 BillboardMatrix : BillboardMatrix;

bool UseParticlePos : UseParticlePos = true;

struct Corner
{
    float3 position : POSITION;    // the particle's, in the world
    float3 corner : NORMAL;        // (-1 or 1, -1 or 1, 0)
    float size : PSIZE;
    float4 colour : COLOR0;
    float2 uv : TEXCOORD0;
    float2 rotation : TEXCOORD1;   // (cos, sin) of the particle's angle
};

struct Output
{
    float4 position : POSITION;
    float4 colour : COLOR0;
    float2 uv : TEXCOORD0;
};

Output PlaceCorner(Corner input)
{
    float2 turned;
    turned.x = input.corner.x * input.rotation.x - input.corner.y * input.rotation.y;
    turned.y = input.corner.x * input.rotation.y + input.corner.y * input.rotation.x;

    float3 offset = mul(float3(turned * (input.size * 0.5), 0), (float3x3)BillboardMatrix);
    float3 centre = UseParticlePos ? input.position : float3(0, 0, 0);

    Output output;
    output.position = mul(float4(centre + offset, 1), ViewProjection);
    output.colour = input.colour;
    output.uv = input.uv;
    return output;
}

technique Particles
{
    pass Quads
    {
        VertexShader = compile vs_1_1 PlaceCorner();
        PixelShader = NULL;
    }
}
