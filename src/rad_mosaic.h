// rad_mosaic.h: what the plotters of mosaics share: the frame, the colours, and
// the echoes of an image given as runs of columns in lines from the top.
#pragma once

#include "date.h"
#include "map_proj.h"
#include "rad_fill.h"
#include "rad_run.h"

#include <array>
#include <vector>

// The state of a mosaic's plotter beside its file and header.
struct RadMosaicPlot {
    char name[file_name_size] = "";   // the open file
    char datim[date_label_size] = ""; // its date label
    int run_len = 0;                  // columns of a figure; 0: by the projections
    RadWords words;
    RadRun run;
};

// Takes a word of `plot_param`: "run", or one that all plotters share.
void rad_mosaic_word(RadMosaicPlot& plot, const char* word);
// Labels of an open file, its messages and its bar.
void rad_mosaic_take(RadMosaicPlot& plot, const char* name, const Date& date, const char* label,
                     const Domain& domain);
// A frame about the echoes, which `summary` draws.
int rad_mosaic_frame(const RadMosaicPlot& plot, const Date& date, int (*summary)());
// Labels and colours before the echoes of an image on `domain`. False when they
// are switched off, or the file ended before it said where the image lies.
bool rad_mosaic_begin(RadMosaicPlot& plot, const char* label, const Domain& domain);
// No domain: a mosaic is drawn on the one that the user chose.
const Domain* rad_mosaic_domain();

// The image of a mosaic on the plot. Runs come line after line; what lies
// outside the window costs no transformation, and where the projection of the plot
// allows it each line and each column costs its trigonometry but once.
class RadMosaic {
public:
    // In which order a figure's corners go out.
    enum class Corners { from_top, from_bottom };

    // `run_len`: columns of a figure; 0: 10 on the product's own projection,
    // else 1. `first_line`: rows that the first line lies below the top.
    RadMosaic(const Domain& product, const Map& plot, int run_len, Corners corners, int first_line);
    RadMosaic(const RadMosaic&) = delete;
    RadMosaic& operator=(const RadMosaic&) = delete;

    // A run of columns of one value. Columns and lines outside the image are left out.
    // Packed bytes can ask for any number of figures: what exceeds the largest real
    // mosaic is cut with a message.
    void draw(int line, int column, int run, float value) {
        if (line >= rows_.first && line < rows_.end) {
            draw_seen(line, column, run, value);
        }
    }
    // Whether no line from this one on meets the window. False while nothing was
    // drawn.
    [[nodiscard]] bool is_past(int line) const { return found_ && line >= rows_.end; }

private:
    // The corners on a line between two rows, by column, as far as they are known.
    struct Edge {
        std::vector<Gpt> points;
        std::vector<int> line; // that a point was worked out for
        int half_line = missing;
        MapPair half; // of the images on half_line
    };

    struct Range {
        int first, end;
    };

    // Figures that the finest mosaic can ask for: each cell of a fine KAVRAD.
    static constexpr long most_asked = 30000000;

    void prepare();
    void find_window();
    void draw_seen(int line, int column, int run, float value);
    int place(Edge& edge, int line, int column, Gpt& p);
    bool has_room();
    [[nodiscard]] bool in_view(const std::array<Gpt, 5>& figure) const;
    void look_at(float x, float y, std::array<double, 4>* box, bool* whole) const;
    const Gpt& corner(int line, int column);

    Map own_, plot_;
    Corners corners_;
    int first_line_;
    int chunk_;
    double left_ = 0, top_ = 0;        // in the product's own coordinates
    Range rows_{0, 0}, columns_{0, 0}; // that may meet the window
    bool found_ = false;               // they are worked out, which only an echo needs
    std::array<Edge, 2> edges_;
    std::vector<MapPair> turns_; // halves of the images by column; empty: none
    std::vector<bool> turned_;   // those worked out
    RadFills fills_;
    long asked_ = 0, drawn_ = 0;     // figures
    const Gattribs* look_ = nullptr; // in force
    Gattribs look_copy_;
};
