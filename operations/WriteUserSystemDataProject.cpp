#include "operations/WriteUserSystemDataProject.h"

#include <algorithm>

#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"

CWriteUserSystemDataProject::CWriteUserSystemDataProject(CBootLoader *obBootLoader)
    : COperation(obBootLoader, OP_WRITEUSERSYSTEMDATA, Info_Operation_WRITEUSERSYSTEMDATA) {}

CWriteUserSystemDataProject::~CWriteUserSystemDataProject() {
    delete[] m_UserSystemData;
}

void CWriteUserSystemDataProject::SetParameters(BYTE *data, quint32 len) {
    delete[] m_UserSystemData;
    m_UserSystemDataLen = data ? len : 0;
    m_UserSystemData = new BYTE[m_UserSystemDataLen];
    std::copy_n(data, m_UserSystemDataLen, m_UserSystemData);
}

int CWriteUserSystemDataProject::Action() {
    if (!m_obBootLoader)
        return CResult::UNKNOWN_ERROR;
    const int result = m_obBootLoader->LoadUserSystemDataToDevice(m_UserSystemData, m_UserSystemDataLen);
    if (result != 0)
        return CResult::Convert(result);
    return done();
}
