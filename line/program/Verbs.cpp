#include "line/program/Verbs.h"

#include "line/program/BookVerbs.h"
#include "line/program/Making.h"
#include "line/program/PortsVerb.h"
#include "line/program/Work.h"

const std::vector<Verb> &verbs() {
    static const std::vector<Verb> rows = {
        {"check", "read a job, tell its plan and the plan's hash, and touch nothing", declareCheck},
        {"approve", "approve exactly this plan, as root", declareApprove},
        {"rehearse", "make one unit on a simulated chip", declareRehearse},
        {"make", "make one unit at every nest", declareMake},
        {"station", "make unit after unit, until Ctrl-C", declareStation},
        {"units", "the units that were made, by what the register has of them", declareUnits},
        {"stats", "counts of them: results, causes, nests", declareStats},
        {"ports", "what is plugged in, as nests of a station file", declarePorts},
    };
    return rows;
}
