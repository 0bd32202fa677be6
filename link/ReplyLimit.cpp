#include "link/ReplyLimit.h"

#include "foundation/ShareParameter.h"
#include "link/ZVBLLIB.h"

BYTE replylimit::restore(HANDLE link) {
    return SetTimeOut(link, static_cast<unsigned int>(g_shareParameter.c_timeout) * 1000);
}
