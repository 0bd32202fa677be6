#include "libs/files/RunCollector.h"

#include <algorithm>
#include <cstring>

namespace files {

Status RunCollector::commitElsewhere(std::uint64_t address, std::size_t length) {
    if (address + length > addressSpace)
        return Status::badAddressRange;
    if (length == 0)
        return Status::ok;
    if (!m_runs.empty() && m_runs.back().end() == address)
        m_runs.back().length += static_cast<std::uint32_t>(length);
    else
        m_runs.push_back({static_cast<std::uint32_t>(address), static_cast<std::uint32_t>(length),
                          static_cast<std::uint32_t>(m_bytes.size())});
    m_bytes.add(length);
    if (m_runs.size() <= m_runLimit && m_bytes.size() <= m_byteLimit)
        return Status::ok;
    const Status settled = settle();
    // In proportion to what stays, so that settling again and again costs no more than a sort.
    m_runLimit = m_runs.size() + std::max(minRunStep, m_runs.size() / 2);
    m_byteLimit = std::min(maxImageSize, m_bytes.size() + std::max(minByteStep, m_bytes.size()));
    if (settled == Status::ok && m_bytes.size() > maxImageSize)
        return Status::badAddressRange;
    return settled;
}

// True when the runs rise in address and do not touch: then the bytes lie in order too.
bool RunCollector::isSettled() const {
    const auto touches = [](const Run &a, const Run &b) { return a.end() >= b.address; };
    return std::adjacent_find(m_runs.begin(), m_runs.end(), touches) == m_runs.end();
}

Status RunCollector::settle() {
    if (isSettled())
        return Status::ok;
    std::sort(m_runs.begin(), m_runs.end(), [](const Run &a, const Run &b) { return a.address < b.address; });

    ByteBuffer joined;
    joined.reserve(m_bytes.capacity());
    std::size_t count = 0; // joined runs, written over those that are done
    for (std::size_t i = 0; i < m_runs.size(); ++i) {
        const Run run = m_runs[i];
        const BYTE *source = m_bytes.data() + run.offset;
        // What was settled before lies in order: what belongs before this run is copied already.
        if (run.offset < m_settledBytes)
            m_bytes.forgetBefore(run.offset);
        if (count == 0 || m_runs[count - 1].end() < run.address) {
            m_runs[count++] = {run.address, run.length, static_cast<std::uint32_t>(joined.size())};
            joined.append(source, run.length);
            continue;
        }
        Run &last = m_runs[count - 1];
        const auto common = static_cast<std::uint32_t>(std::min<std::uint64_t>(last.end() - run.address, run.length));
        const BYTE *held = joined.data() + last.offset + (run.address - last.address);
        if (common > 0 && std::memcmp(held, source, common) != 0)
            return Status::badFormat;
        joined.append(source + common, run.length - common);
        last.length += run.length - common;
    }
    m_runs.resize(count);
    m_bytes.swap(joined);
    m_settledBytes = m_bytes.size();
    return Status::ok;
}

Status RunCollector::finish(std::vector<Element> &elements) {
    const Status settled = settle();
    if (settled != Status::ok)
        return settled;
    const std::shared_ptr<BYTE> block = m_bytes.release();
    elements.clear();
    elements.reserve(m_runs.size());
    for (const Run &run : m_runs)
        elements.push_back({run.address, run.length, std::shared_ptr<BYTE>(block, block.get() + run.offset)});
    return Status::ok;
}

} // namespace files
