// gks_loop: frames and the loop over them. A frame is a picture of the display
// (on an X server a pixmap) of the size of the drawing area: a step of the loop
// copies it to the base picture and that to the window, and no pixel of a server
// passes through the program. State: the table of frames and how the loop runs
// through it. Without a display every call returns at once.

#include "gks_loop.h"

#include "gks_draw.h"
#include "state_keeper.h"
#include "zyr.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

namespace {

constexpr unsigned mess_frames = 0xF000000;
constexpr float start_delay = 0.5F;

struct Frame {
    Gpicture pixmap = 0;
    float delay = start_delay; // seconds on show
    int data_size = 0;         // bytes in use of `data`
    std::array<unsigned char, frame_data_size> data{};
};

struct Loop {
    std::array<Frame, max_frames> images;
    int num_images = 0;
    int cur_image = -1;             // on show, -1: none
    int looping = 0;                // 1: the animation runs
    int loop_direct = 1;            // see gnext_frame
    float loop_delay = start_delay; // seconds a frame stays on show
    float loop_pause = 1.0F;        // seconds on the last frame
    int loop_start = -1;            // range of the loop; below 0 the first
    int loop_end = -1;              //   and the last frame
    int loop_title = 1;             // 1: show the frame number in the title
};
Loop loop;

bool has_window() {
    return gdraw_is_open() && gget_draw_window() != 0;
}

int frame_number(int ind) {
    if (ind == frame_last) {
        return loop.num_images - 1;
    }
    return ind == frame_current ? loop.cur_image : ind;
}

// The place of a frame in the table: where frames do not stay all have the first.
int place_of(int number) {
    return gkeeps_frames() ? number : std::min(number, 0);
}

// The table's entry of a reference; null when there is none.
Frame* frame_of(int ind) {
    const int place = place_of(frame_number(ind));
    return place >= 0 && place < max_frames ? &loop.images[place] : nullptr;
}

void set_pixmap(int ind, Gpicture pixmap) {
    Frame* frame = frame_of(ind);
    if (ind == frame_base) {
        gset_base_window(pixmap);
    } else if (frame != nullptr) {
        frame->pixmap = pixmap;
    }
}

// Where primitives draw, counted by offset and size.
Grectangle drawing_area() {
    Grectangle area{};
    gget_win_offset(&area.x, &area.y);
    gget_win_size(&area.width, &area.height);
    return area;
}

Gpicture new_pixmap() {
    const Grectangle area = drawing_area();
    return gdraw_make_picture(area.x + area.width, area.y + area.height);
}

// Drawing into a frame that goes away goes on in the base pixmap.
void free_pixmap(Frame& frame) {
    if (frame.pixmap == 0) {
        return;
    }
    gflush_fill();
    if (gget_draw_window() == frame.pixmap) {
        gset_draw_window(0);
    }
    gdraw_free_picture(frame.pixmap);
    frame.pixmap = 0;
}

// All frames but the last, which has a pause of its own.
void set_delays(float delay) {
    for (int i = 0; i < std::min(loop.num_images, max_frames) - 1; ++i) {
        loop.images[i].delay = delay;
    }
}

// Takes the entry `ind` out of the frames in use.
void remove_entry(int ind) {
    auto& images = loop.images;
    const bool only = loop.num_images == 1;
    if (!only) {
        free_pixmap(images[ind]); // the pixmap of an only frame serves the next one
    }
    const Gpicture kept = only ? images[ind].pixmap : 0;
    std::move(images.begin() + ind + 1, images.end(), images.begin() + ind);
    images.back() = {};
    if (only) {
        images[0].pixmap = kept;
    }
    if (ind == loop.num_images - 1 && !only) {
        images[ind - 1].delay = loop.loop_pause;
        images[ind].delay = loop.loop_delay;
    }
    --loop.num_images;
}

} // namespace

// --- Frames -------------------------------------------------------------------

int ginit_loop() {
    // Direction, delays and title are the user's settings: they outlive a page.
    loop.images.fill({});
    loop.num_images = 0;
    loop.cur_image = -1;
    loop.looping = 0;
    return 0;
}

