// gks_obj.cpp: the redraw list: the kernel calls of the picture on a window, in
// order, so that they can be written out as a metafile. Owns the list, and the
// switches that say whether calls are recorded and events served. gopen_ws sets
// it up by ginit_objs.
//
// Records and their data lie side by side in blocks that are given back
// together: a full product has 160,000 records, a Level II scan 300,000. A list
// beyond 2 MB goes on in large pages of memory, since the system takes longer to
// hand out the 512 small ones of each than the list takes to fill them.

#include "gks.h"
#include "gks_attr.h"
#include "gks_draw.h"
#include "no_memory.h"
#include "out_file.h"
#include "state_keeper.h"
#include "zyr.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include <sys/mman.h>

namespace {

constexpr std::size_t block_size = std::size_t{64} << 10;
constexpr std::size_t large_page = std::size_t{2} << 20;
constexpr unsigned heartbeat = 500; // events are served at every so many calls

// Memory of the list. What is larger than a block gets one of its own.
class Arena {
public:
    // Null when there is none.
    char* take(std::size_t size) {
        constexpr std::size_t align = alignof(drawable);
        size = (size + align - 1) / align * align;
        if (size > block_size) {
            return new_block(size);
        }
        if (size > left) {
            const std::size_t room = held_bytes < large_page ? block_size : large_page;
            next = new_block(room);
            left = next == nullptr ? 0 : room;
        }
        if (next == nullptr) {
            return nullptr;
        }
        left -= size;
        return std::exchange(next, next + size);
    }
    void clear() {
        blocks.clear();
        next = nullptr;
        left = 0;
        held_bytes = 0;
    }
    // Of all blocks.
    [[nodiscard]] std::size_t bytes() const { return held_bytes; }

private:
    struct Free {
        void operator()(void* block) const { std::free(block); }
    };
    char* new_block(std::size_t size) {
        const bool large = size == large_page;
        std::unique_ptr<char, Free> block(
            static_cast<char*>(large ? std::aligned_alloc(large_page, size) : std::malloc(size)));
        if (block == nullptr) {
            ZYR_note_no_memory();
            return nullptr;
        }
        if (large) { // a hint: without large pages the block is as good
            static_cast<void>(madvise(block.get(), size, MADV_HUGEPAGE));
        }
        char* start = block.get();
        blocks.push_back(std::move(block));
        held_bytes += size;
        return start;
    }
    std::vector<std::unique_ptr<char, Free>> blocks;
    char* next = nullptr;
    std::size_t left = 0;
    std::size_t held_bytes = 0;
};

struct RedrawList {
    drawable root{0, 0, nullptr, nullptr}; // begins the list and holds no object
    drawable* last = nullptr;              // where the next record hangs; null: the list has ended
    unsigned num_objects = 0;              // calls counted
    int action = 0;                        // 1: events are served
    int redraw = 1;                        // the list is in use
    int redrawn = 0;                       // a metafile was written
    Arena arena;
};
RedrawList list;

const Gpt* points_of(const drawobj* obj) {
    return reinterpret_cast<const Gpt*>(obj->data);
}

// What is no setting: a figure, a message, a cleared region.
int play_figure(const drawobj* obj) {
    const int n = obj->values;
    switch (obj->type) {
    case obj_message:
        return gmessage(1, obj->data);
    case obj_polyline:
        return gpolyline(n, points_of(obj));
    case obj_polymarker:
        return gpolymarker(n, points_of(obj));
    case obj_fill_area:
        return gfill_area(n, points_of(obj));
    case obj_text:
        return gtext(points_of(obj), obj->data + sizeof(Gpt));
    case obj_clear_region: {
        Glim lim{};
        std::memcpy(&lim, obj->data, sizeof lim);
        return gclear_region(&lim);
    }
    default:
        return -1;
    }
}

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
        ghold_state(Ghold::begin);
        list.redraw = 0;
        gset_win_type(ws_metafile);
    }
    ~Replay() {
        gset_win_type(type);
        list.redraw = redraw;
        gset_win_size(width, height);
        ghold_state(Ghold::restore);
        gset_cursor(cursor);
    }
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;

private:
    Gws_type type = gget_win_type();
    int redraw = list.redraw;
    int cursor = gget_cursor_type();
    int width = 0;
    int height = 0;
};

} // namespace

void gput_state() {
    gput_tran_state();
    gput_line_state();
    gput_fill_state();
    gput_marker_state();
    gput_text_state();
}

void ghold_state(Ghold what) {
    ghold_tran_state(what);
    ghold_line_state(what);
    ghold_fill_state(what);
    ghold_marker_state(what);
    ghold_text_state(what);
}

int ginit_objs() {
    gclear_objs();
    list.num_objects = 0;
    const char* setting = std::getenv("zyrredraw");
    if (setting == nullptr) {
        setting = gdraw_default("redraw");
    }
    if (says_no(setting)) {
        list.redraw = 0;
    }
    return 0;
}

char* gnew_obj(int type, int values, int size, const void* data) {
    if (++list.num_objects % heartbeat == 0) {
        gcheck_event();
    }
    if (list.redraw == 0 || list.last == nullptr) {
        return nullptr;
    }
    const auto bytes = static_cast<std::size_t>(std::max(size, 0));
    const bool apart = sizeof(drawable) + bytes > block_size;
    char* place = list.arena.take(sizeof(drawable) + (apart ? 0 : bytes));
    if (place == nullptr) {
        gerr_printf("newobj", "malloc error\n");
        list.last = nullptr; // the list ends here, the plot does not
        return nullptr;
    }
    auto* object = new (place) drawable{type, values, nullptr, nullptr};
    list.last->next = object;
    list.last = object;
    if (bytes == 0) {
        return nullptr;
    }
    object->data = apart ? list.arena.take(bytes) : place + sizeof(drawable);
    if (object->data == nullptr) {
        gerr_printf("newobj", "data malloc error\n"); // this one is left out
    } else if (data != nullptr) {
        std::memcpy(object->data, data, bytes);
    }
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
    if (const Gattribute* attribute = gfind_attribute(obj->type)) {
        return gplay_record(*attribute, *obj);
    }
    return obj->data == nullptr ? -1 : play_figure(obj);
}

int gobj_print_meta() {
    const char* name = std::getenv("METAOUT");
    if (name == nullptr || *name == '\0') {
        name = "zyr.meta";
    }
    // Frames and "noredraw" leave the list without the picture.
    const bool in_use = list.redraw != 0 && list.root.next != nullptr;
    {
        const Replay replay;
        if (gmeta_open_file(name) == nullptr) {
            gerr_printf("gprint_meta", "unable to open metafile\n");
            explain_output("gprint_meta");
            return -1;
        }
        gmeta_init_file();
        if (!in_use) {
            MESS_print(mess_warn, "gobj_print_meta: No redraw data to make metafile from\n");
        }
        for (const drawable* obj = list.root.next; obj != nullptr; obj = obj->next) {
            gobj_redraw_funcs(obj);
        }
        gmeta_close_file();
    }
    gcheck_event();
    gbell(50);
    list.redrawn = 1;
    return 0;
}

void keep_gks_obj(StateKeeper& keeper) {
    keeper.close_by([] { gclear_objs(); });
    keeper.keep(list.action);
    keeper.keep(list.redraw);
    keeper.keep(list.redrawn);
    keeper.keep(list.num_objects);
}
