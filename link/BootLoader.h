#pragma once

#include <string>
#include <vector>

#include <QList>
#include <QtGlobal>

#include "device/Device.h"
#include "device/FilesInc.h"
#include "foundation/LibraryTypes.h"
#include "link/EnBank3Param.h"
#include "link/JobRun.h"
#include "link/ZVBLLIB.h"

class CCom;
class COperation;
class CUserSystemData;
class CUserSystemDataFile;
struct EraseParam;
struct DownloadParam;
struct UploadParam;
struct DLPROJECTParam;
struct FWCRCParam;
struct FlashCRCParam;
struct EnableSlibParam;

// The bootloader control: everything that talks to the chip goes through it. A link makes it when its port
// opens and destroys it when the port closes. Every int result is a CResult code unless told otherwise.
// It is used by one thread at a time: the main thread, or a job while the main thread waits.
// There are no virtual functions and the handle comes first, because jobs take their port tag from the first
// word of the object.
class CBootLoader {
public:
    HANDLE m_handle;                                       // copied from the link
    Commands *m_pCmds;                                     // capability record, owned, filled by Connect
    CDevice *m_ObDevice = nullptr;                         // owned by m_pDeviceManager, set by InitDevice
    CUserSystemData *m_ObUserSystemData = nullptr;         // owned; null until the first read
    CUserSystemDataFile *m_ObUserSystemDataFile = nullptr; // owned; null until first used
    COperation *m_ObOperation = nullptr;                   // owned: the current job
    bool m_bHasJumpToUserProgram = false;                  // the chip left its bootloader by a jump
    signed char m_InterfaceType;                           // as in CCom
    int m_BID = 0;                                         // block identifier, BID byte high, reserve byte low
    CCom *m_hCCOM;                                         // the link that owns this object; null once it is gone
    quint32 m_uiAddr = 0x3C;                               // I2C address
    ulong m_ulRate = 400000;                               // I2C rate, Hz
    BYTE m_bDutyCycle = 0;                                 // I2C duty cycle
    quint32 m_uiCANSpeed = 2;
    ulong m_ulSPISpeed = 150000;
    CDeviceManager m_pDeviceManager;

    CBootLoader(CCom *hCCom, char typev);
    ~CBootLoader();
    CBootLoader(const CBootLoader &) = delete;
    CBootLoader &operator=(const CBootLoader &) = delete;

    // Link settings; they count from the next Connect.
    void SetI2CSettings(uint uiAddr, ulong ulRate, BYTE bDutyCylce);
    void SetCANSettings(uint uiCANSpeed);
    void SetSPISettings(ulong ulSPISpeed);

    // Identification.

    // Brings the bootloader into its command state and fills the capability record. No retries.
    int Connect();
    // Identifies the chip, chooses its description, sets the packet size and reads the version. An unknown
    // chip leaves m_ObDevice null and gives SYS_UNREOGNIZED_DEVICE.
    int InitDevice();
    bool HasInitDevice() const;
    // True when the bootloader does not answer.
    bool IsNeedReeonnect();
    // Fills the capability record given; the scratch byte means nothing.
    int Get(char *scratch, Commands *commands);
    // Version as "2.1" and block identifier as four hexadecimal digits or "NA", which leaves m_BID alone.
    // Both texts are empty after a failure.
    int GetVersion(std::string &strVersion, std::string &strBid);
    // Reads the block identifier from memory. MEANT: the text comes by value, so only the code of the read
    // reaches the caller.
    int GetBID(std::string strBID);
    // Copies the 12 bytes of the unique ID. Null gives the bare value 33.
    int GetUID(BYTE *bUID);
    // The identifier as four or eight upper-case hexadecimal digits, and the series, which the short form
    // does not carry: it is then 2. An identifier of another length gives the bare value 5.
    int GetPID(std::string &strPID, BYTE &chipSeries);
    // Flash size in KB that bits 6 to 10 of a PID stand for; 0 where they stand for none.
    int ZV32GetFlashSize(int value) const;
    // Reads the flash size register at the address, in KB.
    int GetFlashSize(uint uiAddr, int &val);
    // Only the low byte reaches the library.
    int SetComPaketSize(int size);

