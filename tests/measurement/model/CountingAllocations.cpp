#include "tests/measurement/model/CountingAllocations.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

// Takes the place of the C library's functions for the whole process. They are
// counted rather than operator new because Qt's containers call them directly.
// The memory is the library's own, so that its free() stays in use.

namespace {

std::atomic<long> taken{0};

} // namespace

extern "C" {

void *libraryMalloc(std::size_t) __asm__("__libc_malloc");
void *libraryCalloc(std::size_t, std::size_t) __asm__("__libc_calloc");
void *libraryRealloc(void *, std::size_t) __asm__("__libc_realloc");
void *libraryMemalign(std::size_t, std::size_t) __asm__("__libc_memalign");

__attribute__((visibility("default"))) void *malloc(std::size_t size) noexcept
{
    ++taken;
    return libraryMalloc(size);
}

__attribute__((visibility("default"))) void *calloc(std::size_t count, std::size_t size) noexcept
{
    ++taken;
    return libraryCalloc(count, size);
}

__attribute__((visibility("default"))) void *realloc(void *block, std::size_t size) noexcept
{
    ++taken;
    return libraryRealloc(block, size);
}

__attribute__((visibility("default"))) void *aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    ++taken;
    return libraryMemalign(alignment, size);
}

__attribute__((visibility("default"))) int posix_memalign(void **block, std::size_t alignment,
                                                          std::size_t size) noexcept
{
    ++taken;
    *block = libraryMemalign(alignment, size);
    return *block ? 0 : ENOMEM;
}

} // extern "C"

long allocations::count()
{
    return taken.load();
}
