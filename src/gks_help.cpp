// gks_help.cpp: the keys of the window, in a box of its own over the picture. The
// box is a window within the plot's, so that the picture below stays what it is
// and a loop runs on; the next key or button takes it away. State: the box.

#include "gks_evnt.h"

#include "gks_disp.h"
#include "zyr.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int margin = 12; // pixels about the text
constexpr unsigned rim = 2;

struct Help {
    Window box = 0;
};
Help help;

struct Font_deleter {
    void operator()(XFontStruct* font) const { XFreeFont(gget_display(), font); }
};
using Font_ptr = std::unique_ptr<XFontStruct, Font_deleter>;

struct Size {
    int width = 0;
    int height = 0;
};

std::vector<std::string> text_lines() {
    constexpr int key_width = 24;
    std::vector<std::string> lines;
    for (const Key_help& row : gkey_help()) {
        std::array<char, 120> line{};
        std::snprintf(line.data(), line.size(), "%-*s%s", key_width, row.key, row.meaning);
        lines.emplace_back(line.data());
    }
    return lines;
}

int line_height(const XFontStruct& font) {
    return font.ascent + font.descent;
}

Size box_size(const XFontStruct& font, const std::vector<std::string>& lines) {
    Size size;
    for (const std::string& line : lines) {
        size.width = std::max(size.width, XTextWidth(const_cast<XFontStruct*>(&font), line.c_str(),
                                                     static_cast<int>(line.size())));
    }
    size.width += 2 * margin;
    size.height = static_cast<int>(lines.size()) * line_height(font) + 2 * margin;
    return size;
}

// The largest font whose box the window has room for; null if none has.
Font_ptr fitting_font(const std::vector<std::string>& lines) {
    int width = 0;
    int height = 0;
    gget_root_size(&width, &height);
    for (const char* name : {"9x15", "7x13", "fixed", "5x8"}) {
        Font_ptr font(XLoadQueryFont(gget_display(), name));
        if (font == nullptr) {
            continue;
        }
        const Size size = box_size(*font, lines);
        if (size.width <= width && size.height <= height) {
            return font;
        }
    }
    return nullptr;
}

// A pixel of the map in force: in one of the plot's own black may be anywhere.
unsigned long pixel_of_level(unsigned short level, unsigned long otherwise) {
    XColor color{};
    color.red = color.green = color.blue = level;
    color.flags = DoRed | DoGreen | DoBlue;
    return XAllocColor(gget_display(), gget_colormap(), &color) != 0 ? color.pixel : otherwise;
}

Pixmap draw_lines(const XFontStruct& font, const std::vector<std::string>& lines, Size size,
                  unsigned long ink, unsigned long paper) {
    Display* display = gget_display();
    const auto width = static_cast<unsigned>(size.width);
    const auto height = static_cast<unsigned>(size.height);
    const Pixmap pixmap = XCreatePixmap(display, gget_root_window(), width, height,
                                        static_cast<unsigned>(gget_win_depth()));
    XGCValues values{};
    values.font = font.fid;
    values.foreground = paper;
    const GC gc = XCreateGC(display, pixmap, GCFont | GCForeground, &values);
    XFillRectangle(display, pixmap, gc, 0, 0, width, height);
    XSetForeground(display, gc, ink);
    int y = margin + font.ascent;
    for (const std::string& line : lines) {
        XDrawString(display, pixmap, gc, margin, y, line.c_str(), static_cast<int>(line.size()));
        y += line_height(font);
    }
    XFreeGC(display, gc);
    return pixmap;
}

// The server paints the box from its background, whatever covers it for a while.
Window make_box(Pixmap background, Size size, unsigned long ink) {
    Display* display = gget_display();
    int width = 0;
    int height = 0;
    gget_root_size(&width, &height);
    const int both_rims = 2 * static_cast<int>(rim);
    XSetWindowAttributes values{};
    values.background_pixmap = background;
    values.border_pixel = ink;
    const Window box = XCreateWindow(
        display, gget_root_window(), std::max((width - size.width - both_rims) / 2, 0),
        std::max((height - size.height - both_rims) / 2, 0), static_cast<unsigned>(size.width),
        static_cast<unsigned>(size.height), rim, CopyFromParent, InputOutput, CopyFromParent,
        CWBackPixmap | CWBorderPixel, &values);
    XMapRaised(display, box);
    return box;
}

} // namespace

void gshow_keys() {
    if (help.box != 0 || !ghas_window()) {
        return;
    }
    const std::vector<std::string> lines = text_lines();
    const Font_ptr font = fitting_font(lines);
    if (font == nullptr) { // a small window: the terminal has room
        for (const std::string& line : lines) {
            MESS_print(mess_print, "%s\n", line.c_str());
        }
        return;
    }
    constexpr unsigned short full = 0xFFFF;
    const unsigned long ink = pixel_of_level(full, WhitePixel(gget_display(), gget_screen()));
    const unsigned long paper = pixel_of_level(0, BlackPixel(gget_display(), gget_screen()));
    const Size size = box_size(*font, lines);
    const Pixmap text = draw_lines(*font, lines, size, ink, paper);
    help.box = make_box(text, size, ink);
    XFreePixmap(gget_display(), text);
    gflush();
}

bool ghide_keys() {
    if (help.box == 0) {
        return false;
    }
    if (ghas_window()) {
        XDestroyWindow(gget_display(), help.box); // what it covered is exposed
    }
    help.box = 0;
    gflush();
    return true;
}
