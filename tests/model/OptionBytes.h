#pragma once

#include <vector>

#include "usersystemdata/CUserSystemData.h"

// A device description for option byte tests: sector count, sector size in bytes, sectors per bit.
class OptionDevice {
public:
    OptionDevice(unsigned int sectors, unsigned int sectorSize, BYTE sectorsPerBit) : m_map("none") {
        m_map.m_AMappingSectorNum = sectors;
        device.m_CMapping = &m_map;
        device.m_ISectorSize = sectorSize;
        device.m_BSectorsPerBit = sectorsPerBit;
    }

    CDevice device;

private:
    CMapping m_map;
};

inline std::vector<int> numbers(const QList<int> &list) {
    return std::vector<int>(list.begin(), list.end());
}

inline std::vector<BYTE> compactOf(CUserSystemData &data) {
    BYTE *bytes = nullptr;
    const quint32 length = data.Get(bytes);
    const std::vector<BYTE> result(bytes, bytes + length);
    delete[] bytes;
    return result;
}

inline std::vector<BYTE> elementOf(CUserSystemData &data) {
    BYTE *bytes = nullptr;
    const quint32 length = data.GetElementData(bytes);
    const std::vector<BYTE> result(bytes, bytes + length);
    delete[] bytes;
    return result;
}
