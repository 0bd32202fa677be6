#include "look/Verbs.h"

#include "look/ImageVerb.h"
#include "look/LineVerb.h"

const std::vector<Verb> &verbs() {
    static const std::vector<Verb> rows = {
        {"line", "what a line of console words would do, in order", true, declareLine},
        {"image", "what is in image files, and their sums", false, declareImage},
    };
    return rows;
}
