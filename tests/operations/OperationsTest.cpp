#include "tests/operations/OperationsTest.h"

#include <algorithm>
#include <cstdlib>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

const Chip f403a{"ZV32F403A_1024K", "70050347", "07", "0347700507", 2048, 512, 2};
const Chip f403_1{"ZV32F403_1_1024K", "70050341", "01", "0341700501", 2048, 512, 2};
const Chip f407{"ZV32F407_512K", "700502C8", "08", "02C8700508", 2048, 256, 2};
const Chip f413{"ZV32F413_256K", "70030244", "04", "0244700304", 2048, 128, 2};
const Chip f435{"ZV32F435_4032K", "70084540", "0D", "454070080D", 4096, 1008, 1};

const std::string reconnected = "Interface_Close h=1001\nsleep 2000\nInterface_Open h=1001\nsleep 100\n"
                                "ZVBL_Init_BL h=1001 addr=0 rate=0 duty=0\nZVBL_ZV32ISP_TOOL h=1001\nZVBL_GET h=1001\n";

Lines OperationsTest::events;
CInitInfo OperationsTest::lastInit;
std::function<void(InfoType)> OperationsTest::onEvent;
bool OperationsTest::eventsInLog = false;
int OperationsTest::abendCode = 0;

OperationsTest::OperationsTest() {
    events.clear();
    onEvent = nullptr;
    eventsInLog = false;
    abendCode = 0;
    g_shareParameter.c_timeout = 5;
    image("");
}

OperationsTest::~OperationsTest() {
    com.reset();
    unsetenv("FILES_DOUBLE_SCRIPT");
}

CBootLoader &OperationsTest::connect(const Chip &chip, const std::string &capabilities) {
    writeMap(chip.name, chip.pid, chip.series, chip.sectorSize, chip.sectors, chip.sectorsPerBit);
    mapLine = "map sectors=" + std::to_string(chip.sectors) + " size=" + std::to_string(chip.sectorSize) +
              " spb=" + std::to_string(chip.sectorsPerBit) + "\n";
    image("");
    com.reset();
    ZvblDouble::reset(); // the first link again
    open(USART);
    library.script("ZVBL_GET_ID id=" + chip.identifier + "\nZVBL_GET caps=" + capabilities);
    EXPECT_EQ(bootLoader().Connect(), 0);
    EXPECT_EQ(bootLoader().InitDevice(), 0);
    library.script("");
    library.clearLog();
    return bootLoader();
}

void OperationsTest::image(const std::string &scriptLines) {
    const std::string script = path("files" + std::to_string(++scripts));
    std::ofstream(script) << mapLine << scriptLines << "\n";
    setenv("FILES_DOUBLE_SCRIPT", script.c_str(), 1);
}

int OperationsTest::run() {
    return run(*bootLoader().m_ObOperation);
}

int OperationsTest::runAnew() {
    return runAnew(*bootLoader().m_ObOperation);
}

int OperationsTest::runAnew(COperation &job) {
    events.clear();
    abendCode = 0;
    library.clearLog();
    return run(job);
}

int OperationsTest::run(COperation &job) {
    listen(job);
    job.Start();
    job.WaitUntilEnded();
    return abendCode;
}

// The library writes its log into a pipe here, and waits in the first call for somebody to read.
std::string OperationsTest::runCancelledAtFirstCall() {
    const std::string usualLog = std::getenv("ZVBL_DOUBLE_LOG"), pipe = path("pipe");
    EXPECT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    setenv("ZVBL_DOUBLE_LOG", pipe.c_str(), 1);
    COperation &job = *bootLoader().m_ObOperation;
    listen(job);
    job.Start();
    while (!job.IsContinue())
        std::this_thread::yield();
    job.Cancel();
    const int reader = ::open(pipe.c_str(), O_RDWR | O_NONBLOCK);
    job.WaitUntilEnded();
    setenv("ZVBL_DOUBLE_LOG", usualLog.c_str(), 1);
    std::string log(65536, '\0');
    log.resize(static_cast<std::size_t>(std::max<ssize_t>(::read(reader, log.data(), log.size()), 0)));
    ::close(reader);
    return log;
}

void OperationsTest::listen(COperation &job) {
    job.SetOperationInfoDelegate(reinterpret_cast<void *>(&OperationsTest::listener));
}

void *OperationsTest::listener(InfoType type, void *record) {
    std::string line;
    switch (type) {
    case INFO_TYPE_INIT:
        lastInit = *static_cast<CInitInfo *>(record);
        line = "INIT " + lastInit.m_strName;
        break;
    case INFO_TYPE_ACTION: line = "ACTION " + std::to_string(static_cast<CActionInfo *>(record)->m_iPercent); break;
    case INFO_TYPE_CANCEL: line = "CANCEL"; break;
    case INFO_TYPE_ABEND:
        line = "ABEND";
        abendCode = static_cast<CAbendInfo *>(record)->m_iResult;
        break;
    case INFO_TYPE_DONE: line = "DONE"; break;
    case INFO_TYPE_INFO: line = "INFO"; break;
    }
    events.push_back(line);
    if (eventsInLog)
        std::ofstream(std::getenv("ZVBL_DOUBLE_LOG"), std::ios::app) << "event " << line << "\n";
    if (onEvent)
        onEvent(type);
    return nullptr;
}

Lines OperationsTest::calls(const std::vector<std::string> &words) const {
    Lines found;
    std::istringstream text(library.log());
    for (std::string line; std::getline(text, line);) {
        const std::string word = line.substr(0, line.find(' '));
        if (std::find(words.begin(), words.end(), word) != words.end())
            found.push_back(line);
    }
    return found;
}

std::string OperationsTest::path(const std::string &name) const {
    return (directory / name).string();
}
