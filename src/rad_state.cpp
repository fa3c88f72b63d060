// rad_state: the state of the whole program as a run over a list of inputs needs it:
// taken once, before the first picture, and put back before each. What is not named
// here is the same for all pictures of a run (settings, messages, outputs under way),
// is set anew wherever it is used, or belongs to a window. The test "states" holds the
// list against the objects of the program.
#include "rad_state.h"

#include "state_keeper.h"

namespace {

// The session first: it ends what a picture left open.
constexpr void (*keepers[])(StateKeeper& keeper) = {
    keep_plt_tool,   keep_colors,      keep_cont,         keep_cty_tool,   keep_date,
    keep_files,      keep_file_sel,    keep_flag,         keep_gif,        keep_gif_loop,
    keep_gks_cgm,    keep_gks_colr,    keep_gks_draw,     keep_gks_fill,   keep_gks_hpgl,
    keep_gks_line,   keep_gks_loop,    keep_gks_mark,     keep_gks_mdraw,  keep_gks_meta,
    keep_gks_obj,    keep_gks_palette, keep_gks_pipe,     keep_gks_print,  keep_gks_ps,
    keep_gks_state,  keep_gks_text,    keep_gks_tool,     keep_gks_tran,   keep_gph_tool,
    keep_kav_plt,    keep_kavrad,      keep_lev2_plt,     keep_lev2_read,  keep_map,
    keep_map_file,   keep_map_lines,   keep_maptran,      keep_nids,       keep_nids_header,
    keep_nids_pages, keep_nids_plt,    keep_nids_symbols, keep_nids_value, keep_no_memory,
    keep_now_plt,    keep_nowrad,      keep_plt_evnt,     keep_plt_labl,   keep_plt_parm,
    keep_plt_tally,  keep_plt_view,    keep_rad_item,     keep_rad_key,    keep_rad_plt,
    keep_rad_probe,  keep_rad_read,    keep_raw_plt,      keep_raw_read,   keep_rad_text,
    keep_raw_tool,   keep_rcm_plt,     keep_region,       keep_rrwds,      keep_tools,
    keep_var_code,   keep_var_file,    keep_var_tool,     keep_watch,      keep_wx_symb,
};

} // namespace

const StateKeeper& RAD_take_state() {
    static StateKeeper keeper;
    for (void (*const keep)(StateKeeper & keeper) : keepers) {
        keep(keeper);
    }
    return keeper;
}
