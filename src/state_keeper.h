// state_keeper.h: what a run over a list of inputs starts each picture from: the state
// of the modules as it was before the first one. A module that a picture leaves changed
// hands its state in by a routine keep_NAME; rad_state.cpp calls them all.
#pragma once

#include <memory>
#include <type_traits>
#include <vector>

class StateKeeper {
public:
    // Takes a copy of a state that lives for the run. What it points at has to stay,
    // and it owns nothing that a copy would own twice.
    template <class T> void keep(T& state) {
        static_assert(std::is_copy_assignable_v<T>);
        kept_.push_back(std::make_unique<Copy<T>>(state));
    }
    // What has to be closed or given back first, whether it is open or not.
    void close_by(void (*close)()) { closed_by_.push_back(close); }

    // Closes all, then puts the copies back.
    void restore() const {
        for (void (*const close)() : closed_by_) {
            close();
        }
        for (const auto& copy : kept_) {
            copy->restore();
        }
    }

private:
    struct Any {
        virtual ~Any() = default;
        virtual void restore() const = 0;
    };
    template <class T> struct Copy : Any {
        explicit Copy(T& live_state) : state(live_state), saved(live_state) {}
        void restore() const override { state = saved; }
        T& state;
        const T saved;
    };
    std::vector<void (*)()> closed_by_;
    std::vector<std::unique_ptr<Any>> kept_;
};

void keep_colors(StateKeeper& keeper);
void keep_cont(StateKeeper& keeper);
void keep_cty_tool(StateKeeper& keeper);
void keep_date(StateKeeper& keeper);
void keep_file_sel(StateKeeper& keeper);
void keep_files(StateKeeper& keeper);
void keep_flag(StateKeeper& keeper);
void keep_gif(StateKeeper& keeper);
void keep_gif_loop(StateKeeper& keeper);
void keep_gks_cgm(StateKeeper& keeper);
void keep_gks_colr(StateKeeper& keeper);
void keep_gks_draw(StateKeeper& keeper);
void keep_gks_fill(StateKeeper& keeper);
void keep_gks_hpgl(StateKeeper& keeper);
void keep_gks_line(StateKeeper& keeper);
void keep_gks_loop(StateKeeper& keeper);
void keep_gks_mark(StateKeeper& keeper);
void keep_gks_mdraw(StateKeeper& keeper);
void keep_gks_meta(StateKeeper& keeper);
void keep_gks_obj(StateKeeper& keeper);
void keep_gks_palette(StateKeeper& keeper);
void keep_gks_pipe(StateKeeper& keeper);
void keep_gks_print(StateKeeper& keeper);
void keep_gks_ps(StateKeeper& keeper);
void keep_gks_state(StateKeeper& keeper);
void keep_gks_text(StateKeeper& keeper);
void keep_gks_tool(StateKeeper& keeper);
void keep_gks_tran(StateKeeper& keeper);
void keep_gph_tool(StateKeeper& keeper);
void keep_kav_plt(StateKeeper& keeper);
void keep_kavrad(StateKeeper& keeper);
void keep_lev2_plt(StateKeeper& keeper);
void keep_lev2_read(StateKeeper& keeper);
void keep_map(StateKeeper& keeper);
void keep_map_file(StateKeeper& keeper);
void keep_map_lines(StateKeeper& keeper);
void keep_maptran(StateKeeper& keeper);
void keep_nids(StateKeeper& keeper);
void keep_nids_header(StateKeeper& keeper);
void keep_nids_pages(StateKeeper& keeper);
void keep_nids_plt(StateKeeper& keeper);
void keep_nids_symbols(StateKeeper& keeper);
void keep_nids_value(StateKeeper& keeper);
void keep_no_memory(StateKeeper& keeper);
void keep_now_plt(StateKeeper& keeper);
void keep_nowrad(StateKeeper& keeper);
void keep_plt_evnt(StateKeeper& keeper);
void keep_plt_labl(StateKeeper& keeper);
void keep_plt_parm(StateKeeper& keeper);
void keep_plt_tally(StateKeeper& keeper);
void keep_plt_tool(StateKeeper& keeper);
void keep_plt_view(StateKeeper& keeper);
void keep_rad_item(StateKeeper& keeper);
void keep_rad_key(StateKeeper& keeper);
void keep_rad_plt(StateKeeper& keeper);
void keep_rad_probe(StateKeeper& keeper);
void keep_rad_read(StateKeeper& keeper);
void keep_rad_text(StateKeeper& keeper);
void keep_raw_plt(StateKeeper& keeper);
void keep_raw_read(StateKeeper& keeper);
void keep_raw_tool(StateKeeper& keeper);
void keep_rcm_plt(StateKeeper& keeper);
void keep_region(StateKeeper& keeper);
void keep_rrwds(StateKeeper& keeper);
void keep_tools(StateKeeper& keeper);
void keep_var_code(StateKeeper& keeper);
void keep_var_file(StateKeeper& keeper);
void keep_var_tool(StateKeeper& keeper);
void keep_watch(StateKeeper& keeper);
void keep_wx_symb(StateKeeper& keeper);
