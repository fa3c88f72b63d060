// lev2_walk.h: Level II volumes from memory, and the walk of one as a plotter
// does it.
#pragma once

#include "lev2.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

// The bytes as a file with a name that opens at their start.
class MemoryFile {
public:
    explicit MemoryFile(const std::vector<std::uint8_t>& bytes) {
        for (std::size_t done = 0; done < bytes.size();) {
            const auto n = write(handle_, bytes.data() + done, bytes.size() - done);
            if (n <= 0) {
                break;
            }
            done += static_cast<std::size_t>(n);
        }
        std::snprintf(name_.data(), name_.size(), "/proc/self/fd/%d", handle_);
    }
    ~MemoryFile() { close(handle_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    [[nodiscard]] const char* name() const { return name_.data(); }

private:
    int handle_ = memfd_create("volume", 0);
    std::array<char, 40> name_{};
};

// Opens a file and calls `record(data)` for each record at hand. Returns the
// number of records; -1 when the file does not open.
template <typename Record> int lev2_walk(const char* name, LEV2_info& info, Record record) {
    if (LEV2_open_file(name) != 1) {
        return -1;
    }
    LEV2_get_header(&info);
    int records = 0;
    LEV2_data data;
    for (; LEV2_get_block(&data) == 1; LEV2_next_block()) {
        record(data);
        records++;
    }
    LEV2_close_file();
    return records;
}
