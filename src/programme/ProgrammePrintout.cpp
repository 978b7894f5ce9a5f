#include "ProgrammePrintout.h"

#include "config/ConfigDocument.h"
#include "programme/Conditions.h"
#include "programme/DefaultStates.h"

#include <cmath>

namespace qv {

namespace {

PrintoutStep line(const QString& text) {
    return {text, false, QString(), 0};
}

PrintoutStep lineWithColumn(const QString& text, const QString& column) {
    return {text, true, column, 0};
}

PrintoutStep move(int skips) {
    return {QString(), false, QString(), skips};
}

// The row of a list by number, as the lists give it: nothing outside.
QString rowText(const QStringList& rows, double number) {
    if (!std::isfinite(number))
        return QString();
    const double index = std::nearbyint(number);
    if (index < 0 || index >= rows.size())
        return QString();
    return rows.at(static_cast<int>(index));
}

QString time(int heure, int minute, int seconde) {
    return QStringLiteral("%1:%2:%3").arg(heure).arg(minute).arg(seconde);
}

} // namespace

ProgrammePrintout ImprimeProgrammation(const Conditions& conditions, const PrintoutTexts& texts) {
    ProgrammePrintout page;
    page.heading = texts.date.toString(QStringLiteral("dd/MM/yyyy")) + QLatin1Char('\t') +
                   texts.nomFichier + QStringLiteral(" - ") + texts.page + QStringLiteral(" : ") +
                   QString::number(1);
    std::vector<PrintoutStep>& steps = page.steps;
    steps.push_back(line(page.heading));
    steps.push_back(move(1));
    steps.push_back(move(1));

    steps.push_back(line(texts.valeursDefaut));
    QString nomSortie;
    for (int i = 0; i < texts.sorties.size(); ++i) {
        const auto at = static_cast<size_t>(i);
        const int etat = at < texts.etatsDefaut.size() ? texts.etatsDefaut[at] : 0;
        nomSortie = texts.sorties.at(i);
        steps.push_back(lineWithColumn(nomSortie, rowText(texts.valeursLogiques, etat)));
    }
    for (int i = 0; i < 4; ++i)
        steps.push_back(move(1));

    QString jour;
    int p = 0;
    for (const Condition& c : conditions) {
        ++p;
        steps.push_back(line(texts.condition + QLatin1Char(' ') + QString::number(p)));
        steps.push_back(line(c.Commentaire));
        if (c.sortie >= 0 && c.sortie < texts.sorties.size())
            nomSortie = texts.sorties.at(c.sortie);
        steps.push_back(lineWithColumn(nomSortie + QStringLiteral(" = "),
                                       rowText(texts.valeursLogiques, c.Valeur)));

        for (const PrintoutTexts::Jour& row : texts.jours) {
            if (row.itemData == c.Jour) {
                jour = row.text;
                break;
            }
        }
        if (c.Jour == 0)
            continue;
        QString quand = jour + QStringLiteral(" = ") + time(c.Heure, c.Minute, c.Seconde);
        if (c.Jour == JourPlage)
            quand +=
                QStringLiteral(" / ") + time(c.PlageFinHeure, c.PlageFinMinute, c.PlageFinSeconde);
        steps.push_back(lineWithColumn(texts.programmationJournaliere, quand));
    }
    return page;
}

PrintoutTexts printoutTextsFromConfig(ConfigDocument& config, const QString& langue,
                                      const QString& nomFichier, const QDate& date) {
    PrintoutTexts texts;
    texts.date = date;
    texts.nomFichier = nomFichier;
    // The captions as the editor's translation leaves them, its design-time
    // captions being the defaults.
    texts.page = config.LitMessage(langue, QStringLiteral("Page"), QString());
    texts.valeursDefaut = config.LitMessage(langue, QStringLiteral("FramevaleursDefaut"),
                                            QStringLiteral("Valeurs par défaut"));
    texts.condition = config.LitMessage(langue, QStringLiteral("FrameCondition"), QString());
    texts.programmationJournaliere = config.LitMessage(langue, QStringLiteral("Label3"),
                                                       QStringLiteral("Programmation Journalière"));
    texts.valeursLogiques = {config.LitMessage(langue, QStringLiteral("Close"), QString()),
                             config.LitMessage(langue, QStringLiteral("Open"), QString())};

    const auto place = [](const std::vector<ListRow>& rows, auto&& put) {
        for (const ListRow& row : rows)
            if (row.position >= 0)
                put(row);
    };
    if (const auto rows = config.RemplitListe(langue, QStringLiteral("ListeSorties"))) {
        place(*rows, [&](const ListRow& row) {
            while (texts.sorties.size() <= row.position)
                texts.sorties.append(QString());
            texts.sorties[row.position] = row.text;
        });
    }
    if (const auto rows = config.RemplitListe(langue, QStringLiteral("ListeJours"))) {
        place(*rows, [&](const ListRow& row) {
            const auto at = static_cast<size_t>(row.position);
            if (texts.jours.size() <= at)
                texts.jours.resize(at + 1);
            texts.jours[at] = {row.text, row.itemData};
        });
    }

    // The default states are kept under the first language of the document,
    // whichever one is in use.
    const QStringList langues = config.ListeLanguesDisponibles();
    const QString premiere = langues.isEmpty() ? QString() : langues.first();
    for (int i = 0; i < texts.sorties.size(); ++i)
        texts.etatsDefaut.push_back(
            Donne_EtatDefautSortie(config, premiere, static_cast<std::int16_t>(i)));
    return texts;
}

std::vector<PlacedText> layoutPrintout(const ProgrammePrintout& printout,
                                       const PrintMetrics& metrics) {
    std::vector<PlacedText> placed;
    const double g = std::floor(metrics.lineHeight / 2);
    const double column = (kPrintColumn - 1) * metrics.columnWidth;
    const auto width = [&](const QString& text) {
        return metrics.textWidth ? metrics.textWidth(text) : 0.0;
    };
    double y = 0;
    for (const PrintoutStep& step : printout.steps) {
        if (step.skips > 0) {
            y += g * step.skips;
            continue;
        }
        if (!step.text.isEmpty())
            placed.push_back({0, y, step.text});
        if (step.hasColumn) {
            if (width(step.text) > column)
                y += metrics.lineHeight;
            if (!step.column.isEmpty())
                placed.push_back({column, y, step.column});
        }
        y += metrics.lineHeight;
    }
    return placed;
}

} // namespace qv
