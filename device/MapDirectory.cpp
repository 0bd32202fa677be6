#include "device/MapDirectory.h"

#include <cstdlib>
#include <filesystem>

#include <system_error>

namespace {

constexpr char besideUs[] = "./Map/";

std::string withSlash(const std::string &directory) {
    return directory.back() == '/' ? directory : directory + '/';
}

} // namespace

std::string mapDirectoryOr(const std::string &fallback) {
    const char *named = std::getenv("ZV32_MAP_DIR");
    if (named != nullptr && *named != '\0')
        return withSlash(named);
    std::error_code ignored;
    if (fallback.empty() || std::filesystem::exists("./Map", ignored))
        return besideUs;
    return withSlash(fallback);
}

std::string mapDirectory() {
    return mapDirectoryOr(ZV32_MAP_FALLBACK);
}
