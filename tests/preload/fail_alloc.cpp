// fail_alloc.cpp: a library to preload. In the program that ZYR_FAIL_PROGRAM
// names, the allocation number ZYR_FAIL_AT fails, counted from the program's
// first one on in whatever library it happens; every other one succeeds. The
// count goes to standard error at the end when ZYR_FAIL_COUNT is set.
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void* malloc(std::size_t size) noexcept;
void* calloc(std::size_t count, std::size_t size) noexcept;
void* realloc(void* block, std::size_t size) noexcept;
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept;
void* memalign(std::size_t alignment, std::size_t size) noexcept;
int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept;
}

namespace {

std::atomic<long> taken{0};

long failing_position() {
    const char* program = std::getenv("ZYR_FAIL_PROGRAM");
    const char* at = std::getenv("ZYR_FAIL_AT");
    if (program == nullptr || std::strcmp(program, program_invocation_short_name) != 0) {
        return -1;
    }
    return at == nullptr ? 0 : std::strtol(at, nullptr, 10);
}

bool fails() {
    static const long position = failing_position();
    if (position < 0 || ++taken != position) {
        return false;
    }
    if (std::getenv("ZYR_FAIL_STOP") != nullptr) {
        std::abort(); // to see in a debugger which one it is
    }
    errno = ENOMEM;
    return true;
}

struct Counter {
    ~Counter() {
        if (std::getenv("ZYR_FAIL_COUNT") != nullptr) {
            std::fprintf(stderr, "allocations: %ld\n", taken.load());
        }
    }
};
const Counter counter;

} // namespace

void* malloc(std::size_t size) noexcept {
    return fails() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    return fails() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) noexcept {
    return fails() ? nullptr : __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return fails() ? nullptr : __libc_memalign(alignment, size);
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return fails() ? nullptr : __libc_memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
    *block = fails() ? nullptr : __libc_memalign(alignment, size);
    return *block == nullptr ? ENOMEM : 0;
}
