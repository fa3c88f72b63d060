// gks_meta_out: the file of a metafile: its form, and what goes there as bytes. Owns
// both. gks_meta opens and closes it.

#include "gks_meta.h"

#include "state_keeper.h"

#include <sys/stat.h>

namespace {

Gmetafile meta;

} // namespace

Gmetafile& gmetafile() {
    return meta;
}

int gmeta_set_type(int type) {
    meta.meta_type = type;
    return 0;
}

int gmeta_get_type() {
    return meta.meta_type;
}

void gmeta_put_bytes(const unsigned char* bytes, std::size_t n) {
    if (meta.meta_type == meta_cgm && meta.out_file != nullptr) {
        fwrite_unlocked(bytes, 1, n, meta.out_file);
    }
}

int gmeta_is_output(std::FILE* file) {
    struct stat in {};
    struct stat out {};
    if (meta.out_file == nullptr || fstat(fileno(file), &in) != 0 ||
        fstat(fileno(meta.out_file), &out) != 0) {
        return 0;
    }
    return S_ISREG(in.st_mode) && in.st_dev == out.st_dev && in.st_ino == out.st_ino ? 1 : 0;
}

void keep_gks_meta_out(StateKeeper& keeper) {
    keeper.keep(meta);
}
