#include "look/ImageVerb.h"

#include <memory>

#include "look/ImageFacts.h"
#include "look/Status.h"

Look declareImage(CLI::App &words) {
    const auto files = std::make_shared<std::vector<std::string>>();
    words.add_option("FILE", *files, "image files: .bin, .hex, .s19 or .srec")->required();
    return [files](Call &call) {
        for (const std::string &file : *files)
            tellOfImage(file, call.report.section("files", file));
        return lookedWell;
    };
}
