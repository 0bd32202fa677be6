#include "Console.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

const Chip f403a = {"ZV32F403A", "0347700507", "70050347", "07", 1024, 2048};
const Chip f403_2 = {"ZV32F403_2", "0242", "0242", "02", 256, 2048};
const Chip f415 = {"ZV32F415", "0245700305", "70030245", "05", 256, 2048};
const Chip f425 = {"ZV32F425", "010F50090F", "5009010F", "0F", 64, 1024};
const Chip f457 = {"ZV32F457", "6350700117", "70016350", "17", 1024, 2048};
const Chip m412 = {"ZV32M412", "2259500419", "50042259", "19", 256, 2048};

namespace {

const std::string banner =
    std::string(60, '-') + "\nZelvor ISP Programmer V3.0.14\nSupport USART and DFU\n" + std::string(60, '-') + "\n\n";

std::string readFile(const std::string &path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

std::string replaceAll(std::string text, const std::string &from, const std::string &to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

bool startsWith(const std::string &text, const std::string &start) {
    return text.compare(0, start.size(), start) == 0;
}

void openAs(const std::string &path, int flags, int number) {
    const int opened = open(path.c_str(), flags, 0644);
    if (opened < 0 || dup2(opened, number) < 0)
        _exit(127);
    close(opened);
}

[[noreturn]] void becomeProgram(const std::string &directory, const std::vector<std::string> &words, int output,
                                const std::set<int> &closed) {
    openAs("/dev/null", O_RDONLY, 0);
    dup2(output, 1);
    openAs(directory + "/stderr", O_WRONLY | O_CREAT | O_TRUNC, 2);
    for (const int descriptor : closed)
        close(descriptor);
    setenv("LD_LIBRARY_PATH", DOUBLES, 1);
    setenv("ZVBL_DOUBLE_LOG", (directory + "/calls").c_str(), 1);
    setenv("ZVBL_DOUBLE_SCRIPT", (directory + "/script").c_str(), 1);
    setenv("FILES_DOUBLE_LOG", (directory + "/files").c_str(), 1);
    setenv("FILES_DOUBLE_SCRIPT", (directory + "/filesscript").c_str(), 1);
    std::vector<char *> argv{const_cast<char *>("ZV32_ISP_Console")};
    for (const std::string &word : words)
        argv.push_back(const_cast<char *>(word.c_str()));
    argv.push_back(nullptr);
    if (chdir(directory.c_str()) == 0) {
        alarm(60); // a wait that never ends is a failure, not a hang
        execv(CONSOLE_PROGRAM, argv.data());
    }
    _exit(127);
}

pid_t startProgram(const std::string &directory, const std::vector<std::string> &words, int output,
                   const std::set<int> &closed = {}) {
    const pid_t child = fork();
    if (child == 0)
        becomeProgram(directory, words, output, closed);
    return child;
}

int runProgram(const std::string &directory, const std::vector<std::string> &words, int output) {
    const pid_t child = startProgram(directory, words, output);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child)
        throw std::runtime_error("the program cannot be run");
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::vector<std::string> withoutHandles(const std::vector<std::string> &calls) {
    static const std::regex handle(" h=[0-9A-F]+");
    std::vector<std::string> shorter;
    for (const std::string &call : calls)
        shorter.push_back(std::regex_replace(call, handle, ""));
    return shorter;
}

} // namespace

std::vector<std::string> lines(const std::string &text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        result.push_back(line);
    return result;
}

std::string connectText(const std::string &link, const Chip &chip) {
    return link + " Connect......\nDevice:  " + chip.name + "    Flash:  " + std::to_string(chip.flashKb) +
           " KB\nPID:  " + chip.pid + "      BID:  1234    Version:  2.1\nDevice connected Successfully\n\n";
}

std::vector<std::string> Outcome::callsOf(const std::string &function) const {
    std::vector<std::string> found;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(found),
                 [&](const std::string &call) { return startsWith(call + " ", function + " "); });
    return found;
}

std::vector<std::string> Outcome::changes() const {
    static const std::vector<std::string> functions = {
        "ZVBL_GO ",         "ZVBL_ResetMCU",    "ZVBL_DNLOAD",      "ZVBL_ERASE",
        "ZVBL_BLOCK_ERASE", "ZVBL_SPIMREMAP",   "ZVBL_EnableBank3", "TARGET_SetUserSystemData",
        "ZVBL_ACCESS",      "ZVBL_ERASEPROGRAM"};
    std::vector<std::string> found;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(found), [](const std::string &call) {
        return std::any_of(functions.begin(), functions.end(),
                           [&](const std::string &function) { return startsWith(call, function); });
    });
    return found;
}

