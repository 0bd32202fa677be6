#include "app/Upload.h"

#include "app/FileNames.h"
#include "app/Link.h"
#include "app/Progress.h"
#include "app/Report.h"
#include "app/Requests.h"
#include "app/Sectors.h"
#include "app/SubOptions.h"
#include "foundation/PathText.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"
#include "operations/Operation.h"

bool Upload(int argc, char **argv, int &arg_index, CCom *obCCom) {
    if (!hasBootLoader(obCCom))
        return false;
    UploadRequest request;
    SubOptionWalk walk(argc, argv, arg_index);
    if (!readUpload(walk, deviceOf(obCCom), request))
        return refuse(walk, false);
    if (request.sectors.isEmpty())
        request.sectors = GetAllSectors(deviceOf(obCCom));
    if (!IsValidFileName(request.fileName)) {
        WriteInforAndWaitInput("Upload file name error.");
        return false;
    }
    UploadParam param;
    param.m_strUploadPathFile = textOf(request.fileName);
    param.m_aSectorIndexs = request.sectors;
    param.m_bank3Size = static_cast<int>(g_shareParameter.c_SPIMSize);
    obCCom->m_ObBootLoader->UploadFromDevice(param);
    return runJob(obCCom);
}
