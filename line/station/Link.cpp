#include "line/station/Link.h"

#include <climits>
#include <regex>

#include "line/job/Words.h"

namespace {

constexpr std::int64_t highestRate = 100000000;
constexpr std::int64_t lastRow = 12;
constexpr std::int64_t firstAddress = 0x08; // those below and above are reserved on the bus
constexpr std::int64_t lastAddress = 0x77;

const std::map<std::string, LinkKind> kinds = {{"usart", LinkKind::usart},
                                               {"dfu", LinkKind::dfu},
                                               {"i2c", LinkKind::i2c},
                                               {"can", LinkKind::can},
                                               {"spi", LinkKind::spi}};
const std::map<std::string, std::string> parities = {{"none", "none"}, {"odd", "odd"}, {"even", "even"}};

// What a port of a link of this kind looks like.
struct PortForm {
    LinkKind kind;
    const char *pattern;
    const char *wanted;
};
const PortForm portForms[] = {
    {LinkKind::usart, "/.*", "must be an absolute path"},
    {LinkKind::dfu, "[0-9]+-[0-9]+(\\.[0-9]+)*", "must be a place on USB, such as \"1-2.3\""},
    {LinkKind::i2c, "/.*", "must be an absolute path"},
    {LinkKind::can, "/.*|[^/ ]{1,15}", "must be the name of an interface, or an absolute path"},
    {LinkKind::spi, "/.*", "must be an absolute path"},
};

std::optional<std::uint32_t> numberIn(Table &table, const std::string &key, std::int64_t lowest, std::int64_t highest) {
    if (!table.has(key))
        return std::nullopt;
    return static_cast<std::uint32_t>(table.number(key, lowest, highest));
}

} // namespace

const char *nameOf(LinkKind kind) {
    return wordOf(kinds, kind);
}

Link readLink(Table table) {
    Link link;
    link.kind = table.choice("kind", kinds);
    if (link.kind == LinkKind::usart || link.kind == LinkKind::can || link.kind == LinkKind::spi)
        link.rate = numberIn(table, "rate", 1, highestRate);
    if (link.kind == LinkKind::usart && table.has("parity"))
        link.parity = table.choice("parity", parities);
    if (link.kind == LinkKind::usart)
        link.autoRow = numberIn(table, "auto", 0, lastRow);
    if (link.kind == LinkKind::i2c)
        link.address = numberIn(table, "address", firstAddress, lastAddress);
    table.finish();
    return link;
}

std::string readPort(Table &table, const std::string &key, LinkKind kind) {
    const std::string port = table.text(key);
    if (port.size() > PATH_MAX)
        table.placeOf(key).refuse("is longer than a path can be");
    for (const PortForm &form : portForms)
        if (form.kind == kind && !std::regex_match(port, std::regex(form.pattern)))
            table.placeOf(key).refuse(form.wanted);
    return port;
}

Json linkJson(const Link &link, const std::string &port) {
    Json json = {{"kind", nameOf(link.kind)}, {"port", port}};
    if (link.rate)
        json["rate"] = *link.rate;
    if (link.parity)
        json["parity"] = *link.parity;
    if (link.autoRow)
        json["auto"] = *link.autoRow;
    if (link.address)
        json["address"] = *link.address;
    return json;
}