    // Job starters: each frees the job before it, makes the new one in m_ObOperation and hands the parameters
    // on. None runs it. Defined with the jobs, in operations/JobStarters.cpp.
    void EraseFlash(EraseParam param);
    void DownloadToDevice(DownloadParam param);
    void UploadFromDevice(UploadParam param);
    void DownloadToDeviceProject(DLPROJECTParam param);
    void FirmwareCRCCheck(FWCRCParam param);
    void FlashCRCCheck(FlashCRCParam param);
    void EnableBank3Func(EnBank3Param param);
    void AccessProtect(BYTE level);
    void ReadoutUnProtect();
    void EraseProgramProtect(QList<int> sectors);
    void WriteUnProtect();
    void EnableSlib(EnableSlibParam param);
    void DisableSlib(uint password);
    void DisableSlibCheck(uint password);
    // Destroys the current job, if there is one, when it has ended. From the listener of a job, and so from a
    // job starter there, it comes back at once and the job is destroyed at its end; the job after it begins
    // then.
    void FreeOperation();
    // Destroys a control, or nothing for null. From the listener of one of its jobs it comes back at once, and
    // the control is destroyed when that job has ended.
    static void Destroy(CBootLoader *control);
    // The runs of freed jobs that were still under way, for the next job to wait for.
    std::vector<JobRun> RunsToEnd() const;

    // User system data of the target.

    // Reads the option bytes into m_ObUserSystemData. A failed first read leaves no object.
    int GetUserSystemData();
    // Writes m_ObUserSystemData, reading it first if there is none, and reconnects. MEANT: whether the chip
    // comes back is not looked at.
    int SetUserSystemData();
    // The compact form as the chip holds it, gaps included. After a write the chip restarts: Reconnect comes next.
    int ReadOptionBytes(std::vector<BYTE> &block);
    int WriteOptionBytes(std::vector<BYTE> &block);
    // Element form, 4096 bytes, to and from a file or a buffer. ...ExceptFAP keep the access protection byte
    // that the chip holds.
    int SaveUserSystemDatatoFile(std::string path);
    int LoadUserSystemDataFromFile(std::string path);
    int LoadUserSystemDataFromFileToDevice(std::string path);
    int LoadUserSystemDataFromFileToDeviceExceptFAP(std::string path);
    int LoadUserSystemDataToDevice(BYTE *data, quint32 len);
    int LoadUserSystemDataToDeviceExceptFAP(BYTE *data, quint32 len);

    // Target control.

    // The rule after every reset of the target: closes the link and reopens it, up to 5 attempts 2000 ms
    // apart, then 100 ms and Connect, whose code it gives. Five failed attempts give that of the last.
    int Reconnect();
    // Resets the target and reconnects.
    int ResetMcu();
    // Resets by a jump to the last word of flash and reconnects.
    int ResetMcu403B();
    // Leaves the bootloader and runs at the address; refused with SYS_ACCESS_PROTECTION on a protected chip.
    int JumpToUserProgram(uint addr);
    // Enables the SPIM; m_uiFlashSize counts in MB here. A refusal of the enabling comes back as the bare
    // status byte.
    int EnableSPIM(EnBank3Param param);

    // Protection checks.

    // Whether flash access protection is active. A refused read is a protected chip; a check that could not
    // be made gives its own code and must not be taken for "not protected".
    int GetAccessProtectiosStatus(bool *protectedFlag);
    // 0 when none of the sectors is under erase and program protection, SYS_ERASEPROGRAM_PROTECTION when one
    // is, SYS_ACCESS_PROTECTION when the chip refuses to be read, and the code of the failure when the check
    // could not be made. Sector numbers are those of an erase: from 32768 up they are SPIM sectors. An empty list is
    // the whole device.
    int HasBeenEraseProgramProtect(QList<int> sectors);
    // Removes flash access protection, which erases the flash, and reconnects, on the calling thread.
    int ReadoutUnProtectNoThread();

private:
    // A status byte of the library: link start by interface type.
    BYTE startBootloader();
    BYTE startUsart();
    BYTE startCan();
    // The PID, flash size and series texts that a device description is asked for by.
    int identify(std::string &pid, std::string &series, int &flashSize);
    int ensureUserSystemData();
    int openUserSystemDataFile(const std::string &path, PIMAGEELEMENT &element);
    int takeElement(PIMAGEELEMENT element);
    int probeFlashSizeRegister();
    // Whether a job of this control, a freed one included, runs on the calling thread.
    bool isOnJobsThread() const;
    // Frees the current job without waiting for it.
    void setJobAside();

    std::vector<JobRun> m_runsToEnd;
};
