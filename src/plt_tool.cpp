// plt_tool: the plot session. It opens the workstation for a plotter and
// writes the image dump of each frame. State: workstation, and the names of what is
// written; the viewport is plt_view's, what is to be dumped plt_parm's.
#include "plt_tool.h"

#include "cont.h"
#include "files.h"
#include "gif_loop.h"
#include "gks.h"
#include "img_kind.h"
#include "img_place.h"
#include "maptran.h"
#include "no_memory.h"
#include "out_file.h"
#include "plt_tally.h"
#include "state_keeper.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace {

struct Session {
    int work_id = 1;
    Gws_type wk_type = ws_none;
    float aspect = 1.0F;            // of the viewport, as opened
    Date data_date;                 // of the data in the picture
    std::vector<std::string> files; // the input of each frame, without directory and ending
    bool lost = false;              // an output could not be written
    IMG_place placed_at;            // of the picture that is being written
    std::string number;             // of the picture in a run over a list, else empty
    bool resume = false;            // pictures that are there stay
    std::string page;               // name of the page that is written
    std::string loop_path;          // of the animation that is being written
};
Session session;

constexpr int type_none = 99; // plot type that draws nothing

void go_to_background() {
    if (ZYR_back_proc() == 0) {
        ZYR_exit(end_batch);
    }
}

bool nothing_to_draw() {
    return FLAG_getplot(part_any) == 0 || FLAG_get(flag_plot_type) == type_none;
}

// A list of parts that names none leaves no picture, which only "none" asks for.
void warn_of_parts() {
    const char* parts = RES_get("draw");
    if (FLAG_getplot(part_any) == 0 && parts != nullptr && stricmp(parts, "none") != 0) {
        MESS_print(mess_warn, "PLT_open: Nothing to draw: %s\n", parts);
    }
}

const char* label_text(int lab) {
    const char* text = PLT_get_label(lab, 0);
    return text != nullptr ? text : "";
}

// A picture laid out on the domain of the plot lies on the earth.
void locate(IMG_report* image) {
    constexpr float largest_offset = 0.7F;
    if (PLT_get_view_offset() > largest_offset) {
        return;
    }
    Domain& d = image->domain;
    MAP_get_domain(&d);
    if (is_set(d.proj) && d.nx != image->width) {
        d.dx =
            d.dx * static_cast<float>(d.nx - 1) / static_cast<float>(std::max(image->width - 1, 1));
        d.dy = d.dy * static_cast<float>(d.ny - 1) /
               static_cast<float>(std::max(image->height - 1, 1));
        d.nx = image->width;
        d.ny = image->height;
    }
}

void describe(IMG_report* image) {
    locate(image);
    std::array<char, 2 * sizeof image->info> info{};
    std::snprintf(info.data(), info.size(), "%s [%s]", label_text(0), label_text(5));
    copy_text(image->info, sizeof image->info, info.data());
    copy_text(image->datim, sizeof image->datim, label_text(2));
}

// The pixels of the picture on the map of the plot.
IMG_place place_of(const IMG_report& image) {
    int error = 0;
    int before = 0;
    ginq_cur_norm_tran_num(&error, &before);
    GPH_trans(tran_map);
    const auto step = [](float last, float first, int count) {
        return (static_cast<double>(last) - first) / count;
    };
    const IMG_place place = {
        .map = MAP_current(),
        .x = xp_W(0.0F),
        .y = yp_W(0.0F),
        .dx = step(xp_W(static_cast<float>(image.width)), xp_W(0.0F), std::max(image.width, 1)),
        .dy = step(yp_W(0.0F), yp_W(static_cast<float>(image.height)), std::max(image.height, 1))};
    gsel_norm_tran(before);
    return place;
}

void describe_place(IMG_report* image) {
    session.placed_at = place_of(*image);
    const std::string wkt = IMG_place_wkt(session.placed_at.map);
    if (wkt.empty()) {
        return;
    }
    std::string world = IMG_place_world(session.placed_at);
    world.pop_back();
    std::ranges::replace(world, '\n', ' ');
    image->texts = {
        {"Domain",     IMG_place_domain(session.placed_at.map)},
        {"Projection", wkt                                    },
        {"World file", world                                  }
    };
}

