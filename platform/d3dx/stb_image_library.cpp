#include "platform/d3dx/stb_image_library.h"

#include <cstdlib>

namespace sparkrig {
namespace {

std::size_t most_bytes = ~std::size_t{0};   // no limit before the first one

// Cleared memory: what a broken file leaves out is black, not what happened to lie there.
void* Allocate(std::size_t bytes) { return bytes <= most_bytes ? std::calloc(1, bytes) : nullptr; }
void* Reallocate(void* memory, std::size_t bytes) {
    return bytes <= most_bytes ? std::realloc(memory, bytes) : nullptr;
}

}   // namespace

void LimitImageMemory(std::size_t bytes) { most_bytes = bytes; }

}   // namespace sparkrig

// The library's code.
#define STBI_ONLY_JPEG
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#define STBI_MAX_DIMENSIONS 16384
#define STBI_MALLOC(bytes) sparkrig::Allocate(bytes)
#define STBI_REALLOC(memory, bytes) sparkrig::Reallocate(memory, bytes)
#define STBI_FREE(memory) std::free(memory)
#define STB_IMAGE_IMPLEMENTATION
#include <stb_image.h>
