// TARGET PATH...
//
// Runs a target once over each file of the paths, and over no input at all. Stands in the place of libFuzzer where the
// compiler has none.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/fuzz/Target.h"

namespace {

namespace fs = std::filesystem;

void replay(const fs::path &path) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<char> content{std::istreambuf_iterator<char>(in), {}};
    std::fprintf(stderr, "%s\n", path.c_str()); // the last one is the one that ended it
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(content.data()), content.size());
}

std::vector<fs::path> filesOf(const fs::path &path) {
    std::vector<fs::path> files;
    if (!fs::is_directory(path))
        return {path};
    for (const fs::directory_entry &entry : fs::directory_iterator(path))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

int main(int argc, char **argv) {
    LLVMFuzzerTestOneInput(nullptr, 0);
    int count = 0;
    for (int i = 1; i < argc; ++i)
        for (const fs::path &file : filesOf(argv[i])) {
            replay(file);
            ++count;
        }
    std::printf("%d inputs\n", count);
    return count > 0 ? 0 : 2; // a corpus that is not there proves nothing
}