Console::Console() {
    char pattern[] = "/tmp/console-test-XXXXXX";
    if (mkdtemp(pattern) == nullptr)
        throw std::runtime_error("no directory for the test");
    directory = pattern;
    connectTo(f403a);
}

Console::~Console() {
    std::filesystem::remove_all(directory);
}

void Console::connectTo(const Chip &chip) {
    connected = chip;
    std::filesystem::remove_all(path("Map"));
    std::filesystem::create_directory(path("Map"));
    std::ostringstream map;
    map << "[Product]\nName=" << chip.name << "\nPID=" << chip.pid << "\nSerial=" << chip.series
        << "\nSectorsPerSector=2\n[Sector0]\nSize=" << std::hex << chip.sectorSize << std::dec
        << "\nCount=" << chip.flashKb * 1024 / chip.sectorSize << "\n";
    file("Map/" + chip.name + "_" + std::to_string(chip.flashKb) + "K.ZVmap", map.str());
    script("ZVBL_GET_ID id=" + chip.id);
    filesScript("map sectors=" + std::to_string(chip.flashKb * 1024 / chip.sectorSize) +
                " size=" + std::to_string(chip.sectorSize));
}

void Console::script(const std::string &text) {
    rules += text + "\n";
    file("script", rules);
}

void Console::filesScript(const std::string &text) {
    filesRules += text + "\n";
    file("filesscript", filesRules);
}

void Console::file(const std::string &name, const std::string &content) {
    std::ofstream(path(name), std::ios::binary) << content;
}

std::string Console::path(const std::string &name) const {
    return directory + "/" + name;
}

std::string Console::resolve(std::string text) const {
    return replaceAll(std::move(text), "@", directory);
}

std::string Console::abbreviate(std::string text) const {
    return replaceAll(std::move(text), directory, "@");
}

std::vector<std::string> Console::split(const std::string &line) const {
    std::istringstream stream(resolve(line));
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

int Console::statusOf(const std::string &line, int output) {
    return runProgram(directory, split(line), output);
}

std::vector<std::string> Console::descriptorsWithout(const std::set<int> &closed, const std::string &line) {
    const pid_t child = startProgram(directory, split(line), 1, closed);
    int status = 0;
    waitpid(child, &status, WUNTRACED);
    std::vector<std::string> descriptors;
    for (int number = 0; number <= 2; ++number) {
        std::error_code none;
        const std::string entry = "/proc/" + std::to_string(child) + "/fd/" + std::to_string(number);
        descriptors.push_back(std::filesystem::read_symlink(entry, none).string());
    }
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return descriptors;
}

Outcome Console::run(const std::string &line) {
    return runWords(split(line));
}

Outcome Console::runToAnUnexpectedEnd(const std::string &line) {
    return runAndListen(split(line));
}

Outcome Console::runWords(const std::vector<std::string> &words) {
    Outcome result = runAndListen(words);
    EXPECT_EQ(result.errors, "");
    return result;
}

Outcome Console::runAndListen(const std::vector<std::string> &words) {
    file("calls", "");
    file("files", "");
    Outcome result;
    const int sink = open(path("stdout").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    result.status = runProgram(directory, words, sink);
    close(sink);
    const std::string output = readFile(path("stdout"));
    EXPECT_TRUE(startsWith(output, banner)) << output;
    result.text = abbreviate(output.substr(std::min(banner.size(), output.size())));
    result.calls = withoutHandles(lines(readFile(path("calls"))));
    result.files = lines(abbreviate(readFile(path("files"))));
    result.errors = readFile(path("stderr"));
    return result;
}

Outcome ConnectedTest::connected(const std::string &line) {
    Outcome run = console.run("-com --pn ttyS0 " + line);
    const std::string start = connectText("USART", console.chip());
    EXPECT_TRUE(startsWith(run.text, start)) << run.text;
    run.text.erase(0, start.size());
    return run;
}
