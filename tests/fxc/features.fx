// The features of the effect language, one small effect each, with the pixel that it gives: "//// NAME: R G B", then
// the effect, or its declarations and behind "=> " what `float4 P(float2 uv : TEXCOORD0) : COLOR { ... }` does as ps_3_0.

// ---- Numbers as the old hardware gave them

//// fmod of a negative number: 102 102 153
float a = -1.4;
=> return float4(fmod(a, 1) + 0.8, -fmod(a, -1), a % 1 + 1.2 - fmod(1.2, 1), 1);

//// fmod of a vector: 51 153 153
float2 a = float2(-0.7, 1.7);
=> return float4(fmod(a, 0.5) + 0.4, (a % float2(0.5, 0.5)).x + 0.8, 1);

//// lit: 102 64 51
float d = 0.4, h = 0.5;
=> float4 l = lit(d, h, 2); return float4(l.y, l.z, lit(-d, h, 2).z + lit(d, h, 1).w * 0.2, l.x);

//// pow and log of a negative number: 64 51 0
float a = -0.5;
=> return float4(pow(a, 2), log2(a) + 1.2, log(a) + 0.69315, 1);

//// pow of zero: 0 102 0
float a = 0;
=> return float4(pow(a, 2), pow(a, 0) * 0.4, 0, 1);

//// pow of vectors: 64 64 64
float3 a = 0.5; float e = 2;
=> return float4(pow(a, e.xxx), 1);

//// any and all of scalars: 51 102 153
float a = 2; bool b = true; int i = 0;
=> return float4(any(a) ? 0.2 : 0, all(b) ? 0.4 : 0, any(i) ? 0 : 0.6, 1);

//// any and all of vectors: 51 102 153
float3 a = float3(0, 1, 0);
=> return float4(any(a) ? 0.2 : 0, all(a) ? 0 : 0.4, all(a < 2) ? 0.6 : 0, 1);

//// a function of the effect's own called pow: 51 0 0
float pow(float a, float b) { return a * b; }
=> return float4(pow(0.5, 0.4), 0, 0, 1);

//// integer parameters and division: 77 77 0
int n = 7;
=> return float4(n / 2 * 0.1, n % 4 * 0.1, 0, 1);

//// saturate, lerp, step and smoothstep: 51 102 51
float a = 1.5;
=> return float4(saturate(a) * 0.2, lerp(0.2, 0.6, 0.5), step(1, a) * smoothstep(0, 2, 1) * 0.4, 1);

//// frac, floor, ceil, round, sign, abs: 102 51 153
float a = -1.6;
=> return float4(frac(a), (ceil(a) + 2) * 0.2 + (round(a) + 2) * 0.3, sign(a) + abs(a), 1);

//// sincos, modf, ldexp, distance, reflect: 51 102 102
float a = 0.5;
=> float s, c, w; sincos(0, s, c); float f = modf(1.4, w); return float4(c * 0.2, f, ldexp(0.1, 2), 1);

//// dst, faceforward, rsqrt, degrees: 51 102 128
float a = 4;
=> float4 d = dst(float4(0, 0.5, 0.2, 0), float4(0, 0.4, 0, 0.6)); return float4(d.y, rsqrt(a) * 0.8, d.z + d.w *
    0.5, 1);

//// cross, dot, normalize, length, transpose, determinant: 51 128 26
float2x2 m = {1, 2, 3, 4};
=> return float4(cross(float3(1, 0, 0), float3(0, 1, 0)).z * 0.2, length(float2(0.3, 0.4)), transpose(m)[0][1] * 0.1
    + determinant(m) * 0.1, 1);

//// log10, exp2, atan2, isnan: 51 128 51
float a = 10;
=> return float4(log10(a) * 0.2, exp2(-1), atan2(0, 1) + 0.2, 1);

//// clip: 51 102 153
float a = -1;
=> clip(uv.x + 0.5); if (uv.y > 2) clip(a); return float4(0.2, 0.4, 0.6, 1);

//// clip drops the pixel: 0 0 0
float a = -1;
=> clip(float3(1, a, 1)); return 1;

//// D3DCOLORtoUBYTE4: 153 0 0
=> int4 c = D3DCOLORtoUBYTE4(float4(0.2, 0.4, 0.6, 1)); return float4(c.x / 255.0, 0, 0, 1);

// ---- Static variables

//// a static variable of a function's value: 102 0 0
float Half(float x) { return x * 0.5; } static float h = Half(0.8);
=> return float4(h, 0, 0, 1);

//// a static variable of a parameter's value: 51 102 153
float4 c = float4(0.2, 0.4, 0.6, 1); static float4 d = c * 0.5; static const float4 e = d + c * 0.5;
=> return e;

//// a static array of parameters: 51 102 153
float a = 0.2; static float w[3] = {a, a * 2, a * 3}; static const float2 o[2] = {float2(a, 0), {0, a}};
=> return float4(w[0], w[1], w[2] * o[1].y * 5, 1);

//// a static variable that a function changes: 153 0 0
static float n = 0.2; void Add() { n += 0.2; }
=> Add(); Add(); return float4(n, 0, 0, 1);

//// static const arrays in loops: 153 0 0
static const float w[4] = {0.1, 0.2, 0.1, 0.2}; static const int N = 4;
=> float s = 0; for (int i = 0; i < N; i++) s += w[i]; return float4(s, 0, 0, 1);

//// a global that a function assigns: 51 153 204
float g = 0.2; float4 k = 0.4; void Set() { g = 0.6; k.x += 0.4; }
=> float before = g; Set(); return float4(before, g, k.x, 1);

//// sizes of arrays from constants: 51 102 153
const int N = 2; static const int M = N * 2; float k[N] = {0.2, 0.4}; float w[M] = {0, 0, 0, 0.6};
=> float s[N]; s[0] = k[N - 1]; return float4(k[0], s[0], w[M - 1], 1);

//// a global const: 51 102 153
const float pi = 3.0; const float3 c = {0.2, 0.4, 0.6};
=> return float4(c * pi / 3, 1);

// ---- Entry points

//// a uniform float given a whole number: 102 102 64
float4 P(uniform float a, uniform float4 b, float2 uv : TEXCOORD0) : COLOR { return float4(a * 0.2, b.y * 0.4, uv.x,
    1); } technique { pass { PixelShader = compile ps_2_0 P(2, 1); } }

