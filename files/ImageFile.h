#pragma once

#include <string>

#include <QList>

#include "device/Device.h"
#include "device/FilesInc.h"

// The kind of an image file, told by its path.
enum Type : int { UNKNOWN = 0, BIN = 1, HEX = 2, S19 = 3 };

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// An image while an action works on it: the file library's image, and its elements as a list that is
// walked one by one. Used by one thread at a time. Every int result is a CResult code.
class CFiles {
public:
    // Statuses of the file library.
    static constexpr unsigned int FILES_ERROR_OFFSET = 0;
    static constexpr unsigned int FILES_NOERROR = 0x12340000;
    static constexpr unsigned int FILES_BADSUFFIX = 2;
    static constexpr unsigned int FILES_UNABLETOOPENFILE = 3;
    static constexpr unsigned int FILES_UNABLETOOPENTEMPFILE = 4;
    static constexpr unsigned int FILES_BADFORMAT = 5;
    static constexpr unsigned int FILES_BADADDRESSRANGE = 6;
    static constexpr unsigned int FILES_BADPARAMETER = 8;
    static constexpr unsigned int FILES_UNEXPECTEDERROR = 10;
    static constexpr unsigned int FILES_FILEGENERALERROR = 13;
    static constexpr unsigned int FILES_NOTOPEN = 14;
    static constexpr unsigned int FILES_SETELEMENTFULL = 15;

    static constexpr unsigned int STPRT_ERROR_OFFSET = 0x12345000;
    static constexpr unsigned int STPRT_NOERROR = 0x12340000;
    static constexpr unsigned int STPRT_UNABLETOLAUNCHTHREAD = 0x12345001;
    static constexpr unsigned int STPRT_ALREADYRUNNING = 0x12345007;
    static constexpr unsigned int STPRT_BADPARAMETER = 0x12345008;
    static constexpr unsigned int STPRT_BADFIRMWARESTATEMACHINE = 0x12345009;
    static constexpr unsigned int STPRT_UNEXPECTEDERROR = 0x1234500A;
    static constexpr unsigned int STPRT_ERROR = 0x1234500B;
    static constexpr unsigned int STPRT_RETRYERROR = 0x1234500C;
    static constexpr unsigned int STPRT_UNSUPPORTEDFEATURE = 0x1234500D;

    HANDLE m_pImage = nullptr;       // null when nothing is open
    QList<IMAGEELEMENT> m_lsElement; // each Data is a malloc block of the list's own
    int m_CurrentElementIndex = -1;  // -1 before the first element
    Type m_Type = UNKNOWN;
    std::string m_StrPath;
    unsigned int m_UiFileSize = 0;   // bytes of all elements
    unsigned int m_uiFileStatus = 0; // bytes of the elements handed out so far

    CFiles() = default;
    // A copy has an image and element bytes of its own. If the library gives it no image, it is closed.
    CFiles(const CFiles &other);
    CFiles &operator=(const CFiles &other);
    // Drops the handle of an open image without a call of the library. MEANT: not virtual, so an image
    // file is destroyed as what it is, never through this class.
    ~CFiles();

    // The base steps: close what is open and, for Open, tell the type.
    virtual int Open(std::string strPath, CDevice *obDevice);
    virtual int Create(CDevice *obDevice);

    bool HasOpen();
    void FreeImageElement();

    // Back to before the first element.
    void ResetElement();
    int GetElementCount();

    // The next element, null at the end and when nothing is open.
    PIMAGEELEMENT GetElement();

    // Stores the current element into the image, as a new one or in place; without a current element 0.
    int SetElement(bool bInsert);
    int SetElement();

    // Address of the first element, 0 without one.
    int GetStartAddress(unsigned int *uiAddress);

    // Writes the image; the path's suffix tells the format.
    int Save(std::string strPath);
    void Close();

    // MEANT: looks for the suffixes anywhere in the path, so a directory named "x.bin" makes a binary.
    Type ParseFileType(std::string strPath);

protected:
    // Fetches one element of the image into the list. Gives the library's status, or
    // FILES_UNEXPECTEDERROR when there is no memory for the bytes.
    unsigned int appendElement(unsigned int index);

private:
    void copyFrom(const CFiles &other);
};

#pragma GCC diagnostic pop
