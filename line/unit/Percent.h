#pragma once

class COperation;
class Channel;

// Tells what a job has done, in percent, over a channel.
namespace percent {

// One job at a time: the one that was named last.
void tellOf(COperation &job, Channel &channel);

} // namespace percent
