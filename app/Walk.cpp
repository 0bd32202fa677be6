#include "app/Walk.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "app/Connect.h"
#include "app/Download.h"
#include "app/Erase.h"
#include "app/Link.h"
#include "app/Otp.h"
#include "app/Protection.h"
#include "app/Report.h"
#include "app/RunAtAddress.h"
#include "app/Spim.h"
#include "app/Upload.h"
#include "app/Usage.h"
#include "app/UserSystemData.h"
#include "app/Words.h"
#include "foundation/ShareParameter.h"

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

// What each option runs: 0, or the exit status with which the process ends.
struct Option {
    OptionId id;
    int (*run)(Line &); // null: the usage text, and the end of the walk
};

const Option options[] = {
    {OptionId::usage, nullptr},
    {OptionId::dfu, connectBy<DFUConnect>},
    {OptionId::usart, connectBy<USARTConnect>},
    {OptionId::i2c, connectBy<I2CConnect>},
    {OptionId::can, connectBy<CANConnect>},
    {OptionId::spi, connectBy<SPIConnect>},
    {OptionId::erase, erase},
    {OptionId::protection, act<Protection>},
    {OptionId::download, download},
    {OptionId::upload, act<Upload, OP_MCU_UPLOAD_FAILD>},
    {OptionId::userSystemData, act<UserSystemData>},
    {OptionId::run, act<RunAtAddress, OP_RUN_AT_ADDR_FAILD>},
    {OptionId::spim, act<EnableBank3, OP_ENSPIM_FAILD>},
    {OptionId::otp, act<DownLoadOTPData>},
};

const Option *optionOf(const std::string &word) {
    const OptionWord *known = optionWord(word);
    if (known == nullptr)
        return nullptr;
    return std::find_if(std::begin(options), std::end(options),
                        [known](const Option &option) { return option.id == known->id; });
}

int refuseWord(const Line &line, const std::string &word) {
    // MEANT: silent on the last word, which is what a sub-option without its value at the end of the line is.
    if (line.index < line.argc - 1)
        printLine("bad parameter " + word);
    return OP_BAD_PARAM;
}

} // namespace

int walkCommandLine(int argc, char **argv) {
    Line line{argc, argv, 0, false};
    int status = OP_SUCCESS;
    while (status == OP_SUCCESS && line.index < line.argc) {
        const std::string word = argv[line.index];
        const Option *option = optionOf(word);
        if (option == nullptr) {
            closeLink(m_obCCom);
            return refuseWord(line, word);
        }
        if (option->run == nullptr) {
            // MEANT: the one way out that leaves the link open.
            man();
            return OP_SUCCESS;
        }
        status = option->run(line);
    }
    closeLink(m_obCCom);
    return status;
}
