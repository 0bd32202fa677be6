#include "look/Verbs.h"

#include "look/ImageVerb.h"

const std::vector<Verb> &verbs() {
    static const std::vector<Verb> rows = {
        {"image", "what is in image files, and their sums", false, declareImage},
    };
    return rows;
}