//// a uniform int given a float, a bool given a number: 102 102 0
float4 P(uniform int a, uniform bool b) : COLOR { return float4(a * 0.2, b ? 0.4 : 0, 0, 1); } technique { pass {
    PixelShader = compile ps_2_0 P(2.0, 1); } }

//// a uniform parameter whose default is left out: 51 102 153
float4 P(uniform float a, uniform float b = 0.4, uniform bool c = true) : COLOR { return float4(a, b, c ? 0.6 : 0,
    1); } technique { pass { PixelShader = compile ps_2_0 P(0.2); } }

//// a uniform parameter without argument is a parameter: 51 51 51
float4 P(uniform float4 tint) : COLOR { return tint + 0.2; } technique { pass { PixelShader = compile ps_2_0 P(); }
    }

//// a uniform sampler: 51 102 204
texture T; sampler S = sampler_state { Texture = <T>; }; float4 P(float2 uv : TEXCOORD0, uniform sampler2D s) :
    COLOR { return tex2D(s, uv); } technique { pass { PixelShader = compile ps_2_0 P(S); } }

//// an entry point that is also called: 32 96 0
float4 Inner(float2 uv : TEXCOORD0) : COLOR { return float4(uv, 0, 1); } float4 Outer(float2 uv : TEXCOORD0) : COLOR
    { return Inner(uv) * 0.5; } technique { pass { PixelShader = compile ps_2_0 Inner(); } pass { PixelShader =
    compile ps_2_0 Outer(); } }

//// an entry point called main: 51 102 153
float4 main() : COLOR { return float4(0.2, 0.4, 0.6, 1); } technique { pass { PixelShader = compile ps_2_0 main(); }
    }

//// an entry point that is overloaded: 64 64 64
float F(float a) { return a; } float4 F(float2 uv : TEXCOORD0) : COLOR { return F(uv.x); } technique { pass {
    PixelShader = compile ps_2_0 F(); } }

//// a shader variable: 51 51 51
PixelShader p = compile ps_2_0 P(); float4 P() : COLOR { return 0.2; } technique { pass { PixelShader = (p); } }

//// old targets: 255 102 51
float4 P(float4 c : COLOR0) : COLOR0 { return c; } technique { pass { PixelShader = compile ps_1_1 P(); } }

//// the pixel's number as float2: 77 102 0
float4 P(in float2 p : VPOS) : COLOR { return float4(p * 0.1, 0, 1); } technique { pass { PixelShader = compile
    ps_3_0 P(); } }

//// the pixel's number as float3 in a structure: 77 102 64
struct I { float3 p : VPOS; float2 uv : TEXCOORD0; }; float4 P(I i) : COLOR { return float4(i.p.xy * 0.1, i.uv.x,
    1); } technique { pass { PixelShader = compile ps_3_0 P(); } }

//// the pixel's number as float4: 77 102 0
float4 P(float4 p : VPOS) : COLOR { return float4(p.xy * 0.1, 0, 1); } technique { pass { PixelShader = compile
    ps_3_0 P(); } }

//// the face's side: 51 51 51
float4 P(float f : VFACE) : COLOR { return f > 0 ? 0.2 : 0.4; } technique { pass { CullMode = NONE; PixelShader =
    compile ps_3_0 P(); } }

//// out parameters instead of a result: 64 191 64
void P(float2 uv : TEXCOORD0, out float4 c : COLOR0, out float d : DEPTH) { c = uv.xyxy; d = 0.1; } technique { pass
    { PixelShader = compile ps_2_0 P(); } }

//// a structure as result: 64 191 64
struct O { float4 c : COLOR0; }; O P(float2 uv : TEXCOORD0) { O o; o.c = uv.xyxy; return o; } technique { pass {
    PixelShader = compile ps_2_0 P(); } }

//// an inout colour: 128 51 26
void P(inout float4 c : COLOR0) { c *= 0.5; } technique { pass { PixelShader = compile ps_2_0 P(); } }

// ---- Stages that meet by semantic

//// tangent and binormal of vertices that have none: 51 102 153
struct V { float4 p : POSITION; float3 t : TANGENT; float4 b : BINORMAL0; float3 n : NORMAL; }; struct O { float4 p
    : POSITION; float4 c : TEXCOORD0; }; O M(V v) { O o; o.p = v.p; o.c = float4(v.n + v.t, v.b.w); return o; }
    float4 P(float4 c : TEXCOORD0) : COLOR { return c; } technique { pass { VertexShader = compile vs_1_1 M();
    PixelShader = compile ps_2_0 P(); } }

//// any semantic between version 3 functions: 51 102 153
struct O { float4 p : POSITION0; float3 n : NORMAL; float4 w : POSITION1; float t : TEXCOORD9; float2 a : Tangent3;
    }; O M(float4 p : POSITION, float3 n : NORMAL) { O o; o.p = p; o.n = n; o.w = 0.4; o.t = 0.6; o.a = 1; return o;
    } float4 P(O o) : COLOR { return float4(o.n.x, o.w.y, o.t, o.a.x); } technique { pass { VertexShader = compile
    vs_3_0 M(); PixelShader = compile ps_3_0 P(); } }

//// _centroid: 64 191 51
float4 P(float2 uv : TEXCOORD0_centroid, centroid float4 c : COLOR0_CENTROID) : COLOR { return float4(uv, c.z, 1); }
    technique { pass { PixelShader = compile ps_3_0 P(); } }

//// structures in structures: 51 102 153
struct A { float2 uv : TEXCOORD0; float2 v[2] : TEXCOORD2; }; struct O { float4 p : POSITION; A a; float3x3 m :
    TEXCOORD4; }; O M(float4 p : POSITION) { O o; o.p = p; o.a.uv = 0.2; o.a.v[0] = 0.3; o.a.v[1] = 0.4; o.m = 0;
    o.m[1][2] = 0.6; return o; } float4 P(O o) : COLOR { return float4(o.a.uv.x, o.a.v[1].y, o.m[1].z, 1); }
    technique { pass { VertexShader = compile vs_2_0 M(); PixelShader = compile ps_2_0 P(); } }

//// semantics in any letter case, with and without number: 51 102 153
struct O { float4 p : position0; float4 c : Color; float2 uv : TexCoord; }; O M(float4 p : Position, float2 uv :
    texcoord1) { O o; o.p = p; o.c = 0.2; o.uv = uv; return o; } float4 P(float4 c : color0, float2 uv : TEXCOORD0)
    : COLOR { return float4(c.x, uv, 1); } technique { pass { VertexShader = compile vs_2_0 M(); PixelShader =
    compile ps_2_0 P(); } }

