#pragma once

#include "console/widgets/MainScreenWindow.h"
#include "programme/ProgrammeEditor.h"

namespace qv {

class ConfigDocument;
class Conditions;

// The main window as the editor sees it on the user-interface thread: its
// language lists from the controls, and the device as the job that opened
// the editor found it (the editor never waits for the device itself).
class MainScreenWindowAccess : public MainScreenAccess {
public:
    MainScreenWindowAccess(MainScreenWindow& main, const EditorDeviceState& device)
        : main_(main), device_(device) {}

    QString langue() const override;
    QString premiereLangue() const override;
    bool timeOut() const override;
    int LitEEprom(int adresse) override;
    QStringList valeursSortieLogique() const override;

private:
    MainScreenWindow& main_;
    EditorDeviceState device_;
};

// Makes the main window's mnuPLC open the editor, modal over it, on its
// device, its config.xml and the programme of the run.
void installProgrammationEditor(MainScreenWindow& main, ConfigDocument& config,
                                Conditions& conditions);

} // namespace qv
