#!/bin/bash
# Of the bootloader library zv32-look calls nothing but what looks: no function that erases, writes, protects or runs is
# even there.
#
# usage: imports.sh PROGRAM HEADER
set -eu
program=$1
header=$2

# SetCOMSettings to TARGET_SetComIntType set up our side of the line, the next five start the talk with the bootloader,
# as the console does, the others ask. ZVBL_SetDtr and ZVBL_SetRts move the lines that reset a chip into its bootloader.
looking="SetCOMSettings Interface_Open Interface_Close Interface_is_Open SetTimeOut SetPaketSize TARGET_SetComIntType
    ZVBL_GetZVDeviceList ZVBL_Init_BL ZVBL_ZV32ISP_TOOL ZVBL_SetSpeed ZVBL_SetDtr ZVBL_SetRts
    ZVBL_GET ZVBL_GET_VER_ROPS ZVBL_GET_ID ZVBL_UPLOAD ZVBL_GetFirmwareCRC TARGET_GetFlashSize
    TARGET_GetUserSystemData ZVBL_GetSlibStatus ZVBL_GetSlibStatus_Ex"

functions=$(grep -oE '\b(ZVBL_\w+|TARGET_\w+|Interface_\w+|Set\w+)\(' "$header" | tr -d '(' | sort -u)
for function in $looking; do
    grep -qx "$function" <<<"$functions" || { echo "$header does not declare $function"; exit 1; }
done
imported=$(nm -D --undefined-only "$program" | awk '{print $2}' | sed 's/@.*//')
grep -q '^FILES_' <<<"$imported" || { echo "the imports of $program can't be read"; exit 1; }
acting=$(grep -Fx -f <(echo "$functions") <<<"$imported" | grep -Fxv -f <(printf '%s\n' $looking) || true)
# What acts on a file and on other processes is no business of it either.
acting+=$(grep -xE 'FILES_ImageToFile|dlopen|dlsym|system|popen|execve?|kill' <<<"$imported" || true)
[ -z "$acting" ] || { echo "$program calls what does not only look:"; echo "$acting"; exit 1; }
