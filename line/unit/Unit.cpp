#include "line/unit/Unit.h"

#include <cstdlib>

#include "device/Families.h"
#include "foundation/Result.h"
#include "foundation/ShareParameter.h"
#include "line/channel/Messages.h"
#include "line/unit/Connection.h"
#include "line/unit/Failure.h"
#include "line/unit/MemoryImage.h"
#include "line/unit/Options.h"
#include "line/unit/Otp.h"
#include "link/AccessProtection.h"
#include "link/BootLoader.h"
#include "operations/Operation.h"

namespace {

constexpr int uidBytes = 12;
constexpr BYTE basicLevel = 1;
constexpr BYTE highLevel = 2;

std::string hexText(const void *bytes, std::size_t length) {
    return QByteArray(static_cast<const char *>(bytes), static_cast<int>(length)).toHex().toStdString();
}

Json hexOrNull(const std::vector<BYTE> &bytes) {
    return bytes.empty() ? Json() : Json(hexText(bytes.data(), bytes.size()));
}

QList<int> sectorsOf(const Json &numbers) {
    QList<int> sectors;
    for (const Json &number : numbers)
        sectors.append(number.get<int>());
    return sectors;
}

} // namespace

Unit::Unit(Channel &channel, Json order) : m_order(std::move(order)), m_dialogue(channel) {}

Unit::~Unit() = default;

void Unit::make() {
    Json end = {{"event", "end"}, {"result", "pass"}};
    try {
        steps();
    } catch (const Stopped &) {
        end["result"] = "interrupted";
    } catch (const Failure &failure) {
        end["result"] = "fail";
        end["cause"] = failure.cause;
        end["code"] = failure.code;
        end["text"] = failure.what();
    }
    end["ms"] = m_dialogue.times();
    end["verified"] = m_isVerified;
    end["options"] = {{"before", hexOrNull(m_optionsBefore)}, {"after", hexOrNull(m_optionsAfter)}};
    m_dialogue.tell(end);
}

void Unit::steps() {
    m_dialogue.step("connect", [&] { connect(); });
    m_dialogue.step("identify", [&] { identify(); });
    const Json go = waitForGo();
    CDownload job(m_control);
    m_dialogue.step("erase", [&] { erase(); });
    m_dialogue.step("write", [&] { write(job, go.at("image")); });
    m_dialogue.step("verify", [&] { verify(job); });
    finish();
}

void Unit::finish() {
    if (!m_order.at("options").empty())
        m_dialogue.wholeStep("options", [&] { setOptions(); });
    if (!m_order.at("protect").empty())
        m_dialogue.wholeStep("protect", [&] { protectSectors(); });
    askToBurn();
    if (m_otp->writesData() || m_otp->writesLocks())
        m_dialogue.wholeStep("otp", [&] { m_otp->write(); });
    if (m_order.at("access") != "leave")
        m_dialogue.wholeStep("access", [&] { protectAccess(); });
    if (m_order.at("run").get<bool>())
        m_dialogue.step("run", [&] { start(); });
}

void Unit::connect() {
    m_link = connectionTo(m_order.at("link"));
    m_control = m_link->m_ObBootLoader;
}

void Unit::identify() {
    m_control->InitDevice();
    const CDevice *device = m_control->m_ObDevice;
    const std::string wanted = m_order.at("chip");
    if (device == nullptr || device->m_StrTarget != wanted)
        throw Failure("wrong-chip",
                      device == nullptr ? "a chip that no map file knows" : "it is a " + device->m_StrTarget);
    openProtected();
    check();
    std::string version;
    std::string block;
    require(m_control->GetVersion(version, block), "link-lost");
    BYTE uid[uidBytes];
    require(m_control->GetUID(uid), "link-lost");
    m_dialogue.tell({{"event", "identified"},
                     {"chip", device->m_StrTarget},
                     {"pid", device->m_StrPID},
                     {"bootloader", version},
                     {"uid", hexText(uid, uidBytes)}});
}

void Unit::openProtected() {
    int result = m_control->ReadOptionBytes(m_optionsBefore);
    const bool isProtected =
        isRefusal(result) || (result == CResult::SUCCESS && m_optionsBefore.front() != accessProtectionOff);
    if (isProtected) {
        m_optionsBefore.clear();
        if (!m_order.at("eraseProtected").get<bool>())
            throw Failure("protected", CResult::SYS_ACCESS_PROTECTION);
        require(m_control->ReadoutUnProtectNoThread(), "protected");
        result = m_control->ReadOptionBytes(m_optionsBefore);
    }
    require(result, "link-lost");
    m_optionsAfter = m_optionsBefore;
}

