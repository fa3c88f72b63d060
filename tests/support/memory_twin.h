// memory_twin.h: one plot drawn twice, in a window and in memory, which have to show
// the same pixels.
#pragma once

#include "image_view.h"
#include "img_kind.h"
#include "plot_window.h"

#include <filesystem>

// The picture of an image file of any kind; empty if it is none.
inline Picture read_picture(const std::string& name) {
    if (Picture png = read_png(name); png.width > 0) {
        return png;
    }
    IMG_report image;
    return IMG_read_any(name.c_str(), &image, 0, 32) == 1 ? picture_of_record(image) : Picture();
}

class MemoryTwin : public PlotWindow {
protected:
    ProgramRun run(const std::string& args, const std::string& display) {
        return launch(args,
                      {
                          {"DISPLAY", display}
        })
            ->wait();
    }
    // Draws into both and compares the images: `kind` of each, and a picture for each of
    // `frames` files. Counts what differs, and the plots that show nothing.
    void draw_twins(const std::string& args, const std::string& kind = "png", int frames = 1) {
        const std::string number = frames > 1 ? "%i" : "";
        const auto drawn = [&](const char* who, const char* device) {
            // Of two lists of words the second counts: the image joins the first.
            std::string words = args.find("-pp ") == args.npos ? args + " -pp ," : args;
            words.insert(words.find("-pp ") + 4, kind + "=" + who + number + ",");
            const ProgramRun done =
                run(std::string("-ge 320x256 -de ") + device + " " + words, server->name());
            EXPECT_EQ(done.code, 0) << args << done.err;
            return done;
        };
        const ProgramRun shown = drawn("window", "d");
        const ProgramRun kept = drawn("memory", "d,memory");
        EXPECT_EQ(kept.err, shown.err) << args;
        for (int i = 0; i < frames; ++i) {
            const std::string end = frames > 1 ? "0" + std::to_string(i) : "";
            const Picture seen = read_picture(dir.path() + "/window" + end);
            const Picture twin = read_picture(dir.path() + "/memory" + end);
            std::filesystem::remove(dir.path() + "/window" + end);
            std::filesystem::remove(dir.path() + "/memory" + end);
            EXPECT_EQ(seen.width, 320) << args;
            EXPECT_GE(seen.colors(), least_colors) << args << ": an empty picture";
            EXPECT_EQ(pixels_that_differ(seen, twin), 0) << args << ", picture " << i;
            ++plots;
        }
    }

    int plots = 0;
    int least_colors = 4; // of a picture that shows something
};
