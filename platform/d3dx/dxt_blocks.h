// Blocks of 4 x 4 pixels: DXT1 of 8 bytes, DXT2 to DXT5 of 16.
#pragma once
#include "platform/d3d9/d3d9_constants.h"
#include "platform/d3dx/image.h"

namespace sparkrig {

inline constexpr UINT kBlockSide = 4;
constexpr UINT DxtBlocks(UINT pixels) { return pixels <= kBlockSide ? 1 : (pixels + kBlockSide - 1) / kBlockSide; }
constexpr UINT DxtBlockBytes(D3DFORMAT format) { return format == D3DFMT_DXT1 ? 8 : 16; }

/// The 16 pixels of a block as ARGB, row by row.
void DecodeDxtBlock(D3DFORMAT format, const BYTE* block, D3DCOLOR (&pixels)[16]);

/// Decodes a level whose block rows lie `pitch` bytes apart into an image of its size.
void DecodeDxt(D3DFORMAT format, const BYTE* blocks, std::size_t pitch, Image& image);

/// Encodes an image; blocks that stick out repeat its last row and column. Pixels with alpha below 128 become
/// transparent black in DXT1. `pitch` bytes lie between block rows.
void EncodeDxt(D3DFORMAT format, const Image& image, BYTE* blocks, std::size_t pitch);

}   // namespace sparkrig
