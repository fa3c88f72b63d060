// gks_meta: the metafile workstation: every kernel call as a line of text, or
// a binary metafile of polylines (gks_cgm). Owns the file and its form.
// gmeta_open_ws (from gopen_ws) comes first; the redraw list opens a file of its
// own while a window is up.
//
// The records are written where the calls are, by gmeta_printf and its like. A
// text metafile begins with the state in force, so that it plays the same
// wherever it is played.

#include "gks_meta.h"

#include "fixed_format.h"
#include "geometry_text.h"
#include "gks.h"
#include "out_file.h"
#include "out_text.h"
#include "zyr.h"

#include "state_keeper.h"
#include "zyrresrc.h"

#include <array>
#include <cstdarg>
#include <utility>

#include <sys/stat.h>

namespace {

constexpr int open_end = 0; // of gmeta_points

struct Metafile {
    std::FILE* out_file = nullptr;
    bool append = false;
    int meta_type = meta_text;
};
Metafile meta;

bool is_text_open() {
    return meta.meta_type == meta_text && meta.out_file != nullptr;
}

// The file as the binary form knows it.
void share_file() {
    gcgm_write_to(meta.meta_type == meta_cgm ? meta.out_file : nullptr);
}

// The form of the file, the one option after its name.
bool decode_type(const char* option) {
    const bool cgm = stricmp(option, "cgm") == 0;
    if (!cgm && stricmp(option, "zyr") != 0) {
        return false;
    }
    gmeta_set_type(cgm ? meta_cgm : meta_text);
    return true;
}

void put_heading() {
    gmeta_printf("ZYRMETA\n");
    gmeta_line("#Title: ZYR Graphics Display: %s", gget_win_title());
    gmeta_printf("#Creator: ZYR Metafile Processor-1.0\n");
    gmeta_printf("#CreationDate: %s", creation_date().c_str());
}

// The text of one record.
class Record : public OutText {
public:
    Record() : OutText(meta.out_file) {}
    void real(float value) {
        make_room(fixed6_size);
        advance(format_fixed6(place(), value));
    }
    // "x,y ".
    void point(const Gpt& pt) {
        make_room(std::size_t{2} * fixed6_size + 2);
        char* end = format_fixed6(place(), pt.x);
        *end++ = ',';
        end = format_fixed6(end, pt.y);
        *end++ = ' ';
        advance(end);
    }
};

} // namespace

int gmeta_open_ws(const char* conn_id) {
    constexpr Grectangle page = {0, 0, 1000, 800};
    constexpr float unit = 100.0F; // of a page of 10 by 8
    gset_win_type(ws_metafile);
    take_options(conn_id, 1, decode_type);
    std::array<char, file_name_size> name{};
    output_name(conn_id, {"zyrmeta_out"}, meta.meta_type == meta_cgm ? "zyr.cgm" : "zyr.meta",
                name.data(), name.size());
    if (gmeta_open_file(name.data()) == nullptr) {
        gerr_printf("gopen_ws", "unable to open metafile\n");
        explain_output("gopen_ws");
        return -1;
    }
    gmeta_init_file();
    set_page_area(RES_get("geometry"), page, unit);
    return 0;
}

std::FILE* gmeta_open_file(const char* name) {
    MESS_print(mess_mess, "Creating metafile: %s\n", name);
    meta.append = *name == '+';
    if (meta.append) {
        ++name;
    }
    meta.out_file = open_output(name, meta.append);
    share_file();
    return meta.out_file;
}

int gmeta_init_file() {
    if (meta.meta_type == meta_cgm) {
        gcgm_begin();
    } else {
        put_heading();
    }
    return 0;
}

int gmeta_close_file() {
    if (meta.out_file == nullptr) {
        return -1;
    }
    if (!meta.append) {
        gcgm_end();
    }
    const int status = close_output(std::exchange(meta.out_file, nullptr));
    share_file();
    if (status < 0) {
        gerr_printf("gmeta_close_file", "unable to write metafile\n");
        explain_output("gmeta_close_file");
    } else if (status == 0) {
        MESS_print(mess_mess, "Created metafile\n");
    }
    return status;
}

int gmeta_set_type(int type) {
    meta.meta_type = type;
    share_file();
    return 0;
}

int gmeta_get_type() {
    return meta.meta_type;
}

int gmeta_printf(const char* format, ...) {
    if (!is_text_open()) {
        return 0;
    }
    std::va_list args;
    va_start(args, format);
    std::vfprintf(meta.out_file, format, args);
    va_end(args);
    return 0;
}

int gmeta_line(const char* format, ...) {
    if (!is_text_open()) {
        return 0;
    }
    constexpr std::size_t most = 511;
    std::va_list args;
    va_start(args, format);
    put_line(meta.out_file, most, format, args);
    va_end(args);
    return 0;
}

int gmeta_points(const char* keyword, int n, const Gpt* pts, int end) {
    constexpr int points_per_line = 4;
    if (!is_text_open()) {
        return 0;
    }
    Record out;
    out.put(keyword);
    out.put(" ");
    out.number(n);
    out.put(" ");
    for (int i = 0; i < n; ++i) {
        out.point(pts[i]);
        const bool full = (i + 1) % points_per_line == 0;
        if (full && (end == 0 || i + 1 < n)) {
            out.put("\n   ");
        }
    }
    if (end != 0 || n % points_per_line != 0) {
        out.put("\n");
    }
    return 0;
}

int gmeta_polyline(int n, const Gpt* pts) {
    constexpr int end_line = 1;
    if (meta.meta_type == meta_text) {
        gmeta_points("PL", n, pts, end_line);
    } else {
        gcgm_polyline(n, pts);
    }
    return 1;
}

int gmeta_fill_area(int n, const Gpt* pts) {
    gmeta_points("FA", n, pts, open_end);
    return 1;
}

int gmeta_polymarker(int n, const Gpt* pts) {
    return gmeta_points("PM", n, pts, open_end);
}

int gmeta_text(const Gpt& pos, const char* str) {
    return gmeta_line("TE %f,%f %s", static_cast<double>(pos.x), static_cast<double>(pos.y), str);
}

int gmeta_clear_region(const Glim& lim) {
    return gmeta_printf("CLR_REG %f %f %f %f\n", static_cast<double>(lim.x_min),
                        static_cast<double>(lim.y_min), static_cast<double>(lim.x_max),
                        static_cast<double>(lim.y_max));
}

void gmeta_attribute(const Gword& attribute, const Gvalues& values) {
    if (!is_text_open()) {
        return;
    }
    Record out;
    out.put(attribute.word);
    for (int i = 0; i < attribute.counts.integers; ++i) {
        out.put(" ");
        out.number(values.n[i]);
    }
    for (int i = 0; i < attribute.counts.reals; ++i) {
        out.put(attribute.is_point && i > 0 ? "," : " ");
        out.real(values.f[i]);
    }
    out.put("\n");
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

void keep_gks_meta(StateKeeper& keeper) {
    keeper.keep(meta);
}
