// gks_obj.cpp: the redraw list: the kernel calls of the picture on a window, in
// order, so that they can be written out as a metafile. Owns the list, and the
// switches that say whether calls are recorded and events served. gopen_ws sets
// it up by ginit_objs.
//
// Records and their data lie side by side in blocks that are given back
// together: a full product has 160,000 records.

#include "gks.h"
#include "gks_tran.h"
#include "gks_x11.h"
#include "zyr.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

namespace {

constexpr std::size_t block_size = std::size_t{64} << 10;
constexpr int heartbeat = 500; // events are served at every so many calls

// Memory of the list. What is larger than a block gets one of its own.
class Arena {
public:
    // Null when there is none.
    void* take(std::size_t size) {
        constexpr std::size_t align = alignof(drawable);
        size = (size + align - 1) / align * align;
        if (size > left && !grow(std::max(size, block_size)))
            return nullptr;
        char* place = next;
        next += size;
        left -= size;
        held_bytes += size;
        return place;
    }
    void clear() {
        blocks.clear();
        next = nullptr;
        left = 0;
        held_bytes = 0;
    }
    [[nodiscard]] std::size_t bytes() const { return held_bytes; }

private:
    bool grow(std::size_t size) {
        try {
            blocks.emplace_back(new char[size]);
        } catch (const std::bad_alloc&) {
            return false;
        }
        next = blocks.back().get();
        left = size;
        return true;
    }
    std::vector<std::unique_ptr<char[]>> blocks;
    char* next = nullptr;
    std::size_t left = 0;
    std::size_t held_bytes = 0;
};

struct RedrawList {
    drawable root{0, 0, nullptr, nullptr}; // begins the list and holds no object
    drawable* last = nullptr;              // where the next record hangs; null: the list has ended
    int num_objects = 0;                   // calls counted
    int action = 0;                        // 1: events are served
    int redraw = 1;                        // the list is in use
    int redrawn = 0;                       // a metafile was written
    Arena arena;
};
RedrawList list;

const Glim* as_lim(const drawobj* obj) {
    return reinterpret_cast<const Glim*>(obj->data);
}

float as_float(const drawobj* obj) {
    float value = 0.0F;
    std::memcpy(&value, obj->data, sizeof value);
    return value;
}

const Gpt* as_points(const drawobj* obj) {
    return reinterpret_cast<const Gpt*>(obj->data);
}

// How a record is played.
struct Player {
    int type;
    void (*play)(const drawobj* obj);
};
constexpr std::array players = {
    Player{obj_message,        [](const drawobj* o) { gmessage(1, o->data); }                                          },
    Player{obj_ws_vp,          [](const drawobj* o) { gset_ws_vp(1, as_lim(o)); }                                      },
    Player{obj_ws_win,         [](const drawobj* o) { gset_ws_win(1, as_lim(o)); }                                     },
    Player{obj_norm_tran,      [](const drawobj* o) { gsel_norm_tran(o->values); }                                     },
    Player{obj_vp,             [](const drawobj* o) { gset_vp(o->values, as_lim(o)); }                                 },
    Player{obj_win,            [](const drawobj* o) { gset_win(o->values, as_lim(o)); }                                },
    Player{obj_colr_rep,
           [](const drawobj* o) {
               gset_colr_rep(1, o->values, reinterpret_cast<const Gcolr_rep*>(o->data));
           }                                                                                                           },
    Player{obj_clear_region,   [](const drawobj* o) { gclear_region(as_lim(o)); }                                      },
    Player{obj_polyline,       [](const drawobj* o) { gpolyline(o->values, as_points(o)); }                            },
    Player{obj_linetype,       [](const drawobj* o) { gset_linetype(o->values); }                                      },
    Player{obj_linewidth,      [](const drawobj* o) { gset_linewidth(as_float(o)); }                                   },
    Player{obj_line_colr,      [](const drawobj* o) { gset_line_colr_ind(o->values); }                                 },
    Player{obj_line_bold,      [](const drawobj* o) { gset_line_print_bold(o->values); }                               },
    Player{obj_polymarker,     [](const drawobj* o) { gpolymarker(o->values, as_points(o)); }                          },
    Player{obj_marker_type,    [](const drawobj* o) { gset_marker_type(o->values); }                                   },
    Player{obj_marker_size,    [](const drawobj* o) { gset_marker_size(as_float(o)); }                                 },
    Player{obj_marker_colr,    [](const drawobj* o) { gset_marker_colr_ind(o->values); }                               },
    Player{obj_marker_width,   [](const drawobj* o) { gset_marker_width(as_float(o)); }                                },
    Player{obj_text,           [](const drawobj* o) { gtext(as_points(o), o->data + sizeof(Gpt)); }                    },
    Player{obj_space,          [](const drawobj* o) { gset_space(as_float(o)); }                                       },
    Player{obj_char_space,     [](const drawobj* o) { gset_char_space(as_float(o)); }                                  },
    Player{obj_expan,          [](const drawobj* o) { gset_expan(as_float(o)); }                                       },
    Player{obj_text_colr,      [](const drawobj* o) { gset_text_colr_ind(o->values); }                                 },
    Player{obj_char_ht,        [](const drawobj* o) { gset_char_ht(as_float(o)); }                                     },
    Player{obj_char_up,        [](const drawobj* o) { gset_char_up_vec(as_points(o)); }                                },
    Player{obj_fontprec,
           [](const drawobj* o) { gset_fontprec(reinterpret_cast<const Gfontprec*>(o->data)); }                        },
    Player{
           obj_text_align,     [](const drawobj* o) { gset_text_align(reinterpret_cast<const Gtext_align*>(o->data)); }},
    Player{obj_text_width,     [](const drawobj* o) { gset_text_width(as_float(o)); }                                  },
    Player{obj_fill_area,      [](const drawobj* o) { gfill_area(o->values, as_points(o)); }                           },
    Player{obj_fill_int_style, [](const drawobj* o) { gset_fill_int_style(o->values); }                                },
    Player{obj_fill_style_ind, [](const drawobj* o) { gset_fill_style_ind(o->values); }                                },
    Player{obj_fill_colr,      [](const drawobj* o) { gset_fill_colr_ind(o->values); }                                 },
    Player{obj_fill_solid,     [](const drawobj* o) { gset_fill_print_solid(o->values); }                              },
};

bool says_no(const char* text) {
    return text != nullptr && stricmp(text, "no") == 0;
}

// Sets the window's state aside while its list is played into a metafile, and
// brings it back however that ends.
class Replay {
public:
    Replay() {
        gget_win_size(&width, &height);
        gset_cursor(cursor_number_wait);
        hold(1);
        list.redraw = 0;
        gset_win_type(ws_metafile);
    }
    ~Replay() {
        gset_win_type(type);
        list.redraw = redraw;
        gset_win_size(width, height);
        hold(0);
        gset_cursor(cursor);
    }
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;

private:
    static void hold(int begin) {
        ghold_tran_state(begin);
        ghold_line_state(begin);
        ghold_fill_state(begin);
        ghold_marker_state(begin);
        ghold_text_state(begin);
    }
    Gws_type type = gget_win_type();
    int redraw = list.redraw;
    int cursor = gget_cursor_type();
    int width = 0;
    int height = 0;
};

} // namespace

