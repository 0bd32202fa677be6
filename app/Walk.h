#pragma once

class CCom;

// The link. Null until a connection command has built one; a later one replaces it. It lasts to the end of the
// process.
extern CCom *m_obCCom;

// Acts on the words of the command line, without the program's name, from left to right, each option at once.
// Returns the exit status. argv is closed by a null entry.
int walkCommandLine(int argc, char **argv);

// Closes the link if there is one and it is open.
void closeLink(CCom *obCCom);
