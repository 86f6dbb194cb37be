// Types and initial values.
float none;
half suffixed = 1.5h;
double2 filled = 2;
int negative = -7;
dword colour = 0xFF804020;
bool3 truths = {0, 5, false};
float2x3 rows = {1, 2, 3, 4, 5, 6};
vector four;
texture picture = NULL;
samplerCUBE cube;
PixelShader function = NULL;
float x, y : Y, z = 3;
static float hidden = 2;
struct Inner { float2 b[3]; };
struct Outer { float4 a; Inner inner; };
Outer members;
shared float4 used : register(c3) : VParam2 < string ResourceName = "dir\new" ".tga"; float step = 0.5; int3 n = {4, 5, 6}; > = 1;
sampler read = sampler_state { texture = (picture); MinFilter = linear; AddressU[3] = CLAMP; BorderColor = 0x80102030; MipMapLodBias = -0.5; AddressU = MIRROR; };

// The preprocessor.
#define THREE 3
float value3 = THREE;
#define ADD(x, y) ((x) + (y))
float value6 = ADD(1, ADD(2, 3));
#define JOIN(x, y) x##y
float value15 = JOIN(1, 5);
#define SELF SELF + 0
#define A 4
#undef A
float A = 4;
#define EMPTY()
float value5 EMPTY() = 5;
#if defined(X) || !defined Y && (2 * 3 >> 1) == 3
float other6 = 6;
#else
syntax error
#endif
#ifdef X
#error no
#elif 0
#if 1
bad
#endif
#elif 1 << 2 > 3
float value7 = 7;
#else
bad
#endif
float value8\
 = 8;   // ends here \
 not here
#define LATE(x) x
float value9 = LATE
(9);
#define TEXT(x) #x
string quoted = TEXT(two  words);

// States; the later assignment of one counts.
technique A <int n = 2;>
{
    pass First <string s = "t";>
    {
        ZWriteEnable = true;
        CullMode = cCw;
        ZENABLE = USEW;
        ZWriteEnable = false;
        AlphaRef = 0x7F;
        FogStart = 2;
        DepthBias = -1 * 0.25;
        TextureFactor = float4(1, 0.5, 0, 0.2);
        ColorWriteEnable = RED | ALPHA;
        VertexBlend = 2WEIGHTS;
        Wrap3 = U | V;
        ColorArg1[2] = TEXTURE | COMPLEMENT;
        TexCoordIndex[1] = 3 | CAMERASPACENORMAL;
        BumpEnvMat01[7] = 0.5;
        MagFilter[15] = POINT;
        LightEnable[4] = TRUE;
        LightType[4] = SPOT;
        MaterialPower = 12.5;
        MaterialDiffuse = {0.75};
    }
    pass { }
}
TECHNIQUE { Pass Last { Texture[1] = NULL; } }
