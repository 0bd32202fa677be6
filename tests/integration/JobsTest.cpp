#include "tests/integration/JobsTest.h"

#include "link/ZVBLLIB.h"
#include "usersystemdata/CUserSystemData.h"

namespace fs = std::filesystem;

std::vector<std::string> JobsTest::titles;
std::string JobsTest::end;
int JobsTest::abendCode = 0;

JobsTest::JobsTest() {
    g_shareParameter = ShareParameter();
    g_shareParameter.c_timeout = 5;
}

JobsTest::~JobsTest() {
    if (com)
        com->Close();
    fs::current_path("/");
}

void JobsTest::connect(const std::string &name) {
    if (com)
        com->Close();
    chip = std::make_unique<SimulatedChip>(name);
    fs::create_directory_symlink(MAP_DIR, chip->directory() / "Map");
    fs::current_path(chip->directory());
    CComManager().SetInterfaceType(0);
    com = std::make_unique<CCom>(0, char(0), chip->port().c_str());
    ASSERT_EQ(com->Open(), CResult::SUCCESS);
    control = com->m_ObBootLoader;
    ASSERT_EQ(control->Connect(), CResult::SUCCESS);
    ASSERT_EQ(control->InitDevice(), CResult::SUCCESS);
    ASSERT_EQ(control->m_ObDevice->m_StrTarget, name);
}

int JobsTest::run() {
    titles.clear();
    end.clear();
    abendCode = 0;
    COperation &current = *control->m_ObOperation;
    current.SetOperationInfoDelegate(reinterpret_cast<void *>(listener));
    EXPECT_EQ(current.Start(), 0);
    current.WaitUntilEnded();
    return abendCode;
}

void *JobsTest::listener(InfoType type, void *record) {
    const bool isEnd = type == INFO_TYPE_DONE || type == INFO_TYPE_CANCEL || type == INFO_TYPE_ABEND;
    if (isEnd) {
        EXPECT_EQ(end, "") << "a job ends once";
        end = type == INFO_TYPE_DONE ? "DONE" : type == INFO_TYPE_CANCEL ? "CANCEL" : "ABEND";
    }
    if (type == INFO_TYPE_ABEND)
        abendCode = static_cast<CAbendInfo *>(record)->m_iResult;
    if (type == INFO_TYPE_INIT)
        titles.push_back(static_cast<CInitInfo *>(record)->m_strName);
    return nullptr;
}

void JobsTest::write(uint address, Bytes bytes) {
    EXPECT_EQ(ZVBL_DNLOAD(control->m_handle, address, bytes.data(), static_cast<uint>(bytes.size()), 0), 0);
}

Bytes JobsTest::read(uint address, std::size_t length) {
    Bytes bytes(length);
    EXPECT_EQ(ZVBL_UPLOAD(control->m_handle, address, bytes.data(), static_cast<uint>(length)), 0);
    return bytes;
}

Bytes JobsTest::compactUserData() {
    const CDevice &device = *control->m_ObDevice;
    const int family = std::stoi(device.m_StrSerial, nullptr, 16);
    const int length =
        CUserSystemData::GetUserSystemDataLength(family, control->m_BID, static_cast<int>(device.m_ISectorSize));
    Bytes bytes(static_cast<std::size_t>(length));
    EXPECT_EQ(TARGET_GetUserSystemData(control->m_handle, device.m_UiUserSystemDataAddress, bytes.data(),
                                       static_cast<uint>(length)),
              0);
    return bytes;
}

bool JobsTest::isProtected() {
    bool flag = false;
    EXPECT_EQ(control->GetAccessProtectiosStatus(&flag), CResult::SUCCESS);
    return flag;
}
