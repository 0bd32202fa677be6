#include "device/Device.h"

#include <cstdlib>
#include <optional>
#include <vector>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QVariant>

#include "device/Families.h"
#include "device/MapDirectory.h"
#include "device/MapText.h"

namespace {

constexpr unsigned int flashSizeRegister = 0x1FFFF7E0;
constexpr unsigned int userSystemDataLength = 0x1000;

QStringList mapFiles() {
    const QStringList filter(QStringLiteral("*.ZVmap"));
    const QString directory = QFile::decodeName(mapDirectory().c_str());
    QStringList files = QDir(directory).entryList(filter, QDir::Files | QDir::Readable, QDir::Name);
    for (QString &file : files)
        file.prepend(directory);
    return files;
}

// Descriptions outlive their manager: others hold pointers to them until the process ends.
void keepUntilTheEnd(CDevice *device) {
    static auto &kept = *new std::vector<CDevice *>;
    kept.push_back(device);
}

} // namespace

CDevice::CDevice()
    : m_CMapping(nullptr), m_BlockSize(0), m_IFlashSize(0), m_UiUserSystemDataAddress(0), m_UiUserSystemDataLen(0),
      m_UiFlashSizeAdd(0), m_BSectorsPerBit(0), m_ISectorSize(0), m_haveBank3(false), m_Bank3Type(0), m_Bank3Szie(0),
      m_Bank3FlashDA(0), m_Nank3RemapFlag(false) {}

CDevice::~CDevice() = default;

CZV32F4Device::CZV32F4Device() : m_UiFlashSizeAddress(flashSizeRegister) {
    m_CMapping = new CMapping(std::string());
}

CZV32F4Device::CZV32F4Device(std::string strPID, std::string strSerial, int iFlashSize)
    : m_UiFlashSizeAddress(flashSizeRegister) {
    const QString mapFile = matchingMapFile(strPID, strSerial);
    if (!mapFile.isEmpty() && describeFrom(mapFile, strPID, strSerial)) {
        m_StrPID = strPID;
        m_StrSerial = strSerial;
        m_IFlashSize = iFlashSize;
    }
    m_StrTarget = m_StrName + "_" + std::to_string(m_IFlashSize) + "K";
    m_CMapping = new CMapping(m_StrTarget);
    const Family &family = familyOf(*this);
    m_UiUserSystemDataAddress = family.userSystemDataAddress;
    m_BlockSize = family.eraseBlock;
    m_UiUserSystemDataLen = userSystemDataLength;
    m_UiFlashSizeAdd = m_UiFlashSizeAddress;
}

bool CZV32F4Device::describeFrom(const QString &mapFile, const std::string &pid, const std::string &serial) {
    const QSettings map(mapFile, QSettings::IniFormat);
    const auto valueOf = [&map](const char *key) { return map.value(QString::fromLatin1(key)).toString(); };
    // A map that can't be read any more is empty, and no error.
    if (!valueOf("Product/PID").contains(QString::fromStdString(pid)) ||
        !valueOf("Product/Serial").contains(QString::fromStdString(serial)))
        return false;
    m_ISectorSize = valueOf("Sector0/Size").toUInt(nullptr, 16);
    m_StrBID = "NA";
    m_StrName = valueOf("Product/Name").toStdString();
    m_BSectorsPerBit = static_cast<BYTE>(valueOf("Product/SectorsPerSector").toUInt(nullptr, 10));
    return true;
}

QString CZV32F4Device::matchingMapFile(const std::string &pid, const std::string &serial) {
    const QString product = QStringLiteral("Product");
    // MEANT: substrings by exact case, so that one file may list several chips in one value; an empty
    // text matches every file, and the flash size plays no part.
    for (const QString &file : mapFiles()) {
        const std::string path = QFile::encodeName(file).toStdString();
        if (const std::optional<MapIdentity> plain = ReadPlainMap(path)) {
            if (plain->pid.find(pid) != std::string::npos && plain->serial.find(serial) != std::string::npos)
                return file;
        } else if (IsHarmlessMap(path) &&
                   ZVmapReadValue(product, QStringLiteral("PID"), file).contains(QString::fromStdString(pid)) &&
                   ZVmapReadValue(product, QStringLiteral("Serial"), file).contains(QString::fromStdString(serial))) {
            return file;
        }
    }
    return QString();
}

QString CZV32F4Device::ZVmapReadValue(QString Section, QString Keyname, QString ZVfilePath) {
    const QSettings settings(ZVfilePath, QSettings::IniFormat);
    return settings.value(Section + "/" + Keyname).toString();
}

bool CZV32F4Device::IsDevicePID(std::string strPID, std::string strSerial) {
    return !matchingMapFile(strPID, strSerial).isEmpty();
}

void CZV32F4Device::ReleaseSpecialMCUZVMap(QString) {}

void CZV32F4Device::DeleteSpecialMCUZVMap(QString) {}

CDeviceManager::CDeviceManager() = default;

CDeviceManager::~CDeviceManager() = default;

CDevice *CDeviceManager::GetDevice(std::string strPID, std::string strSerial, int iFlashSize) {
    for (CDevice *known : m_lsCDevice)
        if (known->m_StrPID == strPID && known->m_IFlashSize == iFlashSize && known->m_StrSerial == strSerial)
            return known;
    auto *device = new CZV32F4Device(strPID, strSerial, iFlashSize);
    // A description without its map is that of no chip, even if the map is there again a moment later.
    const bool isDescribed = device->m_StrPID == strPID && device->m_StrSerial == strSerial;
    if (!isDescribed || !device->IsDevicePID(strPID, strSerial)) {
        delete device->m_CMapping;
        delete device;
        return nullptr;
    }
    keepUntilTheEnd(device);
    m_lsCDevice.append(device);
    return device;
}

unsigned int CDeviceManager::GetFlashSizeAddress(std::string strPIDs, std::string strSerial, int iFlashSize) {
    // Every description that the manager makes is of this class.
    const auto *device = static_cast<CZV32F4Device *>(GetDevice(strPIDs, strSerial, iFlashSize));
    return device == nullptr ? 0 : device->m_UiFlashSizeAddress;
}

int seriesOf(const CDevice &device) {
    return static_cast<int>(std::strtol(device.m_StrSerial.c_str(), nullptr, 16));
}

const Family &familyOf(const CDevice &device) {
    return familyOf(seriesOf(device));
}
