// A picture file, decoded.
#pragma once
#include <string>
#include <vector>

#include "platform/d3dx/image_file.h"
#include "platform/system/system.h"
#include "tests/support/test.h"

namespace sparkrig {

inline Image LoadPicture(const std::string& name) {
    std::vector<BYTE> bytes;
    D3DXIMAGE_INFO info = {};
    Image image;
    EXPECT_TRUE(ReadWholeFile(name.c_str(), bytes)) << name;
    EXPECT_EQ(ReadImageInfo(bytes, info), D3D_OK) << name;
    EXPECT_EQ(DecodeImage(bytes, info, image), D3D_OK) << name;
    return image;
}

}   // namespace sparkrig