//// the position read in the pixel stage's structure: 64 191 0
struct O { float4 p : POSITION; float2 uv : TEXCOORD0; }; O M(float4 p : POSITION, float2 uv : TEXCOORD0) { O o =
    (O)0; o.p = p; o.uv = uv; return o; } float4 P(O o) : COLOR { return float4(o.uv, 0, 1); } technique { pass {
    VertexShader = compile vs_2_0 M(); PixelShader = compile ps_2_0 P(); } }

//// position of three numbers: 51 51 51
float4x4 m = {1,0,0,0, 0,1,0,0, 0,0,1,0, 0,0,0,1}; float4 M(float3 p : POSITION, out float4 c : COLOR0) : POSITION {
    c = 0.2; return mul(float4(p, 1), m); } technique { pass { VertexShader = compile vs_1_1 M(); } }

// ---- Constants of initial values and states

//// intrinsic functions in initial values: 153 102 128
float3 a = normalize(float3(3, 4, 0)); float b = sqrt(0.04) + cos(0) * max(0.1, 0.2); float c = pow(2, -1);
=> return float4(a.x, b, c, 1);

//// conditions and comparisons in initial values: 51 153 0
static const int K = 3; float a = K > 2 ? 0.2 : 0.4; float b = (1 == 2) || !(K >= 3 && true) ? 0.1 : 0.6;
=> return float4(a, b, 0, 1);

//// elements and names of constants: 102 153 204
static const float2 C[2] = {0.2, 0.4, 0.6, 0.8}; const float4 D = float4(C[1], 0, 1); float3 a = float3(C[0].y, D.x,
    D[1]);
=> return float4(a, 1);

//// comma lists: 51 51 153
float3 a = (0.4, 0.2); float2 b = (1, 2, 0.6);
=> return float4(a.xy, b.x, 1);

//// flat and nested initial values: 51 102 153
float2x2 m = {{0.1, 0.2}, {0.3, 0.4}}; float2 v[2] = {{0.1, 0.2}, 0.3, 0.4}; float w[2] = {0.5, 0.6};
=> return float4(m[0][1], v[1].y, w[1], 1);

//// a scalar in braces for a vector: 51 102 153
float4 a = {0.2}; float b = {0.4}; float4 c = float4(0.6, 0.6, 0.6, 1).xyzw;
=> return float4(a.x, b, c.z, 1);

//// values of structures: 51 102 153
struct L { float3 c; float2 d[2]; float e; }; L l = {0.2, 0.4, 0.6, {1, 2}, {3, 4}, 0.5}; L k = {{0.2, 0.4, 0.6}, 1,
    2, 3, 4, 0.5};
=> return float4(l.c.xy, k.d[1].x * 0.2, l.e * 2);

//// too many values for a vector: 51 102 102
float3 a = float4(0.2, 0.4, 0.6, 1); float2 b = {0.2, 0.4};
=> return float4(a.xy, b.y, 1);

//// matrices from constructors: 51 128 153
float2x2 m = float2x2(0.1, 0.2, 0.3, 0.4); float3x3 i = float3x3(float3(1,0,0), float3(0,0.5,0), float3(0,0,1));
    float4x4 n = 0.6;
=> return float4(m[0][1], i._m11, n[3][2], 1);

//// whole number operators: 179 51 51
int a = 7 % 4 << 1 | 1; float b = 0xA & 6; int c = ~0 ^ -3;
=> return float4(a * 0.1, b * 0.1, c * 0.1, 1);

//// casts in initial values: 51 102 102
float a = (float)3 / 15; int b = (int)2.7; float2 c = (float2)0.4;
=> return float4(a, b * 0.2, c.y, 1);

//// states of expressions with functions: 51 102 153
float4 P() : COLOR { return 1; } technique { pass { TextureFactor = 1 > 0 ? 0xFF336699 : 0; ColorOp[0] = SELECTARG1;
    ColorArg1[0] = TFACTOR; ColorOp[1] = DISABLE; } }

//// a state of a parameter and a function: 51 102 153
float4 c = float4(0.1, 0.2, 0.3, 0.5); float2 z = {1, 3}; technique { pass { TextureFactor = (c * max(1, 2));
    ColorOp[0] = SELECTARG1; ColorArg1[0] = TFACTOR; CullMode = (z.x > 0 ? 1 : 2); } }

//// a state of elements and vectors of parameters: 51 102 153
float4 k[2] = {0, 0, 0, 0, 0.1, 0.2, 0, 1}; int n = 1; float b = 0.6; technique { pass { TextureFactor =
    float4((k[n]).xy * 2, b, 1); ColorOp[0] = SELECTARG1; ColorArg1[0] = TFACTOR; } }

//// a state of a constant's name: 51 102 153
static const int kMode = 1; technique { pass { CullMode = kMode; TextureFactor = (0xFF336699); ColorOp[0] =
    SELECTARG1; ColorArg1[0] = TFACTOR; } }

// ---- Arrays of things

//// arrays of shaders: 102 102 102
float4 A() : COLOR { return 0.2; } float4 B() : COLOR { return 0.4; } int n = 1; PixelShader ps[2] = { compile
    ps_2_0 A(), compile ps_2_0 B() }; technique { pass { PixelShader = (ps[n]); } }

//// arrays of textures and samplers: 51 102 204
texture T[2]; sampler S[2] = { sampler_state { Texture = <T[0]>; }, sampler_state { Texture = (T[1]); MinFilter =
    POINT; } };
=> return tex2D(S[1], uv) * 0.5 + tex2D(S[0], uv) * 0.5;

//// arrays of samplers of one texture: 51 102 204
texture T; sampler S[2] = { sampler_state { Texture = <T>; }, sampler_state { Texture = <T>; } };
=> return tex2D(S[1], uv);

//// arrays of structures: 51 102 153
struct L { float3 c; float2 d[2]; }; L l[2] = {{{0.2, 0, 0}, {0, 0, 0, 0}}, {{0, 0.4, 0}, {0, 0, 0, 0.6}}};
=> float s = 0; for (int i = 0; i < 2; i++) s += l[i].c.x; return float4(s, l[1].c.y, l[1].d[1].y, 1);

//// arrays of arrays: 51 102 153
float a[2][3] = {{0.1, 0.2, 0.3}, {0.4, 0.5, 0.6}}; static const float b[2][2] = {0.1, 0.2, 0.3, 0.4};
=> float c[2][2]; c[1][0] = b[1][1]; return float4(a[0][1], c[1][0], a[1][2], 1);

