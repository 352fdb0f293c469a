#include "Lines/LineArena.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace termcore {

LineArena::~LineArena() {
    // Owners release their lines first, so that only the current block and the spare ones are left.
    std::free(current);
    while (spare != nullptr)
        std::free(std::exchange(spare, spare->next));
}

void LineArena::nextBlock() {
    if (current != nullptr && current->live == 0) {
        current->used = sizeof(Block);
        return;
    }
    if (spare != nullptr) {
        current = spare;
        spare = spare->next;
        --spareCount;
    } else {
        current = static_cast<Block*>(std::aligned_alloc(blockSize, blockSize));
        if (current == nullptr)
            throw std::bad_alloc();
        ++blockCount;
    }
    *current = {sizeof(Block), 0, nullptr};
}

void LineArena::recycle(Block* block) {
    if (spareCount >= spareBlocks) {
        std::free(block);
        --blockCount;
        return;
    }
    block->next = spare;
    spare = block;
    ++spareCount;
}

}