// Of an animation the first picture says where it lies.
bool write_image(const IMG_kind& kind, const char* path) {
    const bool place = PLT_get_settings().place && !kind.placed && !GIF_has_frames();
    void (*const about)(IMG_report*) = place ? describe_place : kind.placed ? describe : nullptr;
    if ((kind.frames ? gadd_image(path, about) : gdump_image(kind, path, about)) == 0) {
        return false;
    }
    if (!place) {
        return true;
    }
    if (IMG_write_place(path, session.placed_at) < 0) {
        PLT_lost_output();
    }
    return true;
}

// The date of the file as its name says it, the rest from the data.
Date image_date() {
    Date date;
    FILE_get_date(&date);
    for (int Date::*const field :
         {&Date::year, &Date::month, &Date::day, &Date::hour, &Date::min, &Date::sec}) {
        if (!is_set(date.*field)) {
            date.*field = session.data_date.*field;
        }
    }
    return date;
}

// The title as a part of a name. Of another program's window it is anybody's text:
// it names no directory and no command, and means nothing to a shell.
std::string title_for_name() {
    std::string title = gget_win_title();
    if (!gtype_is_PIX()) {
        return title;
    }
    for (char& c : title) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = byte >= 0x80 || std::isalnum(byte) != 0 || std::strchr("-.,+", c);
        c = plain ? c : '_';
    }
    if (title.starts_with('-') || title.starts_with('.')) {
        title[0] = '_';
    }
    return title;
}

// An ending begins with a letter: the number of "sn.0012" is none.
void cut_ending(std::string& file) {
    const std::size_t dot = file.rfind('.');
    if (dot != std::string::npos && dot > 0 && dot + 1 < file.size() &&
        std::isalpha(static_cast<unsigned char>(file[dot + 1])) != 0) {
        file.erase(dot);
    }
}

// The input of a frame, the one drawn last where there are none.
const char* file_of_frame(int frame) {
    if (session.files.empty()) {
        return "";
    }
    const auto index = static_cast<std::size_t>(frame);
    return (frame >= 0 && index < session.files.size() ? session.files[index]
                                                       : session.files.back())
        .c_str();
}

// Whether a name ends as that of an image does.
bool is_image_name(const char* name) {
    const char* point = std::strrchr(name, '.');
    return point != nullptr &&
           std::any_of(IMG_kinds().begin(), IMG_kinds().end(),
                       [&](const IMG_kind& kind) { return stricmp(point + 1, kind.word) == 0; });
}

// The name that a convention gives with the keys `i`, `p` and `f` for a picture.
void name_output(const char* conv, const char* key, int frame, char* name) {
    const Date date = image_date();
    if (is_image_name(conv)) { // "nowrad.png" is a picture, not a mosaic's convention
        FILE_set_whole_name(conv);
    } else {
        FILE_set_name(conv);
    }
    FILE_set_key('i', session.number.empty() ? key : session.number.c_str());
    FILE_set_file_key(file_of_frame(frame));
    FILE_set_key('p', title_for_name().c_str());
    FILE_set_date(&date, name);
}

void name_image(const char* key, int frame, char* path) {
    char name[file_name_size] = "";
    name_output(PLT_get_settings().dump_file, key, frame, name);
    FILE_add_path(RES_get("image_path"), name, path);
}

// In a run over a list the name of a page is a convention, too: the connection text
// becomes that of the picture under way.
void name_page() {
    const char* text = nullptr;
    RES_getval("device", &text, CV_device);
    if (session.number.empty() || text == nullptr) {
        return;
    }
    const std::string options = std::strchr(text, ',') != nullptr ? std::strchr(text, ',') : "";
    const std::string conv = "@" + std::string(text, std::strcspn(text, ","));
    char name[file_name_size] = "";
    FILE_save_name_conv();
    name_output(conv.c_str(), "win", 0, name);
    FILE_restore_name_conv();
    session.page = name;
    const std::string device = RES_get("device");
    RES_put_again("device", (device.substr(0, device.find(',') + 1) + name + options).c_str());
}

