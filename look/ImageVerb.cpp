#include "look/ImageVerb.h"

#include <algorithm>
#include <memory>

#include "look/Chip.h"
#include "look/ImageFacts.h"
#include "look/Status.h"

namespace {

struct ImageWords {
    std::vector<std::string> files;
    std::string chip;
};

} // namespace

Look declareImage(CLI::App &words) {
    const auto asked = std::make_shared<ImageWords>();
    words.add_option("FILE", asked->files, "image files: .bin, .hex, .s19 or .srec")->required();
    words.add_option("--chip", asked->chip, "the chip that they are for, by its map file: ZV32F403A_1024K");
    return [asked](Call &call) {
        const CDevice *device = asked->chip.empty() ? nullptr : &chipNamed(asked->chip);
        int status = lookedWell;
        for (const std::string &file : asked->files)
            status = std::max(status, tellOfImage(file, device, call.report.section("files", file)));
        return status;
    };
}
