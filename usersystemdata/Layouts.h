#pragma once

#include "usersystemdata/CUserSystemData.h"

// The bytes of the compact form and the fields that they stand for.

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
