#pragma once

// What is said between the program and the process that makes one unit, each a line of JSON:
//
//   program  {"do":"make","chip":NAME,"port":PATH,"eraseProtected":BOOL,"sectors":[NUMBER...],
//             "verify":"crc"|"read"|"both","access":"leave"|"on"|"high","run":BOOL}
//   worker   {"event":"step","step":NAME}              a step begins
//   worker   {"event":"percent","percent":NUMBER}      it goes on
//   worker   {"event":"identified","chip":NAME,"pid":TEXT,"bootloader":TEXT,"uid":HEX}
//   program  {"do":"go","image":[{"at":ADDRESS,"bytes":HEX}...]}
//   worker   {"event":"end","result":"pass","ms":{STEP:NUMBER...}}
//            {"event":"end","result":"fail","cause":NAME,"code":NUMBER,"text":TEXT,"ms":{...}}
//
// Nothing in the chip changes before "go", but a protected one is erased where the job says so.

constexpr int channelDescriptor = 3; // of the worker
