#include "libs/zvbl/Registry.h"

#include <atomic>
#include <map>
#include <mutex>

namespace zvbl {
namespace {

struct Links {
    std::mutex mutex;
    std::map<HANDLE, std::shared_ptr<Session>> byHandle;
};

Links &links() {
    static Links all;
    return all;
}

std::atomic<std::uint8_t> g_linkType{linkUsart};

} // namespace

HANDLE addLink(std::shared_ptr<Session> link) {
    const HANDLE handle = link.get();
    Links &all = links();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.byHandle.emplace(handle, std::move(link));
    return handle;
}

std::shared_ptr<Session> findLink(HANDLE handle) {
    Links &all = links();
    const std::lock_guard<std::mutex> lock(all.mutex);
    const auto found = all.byHandle.find(handle);
    return found == all.byHandle.end() ? nullptr : found->second;
}

void setLinkType(std::uint8_t type) {
    g_linkType = type;
}

std::uint8_t linkType() {
    return g_linkType;
}

} // namespace zvbl
