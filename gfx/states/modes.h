// The numbers that choose among the settings of the graphics device. Effects and materials name them by number.
#pragma once

namespace sparkrig {

/// How what is drawn (source) mixes with what is there (target). "faded" takes the given alpha, 0 to 255, as well.
enum BlendingMode : int {
    kBlendOff = 1,
    kBlendScreen = 2,             // source + target x (1 - source)
    kBlendAdd = 3,                // target + source x alpha
    kBlendExclude = 4,            // source x (1 - target) + target x (1 - source)
    kBlendSubtract = 5,           // target x (1 - source)
    kBlendMultiply = 6,           // target x source
    kBlendFaded = 7,              // between the two by the texture's alpha, faded
    kBlendAlpha = 9,              // between the two by the alpha of texture and vertices
    kBlendFadedAgain = 10,        // 7 with the alpha of before times the given one
    kBlendSubtractTexture = 11,   // 5 without the vertices' alpha
    kBlendAddFaded = 12,          // target + source x the texture's alpha, faded
    kBlendByFactor = 13,          // between the two by the given alpha alone
    kBlendKeep = 14,              // the target stays: depths alone are drawn
    kBlendReplace = 15,           // the texture, with the given alpha
    kBlendAddTexture = 16,        // target + texture
    kBlendSubtractFaded = 17,     // 5, faded
};

/// Which faces are left out, as they turn on the screen.
enum CullMode : int { kCullCounterclockwise = -1, kCullNone = 0, kCullClockwise = 1 };

enum ZBufferMode : int { kDepthOff = 0, kDepthZ = 1, kDepthW = 2 };

/// Where a stage takes its colour from.
enum RenderSource : int { kSourceTextureDiffuse = 1, kSourceDiffuse = 2, kSourceFactor = 3 };

enum MipmapMode : int { kMipmapsOff = 0, kMipmapsNearest = 1, kMipmapsBetween = 2 };

/// Presets of SetTextureFilter: how a texture is read when it is drawn larger (magnified) or smaller, and beyond its
/// edges.
enum TextureFilter : int {
    kMagnifyLinear = 1,
    kMagnifyPoint = 2,
    kMinifyLinear = 3,
    kMinifyPoint = 4,
    kMinifyAnisotropic = 5,
    kMagnifyAnisotropic = 6,
    kEdgesWrap = 7,
    kEdgesClamp = 8,
    kEdgesMirror = 9,
};

/// Modes of the alpha test; every other number than these passes alpha above the reference, as kAlphaAbove does.
enum AlphaTestMode : int { kAlphaAny = 0, kAlphaAbove = 1, kAlphaEqual = 255 };

/// InitDevice: who processes vertices, and on which device.
enum VertexProcessing : int { kProcessSoftware = 0, kProcessMixed = 1, kProcessHardware = 2 };
enum DeviceSelect : int { kDeviceDefault = 0, kDeviceReference = 1, kDeviceAnalysis = 2 };

}   // namespace sparkrig
