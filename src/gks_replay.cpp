// gks_replay: plays the redraw list, one record or all of it into a metafile. No
// state: what the window had in force is back afterwards.

#include "gks_attr.h"
#include "gks_obj.h"
#include "out_file.h"
#include "zyr.h"

#include <cstdlib>
#include <cstring>

namespace {

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

// Sets the window's state aside while its list is played into a metafile, and
// brings it back however that ends.
class Replay {
public:
    Replay() {
        gget_win_size(&width, &height);
        gset_cursor(cursor_number_wait);
        ghold_state(Ghold::begin);
        gset_redraw(0);
        gset_win_type(ws_metafile);
    }
    ~Replay() {
        gset_win_type(type);
        gset_redraw(redraw);
        gset_win_size(width, height);
        ghold_state(Ghold::restore);
        gset_cursor(cursor);
    }
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;

private:
    Gws_type type = gget_win_type();
    int redraw = gget_redraw();
    int cursor = gget_cursor_type();
    int width = 0;
    int height = 0;
};

} // namespace

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
    const bool in_use = gget_redraw() != 0 && gfirst_obj() != nullptr;
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
        for (const drawable* obj = gfirst_obj(); obj != nullptr; obj = obj->next) {
            gobj_redraw_funcs(obj);
        }
        gmeta_close_file();
    }
    gserve_events();
    gbell(50);
    return 0;
}
