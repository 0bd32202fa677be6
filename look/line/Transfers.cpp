#include <sys/stat.h>

#include "app/OtpFile.h"
#include "app/Requests.h"
#include "app/Sectors.h"
#include "files/CFiles.h"
#include "foundation/ShareParameter.h"
#include "look/Image.h"
#include "look/OptionFacts.h"
#include "look/OtpFacts.h"
#include "look/Sectors.h"
#include "look/line/Files.h"
#include "look/line/Options.h"
#include "look/line/Pieces.h"

// "-u", "-usd" and "-otp".

namespace {

void tellReplaced(Line &line, const std::string &path) {
    struct stat info;
    if (stat(path.c_str(), &info) == 0)
        line.note("replaced", path + " is there, and is replaced");
    const std::size_t slash = path.rfind('/');
    const std::string directory = slash == 0 ? "/" : path.substr(0, slash);
    if (stat(directory.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
        line.error("no directory", directory + " is none: nothing can be saved there");
}

struct Transferring {
    Line &line;
    int actions;
};

int get(SubOptionWalk &walk, Transferring &transferring) {
    std::string path;
    switch (readTransfer(walk, false, path)) {
    case Named::nothing: return OP_SUCCESS;
    case Named::refused: return transferring.line.refuse(OP_GET_USD_FAILD, refusedName(path));
    case Named::file: break;
    }
    ++transferring.actions;
    transferring.line.action("get option bytes").fact("file", path);
    tellReplaced(transferring.line, path);
    return OP_SUCCESS;
}

int set(SubOptionWalk &walk, Transferring &transferring) {
    Line &line = transferring.line;
    std::string path;
    switch (readTransfer(walk, true, path)) {
    case Named::nothing: return OP_SUCCESS;
    case Named::refused: return line.refuse(OP_SET_USD_FAILD, refusedName(path));
    case Named::file: break;
    }
    ++transferring.actions;
    if (!canBeRead(line, path))
        return line.refuse(OP_SET_USD_FAILD, "nothing to set");
    const ImageRead image = readImage(path, false);
    if (!image.isRead || image.ranges.empty())
        return line.refuse(OP_SET_USD_FAILD, path + ": " + (image.isRead ? "without a byte" : image.refusal));
    if (const std::string reason = optionBytesRefusal(image, line.device); !reason.empty())
        return line.refuse(OP_SET_USD_FAILD, path + ": " + reason);
    line.action("set option bytes").fact("file", path);
    return OP_SUCCESS;
}

const SubOption<Transferring> dataWords[] = {{SubId::get, get}, {SubId::set, set}};

// The elements that the console makes of the sectors: one walk through the map, which finds no number that is lower
// than one before it.
bool tellReads(Line &line, const QList<int> &sectors, Section &action) {
    CProgramFile file;
    file.SetSectorIndexsForCreate(sectors, sectors.size());
    file.SetBank3SizeForCreate(static_cast<int>(g_shareParameter.c_SPIMSize));
    if (file.Create(line.device) != 0 || file.m_lsElement.isEmpty())
        return false;
    Pieces pieces;
    for (const IMAGEELEMENT &element : file.m_lsElement)
        pieces.add(element.dwAddress, element.dwDataLength);
    action.fact("bytes", pieces.bytes());
    pieces.tell("reads", action);
    tellTime(action, line.link, pieces.bytes());
    if (file.m_lsElement.size() != sectors.size())
        line.warn("sectors", "only " + std::to_string(file.m_lsElement.size()) + " of the sectors are read",
                  "name sectors in rising order");
    return true;
}

int tellUpload(Line &line, const UploadRequest &request) {
    Section &action = line.action("upload");
    action.fact("file", request.fileName);
    tellReplaced(line, request.fileName);
    if (line.device == nullptr) {
        action.fact("sectors", request.sectors.isEmpty() ? Value("all of the flash") : sectorsValue(request.sectors));
        return OP_SUCCESS;
    }
    const QList<int> sectors = request.sectors.isEmpty() ? GetAllSectors(line.device) : request.sectors;
    action.fact("sectors", sectorsValue(sectors));
    return tellReads(line, sectors, action) ? OP_SUCCESS
                                            : line.refuse(OP_MCU_UPLOAD_FAILD, "not one of the sectors can be read");
}

} // namespace

int lookAtUpload(Line &line) {
    if (!line.linked)
        return line.withoutLink(OP_MCU_UPLOAD_FAILD);
    CDevice widest;
    widest.m_ISectorSize = 1024;
    widest.m_IFlashSize = 1 << 20;
    UploadRequest request;
    SubOptionWalk walk(line.argc, line.argv, line.index);
    if (!readUpload(walk, line.device != nullptr ? line.device : &widest, request))
        return walk.atBadWord() ? line.badWord(OP_MCU_UPLOAD_FAILD)
                                : line.refuse(OP_MCU_UPLOAD_FAILD, refusedName(walk.value()));
    if (request.fileName.empty())
        return line.refuse(OP_MCU_UPLOAD_FAILD, "no file is named");
    return tellUpload(line, request);
}

int lookAtUserSystemData(Line &line) {
    if (!line.linked)
        return line.withoutLink(OP_CONNECT_FAILD);
    Transferring transferring{line, 0};
    SubOptionWalk walk(line.argc, line.argv, line.index);
    const int status = runSubOptions(walk, OptionId::userSystemData, dataWords, transferring);
    if (walk.atBadWord())
        return line.badWord(OP_BAD_PARAM);
    if (status == OP_SUCCESS && transferring.actions == 0)
        line.error("does nothing", "-usd does nothing by itself, and ends with status 0", "add --get --fn PATH");
    return status;
}

int lookAtOtp(Line &line) {
    if (!line.linked)
        return line.withoutLink(OP_CONNECT_FAILD);
    SubOptionWalk walk(line.argc, line.argv, line.index);
    while (walk.next())
        if (!readOtpFile(walk)) {
            line.error("does nothing", "\"" + walk.value() + "\" is no path that ends in ZVTP: nothing is written",
                       "write ./NAME.ZVTP");
            return OP_SUCCESS;
        }
    if (walk.atBadWord())
        return line.badWord(OP_BAD_PARAM);
    const std::string &path = g_shareParameter.c_otpfilename;
    if (path.empty()) {
        line.error("does nothing", "without a file nothing is written, and the status is 0", "add --fn PATH");
        return OP_SUCCESS;
    }
    if (!canBeRead(line, path)) {
        line.error("does nothing", "nothing is written, and the status is 0");
        return OP_SUCCESS;
    }
    return tellOtp(path, line.device, line.action("write otp")) ? OP_SUCCESS
                                                                : line.refuse(OTP_FAILED, path + ": too large");
}
