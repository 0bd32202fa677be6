#pragma once

#include <memory>

#include "app/Words.h"

class CBootLoader;
class CCom;

// What makes a link command different from the others.
struct LinkCommand {
    OptionId option;
    const char *firstLine;
    char recordType;         // the interface type of the shared record
    char type;               // the interface type of the link
    int connectTime;         // reply time limit of the connect, ms
    void (*setLine)(CCom &); // before the port opens
    void (*setBootSwitch)(CCom &);
    void (*setBootLoader)(CBootLoader &); // before the connect
};

extern const LinkCommand usartCommand;
extern const LinkCommand i2cCommand;
extern const LinkCommand canCommand;
extern const LinkCommand spiCommand;

// A closed link by the shared record, with its line settings.
std::unique_ptr<CCom> makeLink(const LinkCommand &command);

// On an open link: brings the bootloader into its command state, and gives it the time limit of the record. A CResult
// code.
int startBootloader(const LinkCommand &command, CCom &link);