void Unit::check() {
    int result = CResult::SUCCESS;
    if (protectsSectors(m_optionsBefore, *m_control))
        result = m_control->HasBeenEraseProgramProtect(sectorsOf(m_order.at("sectors")));
    m_hasProtectedSectors = result == CResult::SYS_ERASEPROGRAM_PROTECTION;
    if (!m_hasProtectedSectors || !m_order.at("eraseProtected").get<bool>())
        require(result, "protected");
    optionsIn(m_optionsBefore, m_order.at("options"), *m_control);
    m_otp = std::make_unique<Otp>(*m_control, m_order.at("otp"));
    if (m_order.at("access") == "high" && m_control->m_pCmds->ACCESS_LEVEL_PROTECT_CMD != 1)
        throw Failure("access", CResult::SYS_CMD_NOT_ALLOWED);
}

Json Unit::waitForGo() {
    Json go;
    if (!m_dialogue.hears("go", go))
        throw Failure("not-allowed", "it may not be made");
    return go;
}

void Unit::run(COperation &job, const char *cause) {
    job.SetSubOperation(true); // on this thread, and its failure comes back
    m_dialogue.follow(job);
    require(job.Start(), cause);
}

void Unit::erase() {
    if (m_hasProtectedSectors)
        openSectors();
    CErase job(m_control);
    EraseParam record;
    record.m_iSectorIndex = sectorsOf(m_order.at("sectors"));
    job.SetParameters(&record);
    run(job, "erase");
}

void Unit::openSectors() {
    CEraseProgramUnProtect job(m_control);
    run(job, "sector-protection");
    m_optionsAfter = readOptions(*m_control, "sector-protection");
}

void Unit::write(CDownload &job, const Json &image) {
    job.SetSubOperation(true);
    m_dialogue.follow(job);
    CProgramFile *file = imageInMemory(image, sharedDescriptor, *m_control->m_ObDevice).release();
    job.SetDownLoadFile({file});
    job.m_obVerify->SetVerifyFile(file); // which frees it
    require(job.Download(0, file), "write");
    m_dialogue.refuseStopped();
    if (familyOf(*m_control->m_ObDevice).has(restartsBeforeVerify))
        require(job.ResetMcu403B(), "link-lost");
}

void Unit::verify(CDownload &job) {
    const std::string by = m_order.at("verify");
    if (by != "read")
        compare(job, nullptr);
    if (by != "crc")
        compare(job, "read");
    job.m_lsProgramFile.first()->Close();
    m_isVerified = true;
}

// By the checksums of whole sectors, or as ZVBL_VERIFY_BY says.
void Unit::compare(CDownload &job, const char *by) {
    if (by == nullptr)
        unsetenv("ZVBL_VERIFY_BY");
    else
        setenv("ZVBL_VERIFY_BY", by, 1);
    const int result = job.Verify(0, job.m_lsProgramFile.first());
    require(result, result == CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING ? "verify-differs" : "verify-not-done");
    m_dialogue.refuseStopped();
}

void Unit::setOptions() {
    writeOptions(*m_control, optionsIn(readOptions(*m_control, "options"), m_order.at("options"), *m_control));
    m_optionsAfter = readOptions(*m_control, "options");
}

void Unit::protectSectors() {
    CEraseProgramProtect job(m_control);
    QList<int> sectors = sectorsOf(m_order.at("protect"));
    job.SetParameters(&sectors);
    run(job, "sector-protection");
    m_optionsAfter = readOptions(*m_control, "sector-protection");
}

// Asks, before anything that can't be undone, whether it may be done.
void Unit::askToBurn() {
    Json what = Json::array();
    if (m_otp->writesData())
        what.push_back("otp");
    if (m_otp->writesLocks())
        what.push_back("otp locks");
    if (m_order.at("access") == "high")
        what.push_back("access high");
    if (what.empty())
        return;
    m_dialogue.tell({{"event", "irreversible"}, {"what", what}});
    Json answer;
    if (!m_dialogue.hears("burn", answer))
        throw Failure("not-allowed", "what can't be undone may not be done");
    m_dialogue.finishInAnyCase();
}

void Unit::protectAccess() {
    CAccessProtect job(m_control);
    BYTE level = m_order.at("access") == "high" ? highLevel : basicLevel;
    job.SetParameters(&level);
    run(job, "access");
}

void Unit::start() {
    require(m_control->JumpToUserProgram(ZVCHIP_FLASH_BASE_ADDRESS), "link-lost");
}
