#include <algorithm>

#include "link/BootLoader.h"
#include "operations/Operation.h"

// Every job starter of the bootloader control. They stand here because jobs drive the control, and the
// control, which owns the current job, must not know them.

namespace {

template <class Job>
void replaceJob(CBootLoader *control, void *parameters = nullptr) {
    control->FreeOperation();
    control->m_ObOperation = new Job(control);
    if (parameters)
        control->m_ObOperation->SetParameters(parameters);
}

} // namespace

std::vector<JobRun> CBootLoader::RunsToEnd() const {
    return m_runsToEnd;
}

bool CBootLoader::isOnJobsThread() const {
    return (m_ObOperation && m_ObOperation->CurrentRun().isOnThisThread()) ||
           std::any_of(m_runsToEnd.begin(), m_runsToEnd.end(), [](const JobRun &run) { return run.isOnThisThread(); });
}

void CBootLoader::setJobAside() {
    if (!m_ObOperation)
        return;
    if (m_ObOperation->CurrentRun().isUnderWay())
        m_runsToEnd.push_back(m_ObOperation->CurrentRun());
    m_ObOperation->DeleteWhenEnded();
    m_ObOperation = nullptr;
}

void CBootLoader::FreeOperation() {
    if (isOnJobsThread()) {
        setJobAside();
        return;
    }
    for (const JobRun &run : m_runsToEnd)
        run.wait();
    m_runsToEnd.clear();
    if (!m_ObOperation)
        return;
    // The job's last event comes from its thread, so the thread may still be on its way out.
    m_ObOperation->WaitUntilEnded();
    delete m_ObOperation;
    m_ObOperation = nullptr;
}

void CBootLoader::Destroy(CBootLoader *control) {
    if (!control || !control->isOnJobsThread()) {
        delete control;
        return;
    }
    control->setJobAside();
    control->m_hCCOM = nullptr;
    // The run that was added last ends last, since every job waits for those before it.
    JobRun last = control->m_runsToEnd.back();
    last.atEnd([control] { delete control; });
}

void CBootLoader::EraseFlash(EraseParam param) {
    replaceJob<CErase>(this, &param);
}

void CBootLoader::DownloadToDevice(DownloadParam param) {
    replaceJob<CDownload>(this, &param);
}

void CBootLoader::UploadFromDevice(UploadParam param) {
    replaceJob<CUpload>(this, &param);
}

void CBootLoader::DownloadToDeviceProject(DLPROJECTParam param) {
    replaceJob<CDownloadProject>(this, &param);
}

void CBootLoader::FirmwareCRCCheck(FWCRCParam param) {
    replaceJob<CFWCRC>(this, &param);
}

void CBootLoader::FlashCRCCheck(FlashCRCParam param) {
    replaceJob<CFlashCRC>(this, &param);
}

void CBootLoader::EnableBank3Func(EnBank3Param param) {
    replaceJob<CEnBank3>(this, &param);
}

void CBootLoader::AccessProtect(BYTE level) {
    replaceJob<CAccessProtect>(this, &level);
}

void CBootLoader::ReadoutUnProtect() {
    replaceJob<CAccessUnProtect>(this);
}

void CBootLoader::EraseProgramProtect(QList<int> sectors) {
    replaceJob<CEraseProgramProtect>(this, &sectors);
}

void CBootLoader::WriteUnProtect() {
    replaceJob<CEraseProgramUnProtect>(this);
}

void CBootLoader::EnableSlib(EnableSlibParam param) {
    replaceJob<CEnableSlib>(this, &param);
}

void CBootLoader::DisableSlib(uint password) {
    replaceJob<CDisableSlib>(this, &password);
}

void CBootLoader::DisableSlibCheck(uint password) {
    replaceJob<CDisableSlib>(this, &password);
}