//// whole numbers and truths between the stages: 51 102 0
void V(float4 p : POSITION, out float4 o : POSITION, out int2 n : TEXCOORD0, out bool b : TEXCOORD1) {
    o = p; n = int2(1, 2); b = true; }
float4 Q(int2 n : TEXCOORD0, bool b : TEXCOORD1) : COLOR { return float4(n * 0.2, 0, b); }
technique { pass { VertexShader = compile vs_3_0 V(); PixelShader = compile ps_3_0 Q(); } }

//// structures whose members lie close: 51 102 153
struct L { float a; float3 b; float c; float2 d; float3x2 e; bool f; float3 g; };
L l[2] = {{1, {1, 1, 1}, 0.4, {1, 1}, {1, 1, 1, 1, 1, 1}, true, {1, 1, 1}},
          {1, {1, 1, 0.2}, 1, {1, 0.3}, {1, 1, 1, 1, 1, 0.1}, true, {1, 1, 0.2}}};
=> return float4(l[1].b.z, l[0].c, l[1].d.y + l[1].e[2][1] + l[1].g.z, l[1].f);

//// typedef struct: 51 102 153
typedef struct { float2 a; } Pair; typedef struct Tagged { float4 b; } TaggedPair; typedef float3 Colour; typedef
    float Weights[2];
=> Pair p; p.a = 0.2; Tagged t; TaggedPair u; t.b = 0.4; u = t; TaggedPair l = {1, 0.4, 1, 1}; u = l; Colour c = 0.6; Weights w; w[0] = 1; return
    float4(p.a.x, u.b.y, c.z * w[0], 1);

//// a structure's variable beside it: 51 102 153
struct S { float2 a; float b; } s = {0.2, 0.4, 0.6}; struct { float c; } t;
=> return float4(s.a, s.b, 1 + t.c);

//// type words in any letter case: 51 102 204
Texture2D T; SAMPLER S = SAMPLER_STATE { TEXTURE = <T>; }; FLOAT a = 0.2; String s = "x"; Texture U;
=> return float4(a, tex2D(S, uv).yz, 1);

// ---- What the function compiler does not take

//// member names that later models reserve: 51 102 153
struct S { float sample; float2 line; float point; float Buffer; float triangle; float precise; float matrix1; };
    float linear1 = 0.2; float technique1 = 0;
=> S s; s.sample = 0.2; s.line = 0.4; s.point = 0.6; s.triangle = 1; s.Buffer = 1; s.precise = 1; return
    float4(s.sample, s.line.y, s.point * s.triangle, 1);

//// parameters whose names later models reserve: 51 102 153
float sample = 0.2; float3 line = 0.4; float lineadj = 0.6; float Buffer = 1; float buffer = 1; float shared1 = 1;
    float common = 1; float varying = 1;
=> return float4(sample, line.y, lineadj * Buffer * buffer, common * varying);

//// names that GLSL reserves: 51 102 153
float input = 0.2, output = 0.4, uv_ = 0.6; float texture_0 = 1; float globals = 1; float vec4 = 1; float mix(float
    a) { return a; } float gl_x = 1;
=> float filter = output; float active = 1; return float4(input * vec4, mix(filter), uv_ * globals * active,
    texture_0);

//// vectors made of vectors are assigned: 51 102 153
float4 v = {0.2, 0.4, 0.6, 1};
=> float2 a, b; float4(a, b) = v; return float4(a, b);

//// matrix elements are read and assigned: 51 102 153
float4x4 m = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1, 0, 0, 0, 0, 0, 0};
=> float2x2 n = 0; n._m00_m11 = float2(0.2, 0.4); n._12 = 0.6; float3x3 k = (float3x3)m; k._11_21_31 = 0.1; return
    float4(n[0][0], n._22, n._12, 1) + float4(m._m00_m01_m02, 0) - float4(k._11_11, m._13, 0) - float4(0, 0.1, 0,
    0);

//// suffixes of numbers: 51 102 153
float a = 1f; half b = 2h; float c = 5L;
=> return float4(a * 0.2f + 0h, b * 0.2h, c * .12 + 1.h - 1.xx.y, 1L);

//// a vector as an array: 51 102 153
float4 w = {0.2, 0.4, 0.6, 1}; float Sum(float x[4]) { return x[0]; }
=> float a[4] = (float[4])w; float b[4]; b = (float[4])w; return float4(a[0], b[1], a[2], 1);

//// matrices are cut to the size that is wanted: 51 102 153
float4x4 m = {0.2, 0, 0, 0.9, 0, 0.4, 0, 0.9, 0, 0, 0.6, 0.9, 9, 9, 9, 9}; float3x3 Cut(float4x4 a) { return a; }
    float D(float3x3 a) { return a[1][1]; }
=> float3x3 a = m; float3x3 b; b = m; float2x2 c = (float2x2)m; return float4(mul(float3(1, 0, 0), a).x, D(m),
    b._33, c[0][0] * 5 + Cut(m)._21);

//// mul of vectors and larger matrices: 51 102 153
float4x4 m = {0.2, 0, 0, 0, 0, 0.4, 0, 0, 0, 0, 0.6, 0, 9, 9, 9, 1};
=> float3 a = mul(float3(1, 1, 1), (float3x3)m); float4 b = mul(float4(0, 0, 0, 1), m); return float4(a, b.w);

//// a loop's variable read after it: 51 102 0
=> for (int i = 0; i < 3; i++) ; for (int j = 0; j < 2; ++j) { float x = j; } for (int i = 0; i < 1; i++) { } return
    float4(i * 0.2, j * 0.2, 0, 1);

//// two loops of one variable: 153 102 0
=> float s = 0; for (int i = 0; i < 2; i++) s += 0.1; for (int i = 0; i < 4; i++) { s += 0.1; } return float4(s, i *
    0.1, 0, 1);

//// attributes of loops and branches: 102 0 0
int n = 3; bool b = true;
=> float s = 0; [unroll] for (int i = 0; i < n; i++) s += 0.2; [loop] while (s > 0.5) s -= 0.2; [branch] if (b) { s
    *= 0.5; } [flatten] if (!b) s = 0; [unroll(4)] for (int k = 0; k < 2; k++) s += 0.1; return float4(s, 0, 0, 1);

//// loops with a bound that is computed: 102 102 0
float f = 2.5;
=> float s = 0; int n = f; for (float i = 0; i < f; i += 1) s += 0.1; do { s += 0.1; } while (s < 0.35); return
    float4(s, n * 0.2, 0, 1);

