#pragma once

#include <string>
#include <vector>

class CBootLoader;
class CCom;

// One sub-option of a connection command: its word in lower case, and where its value goes.
struct Setting {
    const char *word;
    void (*read)(const std::string &value);
};

// What makes a link command different from the others.
struct LinkCommand {
    const char *firstLine;
    char recordType; // the interface type of the shared record
    char type;       // the interface type of the link
    int connectTime; // reply time limit of the connect, ms
    std::vector<Setting> settings;
    void (*setLine)(CCom &); // before the port opens
    void (*setBootSwitch)(CCom &);
    void (*setBootLoader)(CBootLoader &); // before the connect
};

extern const LinkCommand usartCommand;
extern const LinkCommand i2cCommand;
extern const LinkCommand canCommand;
extern const LinkCommand spiCommand;

// The number in a port name, from its first digit on; 0 if there is none.
int portNumberOf(const std::string &portName);
