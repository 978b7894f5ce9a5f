#pragma once

#include "TestFiles.h"

namespace qv::test {

// A loader standing in for the real one: it writes the arguments it got, one
// a line, to argv.txt next to itself (written aside and renamed, so that a
// reader never sees half of it).
inline const QByteArray kRecordingLoader = "#!/bin/sh\n"
                                           "out=\"$(dirname \"$0\")/argv.txt\"\n"
                                           "for a in \"$@\"; do printf '%s\\n' \"$a\"; done > "
                                           "\"$out.part\"\n"
                                           "mv \"$out.part\" \"$out\"\n";

inline void writeProgram(const QString& path, const QByteArray& content, bool executable = true) {
    writeFile(path, content);
    ASSERT_TRUE(
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner |
                                        (executable ? QFile::ExeOwner : QFile::Permissions())));
}

} // namespace qv::test
