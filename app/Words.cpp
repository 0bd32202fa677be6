#include "app/Words.h"

#include <algorithm>
#include <iterator>

#include "foundation/ShareParameter.h"

namespace {

// MEANT: "--a" is a word that no option knows, although the usage text promises it; it swallows its value.
const char *const subOptionWords[] = {"--pn",   "--br",   "--db",  "--pr",   "--to",   "--auto",  "--all",   "--sec",
                                      "--erp",  "--drp",  "--ewp", "--dwp",  "--efap", "--efap1", "--efap2", "--dfap",
                                      "--eepp", "--depp", "--a",   "--addr", "--rate", "--dc",    "--speed", "--fn",
                                      "--v",    "--o",    "--get", "--set",  "--ft",   "--fs",    "--fda",   "--remap"};

} // namespace

bool Is_SubOption(const std::string &suboption) {
    const std::string word = ShareParameter::ToLower(suboption);
    return std::find(std::begin(subOptionWords), std::end(subOptionWords), word) != std::end(subOptionWords);
}

int ParityToInt(const std::string &parity) {
    return g_shareParameter.ParityToInt(ShareParameter::ToUpper(parity));
}
