#pragma once

// The door of this folder: all jobs, with their parameter records.

#include "operations/AccessProtect.h"
#include "operations/AccessUnProtect.h"
#include "operations/COperation.h"
#include "operations/DisableSlib.h"
#include "operations/EnBank3.h"
#include "operations/EnableSlib.h"
#include "operations/Erase.h"
#include "operations/EraseProgramProtect.h"
#include "operations/EraseProgramUnProtect.h"
#include "operations/FWCRC.h"
#include "operations/FlashCRC.h"
#include "operations/OperationTypes.h"
#include "operations/Upload.h"
#include "operations/WriteSN.h"
#include "operations/WriteUserSystemData.h"
#include "operations/WriteUserSystemDataProject.h"
#include "operations/download/Download.h"
#include "operations/download/DownloadProject.h"
#include "operations/download/Verify.h"
#include "operations/download/VerifyProject.h"
