#include "look/Unit.h"

#include <QList>

#include "app/LinkCommands.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

namespace {

const LinkCommand *commandOf(OptionId connection) {
    for (const LinkCommand *command : {&usartCommand, &i2cCommand, &canCommand, &spiCommand})
        if (command->option == connection)
            return command;
    return nullptr;
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
