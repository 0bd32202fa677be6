#pragma once

#include <QtGlobal>

#include "foundation/LibraryTypes.h"
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

} // namespace suboperations
