// memory_file.h: a file in memory with a name that opens at its start.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

class MemoryFile {
public:
    explicit MemoryFile(const std::vector<std::uint8_t>& bytes) { add(bytes); }
    ~MemoryFile() { close(handle_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    [[nodiscard]] const char* name() const { return name_.data(); }
    // Writes after what is there.
    void add(const std::vector<std::uint8_t>& bytes) {
        for (std::size_t done = 0; done < bytes.size();) {
            const auto n = write(handle_, bytes.data() + done, bytes.size() - done);
            if (n <= 0) {
                break;
            }
            done += static_cast<std::size_t>(n);
        }
        std::snprintf(name_.data(), name_.size(), "/proc/self/fd/%d", handle_);
    }
    [[nodiscard]] std::vector<std::uint8_t> bytes() const {
        std::vector<std::uint8_t> out(static_cast<std::size_t>(lseek(handle_, 0, SEEK_END)));
        const auto n = pread(handle_, out.data(), out.size(), 0);
        out.resize(n < 0 ? 0 : static_cast<std::size_t>(n));
        return out;
    }

private:
    int handle_ = memfd_create("file", 0);
    std::array<char, 40> name_{};
};