//// half, double, min16float-less casts: 51 102 153
half4 a = half4(0.2h, 0.4, 0.6, 1); double d = 0.2; half3x3 m = 1;
=> half3 h = a.rgb; double e = d; return half4(h * m[0], 1) + float4((half)0, 0, 0, e - d);

//// vector comparisons as conditions: 51 102 153
float3 a = {0.2, 0.5, 0.7};
=> float3 r = a > 0.4 ? float3(0.1, 0.4, 0.6) : float3(0.2, 0, 0); if (a.x < 0.3 && a.y) r.x += 0; bool3 b = a == a;
    return float4(r * b, 1);

//// a condition that is a number: 153 102 0
float a = 2; int n = 0;
=> float r = a ? 0.2 : 0; if (a) r += 0.2; if (!n) r += 0.2; while (n) n--; return float4(r, a && !n ? 0.4 : 0, 0,
    1);

//// lists of values in functions: 51 102 153
=> float2 o[2] = {0.1, 0.2, 0.3, 0.4}; float2x2 m = {{0.1, 0.2}, {0.3, 0.4}}; float3 v = {0.1, 0.2, 0.6}; float
    a[2][2] = {0.1, 0.2, 0.3, 0.2}; const float2 p[] = {{0, 0.1}, float2(0.1, 0.2)}; return float4(m[0][1] * 0.5 +
    o[0].x, o[1].y * v.z / 0.6, p[1].y + a[1][1] * 2, 1);

//// a flat list of a static array: 51 102 153
static const float3 t[2] = {0.2, 0.4, 0.6, 0.1, 0.1, 0.1}; static const float4x4 m = {1,0,0,0, 0,1,0,0, 0,0,1,0,
    0,0,0,1};
=> return float4(mul(float4(t[0], 1), m).rgb, 1);

//// swizzles written and read in any form: 51 102 153
=> float4 c = 0; c.xy = float2(0.2, 0.4); c.b = c.x + c.y; c.zyx.x += 0; float s = 0.4; c.rg = s.xx - float2(0.2,
    0); return float4(c.xyz, s.x + 0.6);

//// out and inout parameters: 51 102 153
void F(in float a, out float b, inout float c) { b = a * 2; c += a; }
=> float b, c = 0.4; F(0.2, b, c); return float4(0.2, b, c, 1);

//// default values of parameters: 51 102 153
float F(float a, float b = 0.2) { return a + b; }
=> return float4(F(0, 0.2), F(0.2), F(0.4), 1);

//// functions declared before they are defined: 51 0 0
float F(float a); float G(float a) { return F(a); } float F(float a) { return a * 2; }
=> return float4(G(0.1), 0, 0, 1);

//// overloaded functions: 51 102 153
float F(float a) { return a; } float F(float2 a) { return a.y; } float F(float a, float b) { return b; }
=> return float4(F(0.2), F(float2(0, 0.4)), F(0, 0.6), 1);

//// a structure of zero: 51 0 0
struct S { float4 a; float2 b[2]; float3x3 m; int n; };
=> S s = (S)0; s.a.x = 0.2; S t = s; return float4(t.a.x, s.b[1].x, s.m[0][0], 1 + s.n);

//// structures with functions and arrays as parameters: 51 102 153
struct S { float a; float b; }; S Make(float a) { S s = {a, a * 2}; return s; } float Last(float w[3]) { return
    w[2]; }
=> float w[3] = {0.1, 0.2, 0.6}; S s = Make(0.2); return float4(s.a, Make(0.2).b, Last(w), 1);

//// volatile, extern, shared, row_major and column_major: 51 102 153
shared float a = 0.2; extern volatile float b = 0.4; row_major float2x2 m = {0, 0.6, 0, 0}; column_major float2x2 n
    = {0, 1, 0, 0}; uniform const float c = 1;
=> return float4(a, b, m[0][1], n[0][1] * c);

//// vector and matrix with brackets: 51 102 153
vector<float, 3> a = 0.2; matrix<float, 2, 2> m = {0, 0.4, 0, 0}; vector v = 0.6; matrix w = 1;
=> vector<half, 2> b = a.xy; return float4(b.x, m[0][1], v.w, w[3][3]);

//// a comma between expressions: 51 102 0
=> float a = 0, b = 0; a = 0.2, b = 0.4; for (int i = 0, j = 3; i < 2; i++, j--) a += 0; return float4(a, b, 0, 1);

//// ternaries in ternaries and assignments in expressions: 51 51 0
float x = 0.5;
=> float a, b; a = b = x > 1 ? 0.1 : x > 0.4 ? 0.2 : 0.3; return float4(a, b, 0, 1);

//// a name that shadows: 153 51 0
float a = 0.2;
=> float b = a; { float a = 0.4; b += a; } float uv2 = a; return float4(b, uv2, 0, 1);

//// bit operators and shifts: 77 77 51
int a = 6;
=> return float4(((a & 3) | 1) * 0.1, (a >> 1) * 0.1, (a ^ 7) * 0.2, 1);

//// matrices times matrices and scalars: 18 102 153
float2x2 a = {1, 2, 3, 4};
=> float2x2 b = mul(a, a) * 0.01; float2x2 c = a * 0.2; return float4(b[0][0], c[1][0] - 0.2, (-a)[0][1] + 2.6, 1);

//// row and column vectors: 102 51 153
float2x3 m = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6};
=> float3 a = mul(float2(0, 1), m); float2 b = mul(m, float3(0, 1, 0)); return float4(a.x, b.x, m[1].z, 1);

//// a column of a matrix parameter that is indexed by a variable: 51 102 153
float4x4 m[3]; int n = 1; float4 k[4] = {0.1,0.1,0.1,0.1, 0.2,0.2,0.2,0.2, 0.3,0.3,0.3,0.3, 0.4,0.4,0.4,0.4};
=> float4 c = k[n]; int i = 3; c.y = k[i].y; return float4(c.xy, m[n][i][2] + 0.6, 1);

//// a vector's component by a variable: 51 102 153
float4 v = {0.2, 0.4, 0.6, 1};
=> float r[3]; for (int i = 0; i < 3; i++) r[i] = v[i]; return float4(r[0], r[1], r[2], 1);

//// an early return and discard: 51 102 153
float a = 1;
=> if (a > 2) discard; if (a > 0) return float4(0.2, 0.4, 0.6, 1); return 0;

