#include "app/Otp.h"

#include "app/Link.h"
#include "app/OtpFile.h"
#include "app/Report.h"
#include "app/Requests.h"
#include "app/SubOptions.h"
#include "link/CCom.h"
#include "link/ZVBLLIB.h"

namespace {

bool write(CCom *obCCom, unsigned int address, BYTE *data, unsigned int length) {
    return ZVBL_DNLOAD(obCCom->m_handle, address, data, length, 0) == 0;
}

int fail(const char *text) {
    printLine(text);
    return 0;
}

int program(CCom *obCCom) {
    InitOTPAndLOCKInfo();
    if (!OTPProjectFileOpen(g_shareParameter.c_otpfilename)) {
        printLine("Get OTP data from the configuration file failed!");
        return OTP_FAILED;
    }
    if (!WriteOTPData(obCCom))
        return OTP_FAILED;
    printLine("set OTP data to device successfully!");
    return OP_SUCCESS;
}

} // namespace

void InitOTPAndLOCKInfo() {
    const OtpArea &area = familyOf(m_obCCom).otp;
    g_shareParameter.OTP_Data_Address = area.dataAddress;
    g_shareParameter.OTP_Data_Length = area.dataLength;
    g_shareParameter.OTP_Lock_Address = area.lockAddress;
    g_shareParameter.OTP_Lock_Length = area.lockLength;
}

int WriteOTPData(CCom *obCCom) {
    if (obCCom == nullptr)
        return 0;
    const std::vector<OtpWrite> writes =
        otpWrites(m_listWriteOTPData, g_shareParameter.OTP_Data_Address, g_shareParameter.OTP_Lock_Address);
    for (const OtpWrite &one : writes)
        if (!write(obCCom, one.address, one.data, one.length))
            return fail(one.isLock ? "Write OTP lock failed!" : "Write OTP data failed!");
    return 1;
}

int DownLoadOTPData(int argc, char **argv, int &arg_index, CCom *obCCom) {
    if (!hasBootLoader(obCCom))
        return OP_CONNECT_FAILD;
    SubOptionWalk walk(argc, argv, arg_index);
    while (walk.next()) {
        // MEANT: once per sub-option, whichever it is.
        printLine("Set OTP data to device");
        printLine("running...");
        if (!readOtpFile(walk))
            return refuse(walk, OP_SUCCESS);
    }
    if (walk.atBadWord()) {
        WriteInforAndWaitInput(argv[arg_index]); // MEANT: the word alone
        return OP_BAD_PARAM;
    }
    return program(obCCom);
}
