// Fuzz target: the lines of storm tables, from the pages of a product to the page.
// The first byte chooses the product; a line feed ends a line, a form feed a page.
#include "nids_plt.h"

#include "map.h"
#include "memory_file.h"
#include "nids_writer.h"
#include "plot_session.h"

#include <string>
#include <utility>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool open_session() {
    RES_put("variable", "comp,track,table,id::text,tvs::text,meso::text,posh::text,"
                        "poh,mvmt::track,hsize,vil,dbzm,top,model");
    return open_plot_session("p,/dev/null") && NIDS_plot_param() == 0;
}

Bytes product(std::uint8_t first, const std::string& text) {
    constexpr int codes[] = {37, 58, 59, 61, 141};
    NidsSample s;
    s.code = codes[first % std::size(codes)];
    s.layers = {nids_words({2, 2, 0})}; // a packet that is not walked
    std::vector<std::string> lines;
    std::string line;
    for (const char c : text + "\f") {
        if (c != '\n' && c != '\f') {
            line += c;
            continue;
        }
        lines.push_back(std::exchange(line, "").substr(0, 200));
        if (c == '\f') {
            s.pages.push_back(nids_page_packets(std::exchange(lines, {}), {0, 100}));
        }
    }
    return nids_message(s);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    [[maybe_unused]] static const bool opened = open_session();
    if (size == 0 || size > 4000) {
        return 0;
    }
    const MemoryFile file(product(data[0], std::string(data + 1, data + size)));
    if (NIDS_open_file(file.name()) != 0) {
        Domain domain = mercator_domain();
        MAP_setup(&domain);
        NIDS_plot_frame();
    }
    NIDS_close_file();
    return 0;
}
