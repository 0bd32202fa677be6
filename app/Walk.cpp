#include "app/Walk.h"

#include <string>

#include "app/Connect.h"
#include "app/Memory.h"
#include "app/Otp.h"
#include "app/Protection.h"
#include "app/Report.h"
#include "app/Spim.h"
#include "app/Usage.h"
#include "app/UserSystemData.h"
#include "app/Words.h"
#include "foundation/ShareParameter.h"
#include "link/CCom.h"

CCom *m_obCCom = nullptr;

namespace {

// The command line and how far the walk has come.
struct Line {
    int argc;
    char **argv;
    int index;
    bool erased; // an "-e" has succeeded, whatever it did
};

int statusOf(bool succeeded, int failure) {
    return succeeded ? OP_SUCCESS : failure;
}

template <bool (*handler)(int, char **, int &, CCom *&)>
int connectBy(Line &line) {
    return statusOf(handler(line.argc, line.argv, line.index, m_obCCom), OP_CONNECT_FAILD);
}

template <int (*handler)(int, char **, int &, CCom *)>
int act(Line &line) {
    return handler(line.argc, line.argv, line.index, m_obCCom);
}

template <bool (*handler)(int, char **, int &, CCom *), int failure>
int act(Line &line) {
    return statusOf(handler(line.argc, line.argv, line.index, m_obCCom), failure);
}

int erase(Line &line) {
    const int status = Erase(line.argc, line.argv, line.index, m_obCCom);
    line.erased = line.erased || status == OP_SUCCESS;
    return status;
}

int download(Line &line) {
    return statusOf(Download(line.argc, line.argv, line.index, line.erased, m_obCCom), OP_DOWNLOAD_FAILD);
}

// What each option runs: 0, or the exit status with which the process ends. "-?" ends it by itself.
struct Option {
    const char *word;
    int (*run)(Line &);
};

const Option options[] = {
    {"-dfu", connectBy<DFUConnect>},
    {"-com", connectBy<USARTConnect>},
    {"-i2c", connectBy<I2CConnect>},
    {"-can", connectBy<CANConnect>},
    {"-spi", connectBy<SPIConnect>},
    {"-e", erase},
    {"-p", act<Protection>},
    {"-d", download},
    {"-u", act<Upload, OP_MCU_UPLOAD_FAILD>},
    {"-usd", act<UserSystemData>},
    {"-o", act<UserSystemData>},
    {"-r", act<RunAtAddress, OP_RUN_AT_ADDR_FAILD>},
    {"-enspim", act<EnableBank3, OP_ENSPIM_FAILD>},
    {"-otp", act<DownLoadOTPData>},
};

int runOption(const std::string &word, Line &line) {
    for (const Option &option : options)
        if (word == option.word)
            return option.run(line);
    WriteInforAndWaitInput("bad parameter " + word);
    return OP_BAD_PARAM;
}

int refuseWord(const Line &line, const std::string &word) {
    // MEANT: silent on the last word, which is what a sub-option without its value at the end of the line is.
    if (line.index < line.argc - 1)
        printLine("bad parameter " + word);
    return OP_BAD_PARAM;
}

} // namespace

void closeLink(CCom *obCCom) {
    if (obCCom != nullptr && obCCom->IsOpen())
        obCCom->Close();
}

int walkCommandLine(int argc, char **argv) {
    Line line{argc, argv, 0, false};
    int status = OP_SUCCESS;
    while (status == OP_SUCCESS && line.index < line.argc) {
        const std::string word = argv[line.index];
        if (word == "-?") {
            // MEANT: the one way out that leaves the link open.
            man();
            return OP_SUCCESS;
        }
        if (!Is_Option(word)) {
            closeLink(m_obCCom);
            return refuseWord(line, word);
        }
        status = runOption(word, line);
    }
    closeLink(m_obCCom);
    return status;
}
