// unpack.h: owners of the decompressors of zlib and bzip2, which end with them.
// A stream that was made but not begun may be ended, too.
#pragma once

#include "no_memory.h"

#include <memory>

#include <bzlib.h>
#include <zlib.h>

struct EndInflate {
    void operator()(z_stream* zs) const {
        // The checker takes an owner that was moved from for a full one.
        inflateEnd(zs); // NOLINT(clang-analyzer-cplusplus.NewDelete)
        delete zs;
    }
};
struct EndBunzip {
    void operator()(bz_stream* bz) const {
        BZ2_bzDecompressEnd(bz); // NOLINT(clang-analyzer-cplusplus.NewDelete): as above
        delete bz;
    }
};
// What a call of a decompressor gave; without memory the run ends, as the file is
// not to blame.
inline int zlib_status(int status) {
    if (status == Z_MEM_ERROR) {
        ZYR_no_memory();
    }
    return status;
}
inline int bzip2_status(int status) {
    if (status == BZ_MEM_ERROR) {
        ZYR_no_memory();
    }
    return status;
}
using InflateStream = std::unique_ptr<z_stream, EndInflate>;
using BunzipStream = std::unique_ptr<bz_stream, EndBunzip>;
