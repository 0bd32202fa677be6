#pragma once

// What the tests of the download stand on: its record, and images of a few elements.

#include <QList>

#include "files/CFiles.h"
#include "tests/operations/OperationsTest.h"

inline const std::string threeElements = "element address=08000000 fill=11\nelement address=08000800 fill=22\n"
                                         "element address=08001000 fill=33";
inline const std::string oneSmall = "element address=08000000 length=4 fill=AB";

inline std::string eraseOf(int sector, int size = 2048) {
    return "ZVBL_ERASE h=1001 selector=1 sector=" + std::to_string(sector) + " size=" + std::to_string(size);
}

class DownloadTest : public OperationsTest {
protected:
    int download(const Lines &names) {
        parameters.m_strDownPathFile.clear();
        for (const std::string &name : names)
            parameters.m_strDownPathFile.append(path(name));
        return downloadPaths();
    }
    int downloadPaths() {
        bootLoader().DownloadToDevice(parameters);
        return runAnew();
    }
    CDownload &job() { return static_cast<CDownload &>(*bootLoader().m_ObOperation); }
    // A compact block's element image, all pairs of value and complement.
    BYTE *userSystemData(BYTE protection) {
        BYTE *bytes = new BYTE[48];
        for (int i = 0; i < 48; i += 2) {
            bytes[i] = i == 0 ? protection : 0xFF;
            bytes[i + 1] = static_cast<BYTE>(~bytes[i]);
        }
        return bytes;
    }

    // Asks for an sLib area of one sector; the script goes on with what else the link library does.
    void withSlib(const std::string &scriptLines = "") {
        parameters.m_bEnableSlib = true;
        parameters.m_uiPassword = 1;
        parameters.m_usStartDataSector = 0xFFFF;
        library.script("ZVBL_GetSlibStatus_Ex enabled=1 datastart=65535\n" + scriptLines);
    }

    DownloadParam parameters;
};
