#pragma once

#include <cstddef>
#include <cstdint>

namespace termcore {

/// Storage for packed lines that come at one end and leave at the other. Memory is taken in blocks; a block whose lines
/// have all gone is used again, so that a full history allocates nothing.
class LineArena {
public:
    LineArena() = default;
    ~LineArena();
    LineArena(const LineArena&) = delete;
    LineArena& operator=(const LineArena&) = delete;

    static constexpr std::size_t blockSize = std::size_t{1} << 16;
    static constexpr std::size_t largestRequest = blockSize / 2;

    /// Room for at most `size` bytes, aligned for 32-bit words. `commit` tells how many were used.
    std::byte* reserve(std::size_t size) {
        if (current == nullptr || current->used + size > blockSize)
            nextBlock();
        return reinterpret_cast<std::byte*>(current) + current->used;
    }
    void commit(std::size_t size) {
        current->used += static_cast<std::uint32_t>((size + 3) & ~std::size_t{3});
        ++current->live;
    }
    void release(const std::byte* line) {
        Block* block = blockOf(line);
        if (--block->live == 0 && block != current)
            recycle(block);
    }
    std::size_t allocatedBytes() const { return blockCount * blockSize; }

private:
    struct Block {
        std::uint32_t used;
        std::uint32_t live;
        Block* next; // in the list of free blocks
    };
    static constexpr std::size_t spareBlocks = 8;

    static Block* blockOf(const std::byte* line) {
        // Blocks are aligned to their size.
        return reinterpret_cast<Block*>(reinterpret_cast<std::uintptr_t>(line) & ~(blockSize - 1));
    }
    void nextBlock();
    void recycle(Block* block);

    Block* current = nullptr;
    Block* spare = nullptr;
    std::size_t spareCount = 0;
    std::size_t blockCount = 0;
};

}
