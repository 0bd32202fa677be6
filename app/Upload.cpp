#include "app/Upload.h"

#include "app/FileNames.h"
#include "app/Link.h"
#include "app/Progress.h"
#include "app/Report.h"
#include "app/Sectors.h"
#include "app/SubOptions.h"
#include "foundation/PathText.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"
#include "operations/Operation.h"

namespace {

struct Request {
    CCom *obCCom;
    QList<int> aSectorIndexs;
    std::string upFileName;
};

int addSectors(SubOptionWalk &walk, Request &request) {
    if (!appendSectors(walk.value(), request.obCCom, request.aSectorIndexs)) {
        walk.reportBadParameter();
        return OP_MCU_UPLOAD_FAILD;
    }
    return 0;
}

int setFile(SubOptionWalk &walk, Request &request) {
    request.upFileName = walk.value();
    if (!IsValidFileName(request.upFileName)) {
        walk.reportBadParameter();
        return OP_MCU_UPLOAD_FAILD;
    }
    return 0;
}

const SubOption<Request> words[] = {{"--sec", addSectors}, {"--fn", setFile}};

} // namespace

bool Upload(int argc, char **argv, int &arg_index, CCom *obCCom) {
    if (!hasBootLoader(obCCom))
        return false;
    Request request{obCCom, {}, {}};
    SubOptionWalk walk(argc, argv, arg_index);
    if (runSubOptions(walk, words, request, OP_MCU_UPLOAD_FAILD) != 0)
        return false;
    if (request.aSectorIndexs.isEmpty())
        request.aSectorIndexs = GetAllSectors(obCCom);
    if (!IsValidFileName(request.upFileName)) {
        WriteInforAndWaitInput("Upload file name error.");
        return false;
    }
    UploadParam param;
    param.m_strUploadPathFile = textOf(request.upFileName);
    param.m_aSectorIndexs = request.aSectorIndexs;
    param.m_bank3Size = static_cast<int>(g_shareParameter.c_SPIMSize);
    obCCom->m_ObBootLoader->UploadFromDevice(param);
    return runJob(obCCom);
}
