#pragma once

#include <QString>

namespace qv {

// The common file dialog of a window (`Com`), as the logic asks for it. The
// window shows a real dialog; the command line and the tests answer at once.
class FileDialog {
public:
    struct Request {
        QString title;    // empty: the platform's own
        QString filter;   // the legacy form, "Text|pattern" pairs joined by "|"
        QString folder;   // where it opens; empty: wherever the platform likes
        QString fileName; // proposed name (full path or bare name)
    };

    virtual ~FileDialog() = default;
    // The full path chosen, or an empty text when the operator cancelled.
    virtual QString openFile(const Request& request) = 0;
    virtual QString saveFile(const Request& request) = 0;
};

// The legacy filter "INHEX32 Files (*.HEX)|*.HEX" in the form Qt's dialogs
// take: "INHEX32 Files (*.HEX *.hex)". Each pair gives one entry, entries
// joined by ";;". The description keeps its own parenthesis when it already
// names the patterns; the patterns are listed in both cases, because names
// on Linux are case-sensitive and the Windows dialog never was.
QString qtDialogFilter(const QString& legacyFilter);

} // namespace qv
