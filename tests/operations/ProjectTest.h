#pragma once

// What the tests of the project download stand on: files that lie in memory, part by part.

#include <cstring>

#include "tests/operations/OperationsTest.h"

inline HEXFILEPARTINFO part(uint address, uint size, BYTE fill = 0x5A) {
    HEXFILEPARTINFO one = {};
    one.PartStartAddress = address;
    one.PartEndAddress = address + size - 1;
    one.PartSize = size;
    std::memset(one.pData, fill, sizeof one.pData);
    return one;
}

inline SFileInfo file(const QList<HEXFILEPARTINFO> &parts, const std::string &type = "HEX", uint start = 0) {
    SFileInfo one = {};
    one.FilePath = "/project/" + type;
    one.LoadFileType = type;
    one.StartAddress = start;
    one.partInfo = parts;
    for (const HEXFILEPARTINFO &each : parts)
        one.FileSize += static_cast<int>(each.PartSize);
    return one;
}

class ProjectTest : public OperationsTest {
protected:
    int download(const QList<SFileInfo> &files) {
        parameters.m_DownFileInfo = files;
        bootLoader().DownloadToDeviceProject(parameters);
        return runAnew();
    }
    CDownloadProject &job() { return static_cast<CDownloadProject &>(*bootLoader().m_ObOperation); }
    QList<int> sectors(const QList<HEXFILEPARTINFO> &parts) {
        CDownloadProject project(&bootLoader());
        DLPROJECTParam record;
        record.m_DownFileInfo = {file(parts)};
        project.SetParameters(&record);
        return project.GetNecessarySectorIndex();
    }
    static std::string address(const std::string &call) { return call.substr(call.find("addr=") + 5, 8); }

    DLPROJECTParam parameters;
};
