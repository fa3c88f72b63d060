// plt_view: where a plot lies on its page: the viewport between the margins of the
// panel, what is in them, and the status line. Everything that draws reads
// it; the session (plt_tool) begins it anew. State: viewport and margins.
#include "plt_tool.h"

#include "gks.h"
#include "state_keeper.h"

#include <cstdarg>
#include <cstdio>

namespace {

struct View {
    Glim dis_view = {0, 0, 0, 0};               // viewport in use
    Glim view_off = {0.0F, 0.0F, 0.04F, 0.04F}; // margins: left, right, bottom, top
    float view_offset = 0.0F;                   // last single margin given
    int border = 1;                             // draw a frame about the viewport
    int full_lab = 0;                           // labels inside the viewport
    int fit_lab = 0;                            // label and bar keep clear of each other
};
View state;

} // namespace

Glim* PLT_start_view() {
    state.dis_view = state.view_off;
    return &state.dis_view;
}

int PLT_mess(const char* format, ...) {
    char text[200];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    return gmessage(0, text);
}

int PLT_set_view_offset(float offset) {
    state.view_offset = offset;
    state.view_off = {0.0F, 0.0F, offset, offset};
    return 0;
}

int PLT_set_view_offsets(float left, float right, float bottom, float top) {
    state.view_off = {left, right, bottom, top};
    return 0;
}

float PLT_get_view_offset() {
    return state.view_offset;
}

int PLT_get_view(Glim* view) {
    *view = state.dis_view;
    return 0;
}

int PLT_border(int value) {
    state.border = value;
    return 0;
}

int PLT_get_border() {
    return state.border;
}

int PLT_set_full_lab(int value) {
    state.full_lab = value;
    return 0;
}

int PLT_get_full_lab() {
    return state.full_lab;
}

int PLT_set_fit_lab(int value) {
    state.fit_lab = value;
    return 0;
}

int PLT_get_fit_lab() {
    return state.fit_lab;
}

void keep_plt_view(StateKeeper& keeper) {
    keeper.keep(state);
}
