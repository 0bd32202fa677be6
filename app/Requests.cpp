#include "app/Requests.h"

#include <QString>

#include "app/FileNames.h"
#include "app/Sectors.h"
#include "device/Device.h"
#include "device/Families.h"
#include "foundation/ShareParameter.h"

namespace {

struct NoContext {};

int setAddress(SubOptionWalk &walk, unsigned int &address) {
    if (walk.hasValue())
        address = g_shareParameter.StringToUInt32(walk.value(), 16);
    return OP_SUCCESS;
}

int setDownloadAddress(SubOptionWalk &walk, NoContext &) {
    return setAddress(walk, g_shareParameter.c_address);
}

int setVerify(SubOptionWalk &, NoContext &) {
    g_shareParameter.c_Verify = true;
    return OP_SUCCESS;
}

int setOptimize(SubOptionWalk &, NoContext &) {
    g_shareParameter.c_optimize = true;
    return OP_SUCCESS;
}

int setFile(SubOptionWalk &walk, NoContext &) {
    if (!IsValidFileName(walk.value()))
        return OP_BAD_PARAM;
    g_shareParameter.c_filename = walk.value();
    return OP_SUCCESS;
}

const SubOption<NoContext> downloadWords[] = {{SubId::address, setDownloadAddress},
                                              {SubId::verify, setVerify},
                                              {SubId::optimize, setOptimize},
                                              {SubId::file, setFile}};

struct Uploading {
    const CDevice *device;
    UploadRequest &request;
};

int addSectors(SubOptionWalk &walk, Uploading &uploading) {
    return appendSectors(walk.value(), uploading.device, uploading.request.sectors) ? OP_SUCCESS : OP_BAD_PARAM;
}

int setUploadFile(SubOptionWalk &walk, Uploading &uploading) {
    uploading.request.fileName = walk.value();
    return IsValidFileName(uploading.request.fileName) ? OP_SUCCESS : OP_BAD_PARAM;
}

const SubOption<Uploading> uploadWords[] = {{SubId::sectors, addSectors}, {SubId::file, setUploadFile}};

const SubOption<unsigned int> runWords[] = {{SubId::address, setAddress}};

QString textOf(const SubOptionWalk &walk) {
    return QString::fromStdString(walk.value());
}

int setRemap(SubOptionWalk &walk, const bool &isUsart) {
    if (isUsart) {
        g_shareParameter.c_bRemapFlag = textOf(walk).toInt() != 0;
        g_shareParameter.c_bNeedRemap = g_shareParameter.c_bRemapFlag;
    }
    return OP_SUCCESS;
}

int setType(SubOptionWalk &walk, const bool &) {
    g_shareParameter.c_SPIMType = static_cast<BYTE>(textOf(walk).toShort());
    return OP_SUCCESS;
}

int setSize(SubOptionWalk &walk, const bool &) {
    g_shareParameter.c_SPIMSize = textOf(walk).toUInt() << 10; // MB to KB
    return OP_SUCCESS;
}

int setFlashDA(SubOptionWalk &walk, const bool &) {
    g_shareParameter.c_SPIMDA = g_shareParameter.StringToUInt32(wordAt(walk.argc, walk.argv, walk.argIndex), 16);
    if (g_shareParameter.c_SPIMDA != 0)
        GetUserSystemDataFile(walk.argc, walk.argv);
    return OP_SUCCESS;
}

const SubOption<const bool> spimWords[] = {
    {SubId::remap, setRemap}, {SubId::flashType, setType}, {SubId::flashSize, setSize}, {SubId::flashKeys, setFlashDA}};

} // namespace

bool readDownload(SubOptionWalk &walk) {
    NoContext nothing;
    return runSubOptions(walk, OptionId::download, downloadWords, nothing) == OP_SUCCESS && !walk.atBadWord();
}

bool readUpload(SubOptionWalk &walk, const CDevice *device, UploadRequest &request) {
    Uploading uploading{device, request};
    return runSubOptions(walk, OptionId::upload, uploadWords, uploading) == OP_SUCCESS && !walk.atBadWord();
}

bool readRun(SubOptionWalk &walk, unsigned int &address) {
    address = ZVCHIP_FLASH_BASE_ADDRESS;
    return runSubOptions(walk, OptionId::run, runWords, address) == OP_SUCCESS && !walk.atBadWord();
}

bool readSpim(SubOptionWalk &walk, bool isUsart) {
    const bool context = isUsart;
    return runSubOptions(walk, OptionId::spim, spimWords, context) == OP_SUCCESS && !walk.atBadWord();
}

BYTE spimTypeByte(BYTE type) {
    // MEANT: no type at all is 0x90 too, although the usage text promises 1 as the default.
    return type == 1 ? 0x91 : 0x90;
}

Named readTransfer(SubOptionWalk &walk, bool keepsName, std::string &fileName) {
    if (!walk.hasValue())
        return Named::nothing;
    const bool named = walk.value() == "--fn";
    walk.advance();
    fileName = walk.value();
    if (named && keepsName)
        g_shareParameter.c_filename = fileName;
    // MEANT: reported is the word where the path should stand, also when it is "--fn" that is missing.
    return named && IsValidFileName(fileName) ? Named::file : Named::refused;
}

bool readOtpFile(SubOptionWalk &walk) {
    if (subWord(OptionId::otp, walk.word()) == nullptr)
        return true;
    if (!IsValidOTPFileName(walk.value()))
        return false;
    g_shareParameter.c_otpfilename = walk.value();
    return true;
}

bool readConfirmation(SubOptionWalk &walk, const CDevice *device) {
    if (device != nullptr && familyOf(*device).has(confirmsHighProtection))
        return ShareParameter::ToLower(walk.value()) == "--y";
    walk.takeBack();
    return true;
}

const char *misfitOf(unsigned long long start, unsigned long long end, const CDevice &device) {
    if (start < ZVCHIP_SPIM_BASE_ADDRESS) {
        const quint64 flashSzie = static_cast<quint64>(device.m_IFlashSize) * 1024;
        return end <= ZVCHIP_FLASH_BASE_ADDRESS + flashSzie
                   ? nullptr
                   : "The file download address or file size out of flash range!";
    }
    if (!g_shareParameter.c_haveSPIM)
        return "No operation can be performed without using SPIM!";
    const quint64 extFlashSzie = static_cast<quint64>(g_shareParameter.c_SPIMSize) * 1024;
    return end <= ZVCHIP_SPIM_BASE_ADDRESS + extFlashSzie ? nullptr
                                                          : "The file download address or file size out of SPIM range!";
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
