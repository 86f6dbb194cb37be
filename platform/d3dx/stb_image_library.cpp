// The image library's code, for the kinds of files that we read.
#define STBI_ONLY_BMP
#define STBI_ONLY_JPEG
#define STBI_ONLY_PNG
#define STBI_ONLY_TGA
#define STBI_NO_STDIO
#define STBI_MAX_DIMENSIONS 16384
// Cleared memory: what a broken file leaves out is black, not what happened to lie there.
#include <cstdlib>
#define STBI_MALLOC(bytes) std::calloc(1, bytes)
#define STBI_REALLOC(memory, bytes) std::realloc(memory, bytes)
#define STBI_FREE(memory) std::free(memory)
#define STB_IMAGE_IMPLEMENTATION
#include <stb_image.h>