int gcreate_frame(int ind) {
    if (!has_window()) {
        return 0;
    }
    if (ind < 0) {
        ind = loop.num_images;
    }
    if (place_of(ind) >= max_frames) {
        gerr_printf("gcreate_frame", "no room for frame %d: at most %d frames\n", ind, max_frames);
        return -1;
    }
    Frame& frame = loop.images[place_of(ind)];
    if (frame.pixmap == 0) {
        frame.pixmap = new_pixmap();
    }
    if (frame.pixmap == 0) {
        gerr_printf("gcreate_frame", "no memory for frame %d\n", ind);
        return -1;
    }
    gclear_frame(ind);
    if (ind > 0) {
        loop.images[place_of(ind - 1)].delay = loop.loop_delay;
    }
    if (place_of(loop.num_images) < max_frames) {
        loop.images[place_of(loop.num_images)].delay = loop.loop_pause;
    }
    gflush();
    MESS_print(mess_frames, "Created frame: %d-%ld\n", ind, static_cast<long>(frame.pixmap));
    if (ind == loop.num_images) {
        ++loop.num_images;
    }
    return ind;
}

int gclear_frame(int ind) {
    const Gpicture pixmap = gget_frame_id(ind);
    if (!has_window() || pixmap == 0) {
        return 0;
    }
    gflush_fill();
    if (ind == frame_base) {
        gdraw_end_magnifying(); // what was magnified is gone
    }
    const int pixel = gget_color_ind(-1);
    gdraw_fill_picture(pixmap, drawing_area(),
                       pixel == -1 ? gget_back_pixel() : static_cast<unsigned>(pixel));
    return 0;
}

int gselect_frame(int ind) {
    if (!has_window()) {
        return -1;
    }
    gflush_fill();
    gset_redraw(0); // a loop's primitives would fill the memory
    if (ind == frame_base) {
        return gset_draw_window(0);
    }
    const Gpicture pixmap = gget_frame_id(ind);
    if (pixmap == 0) {
        return -1;
    }
    gset_draw_window(pixmap);
    MESS_print(mess_frames, "Selected frame: %d\n", frame_number(ind));
    return 0;
}

int gdisplay_frame(int ind) {
    if (!has_window() || place_of(ind) >= max_frames) {
        return -1;
    }
    loop.cur_image = std::max(loop.cur_image, 0);
    if (ind < 0) {
        ind = loop.cur_image;
    }
    const bool magnified = gdraw_is_magnified();
    if (!magnified) {
        gcopy_frame(frame_base, ind);
    }
    if (!magnified || !gdraw_show_magnified(ind)) {
        gupdate_window();
    }
    if (loop.loop_title != 0 && loop.num_images > 0) {
        char text[16];
        std::snprintf(text, sizeof text, "[%d]", ind);
        gset_win_title_extra(text);
    }
    loop.cur_image = ind;
    return 0;
}

int gswitch_frame(int ind1, int ind2) {
    const Gpicture first = gget_frame_id(ind1);
    const Gpicture second = gget_frame_id(ind2);
    if (!has_window() || first == 0 || second == 0) {
        return 0;
    }
    gflush_fill();
    const Gpicture draw = gget_draw_window();
    set_pixmap(ind1, second);
    set_pixmap(ind2, first);
    if (draw == first) {
        gset_draw_window(second);
    } else if (draw == second) {
        gset_draw_window(first);
    }
    return 0;
}

int gcopy_frame(int dest, int src) {
    const Gpicture to = gget_frame_id(dest);
    const Gpicture from = gget_frame_id(src);
    if (!has_window() || to == 0 || from == 0) {
        return 0;
    }
    gdraw_copy_picture(from, to, drawing_area());
    return 0;
}

int gdelete_frame(int ind) {
    if (!has_window()) {
        return 0;
    }
    ind = frame_number(ind);
    if (ind < 0 || ind >= max_frames) {
        return 0;
    }
    if (ind >= loop.num_images) {
        free_pixmap(loop.images[ind]);
        return 1;
    }
    const bool on_show = loop.cur_image == ind;
    remove_entry(ind);
    if (loop.num_images == 0) {
        gdraw_blank();
        gset_win_title_extra("");
    }
    if (loop.cur_image == loop.num_images) {
        --loop.cur_image;
    }
    if (on_show && loop.num_images > 0) {
        gdisplay_frame(loop.cur_image);
    }
    return 1;
}

int gdelete_all_frames() {
    if (!gdraw_is_open()) {
        return 0;
    }
    for (Frame& frame : loop.images) {
        free_pixmap(frame);
    }
    return 0;
}

