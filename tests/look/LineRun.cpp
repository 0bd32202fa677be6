#include "LineRun.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "look/LineVerb.h"

namespace {

std::string hexText(unsigned long value) {
    char text[17];
    std::snprintf(text, sizeof text, "%08lX", value);
    return text;
}

// Adds what was done, and makes one of neighbours.
class Done {
public:
    void add(const std::string &what) {
        flush();
        if (what.compare(0, 5, "spim ") != 0 || what != m_spim)
            m_list.push_back(what);
        if (what.compare(0, 5, "spim ") == 0)
            m_spim = what; // each download enables it again
    }
    void addPiece(const std::string &kind, unsigned long first, unsigned long length) {
        if (kind != m_kind || m_first + m_length != first) {
            flush();
            m_kind = kind;
            m_first = first;
            m_length = 0;
        }
        m_length += length;
    }
    std::vector<std::string> list() {
        flush();
        return m_list;
    }

private:
    void flush() {
        if (!m_kind.empty())
            m_list.push_back(m_kind + " " + hexText(m_first) + " " + std::to_string(m_length));
        m_kind.clear();
    }

    std::vector<std::string> m_list;
    std::string m_spim;
    std::string m_kind;
    unsigned long m_first = 0;
    unsigned long m_length = 0;
};

std::string value(const std::string &call, const std::string &key) {
    std::smatch found;
    return std::regex_search(call, found, std::regex("\\b" + key + "=\"?([^\" ]*)")) ? found[1].str() : "";
}

unsigned long hexOf(const std::string &digits) {
    return std::strtoul(digits.c_str(), nullptr, 16);
}

// Functions whose calls change the chip, and what they are called here.
const std::map<std::string, std::string> named = {
    {"ZVBL_ACCESS_PERM_UNPROTECT", "remove access protection"},
    {"ZVBL_ERASEPROGRAM_PERM_UNPROTECT", "remove sector protection"},
    {"ZVBL_ERASEPROGRAM_PROTECT", "protect sectors"},
    {"TARGET_SetUserSystemData", "set option bytes"},
    {"ZVBL_ACCESS_PROTECT", "protect access 1"},
};

void addCall(const std::string &call, Done &done) {
    const std::string function = call.substr(0, call.find(' '));
    static const std::map<std::string, std::string> pieces = {
        {"ZVBL_DNLOAD", "write"}, {"ZVBL_VERIFY", "verify"}, {"ZVBL_UPLOAD", "read"}};
    if (pieces.count(function) != 0)
        done.addPiece(pieces.at(function), hexOf(value(call, "addr")),
                      std::strtoul(value(call, "len").c_str(), nullptr, 10));
    else if (function == "ZVBL_ERASE")
        done.add("erase " + (value(call, "selector") == "1" ? value(call, "sector") : value(call, "selector")));
    else if (function == "SetCOMSettings" && value(call, "h") != "0")
        done.add("connect " + value(call, "name") + " " + value(call, "baud") + " " + value(call, "bits") + " " +
                 value(call, "parity"));
    else if (function == "ZVBL_ACCESS_PROTECT_LEVEL")
        done.add("protect access " + value(call, "level"));
    else if (function == "ZVBL_GO")
        done.add("go " + value(call, "addr"));
    else if (function == "ZVBL_EnableBank3")
        done.add("spim " + value(call, "type") + " " + value(call, "size") + " " + value(call, "addr"));
    else if (named.count(function) != 0)
        done.add(named.at(function));
}

[[noreturn]] void becomeConsole(const std::vector<std::string> &words) {
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, 0);
    dup2(nowhere, 1);
    dup2(nowhere, 2);
    setenv("LD_LIBRARY_PATH", ZVBL_DOUBLE_DIR, 1);
    setenv("ZVBL_DOUBLE_LOG", "calls.log", 1);
    setenv("ZVBL_DOUBLE_SCRIPT", "double.script", 1);
    std::vector<char *> argv = {const_cast<char *>("ZV32_ISP_Console")};
    for (const std::string &word : words)
        argv.push_back(const_cast<char *>(word.c_str()));
    argv.push_back(nullptr);
    execv(CONSOLE_PROGRAM, argv.data());
    _exit(127);
}

std::vector<Json> listOf(const Json &object, const char *name) {
    return object.contains(name) ? object[name].get<std::vector<Json>>() : std::vector<Json>();
}

