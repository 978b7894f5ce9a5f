#include "ProgrammationOpener.h"

#include "device/MemoryMap.h"
#include "programme/widgets/ProgrammationWindow.h"

namespace qv {

QString MainScreenWindowAccess::langue() const {
    return main_.view().text(QStringLiteral("ListeLangues"));
}

QString MainScreenWindowAccess::premiereLangue() const {
    const auto rows = main_.view().rows(QStringLiteral("ListeLangues"));
    return rows.empty() ? QString() : rows.front().text;
}

bool MainScreenWindowAccess::timeOut() const {
    return device_.timeOut;
}

int MainScreenWindowAccess::LitEEprom(int adresse) {
    // The default state is the one byte the editor reads.
    return adresse == Address::DefaultOutputStates ? device_.defaultStateByte : 0;
}

QStringList MainScreenWindowAccess::valeursSortieLogique() const {
    QStringList words;
    for (const auto& row : main_.view().rows(QStringLiteral("ValeurSortieLogique")))
        words << row.text;
    return words;
}

void installProgrammationEditor(MainScreenWindow& main, ConfigDocument& config,
                                Conditions& conditions) {
    main.setProgrammationOpener([&main, &config, &conditions](const EditorDeviceState& device) {
        // The editor's boxes come on this thread, as real boxes.
        auto access = std::make_shared<MainScreenWindowAccess>(main, device);
        auto* window = new ProgrammationWindow(*access, config, conditions, main.dialogs(), &main);
        window->setAttribute(Qt::WA_DeleteOnClose);
        QObject::connect(window, &QObject::destroyed, [access] {});
        window->load();
        window->open();
    });
}

} // namespace qv
