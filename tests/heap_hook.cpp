// The allocator of this program, which counts what it is asked for. It stands before that of the C library, for
// everything in the process, the C library's own functions among it.
#include <cerrno>
#include <cstddef>

#include "support.h"

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

void* malloc(std::size_t size) {
    ++testing_support::heapCalls;
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    ++testing_support::heapCalls;
    return __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
    ++testing_support::heapCalls;
    return __libc_realloc(memory, size);
}
void* memalign(std::size_t alignment, std::size_t size) {
    ++testing_support::heapCalls;
    return __libc_memalign(alignment, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    *memory = memalign(alignment, size);
    return *memory != nullptr ? 0 : ENOMEM;
}
}

TEST(Heap, IsCounted) {
    const std::size_t before = testing_support::heapCalls;
    delete new std::string(100, 'x');
    std::fclose(std::fopen("/dev/null", "r"));  // the C library's own
    EXPECT_GE(testing_support::heapCalls, before + 3);
}