void addPieces(const Json &action, const char *table, const char *kind, Done &done) {
    for (const Json &row : listOf(action, table))
        done.addPiece(kind, row["first"], row["bytes"]);
}

void addErased(const Json &ranges, Done &done) {
    for (const Json &range : ranges)
        for (int sector = range[0]; sector <= range[1].get<int>(); ++sector)
            done.add("erase " + std::to_string(sector));
}

void addConnect(const Json &action, Done &done) {
    static const std::map<std::string, std::string> parities = {{"no", "0"}, {"odd", "1"}, {"even", "2"}};
    if (action.contains("rate"))
        done.add("connect " + action["port"].get<std::string>() + " " + action["rate"].dump() + " " +
                 action["dataBits"].dump() + " " + parities.at(action["parity"]));
    else if (action.contains("port"))
        done.add("connect " + action["port"].get<std::string>() + " 115200 8 2");
}

void addEraseAll(const Json &action, Done &done) {
    done.add("erase FFFE");
    if (action["bytes"].get<int>() > 512 * 1024)
        done.add("erase FFFD");
    if (action.contains("spim"))
        done.add("erase FFFC");
}

void addDownload(const Json &action, Done &done) {
    if (action.contains("erases"))
        addErased(action["erases"], done);
    addPieces(action, "writes", "write", done);
    if (action["verify"].get<bool>())
        addPieces(action, "writes", "verify", done);
}

void addOtp(const Json &action, Done &done) {
    for (const Json &row : listOf(action, "writes"))
        done.addPiece("write", row["address"], row["bytes"]);
}

void addSpim(const Json &action, Done &done) {
    done.add("spim " + std::string(action["type"] == 1 ? "145 " : "144 ") +
             std::to_string(action["size"].get<unsigned int>() * 1024U) + " " +
             hexText(action["encryptedFrom"].get<unsigned long>()));
}

void addAction(const Json &action, Done &done) {
    static const std::map<std::string, void (*)(const Json &, Done &)> rows = {
        {"connect", addConnect},
        {"erase everything", addEraseAll},
        {"erase sectors", [](const Json &one, Done &to) { addErased(one["sectors"], to); }},
        {"download", addDownload},
        {"upload", [](const Json &one, Done &to) { addPieces(one, "reads", "read", to); }},
        {"write otp", addOtp},
        {"enable spim", addSpim},
        {"protect access", [](const Json &one, Done &to) { to.add("protect access " + one["level"].dump()); }},
        {"run", [](const Json &one, Done &to) { to.add("go " + hexText(one["address"].get<unsigned long>())); }},
    };
    const std::string title = action["title"];
    const auto found = rows.find(title);
    if (found != rows.end())
        found->second(action, done);
    else if (title != "get option bytes")
        done.add(title);
}

} // namespace

LineOutcome runConsole(const LineChip &chip, const std::vector<std::string> &words) {
    std::filesystem::remove("calls.log");
    std::ofstream("double.script") << chip.script;
    const pid_t child = fork();
    if (child == 0)
        becomeConsole(words);
    int ended = 0;
    waitpid(child, &ended, 0);
    LineOutcome outcome;
    outcome.status = WIFEXITED(ended) ? WEXITSTATUS(ended) : 128 + WTERMSIG(ended);
    std::ifstream log("calls.log");
    Done done;
    for (std::string call; std::getline(log, call);)
        addCall(call, done);
    outcome.done = done.list();
    return outcome;
}

Json lookAtLine(const std::string &chip, const std::vector<std::string> &words) {
    CLI::App parser;
    const Look look = declareLine(parser);
    std::vector<std::string> own;
    if (!chip.empty())
        own = {chip, "--chip"}; // the last one first
    parser.parse(own);
    Section report;
    Call call{report, words};
    look(call);
    return report.json();
}

LineOutcome lookAtConsoleLine(const LineChip &chip, const std::vector<std::string> &words) {
    const Json json = lookAtLine(chip.name, words);
    LineOutcome outcome;
    outcome.status = json["consoleStatus"];
    Done done;
    for (const Json &step : listOf(json, "steps"))
        for (const Json &action : listOf(step, "actions"))
            addAction(action, done);
    outcome.done = done.list();
    return outcome;
}
