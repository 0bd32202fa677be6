#include "app/Requests.h"
#include "device/Families.h"
#include "files/CFiles.h"
#include "files/TouchedSectors.h"
#include "foundation/Result.h"
#include "foundation/ShareParameter.h"
#include "look/Image.h"
#include "look/Sectors.h"
#include "look/line/Files.h"
#include "look/line/Options.h"
#include "look/line/Pieces.h"

// "-d".

namespace {

// What is written where, piece by piece as the sectors cut it.
struct Target {
    Pieces pieces;
    QList<int> sectors;
};

std::string endOf(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash);
}

// Another suffix further in front in the path is the one that the console goes by.
void checkSuffix(Line &line, const std::string &path) {
    CProgramFile file;
    if (file.ParseFileType(path) != file.ParseFileType(endOf(path)))
        line.error("odd path", path + ": the suffix of a directory is taken for that of the file",
                   "give it another name");
}

const char *misfit(CProgramFile &file, const CDevice &device) {
    if (file.m_Type == BIN) {
        const unsigned int start = g_shareParameter.c_address;
        return misfitOf(start, start + file.m_UiFileSize, device); // the sum wraps at 32 bits
    }
    for (const IMAGEELEMENT &element : file.m_lsElement)
        if (const char *reason = misfitOf(element.dwAddress, element.dwAddress + element.dwDataLength, device))
            return reason;
    return nullptr;
}

Target targetOf(CProgramFile &file, const CDevice &device) {
    Target target;
    unsigned int offset = 0;
    addressOffset(file, g_shareParameter.c_address, offset);
    for (const IMAGEELEMENT &element : file.m_lsElement)
        target.pieces.add(static_cast<unsigned int>(element.dwAddress) + offset, element.dwDataLength);
    for (const int sector : touchedSectors(file, g_shareParameter.c_address, offset, device.m_ISectorSize))
        if (!target.sectors.contains(sector & 0xFFFF)) // the erase takes 16 bits
            target.sectors.append(sector & 0xFFFF);
    return target;
}

// The same without a chip: nothing cuts the image.
Target uncutTarget(const ImageRead &image, bool isFlat) {
    Target target;
    for (const ImageRange &range : image.ranges)
        target.pieces.add(isFlat ? g_shareParameter.c_address : range.first, range.bytes.size());
    return target;
}

void tellTarget(Line &line, const Target &target, bool isErasing) {
    Section &action = line.action("download");
    action.fact("file", g_shareParameter.c_filename);
    if (isErasing && line.device != nullptr)
        action.fact("erases", sectorsValue(target.sectors));
    action.fact("bytes", target.pieces.bytes());
    target.pieces.tell("writes", action);
    action.fact("verify", g_shareParameter.c_Verify);
    tellTime(action, line.link, target.pieces.bytes());
}

// There is no lower bound: sector 65535 is erased for it, and it is written.
void checkLowest(Line &line, const Target &target) {
    if (target.pieces.lowest() < ZVCHIP_FLASH_BASE_ADDRESS)
        line.error("out of flash", "addresses below 08000000 are not refused, and no flash is there",
                   "link it to 08000000");
}

// A sector that was not erased on the line keeps bits that the image does not have.
void checkErased(Line &line, const Target &target) {
    if (line.allErased)
        return;
    QList<int> dirty;
    for (const int sector : target.sectors)
        if (!line.erasedSectors.contains(sector))
            dirty.append(sector);
    if (!dirty.isEmpty())
        line.error("not erased",
                   "behind an -e this erases nothing, and sectors " + rangesText(dirty) + " are not erased",
                   "write -e --all, or no -e at all");
    else if (line.device == nullptr)
        line.warn("not erased",
                  "behind an -e this erases nothing: whether the sectors are erased takes --chip to tell");
}

void checkOptimize(Line &line) {
    if (g_shareParameter.c_optimize && !line.allErased)
        line.warn("old bytes stay", "--o leaves sectors alone that are blank in the image: what they held stays",
                  "put -e --all in front");
}

