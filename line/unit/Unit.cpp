#include "line/unit/Unit.h"

#include <cstdlib>

#include "device/Families.h"
#include "foundation/Result.h"
#include "foundation/ShareParameter.h"
#include "line/unit/Connection.h"
#include "line/unit/Failure.h"
#include "line/unit/MemoryImage.h"
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
    burn();
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
        require(m_control->ReadoutUnProtectNoThread(), "access");
        result = m_control->ReadOptionBytes(m_optionsBefore);
    }
    require(result, "link-lost");
    m_optionsAfter = m_optionsBefore;
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
    CErase job(m_control);
    EraseParam record;
    for (const Json &sector : m_order.at("sectors"))
        record.m_iSectorIndex.append(sector.get<int>());
    job.SetParameters(&record);
    run(job, "erase");
}

void Unit::write(CDownload &job, const Json &image) {
    job.SetSubOperation(true);
    m_dialogue.follow(job);
    CProgramFile *file = imageInMemory(image, *m_control->m_ObDevice).release();
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

// Asks, before anything that can't be undone, whether it may be done.
void Unit::burn() {
    Json what = Json::array();
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
