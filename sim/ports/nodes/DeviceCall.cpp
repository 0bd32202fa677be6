#include "sim/ports/nodes/DeviceCall.h"

#include <cerrno>
#include <utility>

#include <umockdev.h>

namespace sim {

bool told(GError *problem, std::string &error) {
    if (problem == nullptr)
        return true;
    error = problem->message;
    g_error_free(problem);
    return false;
}

// ---- a client's memory

ClientMemory::ClientMemory(const ClientMemory &other) : m_data(other.m_data) {
    if (m_data != nullptr)
        g_object_ref(m_data);
}

ClientMemory &ClientMemory::operator=(ClientMemory other) {
    std::swap(m_data, other.m_data);
    return *this;
}

ClientMemory::~ClientMemory() {
    if (m_data != nullptr)
        g_object_unref(m_data);
}

std::size_t ClientMemory::size() const {
    return m_data == nullptr ? 0 : static_cast<std::size_t>(m_data->data_len);
}

std::uint8_t *ClientMemory::bytes() const {
    return m_data == nullptr ? nullptr : m_data->data;
}

ClientMemory ClientMemory::behind(std::size_t offset, std::size_t length) const {
    if (m_data == nullptr || length == 0 || get<void *>(offset) == nullptr)
        return ClientMemory();
    GError *problem = nullptr;
    _UMockdevIoctlData *found = umockdev_ioctl_data_resolve(m_data, offset, length, &problem);
    std::string error;
    return told(problem, error) ? ClientMemory(found) : ClientMemory();
}

void ClientMemory::point(std::size_t offset, const ClientMemory &target) const {
    umockdev_ioctl_data_set_ptr(m_data, offset, target.m_data);
}

// ---- a call

unsigned long DeviceCall::request() const {
    return umockdev_ioctl_client_get_request(m_client);
}

ClientMemory DeviceCall::buffer() const {
    _UMockdevIoctlData *argument = umockdev_ioctl_client_get_arg(m_client);
    return ClientMemory(static_cast<_UMockdevIoctlData *>(g_object_ref(argument)));
}

unsigned long DeviceCall::number() const {
    return buffer().get<unsigned long>();
}

ClientMemory DeviceCall::memory(std::size_t length) const {
    return buffer().behind(0, length);
}

DeviceAnswer DeviceCall::execute() const {
    int number = 0;
    GError *problem = nullptr;
    const int result = umockdev_ioctl_client_execute(m_client, &number, &problem);
    std::string error;
    return told(problem, error) ? DeviceAnswer{result, number} : DeviceAnswer::fail(EIO);
}

} // namespace sim
