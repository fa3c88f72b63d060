// unpack.h: owners of the decompressors of zlib and bzip2, which end with them.
// A stream that was made but not begun may be ended, too.
#pragma once

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
using InflateStream = std::unique_ptr<z_stream, EndInflate>;
using BunzipStream = std::unique_ptr<bz_stream, EndBunzip>;
