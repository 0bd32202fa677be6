#include "app/UserSystemData.h"

#include "app/FileNames.h"
#include "app/Link.h"
#include "app/Report.h"
#include "app/SubOptions.h"
#include "app/Words.h"
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

// The walk rests on the word after "--get" or "--set", which has to be "--fn", with the path after it.
int transferFile(SubOptionWalk &walk, const Transfer &transfer, CCom *obCCom) {
    if (!walk.hasValue())
        return 0;
    const bool named = walk.value() == "--fn";
    walk.advance();
    const std::string filename = walk.value();
    if (named && transfer.keepsName)
        g_shareParameter.c_filename = filename;
    if (!named || !IsValidFileName(filename)) {
        // MEANT: reported is the word where the path should stand, also when it is "--fn" that is missing.
        walk.reportBadParameter();
        return transfer.failure;
    }
    return carryOut(transfer, filename, obCCom);
}

int get(SubOptionWalk &walk, CCom *&obCCom) {
    return transferFile(walk, toFile, obCCom);
}

int set(SubOptionWalk &walk, CCom *&obCCom) {
    return transferFile(walk, toDevice, obCCom);
}

const SubOption<CCom *> words[] = {{"--get", get}, {"--set", set}};

} // namespace

int UserSystemData(int argc, char **argv, int &arg_index, CCom *obCCom) {
    if (!hasBootLoader(obCCom))
        return OP_CONNECT_FAILD;
    SubOptionWalk walk(argc, argv, arg_index);
    const int status = runSubOptions(walk, words, obCCom);
    if (walk.atBadWord()) {
        WriteInforAndWaitInput(argv[arg_index]); // MEANT: the word alone
        return OP_BAD_PARAM;
    }
    return status;
}

int GetUserSystemDataFile(int argc, char **argv) {
    // MEANT: the scan is one word ahead of what people write, so the usual "-usd --set --fn path" does not match,
    // and what does match stores the word "--fn".
    int i = 0;
    while (i < argc) {
        if (wordAt(argc, argv, i) != "-usd") {
            ++i;
            continue;
        }
        ++i;
        if (!Is_SubOption(wordAt(argc, argv, i))) {
            ++i;
            continue;
        }
        ++i;
        if (wordAt(argc, argv, i) != "--set") {
            i += 3;
            continue;
        }
        ++i;
        const std::string word = wordAt(argc, argv, i);
        if (word == "--fn")
            g_shareParameter.c_strFilePath = word;
        return 1;
    }
    return 0;
}
