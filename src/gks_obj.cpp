// gks_obj: the redraw list: the kernel calls of the picture on a window, in order,
// so that gks_replay can write them out as a metafile. Owns the list, and the
// switches that say whether calls are recorded and events served. gopen_ws sets
// it up by ginit_objs. Every primitive calls it; it calls none.
//
// Records and their data lie side by side in blocks that are given back
// together: a full product has 160,000 records, a Level II scan 300,000. A list
// beyond 2 MB goes on in large pages of memory, since the system takes longer to
// hand out the 512 small ones of each than the list takes to fill them.

#include "gks_obj.h"

#include "gks_draw.h"
#include "no_memory.h"
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
    Gevent_server* serve = nullptr;        // of the window; null: none
    Arena arena;
};
RedrawList list;

bool says_no(const char* text) {
    return text != nullptr && stricmp(text, "no") == 0;
}

} // namespace

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
        gserve_events();
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

const drawable* gfirst_obj() {
    return list.root.next;
}

void gset_event_server(Gevent_server* serve) {
    list.serve = serve;
}

int gserve_events() {
    return list.serve != nullptr ? list.serve() : 0;
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

void keep_gks_obj(StateKeeper& keeper) {
    keeper.close_by([] { gclear_objs(); });
    keeper.keep(list.action);
    keeper.keep(list.redraw);
    keeper.keep(list.num_objects);
}
