#pragma once

#include "usersystemdata/CUserSystemData.h"

// Which byte of the compact form holds what, per family.

enum class OptionItem { fap, ssb, ssb1, data, epp, eopb0, res1, bank3Key };

// A row stands for `count` bytes from `firstByte` on, which hold the item's bytes from `firstIndex` on.
struct LayoutRow {
    OptionItem item;
    int firstByte;
    int count; // toTheEnd: up to the end of the compact form
    int firstIndex;
};

constexpr int toTheEnd = -1;

struct OptionLayout {
    const LayoutRow *first;
    const LayoutRow *last; // one after
};

struct OptionLengths {
    int compact;
    int data;
    int epp;
};

// The rows of a family, a MCUSERIALS value.
OptionLayout optionLayout(int family);

// Lengths in bytes. The sector size in bytes.
OptionLengths optionLengths(int family, int bidVersion, int sectorSize);

// One byte of the user system data.
BYTE &optionByte(CUserSystemData &data, OptionItem item, int index);

// Calls visit(compact byte number, byte of the fields) for every byte that an item fills.
template <typename Visit>
void forEachOptionByte(CUserSystemData &data, Visit visit) {
    const OptionLayout layout = optionLayout(data.m_MCUSerials);
    for (const LayoutRow *row = layout.first; row != layout.last; ++row) {
        const int end = row->count == toTheEnd ? data.m_nUserSystemDataLen : row->firstByte + row->count;
        for (int i = row->firstByte; i < end && i < data.m_nUserSystemDataLen; ++i)
            visit(i, optionByte(data, row->item, row->firstIndex + i - row->firstByte));
    }
}
