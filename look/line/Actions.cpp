#include "app/LinkSettings.h"
#include "app/Requests.h"
#include "app/Sectors.h"
#include "foundation/ShareParameter.h"
#include "look/Sectors.h"
#include "look/line/Options.h"
#include "look/line/Values.h"

// The options that a file is no part of.

namespace {

const char *const parities[] = {"no", "odd", "even"};

void tellSettings(Section &action, OptionId option) {
    const ShareParameter &record = g_shareParameter;
    if (option == OptionId::dfu) {
        action.fact("device", "the first on the bus, or the one that ZVBL_DFU names");
        return;
    }
    action.fact("port", record.str_portName);
    if (option == OptionId::usart) {
        action.fact("rate", {record.c_BaudRate, std::to_string(record.c_BaudRate) + " baud"});
        action.fact("data bits", record.c_DataBits);
        action.fact("parity", parities[record.c_parity]);
        action.fact("time limit", {record.c_timeout, std::to_string(record.c_timeout) + " s"});
        if (record.c_autoConnectFlag)
            action.fact("auto", record.c_autoConnectOption);
    }
    if (option == OptionId::i2c)
        action.fact("address", {record.addr, "0x" + addressValue(record.addr).text});
    if (option == OptionId::can)
        action.fact("speed", record.uiCANSpeed);
    if (option == OptionId::spi)
        action.fact("speed", record.ulSPISpeed);
}

// The sectors of a range. False, with the refusal told, where the console refuses it; a chip that is not known has any.
bool takeSectors(Line &line, const std::string &word, int status, QList<int> &sectors) {
    const SectorRange range = parseSectorRange(word);
    bool taken = false;
    if (line.device != nullptr) {
        taken = appendSectors(word, line.device, sectors);
    } else if (range.begin >= 0 && range.end >= range.begin) {
        CDevice widest;
        widest.m_ISectorSize = 1024;
        widest.m_IFlashSize = 1 << 20;
        taken = appendSectors(word, &widest, sectors);
    }
    if (!taken)
        line.refuse(status, "sectors \"" + word + "\" of the " +
                                (line.device == nullptr ? std::string("chip") : line.device->m_StrTarget));
    return taken;
}

struct Erasing {
    Line &line;
    int actions;
};

int eraseAll(SubOptionWalk &, Erasing &erasing) {
    ++erasing.actions;
    Section &action = erasing.line.action("erase everything");
    const CDevice *device = erasing.line.device;
    if (device != nullptr)
        action.fact("bytes", device->m_IFlashSize * 1024);
    if (g_shareParameter.c_haveSPIM)
        action.fact("spim", "erased as well");
    erasing.line.allErased = true;
    return OP_SUCCESS;
}

int eraseSectors(SubOptionWalk &walk, Erasing &erasing) {
    ++erasing.actions;
    QList<int> sectors;
    if (!takeSectors(erasing.line, walk.value(), OP_MCU_SECERASE_FAILD, sectors))
        return OP_MCU_SECERASE_FAILD;
    Section &action = erasing.line.action("erase sectors");
    action.fact("sectors", sectorsValue(sectors));
    if (const CDevice *device = erasing.line.device)
        action.fact("bytes", static_cast<unsigned int>(sectors.size()) * device->m_ISectorSize);
    for (const int sector : sectors)
        erasing.line.erasedSectors.insert(sector);
    return OP_SUCCESS;
}

const SubOption<Erasing> eraseWords[] = {{SubId::all, eraseAll}, {SubId::sectors, eraseSectors}};

struct Protecting {
    Line &line;
    int actions;
};

Section &protectAction(Protecting &protecting, const std::string &name) {
    ++protecting.actions;
    return protecting.line.action(name);
}

int protectAccess(SubOptionWalk &, Protecting &protecting) {
    protectAction(protecting, "protect access").fact("level", 1);
    protecting.line.lost = "the flash is protected by then: the chip refuses it";
    return OP_SUCCESS;
}

int protectAccessHigh(SubOptionWalk &walk, Protecting &protecting) {
    if (!isConfirmed(walk, protecting.line.device))
        return protecting.line.refuse(OP_EFAP2_FAILD, "this family needs --y right behind --efap2",
                                      "write --efap2 --y, if it is to be for ever");
    protectAction(protecting, "protect access").fact("level", 2);
    protecting.line.warn("for ever", "nobody can take the high level away again: no access, no new program");
    protecting.line.lost = "the flash is protected by then: the chip refuses it";
    return OP_SUCCESS;
}

int unprotectAccess(SubOptionWalk &, Protecting &protecting) {
    protectAction(protecting, "remove access protection");
    protecting.line.warn("flash is lost", "removing the access protection erases the whole flash");
    protecting.line.lost.clear();
    return OP_SUCCESS;
}

int protectSectors(SubOptionWalk &walk, Protecting &protecting) {
    QList<int> sectors;
    if (!takeSectors(protecting.line, walk.value(), OP_EEPP_FAILD, sectors))
        return OP_EEPP_FAILD;
    protectAction(protecting, "protect sectors").fact("sectors", sectorsValue(sectors));
    return OP_SUCCESS;
}

int unprotectSectors(SubOptionWalk &, Protecting &protecting) {
    protectAction(protecting, "remove sector protection");
    return OP_SUCCESS;
}

const SubOption<Protecting> protectionWords[] = {{SubId::protectAccess, protectAccess},
                                                 {SubId::protectAccessHigh, protectAccessHigh},
                                                 {SubId::unprotectAccess, unprotectAccess},
                                                 {SubId::protectSectors, protectSectors},
                                                 {SubId::unprotectSectors, unprotectSectors}};

} // namespace

