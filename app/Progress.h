#pragma once

#include <string>

#include "operations/Operation.h"

class CCom;

// Jobs: how they are started and waited for, and what is printed while they run.

// Starts the job that the bootloader control has prepared and waits for its end. True if there was one and it
// succeeded.
bool runJob(CCom *obCCom);

// Installs the callback in the prepared job, if there is one, and starts it. Link and control must exist.
void Start(CCom *obCCom);

// Ends the wait and takes the callback out of the job. The link stays open.
void Stop();

// The callback of the jobs, on their thread: prints each event, and ends the wait at the last one. The record is
// that of the event's type.
void *GetOperationInfo(InfoType Type, void *ob);

// The title of a job.
std::string GetOperatioStringName(OP_Type type);
