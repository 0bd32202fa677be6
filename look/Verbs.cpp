#include "look/Verbs.h"

#include "look/ChipVerb.h"
#include "look/ImageVerb.h"
#include "look/LineVerb.h"
#include "look/OptionsVerb.h"
#include "look/OtpVerb.h"
#include "look/doctor/DoctorVerb.h"

const std::vector<Verb> &verbs() {
    static const std::vector<Verb> rows = {
        {"line", "what a line of console words would do, in order", true, declareLine},
        {"image", "what is in image files, and their sums", false, declareImage},
        {"chip", "who is at a link, and what it allows", false, declareChip},
        {"options", "what option bytes say, of a chip or a file", false, declareOptions},
        {"otp", "what a file of OTP data would do, and making one", false, declareOtp},
        {"doctor", "what keeps a port from working, and what to do about it", false, declareDoctor},
    };
    return rows;
}