int lookAtConnection(Line &line, OptionId option) {
    if (line.linked)
        line.warn("second connection", "the first one stays open, and is used no more");
    Section &action = line.action("connect");
    if (option == OptionId::dfu) {
        ++line.index;
    } else {
        SubOptionWalk walk(line.argc, line.argv, line.index, SubOptionWalk::leavesLastWord);
        if (!readLinkSettings(walk, option))
            return line.badWord(OP_CONNECT_FAILD);
    }
    tellSettings(action, option);
    if (option != OptionId::dfu && g_shareParameter.str_portName.empty())
        line.error("no port", "no port is named", "--pn NAME");
    if (option != OptionId::dfu && g_shareParameter.c_portNumber == -1)
        return line.refuse(OP_CONNECT_FAILD, "the number in the port's name");
    line.linked = true;
    line.link = option;
    line.lost.clear();
    return OP_SUCCESS;
}

int lookAtErase(Line &line) {
    if (!line.linked)
        return line.withoutLink(OP_CONNECT_FAILD);
    Erasing erasing{line, 0};
    SubOptionWalk walk(line.argc, line.argv, line.index);
    const int status = runSubOptions(walk, OptionId::erase, eraseWords, erasing);
    if (walk.atBadWord())
        return line.badWord(OP_BAD_PARAM);
    if (status == OP_SUCCESS && erasing.actions == 0)
        line.error("does nothing", "-e erases nothing by itself, and a -d behind it does not erase either",
                   "write -e --all");
    line.erased = line.erased || status == OP_SUCCESS;
    return status;
}

int lookAtProtection(Line &line) {
    if (!line.linked)
        return line.withoutLink(OP_CONNECT_FAILD);
    Protecting protecting{line, 0};
    SubOptionWalk walk(line.argc, line.argv, line.index);
    const int status = runSubOptions(walk, OptionId::protection, protectionWords, protecting);
    if (walk.atBadWord())
        return line.badWord(OP_BAD_PARAM);
    if (status == OP_SUCCESS && protecting.actions == 0)
        line.error("does nothing", "-p protects nothing by itself, and ends with status 0", "add --efap or another");
    return status;
}

int lookAtRun(Line &line) {
    if (!line.linked)
        return line.withoutLink(OP_RUN_AT_ADDR_FAILD);
    SubOptionWalk walk(line.argc, line.argv, line.index);
    unsigned int address = 0;
    if (!readRun(walk, address))
        return line.badWord(OP_RUN_AT_ADDR_FAILD);
    line.action("run").fact("address", addressValue(address));
    line.note("status", "it says \"Your code is running\" when the jump fails too: status 12 tells");
    line.lost = "the program runs by then: the chip has to be reset into its bootloader first";
    return OP_SUCCESS;
}

int lookAtSpim(Line &line) {
    if (!line.linked)
        return line.withoutLink(OP_ENSPIM_FAILD);
    SubOptionWalk walk(line.argc, line.argv, line.index);
    bool read = false;
    try {
        read = readSpim(walk, line.link == OptionId::usart);
    } catch (const std::exception &) {
        return line.refuse(OP_ENSPIM_FAILD, "the line ended where a value was needed");
    }
    if (!read)
        return line.badWord(OP_ENSPIM_FAILD);
    const ShareParameter &record = g_shareParameter;
    Section &action = line.action("enable spim");
    action.fact("type", record.c_SPIMType == 1 ? 1 : 2);
    action.fact("size", {record.c_SPIMSize,
                         record.c_SPIMSize == 0 ? "as the chip finds it" : std::to_string(record.c_SPIMSize) + " KB"});
    action.fact("encrypted from", addressValue(record.c_SPIMDA));
    action.fact("remap", record.c_bRemapFlag);
    g_shareParameter.c_haveSPIM = true;
    if (line.device != nullptr)
        line.device->m_haveBank3 = true;
    return OP_SUCCESS;
}
