#include "libs/zvbl/Registry.h"

#include <array>
#include <atomic>
#include <map>
#include <mutex>

#include "libs/zvbl/transport/UsbDevices.h"

namespace zvbl {
namespace {

struct Links {
    std::mutex mutex;
    std::map<HANDLE, std::shared_ptr<Session>> byHandle;
    std::array<std::shared_ptr<Session>, mostUsbDevices> byDevice;
};

Links &links() {
    static Links all;
    return all;
}

std::atomic<std::uint8_t> g_linkType{linkUsart};

std::uintptr_t numberOf(HANDLE handle) {
    return reinterpret_cast<std::uintptr_t>(handle);
}

std::shared_ptr<Session> makeDeviceLink(std::size_t number) {
    LinkSettings settings;
    settings.portNumber = static_cast<int>(number);
    settings.portName = "dfu" + std::to_string(number);
    auto link = std::make_shared<Session>();
    // It is the open that tells of a library without this kind of link.
    static_cast<void>(link->configure(linkUsbDfu, settings));
    return link;
}

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
    if (found != all.byHandle.end())
        return found->second;
    return isDeviceNumber(handle) ? all.byDevice[numberOf(handle)] : nullptr;
}

void addDeviceLinks(std::size_t count) {
    Links &all = links();
    const std::lock_guard<std::mutex> lock(all.mutex);
    for (std::size_t i = 0; i < count && i < mostUsbDevices; ++i)
        if (!all.byDevice[i])
            all.byDevice[i] = makeDeviceLink(i);
}

bool isDeviceNumber(HANDLE handle) {
    return linkType() == linkUsbDfu && numberOf(handle) < mostUsbDevices;
}

void setLinkType(std::uint8_t type) {
    g_linkType = type;
}

std::uint8_t linkType() {
    return g_linkType;
}

} // namespace zvbl
