#pragma once

#include "line/channel/Channel.h"
#include "line/job/Job.h"
#include "line/plan/Plan.h"
#include "line/plan/UnitImage.h"

// What the process that makes a unit is told: line/channel/Messages.h.

// "make", at a link as Messages.h tells of it.
Json makeOrder(const Job &job, const Plan &plan, const Json &link);

// "go", for the image of a unit, in whole words.
Json goOrder(const Runs &image);
