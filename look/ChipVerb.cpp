#include "look/ChipVerb.h"

#include <memory>

#include "look/ChipFacts.h"
#include "look/Status.h"
#include "look/Unit.h"

Look declareChip(CLI::App &words) {
    const auto range = std::make_shared<std::string>();
    words.allow_extras(); // those of the link
    words.footer("LINK-WORDS are those of the console: -com --pn ttyUSB0");
    words.add_option("--crc", *range, "the CRC-32 of whole sectors too: all, or 08000000-08001FFF");
    return [range, &words](Call &call) {
        const auto unit = unitAt(words.remaining());
        tellChip(unit->control(), call.report);
        if (!range->empty())
            tellCrc(unit->control(), *range, call.report);
        return lookedWell;
    };
}
