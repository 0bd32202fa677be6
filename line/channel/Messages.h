#pragma once

#include <cstddef>
#include <cstdint>

// What is said between the program and the process that makes one unit, each a line of JSON:
//
//   program  {"do":"make","chip":NAME,"link":LINK,"eraseProtected":BOOL,"sectors":[NUMBER...],
//             "verify":"crc"|"read"|"both","options":{NAME:NUMBER...},"protect":[SECTOR...],
//             "otp":[{"block":NUMBER,"bytes":HEX,"lock":BOOL}...],"access":"leave"|"on"|"high","run":BOOL}
//   worker   {"event":"step","step":NAME}              a step begins
//   worker   {"event":"identified","chip":NAME,"pid":TEXT,"bootloader":TEXT,"uid":HEX}
//   program  {"do":"go","image":[{"at":ADDRESS,"length":NUMBER}...]}   runs of bytes, one after the other in the file
//                                                      that is open as sharedDescriptor, from imagePlace on
//   worker   {"event":"irreversible","what":[NAME...]} the next command can't be undone: "otp", "otp locks",
//                                                      "access high"; told once, of all that is to come
//   program  {"do":"burn"}
//   program  {"do":"stop"}                             at any time: make no more of it
//   worker   {"event":"end","result":"pass","ms":{STEP:NUMBER...},"verified":BOOL,
//             "options":{"before":HEX|null,"after":HEX|null}}
//            {"event":"end","result":"fail","cause":NAME,"code":NUMBER,"text":TEXT,"ms":{...},...}
//            {"event":"end","result":"interrupted",...} where "stop" came
//
// LINK: {"kind":"usart","port":PATH,"rate":BAUD,"parity":"none"|"odd"|"even","auto":ROW}
//       {"kind":"dfu","port":PLACE}                    on USB, as "1-2.3"
//       {"kind":"i2c","port":PATH,"address":NUMBER}
//       {"kind":"can","port":NAME|PATH,"rate":BITS}
//       {"kind":"spi","port":PATH,"rate":HZ}
// What but kind and port is missing is as the console has it without a word. Options are named as OptionNames.h says.
//
// Steps, those that the order asks for, in this order: connect, identify, erase, write, verify, options, protect, otp,
// access, run.
//
// Nothing in the chip changes before "go", but a protected one is erased where the job says so: its identifier can't be
// read before. "stop" is obeyed between two sectors and between two steps, never within options, protect, otp and
// access, and not at all after "burn". Bytes of options are those that the chip has in all, as they were last read;
// null where they were not. Which attempt it is for a unit, "tries", is the program's: it starts a process for each.

// What wakes nobody stands at the beginning of the shared file, and is looked at when there is time: Progress, without
// which a step counts as silent.

// Of the worker.
constexpr int channelDescriptor = 3;
constexpr int sharedDescriptor = 4;

struct Progress {
    std::uint8_t steps;   // that have begun, as far as 8 bits count them
    std::uint8_t percent; // of the last one, 0 to 100
};
constexpr std::size_t imagePlace = 16;
