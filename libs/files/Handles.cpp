#include "libs/files/Handles.h"

#include <mutex>
#include <new>
#include <unordered_map>
#include <utility>

namespace files::handles {

namespace {

using Table = std::unordered_map<HANDLE, std::shared_ptr<Image>>;

// Never destroyed: a thread may call while the process ends.
alignas(Table) unsigned char storage[sizeof(Table)];
std::mutex mutex;

Table &table() {
    static Table &made = *new (storage) Table;
    return made;
}

// Gives the memory back when the process ends or the library is unloaded. The handles themselves
// belong to the callers, who may have dropped them.
struct Emptier {
    ~Emptier() {
        Table images;
        const std::lock_guard<std::mutex> lock(mutex);
        images.swap(table());
    }
};
const Emptier emptier;

} // namespace

HANDLE give(std::shared_ptr<Image> image) {
    std::unique_ptr<void, void (*)(void *)> handle(::operator new(1), [](void *block) { ::operator delete(block); });
    const std::lock_guard<std::mutex> lock(mutex);
    // An image that is still there had a handle at this address that its owner dropped. It goes after
    // the lock does.
    table()[handle.get()].swap(image);
    return handle.release();
}

std::shared_ptr<Image> find(HANDLE handle) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto place = table().find(handle);
    return place == table().end() ? nullptr : place->second;
}

bool take(HANDLE handle) {
    std::shared_ptr<Image> image;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto place = table().find(handle);
        if (place == table().end())
            return false;
        image = std::move(place->second);
        table().erase(place);
    }
    ::operator delete(handle);
    return true;
}

} // namespace files::handles
