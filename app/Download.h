#pragma once

#include <string>

class CBootLoader;
class CCom;

// "-d". erasedFlag: an "-e" has succeeded before, which turns the job's own erase off.
bool Download(int argc, char **argv, int &arg_index, bool erasedFlag, CCom *obCCom);

// Whether the image file exists, opens, and fits into flash or SPIM; says so if not. The address, 32 bits, counts
// for binary files only.
bool DownloadFileAndAddressCheck(const std::string &fileName, unsigned int downlaodAddress,
                                 CBootLoader *m_obBootLoader);
