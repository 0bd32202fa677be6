#include "operations/download/SubOperations.h"

#include <vector>

#include "foundation/Result.h"
#include "link/AccessProtection.h"
#include "operations/AccessProtect.h"
#include "operations/EnBank3.h"
#include "operations/EnableSlib.h"
#include "operations/WriteSN.h"
#include "operations/WriteUserSystemData.h"

namespace suboperations {

namespace {

// The first pair of an element image: the access protection byte and its complement.
constexpr quint32 pairLength = 2;

int startWith(COperation *job, void *record) {
    if (!job)
        return CResult::UNKNOWN_ERROR;
    job->SetParameters(record);
    return job->Start();
}

} // namespace

int enableBank3(CEnBank3 *job, EnBank3Param record) {
    return startWith(job, &record);
}

int enableSlib(CEnableSlib *job, EnableSlibParam record) {
    return startWith(job, &record);
}

int protectAccess(CAccessProtect *job, BYTE level) {
    return startWith(job, &level);
}

int writeSerialNumber(CWriteSN *job, WriteSN_Param &record) {
    const int result = startWith(job, &record);
    if (result == 0)
        record = job->m_Parameters;
    return result;
}

int writeUserSystemData(CWriteUserSystemData *job, BYTE *data, quint32 length, bool protectionFollows) {
    if (!job)
        return CResult::UNKNOWN_ERROR;
    std::vector<BYTE> bytes(data, data + length);
    if (protectionFollows && length >= pairLength) {
        bytes[0] = accessProtectionOff;
        bytes[1] = static_cast<BYTE>(~accessProtectionOff);
    }
    job->SetParameters(bytes.data(), length);
    return job->Start();
}

} // namespace suboperations
