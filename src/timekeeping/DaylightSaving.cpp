#include "timekeeping/DaylightSaving.h"

#include "config/LocaleNumber.h"
#include "config/VbFormat.h"
#include "device/MemoryMap.h"
#include "device/Packing.h"

#include <algorithm>
#include <cmath>

namespace qv {

namespace {

const QString kEnable = QStringLiteral("EnableDaylightSaving");
const QString kAdjustment = QStringLiteral("DaylightAdjustment");
const QString kMois = QStringLiteral("Mois");
const QString kSemaine = QStringLiteral("Semaine");
const QString kJour = QStringLiteral("Jour");
const QString kHeure = QStringLiteral("Heure");

QString member(const QString& array, int season) {
    return arrayMember(array, season);
}

// Device addresses of the rule, by season.
constexpr int kAdjustmentAddress = Address::DaylightSavingRule;       // 26
constexpr int kWeekDayAddress[2] = {Address::DaylightSavingRule + 1,  // 27
                                    Address::DaylightSavingRule + 4}; // 30
constexpr int kMonthAddress[2] = {Address::DaylightSavingRule + 2,    // 28
                                  Address::DaylightSavingRule + 5};   // 31
constexpr int kHourAddress[2] = {Address::DaylightSavingRule + 3,     // 29
                                 Address::DaylightSavingRule + 6};    // 32
constexpr int kRuleOff = 255;

const QString kConfMonth[2] = {QStringLiteral("OF_MOIS_ETE"), QStringLiteral("OF_MOIS_HIVER")};
const QString kConfHour[2] = {QStringLiteral("OF_HEURE_ETE"), QStringLiteral("OF_HEURE_HIVER")};
const QString kConfWeekDay[2] = {QStringLiteral("OF_JOUR_ETE"), QStringLiteral("OF_JOUR_HIVER")};
const QString kConfEnabled = QStringLiteral("DAYLIGHT_SAVING");
const QString kConfAdjustment = QStringLiteral("OF_ETE_HIVER");

// A list box keeps its item data as 32-bit integers: a fractional value
// from the document lands rounded.
double asItemData(double value) {
    if (!std::isfinite(value))
        return 0;
    return std::clamp(roundHalfEven(value), -2147483648.0, 2147483647.0);
}

// A number as the device's byte, rounded half to even; nullopt when it is
// not a number or does not fit, which the selection then ignores.
std::optional<int> asByte(std::optional<double> number) {
    if (!number || !std::isfinite(*number))
        return std::nullopt;
    const double rounded = roundHalfEven(*number);
    if (rounded < 0 || rounded > 255)
        return std::nullopt;
    return static_cast<int>(rounded);
}

std::optional<double> numberOf(const QVariant& value, const QLocale& locale) {
    if (value.typeId() == QMetaType::QString)
        return parseLocaleNumber(value.toString(), locale);
    bool ok = false;
    const double number = value.toDouble(&ok);
    return ok ? std::optional<double>(number) : std::nullopt;
}

} // namespace

DaylightSavingRule::DaylightSavingRule(ConsoleView& view, Device& device, ConfigDocument& config,
                                       std::function<QString()> langue, const QLocale& locale)
    : view_(view), device_(device), config_(config), langue_(std::move(langue)), locale_(locale) {}

void DaylightSavingRule::DayLightSaving(bool ecriture, bool enConfiguration, bool initialisation) {
    if (initialisation)
        initialise();
    else if (!enConfiguration && !ecriture)
        readFromDevice();
    else if (!enConfiguration)
        writeToDevice();
    else if (!ecriture)
        readFromConfiguration();
    else
        writeToConfiguration();
}

void DaylightSavingRule::TrouveIndex(int valeur, const QString& list) {
    const auto rows = view_.rows(list);
    for (size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].itemData == valeur) {
            view_.setCurrentRow(list, static_cast<int>(i));
            return;
        }
    }
}

void DaylightSavingRule::EnableDaylightSaving_Click() {
    const bool on = view_.isChecked(kEnable);
    view_.setEnabled(kAdjustment, on);
    view_.setEnabled(QStringLiteral("FrameSummer"), on);
    view_.setEnabled(QStringLiteral("FrameWinter"), on);
    for (int season = 0; season < 2; ++season) {
        for (const QString& array : {kMois, kSemaine, kJour, kHeure})
            view_.setEnabled(member(array, season), on);
    }
}

