// What a user mistypes: one row a mistake, with the program's exit code, what it
// says and what it leaves on the disk. Rows stand under the module that answers.
#include "mosaic_writer.h"
#include "nids_writer.h"
#include "run_program.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>

namespace {

struct Mistake {
    const char* args; // split at blanks, "~" is a blank in a word; "radial" is a product
    int code;
    const char* said; // whole lines of the standard error stream, "*" is any text; "" nothing
    const char* left; // a file that is there afterwards, "!" in front: that is not; "" none asked
};

// clang-format off
constexpr Mistake mistakes[] = {
    // Options.
    {"radial -pdd us", 0, "RES_decode: Unknown option: -pdd, the nearest is -pd\n", "page.ps"},
    {"radial -Colour_text red", 0,
     "RES_decode: Unknown option: -Colour_text, the nearest is -color_text\n",
     "page.ps"},
    {"radial --output o.png", 0,
     "output: o.png draws nothing: a page is written with -de p,FILE, an image with -of "
     "png=FILE\n",
     "!o.png"},
    {"radial -ingestor x", 0, "", "page.ps"}, // of the wider suite: has a row
    {"radial -di=x -na t -ba=off", 0, "", "page.ps"},
    {"radial -pd", 0, "RES_decode: No value: -pd, it is left out\n", "page.ps"},
    {"radial -va", 0, "RES_decode: No value: -va, it is left out\n", "page.ps"},
    {"radial -verison", 0, "RES_decode: Unknown option: -verison, the nearest is --version\n",
     "page.ps"},
    {"-de p radial page.ps", 0,
     "NIDS_open_file: Unable to open file:./page.ps\n"
     "FILE_set_file: A name alone is an input, this output is named by -de p,FILE\n", "zyr.ps"},
    {"o.png", 10,
     "NIDS_open_file: Unable to open file:./o.png\n"
     "FILE_set_file: A name alone is an input, this output is named by -of png=FILE\n", "!o.png"},
    {"radial -ba=maybe", 0, "batch: No switch: maybe, on is taken; *", "page.ps"},
    {"radial -ic=maybe", 0, "icon: No switch: maybe, off is taken; *", "page.ps"},
    {"radial --resume", 0, "RES_decode: Left out: --resume, it goes with --files-from LIST\n",
     "page.ps"},
    // Defaults files.
    {"radial -df my.cgf", 0,
     "RES_decode: Unable to open defaults file: my.cgf\nRES_decode: The nearest file is my.cfg\n",
     "page.ps"},
    {"radial -df my.cfg", 0, "RES_decode: Unknown setting: plot_parm, the nearest is plot_param\n"
     "RES_decode: Unknown setting: colour_text, the nearest is color_text\n", "page.ps"},
    {"radial -df none", 0, "", "page.ps"},
    // Words.
    {"radial -pp pscolour", 0,
     "plot_param: Unknown word: pscolour, the nearest is pscolor\n",
     "page.ps"},
    {"radial -pp fulllab,BAR=1:2,strong,lab=2:3,site,xy=1:2", 0,
     "plot_param: Unknown word: fulllab, the nearest is fullab\n",
     "page.ps"},
    {"radial -dr sum,+txt,-map,All", 0,
     "draw: Unknown word: txt, the nearest is text\n",
     "page.ps"},
    {"radial -va id,tpo:value,watch", 0,
     "NIDS_plot: Unknown variable: tpo, the nearest is top\n*",
     "page.ps"},
    {"radial -va comp,vel2,City", 0, "", "page.ps"},
    {"radial -pl vaule", 0, "plot_type: Unknown word: vaule, the nearest is value\n", "page.ps"},
    {"radial -pl contuor", 0, "plot_type: Unknown word: contuor, the nearest is ln (contour)\n",
     "page.ps"},
    {"radial -va vel", 0,
     "NIDS_plot: No variable of a NIDS product: vel, its own data are drawn\n", "page.ps"},
    {"radial -pf ovr", 0, "file_param: Unknown word: ovr, the nearest is over\n", "page.ps"},
    {"radial -pf overwrite", 0, "file_param: Unknown word: overwrite, the nearest is over\n",
     "page.ps"},
    {"radial -pl cf,ln", 0, "plot_type: No list: cf,ln, the default is taken; *", "page.ps"},
    {"radial -pl 15", 0, "plot_type: Unknown word: 15, *", "page.ps"},
    {"radial -pp full;nobar", 0,
     "plot_param: Unknown word: full;nobar, the nearest is fullab\n", "page.ps"},
    {"radial -pp full~nobar", 0,
     "plot_param: Unknown word: full nobar, the nearest is fullab\n", "page.ps"},
    {"radial -dr text,data,nomap", 0, "draw: Unknown word: nomap, the nearest is map\n",
     "page.ps"},
    {"radial -dr text~data", 0,
     "draw: Unknown word: text data, the nearest is text\nPLT_open: Nothing to draw: text data\n",
     "!page.ps"},
    {"radial -la ul=Norman", 0, "label: No place: ul=Norman, *", "page.ps"},
    {"radial -la xx:hello,UL1:x,lc:~y", 0,
     "label: No place: xx:hello, a label begins with ul:, uc:, ur:, ll:, lc: or lr:\n",
     "page.ps"},
    {"radial -la uc:%D0123456789012345678901234567890123456789012345678901234567890123456789", 0,
     "label: Too long: uc:%D0*9, its first 69 letters are taken\n", "page.ps"},
    {"radial -la ul:Norman,~OK", 0, "label: No place:  OK, a label begins with ul:*\n", "page.ps"},
    {"radial -la ul:%q,ll:%D", 0, "label: Unknown code: %q in ul:%q, it is left out; the codes *",
     "page.ps"},
    {"radial -pp font=romn", 0,
     "gget_font_index: Unknown font: romn, the nearest is roman, the first is taken\n", "page.ps"},
    {"radial -la ul7:x", 0, "label: No line: ul7:x, 5 is taken; the lines are 0 to 5\n", "page.ps"},
    {"radial -pp over=7", 0, "plot_param: No line: over=7, 5 is taken; *", "page.ps"},
    {"radial -pp over=1:99", 0, "plot_param: Too many lines: over=1:99, there are 6\n",
     "page.ps"},
    {"radial -pp mark=plsu", 0, "plot_param: No marker: mark=plsu, none is taken; *", "page.ps"},
    {"radial -fm vlaue", 0,
     "plot_format: Unknown word: vlaue, it is left out, the nearest is value; *", "page.ps"},
    {"radial -fm %s:ul", 0, "plot_format: No format of a number: %s, it is left out; *",
     "page.ps"},
    {"radial -pp over=1:2,mark=cld,xy=1:2,ybar=-30 -fm %3.0f:ul:co=red -la lr2:x", 0, "",
     "page.ps"},
    // Numbers.
    {"radial -pp dist=abc", 0, "plot_param: No number: dist=abc, at \"abc\"; *", "page.ps"},
    {"radial -pp dist=50nm", 0, "plot_param: No number: dist=50nm, at \"nm\"; *", "page.ps"},
    {"radial -pp bar=x", 0, "plot_param: No number: bar=x, *", "page.ps"},
    {"radial -pp bar=0-70", 0, "plot_param: No number: bar=0-70, at \"-70\"; *", "page.ps"},
    {"radial -pp shadow=big", 0, "plot_param: No number: shadow=big, *", "page.ps"},
    {"radial -pp clutter=20km", 0, "plot_param: No number: clutter=20km, *", "page.ps"},
    {"radial -pp numplt=all", 0, "plot_param: No number: numplt=all, *", "page.ps"},
    {"radial -pp conmin=low", 0, "plot_param: No number: conmin=low, *", "page.ps"},
    {"radial -pp lab=big", 0, "plot_param: No number: lab=big, *", "page.ps"},
    {"radial -pp skip=x", 0, "plot_param: No number: skip=x, *", "page.ps"},
    {"radial -pp run=x", 0, "plot_param: No number: run=x, *", "page.ps"},
    {"radial -pp yba=x", 0, "plot_param: No number: yba=x, *", "page.ps"},
    {"radial -pp xy=1", 0, "plot_param: No number: xy=1, *", "page.ps"},
    {"radial -pp fill=hatched", 0, "plot_param: No pattern: fill=hatched, fills are solid; *",
     "page.ps"},
    {"radial -pp vp_size=2x2+5+5", 0, "plot_param: No part of the page: vp_size=2x2+5+5, *",
     "page.ps"},
    {"radial -in -5", 0, "con_interval: No interval: -5, *", "page.ps"},
    {"radial -pp lalo", 0, "plot_param: No number: lalo, at \"\"; *lalo=5:10\n", "page.ps"},
    {"radial -pp vp_size=9", 0, "plot_param: No part of the page: vp_size=9, *", "page.ps"},
    {"radial -pp font=bold,dist=50:100,bar=0:70,lalo=5:5,vp_size=2x2+1+1", 0, "", "page.ps"},
    {"radial -in nids", 0, "con_interval: No interval: nids, *named by -inp\n", "page.ps"},
    {"radial -cb abc,>20", 0, "con_base: No number: abc, *", "page.ps"},
    {"radial -sc big", 0, "plot_scale: No number: big, 1 is taken\n", "page.ps"},
    {"radial -pr high", 0, "stat_prior: No number: high, *", "page.ps"},
    {"radial -pr +1 -sc 1.5 -in 5 -cb <70", 0, "", "page.ps"},
    // Colours and levels.
    {"radial -com reddish", 0,
     "CLR_get_ind: Unknown color: reddish, the nearest is red\n",
     "page.ps"},
    {"radial -cof 20:gren,30:red,40:gren", 0,
     "CLR_get_ind: Unknown color: gren, the nearest is green\n",
     "page.ps"},
    {"radial -cot none -cod off:wi=2 -coln 3 -com #ff0000 -cogr=wi=2", 0, "", "page.ps"},
    {"radial -cot red:wi=x", 0, "ATTRIB_parse: Unknown attribute: wi=x; they are co=*", "page.ps"},
    {"radial -cot red:st=dashes", 0, "ATTRIB_parse: Unknown attribute: st=dashes; *", "page.ps"},
    {"radial -cot red:width=2", 0, "ATTRIB_parse: Unknown attribute: width=2; *", "page.ps"},
    {"radial -cot red:fo=romn", 0, "gget_font_index: Unknown font: romn, *", "page.ps"},
    {"radial -mf us_state.map:color=red", 0, "ATTRIB_parse: Unknown attribute: color=red; *",
     "page.ps"},
    {"radial -mf us_state.map:gren", 0, "CLR_get_ind: Unknown color: gren, the nearest is green\n",
     "page.ps"},
    {"radial -cot red:wi=2:st=dsh:fp=hat:hi=1.5:s2:fM", 0, "", "page.ps"},
    {"radial -cot red,blue", 0, "CLR_get_ind: Unknown color: red,blue, *", "page.ps"},
    {"radial -cot 999", 0, "ATTRIB_get: No color of that number: 999, the last is *", "page.ps"},
    {"radial -cot #12", 0,
     "CLR_get_ind: Unknown color: #12, a color in digits is #RRGGBB\n", "page.ps"},
    {"radial -cof velocity.lvl,width.lvl", 0,
     "CONT_set_fill_colors: A level file stands alone, in a list it is left out: velocity.lvl\n"
     "CONT_set_fill_colors: A level file stands alone, in a list it is left out: width.lvl\n",
     "page.ps"},
    {"radial -cof 20:red", 0,
     "CONT_set_fill_colors: Unable to read contour level file: 20:red\n"
     "CONT_set_fill_colors: A list of levels has two colors or more\n"
     "CONT_set_fill_colors: The product's own colors are taken\n", "page.ps"},
    {"radial -cof .", 0, "CONT_set_fill_colors: Unable to read contour level file: .\n*",
     "page.ps"},
    {"radial -ct .", 0, "CLR_read_table: Unable to open color table: .\n*", "page.ps"},
    {"radial -ct ./radial", 0, "CLR_read_table: No colors in: ./radial\n*", "page.ps"},
    {"radial -ct nofile.clr", 0,
     "CLR_read_table: Unable to open color table: */nofile.clr\n"
     "CLR_read_table: The default color table is taken: zyr.clr\n",
     "page.ps"},
    {"radial -cof nofile", 0,
     "CONT_set_fill_colors: Unable to read contour level file: nofile\n"
     "CONT_set_fill_colors: The product's own colors are taken\n",
     "page.ps"},
    {"radial -cof 40:red,20:green,30:blue", 0,
     "CONT_set_fill_colors: The levels fall, a list begins with the lowest: "
     "40:red,20:green,30:blue\n",
     "page.ps"},
    {"radial -cof red,green", 0, "", "page.ps"},
    {"radial -cof ./empty", 0,
     "CONT_set_fill_colors: Unable to read contour level file: ./empty\n"
     "CONT_set_fill_colors: The product's own colors are taken\n", "page.ps"},
    {"radial -fl nofont", 0, "read_font: unable to load font file: nofont\n", "page.ps"},
    {"radial -fl romn.fnt", 0, "read_font: unable to load font file: romn.fnt\nread_font: The "
     "nearest file is */roman.fnt\n", "page.ps"},
    {"radial -bg navi", 0, "background: Unknown color: navi, the nearest is navy; paper is white\n",
     "page.ps"},
    {"radial -bg navy", 0, "", "page.ps"},
    {"radial -ct zry.clr", 0,
     "CLR_read_table: Unable to open color table: */zry.clr\n"
     "CLR_read_table: The nearest file is */zyr.clr\n"
     "CLR_read_table: The default color table is taken: zyr.clr\n", "page.ps"},
    {"radial -cof velocty", 0,
     "CONT_set_fill_colors: Unable to read contour level file: velocty\n"
     "CONT_set_fill_colors: The nearest file is */velocity.lvl\n"
     "CONT_set_fill_colors: The product's own colors are taken\n", "page.ps"},
    {"radial -cof 20:red,nofile.lvl", 0,
     "CONT_set_fill_colors: A level file stands alone, in a list it is left out: nofile.lvl\n",
     "page.ps"},
    // Messages: a slip silences nothing.
    {"radial -me wran", 0, "MESS_set_str: Unknown word: wran, the nearest is warn\n", "page.ps"},
    {"radial -me warn,-dbeug", 0, "MESS_set_str: Unknown word: -dbeug, the nearest is debug\n",
     "page.ps"},
    {"radial -me none,wran", 0, "", "page.ps"},
    {"radial -me pgae,warn,line=x", 0, "MESS_set_str: Unknown word: pgae, the nearest is page\n",
     "page.ps"},
    // Places and maps.
    {"radial -pd 35.2,97.5", 0, "The plot domain about 35.20 97.50 shows nothing of the data *"
     "Longitudes in the west are negative\n", "page.ps"},
    {"radial -pd -97.5,35.2", 0,
     "DOM_decode: Invalid plot domain\n\"-97.5,35.2\" has a latitude beyond 90: *", "page.ps"},
    {"radial -pd oklahma", 0, "DOM_decode: Invalid plot domain\n\"oklahma\" is no region: *\n"
     "DOM_decode: The nearest region is ok\n", "page.ps"},
    {"radial -re oklahma", 0, "DOM_decode: Invalid plot domain\n*nearest region is ok\n",
     "page.ps"},
    {"./radial -inp nowrad -pd usa", 43,
     "Invalid domain\n\"usa\" is no region\nDOM_decode: The nearest region is us\n", "!page.ps"},
    {"radial -pd stereo,35,-97,.3", 0, "DOM_decode: Invalid plot domain\n*"
     "DOM_decode: The nearest projection is polar\n", "page.ps"},
    {"radial -pd ok~,~tx", 0, "DOM_decode: Invalid plot domain\n\"ok , tx\" is no domain: *",
     "page.ps"},
    {"radial -mf usa.lst", 0,
     "MAP_process: No map database: usa.lst; a list of maps is named as fi:usa.lst\n", "page.ps"},
    {"radial -mf .", 0, "MAP_process: Map file not found: .\nMAP_process: *: Is a directory\n", "page.ps"},
    {"radial -pd nowhere", 0,
     "DOM_decode: Invalid plot domain\n\"nowhere\" is no region: the data's own domain is taken\n",
     "page.ps"},
    {"radial -pd ps,95,-97,41,31,.1,.1", 0, "DOM_decode: Invalid plot domain\n*beyond 90*",
     "page.ps"},
    {"radial -pd ps,35,-97,0,31,.1,.1", 0, "DOM_decode: Invalid plot domain\n*no extent*",
     "page.ps"},
    {"radial -gd oklahma", 0, "grid_domain: No domain: \"oklahma\" is no region, it is left out\n"
     "DOM_decode: The nearest region is ok\n", "page.ps"},
    {"radial -gd ps,95,-97,41,31,.1,.1", 0, "grid_domain: No domain: *beyond 90, it is left out\n",
     "page.ps"},
    {"radial -gd us", 0, "", "page.ps"},
    {"radial -dp nodir", 0, "data_path: No directory: nodir, no file is found in it\n", "page.ps"},
    {"radial -sp nodir", 0, "sat_path: No directory: nodir, *", "page.ps"},
    {"radial -fp nodir", 0, "file_path: No directory: nodir, the data tree's is taken\n",
     "page.ps"},
    {"radial -dp . -ip new/dir", 0, "", "page.ps"},
    {"radial -mf nomap.map", 0, "MAP_process: Map file not found: nomap.map\n", "page.ps"},
    {"radial -mf us_sate.map", 0, "MAP_process: Map file not found: us_sate.map\n"
     "MAP_process: The nearest file is */us_state.map\n", "page.ps"},
    {"radial -mf fi:use.lst", 0, "MAP_draw: Unable to open map list file: use.lst\n"
     "MAP_draw: The nearest file is */usa.lst\n", "page.ps"},
    {"radial -cf sao.ctz", 0, "CTY_open_file: Database file not found: sao.ctz\n"
     "CTY_open_file: The nearest file is */sao.cty\n", "page.ps"},
    {"./list -inp rcmsite -id TLX -cf sao.ctz -pd us", 10,
     "CTY_open_file: Database file not found: sao.ctz\n"
     "CTY_open_file: The nearest file is */sao.cty\nRCM_open_file: *", "!page.ps"},
    {"radial -mf rf:norow.raw", 0, "RAW_file_open: Unable to open file:norow.raw\n", "page.ps"},
    {"radial -mf rf:obs.raw:nosuch", 0,
     "RAW_plot_file: Unknown word: nosuch, it is left out, *", "page.ps"},
    {"radial -mf rf:obs.raw-nosuch", 0,
     "RAW_plot_file: No value of the field: obs.raw-nosuch\n", "page.ps"},
    {"radial -mf rf:obs.raw-t:ul", 0, "", "page.ps"},
    {"radial -mf rf:gap.raw", 0,
     "RAW_read: The data end at an empty line, rows after it are left out: *gap.raw\n", "page.ps"},
    {"./mosaic -inp nowrad -pd us -va wach", 0,
     "variable: Nothing of a mosaic: wach, its own data are drawn; the nearest is watch\n",
     "page.ps"},
    {"radial -mf im:none.gif", 0, "MAP_process: Images are drawn in a window alone: none.gif\n",
     "page.ps"},
    {"radial -wp=nodir -va watch", 0,
     "WATCH_decode: No file of watches in the 9 hours before, the last:nodir/*", "page.ps"},
    {"radial -dr nothing", 0,
     "draw: Unknown word: nothing, the nearest is none\nPLT_open: Nothing to draw: nothing\n",
     "!page.ps"},
    {"radial -pp jpg=x.jpg", 0, "plot_param: Unknown word: jpg=x.jpg, the nearest is png\n",
     "page.ps"},
    // Inputs.
    {".", 10, "NIDS_open_file: Unable to open file:.\nFILE_set_file: .: Is a directory\n",
     "!page.ps"},
    {"raidal", 10, "NIDS_open_file: Unable to open file:./raidal\n"
     "FILE_set_file: The nearest file is ./radial\n", "!page.ps"},
    {"raidal -inp auto", 10,
     "zyrrad: Unable to open file: raidal\nFILE_set_file: The nearest file is radial\n",
     "!page.ps"},
    {"radial -inp nid -pd us -va def", 10,
     "input: Unknown word: nid, the nearest is nids\nUnable to open file:./radial\n*",
     "!page.ps"},
    {"radial -inp level3 -pd us -va def", 10,
     "input: Unknown word: level3, the nearest is nids\n*", "!page.ps"},
    {"./list", 10, "NIDS_open_file: Unable to read file:./list\n*looks like a text file*", "!page.ps"},
    {"./list -inp lev2", 10, "LEV2_open_file: Unable to read file:./list\n*a text file*",
     "!page.ps"},
    {"./list -inp auto", 10, "zyrrad: No radar file: ./list\n*a text file*", "!page.ps"},
    {"./list -inp rrwds -id OKC", 11, "RRWDS_get_header: Station not found\n", "!page.ps"},
    {"./zip", 10, "NIDS_open_file: Unable to read file:./zip\n*looks like a zip archive*",
     "!page.ps"},
    {"./bzip2", 10, "NIDS_open_file: Unable to read file:./bzip2\n*a file packed by bzip2*",
     "!page.ps"},
    {"./zip -inp kavrad -pd us", 0, "KAVRAD_open_file: Not a KAVRAD file: ./zip\n*a zip archive*",
     "page.ps"}, // which has no mark
    {"./half -inp nowrad -pd us", 0,
     "NOWRad_plot_summary: The file is damaged or not whole:./half\n", "page.ps"},
    {"./header -inp nowrad -pd us", 0,
     "NOWRad_plot_summary: The file is damaged or not whole:./header\n", "page.ps"},
    {"./short -inp kavrad -pd us", 0,
     "KAVRAD_plot_summary: The file is damaged or not whole:./short\n", "page.ps"},
    {"./zip -inp rrwds", 11, "RRWDS_get_header: Station not found\n*a zip archive*", "!page.ps"},
    {"./empty -inp mdr -pd us -va pr_tt", 10, "Unable to open file:./empty\n*an empty file*",
     "!page.ps"},
    {"nofile -inp auto", 10, "zyrrad: Unable to open file: nofile\n", "!page.ps"},
    {"nofile -inp lev2z", 10, "LEV2_open_file: Unable to open file:./nofile\n", "!page.ps"},
    {"./list -inp nowrad -pd us", 10, "*", "!page.ps"},
    {"./list -inp rcmsite -id TLX", 10, "*", "!page.ps"},
    {"./list -inp mdr -pd us -va pr_tt", 10, "*", "!page.ps"},
    {"KTLX20190520_223125_V06 -inp lev2", 10, // that of another second, or radar, is another
     "LEV2_open_file: Unable to open file:./KTLX20190520_223125_V06\n"
     "FILE_set_file: The nearest file is ./KTLX20190520_223124_V06\n", "!page.ps"},
    {"./KFDR20190520_2231 -inp lev2", 10,
     "LEV2_open_file: Unable to open file:./KFDR20190520_2231\n", "!page.ps"},
    {"KTLX20190520_2231 -inp lev2", 10,
     "LEV2_open_file: Unable to read file:./KTLX20190520_223124_V06\n*", "!page.ps"},
    {"radial -inp lev2", 10, "LEV2_open_file: Unable to read file:radial\n*", "!page.ps"},
    // Device and page.
    {"radial -de png,o.png", 0,
     "device: png is no device, PostScript is taken; an image is written with -of png=FILE\n",
     "o.png"},
    {"radial -de pdf,o.pdf", 0,
     "device: pdf is no device, PostScript is taken; a PDF is made with -de 'p,|ps2pdf - FILE'\n",
     "o.pdf"},
    {"radial -de display,:nowhere", 4,
     "gopen_ws: unable to connect to display\n"
     "gopen_ws: display: :nowhere; a page needs none: -de p,FILE; nor do images: -of png=FILE\n"
     "GPH_begin: Error opening workstation\n",
     "!page.ps"},
    {"radial -de x", 4,
     "device: Unknown word: x, the display is taken; the devices are d display, p PostScript, "
     "q or h HPGL, m metafile, w window\n*DISPLAY is not set;*",
     "!page.ps"},
    {"radial -ge big", 0, "geometry: No size: big, the device's own is taken; *", "page.ps"},
    {"radial -ge 5x4+1", 0, "geometry: No size: 5x4+1, *", "page.ps"},
    {"radial -ge P2", 0, "", "page.ps"}, // the left half
    {"radial -ge P9x9+10+10", 0, "gopen_ws: geometry leaves no room: P9x9+10+10\n", "page.ps"},
    {"radial -ge 800,600", 0, "geometry: No size: 800,600, *", "page.ps"},
    {"radial -ge 400x300+5000+5000", 0,
     "gopen_ws: geometry leaves no room: 400x300+5000+5000\n", "page.ps"},
    {"radial -de p,page.ps,landscape", 0, "gopen_ws: invalid option: landscape\n", "page.ps"},
    {"radial -de p,page.ps,sz=8", 0, "gopen_ws: invalid option: sz=8\n", "page.ps"},
    {"radial -de m,x,cgmm", 0, "gopen_ws: invalid option: cgmm\n", "x"},
    {"radial -de q,x,ljj", 0, "gopen_ws: invalid option: ljj\n", "x"},
    {"radial -de p,radial", 4, "open_output: The output is an input of the run: radial\n*",
     "!page.ps"},
    {"radial -pp png=o.png", 4,
     "PLT_dump: Images are taken of a window alone\nPLT_dump: Unable to write PNG file: o.png\n",
     "!o.png"},
    {"radial -de p,radial/x.ps", 4,
     "gopen_ws: unable to open postscript file\n\n"
     "gopen_ws: radial/x.ps: Not a directory\nGPH_begin: *", "!page.ps"},
    {"radial -de m,.", 4,
     "gopen_ws: unable to open metafile\n\ngopen_ws: .: Is a directory\nGPH_begin: *",
     "!page.ps"},
    {"radial -de h,|false", 4,
     "ghpgl_close_file: unable to write HPGL file\n\nghpgl_close_file: |false: *", "!page.ps"},
    {"radial -de m,/dev/full", 4,
     "gmeta_close_file: unable to write metafile\n\n"
     "gmeta_close_file: /dev/full: No space left on device\n", "!page.ps"},
    {"radial -de d -of png=radial/x.png", 4,
     "Unable to open PNG file\nPLT_dump: Unable to write PNG file: radial/x.png\nPLT_dump: radial/x.png: Not a directory\n",
     "!page.ps"},
    {"radial -of jpg=x.jpg", 0, "out_file: Unknown word: jpg=x.jpg, the nearest is png; *",
     "page.ps"},
    {"radial -of x.gif", 0, "out_file: Unknown word: x.gif, the nearest is gif; *", "page.ps"},
    {"radial -of xwd=x", 0, "out_file: Left out: xwd=x, plot_param takes it: -pp xwd=x\n",
     "page.ps"},
    // Texts without end, and none.
    {"radial -df /dev/zero", 0, "FILE_open_text: Text ends, a line has 1 MB: /dev/zero\n*", ""},
    {"radial -nc /dev/zero", 0, "FILE_open_text: Text ends, a line has 1 MB: /dev/zero\n*",
     "page.ps"},
    {"radial -nc /dev/urandom", 0, "FILE_set_name: Line too long: *", "page.ps"},
    {"radial -cf /dev/zero -pp site", 0, "", "page.ps"},
    {"radial -mf fi:/dev/urandom -dr map", 0,
     "MAP_draw: No map list, or one that is too long: /dev/urandom\n*", "page.ps"},
    {"radial -ct /dev/zero", 0,
     "CLR_read_table: No colors in: /dev/zero\n"
     "CLR_read_table: The default color table is taken: zyr.clr\n",
     "page.ps"},
    {"radial -ct /dev/urandom", 0,
     "CLR_read_table: No colors in: /dev/urandom\n"
     "CLR_read_table: The default color table is taken: zyr.clr\n",
     "page.ps"},
    {"radial -de d -of png=nowrad.png", 0, "", "nowrad.png"}, // no mosaic's convention
    {"radial -mf fi:./list", 0, "MAP_draw: Command refused: mf:|touch${IFS}harm in map list: ./list\n*",
     "!harm"},
    {"radial -df many", 0, "RES_decode: More than 10000 settings: many\n*", ""},
    // What there is.
    {"--list regoins", 10, "RAD_list: Unknown word: regoins, the nearest is regions\n", "!page.ps"},
    {"--list products", 0, "", "!page.ps"},
    {"--list colours", 0, "", "!page.ps"},
    {"--list variables", 0, "", "!page.ps"},
    // Times.
    {"radial -nh abc", 0, "num_hour: No hours: abc, 0 is taken; a time is HOURS or *", "page.ps"},
    {"radial -nh -1,0", 0, "num_hour: No step: 0, that of the files is taken\n", "page.ps"},
    {"radial -nh 0,1,2", 0, "num_hour: Left out: 2, there are but hours and a step\n", "page.ps"},
    {"radial -ho 12h", 0, "hour: No time: 12h, it is left out; a time is *", "page.ps"},
    {"radial -ho now", 0, "hour: No time: now, *", "page.ps"},
    {"radial -ho 1332", 0, "hour: No time: 1332, *", "page.ps"},
    {"radial -nh 1h", 0, "num_hour: No hours: 1h, 0 is taken; *", "page.ps"},
    {"lake.nids", 10, "filename: No time: lake.nids, \"ke.nids\" is left out; *", "!page.ps"},
    {"20130520", 10, "NIDS_open_file: Unable to open file:./201305200000.nids\n", "!page.ps"},
    {"#2013-05-20", 10, "NIDS_open_file: Unable to open file:*\"-05-20\" was taken off\n",
     "!page.ps"},
    {"radial -pp tz=America/Chicago", 0, "tz: No hours from UTC: America/Chicago, *", "page.ps"},
    {"radial -ho 25:99", 0, "hour: No time: 25:99, *", "page.ps"},
    {"radial -ho 2:00pm", 0, "hour: No time: 2:00pm, *", "page.ps"},
    {"radial -ho 2013-05-20", 0, "hour: No time: 2013-05-20, *", "page.ps"},
    {"radial -ho 1d12:30 -nh -0:30,:5 -cu -1:30la#5", 0, "", "page.ps"},
    {"radial -cu foo", 0, "current: No time: foo, \"foo\" is left out; a request is la, *",
     "page.ps"},
    {"radial -pp tz=CST", 0,
     "tz: No hours from UTC: CST, times stay in UTC; a zone is *",
     "page.ps"},
    {"radial -pp tz:UTC,tz=-CST:-6", 0, "", "page.ps"},
    // Files, and what they are said to be.
    {"2013-x.nids", 10,
     "NIDS_open_file: Unable to open file:./2013\n"
     "FILE_set_file: No file has the whole name, \"-x.nids\" was taken off\n",
     "!page.ps"},
    {"list", 0, "FILE_list_file: No file fits %D/%Y%m%d%h%n.nids\n", "!page.ps"},
    {"radial -if kavrad", 0, "in_file: kavrad names files of another type than the input\n",
     "page.ps"},
    {"radial -if ndis_n0r", 0, "in_file: Unknown word: ndis_n0r, the nearest is nids\n", "page.ps"},
    {"radial -nc nam_conv", 0, "FILE_set_name: No file name convention file: */nam_conv\n"
     "FILE_set_name: The nearest file is */name_conv\n", "page.ps"},
    {"radial -if nids_wmo_N0Q:s=TLX", 0, "", "page.ps"},
    {"radial -inp nowrad -pd us", 10,
     "NOWRad_open_file: Not a NOWrad file: ./radial\n"
     "NOWRad_open_file: It looks like a NIDS product, read with -inp nids\n",
     "!page.ps"},
    // Files without end.
    {"radial -mf mf:/dev/zero", 0, "FILE_open_text: Text ends, a line has 1 MB: /dev/zero\n",
     "page.ps"},
    {"radial -mf fi:/dev/zero -dr map", 0,
     "FILE_open_text: Text ends, a line has 1 MB: /dev/zero\n", "page.ps"},
    {"radial -pd id:/dev/zero:KTLX", 0,
     "FILE_open_text: Text ends, a line has 1 MB: /dev/zero\nDOM_decode: Invalid plot domain\n*",
     "page.ps"},
    {"/dev/zero#1", 10, "NIDS_open_file: Unable to read file:/dev/zero\n*", "!page.ps"},
    {"/dev/zero -inp kavrad -pd us", 0,
     "KAVRAD_plot_summary: More packets than cells, the rest is left\n", "page.ps"},
    {"./radial -nh 1,1", 0, "", "page.ps"}, // no date in the name: the file alone
    {"./201805202205 -nh=99999999", 10,
     "num_hour: Too many steps, the nearest 200000 are taken\n200001 files of the hours *",
     "!page.ps"},
    {"./nofile -nh 3", 10, "NIDS_open_file: Unable to open file:./nofile\n", "!page.ps"},
    {"./201805202205 -nh 2", 10,
     "121 files of the hours asked for are missing, the first: ./201805202205.nids\n",
     "!page.ps"},
    // Help comes before all of it.
    {"radial -h -pdd us -pp pscolour -de png,o.png", 0, "", "!o.png"},
};
// clang-format on

// Does the text fit the pattern, in which "*" is any text?
bool fits(const std::string& text, const std::string& pattern) {
    std::size_t at = 0;
    std::istringstream parts(pattern);
    bool first = true;
    for (std::string part; std::getline(parts, part, '*'); first = false) {
        const std::size_t found = text.find(part, at);
        if (found == std::string::npos || (first && found != 0)) {
            return false;
        }
        at = found + part.size();
    }
    return pattern.ends_with('*') || at == text.size();
}

} // namespace

