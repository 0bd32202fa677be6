#include "look/Chip.h"

#include <cstdlib>

#include <QFile>
#include <QStringList>

#include "device/MapDirectory.h"
#include "device/MapText.h"
#include "look/Status.h"

namespace {

[[noreturn]] void refuse(const std::string &name) {
    throw Refusal(notAcceptable, name + ": no map file " + mapDirectory() + name + ".ZVmap that describes a chip");
}

// The number in front of the "K" at the end of the name.
int kilobytesOf(const std::string &name) {
    const std::size_t dash = name.rfind('_');
    return dash == std::string::npos ? 0 : std::atoi(name.c_str() + dash + 1);
}

} // namespace

CDevice &chipNamed(const std::string &name) {
    static CDeviceManager &manager = *new CDeviceManager;
    const std::string path = mapDirectory() + name + ".ZVmap";
    if (name.find('/') != std::string::npos || !IsHarmlessMap(path))
        refuse(name);
    CZV32F4Device reader;
    const QString file = QFile::decodeName(path.c_str());
    const QStringList pids = reader.ZVmapReadValue("Product", "PID", file).split(' ', Qt::SkipEmptyParts);
    const std::string serial = reader.ZVmapReadValue("Product", "Serial", file).toStdString();
    delete reader.m_CMapping;
    CDevice *device =
        pids.isEmpty() ? nullptr : manager.GetDevice(pids.first().toStdString(), serial, kilobytesOf(name));
    if (device == nullptr || device->m_StrTarget != name)
        refuse(name);
    return *device;
}
