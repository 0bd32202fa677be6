#pragma once

class CUserSystemData;

// SSB, the switch byte, to and from its booleans, by the bits of the family.
void decodeSwitches(CUserSystemData &data);
void encodeSwitches(CUserSystemData &data);