// A defaults file that a user only came by in a directory runs nothing.
TEST(Mistakes, ForeignDefaultsNameNoCommand) {
    if (access(ZYR_PROGRAM, X_OK) != 0) {
        GTEST_SKIP() << "no program was built";
    }
    struct Row {
        const char* search;
        bool as_option;
        bool refused;
    };
    for (const Row& row : std::initializer_list<Row>{
             {".",         false, true },
             {"",          false, true },
             {".",         true,  false},
             {"./zyr.cfg", false, false},
    }) {
        const TempDir dir;
        dir.write("zyr.cfg", "*.device p,|touch${IFS}harm\n*.own 1\n");
        dir.write(".zyrdef", "*.device p,|touch${IFS}harm\n");
        ProgramCall call;
        call.directory = dir.path();
        call.env = {
            {"zyrdefault", row.as_option ? "none" : row.search}
        };
        call.args = {"-inp", "nids", "-me", "warn", "set"};
        if (row.as_option) {
            call.args.insert(call.args.end(), {"-df", row.search});
        }
        const ProgramRun run = run_program(ZYR_PROGRAM, call);
        EXPECT_EQ(run.err.find("Command refused: *.device") != std::string::npos, row.refused)
            << row.search << run.err;
        EXPECT_NE(access((dir.path() + "/harm").c_str(), F_OK), 0);
    }
}