void note_output(const char* path) {
    PLT_get_tally().outputs.emplace_back(path);
}

void report_image(const char* label, const char* path, bool written) {
    if (written) {
        MESS_print(mess_mess, "Wrote %s file: %s\n", label, path);
        note_output(path);
        return;
    }
    MESS_print(mess_warn, "PLT_dump: Unable to write %s file: %s\n", label, path);
    explain_output("PLT_dump");
    PLT_lost_output();
}

// The page that is written, as far as a name says it.
std::string page_name() {
    const char* text = nullptr;
    RES_getval("device", &text, CV_device);
    return session.page.empty() && text != nullptr ? std::string(text, std::strcspn(text, ","))
                                                   : session.page;
}

// Writes the picture of the selected frame.
void dump_image(const char* key, int frame) {
    char path[file_name_size] = "";
    const IMG_kind* kind = IMG_find_dump(PLT_get_settings().dump);
    name_image(kind != nullptr && kind->frames ? "loop" : key, frame, path);
    const char* label = kind == nullptr ? "" : kind->dump_name;
    if (!gtype_is_WIN_PIX()) {
        MESS_print(mess_warn, "PLT_dump: Images are taken of a window alone\n");
    }
    const bool goes_on = GIF_has_frames();
    const bool written = kind != nullptr && write_image(*kind, path);
    if (written && kind->frames) {
        session.loop_path = goes_on ? session.loop_path : path;
    } else {
        report_image(label, path, written);
    }
    if (!written && kind != nullptr && kind->frames) {
        GIF_lose_frame();
    }
}

// All pictures are in the animation.
void end_frames() {
    if (GIF_has_frames()) {
        report_image("GIF", session.loop_path.c_str(), GIF_end_frames() != 0);
    }
}

void dump_frame(int number) {
    char key[16];
    std::snprintf(key, sizeof key, "%2.2d", number);
    dump_image(key, number);
}

} // namespace

int PLT_open(float aspect) {
    PLT_param_decode();
    Glim* view = PLT_start_view();
    session.aspect = aspect;
    if (nothing_to_draw()) {
        warn_of_parts();
        return -1;
    }
    gset_image_run(PLT_has_dump() ? 1 : 0);
    if (!session.number.empty() && session.page.empty() && !PLT_has_dump()) {
        name_page(); // unless that was done to look for it
    }
    GPH_setup(&session.work_id, &session.wk_type, aspect, view);
    return 0;
}

int PLT_reset(float aspect) {
    Glim* view = PLT_start_view();
    session.aspect = aspect;
    if (nothing_to_draw()) {
        return -1;
    }
    GPH_reset(&session.work_id, &session.wk_type, aspect, view);
    const int type = PLT_get_label_type();
    if (type != 0) {
        PLT_set_label_type(type < 0 ? -1 : 1);
    }
    return 0;
}

int PLT_panel(float aspect) {
    if (aspect != 0.0F) {
        session.aspect = aspect;
    }
    return GPH_panel(&session.work_id, &session.wk_type, session.aspect, PLT_start_view());
}

int PLT_close() {
    // What is written has to be whole when the program comes back to the user;
    // a window is handed over as it is.
    end_frames();
    const bool writes = PLT_has_dump() || (gchk_graphics() != 0 && !gtype_is_WIN_PIX());
    if (FLAG_batch() != 0 && !writes) {
        go_to_background();
    }
    if (FLAG_get(flag_plot_type) == type_none) {
        return -1;
    }
    GPH_trans(tran_map);
    if (!PLT_has_dump()) {
        GPH_hold(session.work_id);
    }
    gclear_ws(session.work_id, 1);
    const int status = GPH_end(session.work_id);
    PLT_init_labels();
    // A script must not go on with half a page.
    if (status != 0 || session.lost || ZYR_lacked_memory()) {
        ZYR_exit(end_output);
    }
    if (writes && !PLT_has_dump()) {
        note_output(page_name().c_str());
    }
    if (FLAG_batch() != 0 && writes) {
        go_to_background();
    }
    return 0;
}

