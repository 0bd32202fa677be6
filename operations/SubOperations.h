#pragma once

#include <QtGlobal>

#include "foundation/LibraryTypes.h"
#include "foundation/Result.h"
#include "link/EnBank3Param.h"

class CAccessProtect;
class CEnBank3;
class CEnableSlib;
class CWriteSN;
class CWriteUserSystemData;
struct EnableSlibParam;
struct WriteSN_Param;

// How the download jobs run the jobs that they own. Results are those of the job, UNKNOWN_ERROR for
// a null pointer.
namespace suboperations {

int enableBank3(CEnBank3 *job, EnBank3Param record);
int enableSlib(CEnableSlib *job, EnableSlibParam record);
int protectAccess(CAccessProtect *job, BYTE level);

// Behind a success the record holds the next number.
int writeSerialNumber(CWriteSN *job, WriteSN_Param &record);

// Writes an element image. Where a protection step follows, it writes a copy with access protection
// off, because that step alone decides about the protection.
int writeUserSystemData(CWriteUserSystemData *job, BYTE *data, quint32 length, bool protectionFollows);

// Enables SPIM in front of a download. The key bytes lie in the user system data and the enabling uses
// them, so with an encrypted range they go to the target first.
template <class Download>
int prepareBank3(Download &job) {
    const auto &asked = job.m_Parameters;
    if (job.m_obBootLoader && asked.m_uiFlashDA != 0 && asked.m_UserSystemDataArray) {
        const int result = job.m_obBootLoader->LoadUserSystemDataToDeviceExceptFAP(asked.m_UserSystemDataArray,
                                                                                   asked.m_UserSystemDataLen);
        if (result != 0)
            return CResult::Convert(result);
    }
    return job.EnBank3();
}

// The steps behind a download that were asked for: serial number, user system data, access protection.
// Stops at a failure and at a cancel.
template <class Download>
int finishDownload(Download &job) {
    const auto &asked = job.m_Parameters;
    int result = 0;
    if (asked.m_bWriteSN)
        result = job.WriteSN(asked.m_uiSNAddress, asked.m_uiSNNumber, asked.m_uiSNStep);
    if (result == 0 && !job.IsCancel() && asked.m_UserSystemDataArray)
        result = job.ApplyUserSystemData(asked.m_UserSystemDataArray, asked.m_UserSystemDataLen);
    if (result == 0 && !job.IsCancel() && asked.m_bFAP)
        result = job.FAP();
    return result;
}

} // namespace suboperations
