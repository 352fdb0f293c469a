#include "AllocationCounter.h"

#include <atomic>

// glibc's own names behind the public ones.
extern "C" {
void* __libc_malloc(std::size_t size);                          // NOLINT
void* __libc_memalign(std::size_t alignment, std::size_t size); // NOLINT
void* __libc_calloc(std::size_t count, std::size_t size);       // NOLINT
void* __libc_realloc(void* block, std::size_t size);            // NOLINT
}

namespace {
std::atomic<std::size_t> allocations;
}

extern "C" {

void* malloc(std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_memalign(alignment, size);
}
}

std::size_t bench::allocationCount() {
    return allocations.load(std::memory_order_relaxed);
}
