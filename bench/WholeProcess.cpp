#include "bench/WholeProcess.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <limits>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <stdlib.h>
#include <thread>
#include <vector>

#include "bench/Ceiling.h"
#include "bench/Chip.h"
#include "bench/Noise.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t imageSize = 64 * 1024;

// The image, and what the console looks for where it is started.
class WorkingDirectory {
public:
    WorkingDirectory() : m_before(fs::current_path()) {
        std::string name = (fs::temp_directory_path() / "links_bench.XXXXXX").string();
        if (!::mkdtemp(name.data()))
            throw std::runtime_error("no directory for the console");
        m_dir = name;
        fs::create_directory_symlink(ZV32_MAPS, m_dir / "Map");
        fs::current_path(m_dir);
    }
    ~WorkingDirectory() {
        std::error_code ignored;
        fs::current_path(m_before, ignored);
        fs::remove_all(m_dir, ignored);
    }
    WorkingDirectory(const WorkingDirectory &) = delete;
    WorkingDirectory &operator=(const WorkingDirectory &) = delete;

    const std::string &image() const { return m_image.path(); }

private:
    const Noise m_image{imageSize};
    fs::path m_before;
    fs::path m_dir;
};

std::vector<std::string> consoleCommand(const std::string &programs, const Chip &chip, int baud,
                                        const std::string &image) {
    return {programs + "/bin/ZV32_ISP_Console",
            "-com",
            "--pn",
            chip.port(),
            "--br",
            std::to_string(baud),
            "-d",
            "--a",
            "08000000",
            "--fn",
            image,
            "--v"};
}

} // namespace

WholeProcess measureWholeProcess(int baud, int rounds, const std::string &programs, const std::string &against) {
    ::setenv("ZVBL_VERIFY_BY", "read", 1);
    const WorkingDirectory here;
    const Chip chip(Place::usart, programs);
    const Ceiling ceiling = usartCeiling(baud);
    constexpr double most = std::numeric_limits<double>::max();
    WholeProcess best{imageSize / ceiling.download + imageSize / ceiling.upload, most, against.empty() ? 0 : most,
                      most};
    const std::vector<std::string> console = consoleCommand(programs, chip, baud, here.image());
    const std::vector<std::string> bare{programs + "/bench/bare-client", "usart", chip.port(), std::to_string(baud),
                                        here.image()};
    for (int round = 0; round < rounds; ++round) {
        best.console = std::min(best.console, chip.secondsOf(console));
        best.bare = std::min(best.bare, chip.secondsOf(bare));
        if (!against.empty())
            best.against = std::min(best.against, chip.secondsOf(console, against));
    }
    ::unsetenv("ZVBL_VERIFY_BY");
    return best;
}

Gang measureGang(int pairs, int baud, const std::string &programs) {
    ::setenv("ZVBL_VERIFY_BY", "read", 1);
    const WorkingDirectory here;
    std::vector<std::unique_ptr<Chip>> chips;
    for (int i = 0; i < pairs; ++i)
        chips.push_back(std::make_unique<Chip>(Place::usart, programs, i));
    std::vector<double> seconds(chips.size());
    const auto run = [&](std::size_t i) {
        try {
            seconds[i] = chips[i]->secondsOf(consoleCommand(programs, *chips[i], baud, here.image()));
        } catch (const std::exception &) {
            seconds[i] = 0;
        }
    };
    run(0);
    double alone = seconds[0];
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < chips.size(); ++i)
        threads.emplace_back(run, i);
    for (std::thread &thread : threads)
        thread.join();
    const std::vector<double> together = seconds;
    run(0);
    alone = std::min(alone, seconds[0]);
    ::unsetenv("ZVBL_VERIFY_BY");
    if (alone == 0 || *std::min_element(together.begin(), together.end()) == 0)
        throw std::runtime_error("a console failed");
    return {alone, std::accumulate(together.begin(), together.end(), 0.0) / pairs,
            *std::max_element(together.begin(), together.end())};
}

} // namespace bench
