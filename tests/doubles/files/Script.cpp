#include "Script.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace filesdouble {
namespace {

struct Rule {
    std::string function;
    unsigned int status;
    unsigned long nth; // 0: every call
};

struct Script {
    std::string path;
    std::vector<Rule> rules;
    std::vector<Element> elements;
    bool ownElements = false;
    MapAnswer map;
    std::map<std::string, unsigned long> calls;
    unsigned long images = 0;
};

constexpr const char *functions[] = {
    "FILES_CreateImage",       "FILES_CreateImageFromMapping",
    "FILES_DestroyImage",      "FILES_ImageFromFile",
    "FILES_ImageToFile",       "FILES_SetImageName",
    "FILES_GetImageElement",   "FILES_FilterImageForOperation",
    "FILES_GetImageNbElement", "FILES_SetImageElement",
    "FILES_GetMemoryMapping",
};

bool isFunction(const std::string &name) {
    return std::find(std::begin(functions), std::end(functions), name) != std::end(functions);
}

[[noreturn]] void refuse(const std::string &what) {
    std::fprintf(stderr, "files double: cannot use \"%s\"\n", what.c_str());
    std::_Exit(99);
}

using Keys = std::map<std::string, std::string>;

Keys keysOf(std::istringstream &words) {
    Keys keys;
    for (std::string word; words >> word;) {
        const auto equals = word.find('=');
        if (equals != std::string::npos)
            keys[word.substr(0, equals)] = word.substr(equals + 1);
    }
    return keys;
}

unsigned long number(const Keys &keys, const char *key, int base, unsigned long missing) {
    const auto found = keys.find(key);
    return found == keys.end() ? missing : std::strtoul(found->second.c_str(), nullptr, base);
}

void readMap(const Keys &keys, MapAnswer &map) {
    map.sectors = static_cast<short>(number(keys, "sectors", 10, 4));
    map.size = number(keys, "size", 10, 2048);
    map.start = number(keys, "start", 16, 0x08000000);
    map.packet = static_cast<short>(number(keys, "packet", 10, 0));
    map.sectorsPerSector = static_cast<BYTE>(number(keys, "spb", 10, 2));
    map.name = keys.count("name") != 0 ? keys.at("name") : "double";
}

void readLine(const std::string &line, Script &script) {
    std::istringstream words(line);
    std::string first;
    if (!(words >> first) || first[0] == '#')
        return;
    const Keys keys = keysOf(words);
    if (first == "element") {
        const BYTE fill = static_cast<BYTE>(number(keys, "fill", 16, 0xA5));
        script.elements.push_back(
            {number(keys, "address", 16, 0x08000000), std::vector<BYTE>(number(keys, "length", 10, 2048), fill)});
        script.ownElements = true;
    } else if (first == "no-elements") {
        script.ownElements = true;
    } else if (first == "map") {
        readMap(keys, script.map);
    } else if (isFunction(first) && keys.count("status") != 0) {
        script.rules.push_back(
            {first, static_cast<unsigned int>(number(keys, "status", 0, 0)), number(keys, "nth", 10, 0)});
    } else {
        refuse(line);
    }
}

Script load(const std::string &path) {
    Script script;
    script.path = path;
    std::ifstream file(path);
    if (!path.empty() && !file)
        refuse(path);
    for (std::string line; std::getline(file, line);)
        readLine(line, script);
    if (!script.ownElements)
        script.elements.push_back({0x08000000, std::vector<BYTE>(2048, 0xA5)});
    return script;
}

std::string environment(const char *name) {
    const char *value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

Script &script() {
    // Never destroyed: a job's thread may call while the process ends.
    static Script &current = *new Script(load(environment("FILES_DOUBLE_SCRIPT")));
    const std::string path = environment("FILES_DOUBLE_SCRIPT");
    if (path != current.path)
        current = load(path);
    return current;
}

} // namespace

const std::vector<Element> &fileElements() {
    return script().elements;
}

const MapAnswer &mapAnswer() {
    return script().map;
}

unsigned int answer(const std::string &function, unsigned int success) {
    const unsigned long call = ++script().calls[function];
    for (const Rule &rule : script().rules)
        if (rule.function == function && (rule.nth == 0 || rule.nth == call))
            return rule.status;
    return success;
}

unsigned long nextImage() {
    return ++script().images;
}

void log(const std::string &line) {
    const std::string path = environment("FILES_DOUBLE_LOG");
    if (!path.empty())
        std::ofstream(path, std::ios::app) << line + "\n";
}

std::string hex(unsigned long value, int digits) {
    char text[24];
    std::snprintf(text, sizeof text, "%0*lX", digits, value);
    return text;
}

} // namespace filesdouble
