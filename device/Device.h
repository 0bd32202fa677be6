#pragma once

#include <string>

#include <QList>
#include <QString>

#include "device/Mapping.h"

struct Family;

// What the connected chip is: name, sizes, memory map and where its option data lies.
class CDevice {
public:
    CMapping *m_CMapping;     // never destroyed with the description
    std::string m_StrPID;     // as asked for
    std::string m_StrSerial;  // the family, two upper-case hexadecimal digits
    unsigned int m_BlockSize; // bytes; 0 where there is no block erase
    std::string m_StrBID;
    std::string m_StrName;
    std::string m_StrTarget; // the map file's name without its suffix
    int m_IFlashSize;        // KB
    unsigned int m_UiUserSystemDataAddress;
    unsigned int m_UiUserSystemDataLen; // bytes of the element form
    unsigned int m_UiFlashSizeAdd;      // address of the flash size register
    BYTE m_BSectorsPerBit;              // sectors per erase and program protection bit
    unsigned int m_ISectorSize;         // bytes
    bool m_haveBank3;
    int m_Bank3Type;
    unsigned int m_Bank3Szie;
    unsigned int m_Bank3FlashDA;
    bool m_Nank3RemapFlag;

    CDevice();
    ~CDevice();
};

// A description built from the map files, of which device/MapDirectory.h tells where they are.
class CZV32F4Device : public CDevice {
public:
    unsigned int m_UiFlashSizeAddress;
    std::string m_StrSubName; // always empty

    // A description of no chip, with an empty map.
    CZV32F4Device();

    // Takes name and sector size from the first map file, by name, that lists the PID and the series;
    // the sector table is that of the file named after name and flash size (KB). A chip that no file
    // lists leaves name and series empty.
    CZV32F4Device(std::string strPID, std::string strSerial, int iFlashSize);

    // The value of one key of a map file as text, empty when there is none. A value with a comma is a
    // list and has no text: write several PIDs with blanks between them, or quote the value.
    QString ZVmapReadValue(QString Section, QString Keyname, QString ZVfilePath);

    // Whether a map file lists the PID and the series.
    bool IsDevicePID(std::string strPID, std::string strSerial);

    // MEANT: hooks that do nothing.
    void ReleaseSpecialMCUZVMap(QString dirPath);
    void DeleteSpecialMCUZVMap(QString dirPath);

private:
    QString matchingMapFile(const std::string &pid, const std::string &serial);
    // False, and no change, when the map does not say that it is for the chip.
    bool describeFrom(const QString &mapFile, const std::string &pid, const std::string &serial);
};

// The number that the series text of a description stands for; 0 for a text that is none.
int seriesOf(const CDevice &device);
// The row of its family.
const Family &familyOf(const CDevice &device);

// Hands out descriptions, one per PID, series and flash size. They last until the process ends.
class CDeviceManager {
public:
    QList<CDevice *> m_lsCDevice;

    CDeviceManager();
    ~CDeviceManager();

    // The description of a chip, null for an unknown one. iFlashSize in KB.
    CDevice *GetDevice(std::string strPID, std::string strSerial, int iFlashSize);

    // The address of the chip's flash size register, 0 for an unknown chip.
    unsigned int GetFlashSizeAddress(std::string strPIDs, std::string strSerial, int iFlashSize);
};
