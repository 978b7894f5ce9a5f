#pragma once

#include <QDialog>
#include <cstdint>
#include <functional>
#include <memory>

namespace Ui {
class FormSelection;
}

namespace qv {

// Bits of HardWareConfig: the kind of outputs the connected model has, and
// whether it is fed from 24 V. The programme editor reads them.
constexpr std::uint8_t SORTIES_BISTABLES = 0x01;
constexpr std::uint8_t SORTIES_TOR_24_V = 0x02;
constexpr std::uint8_t SORTIES_ANALOGIQUES_24 = 0x04;
constexpr std::uint8_t SORTIES_4_20MA = 0x08;
constexpr std::uint8_t MASQUE_ALIM_24V = 0x10;

// What a choice of output type (0 to 2) makes of HardWareConfig. Choice 0
// adds to what was there; 1 and 2 start again from the 24 V analogue base.
std::uint8_t hardwareConfigFor(int choix, std::uint8_t hardWareConfig);

// FormSelection: the output type of the connected model. Nothing in the tool
// opens it at present; it is kept for the models that will need it.
class FormSelectionWindow : public QDialog {
    Q_OBJECT
public:
    // `hardWareConfig` is changed when the operator confirms; `message`
    // gives a key's text in the language of the main window.
    FormSelectionWindow(std::uint8_t& hardWareConfig,
                        const std::function<QString(const QString& key)>& message,
                        QWidget* parent = nullptr);
    ~FormSelectionWindow() override;

    void Selection_Click();

private:
    std::unique_ptr<Ui::FormSelection> ui_;
    std::uint8_t& hardWareConfig_;
};

} // namespace qv
