#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <vector>

namespace qv {

class Conditions;
class ConfigDocument;

// The printed programme: one text page, a heading with the date and the
// file name, the default state of each output, then a block per line. What
// is printed is what the collection holds, in the words of the screen.

// The texts the page is made of, as the editor shows them.
struct PrintoutTexts {
    QDate date;
    QString nomFichier;
    QString page;                     // the word "Page" in the language in use
    QString valeursDefaut;            // caption of FramevaleursDefaut
    QString condition;                // caption of FrameCondition
    QString programmationJournaliere; // caption of Label3
    QStringList sorties;              // rows of ListeSorties
    // The default state of each row of `sorties`, from config.xml.
    std::vector<std::int16_t> etatsDefaut;
    QStringList valeursLogiques; // rows of the main form's ValeurSortieLogique
    struct Jour {
        QString text;
        double itemData = 0;
    };
    std::vector<Jour> jours; // rows of ListeJours
};

// One printed line, with its second item at print column 32 when it has
// one, or a move down by `skips` times half the heading's height.
struct PrintoutStep {
    QString text;
    bool hasColumn = false;
    QString column;
    int skips = 0; // a move, not a line, when above 0
};

struct ProgrammePrintout {
    QString heading; // also the first line of `steps`
    std::vector<PrintoutStep> steps;
};

inline constexpr int kPrintColumn = 32;

// The page of `conditions`. Numbers are plain decimal, so 8:05:00 reads
// 8:5:0; the date is day first whatever the locale; the page number is 1,
// and there is no page break: six lines of five rows fit on a page.
//
// A day code that no row of `jours` carries keeps the day text of the line
// before, and an output beyond the rows of `sorties` (every committed line
// holds the code 3, the list one row) keeps the output name printed last,
// the default block's included. A value without its row (4, never
// committed) prints nothing at the column.
ProgrammePrintout ImprimeProgrammation(const Conditions& conditions, const PrintoutTexts& texts);

// The texts as a freshly opened editor would show them in `langue`, for
// printing without the window. Keys missing from config.xml are added, as
// the window's own lookups would add them. Throws ConfigError.
PrintoutTexts printoutTextsFromConfig(ConfigDocument& config, const QString& langue,
                                      const QString& nomFichier, const QDate& date);

// Where the text goes on the page.
struct PrintMetrics {
    double lineHeight = 0;  // the height of one printed line
    double columnWidth = 0; // the width of one print column
    std::function<double(const QString&)> textWidth;
};

struct PlacedText {
    double x = 0;
    double y = 0; // top of the line
    QString text;

    bool operator==(const PlacedText&) const = default;
};

// Positions from the page's printable top left. Half the heading's height,
// rounded down, is the unit of the moves. A first item that reaches past
// column 32 sends the second to column 32 of the next line, as the printer's
// tab always did.
std::vector<PlacedText> layoutPrintout(const ProgrammePrintout& printout,
                                       const PrintMetrics& metrics);

} // namespace qv
