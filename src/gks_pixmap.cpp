// gks_pixmap: workstation type 6, a drawable of a window that another
// program keeps open, so that a series of short runs can feed frames into one
// window. The id of the drawable comes by the connection text, the environment
// or a file; the state is that of the display (gks_disp.h).

#include "gks_disp.h"
#include "gks_state.h"
#include "text_num.h"
#include "zyr.h"

#include "files.h"
#include "text_scan.h"
#include "zyrresrc.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

namespace {

struct WindowId {
    long window = 0, pixmap = 0, width = 0, height = 0, colormap = 0;
    int fields = 0; // that were read
};

int refuse(const char* text) {
    MESS_print(mess_warn, "gopen_ws: %s\n", text);
    return gfail_display();
}

// Reads numbers split by the characters of `separators`, the first one to
// `base`. Returns how many there are.
int read_numbers(const char* text, int base, const char* separators, std::span<long* const> out) {
    int count = 0;
    for (long* number : out) {
        if (!take_long(&text, number, count == 0 ? base : 10)) {
            return count;
        }
        ++count;
        if (*separators == '\0' || *text != *separators) {
            return count;
        }
        ++separators;
        ++text;
    }
    return count;
}

// "+window:pixmap:WxH:colormap", "0xpixmap:WxH:colormap" with a hexadecimal
// pixmap, or "pixmap:WxH:colormap". Fields at the end may be missing.
WindowId read_id(const char* text) {
    WindowId id;
    long* const all[] = {&id.window, &id.pixmap, &id.width, &id.height, &id.colormap};
    const std::span<long* const> fields(all);
    if (*text == '+') {
        id.fields = read_numbers(text + 1, 10, "::x:", fields);
    } else if (strnicmp(text, "0x", 2) == 0) {
        id.fields = read_numbers(text + 2, 16, ":x:", fields.subspan(1));
    } else {
        id.fields = read_numbers(text, 10, ":x:", fields.subspan(1));
    }
    return id;
}

// The id text as given; null if there is none.
const char* find_id_text(const char* given) {
    const char* text = given != nullptr ? given : std::getenv("zyrwindow");
    return text != nullptr ? text : std::getenv("WINDOW");
}

// The file that a text without an id names; a text with "w" first refers to a
// loop window.
std::string id_file(const char* text) {
    if (*text != 'w' && *text != 'W') {
        return text;
    }
    if (!is_digit(text[1])) {
        return "zyrloop.win";
    }
    return "zyrloop." + std::to_string(std::clamp(text_int(text + 1), 0, 99999));
}

// One word of that file. False if it cannot be opened.
bool read_id_file(const char* text, std::string* id) {
    std::array<char, file_name_size> path{};
    const FILE_ptr file(
        FILE_open(FILE_add_path(RES_get("file_path"), id_file(text).c_str(), path.data()), "r"));
    if (!file) {
        return false;
    }
    std::array<char, 80> word{};
    id->clear();
    if (std::fscanf(file.get(), "%79s", word.data()) == 1) {
        *id = word.data();
    }
    return true;
}

// Whether the server knows the drawables: an id may be older than its window.
bool is_alive(const WindowId& id) {
    gtrap_errors(0);
    Window root = 0;
    int x = 0;
    int y = 0;
    unsigned width = 0;
    unsigned height = 0;
    unsigned border = 0;
    unsigned depth = 0;
    XGetGeometry(gget_display(), static_cast<Drawable>(id.pixmap), &root, &x, &y, &width, &height,
                 &border, &depth);
    XWindowAttributes attributes{};
    if (id.window != 0) {
        XGetWindowAttributes(gget_display(), static_cast<Window>(id.window), &attributes);
    }
    return gtrap_errors(1) == 0;
}

int held_side(long side, int usual) {
    return side <= 0 ? usual : static_cast<int>(std::clamp<long>(side, min_side, 32767));
}

void attach(const WindowId& id) {
    Gdisp& d = gdisp();
    d.has_window = id.window != 0;
    Gscreen& screen = gscreen();
    screen.base_window = static_cast<Pixmap>(id.pixmap);
    screen.draw_window = screen.base_window;
    d.root_window = d.has_window ? static_cast<Window>(id.window) : screen.base_window;
    screen.root_width = held_side(id.width, default_width);
    screen.root_height = held_side(id.height, default_height);
    gset_xsize(screen.root_width, screen.root_height);
    gset_xoff(0, 0);
    if (id.fields == 5) {
        gset_user_cmap(static_cast<Colormap>(id.colormap));
    }
}

// The window's own title, without what its owner has put after it. Comes
// before attach, so that the window keeps what is there.
void take_title(const WindowId& id) {
    if (id.window == 0) {
        return;
    }
    const std::string title = gfetch_name(static_cast<Window>(id.window));
    if (!title.empty()) {
        gset_win_title(title.substr(0, title.find(" [")).c_str());
    }
}

// The owner marks its title with "+" while it makes the frame.
void wait_for_frame() {
    constexpr useconds_t pause_us = 200000;
    constexpr int most_pauses = 300; // a minute
    std::array<char, 60> extra{};
    for (int i = 0; i < most_pauses; ++i) {
        usleep(pause_us);
        gget_win_title_extra(extra.data());
        if (extra[0] != '+') {
            return;
        }
    }
    MESS_print(mess_warn, "gopen_ws: the window does not answer\n");
}

// One axis of a panel: size and offset as fractions of the drawable.
struct Part {
    float size, offset;
};

// Device units of a part, within the drawable.
void place_part(Part part, int side, int* offset, int* size) {
    const auto whole = static_cast<float>(side);
    *size = static_cast<int>(std::clamp(whole * part.size, float{min_side}, whole));
    *offset =
        static_cast<int>(std::clamp(whole * part.offset, 0.0F, static_cast<float>(side - *size)));
}

// "PWxH+X+Y": above 1 W columns and H rows and the number of one, from the top
// left; else fractions.
void set_panel(const char* text) {
    std::array<float, 4> panel{1.0F, 1.0F, 0.0F, 0.0F};
    const char* separators = "x++";
    for (float& number : panel) {
        if (!take_float(&text, &number) || *separators == '\0' || *text != *separators) {
            break;
        }
        ++separators;
        ++text;
    }
    auto [sx, sy, ox, oy] = panel;
    if (sx > 1.0F) {
        constexpr float most = 8.0F;
        sx = std::clamp(sx, 1.0F, most);
        sy = std::clamp(sy, 1.0F, most);
        ox /= sx;
        oy /= sy;
        sx = 1.0F / sx;
        sy = 1.0F / sy;
    } else if (sy != 0.0F) {
        oy = 1.0F - (oy + 1.0F) / sy;
    }
    Grectangle area{};
    place_part({sx, ox}, gscreen().root_width, &area.x, &area.width);
    place_part({sy, oy}, gscreen().root_height, &area.y, &area.height);
    gset_xsize(area.width, area.height);
    gset_xoff(area.x, area.y);
}

// "WxH+X+Y" in pixels, within the drawable.
void set_area(const char* text) {
    long width = 0;
    long height = 0;
    long x = 0;
    long y = 0;
    long* const fields[] = {&width, &height, &x, &y};
    const int count = read_numbers(text, 10, "x++", fields);
    if (count < 2) {
        return;
    }
    const auto w = static_cast<int>(std::clamp<long>(width, min_side, gscreen().root_width));
    const auto h = static_cast<int>(std::clamp<long>(height, min_side, gscreen().root_height));
    gset_xsize(w, h);
    if (count == 4) {
        gset_xoff(static_cast<int>(std::clamp<long>(x, 0, gscreen().root_width)),
                  static_cast<int>(std::clamp<long>(y, 0, gscreen().root_height)));
    }
}

void choose_area() {
    const char* text = gchosen_geometry();
    if (text == nullptr) {
        return;
    }
    if (*text == 'P' || *text == 'p') {
        set_panel(text + 1);
    } else {
        set_area(text);
    }
}

// The id text of the connection's second field, read from its file if it names
// one. Empty, after a report, if there is no id.
std::string id_text(const char* conn_id) {
    const std::string conn(conn_id != nullptr ? conn_id : "");
    const std::size_t comma = conn.find(',');
    const std::string field = comma != conn.npos ? conn.substr(comma + 1) : "";
    const std::string second = field.substr(0, field.find(','));
    const char* found = find_id_text(comma != conn.npos ? second.c_str() : nullptr);
    const bool given = found != nullptr;
    std::string text = given ? found : "";
    if (!given) {
        refuse("window parameters not specified");
        return {};
    }
    const bool is_id = !text.empty() && (text[0] == '+' || is_digit(text[0]));
    if (!text.empty() && !is_id && !read_id_file(std::string(text).c_str(), &text)) {
        refuse("unable to open window id file");
        return {};
    }
    if (text.empty()) {
        refuse("window id not specified");
    }
    return text;
}

} // namespace

int gopen_pixmap(const char* conn_id) {
    gset_win_type(ws_pixmap);
    {
        const Gdisplay_watch watch;
        if (gopen_display(conn_id) != 0) {
            return -1;
        }
    }
    gset_cache(0);
    gdisp().redraw = gset_redraw(0);
    const std::string text = id_text(conn_id);
    if (text.empty()) {
        return -1;
    }
    const WindowId id = read_id(text.c_str());
    if (id.fields == 0 || id.pixmap == 0) {
        return refuse("window id not specified");
    }
    if (!is_alive(id)) {
        return refuse("unable to open window");
    }
    take_title(id);
    attach(id);
    gsetup_display(gget_root_window());
    if (gget_pix_mode() == pix_ask_frame) {
        gtell_owner(pix_ask_frame);
        wait_for_frame();
    }
    ginit_xcolr();
    choose_area();
    return 0;
}

int gset_pix_mode(int mode) {
    gdisp_settings().pix_mode = mode;
    return 0;
}

int gget_pix_mode() {
    return gdisp_settings().pix_mode;
}