std::optional<int> DaylightSavingRule::packWeekDay(double week, double day) {
    const double packed = week * 16 + day;
    if (!std::isfinite(packed))
        return std::nullopt;
    const double rounded = roundHalfEven(packed);
    if (rounded < 0 || rounded > 255)
        return std::nullopt;
    return static_cast<int>(rounded);
}

DaylightSavingRule::WeekDay DaylightSavingRule::unpackWeekDay(int packed) {
    const int week = static_cast<int>(roundHalfEven(packed / 16.0));
    return {week & 15, packed & 15};
}

void DaylightSavingRule::fillList(const QString& liste, const QString& control0,
                                  const QString& control1) {
    const auto rows = config_.RemplitListe(langue_(), liste);
    // A list the document does not have leaves the controls as they were.
    if (!rows)
        return;
    std::vector<ConsoleView::Row> filled;
    filled.reserve(rows->size());
    for (const ListRow& row : *rows)
        filled.push_back({row.text, asItemData(row.itemData)});
    view_.setRows(control0, filled);
    view_.setRows(control1, filled);
}

void DaylightSavingRule::initialise() {
    fillList(QStringLiteral("ListeMois"), member(kMois, 0), member(kMois, 1));
    fillList(QStringLiteral("ListeSemaines"), member(kSemaine, 0), member(kSemaine, 1));
    fillList(QStringLiteral("ListeJours"), member(kJour, 0), member(kJour, 1));

    // The day list is the programme editor's: its three leading rows ("no
    // time condition", "every day", ...) and its trailing one mean nothing
    // in a rule. They go even when the list was not refilled, as they
    // always did.
    for (int season = 0; season < 2; ++season) {
        const QString jour = member(kJour, season);
        auto rows = view_.rows(jour);
        for (int i = 0; i < 3 && !rows.empty(); ++i)
            rows.erase(rows.begin());
        if (!rows.empty())
            rows.pop_back();
        view_.setRows(jour, rows);
    }

    std::vector<ConsoleView::Row> hours;
    for (int h = 0; h < 24; ++h)
        hours.push_back({QString::number(h), static_cast<double>(h)});
    for (int season = 0; season < 2; ++season) {
        view_.setRows(member(kHeure, season), hours);
        view_.setCurrentRow(member(kMois, season), kDefaultMonth[season]);
        view_.setCurrentRow(member(kSemaine, season), kDefaultWeek[season]);
        view_.setCurrentRow(member(kJour, season), kDefaultDay[season]);
        view_.setCurrentRow(member(kHeure, season), kDefaultHour[season]);
    }
}

void DaylightSavingRule::selectWeekDay(int season, int packed) {
    const WeekDay wd = unpackWeekDay(packed);
    TrouveIndex(wd.day, member(kJour, season));
    TrouveIndex(wd.week, member(kSemaine, season));
}

void DaylightSavingRule::readFromDevice() {
    view_.setText(kAdjustment, QString::number(device_.LitEEprom(kAdjustmentAddress)));

    const int moisEte = device_.LitEEprom(kMonthAddress[0]);
    TrouveIndex(moisEte, member(kMois, 0));
    const int moisHiver = device_.LitEEprom(kMonthAddress[1]);
    TrouveIndex(moisHiver, member(kMois, 1));
    const int heureEte = device_.LitEEprom(kHourAddress[0]);
    TrouveIndex(heureEte, member(kHeure, 0));
    const int heureHiver = device_.LitEEprom(kHourAddress[1]);
    TrouveIndex(heureHiver, member(kHeure, 1));

    // Only the summer byte says whether the rule is on; it is decoded all
    // the same.
    const int ete = device_.LitEEprom(kWeekDayAddress[0]);
    const bool on = ete < kRuleOff;
    if (view_.isChecked(kEnable) != on) {
        view_.setChecked(kEnable, on);
        // A box changed from code raises its click like the operator's.
        EnableDaylightSaving_Click();
    }
    selectWeekDay(0, ete);
    selectWeekDay(1, device_.LitEEprom(kWeekDayAddress[1]));
}

