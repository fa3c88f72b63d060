// gks_title.cpp: the title of the window. The text after the title is a channel
// between programs: it carries the number of the frame on show and the mark of a
// window that is busy. Programs hold titles as UTF-8; a server's own type of text,
// STRING, is Latin-1. No state: the title in force is kept in gks_state.cpp.

#include "gks_disp.h"
#include "gks_state.h"
#include "gks_utf8.h"
#include "zyr.h"

#include <X11/Xatom.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t name_size = 60; // title and what is after it each
constexpr unsigned last_latin1 = 0xFF;

struct X_deleter {
    void operator()(void* memory) const { XFree(memory); }
};
using X_bytes = std::unique_ptr<unsigned char, X_deleter>;

// The characters of a text; empty where it is not UTF-8.
std::u32string decode(std::string_view text) {
    std::u32string out;
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text[0]);
        const std::size_t length = utf8_length(first);
        if (length == 0 || length > text.size()) {
            return {};
        }
        char32_t code = length == 1 ? first : first & (0x7FU >> length);
        for (const char c : text.substr(1, length - 1)) {
            const auto byte = static_cast<unsigned char>(c);
            if ((byte & 0xC0U) != 0x80) {
                return {};
            }
            code = code << 6 | (byte & 0x3FU);
        }
        out.push_back(code);
        text.remove_prefix(length);
    }
    return out;
}

// The same of any text: one that is not UTF-8 is Latin-1.
std::u32string characters(std::string_view text) {
    std::u32string out = decode(text);
    if (out.empty()) {
        std::transform(text.begin(), text.end(), std::back_inserter(out),
                       [](char c) { return static_cast<unsigned char>(c); });
    }
    return out;
}

std::string encode(const std::u32string& text) {
    std::string out;
    const auto add = [&](char32_t byte) { out.push_back(static_cast<char>(byte)); };
    for (const char32_t c : text) {
        if (c < 0x80) {
            add(c);
            continue;
        }
        int rest = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3; // bytes after the first
        add((0xF00U >> (rest + 1) & 0xFFU) | c >> (6 * rest));
        while (rest-- > 0) {
            add(0x80U | (c >> (6 * rest) & 0x3FU));
        }
    }
    return out;
}

void set_property(Atom property, Atom type, const std::string& text) {
    constexpr int bits = 8;
    XChangeProperty(gget_display(), gget_root_window(), property, type, bits, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(text.data()),
                    static_cast<int>(text.size()));
}

// A name as any window manager and any peer reads it: STRING where Latin-1 has
// all its characters.
void set_name(Atom property, const std::u32string& name, const std::string& utf8) {
    const auto wide = [](char32_t c) { return c > last_latin1; };
    if (std::any_of(name.begin(), name.end(), wide)) {
        set_property(property, gwindow_atoms().utf8, utf8);
    } else {
        set_property(property, XA_STRING, std::string(name.begin(), name.end()));
    }
}

void show_name(const char* text, bool as_icon) {
    const std::u32string name = characters(text);
    const std::string utf8 = encode(name);
    set_name(XA_WM_NAME, name, utf8);
    if (gtype_is_WIN()) { // the owner of another window may keep but the first up to date
        set_property(gwindow_atoms().net_name, gwindow_atoms().utf8, utf8);
    }
    if (as_icon) {
        set_name(XA_WM_ICON_NAME, name, utf8);
    }
    XFlush(gget_display());
}

} // namespace

std::string gfetch_name(Window window) {
    constexpr long most = 256; // of four bytes
    Atom type = None;
    int bits = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* data = nullptr;
    if (XGetWindowProperty(gget_display(), window, XA_WM_NAME, 0, most, False, AnyPropertyType,
                           &type, &bits, &count, &left, &data) != Success) {
        return {};
    }
    const X_bytes owner(data);
    if (data == nullptr || bits != 8) {
        return {};
    }
    return encode(characters({reinterpret_cast<const char*>(data), count}));
}

int gshow_win_title() {
    if (!gdisp().has_window) {
        return -1;
    }
    constexpr bool as_icon = true;
    show_name(gget_win_title(), as_icon);
    return 0;
}

int gset_win_title(const char* title) {
    gkeep_win_title(title);
    return gshow_win_title();
}

int gset_win_title_extra(const char* text) {
    if (!gdisp().has_window) {
        return -1;
    }
    std::array<char, 2 * name_size> name{};
    if (text == nullptr || *text == '\0') {
        copy_text(name.data(), name.size(), gget_win_title());
    } else {
        std::snprintf(name.data(), name.size(), "%s %s", gget_win_title(), text);
    }
    show_name(name.data(), false);
    return 0;
}

int gget_win_title_extra(char* buf) {
    *buf = '\0';
    if (!gdisp().has_window) {
        return -1;
    }
    gtrap_errors(0); // a foreign window may be gone
    const std::string name = gfetch_name(gget_root_window());
    gtrap_errors(1);
    if (name.empty()) {
        return -1;
    }
    const std::size_t title = encode(characters(gget_win_title())).size();
    if (name.size() > title + 1) {
        copy_text(buf, name_size, name.c_str() + title + 1);
    }
    return 0;
}
