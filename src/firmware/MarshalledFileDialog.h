#pragma once

#include "FileDialog.h"
#include "view/UiBridge.h"

namespace qv {

// The file dialog as a sequence on a device thread asks for it: shown on the
// user-interface thread while the sequence waits. A closed bridge answers as
// a cancel.
class MarshalledFileDialog : public FileDialog {
public:
    MarshalledFileDialog(UiBridge& bridge, FileDialog& inner) : bridge_(bridge), inner_(inner) {}

    QString openFile(const Request& request) override {
        QString path;
        bridge_.call([&] { path = inner_.openFile(request); });
        return path;
    }
    QString saveFile(const Request& request) override {
        QString path;
        bridge_.call([&] { path = inner_.saveFile(request); });
        return path;
    }

private:
    UiBridge& bridge_;
    FileDialog& inner_;
};

} // namespace qv