//// string parameters and asserts in annotations: 51 0 0
string s <string a = "b"; int n[2] = {1, 2}; bool c = true; float4 d = {1, 2, 3, 4}; float3x3 m = 0;> = "x"; float x
    <string UIName = "x"; float UIMin = 0.0; float UIMax = 1e3; string UIWidget = "slider";> = 0.2;
=> return float4(x, 0, 0, 1);

//// annotations of textures and empty ones: 51 102 204
texture T : DIFFUSE < string ResourceName = "a.dds"; string ResourceType = "2D"; float2 Dimensions = {64, 64}; >;
    texture U < >; sampler S <string a = "b";> = sampler_state { Texture = (T); };
=> return tex2D(S, uv);

//// scripts of annotations: 51 51 51
float Script : STANDARDSGLOBAL < string UIWidget = "none"; string ScriptClass = "object"; string Script =
    "Technique=Technique?Main:Other;"; > = 0.8; float4 P() : COLOR { return 0.2; } technique Main < string Script =
    "Pass=p0;"; > { pass p0 < string Script = "Draw=geometry;"; > { PixelShader = compile ps_2_0 P(); } };

// ---- Textures

//// projected, biased, chosen and graded look-ups: 51 102 204
texture T; sampler S = sampler_state { Texture = <T>; MinFilter = Point; MagFilter = Point; MipFilter = None; };
=> return 0.25 * (tex2Dproj(S, float4(uv * 2, 0, 2)) + tex2Dbias(S, float4(uv, 0, 1)) + tex2Dlod(S, float4(uv, 0,
    0)) + tex2Dgrad(S, uv, ddx(uv), ddy(uv)));

//// tex2D with gradients: 51 102 204
texture T; sampler2D S = sampler_state { Texture = <T>; };
=> return tex2D(S, uv, float2(0, 0), float2(0, 0));

//// tex1D: 51 102 153
texture T; sampler1D S = sampler_state { Texture = <T>; };
=> return tex1D(S, 0.25) * 0 + float4(0.2, 0.4, 0.6, 1);

//// samplers as parameters of functions: 51 102 204
texture T; sampler S = sampler_state { Texture = <T>; }; float4 Look(sampler2D s, float2 uv) { return tex2D(s, uv);
    } float4 Twice(sampler s, float2 uv) { return Look(s, uv); }
=> return Twice(S, uv);

//// the old form of a sampler: 51 102 204
texture T; sampler S : register(s2) = sampler_state { texture = (T); AddressU = clamp; AddressV = Wrap; MinFilter =
    Linear; MipFilter = Anisotropic; MaxAnisotropy = 4; }; sampler2D U { Texture = <T>; };
=> return tex2D(S, uv) * 0.5 + tex2D(U, uv) * 0.5;

//// the texture of a sampler by its bare name: 51 102 204
texture T; sampler S = sampler_state { Texture = T; MipFilter = NONE };
=> return tex2D(S, uv);

//// a sampler bound by a pass: 51 102 204
texture T; sampler S : register(s0); float4 P(float2 uv : TEXCOORD0) : COLOR { return tex2D(S, uv); } technique {
    pass { Texture[0] = <T>; MinFilter[0] = Point; PixelShader = compile ps_2_0 P(); } }

//// a sampler without texture: 51 102 153
sampler S; sampler2D W = sampler_state { MinFilter = Point; };
=> return tex2D(S, uv) + tex2D(W, uv) + float4(0.2, 0.4, 0.6, 1);

//// swizzled results of look-ups: 0 102 153
texture T; sampler S = sampler_state { Texture = <T>; };
=> float a = tex2D(S, uv).a; float3 n = 2 * tex2D(S, uv) - 0.4; return float4(n.x, n.y, a, 1);

// ---- Files

//// macros of macros, pasted and quoted: 51 102 153
#define JOIN(a, b) a##b
#define VAL(x) JOIN(val, x)
#define STR(x) #x
#define SET(n, v) float n = v;
#define FUN(n, v) float n() { return 0-v; }
SET(VAL(1), 0.2)
FUN(c, -0.6)
string s = STR(a b);
#if defined(VAL) && !defined(NONE) && (1 + 1 == 2)
float b = 0.4;
#endif
=> return float4(val1, b, c(), 1);

//// pragmas, lines and empty directives: 51 0 0
#pragma warning(disable: 3571)
#pragma pack_matrix(row_major)
#if 0
it is "not read
#endif
#line 5 "other"
#
float a = 0.2;
=> return float4(a, 0, 0, 1);

//// a macro with a comment and a line that goes on: 51 102 153
#define A 0.2 // a comment
#define B \
  0.4
#define C(x, \
  y) (x + y)
=> return float4(A, B, C(0.2, 0.4), 1);

//// techniques without names and passes without states: 51 51 51
float4 P() : COLOR { return 0.2; } technique { pass { } pass { PixelShader = compile ps_2_0 P(); }; }; technique
    Empty { }

//// the words of techniques in any letter case: 51 51 51
float4 P() : COLOR { return 0.2; } Technique T0 { Pass P0 { PIXELSHADER = COMPILE ps_2_0 P(); ZENABLE = true; }; };

//// a name used twice: 51 51 51
float4 P() : COLOR { return 0.2; } float P0 = 0; technique P0 { pass P0 { PixelShader = compile ps_2_0 P(); } }
    technique P1 { pass P0 { } }

//// states by number: 51 102 153
technique { pass { CullMode = 1; ZEnable = 0; AlphaBlendEnable = 1; SrcBlend = 2; DestBlend = 2; TextureFactor =
    0xFF336699; ColorOp[0] = 2; ColorArg1[0] = 3; } }

//// states that the device does not need: 51 51 51
float4 P() : COLOR { return 0.2; } technique { pass { ColorWriteEnable1 = 15; ColorWriteEnable2 = RED | GREEN;
    ColorWriteEnable3 = 0xF; Wrap8 = 0; Wrap15 = U | V; SRGBWriteEnable = FALSE; AntialiasedLineEnable = TRUE;
    PatchEdgeStyle = CONTINUOUS; DebugMonitorToken = ENABLE; TweenFactor = 0; PositionDegree = CUBIC; NormalDegree =
    LINEAR; AdaptiveTess_X = 0; EnableAdaptiveTessellation = FALSE; NPatchMode = 0; MinTessellationLevel = 1;
    MaxTessellationLevel = 1; PixelShader = compile ps_2_0 P(); } }

