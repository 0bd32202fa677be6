#pragma once

#include <QList>

class CBootLoader;

// Erase and program protection as the target shows it, by bit number. Results are 0 or a CResult code.
namespace protectionbits {

// Reads the numbers of the bits that protect something. SYS_ACCESS_PROTECTION if the chip refuses to
// be read.
int readProtected(CBootLoader &control, QList<int> &bits);

// The bits that cover the sectors, each once; the whole flash for an empty list. Needs the user system
// data read before. PROGRAM_INPUT_PARAMS_ERROR for a sector that no bit covers.
int covering(const CBootLoader &control, const QList<int> &sectors, QList<int> &bits);

} // namespace protectionbits
