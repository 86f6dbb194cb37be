#include "tools/fxc/block_layout.h"

#include <algorithm>
#include <map>

namespace sparkrig::fxc {

namespace {

constexpr std::uint32_t kNumber = 4, kRegister = 16;   // bytes

std::uint32_t RoundedUp(std::uint32_t bytes, std::uint32_t alignment) {
    return (bytes + alignment - 1) / alignment * alignment;
}

struct Extent {
    std::uint32_t size, alignment;   // bytes
};

class BlockLayout {
  public:
    explicit BlockLayout(spirv_cross::Compiler& compiler) : compiler_(compiler) {}

    Extent LayOutStructure(spirv_cross::TypeID id) {
        if (const auto known = structures_.find(id); known != structures_.end()) return known->second;
        const spirv_cross::SPIRType& type = compiler_.get_type(id);
        std::uint32_t end = 0;
        for (std::uint32_t i = 0; i < type.member_types.size(); ++i) {
            const bool by_rows = compiler_.has_member_decoration(id, i, spv::DecorationRowMajor);
            const Extent member = LayOut(type.member_types[i], by_rows);
            const std::uint32_t offset = RoundedUp(end, member.alignment);
            compiler_.set_member_decoration(id, i, spv::DecorationOffset, offset);
            end = offset + member.size;
        }
        return structures_[id] = {RoundedUp(end, kRegister), kRegister};
    }

  private:
    Extent LayOut(spirv_cross::TypeID id, bool by_rows) {
        const spirv_cross::SPIRType& type = compiler_.get_type(id);
        if (!type.array.empty()) {
            const std::uint32_t stride = RoundedUp(LayOut(type.parent_type, by_rows).size, kRegister);
            compiler_.set_decoration(id, spv::DecorationArrayStride, stride);
            return {stride * type.array.back(), kRegister};
        }
        if (type.basetype == spirv_cross::SPIRType::Struct) return LayOutStructure(type.self);
        if (type.columns > 1) return {kRegister * (by_rows ? type.vecsize : type.columns), kRegister};
        return {kNumber * type.vecsize, kNumber * (type.vecsize == 3 ? 4 : type.vecsize)};
    }

    spirv_cross::Compiler& compiler_;
    std::map<spirv_cross::TypeID, Extent> structures_;
};

}   // namespace

void LayOutBlock(spirv_cross::Compiler& compiler, spirv_cross::TypeID block) {
    BlockLayout(compiler).LayOutStructure(block);
}

}   // namespace sparkrig::fxc
