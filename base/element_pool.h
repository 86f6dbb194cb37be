// Memory for the elements of one list: blocks lie side by side in few chunks and never move.
#pragma once
#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

namespace sparkrig {

template <class T>
class ElementPool {
  public:
    /// Memory for one T, for the caller to construct.
    void* Take() {
        if (!free_) AddChunk();
        Block* block = free_;
        free_ = block->next;
        return block;
    }

    /// The element was destroyed by the caller.
    void Give(void* memory) {
        Block* block = static_cast<Block*>(memory);
        block->next = free_;
        free_ = block;
    }

    /// Every element was destroyed by the caller: blocks are given out in the order of memory again.
    void GiveAll() {
        free_ = nullptr;
        for (auto chunk = chunks_.rbegin(); chunk != chunks_.rend(); ++chunk) Link(*chunk);
    }

  private:
    union Block {
        Block* next;   // while free
        alignas(T) std::byte bytes[sizeof(T)];
    };
    struct Chunk {
        std::unique_ptr<Block[]> blocks;
        std::size_t count;
    };

    /// Each chunk is as large as all before it together, up to kMaxChunkBytes: short lists stay small.
    void AddChunk() {
        constexpr std::size_t kMostBlocks = std::max(kMinBlocks, kMaxChunkBytes / sizeof(Block));
        const std::size_t count = std::clamp(block_count_, kMinBlocks, kMostBlocks);
        chunks_.push_back({std::unique_ptr<Block[]>(new Block[count]), count});
        block_count_ += count;
        Link(chunks_.back());
    }

    void Link(const Chunk& chunk) {
        for (std::size_t i = chunk.count; i-- > 0;) {
            chunk.blocks[i].next = free_;
            free_ = &chunk.blocks[i];
        }
    }

    // Four small blocks to begin with; one of a large kind, since many lists hold one element and no more.
    static constexpr std::size_t kMinBlocks = sizeof(T) <= 128 ? 4 : 1, kMaxChunkBytes = 65536;

    std::vector<Chunk> chunks_;
    std::size_t block_count_ = 0;
    Block* free_ = nullptr;
};

}   // namespace sparkrig