int gget_num_images() {
    return loop.num_images;
}

int gget_cur_frame() {
    return loop.cur_image;
}

Gpicture gget_frame_id(int ind) {
    if (ind == frame_base) {
        return gget_base_window();
    }
    const Frame* frame = frame_of(ind);
    return frame != nullptr ? frame->pixmap : 0;
}

int gset_frame_id(int ind, Gpicture pixmap) {
    set_pixmap(ind, pixmap);
    return 0;
}

// --- Loop ---------------------------------------------------------------------

int gset_looping(int value) {
    loop.looping = value;
    gset_cursor(value == 1 ? cursor_number_loop : cursor_number_stop);
    MESS_print(mess_frames, value == 1 ? "Looping initiated\n" : "Looping stopped\n");
    return 0;
}

int gget_looping() {
    return loop.looping;
}

int gtoggle_loop(int value) {
    if (value != 0 && value != 1) {
        value = loop.looping == 0 ? 1 : 0;
    }
    gset_looping(value);
    return gflush();
}

int gset_loop_direct(int value) {
    loop.loop_direct = value;
    return 0;
}

int gget_loop_direct() {
    return loop.loop_direct;
}

int gset_loop_title(int value) {
    loop.loop_title = value;
    return 0;
}

int gset_loop_delay(float delay, int ind) {
    if (ind == frames_all) {
        set_delays(delay);
        return 1;
    }
    Frame* frame = frame_of(ind);
    if (frame == nullptr) {
        return 0;
    }
    frame->delay = delay;
    return 1;
}

float gloop_delay_step(float delay, bool slower) {
    constexpr float fine = 0.05F;
    constexpr float coarse = 0.1F;
    if (slower) {
        return delay < 0.09F ? fine : coarse;
    }
    return delay <= 0.11F ? -fine : -coarse;
}

int ginc_loop_delay(float step) {
    loop.loop_delay = std::max(loop.loop_delay + step, 0.0F);
    set_delays(loop.loop_delay);
    MESS_print(mess_frames, "Loop delay %s to: %2.2f\n",
               step > 0.0F ? "incremented" : "decremented", static_cast<double>(loop.loop_delay));
    return 0;
}

float gget_loop_delay() {
    return loop.loop_delay;
}

float gget_frame_delay(int ind) {
    const Frame* frame = frame_of(ind);
    return frame != nullptr ? frame->delay : 0.0F;
}

int gnext_frame(int cur, int step, int first, int last, int* direct) {
    const bool rocking = *direct >= 2;
    if (step == 0) {
        step = *direct % 2 != 0 ? 1 : -1;
    }
    int next = cur + step;
    if (next > last) {
        next = rocking ? last - 1 : first;
        if (rocking) {
            *direct = 2;
        }
    }
    if (next < first) {
        next = rocking ? first + 1 : last;
        if (rocking) {
            *direct = 3;
        }
    }
    return std::clamp(next, first, std::max(first, last)); // rocking in a range of one
}

int ginc_frame(int step) {
    if (loop.num_images == 0) {
        return -1;
    }
    loop.cur_image = std::max(loop.cur_image, 0);
    const int first = std::max(loop.loop_start, 0);
    const int last = loop.loop_end < 0 ? loop.num_images - 1 : loop.loop_end;
    return gnext_frame(loop.cur_image, step, first, last, &loop.loop_direct);
}

// --- Data of a frame ----------------------------------------------------------

int gset_image_data(int ind, const unsigned char* data, int size) {
    Frame* frame = frame_of(ind);
    if (frame == nullptr) {
        return -1;
    }
    if (size < 0 || size > frame_data_size) {
        gerr_printf("gset_image_data", "invalid data size: %d\n", size);
        return -1;
    }
    if (size > 0) {
        std::memcpy(frame->data.data(), data, static_cast<std::size_t>(size));
    }
    frame->data_size = size;
    return 0;
}

int gget_image_data(int ind, unsigned char* data) {
    const Frame* frame = frame_of(ind);
    if (frame == nullptr) {
        return 0;
    }
    std::memcpy(data, frame->data.data(), static_cast<std::size_t>(frame->data_size));
    return frame->data_size;
}

void keep_gks_loop(StateKeeper& keeper) {
    keeper.keep(loop);
}
