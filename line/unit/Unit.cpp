#include "line/unit/Unit.h"

#include <chrono>
#include <cstdlib>

#include <unistd.h>

#include "device/Families.h"
#include "foundation/Result.h"
#include "foundation/ShareParameter.h"
#include "line/unit/MemoryImage.h"
#include "line/unit/Percent.h"
#include "link/BootLoader.h"
#include "operations/Operation.h"

namespace {

constexpr int connectMilliseconds = 1000;
constexpr int replyMilliseconds = 5000;
constexpr int uidBytes = 12;
constexpr BYTE basicLevel = 1;
constexpr BYTE highLevel = 2;

void require(int result, const char *cause) {
    if (result != CResult::SUCCESS)
        throw Failure(cause, result);
}

} // namespace

Failure::Failure(const char *why, int result)
    : std::runtime_error(CResult::GetInfoStringName(result)), cause(why), code(result) {}

Unit::Unit(Channel &channel, Json order) : m_channel(channel), m_order(std::move(order)) {}

Unit::~Unit() = default;

template <typename Work>
void Unit::step(const char *name, Work work) {
    m_channel.send({{"event", "step"}, {"step", name}});
    const auto begin = std::chrono::steady_clock::now();
    work();
    const auto time = std::chrono::steady_clock::now() - begin;
    m_milliseconds[name] = std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

void Unit::make() {
    Json end = {{"event", "end"}, {"result", "pass"}};
    try {
        steps();
    } catch (const Failure &failure) {
        end["result"] = "fail";
        end["cause"] = failure.cause;
        end["code"] = failure.code;
        end["text"] = failure.what();
    }
    end["ms"] = m_milliseconds;
    m_channel.send(end);
}

void Unit::steps() {
    step("connect", [&] { connect(); });
    step("identify", [&] { identify(); });
    const Json go = waitForGo();
    CDownload job(m_control);
    step("erase", [&] { erase(); });
    step("write", [&] { write(job, go.at("image")); });
    step("verify", [&] { verify(job); });
    if (m_order.at("access") != "leave")
        step("access", [&] { protect(); });
    if (m_order.at("run").get<bool>())
        step("run", [&] { start(); });
}

void Unit::connect() {
    const std::string port = m_order.at("port");
    if (access(port.c_str(), F_OK) != 0)
        throw Failure("no-port", port + " is not there");
    if (access(port.c_str(), R_OK | W_OK) != 0)
        throw Failure("permission", port + " may not be opened");
    CComManager().SetInterfaceType(INTERFACE_USART);
    g_shareParameter.m_InterfaceType = INTERFACE_USART;
    m_link = std::make_unique<CCom>(1, INTERFACE_USART, port.c_str());
    require(m_link->Open(), "port-busy");
    m_control = m_link->m_ObBootLoader;
    m_link->SetComTimeOut(connectMilliseconds);
    require(m_control->Connect(), "no-answer");
    m_link->SetComTimeOut(replyMilliseconds);
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
    const QByteArray digits = QByteArray(reinterpret_cast<const char *>(uid), uidBytes).toHex();
    m_channel.send({{"event", "identified"},
                    {"chip", device->m_StrTarget},
                    {"pid", device->m_StrPID},
                    {"bootloader", version},
                    {"uid", digits.toStdString()}});
}

void Unit::openProtected() {
    bool isProtected = true;
    require(m_control->GetAccessProtectiosStatus(&isProtected), "link-lost");
    if (!isProtected)
        return;
    if (!m_order.at("eraseProtected").get<bool>())
        throw Failure("protected", CResult::SYS_ACCESS_PROTECTION);
    require(m_control->ReadoutUnProtectNoThread(), "access");
}

Json Unit::waitForGo() {
    Json go;
    if (m_channel.receive(go, -1) != Channel::Got::message || go.at("do") != "go")
        throw Failure("not-allowed", "it may not be made");
    return go;
}

void Unit::run(COperation &job, const char *cause) {
    job.SetSubOperation(true); // on this thread, and its failure comes back
    percent::tellOf(job, m_channel);
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
    percent::tellOf(job, m_channel);
    CProgramFile *file = imageInMemory(image, *m_control->m_ObDevice).release();
    job.SetDownLoadFile({file});
    job.m_obVerify->SetVerifyFile(file); // which frees it
    require(job.Download(0, file), "write");
    if (familyOf(*m_control->m_ObDevice).has(restartsBeforeVerify))
        require(job.ResetMcu403B(), "link-lost");
}

void Unit::verify(CDownload &job) {
    const std::string by = m_order.at("verify");
    unsetenv("ZVBL_VERIFY_BY");
    if (by != "read")
        require(job.Verify(0, job.m_lsProgramFile.first()), "verify-differs");
    setenv("ZVBL_VERIFY_BY", "read", 1);
    if (by != "crc")
        require(job.Verify(0, job.m_lsProgramFile.first()), "verify-differs");
    job.m_lsProgramFile.first()->Close();
}

void Unit::protect() {
    CAccessProtect job(m_control);
    BYTE level = m_order.at("access") == "high" ? highLevel : basicLevel;
    job.SetParameters(&level);
    run(job, "access");
}

void Unit::start() {
    require(m_control->JumpToUserProgram(ZVCHIP_FLASH_BASE_ADDRESS), "link-lost");
}