void DaylightSavingRule::writeToDevice() {
    // An adjustment that is no byte is not checked here; its address is
    // left as it was and the rest of the rule still goes.
    if (const auto adjustment = asByte(parseLocaleNumber(view_.text(kAdjustment), locale_)))
        device_.EcritEEprom(kAdjustmentAddress, *adjustment);

    auto writeSelected = [&](int address, const QString& list) {
        if (const auto value = asByte(selectedItemData(list)))
            device_.EcritEEprom(address, *value);
    };
    writeSelected(kMonthAddress[0], member(kMois, 0));
    writeSelected(kMonthAddress[1], member(kMois, 1));
    writeSelected(kHourAddress[0], member(kHeure, 0));
    writeSelected(kHourAddress[1], member(kHeure, 1));

    if (!view_.isChecked(kEnable)) {
        device_.EcritEEprom(kWeekDayAddress[0], kRuleOff);
        device_.EcritEEprom(kWeekDayAddress[1], kRuleOff);
        return;
    }
    for (int season = 0; season < 2; ++season) {
        const auto week = selectedItemData(member(kSemaine, season));
        const auto day = selectedItemData(member(kJour, season));
        if (!week || !day)
            continue;
        if (const auto packed = packWeekDay(*week, *day))
            device_.EcritEEprom(kWeekDayAddress[season], *packed);
    }
}

void DaylightSavingRule::readFromConfiguration() {
    const auto enabled = numberOf(config_.LitConf(kConfEnabled), locale_);
    view_.setChecked(kEnable, enabled && *enabled == 1);
    EnableDaylightSaving_Click();

    const QVariant adjustment = config_.LitConf(kConfAdjustment);
    view_.setText(kAdjustment, adjustment.typeId() == QMetaType::QString
                                   ? adjustment.toString()
                                   : vbNumberText(adjustment.toDouble(), locale_));

    auto select = [&](const QString& attribute, const QString& list) {
        if (const auto value = asByte(numberOf(config_.LitConf(attribute), locale_)))
            TrouveIndex(*value, list);
    };
    select(kConfMonth[0], member(kMois, 0));
    select(kConfMonth[1], member(kMois, 1));
    select(kConfHour[0], member(kHeure, 0));
    select(kConfHour[1], member(kHeure, 1));

    for (int season = 0; season < 2; ++season) {
        if (const auto packed = asByte(numberOf(config_.LitConf(kConfWeekDay[season]), locale_)))
            selectWeekDay(season, *packed);
    }
}

void DaylightSavingRule::writeToConfiguration() {
    config_.EcritConf(kConfAdjustment, view_.text(kAdjustment));

    auto writeSelected = [&](const QString& attribute, const QString& list) {
        if (const auto value = selectedItemData(list))
            config_.EcritConf(attribute, *value);
    };
    writeSelected(kConfMonth[0], member(kMois, 0));
    writeSelected(kConfMonth[1], member(kMois, 1));
    writeSelected(kConfHour[0], member(kHeure, 0));
    writeSelected(kConfHour[1], member(kHeure, 1));

    // With the rule off the week and day settings keep their old values, so
    // that switching it back on finds them.
    if (!view_.isChecked(kEnable)) {
        config_.EcritConf(kConfEnabled, QStringLiteral("0"));
        return;
    }
    config_.EcritConf(kConfEnabled, QStringLiteral("1"));
    for (int season = 0; season < 2; ++season) {
        const auto week = selectedItemData(member(kSemaine, season));
        const auto day = selectedItemData(member(kJour, season));
        if (week && day)
            config_.EcritConf(kConfWeekDay[season], *week * 16 + *day);
    }
}

std::optional<double> DaylightSavingRule::selectedItemData(const QString& list) const {
    const int row = view_.currentRow(list);
    const auto rows = view_.rows(list);
    if (row < 0 || row >= static_cast<int>(rows.size()))
        return std::nullopt;
    return rows[static_cast<size_t>(row)].itemData;
}

} // namespace qv
