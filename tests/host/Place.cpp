#include "tests/host/Place.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <regex>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

const char *const maps[] = {"ZV32F403A_1024K.ZVmap", "ZV32F421_64K.ZVmap", "ZV32WB415_256K.ZVmap"};
const char *const inputs[] = {"Map", "image.bin", "image.hex", "image.s19", "kept.bin", "lot.zvtp"};
constexpr std::size_t imageSize = 4096; // four sectors of the chip
constexpr std::size_t watchedSize = 2 * imageSize;
constexpr Job lookUp = {"", End::chip, "-u --sec 0-7 --fn ./look.bin", 4, "", "look.bin", false, false};
constexpr Job fill = {"", End::chip, "-d --fn ./image.bin --v", 3, "", nullptr, false, false};

void put(const std::string &path, const std::string &content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::string randomBytes(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::string bytes;
    while (bytes.size() < count)
        bytes += static_cast<char>(random());
    return bytes;
}

// Sectors of which each begins otherwise, for the double.
std::string scriptOfSectors() {
    std::ostringstream script;
    for (int sector = 0; sector < 4; ++sector) {
        script << "ZVBL_UPLOAD at=" << std::hex << 0x08000000 + sector * 0x800 << " data=";
        for (int i = 0; i < 40; ++i)
            script << static_cast<char>('A' + sector) << i % 10;
        script << "\n";
    }
    return script.str();
}

std::string rootOfPlaces() {
    std::string root = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : fs::temp_directory_path().string();
    root += "/host-campaign-XXXXXX";
    if (mkdtemp(root.data()) == nullptr)
        throw std::runtime_error("no directory to work in");
    fs::permissions(root, fs::perms(0755)); // some runs are another user's
    return root;
}

} // namespace

std::string contentOf(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

Place::Place(End end) : m_end(end), m_root(rootOfPlaces()), m_directory(m_root + "/d") {
    fs::create_directory(m_directory);
    fs::permissions(m_directory, fs::perms(0777));
    putMaps();
    if (m_end == End::chip)
        newChip();
    else
        makeFiles();
}

Place::~Place() {
    m_chip.reset();
    fs::remove_all(m_root);
}

void Place::putMaps() {
    fs::create_directory(at("Map"));
    for (const char *map : maps)
        fs::copy_file(std::string(MAPS) + "/" + map, at("Map/") + map);
}

// What the double has in its sectors, in every format, as the console makes files of it.
void Place::makeFiles() {
    put(m_root + "/script", scriptOfSectors());
    for (const char *name : {"image.bin", "image.hex", "image.s19"}) {
        const std::string words = std::string("-u --sec 0-3 --fn ./") + name;
        run({"", End::paper, words.c_str(), 4, "", nullptr, false, false});
    }
    run({"", End::paper, "-usd --get --fn ./kept.bin", 7, "", nullptr, false, false});
    put(at("lot.zvtp"), std::string(80, '\0'));
}

void Place::newChip() {
    m_chip.reset();
    m_chip.emplace(m_root);
    m_cells = randomBytes(watchedSize, 0);
    put(at("image.bin"), m_cells);
    run(fill);
}

void Place::prepare(const Job &job) {
    for (const fs::directory_entry &entry : fs::directory_iterator(m_directory))
        if (std::find(std::begin(inputs), std::end(inputs), entry.path().filename()) == std::end(inputs))
            fs::remove_all(entry);
    if (job.replaces)
        put(at(job.output), "old");
    if (m_end == End::paper) {
        put(m_root + "/calls", "");
        fs::permissions(m_root + "/calls", fs::perms(0666)); // some runs are another user's
        return;
    }
    if (job.output == nullptr) {
        const std::string image = randomBytes(imageSize, ++m_round);
        put(at("image.bin"), image);
        m_cells.replace(0, imageSize, image);
    }
}

Command Place::command(const Job &job, const Case &harmed) const {
    Command command;
    command.directory = m_directory;
    const std::string port = m_end == End::chip ? m_root + "/port" : "ttyS0";
    command.words = {CONSOLE_PROGRAM, "-com", "--pn", port, "--to", "1"};
    std::istringstream words(job.words);
    command.words.insert(command.words.end(), std::istream_iterator<std::string>(words), {});
    command.environment = {"LC_ALL=C", "ASAN_OPTIONS=detect_leaks=0"};
    if (m_end == End::paper) {
        command.environment.push_back(std::string("LD_LIBRARY_PATH=") + DOUBLES);
        command.environment.push_back("ZVBL_DOUBLE_LOG=" + m_root + "/calls");
        command.environment.push_back("ZVBL_DOUBLE_SCRIPT=" + m_root + "/script");
        command.aside = {m_root + "/calls", m_root + "/script"};
    }
    command.limits = harmed.limits;
    command.user = harmed.user;
    command.closed = harmed.closed;
    return command;
}

Run Place::run(const Job &job, const Case &harmed) {
    Command harmedCommand = command(job, harmed);
    int ends[2] = {-1, -1};
    if (harmed.output == Output::full)
        harmedCommand.output = ends[1] = open("/dev/full", O_WRONLY | O_CLOEXEC);
    if (harmed.output == Output::gone && pipe2(ends, O_CLOEXEC) == 0) {
        close(ends[0]);
        harmedCommand.output = ends[1];
    }
    const Run run = watch(harmedCommand, harmed.fault);
    if (ends[1] >= 0)
        close(ends[1]);
    return run;
}

std::string Place::changes() {
    if (m_end == End::paper)
        return std::regex_replace(contentOf(m_root + "/calls"), std::regex("sleep .*\n"), "");
    run(lookUp);
    const std::string content = file(lookUp.output).value_or("");
    fs::remove(at(lookUp.output));
    return content;
}

std::vector<std::string> Place::litter(const Job &job) const {
    std::vector<std::string> names;
    for (const fs::directory_entry &entry : fs::directory_iterator(m_directory)) {
        const std::string name = entry.path().filename();
        const bool isOutput = job.output != nullptr && name == job.output;
        if (!isOutput && std::find(std::begin(inputs), std::end(inputs), name) == std::end(inputs))
            names.push_back(name);
    }
    return names;
}

std::optional<std::string> Place::file(const char *name) const {
    return fs::exists(at(name)) ? std::optional<std::string>(contentOf(at(name))) : std::nullopt;
}

} // namespace host
