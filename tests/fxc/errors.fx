// Effects with mistakes: "//// the first line that is said of it", then the effect, called t.fx.

//// t.fx(2): error X1000: can not open 'none.fxh'

#include "none.fxh"

//// t.fx(3): error X1000: the comment is not closed (column 1)
float a;

/* open

//// t.fx(1): error X1000: the string is not closed (column 12)
string s = "open
;

//// t.fx(1): error X1000: the condition has no #endif (column 1)
#if 1
float a;

//// t.fx(2): error X1000: #endif without #if (column 2)

#endif

//// t.fx(3): error X1000: a second #else (column 2)
#if 1
#else
#else
#endif

//// t.fx(1): error X1000: the condition is not an expression of whole numbers
#if 1 / 0
#endif

//// t.fx(1): error X1000: unknown directive '#unheard'
#unheard of

//// t.fx(2): error X1000: #error stop here

#error stop here

//// t.fx(2): error X1000: macro 'F' takes 2 arguments, not 1
#define F(a, b) a
float x = F(1);

//// t.fx(2): error X1000: the arguments of 'F' do not end
#define F(a) a
float x = F(1;

//// t.fx(2): error X2000: expected ';' after 'a' before 'float' (column 1)
float4 a
float b;

//// t.fx(2): error X2000: unknown type 'flaot4' (column 1)

flaot4 a;

//// t.fx(1): error X2000: 'a' takes 4 values, not 3
float4 a = {1, 2, 3};

//// t.fx(1): error X2000: unknown name 'b' (column 11)
float a = b;

//// t.fx(1): error X2000: 'a' stands for another parameter already
float a; int a;

//// t.fx(1): error X2000: the size of an array is a constant from 1 to 4096
float a[0];

//// t.fx(1): error X2000: unknown name 'a' (column 11)
texture a[a];

//// t.fx(1): error X2000: expected '=' before the value of the annotation
float a <float b;> = 1;

//// t.fx(1): error X2000: an annotation is a number or a string
texture t < texture b = 1; >;

//// t.fx(1): error X2000: 'CullMode' is no state of a sampler
sampler s = sampler_state { CullMode = 1; };

//// t.fx(1): error X2000: 'gone' is not a texture
sampler s = sampler_state { Texture = <gone>; };

//// t.fx(1): error X2000: a sampler register is s0 to s15
sampler s : register(s16);

//// t.fx(1): error X2000: expected '}' after the passes before the end of the file
technique { pass { }

//// t.fx(6): error X2000: expected ';' after the value of 'CullMode' before '}'
texture T;
float F;
technique {
pass {
CullMode = CW
}
}

//// t.fx(5): error X2000: unknown state 'CulMode' (column 1)
texture T;
float F;
technique {
pass {
CulMode = CW;
}
}

//// t.fx(5): error X2000: unknown name 'CWW' (column 12)
texture T;
float F;
technique {
pass {
CullMode = CWW;
}
}

//// t.fx(5): error X2000: unknown name 'PURPLE' (column 26)
texture T;
float F;
technique {
pass {
ColorWriteEnable = RED | PURPLE;
}
}

//// t.fx(5): error X2000: 'ColorOp' has no index 8 (column 1)
texture T;
float F;
technique {
pass {
ColorOp[8] = ADD;
}
}

//// t.fx(5): error X2000: 'F' is not a texture (column 15)
texture T;
float F;
technique {
pass {
Texture[0] = <F>;
}
}

//// t.fx(5): error X2000: 'T' is no number (column 12)
texture T;
float F;
technique {
pass {
AlphaRef = T;
}
}

//// t.fx(5): error X2000: 'ps_2_0' is not a target
texture T;
float F;
technique {
pass {
VertexShader = compile ps_2_0 V();
}
}

//// t.fx(5): error X3000: None: there is no function 'None'
texture T;
float F;
technique {
pass {
VertexShader = compile vs_1_1 None();
}
}

//// t.fx(3): error X3000: 'q' : unknown variable (column 12)
float4 V(float4 p : POSITION) : POSITION
{
    return q;
}
texture T;
float F;
technique {
pass {
VertexShader = compile vs_1_1 V();
}
}

//// t.fx(1): error X2000: expected the name of a parameter before ')'
void V(float4) { }

//// t.fx(6): error X3000: V: 'V' has 1 uniform parameters, not 2 (column 31)
float4 V(float4 p : POSITION, uniform float s) : POSITION { return p * s; }
texture T;
float F;
technique {
pass {
VertexShader = compile vs_1_1 V(1, 2);
}
}

//// t.fx(2): error X3000: expected a value before ';' (column 14)
float4 V(float4 p : POSITION) : POSITION
{ return p * ; }
texture T;
float F;
technique {
pass {
VertexShader = compile vs_1_1 V();
}
}

//// t.fx(6): error X3000: V: a function calls itself (column 31)
float F(float a) { return F(a - 1); } float4 V() : POSITION { return F(1); }
texture T;
float F;
technique {
pass {
VertexShader = compile vs_1_1 V();
}
}

//// t.fx(2): error X3000: 
float4 V() : POSITION
{ return F(1)(2)[; }
texture T;
float F;
technique {
pass {
VertexShader = compile vs_1_1 V();
}
}

//// t.fx(6): error X3000: V: the input 'p' has no semantic
float4 V(float4 p) : POSITION { return p; }
texture T;
float F;
technique {
pass {
VertexShader = compile vs_1_1 V();
}
}

//// t.fx(6): error X3000: P: the output 'p' can not have the semantic NORMAL
void P(out float4 p : NORMAL) { p = 1; }
texture T;
float F;
technique {
pass {
PixelShader = compile ps_2_0 P();
}
}