//// shader constants of a pass: 51 51 51
float4 P() : COLOR { return 0.2; } technique { pass { VertexShaderConstantF[0] = float4(1, 2, 3, 4);
    PixelShaderConstant[1] = {1, 2, 3, 4}; PixelShaderConstantB[0] = true; PixelShader = compile ps_2_0 P(); } }

//// matrix constants for transforms: 51 102 153
technique { pass { WorldTransform[0] = {1,0,0,0, 0,1,0,0, 0,0,1,0, 0,0,0,1}; ViewTransform = float4x4(1,0,0,0,
    0,1,0,0, 0,0,1,0, 0,0,0,1); TextureFactor = 0xFF336699; ColorOp[0] = SELECTARG1; ColorArg1[0] = TFACTOR; } }

//// a technique with a name of its own for each pass' state index: 51 102 204
texture T; technique { pass { Texture[0] = <T>; ColorOp[0] = SELECTARG1; ColorArg1[0] = TEXTURE; ColorOp[1] =
    DISABLE; AlphaOp[0] = SELECTARG1; AddressU[0] = CLAMP; } }

//// vertex function alone, drawn by the fixed stages: 128 51 26
float4 M(float4 p : POSITION, float4 c : COLOR0, out float4 o : COLOR0) : POSITION { o = c * 0.5; return p; }
    technique { pass { VertexShader = compile vs_1_1 M(); PixelShader = NULL; ColorOp[0] = SELECTARG1; ColorArg1[0]
    = DIFFUSE; } }

// ---- Matrices, samplers and states in forms that few write

//// matrices times matrices by their elements: 26 51 23
float2x2 a = {1, 2, 3, 4}, b = {0.1, 0.1, 0.1, 0.1};
=> float2x2 c = a * b, d = a; d *= b; return float4(c[0], (d * a * b)[1].x, 1);

//// a sampler of an array in a loop: 51 102 204
texture T; sampler S[2] = { sampler_state { Texture = <T>; MinFilter = POINT; MagFilter = POINT; }, sampler_state {
    Texture = <T>; MinFilter = POINT; MagFilter = POINT; } };
=> float4 c = 0; for (int i = 0; i < 2; i++) c += tex2D(S[i], uv) * (i + 1) / 3; return c;

//// a state block: 51 102 153
stateblock B = stateblock_state { TextureFactor = 0xff336699; ColorOp[0] = SelectArg1; ColorArg1[0] = TFactor; };
    technique { pass { ColorOp[0] = Disable; StateBlock = (B); } }

//// unsigned int, filters of four texels: 51 102 204
texture T; sampler S = sampler_state { Texture = <T>; MinFilter = GaussianQuad; MagFilter = POINT; }; unsigned int n
    = 2;
=> unsigned int i = n; return tex2D(S, uv) * (i * 0.5);

//// targets in capitals, later models' semantics, fragments: 51 51 51
pixelfragment f = compile_fragment ps_2_0 P(); float4 P() : SV_Target { return 0.2; } technique { pass { PixelShader
    = compile PS_2_0 P(); } }

//// a sampler of a pass's own, a vertex format: 51 102 204
texture T; sampler S : register(s1); float4 P(float2 uv : TEXCOORD0) : COLOR { return tex2D(S, uv); } technique {
    pass { FVF = XYZ | NORMAL; Sampler[1] = sampler_state { Texture = <T>; MinFilter = POINT; MagFilter = POINT; };
    Sampler[2] = NULL; PixelShader = compile ps_2_0 P(); } }

//// parts for later models: 204 204 204
BlendState B { BlendEnable[0] = TRUE; }; SamplerState L { Filter = ANISOTROPIC; }; cbuffer C : register(b0) { float
    a = 0.2; int3x3 m = {4, 0, 0, 0, 0, 0, 0, 0, 0}; }; technique10 X < string s = "x;"; > { pass {
    SetPixelShader(CompileShader(ps_4_0, P())); } } technique Y { pass { SetVertexShader(NULL); } } float4 New() :
    SV_Target { return T.Sample(L, 0); } float4 P() : COLOR { return a * m[0][0]; } technique Z { pass { PixelShader
    = compile ps_2_0 P(); } }

//// matrices by their elements, whatever gives them: 51 102 153
struct S { float2x2 m; }; float2x2 F() { return float2x2(0.1, 0.4, 1, 0); } float4x4 a = {2, 1, 0, 0, 1, 1, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0}; S s[2] = {{1, 2, 0, 0}, {1, 1, 0, 0}};
=> float2x2 m = F() * (float2x2)a, k = max(lerp(m, s[0].m * s[1].m, 0), 0) * (a > 0 ? 1 : 0.5); return float4(k[0],
    any(m - m) || !all(m == m) ? 1 : 0.6, 1);

//// noise, mul of numbers: 51 102 153
float3 v = {0.1, 0.2, 0.3};
=> float n = noise(7.0) + noise(uv * 9) + noise(v) + noise(v.xyzx); return float4(n >= -4 && n <= 4 ? mul(2, v) : 0,
    1);

// ---- What the vertices bring and what the device puts around the functions

//// every input of a vertex: 77 128 112
struct In { float3 p : POSITION; float2 w : BLENDWEIGHT; int4 i : BLENDINDICES; float s : PSIZE; float4 c[2] :
    COLOR; float uv[2] : TEXCOORD6; }; float4 M(In v, out float4 o : COLOR0) : POSITION { o = float4(v.w.x +
    v.c[1].r, v.i.y * 0.02 + v.s * 0.1 + v.w.y, v.uv[0] + v.uv[1] * v.c[0].g, 1); return float4(v.p, 1); } technique
    { pass { VertexShader = compile vs_1_1 M(); } }

//// coordinates and colours of the fixed vertex stage: 191 102 102
float4 P(float2 a : TEXCOORD0, float2 b : TEXCOORD1, float4 c : COLOR1) : COLOR { return float4(a.y, b.x, c.g, 1); }
    technique { pass { PixelShader = compile ps_2_0 P(); } }

//// a matrix, a second colour and a point size between stages: 51 102 153
struct O { float4 p : POSITION; float4 c : COLOR1; float3x2 m : TEXCOORD2; float s : PSIZE; }; O M(float4 p :
    POSITION, float3 n : NORMAL) { O o; o.p = p; o.c = 2; o.m[0] = n.xy; o.m[1] = n.yz; o.m[2] = n.zx; o.s = 4;
    return o; } float4 P(float4 c : COLOR1, float3x2 m : TEXCOORD2) : COLOR { return float4(m[0].x * c.x, m[1].x,
    m[2].x, 1); } technique { pass { VertexShader = compile vs_2_0 M(); PixelShader = compile ps_2_0 P(); } }

