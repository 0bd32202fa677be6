#include "Script.h"

#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <mutex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace zvbldouble {
namespace {

struct Rule {
    std::string function;
    std::map<std::string, std::string> keys;
};

struct State {
    std::mutex mutex;
    bool loaded = false;
    std::string scriptPath;
    std::vector<Rule> rules;
    std::map<std::string, unsigned long> calls;
    std::set<void *> open;
    uintptr_t lastLink = 0x1000;
};

// Never destroyed: a job's thread may call while the process ends.
State &state() {
    static State *one = new State;
    return *one;
}

// The keys that a function knows beside those of every function.
const std::map<std::string, std::set<std::string>> &functionKeys() {
    static const auto *table = new std::map<std::string, std::set<std::string>>{
        {"SetCOMSettings", {}},
        {"Interface_Open", {}},
        {"Interface_Close", {}},
        {"Interface_is_Open", {"open"}},
        {"SetTimeOut", {}},
        {"SetPaketSize", {}},
        {"ZVBL_SetDtr", {}},
        {"ZVBL_SetRts", {}},
        {"TARGET_SetComIntType", {}},
        {"ZVBL_GetZVDeviceList", {"count"}},
        {"ZVBL_Init_BL", {}},
        {"ZVBL_SetSpeed", {}},
        {"ZVBL_GET", {"caps"}},
        {"ZVBL_GET_VER_ROPS", {"version", "bid", "res"}},
        {"ZVBL_GET_ID", {"id"}},
        {"ZVBL_GO", {"at"}},
        {"ZVBL_ResetMCU", {}},
        {"ZVBL_UPLOAD", {"at", "data", "fill"}},
        {"ZVBL_DNLOAD", {"at"}},
        {"ZVBL_VERIFY", {"at"}},
        {"ZVBL_ERASE", {"at"}},
        {"ZVBL_BLOCK_ERASE", {"at"}},
        {"ZVBL_GetFirmwareCRC", {"at", "crc"}},
        {"ZVBL_SPIMREMAP", {}},
        {"ZVBL_EnableBank3", {}},
        {"TARGET_GetFlashSize", {"at", "kb"}},
        {"TARGET_GetUserSystemData", {"at", "data", "fill"}},
        {"TARGET_SetUserSystemData", {"at"}},
        {"ZVBL_ACCESS_PROTECT", {}},
        {"ZVBL_ACCESS_PROTECT_LEVEL", {}},
        {"ZVBL_ACCESS_PERM_UNPROTECT", {}},
        {"ZVBL_ERASEPROGRAM_PROTECT", {}},
        {"ZVBL_ERASEPROGRAM_PERM_UNPROTECT", {}},
        {"ZVBL_EnableSlib", {}},
        {"ZVBL_DisableSlib", {}},
        {"ZVBL_GetSlibStatus", {"enabled"}},
        {"ZVBL_GetSlibStatus_Ex", {"enabled", "start", "datastart", "end"}},
        {"ZVBL_ZV32ISP_TOOL", {}},
    };
    return *table;
}

[[noreturn]] void wrongScript(const std::string &path, const std::string &what) {
    std::fprintf(stderr, "zvbl double: %s: %s\n", path.c_str(), what.c_str());
    std::abort();
}

Rule parseRule(const std::string &path, const std::string &line) {
    static const std::set<std::string> common{"status", "delay", "signal", "throw", "nth", "from", "to"};
    std::istringstream words(line);
    Rule rule;
    words >> rule.function;
    const auto known = functionKeys().find(rule.function);
    if (known == functionKeys().end())
        wrongScript(path, "no such function: " + line);
    for (std::string word; words >> word;) {
        const size_t equals = word.find('=');
        const std::string key = word.substr(0, equals);
        if (equals == std::string::npos || (common.count(key) == 0 && known->second.count(key) == 0))
            wrongScript(path, "no such key '" + word + "': " + line);
        rule.keys[key] = word.substr(equals + 1);
    }
    return rule;
}

std::vector<Rule> readScript(const std::string &path) {
    std::vector<Rule> rules;
    if (path.empty())
        return rules;
    std::ifstream file(path);
    if (!file)
        wrongScript(path, "cannot be read");
    for (std::string line; std::getline(file, line);) {
        line.resize(std::min(line.find('#'), line.size()));
        if (line.find_first_not_of(" \t\r") != std::string::npos)
            rules.push_back(parseRule(path, line));
    }
    return rules;
}

void followScript(State &now) {
    const char *path = std::getenv("ZVBL_DOUBLE_SCRIPT");
    const std::string wanted = path == nullptr ? "" : path;
    if (now.loaded && wanted == now.scriptPath)
        return;
    now.rules = readScript(wanted);
    now.scriptPath = wanted;
    now.calls.clear();
    now.loaded = true;
}

bool fits(const Rule &rule, const char *function, unsigned long nth, uint32_t at) {
    if (rule.function != function)
        return false;
    Answer keys;
    keys.keys = rule.keys;
    if (keys.has("nth") && keys.number("nth", 0) != nth)
        return false;
    if (keys.has("from") && nth < keys.number("from", 0))
        return false;
    if (keys.has("to") && nth > keys.number("to", 0))
        return false;
    return !keys.has("at") || keys.hex("at", 0) == at;
}

// The library's own waiting is real time, while nanosleep itself is played by this library.
void spend(unsigned long milliseconds) {
    timespec time{time_t(milliseconds / 1000), long(milliseconds % 1000) * 1000000};
    syscall(SYS_nanosleep, &time, nullptr);
}

uint32_t crc32(const unsigned char *data, unsigned int length) {
    uint32_t crc = 0xFFFFFFFF;
    for (unsigned int i = 0; i < length; ++i) {
        crc ^= data[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320U : 0U);
    }
    return ~crc;
}

} // namespace