// What an earlier "-d" has set holds on.
void checkInherited(Line &line, int start, const ShareParameter &before) {
    bool verify = false;
    bool optimize = false;
    bool address = false;
    for (int i = start; i < line.index && i < line.argc; ++i) {
        const SubWord *sub = subWord(OptionId::download, line.argv[i]);
        verify = verify || (sub != nullptr && sub->id == SubId::verify);
        optimize = optimize || (sub != nullptr && sub->id == SubId::optimize);
        address = address || (sub != nullptr && sub->id == SubId::address);
    }
    if ((before.c_Verify && !verify) || (before.c_optimize && !optimize))
        line.warn("holds on", "--v and --o of an earlier -d count here as well");
    if (before.c_address != ZVCHIP_FLASH_BASE_ADDRESS && !address)
        line.warn("holds on", "--addr of an earlier -d counts here as well, for a binary");
}

int downloadWithChip(Line &line) {
    const std::string &path = g_shareParameter.c_filename;
    CDevice &device = *line.device;
    CProgramFile whole;
    if (const int result = whole.Open(path, &device))
        return line.refuse(OP_DOWNLOAD_FAILD, path + ": " + CResult::GetInfoStringName(result),
                           "zv32-look image " + path);
    if (const char *reason = misfit(whole, device))
        return line.refuse(OP_DOWNLOAD_FAILD, path + ": " + reason,
                           "zv32-look image " + path + " --chip " + device.m_StrTarget);
    CProgramFile file;
    file.SetOptimizeForOpen(g_shareParameter.c_optimize);
    if (file.Open(path, &device) != 0 || file.m_lsElement.isEmpty())
        return line.refuse(OP_DOWNLOAD_FAILD, path + ": an image without a byte to write");
    const Target target = targetOf(file, device);
    if (!line.erased && familyOf(device).eraseBlock != 0)
        return line.refuse(OP_DOWNLOAD_FAILD, "on this family -d cannot erase, and says \"Unknown error!\"",
                           "put -e --all in front");
    checkLowest(line, target);
    tellTarget(line, target, !line.erased);
    if (line.erased)
        checkErased(line, target);
    return OP_SUCCESS;
}

int downloadWithout(Line &line) {
    const std::string &path = g_shareParameter.c_filename;
    const ImageRead image = readImage(path);
    if (!image.isRead)
        return line.refuse(OP_DOWNLOAD_FAILD, path + ": " + image.refusal, "zv32-look image " + path);
    if (image.ranges.empty())
        return line.refuse(OP_DOWNLOAD_FAILD, path + ": an image without a byte to write");
    CProgramFile type;
    const Target target = uncutTarget(image, type.ParseFileType(path) == BIN);
    checkLowest(line, target);
    tellTarget(line, target, !line.erased);
    if (line.erased)
        checkErased(line, target);
    return OP_SUCCESS;
}

} // namespace

int lookAtDownload(Line &line) {
    if (!line.linked)
        return line.withoutLink(OP_DOWNLOAD_FAILD);
    const ShareParameter before = g_shareParameter;
    const int start = line.index;
    SubOptionWalk walk(line.argc, line.argv, line.index);
    if (!readDownload(walk))
        return walk.atBadWord() ? line.badWord(OP_DOWNLOAD_FAILD)
                                : line.refuse(OP_DOWNLOAD_FAILD, refusedName(walk.value()));
    checkInherited(line, start, before);
    checkOptimize(line);
    const std::string &path = g_shareParameter.c_filename;
    if (path.empty())
        return line.refuse(OP_DOWNLOAD_FAILD, "no file is named", "add --fn PATH");
    if (!canBeRead(line, path))
        return line.refuse(OP_DOWNLOAD_FAILD, "nothing to program");
    checkSuffix(line, path);
    return line.device != nullptr ? downloadWithChip(line) : downloadWithout(line);
}
