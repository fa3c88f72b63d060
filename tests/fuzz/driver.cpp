// Replays the seeds of a fuzz target and, for each, a fixed number of
// mutations from a fixed random sequence, so that a plain build exercises the
// target in a few seconds. At the end the state of the program is put back, whatever
// the inputs left of it. Arguments: seed files or directories of them; -runs=0 leaves
// the mutations out.
#include "rad_state.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes read_file(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// One to four edits: a byte changed, a piece cut out, the end cut off, or a
// piece written twice.
Bytes mutate(Bytes bytes, std::mt19937& random) {
    const auto below = [&](std::size_t n) { return n == 0 ? 0 : random() % n; };
    for (std::size_t edits = 1 + below(4); edits > 0 && !bytes.empty(); --edits) {
        const std::size_t at = below(bytes.size());
        const std::size_t length = below(bytes.size() - at) % 64 + 1;
        const auto from = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        switch (below(5)) {
        case 0:
            bytes[at] = static_cast<std::uint8_t>(random());
            break;
        case 1:
            bytes[at] ^= static_cast<std::uint8_t>(1U << below(8));
            break;
        case 2:
            bytes.resize(at);
            break;
        case 3:
            bytes.erase(from,
                        from + static_cast<std::ptrdiff_t>(std::min(length, bytes.size() - at)));
            break;
        default: {
            const Bytes piece(
                from, from + static_cast<std::ptrdiff_t>(std::min(length, bytes.size() - at)));
            bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(below(bytes.size())),
                         piece.begin(), piece.end());
        }
        }
    }
    return bytes;
}

} // namespace

int main(int argc, char** argv) {
    int mutations = 300;
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        if (std::string(argv[i]) == "-runs=0") {
            mutations = 0;
            continue;
        }
        if (!std::filesystem::is_directory(argv[i])) {
            files.emplace_back(argv[i]);
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            files.push_back(entry.path());
        }
    }
    const StateKeeper& keeper = RAD_take_state();
    std::size_t runs = 0;
    for (const auto& file : files) {
        const Bytes seed = read_file(file);
        std::mt19937 random(12345);
        LLVMFuzzerTestOneInput(seed.data(), seed.size());
        for (int i = 0; i < mutations; ++i, ++runs) {
            const Bytes bytes = mutate(seed, random);
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
        }
    }
    keeper.restore();
    std::printf("%zu seeds, %zu mutations\n", files.size(), runs);
    return files.empty() ? 1 : 0;
}
