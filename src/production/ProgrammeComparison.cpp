#include "ProgrammeComparison.h"

#include "programme/ProgrammeDownload.h"

namespace qv {

std::vector<Bytes> downloadFramesOf(const Condition& line, int n) {
    std::vector<Bytes> frames{conditionFrame(line, n)};
    if (line.Jour != JourPeriode && line.Jour != 0)
        frames.push_back(dayTimeFrame(line));
    if (line.Jour == JourPlage)
        frames.push_back(rangeEndFrame(line));
    if (line.Jour == JourPeriode)
        frames.push_back(periodFrame(line));
    return frames;
}

int programmeDifference(const Conditions& sent, const Conditions& read) {
    if (sent.Count() != read.Count())
        return -1;
    for (int n = 1; n <= sent.Count(); ++n) {
        Condition back = *read.Item(n);
        back.Format = sent.Item(n)->Format;
        if (downloadFramesOf(*sent.Item(n), n) != downloadFramesOf(back, n))
            return n;
    }
    return 0;
}

} // namespace qv
