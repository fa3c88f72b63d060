// The display in memory on the collection of real files, where it lies beside the
// tree: no pixel differs from a window.
#include "memory_twin.h"

#include <algorithm>

namespace {

class MemoryReal : public MemoryTwin {
protected:
    // Files of a directory in the order of their names, every `stride`-th of them.
    static std::vector<std::string> files_of(const std::string& directory, std::size_t stride) {
        std::vector<std::string> names;
        const std::string data = ZYR_REAL_DATA "/" + directory;
        if (std::filesystem::exists(data)) {
            for (const auto& entry : std::filesystem::directory_iterator(data)) {
                names.push_back(std::filesystem::absolute(entry.path()));
            }
        }
        std::ranges::sort(names);
        std::vector<std::string> chosen;
        for (std::size_t i = 0; i < names.size(); i += stride) {
            chosen.push_back(names[i]);
        }
        return chosen;
    }
};

#ifdef ZYR_SANITIZED
constexpr std::size_t stride = 6;
#else
constexpr std::size_t stride = 2;
#endif

} // namespace

TEST_F(MemoryReal, PlotsArePixelForPixelThoseOfTheWindow) {
    const std::vector<std::string> products = files_of("nids", stride);
    if (products.empty()) {
        GTEST_SKIP() << "no real files beside the tree";
    }
    // Views take turns. A file that is no product has no picture on either display.
    const char* const views[] = {
        " -cof auto -pp fitlab,site,dist=50:100",
        " -va storms,watch -pp fullab",
        " -pd lamb:30:-97:30:60,35,-90,41,31,.5,.5 -mf us,lalo:5",
        " -pd ll,35,-95,41,31,.5,.5 -pl value",
    };
    least_colors = 2; // there are products without any storm
    std::size_t turn = 0;
    for (const std::string& product : products) {
        const std::string args = product + views[turn++ % std::size(views)];
        if (run("--info " + product, "").code == 0) {
            draw_twins(args);
        }
    }
    for (const std::string& volume : files_of("level2", 3)) {
        draw_twins("-inp lev2z " + volume + views[turn++ % 2]);
    }
    for (const std::string& message : files_of("rcm", 1)) {
        const bool tulsa = message.find("TLX") != std::string::npos;
        draw_twins("-inp rcmsite " + message + " -va comp -id " + (tulsa ? "TLX" : "LSX"));
    }
    EXPECT_GE(plots, stride == 2 ? 60 : 20);
}
