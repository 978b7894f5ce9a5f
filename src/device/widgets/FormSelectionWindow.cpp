#include "FormSelectionWindow.h"

#include "ui_FormSelection.h"

namespace qv {

std::uint8_t hardwareConfigFor(int choix, std::uint8_t hardWareConfig) {
    switch (choix) {
    case 0:
        return hardWareConfig | SORTIES_BISTABLES;
    case 1:
        return SORTIES_4_20MA | MASQUE_ALIM_24V | SORTIES_TOR_24_V;
    case 2:
        return SORTIES_4_20MA | MASQUE_ALIM_24V | SORTIES_ANALOGIQUES_24;
    default:
        return hardWareConfig;
    }
}

FormSelectionWindow::FormSelectionWindow(std::uint8_t& hardWareConfig,
                                         const std::function<QString(const QString&)>& message,
                                         QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::FormSelection>()), hardWareConfig_(hardWareConfig) {
    ui_->setupUi(this);
    if (message) {
        const QString caption = message(QStringLiteral("Programme"));
        if (!caption.isEmpty())
            ui_->Selection->setText(caption);
    }
    connect(ui_->Selection, &QPushButton::clicked, this, [this] { Selection_Click(); });
}

FormSelectionWindow::~FormSelectionWindow() = default;

void FormSelectionWindow::Selection_Click() {
    // With several set, the last one set counts.
    int choix = 0;
    const QRadioButton* boutons[] = {ui_->TypeeVarlin_0, ui_->TypeeVarlin_1, ui_->TypeeVarlin_2};
    for (int i = 0; i < 3; ++i)
        if (boutons[i]->isChecked())
            choix = i;
    hardWareConfig_ = hardwareConfigFor(choix, hardWareConfig_);
    accept();
}

} // namespace qv
