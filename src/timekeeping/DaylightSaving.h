#pragma once

#include "config/ConfigDocument.h"
#include "device/Device.h"
#include "view/ConsoleView.h"

#include <QLocale>
#include <QString>
#include <QVariant>
#include <functional>
#include <optional>

namespace qv {

// The daylight-saving rule that the controller applies by itself, carried
// between the frame of the main window, the device memory (26..32) and the
// Conf element of config.xml. The lists of the frame hold the rule between
// calls; this class keeps nothing of its own.
//
// Index 0 of each list pair is summer, index 1 winter. What travels is
// always a row's item data, never its position.
class DaylightSavingRule {
public:
    // `langue` gives the current text of ListeLangues; `locale` is the one
    // the entry boxes are read in.
    DaylightSavingRule(ConsoleView& view, Device& device, ConfigDocument& config,
                       std::function<QString()> langue, const QLocale& locale = QLocale::system());

    // The mode, in this order of precedence: initialisation (fill the lists
    // and select the defaults); else from or to the configuration when
    // `enConfiguration`, from or to the device otherwise; writing when
    // `ecriture`. Device failures are reported by the link and the next
    // address is tried all the same. Throws ConfigError when config.xml
    // cannot be used.
    void DayLightSaving(bool ecriture, bool enConfiguration, bool initialisation);

    // Selects the first row of `list` whose item data equals `valeur`; with
    // none, the selection stays as it was.
    void TrouveIndex(int valeur, const QString& list);

    // The enabled state of the frame's entries follows the check box.
    void EnableDaylightSaving_Click();

    // Week and day of one season in one byte: the week in the high four
    // bits, the day in the low four. nullopt when the sum does not fit a
    // byte.
    static std::optional<int> packWeekDay(double week, double day);
    // The two back out of a byte as the firmware's rule has always been read:
    // the day is the low four bits, the week the byte divided by 16 rounded
    // half to even (not shifted), then masked. The two ways agree for every
    // day value up to 7, which is all a device holds; 255 gives week 0.
    struct WeekDay {
        int week;
        int day;
    };
    static WeekDay unpackWeekDay(int packed);

    // Row positions selected at initialisation, summer then winter: the last
    // Sunday of March at 2 and of October at 3 with the shipped lists.
    static constexpr int kDefaultMonth[2] = {2, 9};
    static constexpr int kDefaultWeek[2] = {4, 4};
    static constexpr int kDefaultDay[2] = {6, 6};
    static constexpr int kDefaultHour[2] = {2, 3};

private:
    void initialise();
    void readFromDevice();
    void writeToDevice();
    void readFromConfiguration();
    void writeToConfiguration();

    // The item data of the selected row; nullopt with no selection.
    std::optional<double> selectedItemData(const QString& list) const;
    void selectWeekDay(int season, int packed);
    void fillList(const QString& liste, const QString& control0, const QString& control1);

    ConsoleView& view_;
    Device& device_;
    ConfigDocument& config_;
    std::function<QString()> langue_;
    QLocale locale_;
};

} // namespace qv
