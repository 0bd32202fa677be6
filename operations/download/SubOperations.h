#pragma once

#include <QtGlobal>

#include "foundation/LibraryTypes.h"
#include "foundation/Result.h"
#include "link/EnBank3Param.h"
#include "operations/COperation.h"

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

// After a success the record holds the next number.
int writeSerialNumber(CWriteSN *job, WriteSN_Param &record);

// Writes an element image. Where a protection step follows, it writes a copy with access protection
// off, because that step alone decides about the protection.
int writeUserSystemData(CWriteUserSystemData *job, BYTE *data, quint32 length, bool protectionFollows);

// Enables SPIM before a download. The key bytes lie in the user system data and the enabling uses
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

// Whether the job goes on after a step of it: not after a failure, nor after a cancel.
inline bool goesOn(const COperation &job, int result) {
    return result == 0 && !job.IsCancel();
}

// The steps after a download that were asked for: serial number, user system data, access protection.
// False after the one that failed or was cancelled.
template <class Download>
bool finishDownload(Download &job, int &result) {
    const auto &asked = job.m_Parameters;
    const auto step = [&](int code) { return goesOn(job, result = code); };
    result = 0;
    return (!asked.m_bWriteSN || step(job.WriteSN(asked.m_uiSNAddress, asked.m_uiSNNumber, asked.m_uiSNStep))) &&
           (!asked.m_UserSystemDataArray ||
            step(job.ApplyUserSystemData(asked.m_UserSystemDataArray, asked.m_UserSystemDataLen))) &&
           (!asked.m_bFAP || step(job.FAP()));
}

} // namespace suboperations
