#pragma once

#include "files/ImageFile.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor" // of CFiles

// A program image: opened for download and verify, created for upload.
class CProgramFile final : public CFiles {
public:
    bool m_bOptimize = false;
    QList<int> m_aSectorIndexs;   // sectors wanted by the next Create, in rising order; 32768 and up: SPIM
    int m_iSectorNum = 0;         // how many of them count
    int m_bank3SzieForCreate = 0; // KB

    // Whether Open takes out what is 0xFF.
    void SetOptimizeForOpen(bool bOptimize);
    void SetSectorIndexsForCreate(QList<int> aSectorIndexs, int sectorNum);
    void SetBank3SizeForCreate(int isize);

    // True when no sector is chosen, which stands for all.
    bool IsCreateAllSectors();

    // Reads a file and cuts it by the device's map.
    int Open(std::string strPath, CDevice *obDevice) override;

    // Makes an image of the chosen sectors.
    int Create(CDevice *obDevice) override;

    // Stores the current element: in place in an image of all sectors, else as a new one.
    using CFiles::SetElement;
    int SetElement();

private:
    unsigned int collectAll(unsigned int count);
    unsigned int collectChosen(unsigned int count, int flashSectorNum);
    unsigned int replaceImage();
};

#pragma GCC diagnostic pop