void PLT_exit(int code) {
    give_up_outputs();
    GPH_end(session.work_id);
    ZYR_exit(code);
}

void PLT_lost_output() {
    session.lost = true;
}

bool PLT_has_room(int frame) {
    return frame < max_frames || !gtype_is_WIN_PIX() || !gkeeps_frames();
}

void PLT_tell_overlaid(int pictures) {
    if (pictures > 1 && gchk_graphics() != 0 && !gtype_is_WIN_PIX()) {
        MESS_print(mess_warn, "A page has no frames: %d pictures lie over one another\n", pictures);
    }
}

void PLT_tell_left_out(int files) {
    if (files > 0) {
        MESS_print(mess_warn, "A loop holds %d frames: %d more files are left out\n", max_frames,
                   files);
        if (PLT_has_dump()) { // each was to have a picture
            PLT_lost_output();
        }
    }
}

std::string PLT_output_pattern() {
    if (PLT_has_dump()) {
        return PLT_get_settings().dump_file;
    }
    const char* text = nullptr;
    RES_getval("device", &text, CV_device);
    return text == nullptr ? "" : std::string(text, std::strcspn(text, ","));
}

void PLT_set_number(const char* number) {
    session.number = number;
}

std::string PLT_name_output() {
    PLT_param_decode();
    GPH_set_win_title();
    char path[file_name_size] = "";
    if (!PLT_has_dump()) {
        name_page();
        return FILE_add_user_path(session.page.c_str(), path);
    }
    FILE_save_name_conv();
    name_image("win", -1, path);
    FILE_restore_name_conv();
    return FILE_add_user_path(path, path);
}

void PLT_set_resume(bool resume) {
    session.resume = resume;
}

bool PLT_has_picture(const char* input) {
    if (!session.resume) {
        return false;
    }
    struct stat from {};
    struct stat made {};
    char path[file_name_size] = "";
    const std::string output = PLT_name_output();
    const auto is_newer = [](const timespec& a, const timespec& b) {
        return a.tv_sec != b.tv_sec ? a.tv_sec > b.tv_sec : a.tv_nsec > b.tv_nsec;
    };
    PLT_get_tally().there = stat(FILE_add_user_path(input, path), &from) == 0 &&
                            stat(output.c_str(), &made) == 0 && S_ISREG(made.st_mode) &&
                            is_newer(made.st_mtim, from.st_mtim) && claim_output(output.c_str());
    return PLT_get_tally().there;
}

void PLT_set_data_date(const Date* date) {
    session.data_date = date == nullptr ? Date{} : *date;
}

void PLT_set_data_file(int frame, const char* name) {
    std::string file = name;
    if (FILE_is_stdio(name) != 0) {
        file = "std";
    } else if (file.starts_with('|')) {
        file = "command";
    }
    file.erase(0, file.rfind('/') + 1); // npos + 1 is 0
    if (file.ends_with(".gz")) {
        cut_ending(file);
    }
    cut_ending(file);
    const auto index = static_cast<std::size_t>(std::clamp(frame, 0, max_frames));
    session.files.resize(std::max(session.files.size(), index + 1));
    session.files[index] = file;
}

void PLT_shift_data_files() {
    if (!session.files.empty()) {
        session.files.erase(session.files.begin());
    }
}

int PLT_dump(int frame) {
    if (!PLT_has_dump()) {
        return -1;
    }
    FILE_save_name_conv();
    const int images = gget_num_images();
    if (frame == frames_all && images >= 2) {
        for (int i = 0; i < images; ++i) {
            gselect_frame(i);
            dump_frame(i);
        }
    } else if (images > 0) {
        gselect_frame(frame);
        dump_frame(gget_cur_frame());
    } else {
        dump_image("win", -1);
    }
    FILE_restore_name_conv();
    return 0;
}

int IMG_dump(const char* filename) {
    return gdump_image(*IMG_find_word("img"), filename, describe);
}

void keep_plt_tool(StateKeeper& keeper) {
    keeper.close_by([] {
        if (gchk_graphics() != 0) { // of a picture that ended early
            give_up_outputs();
            GPH_end(session.work_id);
        }
    });
    keeper.keep(session);
}
