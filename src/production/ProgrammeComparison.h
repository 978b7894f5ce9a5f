#pragma once

#include "link/Bytes.h"
#include "programme/Conditions.h"

#include <vector>

namespace qv {

// The frames that the download makes of line `n` (1-based), in the order it
// sends them. Throws OverflowError as the frame builders do.
std::vector<Bytes> downloadFramesOf(const Condition& line, int n);

// 0 when `read` holds what the download of `sent` carries, line for line;
// otherwise the first line that differs (1-based), or -1 when the counts of
// lines differ. The name, the
// comment, the logic and the regulation never reach the controller and are
// not compared; neither is the format, which the read takes from the output
// list, so the value counts only where the file's format sends it.
int programmeDifference(const Conditions& sent, const Conditions& read);

} // namespace qv
