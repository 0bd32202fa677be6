#include "tests/zvbl/FakeNode.h"

#include <cerrno>
#include <cstdlib>
#include <map>
#include <stdexcept>

#include <fcntl.h>
#include <unistd.h>

FakeNode::FakeNode(const std::string &subsystem, const std::string &name)
    : m_name(name), m_testbed(umockdev_testbed_new()), m_handler(umockdev_ioctl_base_new()) {
    if (!umockdev_in_mock_environment())
        throw std::runtime_error("LD_PRELOAD=libumockdev-preload.so.0 is missing");
    // A node with contents is a file; without any it would be a pseudo terminal.
    const std::string device = "P: /devices/" + subsystem + "/" + name + "\nN: " + name + "=00\nE: DEVNAME=/dev/" +
                               name + "\nE: SUBSYSTEM=" + subsystem + "\n";
    if (!umockdev_testbed_add_from_string(m_testbed, device.c_str(), nullptr))
        throw std::runtime_error("no testbed device");
    g_signal_connect(m_handler, "handle-ioctl", G_CALLBACK(handle), this);
    if (!umockdev_testbed_attach_ioctl(m_testbed, ("/dev/" + name).c_str(), m_handler, nullptr))
        throw std::runtime_error("no ioctl handler");
}

FakeNode::~FakeNode() {
    umockdev_testbed_detach_ioctl(m_testbed, ("/dev/" + m_name).c_str(), nullptr);
    g_object_unref(m_handler);
    g_object_unref(m_testbed);
}

std::string FakeNode::file() const {
    char *root = umockdev_testbed_get_root_dir(m_testbed);
    const std::string path = std::string(root) + "/dev/" + m_name;
    g_free(root);
    return path;
}

void FakeNode::unplug() {
    ::unlink(file().c_str());
}

gboolean FakeNode::handle(UMockdevIoctlBase *, UMockdevIoctlClient *client, gpointer self) {
    auto *node = static_cast<FakeNode *>(self);
    const std::lock_guard<std::mutex> lock(node->m_mutex);
    int error = 0;
    UMockdevIoctlData *argument = umockdev_ioctl_client_get_arg(client);
    const long result = node->answer(umockdev_ioctl_client_get_request(client), argument, error);
    umockdev_ioctl_client_complete(client, result, error);
    return TRUE;
}

Pointed::Pointed(UMockdevIoctlData *from, std::size_t offset, std::size_t length)
    : m_data(umockdev_ioctl_data_resolve(from, offset, length, nullptr)) {
    if (!m_data)
        std::abort(); // the caller's memory can't be read: nothing to go on with
}

void Pointed::set(const void *bytes, std::size_t count) {
    auto *copy = static_cast<guint8 *>(const_cast<void *>(bytes)); // it is only read
    umockdev_ioctl_data_update(m_data, 0, copy, static_cast<gint>(count));
}

int errorNamed(const std::string &name) {
    static const std::map<std::string, int> errors = {
        {"EAGAIN", EAGAIN},         {"EBUSY", EBUSY},         {"EINVAL", EINVAL},       {"EIO", EIO},
        {"EMSGSIZE", EMSGSIZE},     {"ENODEV", ENODEV},       {"ENOTTY", ENOTTY},       {"ENXIO", ENXIO},
        {"EOPNOTSUPP", EOPNOTSUPP}, {"EREMOTEIO", EREMOTEIO}, {"ESHUTDOWN", ESHUTDOWN}, {"ETIMEDOUT", ETIMEDOUT}};
    return errors.at(name);
}