int ginit_objs() {
    gclear_objs();
    list.num_objects = 0;
    const char* setting = std::getenv("zyrredraw");
    if (setting == nullptr && gget_display() != nullptr)
        setting = XGetDefault(gget_display(), gget_prog_name(), "redraw");
    if (says_no(setting))
        list.redraw = 0;
    return 0;
}

char* gnew_obj(int type, int values, int size, const void* data) {
    if (++list.num_objects % heartbeat == 0)
        gcheck_event();
    if (list.redraw == 0 || list.last == nullptr)
        return nullptr;
    const auto bytes = static_cast<std::size_t>(std::max(size, 0));
    void* place = list.arena.take(sizeof(drawable) + bytes);
    if (place == nullptr) {
        gerr_printf("newobj", "malloc error\n");
        list.last = nullptr; // the list ends here, the plot does not
        return nullptr;
    }
    char* behind = static_cast<char*>(place) + sizeof(drawable);
    auto* object = new (place) drawable{type, values, nullptr, bytes > 0 ? behind : nullptr};
    if (bytes > 0 && data != nullptr)
        std::memcpy(behind, data, bytes);
    list.last->next = object;
    list.last = object;
    return object->data;
}

int gclear_objs() {
    list.root.next = nullptr;
    list.last = &list.root;
    list.arena.clear();
    return 0;
}

std::size_t gget_objs_bytes() {
    return list.arena.bytes();
}

int gset_cache(int value) {
    list.action = value;
    return 0;
}

int gget_cache() {
    return list.action;
}

int gset_redraw(int value) {
    const int old = list.redraw;
    list.redraw = value;
    return old;
}

int gget_redraw() {
    return list.redraw;
}

int gobj_redraw_funcs(const drawobj* obj) {
    const auto* player = std::find_if(players.begin(), players.end(),
                                      [&](const Player& row) { return row.type == obj->type; });
    if (player == players.end())
        return -1;
    player->play(obj);
    return 0;
}

int gobj_print_meta() {
    const char* name = std::getenv("METAOUT");
    if (name == nullptr || *name == '\0')
        name = "zyr.meta";
    {
        const Replay replay;
        if (gmeta_open_file(name) == nullptr) {
            gerr_printf("gprint_meta", "unable to open metafile\n");
            return -1;
        }
        gmeta_init_file();
        if (list.root.next == nullptr)
            MESS_print(mess_warn, "gobj_print_meta: No redraw data to make metafile from\n");
        for (const drawable* obj = list.root.next; obj != nullptr; obj = obj->next)
            gobj_redraw_funcs(obj);
        gmeta_close_file();
    }
    gcheck_event();
    gbell(50);
    list.redrawn = 1;
    return 0;
}
