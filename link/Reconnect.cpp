#include "link/Reconnect.h"

#include <QThread>

#include "foundation/Result.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

namespace {

constexpr int attempts = 5;
constexpr unsigned long attemptMilliseconds = 2000;
constexpr unsigned long bootloaderMilliseconds = 100;

} // namespace

int reopenAfterReset(HANDLE handle) {
    int status = Interface_Close(handle);
    for (int attempt = 0; attempt < attempts; ++attempt) {
        QThread::msleep(attemptMilliseconds);
        if (!CComManager::InitZVDFUDeviceList())
            return CResult::SUCCESS;
        status = Interface_Open(handle);
        if (status == 0)
            return CResult::SUCCESS;
    }
    return CResult::Convert(status);
}

void waitForBootloader() {
    QThread::msleep(bootloaderMilliseconds);
}

int CBootLoader::Reconnect() {
    const int result = reopenAfterReset(m_handle);
    if (result != CResult::SUCCESS)
        return result;
    waitForBootloader();
    return Connect();
}
