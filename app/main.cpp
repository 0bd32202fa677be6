#include <clocale>
#include <string>
#include <vector>

#include <QCoreApplication>

#include "app/LinkSettings.h"
#include "app/Process.h"
#include "app/Report.h"
#include "app/Usage.h"
#include "app/Walk.h"
#include "foundation/ShareParameter.h"

namespace {

void printBanner() {
    const std::string rule(60, '-');
    printLine(rule);
    printLine("Zelvor ISP Programmer V3.0.14");
    printLine("Support USART and DFU");
    printLine(rule);
    printLine("");
}

} // namespace

int main(int argc, char **argv) {
    if (!holdStandardDescriptors())
        return unexpectedEnd;
    reportUnexpectedEnds();
    takeFailedWritesAsErrors();
    tellLostTrace();

    // It takes words of its own out of the line that it is given, so it gets a copy.
    int applicationArgc = argc;
    std::vector<char *> applicationArgv(argv, argv + argc + 1);
    const QCoreApplication application(applicationArgc, applicationArgv.data());
    // It has taken over the user's locale; in a Turkish one "bin" would not be "BIN" in upper case.
    std::setlocale(LC_ALL, "C");

    printBanner();
    loadStartValues();
    if (argc < 2) {
        man();
        return OP_SUCCESS;
    }
    return walkCommandLine(argc - 1, argv + 1);
}
