#include "look/Unit.h"

#include <algorithm>

#include <QList>

#include "app/LinkCommands.h"
#include "app/LinkSettings.h"
#include "app/SubOptions.h"
#include "link/BootLoader.h"
#include "link/CCom.h"
#include "look/Status.h"

namespace {

const LinkCommand *commandOf(OptionId connection) {
    for (const LinkCommand *command : {&usartCommand, &i2cCommand, &canCommand, &spiCommand})
        if (command->option == connection)
            return command;
    return nullptr;
}

// Takes all words of one connection into the shared record.
OptionId readConnection(std::vector<std::string> &words) {
    const OptionWord *option = words.empty() ? nullptr : optionWord(words.front());
    if (option == nullptr || !isConnection(option->id))
        throw Refusal(badWords, "the words of a link are missing, as in: -com --pn ttyUSB0");
    const int count = static_cast<int>(words.size());
    std::vector<char *> line(words.size() + 1, nullptr);
    std::transform(words.begin(), words.end(), line.begin(), [](std::string &word) { return word.data(); });
    int index = 0;
    loadStartValues();
    SubOptionWalk walk(count, line.data(), index, SubOptionWalk::leavesLastWord);
    if ((option->id != OptionId::dfu && !readLinkSettings(walk, option->id)) || index + 1 < count)
        throw Refusal(badWords, "\"" + words[static_cast<std::size_t>(std::min(std::max(index, 1), count - 1))] +
                                    "\" is no word of " + words.front());
    return option->id;
}

} // namespace

Unit::Unit(OptionId connection) {
    const LinkCommand *command = commandOf(connection);
    if (command == nullptr) {
        startDfu();
        return;
    }
    CComManager().SetInterfaceType(command->type);
    m_link = makeLink(*command);
    m_isOpen = m_link->Open() == 0;
    if (m_isOpen)
        m_result = startBootloader(*command, *m_link);
}

void Unit::startDfu() {
    CComManager manager;
    manager.SetInterfaceType(INTERFACE_USBDFU);
    const int count = CComManager::CountDfuDevices();
    if (count < 1)
        return;
    m_link = std::make_unique<CCom>(manager.getCom(count).first());
    m_isOpen = m_link->Open() == 0;
    if (m_isOpen)
        m_result = m_link->m_ObBootLoader->Connect();
}

Unit::~Unit() {
    if (m_isOpen)
        m_link->Close();
}

CBootLoader &Unit::control() const {
    return *m_link->m_ObBootLoader;
}

std::unique_ptr<Unit> unitAt(std::vector<std::string> words) {
    auto unit = std::make_unique<Unit>(readConnection(words));
    if (!unit->isOpen())
        throw Refusal(noUnit, "the port can't be opened: \"zv32-look doctor\" tells why");
    if (!unit->isThere())
        throw Refusal(noUnit, "no chip answers: \"zv32-look doctor\" tells why");
    unit->control().InitDevice();
    if (unit->control().m_ObDevice == nullptr)
        throw Refusal(noUnit, "a chip answers that no map file describes");
    return unit;
}
