// What the console's lower folders make of a system that has no memory, or whose files cannot be read. The calls are
// caught by the linker, on their way out of the folders.

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

#include "ModelTest.h"
#include "device/MapText.h"
#include "files/CFiles.h"
#include "foundation/Result.h"

namespace {

enum class Call { none, memory, zeroedMemory, stat, read };

struct {
    Call call = Call::none;
    int left = 0; // calls that work before it
    int error = 0;
} plan;

// True for the one call that has to fail.
bool fails(Call call) {
    if (plan.call != call || plan.left-- > 0)
        return false;
    plan.call = Call::none;
    errno = plan.error;
    return true;
}

void failOnce(Call call, int afterCalls = 0, int error = ENOMEM) {
    plan.left = afterCalls;
    plan.error = error;
    plan.call = call;
}

} // namespace

// A sanitizer's library calls these, too.
#pragma GCC visibility push(default)
extern "C" {

void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
int __real_fstat(int fd, struct stat *info);
ssize_t __real_read(int fd, void *bytes, std::size_t length);

void *__wrap_malloc(std::size_t size) {
    return fails(Call::memory) ? nullptr : __real_malloc(size);
}

void *__wrap_calloc(std::size_t count, std::size_t size) {
    return fails(Call::zeroedMemory) ? nullptr : __real_calloc(count, size);
}

int __wrap_fstat(int fd, struct stat *info) {
    return fails(Call::stat) ? -1 : __real_fstat(fd, info);
}

ssize_t __wrap_read(int fd, void *bytes, std::size_t length) {
    return fails(Call::read) ? (plan.error == 0 ? 0 : -1) : __real_read(fd, bytes, length);
}
}
#pragma GCC visibility pop

namespace {

const std::string oneElement = "element address=08000000 length=4 fill=AB\n";

struct FailingCalls : testing::Test {
    Workplace workplace;
    std::optional<FilesDouble> files;
    CDevice device;
    ~FailingCalls() override { plan.call = Call::none; }

    // A device of four sectors, and what an image file holds.
    CMapping map(const std::string &script = oneElement) {
        workplace.write("Map/X.ZVmap", "");
        files.emplace(workplace, script);
        return CMapping("X");
    }
};

TEST_F(FailingCalls, AMapWithoutMemoryForItsRecordReadsNothing) {
    workplace.write("Map/X.ZVmap", "");
    files.emplace(workplace);
    failOnce(Call::zeroedMemory);
    const CMapping empty("X");
    EXPECT_EQ(empty.GetIpMapping(), nullptr);
    EXPECT_EQ(empty.GetSectorNums(), -1);
    EXPECT_TRUE(files->calls().empty());

    device.m_CMapping = const_cast<CMapping *>(&empty);
    CProgramFile file;
    EXPECT_EQ(file.Open("/x/a.hex", &device), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(file.Create(&device), CResult::UNKNOWN_ERROR);
}

TEST_F(FailingCalls, AMapWithoutMemoryForItsSectorsHasNone) {
    workplace.write("Map/X.ZVmap", "");
    files.emplace(workplace, "map sectors=0\n");
    failOnce(Call::zeroedMemory, 1);
    const CMapping empty("X");
    EXPECT_EQ(empty.GetScMapping().pSectors, nullptr);
    EXPECT_EQ(empty.GetSectorNums(), -1);
}

TEST_F(FailingCalls, AnElementWithoutMemoryIsAnErrorOfTheFile) {
    CMapping sectors = map();
    device.m_CMapping = &sectors;
    CProgramFile file;
    failOnce(Call::memory);
    EXPECT_EQ(file.Open("/x/a.hex", &device), CResult::FILES_UNEXPECTEDERROR);
    EXPECT_EQ(file.GetElementCount(), 0);
}

TEST_F(FailingCalls, OptionBytesWithoutMemoryAreRefused) {
    files.emplace(workplace);
    CUserSystemDataFile file;
    failOnce(Call::zeroedMemory);
    EXPECT_EQ(file.Create(&device), CResult::PROGRAM_INPUT_PARAMS_MEMORY_ALLOCATION_ERROR);
    EXPECT_EQ(file.GetElementCount(), 0);
}

TEST_F(FailingCalls, ACopyWithoutMemoryIsClosedOrHasNoBytes) {
    CMapping sectors = map();
    device.m_CMapping = &sectors;
    CProgramFile file;
    ASSERT_EQ(file.Open("/x/a.hex", &device), 0);
    failOnce(Call::memory);
    CProgramFile closed(file);
    EXPECT_FALSE(closed.HasOpen());
    EXPECT_EQ(closed.m_lsElement.at(0).Data[0], 0xAB);
    failOnce(Call::memory, 1);
    CProgramFile blank(file);
    EXPECT_TRUE(blank.HasOpen());
    EXPECT_EQ(blank.m_lsElement.at(0).Data, nullptr);
    CProgramFile copyOfBlank(blank);
    EXPECT_EQ(copyOfBlank.m_lsElement.at(0).Data, nullptr);
}

TEST_F(FailingCalls, AMapThatCannotBeReadIsNotHarmlessAndNotPlain) {
    workplace.write("Map/X.ZVmap", "[Product]\nPID=1\n");
    const std::string path = workplace.path("Map/X.ZVmap");
    failOnce(Call::stat, 0, EIO);
    EXPECT_FALSE(IsHarmlessMap(path));
    failOnce(Call::read, 0, EIO);
    EXPECT_FALSE(IsHarmlessMap(path));
    failOnce(Call::read, 0, 0); // it has become shorter
    EXPECT_FALSE(ReadPlainMap(path));
    failOnce(Call::read, 0, EINTR);
    EXPECT_EQ(ReadPlainMap(path).value().pid, "1");
}

} // namespace
