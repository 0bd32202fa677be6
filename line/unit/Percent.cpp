#include "line/unit/Percent.h"

#include "line/channel/Channel.h"
#include "operations/COperation.h"

namespace {

// A listener is a plain function.
Channel *toldOver = nullptr;
int toldLast = -1;

void *listen(InfoType type, void *record) {
    if (type != INFO_TYPE_ACTION)
        return nullptr;
    const int now = static_cast<const CActionInfo *>(record)->m_iPercent;
    if (now == toldLast)
        return nullptr;
    toldLast = now;
    toldOver->send({{"event", "percent"}, {"percent", now}});
    return nullptr;
}

} // namespace

void percent::tellOf(COperation &job, Channel &channel) {
    toldOver = &channel;
    toldLast = -1;
    job.SetOperationInfoDelegate(reinterpret_cast<void *>(listen));
}