TEST(Mistakes, AreEachSaidOnce) {
    if (access(ZYR_PROGRAM, X_OK) != 0) {
        GTEST_SKIP() << "no program was built";
    }
    std::string many;
    for (int i = 0; i < 10001; ++i) {
        many += "*.a b\n";
    }
    std::string radial;
    for (const auto& [name, bytes] : nids_samples()) {
        if (name == "radial") {
            radial.assign(bytes.begin(), bytes.end());
        }
    }
    const Bytes cells = nowrad_file(nowrad_latlon(9, 9, -97, 40, 1, 1), [](int, int) { return 9; });
    const std::string mosaic(cells.begin(), cells.end());
    for (const Mistake& row : mistakes) {
        const TempDir dir;
        dir.write("radial", radial);
        dir.write("list", "mf:|touch${IFS}harm\n");
        dir.write("many", many);
        dir.write("zip", "PK\x03\x04" + std::string(18, '\0') + '\1' + std::string(200, '\0'));
        dir.write("bzip2", "BZh91AY&SY" + std::string(200, '\xFF'));
        dir.write("empty", "");
        dir.write("KTLX20190520_223124_V06", "a text");
        dir.write("mosaic", mosaic);
        dir.write("half", mosaic.substr(0, mosaic.size() - 30));
        dir.write("header", mosaic.substr(0, 20));
        dir.write("short", "no mosaic");
        dir.write("obs.raw", "ZYRRAW\n1200Z 23 NOV 26\n!Obs\nid lat lon t:Temp:%1.0f\n$\n"
                             "OKC 35 -97 21\n");
        dir.write("gap.raw", "OKC 35 -97 21\n\nTUL 36 -96 20\n");
        dir.write("my.cfg", "*.plot_parm nobar\n*.colour_text red\n*.own 1\n");
        ProgramCall call;
        call.env = {
            {"zyrdefault", ZYR_SOURCE_DIR "/etc"},
            {"zyrcurtime", "201905202230"       }
        };
        call.directory = dir.path();
        std::istringstream words(std::string("-inp nids -me warn -de p,page.ps ") + row.args);
        for (std::string word; words >> word;) {
            std::replace(word.begin(), word.end(), '~', ' ');
            call.args.push_back(word);
        }
        const ProgramRun run = run_program(ZYR_PROGRAM, call);
        EXPECT_EQ(run.code, row.code) << row.args << "\n" << run.err;
        EXPECT_TRUE(fits(run.err, row.said)) << row.args << "\nsays: " << run.err;
        const bool absent = *row.left == '!';
        const std::string left = dir.path() + "/" + (row.left + (absent ? 1 : 0));
        EXPECT_EQ(access(left.c_str(), F_OK) == 0, !absent) << row.args << ": " << row.left;
    }
}
