// walk_floor.h: the floor of the benches that read packed files: what bzip2 alone takes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <span>

#include <bzlib.h>

// Of the processor, so that other processes disturb little.
inline double milliseconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

template <typename Work> double milliseconds(Work work) {
    const double start = milliseconds();
    work();
    return milliseconds() - start;
}

// Unpacks a stream into a fixed area; the bytes unpacked.
template <std::size_t room> long unpack_stream(std::span<const std::uint8_t> stream) {
    std::array<char, room> area{};
    bz_stream bz{};
    BZ2_bzDecompressInit(&bz, 0, 0);
    bz.next_in = reinterpret_cast<char*>(const_cast<std::uint8_t*>(stream.data()));
    bz.avail_in = static_cast<unsigned>(stream.size());
    long total = 0;
    for (int status = BZ_OK; status == BZ_OK;) {
        bz.next_out = area.data();
        bz.avail_out = area.size();
        status = BZ2_bzDecompress(&bz);
        total += static_cast<long>(area.size() - bz.avail_out);
        if (bz.avail_out == area.size()) {
            break;
        }
    }
    BZ2_bzDecompressEnd(&bz);
    return total;
}