std::string Answer::text(const char *key, const char *otherwise) const {
    const auto found = keys.find(key);
    return found == keys.end() ? otherwise : found->second;
}

unsigned long Answer::number(const char *key, unsigned long otherwise) const {
    return has(key) ? std::strtoul(keys.at(key).c_str(), nullptr, 0) : otherwise;
}

unsigned long Answer::hex(const char *key, unsigned long otherwise) const {
    return has(key) ? std::strtoul(keys.at(key).c_str(), nullptr, 16) : otherwise;
}

void Answer::fillBuffer(unsigned char *buffer, unsigned int length, const char *data) const {
    const std::string bytes = bytesOf(text("data", data));
    const auto rest = static_cast<unsigned char>(hex("fill", 0xFF));
    for (unsigned int i = 0; i < length; ++i)
        buffer[i] = i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : rest;
}

Answer called(const char *function, const std::string &arguments, uint32_t at) {
    Answer answer;
    {
        State &now = state();
        const std::lock_guard<std::mutex> lock(now.mutex);
        followScript(now);
        const unsigned long nth = ++now.calls[function];
        for (const Rule &rule : now.rules)
            if (fits(rule, function, nth, at))
                for (const auto &key : rule.keys)
                    answer.keys[key.first] = key.second;
    }
    answer.status = static_cast<unsigned char>(answer.number("status", 0));
    logLine(arguments.empty() ? function : std::string(function) + " " + arguments);
    if (answer.has("delay"))
        spend(answer.number("delay", 0));
    if (answer.has("signal"))
        std::raise(int(answer.number("signal", 0)));
    if (answer.has("throw"))
        throw std::runtime_error(answer.text("throw", ""));
    return answer;
}

void logLine(const std::string &line) {
    const char *path = std::getenv("ZVBL_DOUBLE_LOG");
    if (path == nullptr || *path == '\0')
        return;
    const int file = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    const std::string text = line + "\n";
    // One write per line, so that lines of two threads never mix and a killed process loses none.
    if (file < 0 || ::write(file, text.data(), text.size()) != ssize_t(text.size()))
        wrongScript(path, "the log cannot be written");
    ::close(file);
}

std::string format(const char *pattern, ...) {
    char text[600];
    va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(text, sizeof text, pattern, arguments);
    va_end(arguments);
    return text;
}

std::string bytesText(const unsigned char *data, unsigned int length) {
    std::string text = format("len=%u data=", length);
    if (data == nullptr)
        return text + "null";
    for (unsigned int i = 0; i < length && i < 16; ++i)
        text += format("%02X", data[i]);
    if (length > 16)
        text += format(".. crc=%08X", crc32(data, length));
    return text;
}

std::string bytesOf(const std::string &hexDigits) {
    std::string bytes;
    for (size_t i = 0; i + 1 < hexDigits.size(); i += 2)
        bytes += static_cast<char>(std::stoi(hexDigits.substr(i, 2), nullptr, 16));
    return bytes;
}

void *makeLink() {
    const std::lock_guard<std::mutex> lock(state().mutex);
    return reinterpret_cast<void *>(++state().lastLink);
}

void setOpen(void *link, bool open) {
    const std::lock_guard<std::mutex> lock(state().mutex);
    if (open)
        state().open.insert(link);
    else
        state().open.erase(link);
}

bool isOpen(void *link) {
    const std::lock_guard<std::mutex> lock(state().mutex);
    return state().open.count(link) != 0;
}

void reset() {
    const std::lock_guard<std::mutex> lock(state().mutex);
    state().calls.clear();
    state().open.clear();
    state().lastLink = 0x1000;
    state().loaded = false;
}

} // namespace zvbldouble
