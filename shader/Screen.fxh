// What effects over the whole picture have in common. The square that the program draws covers the viewport in clip
// coordinates already.

float4 InvViewPortDim : InvViewPortDim;   // the size of a pixel of the copy in texture coordinates
texture ScreenCopy : SCREENCOPY;          // what is drawn so far

// A picture without mip maps, read between its pixels and not beyond its edges.
#define PICTURE_READER(name, picture) \
    sampler2D name = sampler_state \
    { Texture = <picture>; MinFilter = LINEAR; MagFilter = LINEAR; MipFilter = NONE; AddressU = CLAMP; AddressV = CLAMP; };

PICTURE_READER(Screen, ScreenCopy)

struct Corner
{
    float4 position : POSITION;
    float2 uv : TEXCOORD0;
};

// Texture coordinates of the middle of each pixel. A pixel of the target is `pixel` pixels of the screen wide.
Corner PlaceCorner(Corner corner, uniform float pixel)
{
    corner.uv += 0.5 * pixel * InvViewPortDim.xy;
    return corner;
}
