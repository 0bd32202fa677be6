#include "app/UserSystemData.h"

#include "app/Link.h"
#include "app/Report.h"
#include "app/Requests.h"
#include "app/SubOptions.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

namespace {

// One direction of the transfer.
struct Transfer {
    int failure;    // exit status
    bool keepsName; // the shared record takes the name, even one that is refused
    const char *title;
    const char *successText;
    const char *failureText;
    int (CBootLoader::*run)(std::string);
};

const Transfer toFile = {OP_GET_USD_FAILD,
                         false,
                         "Get user system data to file",
                         "Get user system data to file succeed!",
                         "Get user system data to file failed!",
                         &CBootLoader::SaveUserSystemDatatoFile};
const Transfer toDevice = {OP_SET_USD_FAILD,
                           true,
                           "Set user system data to device",
                           "Set user system data to device successfully!",
                           "Set user system data to device failed!",
                           &CBootLoader::LoadUserSystemDataFromFileToDevice};

int carryOut(const Transfer &transfer, const std::string &filename, CCom *obCCom) {
    printLine(transfer.title);
    printLine("running...");
    if ((obCCom->m_ObBootLoader->*transfer.run)(filename) != 0) {
        WriteInforAndWaitInput(transfer.failureText);
        return transfer.failure;
    }
    printLine(transfer.successText);
    return 0;
}

int transferFile(SubOptionWalk &walk, const Transfer &transfer, CCom *obCCom) {
    std::string filename;
    switch (readTransfer(walk, transfer.keepsName, filename)) {
    case Named::nothing: return 0;
    case Named::refused: return refuse(walk, transfer.failure);
    case Named::file: break;
    }
    return carryOut(transfer, filename, obCCom);
}

int get(SubOptionWalk &walk, CCom *&obCCom) {
    return transferFile(walk, toFile, obCCom);
}

int set(SubOptionWalk &walk, CCom *&obCCom) {
    return transferFile(walk, toDevice, obCCom);
}

const SubOption<CCom *> words[] = {{SubId::get, get}, {SubId::set, set}};

} // namespace

int UserSystemData(int argc, char **argv, int &arg_index, CCom *obCCom) {
    if (!hasBootLoader(obCCom))
        return OP_CONNECT_FAILD;
    SubOptionWalk walk(argc, argv, arg_index);
    const int status = runSubOptions(walk, OptionId::userSystemData, words, obCCom);
    if (walk.atBadWord()) {
        WriteInforAndWaitInput(argv[arg_index]); // MEANT: the word alone
        return OP_BAD_PARAM;
    }
    return status;
}
