#include "app/OtpFile.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

QList<OTP_CONFIG_INFO> m_listWriteOTPData;

namespace {

constexpr int blockLength = 32;
constexpr int recordLength = 38; // address, block, lock flag, write flag
// MEANT: records are counted by 40 and stepped by 38, so a long file loses its last ones.
constexpr int countLength = 40;
// Some 27,000 records, where the largest area has 128 blocks.
constexpr std::size_t mostBytes = 1 << 20;

class OpenFile {
public:
    // Without O_NONBLOCK a FIFO that nobody writes to would hold us here for ever.
    explicit OpenFile(const std::string &path)
        : m_descriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY)) {}
    ~OpenFile() {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;

    bool isOpen() const { return m_descriptor >= 0; }

    // False for an error.
    bool look(struct stat &info) const { return fstat(m_descriptor, &info) == 0; }

    // Takes so many bytes, or fewer at the end of the file. False for an error.
    bool read(std::string &content, std::size_t wanted) const {
        content.resize(wanted);
        std::size_t got = 0;
        ssize_t part = 1;
        while (got < wanted && part != 0) {
            part = ::read(m_descriptor, &content[got], wanted - got);
            if (part > 0)
                got += static_cast<std::size_t>(part);
            else if (part < 0 && errno != EINTR)
                return false;
        }
        content.resize(got);
        return true;
    }

private:
    const int m_descriptor;
};

OTP_CONFIG_INFO parseRecord(const BYTE *record) {
    OTP_CONFIG_INFO info;
    for (int i = 0; i < 4; ++i)
        info.PartAddress = info.PartAddress << 8 | record[i];
    std::copy_n(record + 4, blockLength, info.pData);
    info.LockFlag = record[36];
    info.WriteFlag = record[37];
    return info;
}

} // namespace

int OTPProjectFileOpen(const std::string &FilePath) {
    m_listWriteOTPData.clear();
    const OpenFile file(FilePath);
    if (!file.isOpen())
        return 1; // MEANT: nothing to write
    struct stat info;
    if (!file.look(info))
        return 0;
    if (!S_ISREG(info.st_mode))
        return 1;
    std::string content;
    if (!file.read(content, mostBytes + 1) || content.size() > mostBytes)
        return 0;
    const BYTE *record = reinterpret_cast<const BYTE *>(content.data());
    for (std::size_t count = content.size() / countLength; count > 0; --count, record += recordLength)
        m_listWriteOTPData.append(parseRecord(record));
    return 1;
}

std::vector<OtpWrite> otpWrites(QList<OTP_CONFIG_INFO> &records, unsigned int dataAddress, unsigned int lockAddress) {
    std::vector<OtpWrite> writes;
    // MEANT: nothing bounds a record's address, and the sum wraps: a file can write anywhere in the chip.
    for (int i = 0; i < records.size(); ++i)
        if (records[i].WriteFlag == 0)
            writes.push_back({dataAddress + records[i].PartAddress, records[i].pData, blockLength, false, i});
    // MEANT: the lock byte's place follows the record's place in the file, not its address.
    for (int i = 0; i < records.size(); ++i)
        if (records[i].LockFlag == 0)
            writes.push_back({lockAddress + static_cast<unsigned int>(i), &records[i].LockFlag, 1, true, i});
    return writes;
}
