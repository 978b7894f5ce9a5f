#pragma once

#include "programme/ProgrammeEditor.h"
#include "view/MapConsoleView.h"

#include <QMap>
#include <gtest/gtest.h>

namespace qv::test {

// The editor's form as named values, with the pickers and colours that
// ConsoleView has no words for.
class FakeEditorView : public MapConsoleView, public ProgrammationControls {
public:
    void setBackground(const QString& c, std::uint32_t rgb) override { backgrounds[c] = rgb; }
    std::uint32_t background(const QString& c) const override {
        return backgrounds.value(c, kFondValide);
    }
    void setDateTime(const QString& c, const QDateTime& value) override { moments[c] = value; }
    QDateTime dateTime(const QString& c) const override { return moments.value(c); }
    void setDisplayFormat(const QString& c, const QString& format) override { formats[c] = format; }
    QString displayFormat(const QString& c) const override { return formats.value(c); }

    QMap<QString, std::uint32_t> backgrounds;
    QMap<QString, QDateTime> moments;
    QMap<QString, QString> formats;
};

// The main form as the editor sees it: its language list, its device.
class FakeMainScreen : public MainScreenAccess {
public:
    QString langue() const override { return language; }
    QString premiereLangue() const override { return firstLanguage; }
    bool timeOut() const override { return timedOut; }
    int LitEEprom(int adresse) override {
        reads.push_back(adresse);
        return eeprom.value(adresse, 0);
    }
    QStringList valeursSortieLogique() const override { return states; }

    QString language = QStringLiteral("English");
    QString firstLanguage = QStringLiteral("English");
    bool timedOut = false;
    QMap<int, int> eeprom;
    std::vector<int> reads;
    QStringList states = {QStringLiteral("Closed"), QStringLiteral("Open")};
};

} // namespace qv::test
