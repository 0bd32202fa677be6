#include "app/Words.h"

#include <algorithm>
#include <iterator>

#include "foundation/ShareParameter.h"

namespace {

// MEANT: "--a" is a word that no option knows, although the usage text promises it; it swallows its value.
const char *const subOptionWords[] = {"--pn",   "--br",   "--db",  "--pr",   "--to",   "--auto",  "--all",   "--sec",
                                      "--erp",  "--drp",  "--ewp", "--dwp",  "--efap", "--efap1", "--efap2", "--dfap",
                                      "--eepp", "--depp", "--a",   "--addr", "--rate", "--dc",    "--speed", "--fn",
                                      "--v",    "--o",    "--get", "--set",  "--ft",   "--fs",    "--fda",   "--remap"};

using Id = SubId;

// clang-format off
constexpr SubWord usartWords[] = {
    {"--pn", Id::port, Takes::value},       {"--br", Id::baudRate, Takes::value},
    {"--db", Id::dataBits, Takes::value},   {"--pr", Id::parity, Takes::value},
    {"--to", Id::timeLimit, Takes::value},  {"--auto", Id::bootSwitch, Takes::value},
};
constexpr SubWord i2cWords[] = {
    {"--pn", Id::port, Takes::value},    {"--addr", Id::busAddress, Takes::value},
    {"--rate", Id::busRate, Takes::value}, {"--dc", Id::dutyCycle, Takes::value},
};
constexpr SubWord speedWords[] = {{"--pn", Id::port, Takes::value}, {"--speed", Id::speed, Takes::value}};
constexpr SubWord eraseWords[] = {{"--all", Id::all, Takes::nothing}, {"--sec", Id::sectors, Takes::value}};
constexpr SubWord protectionWords[] = {
    {"--efap", Id::protectAccess, Takes::nothing},    {"--erp", Id::protectAccess, Takes::nothing},
    {"--efap1", Id::protectAccess, Takes::nothing},   {"--efap2", Id::protectAccessHigh, Takes::confirmation},
    {"--dfap", Id::unprotectAccess, Takes::nothing},  {"--drp", Id::unprotectAccess, Takes::nothing},
    {"--eepp", Id::protectSectors, Takes::value},     {"--ewp", Id::protectSectors, Takes::value},
    {"--depp", Id::unprotectSectors, Takes::nothing}, {"--dwp", Id::unprotectSectors, Takes::nothing},
};
constexpr SubWord downloadWords[] = {
    {"--addr", Id::address, Takes::value},   {"--v", Id::verify, Takes::nothing},
    {"--o", Id::optimize, Takes::nothing},   {"--fn", Id::file, Takes::value},
};
constexpr SubWord uploadWords[] = {{"--sec", Id::sectors, Takes::value}, {"--fn", Id::file, Takes::value}};
constexpr SubWord dataWords[] = {{"--get", Id::get, Takes::namedFile}, {"--set", Id::set, Takes::namedFile}};
constexpr SubWord runWords[] = {{"--addr", Id::address, Takes::value}};
constexpr SubWord spimWords[] = {
    {"--remap", Id::remap, Takes::value},  {"--ft", Id::flashType, Takes::value},
    {"--fs", Id::flashSize, Takes::value}, {"--fda", Id::flashKeys, Takes::value},
};
constexpr SubWord otpWords[] = {{"--fn", Id::file, Takes::value}};

constexpr OptionWord optionWords[] = {
    {"-?", OptionId::usage, nullptr, nullptr},
    {"-dfu", OptionId::dfu, nullptr, nullptr},
    {"-com", OptionId::usart, std::begin(usartWords), std::end(usartWords)},
    {"-i2c", OptionId::i2c, std::begin(i2cWords), std::end(i2cWords)},
    {"-can", OptionId::can, std::begin(speedWords), std::end(speedWords)},
    {"-spi", OptionId::spi, std::begin(speedWords), std::end(speedWords)},
    {"-e", OptionId::erase, std::begin(eraseWords), std::end(eraseWords)},
    {"-p", OptionId::protection, std::begin(protectionWords), std::end(protectionWords)},
    {"-d", OptionId::download, std::begin(downloadWords), std::end(downloadWords)},
    {"-u", OptionId::upload, std::begin(uploadWords), std::end(uploadWords)},
    {"-usd", OptionId::userSystemData, std::begin(dataWords), std::end(dataWords)},
    {"-o", OptionId::userSystemData, std::begin(dataWords), std::end(dataWords)},
    {"-r", OptionId::run, std::begin(runWords), std::end(runWords)},
    {"-enspim", OptionId::spim, std::begin(spimWords), std::end(spimWords)},
    {"-otp", OptionId::otp, std::begin(otpWords), std::end(otpWords)},
};
// clang-format on

} // namespace

const OptionWord *optionWord(const std::string &word) {
    const auto found = std::find_if(std::begin(optionWords), std::end(optionWords),
                                    [&word](const OptionWord &option) { return word == option.text; });
    return found == std::end(optionWords) ? nullptr : found;
}

const SubWord *subWord(OptionId option, const std::string &word) {
    const std::string text = isConnection(option) ? ShareParameter::ToLower(word) : word;
    for (const OptionWord &row : optionWords) {
        if (row.id != option)
            continue;
        const SubWord *found =
            std::find_if(row.first, row.last, [&text](const SubWord &sub) { return text == sub.text; });
        return found == row.last ? nullptr : found;
    }
    return nullptr;
}

bool Is_Option(const std::string &option) {
    return optionWord(option) != nullptr;
}

bool Is_SubOption(const std::string &suboption) {
    const std::string word = ShareParameter::ToLower(suboption);
    return std::find(std::begin(subOptionWords), std::end(subOptionWords), word) != std::end(subOptionWords);
}

bool isConnection(OptionId option) {
    return option >= OptionId::dfu && option <= OptionId::spi;
}

int ParityToInt(const std::string &parity) {
    return g_shareParameter.ParityToInt(ShareParameter::ToUpper(parity));
}
