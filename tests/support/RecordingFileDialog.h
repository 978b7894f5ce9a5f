#pragma once

#include "firmware/FileDialog.h"

#include <vector>

namespace qv::test {

// Answers every file dialog at once and keeps what it was asked: `answer`
// (empty: the operator cancelled), or for a save the name it proposes.
class RecordingFileDialog : public FileDialog {
public:
    QString answer;
    bool takeProposedName = false;
    std::vector<Request> opened;

    QString openFile(const Request& request) override {
        opened.push_back(request);
        return answer;
    }
    QString saveFile(const Request& request) override {
        opened.push_back(request);
        return takeProposedName ? request.fileName : answer;
    }
};

} // namespace qv::test
