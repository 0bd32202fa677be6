#include "usersystemdata/Layouts.h"

namespace {

constexpr BYTE CUserSystemData::*bank3Keys[] = {
    &CUserSystemData::BANK3KEY0, &CUserSystemData::BANK3KEY1, &CUserSystemData::BANK3KEY2, &CUserSystemData::BANK3KEY3,
    &CUserSystemData::BANK3KEY4, &CUserSystemData::BANK3KEY5, &CUserSystemData::BANK3KEY6, &CUserSystemData::BANK3KEY7,
};

} // namespace

BYTE &optionByte(CUserSystemData &data, OptionItem item, int index) {
    switch (item) {
    case OptionItem::fap: return data.FAP;
    case OptionItem::ssb: return data.SSB;
    case OptionItem::ssb1: return data.SSB1;
    case OptionItem::data: return data.DATA[index];
    case OptionItem::epp: return data.EPP[index];
    case OptionItem::eopb0: return data.EOPB0;
    case OptionItem::res1: return data.RES1;
    case OptionItem::bank3Key: break;
    }
    return data.*bank3Keys[index];
}