//// what a vertex function leaves out: 64 64 191
float4 M(float4 p : POSITION) : POSITION { return p; } float4 P(float4 a : COLOR0, float4 b : COLOR1, float4 c :
    TEXCOORD0) : COLOR { return float4(a.r * 0.25, b.a * 0.5 + 0.25, c.a * 0.75, 1); } technique { pass {
    VertexShader = compile vs_2_0 M(); PixelShader = compile ps_2_0 P(); } }

//// a vertex function that gives no colour to the fixed stages: 255 255 255
float4 M(float4 p : POSITION) : POSITION { return p; } technique { pass { VertexShader = compile vs_2_0 M(); } }

//// a vertex function before a textured fixed stage: 51 41 41
texture T; void M(inout float4 p : POSITION, inout float4 c : COLOR0, inout float2 uv : TEXCOORD0) { } technique {
    pass { VertexShader = compile vs_2_0 M(); Texture[0] = <T>; } }

//// fog of a vertex function: 94 85 103
void M(inout float4 p : POSITION, inout float4 c : COLOR0, out float f : FOG) { f = 0.25; } float4 P(float4 c :
    COLOR0) : COLOR { return c; } technique { pass { FogEnable = TRUE; FogColor = 0x285078; VertexShader = compile
    vs_2_0 M(); PixelShader = compile ps_2_0 P(); } }

//// fog of a vertex function before the fixed stages: 94 85 103
void M(inout float4 p : POSITION, inout float4 c : COLOR0, out float f : FOG) { f = 0.25; } technique { pass {
    FogEnable = TRUE; FogColor = 0x285078; VertexShader = compile vs_2_0 M(); } }

//// no fog of a vertex function that gives none: 255 102 51
void M(inout float4 p : POSITION, inout float4 c : COLOR0) { } technique { pass { FogEnable = TRUE; FogColor =
    0x285078; VertexShader = compile vs_2_0 M(); } }

//// an alpha that passes: 255 102 51
float4 P(float4 c : COLOR0) : COLOR { return c; } technique { pass { AlphaTestEnable = TRUE; AlphaFunc = GREATER;
    AlphaRef = 152; PixelShader = compile ps_2_0 P(); } }

//// an alpha that does not pass: 0 0 0
float4 P(float4 c : COLOR0) : COLOR { return c; } technique { pass { AlphaTestEnable = TRUE; AlphaFunc = GREATER;
    AlphaRef = 153; PixelShader = compile ps_2_0 P(); } }

//// globals of every shape: 31 61 87
float3 a = {0.1, 0, 0}; float b = 0.1; float4x3 m = {0.1, 0, 0, 0, 0.2, 0, 0, 0, 0, 0, 0, 0.3}; float s[2] = {9,
    0.1}; bool on = true; float2 v[2] = {9, 9, 0.1, 0.2}; float3x3 n = {1, 2, 3, 9, 9, 9, 9, 9, 9};
=> return float4(mul(float4(1, 1, 1, 1), m) + mul(a, n) * b + (on ? s[1] : 9) * v[1].xyx, 1);

//// samplers take the registers that are free: 51 0 204
texture T; sampler2D unused; sampler2D second : register(s1); sampler plain; sampler1D far : register(s5); sampler2D
    fourth; float4 Look(sampler s, float2 uv) { return tex2D(s, uv); } float4 P(float2 uv : TEXCOORD0) : COLOR {
    return float4(Look(plain, uv).r, tex2D(second, uv).g + tex1D(far, uv.x).g, tex2Dproj(fourth, float4(uv * 2, 0,
    2)).b, 1); } technique { pass { Texture[0] = <T>; Texture[2] = <T>; PixelShader = compile ps_2_0 P(); } }

//// flat lists of structures in functions: 51 102 153
struct S { float a; float2 b; }; struct T { S s; float c[2]; float2x2 m; }; static const S g = {0.2, 0.4, 0};
=> S s = {0.1, {0.4, 0}}, u = {0.1, 0, 0}; T v = {g, {3, 1}, {1, 0, 0, 1}}, w = {0, 0, 0, 0.6, 0, 1, 2, 3, 4};
return float4(s.a + u.a, v.s.b.x, w.m[0][0] * w.c[0], 1);

//// matrices of one row or column: 51 102 153
float1x2 a = {0.2, 0.4}; float2x1 b = {1, 2}; float4x4 w = {0.5, 0.5, 0.2, 0.3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
=> float3x1 c = float3x1(0.1, 0.2, 0.3); float1x3 d = float1x3(1, 2, 3), e = transpose(c); float1x1 f = mul(a, b);
float3x3 o = mul(c, d); float1x4 g = mul(float1x4(1, 0, 0, 0), w); d._m01 = g._m02; return float4(d[0][1], a[0][1] * f[0][0] *
b[1][0] * 0.5, o._m12 + e[0][0] - c._11, 1);

//// a vector as a structure, one that continues another, a flat list of an array of them: 51 102 153
struct A { float2 a; }; struct B : A { float b; };
=> float4 v = float4(0.2, 0.4, 0.6, 1); B s = (B)v; A f[2] = {0.2, 0.4, 0.6, 0.8}; return float4(s.a.x, f[0].a.y, s.b,
f[1].a.y);

//// a sampler in braces, a choice by number: 51 102 0
texture T; sampler S = { sampler_state { Texture = <T>; } }; int n = 2;
=> float f; switch (n) { case 1: f = 1; break; case 2: f = 0; break; default: f = 2; } return float4(tex2D(S, uv).rg,
f, 1);

//// a structure that a function changes, matrices behind a comma, constants behind their type: 102 51 153
#if (1 ? 2 : 0) == 2
struct W { float a; float2 d; }; W w[2] = {{0.1, {0.2, 0}}, {0.1, {0.2, 0}}}; float const k < int x = 1, y = 2; > = 0.6;
#endif
=> float2x2 m = 1, n = 1; w[0].a = 0.4; w[1].d.y = w[1].d.x; return float4(w[0].a, all(m == n) ? w[1].d.y : 0, k, 1);

//// loops over a parameter's name, and two that are read after: 102 153 0
float f(float i) { for (int k = 0; k < 2; k++) { for (int i = 0; i < 2; i++) { } } return i; }
=> float a; for (int i = 0; i < 2; i++) { } a = i * 0.2; for (int i = 0; i < 3; i++) { } return float4(f(a), i * 0.2, 0, 1);
